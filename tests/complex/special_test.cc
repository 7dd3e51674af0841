// Special values of the complex arithmetic case by case, and what a call leaves behind: flags,
// status, errno.
#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"
#include "pexquo/pex.h"
#include "tests/support/control.h"
#include "tests/support/levels.h"
#include "tests/support/random.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kTiny = 0x1p-1074, kPi = 3.141592653589793;
constexpr uint32_t kAnyFlags = 0x100;  // not looked at

struct Number {
  double re = 0, im = 0;
};

struct Outcome {
  Number r;
  uint32_t flags;  // without inexact and denormal
};

// One element; for several the vector paths are taken: it stands among ordinary ones.
template <typename T>
Outcome CallAs(const pex::Entry& entry, Number a, Number b, int n, int place) {
  const int in = entry.argument_parts(), out = entry.result_parts();
  std::vector<T> x(n * in, T(1)), y(n * in, T(1)), r(n * 2);
  const auto put = [&](std::vector<T>& list, Number v) {
    list[place * in] = static_cast<T>(v.re);
    if (in == 2) list[place * in + 1] = static_cast<T>(v.im);
  };
  put(x, a);
  put(y, b);
  UseControl scope(kDefaultControl);
  entry.Call(n, x.data(), y.data(), r.data(), nullptr);
  scope.Finish();
  EXPECT_TRUE(scope.kept());
  return {{r[place * out], out == 2 ? r[place * out + 1] : T(0)},
          (scope.flags() | scope.x87_flags()) & ~uint32_t{kInexact | kDenormal}};
}

std::string Text(Number x) {
  char text[80];
  std::snprintf(text, sizeof(text), "(%a, %a)", x.re, x.im);
  return text;
}

// NaNs are alike; a sign of NaN is looked at where the case says so.
bool Same(double x, double y, bool nan_signs) {
  if (std::isnan(x) && std::isnan(y)) return !nan_signs || std::signbit(x) == std::signbit(y);
  return std::bit_cast<uint64_t>(x) == std::bit_cast<uint64_t>(y);
}

struct Case {
  const char* entries;  // symbols, separated by blanks
  Number a, b, r;
  uint32_t flags = 0;
  bool nan_signs = false;
};

void Expect(const Case& c) {
  std::string symbols = c.entries;
  for (size_t start = 0; start < symbols.size();) {
    const size_t end = std::min(symbols.find(' ', start), symbols.size());
    const std::string symbol = symbols.substr(start, end - start);
    start = end + 1;
    const pex::Entry* entry = pex::FindEntry(symbol);
    ASSERT_NE(entry, nullptr) << symbol;
    for (const Level& level : kLevels) {
      if (!ProcessorHas(level)) continue;
      const UseLevel use(level);
      for (const auto& [n, place] : {std::pair{1, 0}, {3, 2}, {70, 13}, {200, 5}}) {
        const Outcome got = entry->is_double() ? CallAs<double>(*entry, c.a, c.b, n, place)
                                               : CallAs<float>(*entry, c.a, c.b, n, place);
        EXPECT_TRUE(Same(got.r.re, c.r.re, c.nan_signs) && Same(got.r.im, c.r.im, c.nan_signs))
            << symbol << " of " << Text(c.a) << ", " << Text(c.b) << " at " << place << " of " << n
            << " on " << level.name << ": " << Text(got.r) << " for " << Text(c.r);
        if (c.flags != kAnyFlags) {
          EXPECT_EQ(got.flags, c.flags) << symbol << " of " << Text(c.a) << ", " << Text(c.b)
                                        << " at " << place << " of " << n << " on " << level.name;
        }
      }
    }
  }
}

#define ALL_C(name) "_pexc" name "_11 _pexc" name "_21 _pexc" name "_HA"
#define ALL_Z(name) "_pexz" name "_26 _pexz" name "_50 _pexz" name "_HA"
#define EXACT_Z(name) "_pexz" name "_50 _pexz" name "_HA"
#define EVERY(name) ALL_C(name) " " ALL_Z(name)

