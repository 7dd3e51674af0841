// The complex entries whose every rounding is prescribed, against the formulas in plain code; which
// entries are one computation; and arrays next to memory that must not be touched.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"
#include "pexquo/pex.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"
#include "tests/support/random.h"

namespace {

template <typename C>
using PartOf = decltype(C::re);
using C8 = PexComplex8;
using C16 = PexComplex16;

// Parts of moderate size, some tiny or huge, zeros of both signs.
template <typename T>
T Part(Random& random) {
  constexpr int kMost = sizeof(T) == 8 ? 900 : 100;
  const T sign = random.Below(2) ? T(-1) : T(1);
  switch (random.Below(10)) {
    case 0:
      return sign * T(0);
    case 1:
      return sign *
             std::ldexp(T(1 + random.Unit()), static_cast<int>(random.Below(2 * kMost)) - kMost);
    default:
      return sign * std::ldexp(T(1 + random.Unit()), static_cast<int>(random.Below(20)) - 10);
  }
}

template <typename C>
std::vector<C> Numbers(Random& random, size_t n) {
  std::vector<C> list(n);
  for (C& x : list) x = {Part<PartOf<C>>(random), Part<PartOf<C>>(random)};
  return list;
}

bool Same(double x, double y) {
  return (std::isnan(x) && std::isnan(y)) ||
         std::bit_cast<uint64_t>(x) == std::bit_cast<uint64_t>(y);
}

// In W: the working precision.
template <typename W>
struct Formulas {
  struct Number {
    W re, im;
  };
  template <typename C>
  static C To(Number x) {
    return {static_cast<PartOf<C>>(x.re), static_cast<PartOf<C>>(x.im)};
  }
  static Number Mul(Number a, Number b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
  }
  static Number MulByConj(Number a, Number b) {
    return {a.re * b.re + a.im * b.im, a.im * b.re - a.re * b.im};
  }
  static Number Div(Number a, Number b) {
    const W d = 1 / (b.re * b.re + b.im * b.im);
    const Number n = MulByConj(a, b);
    return {n.re * d, n.im * d};
  }
};

template <typename C>
using Entry = int (*)(int32_t, const C*, const C*, C*);

template <typename W, typename C>
struct Case {
  const char* name;
  Entry<C> entry;
  typename Formulas<W>::Number (*formula)(typename Formulas<W>::Number,
                                          typename Formulas<W>::Number);
};

template <typename W, typename C, size_t N>
void ExpectFormulas(const Case<W, C> (&cases)[N]) {
  constexpr uint64_t kSeed = 5;
  Random random(kSeed);
  const auto a = Numbers<C>(random, 5000), b = Numbers<C>(random, 5000);
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    for (const auto& c : cases) {
      std::vector<C> r(a.size());
      c.entry(static_cast<int>(a.size()), a.data(), b.data(), r.data());
      for (size_t i = 0; i < a.size(); ++i) {
        const C wanted =
            Formulas<W>::template To<C>(c.formula({a[i].re, a[i].im}, {b[i].re, b[i].im}));
        ASSERT_TRUE(Same(r[i].re, wanted.re) && Same(r[i].im, wanted.im))
            << c.name << " on " << level.name << ", seed " << kSeed << ": (" << a[i].re << ", "
            << a[i].im << "), (" << b[i].re << ", " << b[i].im << ") gave (" << r[i].re << ", "
            << r[i].im << ") for (" << wanted.re << ", " << wanted.im << ")";
      }
    }
  }
}

TEST(Formulas, InTheWorkingPrecision) {
  using S = Formulas<float>;
  ExpectFormulas<float, C8>({{"_pexcMul_11", _pexcMul_11, S::Mul},
                             {"_pexcMulByConj_11", _pexcMulByConj_11, S::MulByConj},
                             {"_pexcDiv_11", _pexcDiv_11, S::Div}});
  using D = Formulas<double>;
  ExpectFormulas<double, C16>({{"_pexzMul_26", _pexzMul_26, D::Mul},
                               {"_pexzMulByConj_26", _pexzMulByConj_26, D::MulByConj},
                               {"_pexzDiv_26", _pexzDiv_26, D::Div}});
}

TEST(Formulas, OfFloatsInDouble) {
  using D = Formulas<double>;
  ExpectFormulas<double, C8>({{"_pexcMul_HA", _pexcMul_HA, D::Mul},
                              {"_pexcMulByConj_HA", _pexcMulByConj_HA, D::MulByConj},
                              {"_pexcDiv_HA", _pexcDiv_HA, D::Div}});
}

