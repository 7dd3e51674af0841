// The measurer finds what is wrong, and where.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <fstream>

#include "accuracy/exhaustive.h"
#include "fake_entry.h"

namespace pex::accuracy {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

Settings Few() {
  Settings settings;
  settings.count = 20'000;
  settings.jobs = 2;
  settings.worst_cases = PEXQUO_ACCURACY_DIR "/worst";
  return settings;
}

double GoodExp(double x) { return static_cast<double>(::expl(x)); }
float GoodExpSingle(float x) { return static_cast<float>(::exp(static_cast<double>(x))); }

const Worst& WorstOf(const EntryResult& result, const std::string& regime) {
  return std::ranges::find(result.regimes, regime, &RegimeResult::name)->worst;
}

TEST(Measurer, PassesAGoodFunction) {
  const auto entry = FakeEntry<double>("Exp", Tier::HA, [](double x) { return GoodExp(x); });
  const EntryResult result = Measure(entry, OracleOf(*entry.function), Few());
  EXPECT_TRUE(result.within_bound()) << result.worst().worst.error;
  EXPECT_GT(result.worst().worst.error, 0.49);
  EXPECT_LT(result.worst().worst.error, 0.501);  // 64-bit significands, rounded twice
  const auto single = FakeEntry<float>("Exp", Tier::HA, [](float x) { return GoodExpSingle(x); });
  EXPECT_TRUE(Measure(single, OracleOf(*single.function), Few()).within_bound());
}

TEST(Measurer, FindsAUnitTooMuch) {
  const auto entry = FakeEntry<double>("Exp", Tier::HA, [](double x) {
    return x > 10 ? std::nextafter(GoodExp(x), 1e300) : GoodExp(x);
  });
  const EntryResult result = Measure(entry, OracleOf(*entry.function), Few());
  EXPECT_FALSE(result.within_bound());
  const Worst& worst = WorstOf(result, "typical");
  EXPECT_NEAR(worst.error, 1.5, 0.001);
  EXPECT_GT(worst.a, 10);
  EXPECT_GT(worst.got, worst.wanted);
}

// One wrong result beside a mark, and the wrong side of a threshold, are found by visiting marks.
TEST(Measurer, FindsOneFaultBesideAMark) {
  const auto entry = FakeEntry<double>("Exp", Tier::LA, [](double x) {
    return x == 0x1.62e42fefa39ecp+9 ? 1.0 : GoodExp(x);  // three below the overflow threshold
  });
  const EntryResult result = Measure(entry, OracleOf(*entry.function), Few());
  EXPECT_EQ(WorstOf(result, "marks").a, 0x1.62e42fefa39ecp+9);
  EXPECT_GT(WorstOf(result, "marks").error, 1e6);

  const auto early = FakeEntry<double>(
      "Exp", Tier::EP, [](double x) { return x >= 0x1.62e42fefa39efp+9 ? kInf : GoodExp(x); });
  const EntryResult overflow = Measure(early, OracleOf(*early.function), Few());
  EXPECT_EQ(WorstOf(overflow, "marks").error, kInf);
  EXPECT_EQ(WorstOf(overflow, "marks").a, 0x1.62e42fefa39efp+9);
  EXPECT_LT(WorstOf(overflow, "typical").error, 1);
}

TEST(Measurer, FindsLostSignsAndFlushedResults) {
  const auto sign = FakeEntry<double>(
      "Expm1", Tier::EP, [](double x) { return x == 0 ? 0.0 : static_cast<double>(::expm1l(x)); });
  const EntryResult lost = Measure(sign, OracleOf(*sign.function), Few());
  EXPECT_EQ(WorstOf(lost, "zeros-ones").error, kInf);
  EXPECT_TRUE(std::signbit(WorstOf(lost, "zeros-ones").a));

  const auto flush = FakeEntry<double>(
      "Exp", Tier::EP, [](double x) { return GoodExp(x) < 0x1p-1022 ? 0.0 : GoodExp(x); });
  const EntryResult flushed = Measure(flush, OracleOf(*flush.function), Few());
  EXPECT_FALSE(flushed.within_bound());
  EXPECT_GT(WorstOf(flushed, "subnormals").ulp, 0x1p50);
  EXPECT_LT(WorstOf(flushed, "typical").ulp, 1);
}

TEST(Measurer, EPIsMeasuredRelatively) {
  const auto entry =
      FakeEntry<double>("Exp", Tier::EP, [](double x) { return GoodExp(x) * (1 + 0x1p-25); });
  const EntryResult result = Measure(entry, OracleOf(*entry.function), Few());
  EXPECT_FALSE(result.within_bound());
  EXPECT_NEAR(CorrectBits(WorstOf(result, "typical").error, kDouble), 25, 1e-6);
}

// An error that grows to more than 5 ulp towards one point, from 0.006 on either side.
TEST(Measurer, SearchNarrowsDownToAPeak) {
  const auto entry = FakeEntry<double>("Exp", Tier::LA, [](double x) {
    const double nearness = std::max(0.0, 1 - std::fabs(x - 1.2345) / 0.006);
    return GoodExp(x) * (1 + 3 * nearness * 0x1p-52);
  });
  Settings settings = Few();
  settings.search = 200'000;
  const EntryResult result = Measure(entry, OracleOf(*entry.function), settings);
  EXPECT_NEAR(WorstOf(result, "search").a, 1.2345, 0.001);
  EXPECT_GT(WorstOf(result, "search").error, 5.5);
  settings.search = 0;
  EXPECT_LT(Measure(entry, OracleOf(*entry.function), settings).worst().worst.error, 5.5);
}

TEST(Measurer, ThreadsDoNotChangeTheResult) {
  const auto entry =
      FakeEntry<double>("Exp", Tier::LA, [](double x) { return ::exp(x * (1 + 0x1p-53)); });
  Settings settings = Few();
  const EntryResult two = Measure(entry, OracleOf(*entry.function), settings);
  settings.jobs = 1;
  const EntryResult one = Measure(entry, OracleOf(*entry.function), settings);
  settings.seed = 2;
  const EntryResult other = Measure(entry, OracleOf(*entry.function), settings);
  ASSERT_EQ(one.regimes.size(), two.regimes.size());
  for (size_t i = 0; i < one.regimes.size(); ++i) {
    EXPECT_EQ(one.regimes[i].worst.a, two.regimes[i].worst.a) << one.regimes[i].name;
    EXPECT_EQ(one.regimes[i].worst.error, two.regimes[i].worst.error);
  }
  EXPECT_NE(one.regimes[0].worst.a, other.regimes[0].worst.a);
}

TEST(Measurer, EveryTieredFunctionHasAnOracle) {
  for (const Function& f : Functions()) {
    if (f.tiered) {
      EXPECT_NO_THROW(OracleOf(f)) << f.name;
    }
  }
  for (const Oracle& oracle : Oracles()) {
    EXPECT_NE(FindFunction(oracle.function), nullptr) << oracle.function;
  }
  EXPECT_THROW(OracleOf(Function{.name = "Unknown"}), std::runtime_error);
}

// The quick references are as good as the measurer takes them to be.
TEST(Measurer, QuickReferencesKeepTheirBounds) {
  for (const Oracle& oracle : Oracles()) {
    const auto entry = FakeEntry<float>(oracle.function, Tier::HA, [](float x) { return x; });
    double extended = 0, quick = 0;
    for (const Regime& regime : RegimesOf(entry, oracle, 1'000, {})) {
      std::vector<double> a(regime.points);
      Random random(7);
      std::vector<double> b(regime.points);
      regime.fill(0, random, a);
      SecondArguments(entry, regime.name, random, a, b);
      for (size_t i = 0; i < a.size(); ++i) {
        const double x = a[i];
        Real in(53), second(53), exact(120), error(120);
        mpfr_set_d(in, x, MPFR_RNDN);
        mpfr_set_d(second, b[i], MPFR_RNDN);
        oracle.exact(0, exact, in, second);
        const long double y = oracle.extended(0, x, b[i]);
        const bool ordinary = std::fabs(y) > 1e-300L && std::fabs(y) < 1e300L;
        if (!mpfr_regular_p(exact) || !ordinary) continue;
        mpfr_set_ld(error, y, MPFR_RNDN);
        mpfr_reldiff(error, exact, error, MPFR_RNDN);
        extended = std::max(extended, std::fabs(mpfr_get_d(error, MPFR_RNDN)));
        if (oracle.quick == nullptr) continue;
        mpfr_set_d(error, oracle.quick(x), MPFR_RNDN);
        mpfr_reldiff(error, exact, error, MPFR_RNDN);
        quick = std::max(quick, std::fabs(mpfr_get_d(error, MPFR_RNDN)));
      }
    }
    EXPECT_LT(extended, kExtendedError / 2) << oracle.function;
    EXPECT_LT(quick, 0x1p-51) << oracle.function;
  }
}

TEST(Regimes, NeighboursCrossZeroAndBinades) {
  EXPECT_EQ(Neighbour(0.0, 1, false), 0x1p-1074);
  EXPECT_EQ(Neighbour(0.0, -2, false), -0x1p-1073);
  EXPECT_EQ(Neighbour(0x1p-1074, -2, false), -0x1p-1074);
  EXPECT_EQ(Neighbour(-0.0, 1, true), 0x1p-149);
  EXPECT_EQ(Neighbour(1.0, -1, true), 1 - 0x1p-24);
  EXPECT_EQ(Neighbour(-1.0, 1, false), -1 + 0x1p-53);
  EXPECT_EQ(Neighbour(1e308, int64_t{1} << 60, false), kInf);
}

TEST(Regimes, RecordsAreReadAndExtended) {
  const auto file = std::filesystem::path(testing::TempDir()) / "pexquo_record.txt";
  std::ofstream(file) << "# hard\n0x1.8p+1  # three\n\n  -0x1p-3\n";
  EXPECT_EQ(ReadRecord(file), (std::vector<double>{3, -0.125}));
  EXPECT_EQ(AppendRecord(file, "found", {3, 5, 5, kInf}), 1);
  EXPECT_EQ(AppendRecord(file, "found", {5}), 0);
  EXPECT_EQ(ReadRecord(file), (std::vector<double>{3, -0.125, 5}));
  std::ofstream(file) << "0x1p0\nabc\n";
  try {
    ReadRecord(file);
    FAIL() << "a malformed record was read";
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("txt:2:"), std::string::npos) << e.what();
  }
  std::filesystem::remove(file);
}

TEST(Exhaustive, CountsWrongRoundings) {
  constexpr uint64_t kFirst = 0x3F000000, kInputs = uint64_t{1} << 21;  // from 0.5
  const auto good = FakeEntry<float>("Exp", Tier::HA, [](float x) { return GoodExpSingle(x); });
  const auto bad = FakeEntry<float>("Exp", Tier::HA, [](float x) {
    const float y = GoodExpSingle(x);
    return (std::bit_cast<uint32_t>(x) & 0xFFFF) == 0x1234 ? std::nextafter(y, 9.0f) : y;
  });
  const auto results = Exhaust({&good, &bad}, OracleOf(*good.function), 2, {}, kFirst, kInputs);
  EXPECT_EQ(results[0].wrong, 0u);
  EXPECT_LE(results[0].worst.error, 0.5);
  EXPECT_GT(results[0].worst.error, 0.4999);
  EXPECT_EQ(results[1].wrong, kInputs >> 16);
  EXPECT_GT(results[1].worst.error, 1);
  EXPECT_EQ(std::bit_cast<uint32_t>(static_cast<float>(results[1].worst.a)) & 0xFFFF, 0x1234u);
}

// A near-tie that the double reference rounds to the wrong side is decided by MPFR.
TEST(Exhaustive, DecidesDoubtfulRoundings) {
  Oracle shifted = OracleOf(*FindFunction("Exp"));
  shifted.quick = [](double x) { return ::exp(x) * (1 + 0x1p-42); };
  const auto good = FakeEntry<float>("Exp", Tier::HA, [](float x) { return GoodExpSingle(x); });
  const auto results = Exhaust({&good}, shifted, 2, {}, 0x3F000000, uint64_t{1} << 22);
  EXPECT_EQ(results[0].wrong, 0u);
  EXPECT_GT(results[0].decided, 0u);
}

TEST(Exhaustive, SpecialValuesCount) {
  // Infinities, NaNs and the overflow threshold: exponent patterns 0x42800000 up.
  const auto bad = FakeEntry<float>("Exp", Tier::LA, [](float x) {
    return std::isinf(x) ? std::numeric_limits<float>::max() : GoodExpSingle(x);
  });
  const auto results =
      Exhaust({&bad}, OracleOf(*bad.function), 1, {}, 0x7F700000, uint64_t{1} << 21);
  EXPECT_EQ(results[0].wrong, 1u);
  EXPECT_EQ(results[0].worst.error, kInf);
  EXPECT_EQ(results[0].worst.a, kInf);
}

// e^x at 2^-24 is 1 + 2^-24 + 2^-49 and a little: 2^-26 ulp past the middle of 1 and its neighbour.
TEST(Exhaustive, FindsHardCases) {
  const auto cases =
      HardestSingles(OracleOf(*FindFunction("Exp")), 3, 2, {}, 0x33800000, uint64_t{1} << 23);
  ASSERT_FALSE(cases.empty());
  const auto at = std::ranges::find(cases, 0x1p-24, &HardCase::a);
  ASSERT_NE(at, cases.end());
  EXPECT_NEAR(at->distance, 0x1p-26, 0x1p-46);
  EXPECT_TRUE(std::ranges::is_sorted(cases, {}, &HardCase::distance));
}

// A fault of one unit where the second argument's last bits say so, in all regimes alike.
int FaultyHypot(int32_t n, const float* a, const float* b, float* r) {
  for (int32_t i = 0; i < n; ++i) {
    r[i] = static_cast<float>(::hypot(double{a[i]}, double{b[i]}));
    if ((std::bit_cast<uint32_t>(b[i]) & 0xFFF) == 0x123) r[i] = std::nextafter(r[i], 9e9f);
  }
  return 0;
}

TEST(Exhaustive, CountsWrongRoundingsOfPairs) {
  constexpr uint64_t kPairs = uint64_t{1} << 22;
  Entry faulty = *FindEntry("_pexsHypot_HA");
  faulty.address = reinterpret_cast<const void*>(&FaultyHypot);
  const Oracle& oracle = OracleOf(*faulty.function);
  const auto once = ExhaustPairs({&faulty}, oracle, 2, kPairs - 5, 7)[0];
  const auto again = ExhaustPairs({&faulty}, oracle, 1, kPairs, 7)[0];
  const auto other = ExhaustPairs({&faulty}, oracle, 2, kPairs, 8)[0];
  EXPECT_EQ(once.inputs, kPairs);
  EXPECT_EQ(once.wrong, again.wrong);
  EXPECT_NE(once.wrong, other.wrong);
  // Of 4096 patterns of the last bits about one is hit; many pairs have a round second argument.
  EXPECT_GT(once.wrong, kPairs / 4096 / 4);
  EXPECT_LT(once.wrong, kPairs / 4096 * 2);
  EXPECT_GT(once.worst.error, 1);
  EXPECT_EQ(std::bit_cast<uint32_t>(static_cast<float>(once.worst.b)) & 0xFFF, 0x123u);
  EXPECT_THROW(ExhaustPairs({&faulty}, OracleOf(*FindFunction("Exp")), 1, 1, 1),
               std::runtime_error);
}

TEST(Exhaustive, RecordsMerge) {
  const auto file = std::filesystem::path(testing::TempDir()) / "pexquo_records" / "exhaustive.tsv";
  std::filesystem::remove_all(file.parent_path());
  EXPECT_TRUE(ReadExhaustive(file).empty());
  MergeExhaustive(file, {{"_pexsB", 8, 1, 0.75, 23, 1, 2, 3, "2026-01-01"}});
  MergeExhaustive(file, {{"_pexsA", 8, 0, 0.5, 24, -kInf, 0, 0, "2026-01-02"},
                         {"_pexsB", 9, 2, kInf, 11.5, 0x1p-149, 0, 1, "2026-01-03"},
                         {"_pexsC", 9, 2, 0.5, 24, 0x1p-149, 0, 1, "2026-01-03", -kInf}});
  const auto records = ReadExhaustive(file);
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(records[2].a, 0x1p-149);
  EXPECT_EQ(records[2].b, -kInf);
  EXPECT_EQ(records[1].b, std::nullopt);
  EXPECT_EQ(records[0].symbol, "_pexsA");
  EXPECT_EQ(records[0].a, -kInf);
  EXPECT_EQ(records[1].inputs, 9u);
  EXPECT_EQ(records[1].ulp, kInf);
  EXPECT_EQ(records[1].a, 0x1p-149);
  EXPECT_EQ(records[1].date, "2026-01-03");
  std::filesystem::remove_all(file.parent_path());
}

}  // namespace
}  // namespace pex::accuracy