TEST(Special, Abs) {
  const Case cases[] = {
      {EVERY("Abs"), {3, 4}, {}, {5}},
      {EVERY("Abs"), {-4, 3}, {}, {5}},
      {EVERY("Abs"), {0, 0}, {}, {0}},
      {EVERY("Abs"), {-0.0, -0.0}, {}, {0}},
      {EVERY("Abs"), {-0.0, -7.5}, {}, {7.5}},
      {EVERY("Abs"), {7.5, -0.0}, {}, {7.5}},
      {EVERY("Abs"), {kInf, kNaN}, {}, {kInf}},
      {EVERY("Abs"), {kNaN, -kInf}, {}, {kInf}},
      {EVERY("Abs"), {-kInf, 1}, {}, {kInf}},
      {EVERY("Abs"), {-kInf, FLT_MAX}, {}, {kInf}},
      {ALL_Z("Abs"), {DBL_MAX, kInf}, {}, {kInf}},
      // The NaN's sign: kept in double, cleared in single; of two the imaginary part's.
      {ALL_C("Abs"), {-kNaN, 1}, {}, {kNaN}, 0, true},
      {ALL_C("Abs"), {1, -kNaN}, {}, {kNaN}, 0, true},
      {ALL_Z("Abs"), {-kNaN, 1}, {}, {-kNaN}, 0, true},
      {ALL_Z("Abs"), {kNaN, 1}, {}, {kNaN}, 0, true},
      {ALL_Z("Abs"), {0, -kNaN}, {}, {-kNaN}, 0, true},
      {ALL_Z("Abs"), {kNaN, -kNaN}, {}, {-kNaN}, 0, true},
      {ALL_Z("Abs"), {-kNaN, kNaN}, {}, {kNaN}, 0, true},
      // Subnormal and large numbers.
      {ALL_Z("Abs"), {0, kTiny}, {}, {kTiny}},
      {ALL_Z("Abs"), {3 * kTiny, -4 * kTiny}, {}, {5 * kTiny}},
      {ALL_Z("Abs"), {3 * 0x1p-600, 4 * 0x1p-600}, {}, {5 * 0x1p-600}},
      {ALL_Z("Abs"), {3 * 0x1p1020, 4 * 0x1p1020}, {}, {5 * 0x1p1020}},
      {ALL_Z("Abs"), {DBL_MAX, DBL_MAX}, {}, {kInf}, kOverflow},
      {ALL_Z("Abs"), {DBL_MAX, 1}, {}, {DBL_MAX}},
      {ALL_Z("Abs"), {1, kTiny}, {}, {1}},
      {ALL_C("Abs"), {0, 0x1p-149}, {}, {0x1p-149}},
      {ALL_C("Abs"), {3 * 0x1p-149, 4 * 0x1p-149}, {}, {5 * 0x1p-149}},
      {ALL_C("Abs"), {3 * 0x1p100, -4 * 0x1p100}, {}, {5 * 0x1p100}},
      {ALL_C("Abs"), {FLT_MAX, FLT_MAX}, {}, {kInf}, kOverflow},
      {ALL_C("Abs"), {FLT_MAX, 0x1p-149}, {}, {FLT_MAX}},
  };
  for (const Case& c : cases) Expect(c);
}

// A signalling NaN in single precision among ordinary numbers: the invalid flag, and no sign.
TEST(Special, AbsOfSignallingNaN) {
  constexpr float kFloatInf = std::numeric_limits<float>::infinity();
  constexpr uint32_t kSign = 0x80000000, kSignalling = 0x7F800001, kQuieted = 0x7FC00001;
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    for (const uint32_t bits : {kSignalling, kSignalling | kSign}) {
      for (const float other : {1.0f, -1.0f, kFloatInf, -kFloatInf}) {
        for (const bool swapped : {false, true}) {
          for (const size_t place : {0, 40, 99}) {
            const auto nan = std::bit_cast<float>(bits);
            std::vector<PexComplex8> x(100, {3, 4});
            std::vector<float> r(x.size());
            x[place] = swapped ? PexComplex8{other, nan} : PexComplex8{nan, other};
            UseControl scope(kDefaultControl);
            _pexcAbs_HA(static_cast<int32_t>(x.size()), x.data(), r.data());
            scope.Finish();
            SCOPED_TRACE(testing::Message() << level.name << ", " << std::hex << bits << " and "
                                            << other << " at " << std::dec << place);
            EXPECT_EQ(std::bit_cast<uint32_t>(r[place]),
                      std::bit_cast<uint32_t>(std::isinf(other) ? kFloatInf
                                                                : std::bit_cast<float>(kQuieted)));
            EXPECT_EQ(scope.flags() & ~uint32_t{kInexact | kDenormal}, kInvalid);
          }
        }
      }
    }
  }
}

