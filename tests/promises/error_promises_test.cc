// Errors that can be trusted: every special element of every entry is reported once, in order, and
// nothing else is; no stray errno, no stray flag.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "tests/promises/arguments.h"
#include "tests/promises/error_ranges.h"
#include "tests/support/levels.h"
#include "tests/support/random.h"

namespace {

constexpr int kUntouched = 4711;

const std::vector<ErrorRange>& AllRanges() {
  static const std::vector<ErrorRange> all = ReadErrorRanges(RANGES_FOLDER);
  return all;
}

class ErrorPromises : public testing::TestWithParam<size_t> {
 protected:
  void SetUp() override {
    ASSERT_FALSE(Ranges(std::string(entry().function->name)).empty())
        << "no line for " << entry().symbol << " in any *.ranges.tsv";
  }

  const pex::Entry& entry() const { return pex::Entries()[GetParam()]; }

  const std::vector<ErrorRange>& Ranges(const std::string& function) {
    const auto [place, is_new] = ranges_.try_emplace(function);
    if (is_new) place->second = RangesOf(AllRanges(), function, entry().type);
    return place->second;
  }

  static double Second(const Arguments& x, size_t i) {
    return x.b.size() == 0 ? 0 : x.b.value(x.b.size() == 1 ? 0 : i);
  }

  int Code(const Arguments& x, size_t i) {
    const double b = Second(x, i);
    return ExpectedCode(Ranges(ReportingFunction(entry(), b)), x.a.value(i), b);
  }

  // The flags of results beyond the range that are delivered without a report, and of a pole that
  // is reported as an argument outside the domain.
  uint32_t FlagsOfPowers(const Numbers& r) const {
    if (entry().function->name != "Pow" && entry().function->name != "Powx") return 0;
    uint32_t flags = 0;
    for (size_t i = 0; i < r.size(); ++i) {
      const double magnitude = std::fabs(r.value(i));
      if (std::isinf(magnitude)) flags |= kOverflow | kDivByZero;
      if (magnitude < (entry().is_double() ? 0x1p-1022 : 0x1p-126)) flags |= kUnderflow;
    }
    return flags;
  }

  static bool Signalling(const Arguments& x, size_t i) {
    return IsSignallingNaN(x.a, i) ||
           (x.b.size() > 0 && IsSignallingNaN(x.b, x.b.size() == 1 ? 0 : i));
  }

  static Arguments One(const Arguments& x, size_t i) {
    return {x.a.part(i, 1), x.b.size() < 2 ? x.b : x.b.part(i, 1)};
  }

  // The flags of a call that reports by `mode` alone, without those that its results explain.
  uint32_t Flags(const Arguments& arguments, uint32_t mode) const {
    const size_t n = arguments.size();
    Numbers r1(entry().is_double(), n), r2(entry().is_double(), n);
    const uint8_t* const b = arguments.b.size() > 0 ? arguments.b.at(0) : nullptr;
    _pexSetMode(mode);
    errno = kUntouched;
    UseControl control(kDefaultControl);
    entry().Call(static_cast<int32_t>(n), arguments.a.at(0), b, r1.at(0), r2.at(0));
    control.Finish();
    EXPECT_EQ(errno, kUntouched);
    _pexSetMode(PEX_MODE_DEFAULT);
    return (control.flags() | control.x87_flags()) & ~FlagsOfPowers(r1);
  }