// (cos x, sin x) by the prescribed reduction and polynomials.
TEST(Formulas, SingleCIS) {
  Random random(6);
  std::vector<float> x;
  for (int i = 0; i < 20000; ++i) {
    x.push_back(static_cast<float>((random.Unit() - 0.5) * (i % 2 ? 20000 : 10)));
  }
  std::vector<C8> r(x.size());
  _pexcCIS_11(static_cast<int>(x.size()), x.data(), r.data());
  for (size_t i = 0; i < x.size(); ++i) {
    const volatile float turns = x[i] * 0.63661975f, shifted = turns + 12582912.0f;
    const double n = shifted - 12582912.0f;
    const double y = (x[i] - n * 0x1.921FB5444p+0) - n * 2.563344151594519e-12, z = y * y;
    const double sine =
        y +
        y * z * (-0.16666654612881793 + z * (0.008332160761521766 + z * -0.00019515283190447318));
    const double cosine =
        1 + z * (-0.5 + z * (0.04166664568297557 +
                             z * (-0.0013887316254360454 + z * 2.443315705834904e-05)));
    const int quadrant = static_cast<int>(n) & 3;
    const float s = static_cast<float>(quadrant % 2 ? cosine : sine);
    const float c = static_cast<float>(quadrant % 2 ? sine : cosine);
    ASSERT_EQ(r[i].im, quadrant >= 2 ? -s : s) << x[i];
    ASSERT_EQ(r[i].re, quadrant == 1 || quadrant == 2 ? -c : c) << x[i];
  }
}

// The levels that have fused operations take them for the steps in double precision: for none of
// the floats that go through these steps does it show in the results.
TEST(Formulas, SingleCISOfAllFloatsOnEveryLevel) {
  constexpr uint32_t kFirst = std::bit_cast<uint32_t>(0x1p-13f);
  constexpr uint32_t kEnd = std::bit_cast<uint32_t>(10000.0f) + 1;
  constexpr uint32_t kBlock = 1 << 18;
  std::vector<float> x(kBlock);
  std::vector<C8> expected(kBlock), r(kBlock);
  for (uint32_t first = kFirst; first < kEnd; first += kBlock) {
    const uint32_t n = std::min(kBlock, kEnd - first);
    for (uint32_t i = 0; i < n; ++i) x[i] = std::bit_cast<float>(first + i);
    for (const Level& level : kLevels) {
      if (!ProcessorHas(level)) continue;
      const UseLevel use(level);
      auto& to = &level == kLevels ? expected : r;
      _pexcCIS_HA(static_cast<int>(n), x.data(), to.data());
      if (&level == kLevels || std::memcmp(r.data(), expected.data(), n * sizeof(C8)) == 0)
        continue;
      for (uint32_t i = 0; i < n; ++i) {
        ASSERT_EQ(r[i].re, expected[i].re) << x[i] << " on " << level.name;
        ASSERT_EQ(r[i].im, expected[i].im) << x[i] << " on " << level.name;
      }
    }
  }
}

// Entries that are one computation under several names.
TEST(OneComputation, UnderSeveralNames) {
  struct Names {
    const char *one, *other;
  };
  constexpr Names kSame[] = {
      {"_pexcMul_21", "_pexcMul_HA"}, {"_pexcMulByConj_21", "_pexcMulByConj_HA"},
      {"_pexcDiv_21", "_pexcDiv_HA"}, {"_pexzMul_50", "_pexzMul_HA"},
      {"_pexzDiv_50", "_pexzDiv_HA"}, {"_pexzMulByConj_50", "_pexzMulByConj_HA"},
      {"_pexcAbs_11", "_pexcAbs_HA"}, {"_pexcAbs_21", "_pexcAbs_HA"},
      {"_pexzAbs_26", "_pexzAbs_HA"}, {"_pexzAbs_50", "_pexzAbs_HA"},
      {"_pexzArg_26", "_pexzArg_50"}, {"_pexcCIS_11", "_pexcCIS_HA"},
      {"_pexcCIS_21", "_pexcCIS_HA"}, {"_pexzCIS_26", "_pexzCIS_HA"},
      {"_pexzCIS_50", "_pexzCIS_HA"},
  };
  Random random(7);
  const int n = 3000;
  const auto a8 = Numbers<C8>(random, n), b8 = Numbers<C8>(random, n);
  const auto a16 = Numbers<C16>(random, n), b16 = Numbers<C16>(random, n);
  for (const Names& names : kSame) {
    const pex::Entry *one = pex::FindEntry(names.one), *other = pex::FindEntry(names.other);
    ASSERT_TRUE(one != nullptr && other != nullptr) << names.one;
    std::vector<C16> r1(n), r2(n);
    const void* a = one->is_double() ? static_cast<const void*>(a16.data()) : a8.data();
    const void* b = one->is_double() ? static_cast<const void*>(b16.data()) : b8.data();
    one->Call(n, a, b, r1.data(), nullptr);
    other->Call(n, a, b, r2.data(), nullptr);
    EXPECT_EQ(std::memcmp(r1.data(), r2.data(), n * sizeof(C16)), 0) << names.one;
  }
}