TEST(Special, Arg) {
  const Case cases[] = {
      {EVERY("Arg"), {0, 0}, {}, {0}},
      {EVERY("Arg"), {2, 0}, {}, {0}},
      {EVERY("Arg"), {2, -0.0}, {}, {-0.0}},
      {EVERY("Arg"), {kInf, -5}, {}, {-0.0}},
      {EVERY("Arg"), {kNaN, 1}, {}, {kNaN}},
      {EVERY("Arg"), {1, kNaN}, {}, {kNaN}},
      {EVERY("Arg"), {kInf, kNaN}, {}, {kNaN}},
      {ALL_Z("Arg"), {0, -0.0}, {}, {-0.0}},
      {ALL_Z("Arg"), {-0.0, 0}, {}, {kPi}},
      {ALL_Z("Arg"), {-0.0, -0.0}, {}, {-kPi}},
      {ALL_Z("Arg"), {-3, 0}, {}, {kPi}},
      {ALL_Z("Arg"), {-3, -0.0}, {}, {-kPi}},
      {ALL_Z("Arg"), {-kInf, 5}, {}, {kPi}},
      {ALL_Z("Arg"), {0, 5}, {}, {kPi / 2}},
      {ALL_Z("Arg"), {-0.0, -5}, {}, {-kPi / 2}},
      {ALL_Z("Arg"), {5, -kInf}, {}, {-kPi / 2}},
      {ALL_Z("Arg"), {kInf, kInf}, {}, {kPi / 4}},
      {ALL_Z("Arg"), {-kInf, -kInf}, {}, {-3 * kPi / 4}},
      {EXACT_Z("Arg"), {kTiny, kTiny}, {}, {kPi / 4}},
      {EXACT_Z("Arg"), {DBL_MAX, kTiny}, {}, {0}, kUnderflow},
      {ALL_C("Arg"), {-3, 0}, {}, {static_cast<float>(kPi)}},
      {ALL_C("Arg"), {0, -3}, {}, {-static_cast<float>(kPi / 2)}},
  };
  for (const Case& c : cases) Expect(c);
}

TEST(Special, CIS) {
  const Case cases[] = {
      {EVERY("CIS"), {0}, {}, {1, 0}},
      {EVERY("CIS"), {-0.0}, {}, {1, -0.0}},
      {EVERY("CIS"), {kInf}, {}, {kNaN, kNaN}, kInvalid},
      {EVERY("CIS"), {-kInf}, {}, {kNaN, kNaN}, kInvalid},
      {EVERY("CIS"), {kNaN}, {}, {kNaN, kNaN}},
      {ALL_Z("CIS"), {kTiny}, {}, {1, kTiny}},
      {ALL_Z("CIS"), {-0x1p-1030}, {}, {1, -0x1p-1030}},
      {ALL_C("CIS"), {-0x1p-149}, {}, {1, -0x1p-149}},
  };
  for (const Case& c : cases) Expect(c);
  // Beyond the ranges of the main paths.
  for (const double x : {10000.0, 10000.5, 90112.0, 1e6, 0x1p60, -0x1p100}) {
    for (const char* symbol : {"_pexcCIS_HA", "_pexzCIS_HA"}) {
      const pex::Entry& entry = *pex::FindEntry(symbol);
      const double value = entry.is_double() ? x : static_cast<float>(x);
      const Number r = entry.is_double() ? CallAs<double>(entry, {x}, {}, 9, 4).r
                                         : CallAs<float>(entry, {x}, {}, 9, 4).r;
      const double unit = entry.is_double() ? 0x1p-52 : 0x1p-23;
      EXPECT_NEAR(r.re, std::cos(value), unit) << symbol << " " << x;
      EXPECT_NEAR(r.im, std::sin(value), unit) << symbol << " " << x;
    }
  }
}