 private:
  std::map<std::string, std::vector<ErrorRange>> ranges_;
};

uint32_t FlagOf(int code) {
  static constexpr uint32_t kFlags[] = {0, kInvalid, kDivByZero, kOverflow, kUnderflow};
  return kFlags[code];
}

TEST_P(ErrorPromises, EverySpecialElementIsReportedOnceAndNothingElse) {
  for (const Arguments& arguments : EveryKind(entry(), 51, 5000)) {
    const Outcome outcome = CallEntry(entry(), arguments, kDefaultControl);
    size_t next = 0;
    int last = 0;
    for (size_t i = 0; i < arguments.size(); ++i) {
      const int code = Code(arguments, i);
      const bool reported =
          next < outcome.records.size() && outcome.records[next].index == static_cast<int>(i);
      const int got = reported ? outcome.records[next].code : 0;
      ASSERT_EQ(got, code) << "element " << i << ", argument "
                           << testing::PrintToString(arguments.a.value(i));
      if (code == 0) continue;
      last = code;
      const PexErrorContext& record = outcome.records[next++];
      EXPECT_TRUE(record.arg1 == arguments.a.value(i) || IsNaN(arguments.a, i));
      const Numbers& second = outcome.r2.size() > 0 ? outcome.r2 : outcome.r1;
      EXPECT_TRUE(record.res1 == outcome.r1.value(i) || IsNaN(outcome.r1, i));
      EXPECT_TRUE(record.res2 == second.value(i) || IsNaN(second, i));
      const std::string name =
          std::string("v") + entry().type + ReportingFunction(entry(), Second(arguments, i));
      EXPECT_EQ(record.func_name, name);
    }
    EXPECT_EQ(next, outcome.records.size()) << "a record out of order, or twice";
    EXPECT_EQ(outcome.status, last);
  }
}

// Of functions that report neither overflow nor underflow: the flags that the result explains. A
// division or a root of two squares is the processor's operation, with its flags; the angle of a
// point next to the axis is the quotient, and the inverse error function of a tiny x is 0.886 x.
uint32_t Explained(const pex::Entry& entry, const Arguments& arguments) {
  static const std::set<std::string_view> kSilent = {"Inv",    "Div",   "Hypot",
                                                     "Pow3o2", "Atan2", "ErfInv"};
  if (!kSilent.contains(entry.function->name)) return 0;
  const Outcome outcome = CallEntry(entry, arguments, kDefaultControl);
  const double r = std::fabs(outcome.r1.value(0));
  if (std::isinf(r) && std::isfinite(arguments.a.value(0))) return kOverflow;
  if (r < (entry.is_double() ? 0x1p-1022 : 0x1p-126)) return kUnderflow;
  if (std::isnan(r) && std::isinf(arguments.a.value(0))) return kInvalid;  // inf / inf
  return 0;
}

TEST_P(ErrorPromises, OrdinaryElementsRaiseNothingButInexact) {
  if (FollowsTheCaller(entry())) GTEST_SKIP() << "the hardware's operation, with its flags";
  for (size_t n = 1; n <= 70; ++n) {
    Arguments ordinary = Ordinary(entry(), n, n);
    const uint32_t flags = Flags(ordinary, PEX_ERRMODE_IGNORE);
    ASSERT_EQ(flags & ~kInexact, 0u) << "n " << n;
  }
  // One by one, so that the argument can be named: all magnitudes, infinities and quiet NaNs.
  size_t faults = 0;
  for (const Arguments& arguments : EveryKind(entry(), 52, 2000)) {
    for (size_t i = 0; i < arguments.size(); ++i) {
      if (Code(arguments, i) != 0 || Signalling(arguments, i)) continue;
      // Round takes the difference of an infinity from itself.
      if (entry().function->name == "Round" && std::isinf(arguments.a.value(i))) continue;
      const uint32_t stray = Flags(One(arguments, i), PEX_ERRMODE_IGNORE) & ~(kInexact | kDenormal);
      if ((stray & ~Explained(entry(), One(arguments, i))) == 0) continue;
      ADD_FAILURE() << "flags " << stray << " at " << testing::PrintToString(arguments.a.value(i));
      if (++faults == 5) return;
    }
  }
}

// What a formula adds to keep products of tiny numbers from underflow may itself leave something
// tiny of a number next to a power of two, and so may a table whose breakpoints such numbers are.
TEST_P(ErrorPromises, NumbersNextToPowersOfTwoRaiseNothingButInexact) {
  if (FollowsTheCaller(entry())) GTEST_SKIP() << "the hardware's operation, with its flags";
  if (ArgumentCount(entry().function->shape) != 1) GTEST_SKIP() << "takes two arguments";
  const bool is_double = entry().is_double();
  const int fraction_bits = is_double ? 52 : 23;
  const uint64_t exponents = is_double ? 0x7FF : 0xFF, sign = uint64_t{1} << (is_double ? 63 : 31);
  std::vector<uint64_t> fine;
  for (uint64_t e = 0; e < exponents; ++e) {
    for (uint64_t bits = (e << fraction_bits) - 8; bits != (e << fraction_bits) + 9; ++bits) {
      for (const uint64_t x : {bits, bits | sign}) {
        Arguments one{Numbers(is_double, 1), {}};
        one.a.set_bits(0, x);
        if (bits < sign && Code(one, 0) == 0) fine.push_back(x);
      }
    }
  }
  constexpr size_t kBlock = 64;
  size_t faults = 0;
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    for (size_t begin = 0; begin < fine.size(); begin += kBlock) {
      Arguments block{Numbers(is_double, std::min(kBlock, fine.size() - begin)), {}};
      for (size_t i = 0; i < block.size(); ++i) block.a.set_bits(i, fine[begin + i]);
      constexpr uint32_t kAllowed = kInexact | kDenormal;
      if ((Flags(block, PEX_ERRMODE_IGNORE) & ~kAllowed) == 0) continue;
      for (size_t i = 0; i < block.size(); ++i) {
        const Arguments one = One(block, i);
        const uint32_t stray = Flags(one, PEX_ERRMODE_IGNORE) & ~kAllowed;
        if ((stray & ~Explained(entry(), one)) == 0) continue;
        ADD_FAILURE() << level.name << ": flags " << stray << " at "
                      << testing::PrintToString(one.a.value(0));
        if (++faults == 5) return;
      }
    }
  }
}