template <typename C>
void ExpectArgIsAtan2(const char* type, Random& random) {
  using T = PartOf<C>;
  const int n = 4000;
  const auto a = Numbers<C>(random, n);
  std::vector<T> x(n), y(n), angle(n), wanted(n);
  for (int i = 0; i < n; ++i) {
    x[i] = a[i].re;
    y[i] = a[i].im;
  }
  for (const pex::Tier tier : {pex::Tier::LA, pex::Tier::HA}) {
    const char* suffix = tier == pex::Tier::HA ? "_HA" : sizeof(T) == 8 ? "_50" : "_21";
    const std::string symbol = std::string("_pex") + type + "Arg" + suffix;
    pex::FindEntry(symbol)->Call(n, a.data(), nullptr, angle.data(), nullptr);
    pex::FindEntry("Atan2", sizeof(T) == 8 ? 'd' : 's', tier)
        ->Call(n, y.data(), x.data(), wanted.data(), nullptr);
    EXPECT_EQ(std::memcmp(angle.data(), wanted.data(), n * sizeof(T)), 0) << symbol;
  }
}

TEST(OneComputation, ArgIsTheRealAtan2) {
  Random random(8);
  ExpectArgIsAtan2<C8>("c", random);
  ExpectArgIsAtan2<C16>("z", random);
}

// Angles do not depend on the size of a number, from 2^-450 to 2^450.
TEST(OneComputation, ArgIsThatOfScaledNumbers) {
  Random random(11);
  const int n = 997;
  std::vector<C16> a(n), scaled(n);
  for (C16& x : a) {
    const auto part = [&] {
      const double sign = random.Below(2) ? -1 : 1;
      return sign * std::ldexp(1 + random.Unit(), static_cast<int>(random.Below(20)) - 10);
    };
    x = {part(), part()};
  }
  std::vector<double> wanted(n), angle(n);
  for (const char* symbol : {"_pexzArg_26", "_pexzArg_50", "_pexzArg_HA"}) {
    const pex::Entry& entry = *pex::FindEntry(symbol);
    entry.Call(n, a.data(), nullptr, wanted.data(), nullptr);
    for (const int exponent : {-440, -200, -63, -54, 55, 64, 300, 439}) {
      for (int i = 0; i < n; ++i) {
        scaled[i] = {std::ldexp(a[i].re, exponent), std::ldexp(a[i].im, exponent)};
      }
      entry.Call(n, scaled.data(), nullptr, angle.data(), nullptr);
      int differing = 0;
      for (int i = 0; i < n; ++i) differing += !Same(angle[i], wanted[i]);
      EXPECT_EQ(differing, 0) << symbol << " 2^" << exponent;
    }
  }
}

// Arrays that end where a page without access begins, and that begin where one ends.
TEST(Memory, NothingOutsideIsReadOrWritten) {
  Random random(9);
  Guarded<uint8_t> a(640), b(640), r(640);
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    for (const pex::Entry& entry : pex::ComplexEntries()) {
      const size_t width = entry.is_double() ? 8 : 4;
      const size_t in = width * static_cast<size_t>(entry.argument_parts());
      const size_t out = width * static_cast<size_t>(entry.result_parts());
      const auto fill = [&](uint8_t* bytes, size_t size) {
        for (size_t i = 0; i < size; i += width) {
          const double value = random.Below(6) ? random.Unit() + 0.25 : 0;
          const float narrow = static_cast<float>(value);
          std::memcpy(bytes + i, width == 8 ? static_cast<const void*>(&value) : &narrow, width);
        }
      };
      for (size_t n = 0; n <= 40; ++n) {
        for (const bool at_end : {false, true}) {
          const auto place = [at_end](Guarded<uint8_t>& bytes, size_t size) {
            return at_end ? bytes.AtEnd(size) : bytes.AtStart();
          };
          uint8_t *x = place(a, n * in), *y = place(b, std::max<size_t>(n, 1) * in);
          fill(x, n * in);
          fill(y, std::max<size_t>(n, 1) * in);
          entry.Call(static_cast<int32_t>(n), x, y, place(r, n * out), nullptr);
        }
      }
      // Counts below 1 touch nothing at all.
      entry.Call(0, nullptr, &entry, nullptr, nullptr);
      entry.Call(-1, nullptr, &entry, nullptr, nullptr);
    }
  }
}

}  // namespace