TEST(Special, ProductsAndQuotients) {
  const double big = 1e20, fine = 1 + 0x1p-30, below = 1 - 0x1p-30;
  const Case cases[] = {
      {EVERY("Mul"), {1, 2}, {3, -4}, {11, 2}},
      {EVERY("MulByConj"), {1, 2}, {3, -4}, {-5, 10}},
      {EVERY("Div"), {11, 2}, {1, 1}, {6.5, -4.5}},
      {EVERY("Mul"), {2, 0}, {3, 0}, {6, 0}},
      {EVERY("Mul"), {-0.0, 0}, {3, 0}, {-0.0, 0}},
      {EVERY("MulByConj"), {5, 7}, {5, 7}, {74, 0}},
      // What is prescribed for infinities: no recovery.
      {EVERY("Mul"), {kInf, 1}, {1, 0}, {kInf, kNaN}, kInvalid},
      {EVERY("Mul"), {kNaN, 1}, {1, 1}, {kNaN, kNaN}},
      {EVERY("MulByConj"), {1, 1}, {1, kNaN}, {kNaN, kNaN}},
      {EVERY("Div"), {0, 0}, {0, 0}, {kNaN, kNaN}, kInvalid | kDivByZero},
      {EVERY("Div"), {1, 1}, {0, -0.0}, {kNaN, kNaN}, kInvalid | kDivByZero},
      {EVERY("Div"), {1, kNaN}, {1, 1}, {kNaN, kNaN}},
      {EVERY("Div"), {-6, 0}, {2, 0}, {-3, 0}},
      // No scaling in the fast entries.
      {"_pexcDiv_11", {big, big}, {big, big}, {kNaN, kNaN}, kInvalid | kOverflow},
      {"_pexcDiv_11", {1, 1}, {big, big}, {0, 0}, kOverflow},
      {"_pexcDiv_21 _pexcDiv_HA", {big, big}, {big, big}, {1, 0}},
      {"_pexcDiv_21 _pexcDiv_HA", {1, 1}, {0x1p100, 0x1p100}, {0x1p-100, 0}},
      {"_pexzDiv_26", {1, 1}, {0x1p600, 0x1p600}, {0, 0}, kOverflow},
      {EXACT_Z("Div"), {1, 1}, {0x1p600, 0x1p600}, {0x1p-600, 0}},
      {EXACT_Z("Div"), {DBL_MAX, DBL_MAX}, {DBL_MAX, DBL_MAX}, {1, 0}},
      {EXACT_Z("Div"), {kTiny, -kTiny}, {kTiny, -kTiny}, {1, 0}},
      {EXACT_Z("Div"), {0, 0x1p-256}, {0x1p256, 0x1p-256}, {0x1p-1024, 0x1p-512}, kUnderflow},
      {EXACT_Z("Div"), {0x1p-1000, 0}, {0x1p1000, 0}, {0, 0}, kUnderflow},
      {EXACT_Z("Mul"),
       {0x1p1000, 0x1p-1000},
       {0x1p-1000, 0x1p1000},
       {0, 0x1p1000 * 0x1p1000},
       kOverflow},
      {EXACT_Z("Mul"), {DBL_MAX, DBL_MAX}, {1, 1}, {0, kInf}, kOverflow},
      {EXACT_Z("Mul"), {0x1p-1000, 0x1p-1000}, {0x1p900, 0x1p900}, {0, 0x1p-99}},
      {EXACT_Z("Mul"), {kTiny, 0}, {0.5, 0}, {0, 0}, kUnderflow},
      // Cancellation: the real part is -2^-60.
      {EXACT_Z("Mul"), {fine, 1}, {below, 1}, {-0x1p-60, 2}},
      {"_pexzMul_26", {fine, 1}, {below, 1}, {0, 2}},
      {EXACT_Z("Mul"), {fine * 0x1p500, 0x1p500}, {below * 0x1p500, 0x1p500}, {-0x1p940, 0x1p1001}},
      {EXACT_Z("Mul"), {fine * 0x1p-500, 0x1p-500}, {below, 1}, {-0x1p-560, 0x1p-499}},
  };
  for (const Case& c : cases) Expect(c);
}