TEST_P(ErrorPromises, SpecialElementsRaiseTheirFlagAndNoOther) {
  if (FollowsTheCaller(entry())) GTEST_SKIP() << "the hardware's operation, with its flags";
  Random random(53);
  for (const Arguments& arguments : EveryKind(entry(), 53, 300)) {
    for (size_t i = 0; i < arguments.size(); ++i) {
      const int code = Code(arguments, i);
      if (code == 0 || Signalling(arguments, i)) continue;
      // Among ordinary neighbours, at any place.
      const size_t n = 1 + random.Below(33);
      const size_t at = random.Below(static_cast<uint32_t>(n));
      Arguments mixed = Ordinary(entry(), i, n);
      mixed.a.set_bits(at, arguments.a.bits(i));
      if (mixed.b.size() == 1 && n > 1) continue;  // the scalar would go with all of them
      if (mixed.b.size() > 0)
        mixed.b.set_bits(at, arguments.b.bits(arguments.b.size() == 1 ? 0 : i));
      const uint32_t allowed = FlagOf(code) | kInexact | kDenormal;
      const uint32_t ignored = Flags(mixed, PEX_ERRMODE_IGNORE);
      ASSERT_EQ(ignored & ~allowed, 0u)
          << "code " << code << " at " << testing::PrintToString(arguments.a.value(i));
      const uint32_t raised = Flags(mixed, PEX_ERRMODE_EXCEPT);
      ASSERT_EQ(raised & ~allowed, 0u);
      if (code != PEX_STATUS_OVERFLOW) {  // which the error mode leaves to the kernel
        ASSERT_TRUE(raised & FlagOf(code)) << testing::PrintToString(arguments.a.value(i));
      }
    }
  }
}

std::vector<size_t> Indices() {
  std::vector<size_t> all(pex::Entries().size());
  for (size_t i = 0; i < all.size(); ++i) all[i] = i;
  return all;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, ErrorPromises, testing::ValuesIn(Indices()),
                         [](const auto& info) { return EntryName(pex::Entries()[info.param]); });

}  // namespace