// The signs of zeros and of infinities, and what is NaN, are those of the plain formulas, without
// overflow or underflow on the way.
TEST(Special, ProductsAndQuotientsHaveTheSignsOfTheirFormulas) {
  constexpr double kParts[] = {0, -0.0, 1, 0x1p-600, -0x1p600, kInf, -kInf, kNaN};
  std::vector<double> a, b;
  for (const double ar : kParts) {
    for (const double ai : kParts) {
      for (const double br : kParts) {
        for (const double bi : kParts) {
          a.insert(a.end(), {ar, ai});
          b.insert(b.end(), {br, bi});
        }
      }
    }
  }
  const size_t n = a.size() / 2;
  for (const std::string name : {"Mul", "MulByConj", "Div"}) {
    for (const char* tier : {"_50", "_HA"}) {
      const pex::Entry& entry = *pex::FindEntry("_pexz" + name + tier);
      for (const Level& level : kLevels) {
        if (!ProcessorHas(level)) continue;
        const UseLevel use(level);
        std::vector<double> r(2 * n);
        entry.Call(static_cast<int32_t>(n), a.data(), b.data(), r.data(), nullptr);
        int faults = 0;
        for (size_t i = 0; i < n && faults < 5; ++i) {
          const long double ar = a[2 * i], ai = a[2 * i + 1], br = b[2 * i];
          const long double bi = name == "Mul" ? b[2 * i + 1] : -b[2 * i + 1];
          long double re = ar * br - ai * bi, im = ai * br + ar * bi;
          if (name == "Div") {
            const long double inverse = 1 / (br * br + bi * bi);
            re *= inverse;
            im *= inverse;
          }
          if (Same(r[2 * i], static_cast<double>(re), false) &&
              Same(r[2 * i + 1], static_cast<double>(im), false)) {
            continue;
          }
          ++faults;
          ADD_FAILURE() << entry.symbol << " on " << level.name << ": "
                        << Text({a[2 * i], a[2 * i + 1]}) << " and "
                        << Text({b[2 * i], b[2 * i + 1]}) << " give "
                        << Text({r[2 * i], r[2 * i + 1]});
        }
      }
    }
  }
}

TEST(Special, SumsAndConjugates) {
  const Case cases[] = {
      {"_pexcAdd _pexzAdd", {1, kInf}, {2, -kInf}, {3, kNaN}, kInvalid},
      {"_pexcAdd _pexzAdd", {-0.0, 1}, {-0.0, -1}, {-0.0, 0}},
      {"_pexcSub _pexzSub", {1, 5}, {2, 3}, {-1, 2}},
      {"_pexcConj _pexzConj", {1, kNaN}, {}, {1, -kNaN}, 0, true},
      {"_pexcConj _pexzConj", {1, -kNaN}, {}, {1, kNaN}, 0, true},
      {"_pexcConj _pexzConj", {-1, 0}, {}, {-1, -0.0}, 0, true},
      {"_pexcConj _pexzConj", {kNaN, -kInf}, {}, {kNaN, kInf}, 0, true},
  };
  for (const Case& c : cases) Expect(c);
}

// Signalling NaNs become quiet and raise invalid, except where only a sign bit moves.
TEST(Special, SignallingNaN) {
  const double signalling = std::bit_cast<double>(uint64_t{0x7FF0000000000123});
  for (const pex::Entry& entry : pex::ComplexEntries()) {
    if (!entry.is_double() || entry.function->group != "complex-arithmetic") continue;
    const bool conj = entry.function->name == "Conj";
    const Outcome got = CallAs<double>(entry, {signalling, 1}, {1, 1}, 5, 3);
    EXPECT_TRUE(std::isnan(got.r.re)) << entry.symbol;
    EXPECT_EQ(got.flags & kInvalid, conj ? 0u : kInvalid) << entry.symbol;
    const bool quiet = std::bit_cast<uint64_t>(got.r.re) >> 51 & 1;
    EXPECT_EQ(quiet, !conj) << entry.symbol;
  }
}

// Nothing is reported, whatever the elements; ordinary ones raise nothing but inexact.
TEST(Traces, NoStatusNoErrnoNoStrayFlags) {
  constexpr uint64_t kSeed = 12;
  Random random(kSeed);
  static int calls;
  calls = 0;
  const PexErrorCallBack before = _pexSetErrorCallBack([](PexErrorContext*) { return ++calls; });
  const int n = 300;
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    for (const pex::Entry& entry : pex::ComplexEntries()) {
      // Within these magnitudes no elementary function leaves the normal range of single precision.
      const double largest = entry.function->group == "complex-arithmetic" ? 90 : 5;
      for (const bool special : {false, true}) {
        std::vector<double> wide[2];
        std::vector<float> narrow[2];
        for (int k = 0; k < 2; ++k) {
          for (int i = 0; i < 2 * n; ++i) {
            const uint32_t kind = special ? random.Below(6) : 9;
            const double x = (random.Unit() + 0.01) * (random.Below(2) ? largest : -largest);
            const double value = kind == 0 ? kInf : kind == 1 ? kNaN : kind == 2 ? 0 : x;
            wide[k].push_back(value);
            narrow[k].push_back(static_cast<float>(value));
          }
        }
        std::vector<double> r(2 * n);
        const auto data = [&](int k) -> const void* {
          if (entry.is_double()) return wide[k].data();
          return narrow[k].data();
        };
        _pexSetErrStatus(77);
        errno = 4711;
        UseControl scope(kDefaultControl);
        entry.Call(n, data(0), data(1), r.data(), nullptr);
        scope.Finish();
        EXPECT_EQ(errno, 4711) << entry.symbol;
        EXPECT_EQ(_pexClearErrStatus(), 77) << entry.symbol;
        EXPECT_TRUE(scope.kept()) << entry.symbol;
        if (!special) {
          EXPECT_EQ((scope.flags() | scope.x87_flags()) & ~uint32_t{kInexact}, 0u)
              << entry.symbol << " on " << level.name << ", seed " << kSeed;
        }
      }
    }
  }
  EXPECT_EQ(calls, 0);
  _pexSetErrorCallBack(before);
}

// Whether subnormal arguments count as zeros is the caller's choice in the fast products and
// quotients, and in no other entry but the sums.
TEST(Traces, DenormalsAreZero) {
  const Control daz = {"denormals are zero", 0x1FC0};
  for (const auto& [symbol, follows] : {std::pair{"_pexzMul_26", true},
                                        {"_pexzMulByConj_26", true},
                                        {"_pexzDiv_26", true},
                                        {"_pexzMul_HA", false},
                                        {"_pexzDiv_HA", false},
                                        {"_pexzAbs_HA", false},
                                        {"_pexzArg_HA", false},
                                        {"_pexzCIS_HA", false},
                                        {"_pexzAdd", true}}) {
    const pex::Entry& entry = *pex::FindEntry(symbol);
    const double a[2] = {0x1p-1060, 0x1p-1060}, b[2] = {1, 0};
    double r[2] = {-1, -1};
    UseControl scope(daz);
    entry.Call(1, a, b, r, nullptr);
    scope.Finish();
    EXPECT_TRUE(scope.kept()) << symbol;
    const double shown =
        entry.function->name == "CIS" || entry.function->name == "Add" ? r[1] : r[0];
    EXPECT_EQ(shown == 0, follows) << symbol << " gave " << shown;
  }
}

}  // namespace
