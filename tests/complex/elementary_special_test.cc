// Special values of the complex elementary functions case by case (C11 Annex G, and C17 where it
// differs), their symmetries, and what a call raises.
#include <gtest/gtest.h>

#include <bit>
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
constexpr double kPi = 3.141592653589793, kHalfPi = kPi / 2, kQuarterPi = kPi / 4;
constexpr double kThreeQuartersPi = 2.356194490192345;
constexpr double kLog10E = 0.4342944819032518;

struct Number {
  double re, im;
};

std::string Text(Number x) {
  char text[80];
  std::snprintf(text, sizeof(text), "(%a, %a)", x.re, x.im);
  return text;
}

bool Same(double x, double y) {
  return std::isnan(x) ? std::isnan(y) : std::bit_cast<uint64_t>(x) == std::bit_cast<uint64_t>(y);
}
bool Same(Number x, Number y) { return Same(x.re, y.re) && Same(x.im, y.im); }

struct Outcome {
  Number r;
  uint32_t flags;  // without inexact and denormal
};

// One element at `place` of n, among ordinary ones.
template <typename T>
Outcome CallAs(const pex::Entry& entry, Number a, Number b, int n, int place) {
  std::vector<T> x(2 * n, T(1)), y(2 * n, T(1)), r(2 * n);
  x[2 * place] = static_cast<T>(a.re);
  x[2 * place + 1] = static_cast<T>(a.im);
  const int second = entry.function->shape == pex::Shape::UnaryScalar ? 0 : place;
  y[2 * second] = static_cast<T>(b.re);
  y[2 * second + 1] = static_cast<T>(b.im);
  UseControl scope(kDefaultControl);
  entry.Call(n, x.data(), y.data(), r.data(), nullptr);
  scope.Finish();
  EXPECT_TRUE(scope.kept());
  return {{r[2 * place], r[2 * place + 1]},
          (scope.flags() | scope.x87_flags()) & ~uint32_t{kInexact | kDenormal}};
}

Outcome Call(const pex::Entry& entry, Number a, Number b = {1, 1}, int n = 1, int place = 0) {
  return entry.is_double() ? CallAs<double>(entry, a, b, n, place)
                           : CallAs<float>(entry, a, b, n, place);
}

Number Rounded(const pex::Entry& entry, Number x) {
  if (entry.is_double()) return x;
  const volatile float re = static_cast<float>(x.re), im = static_cast<float>(x.im);
  return {re, im};
}

struct Case {
  const char* function;
  Number a, r;
  uint32_t flags = 0;
};

constexpr Number kBothNaN = {kNaN, kNaN};

// Of the upper half-plane; the lower one follows by conjugation, which all functions keep.
constexpr Case kCases[] = {
    {"Sqrt", {0, 0}, {0, 0}},
    {"Sqrt", {-0.0, 0}, {0, 0}},
    {"Sqrt", {1, kInf}, {kInf, kInf}},
    {"Sqrt", {kNaN, kInf}, {kInf, kInf}},
    {"Sqrt", {-kInf, kInf}, {kInf, kInf}},
    {"Sqrt", {1, kNaN}, kBothNaN},
    {"Sqrt", {-kInf, 1}, {0, kInf}},
    {"Sqrt", {kInf, 1}, {kInf, 0}},
    {"Sqrt", {-kInf, kNaN}, {kNaN, kInf}},
    {"Sqrt", {kInf, kNaN}, {kInf, kNaN}},
    {"Sqrt", {kNaN, 1}, kBothNaN},
    {"Sqrt", kBothNaN, kBothNaN},
    {"Sqrt", {4, 0}, {2, 0}},
    {"Sqrt", {-4, 0}, {0, 2}},
    {"Sqrt", {3, 4}, {2, 1}},
    {"Sqrt", {-3, 4}, {1, 2}},
    {"Sqrt", {0, 8}, {2, 2}},

    {"Exp", {0, 0}, {1, 0}},
    {"Exp", {-0.0, 0}, {1, 0}},
    {"Exp", {1, kInf}, kBothNaN, kInvalid},
    {"Exp", {1, kNaN}, kBothNaN},
    {"Exp", {kInf, 0}, {kInf, 0}},
    {"Exp", {-kInf, 0}, {0, 0}},
    {"Exp", {-kInf, 1}, {0, 0}},
    {"Exp", {-kInf, 2}, {-0.0, 0}},
    {"Exp", {kInf, 1}, {kInf, kInf}},
    {"Exp", {kInf, 2}, {-kInf, kInf}},
    {"Exp", {-kInf, kInf}, {0, 0}},
    {"Exp", {kInf, kInf}, {kInf, kNaN}, kInvalid},
    {"Exp", {-kInf, kNaN}, {0, 0}},
    {"Exp", {kInf, kNaN}, {kInf, kNaN}},
    {"Exp", {kNaN, 0}, {kNaN, 0}},
    {"Exp", {kNaN, 1}, kBothNaN},
    {"Exp", {kNaN, kInf}, kBothNaN},
    {"Exp", kBothNaN, kBothNaN},

    {"Ln", {-0.0, 0}, {-kInf, kPi}, kDivByZero},
    {"Ln", {0, 0}, {-kInf, 0}, kDivByZero},
    {"Ln", {1, kInf}, {kInf, kHalfPi}},
    {"Ln", {1, kNaN}, kBothNaN},
    {"Ln", {-kInf, 1}, {kInf, kPi}},
    {"Ln", {kInf, 1}, {kInf, 0}},
    {"Ln", {-kInf, kInf}, {kInf, kThreeQuartersPi}},
    {"Ln", {kInf, kInf}, {kInf, kQuarterPi}},
    {"Ln", {kInf, kNaN}, {kInf, kNaN}},
    {"Ln", {-kInf, kNaN}, {kInf, kNaN}},
    {"Ln", {kNaN, 1}, kBothNaN},
    {"Ln", {kNaN, kInf}, {kInf, kNaN}},
    {"Ln", kBothNaN, kBothNaN},
    {"Ln", {1, 0}, {0, 0}},
    {"Ln", {-1, 0}, {0, kPi}},
    {"Ln", {0, 1}, {0, kHalfPi}},

    {"Log10", {-0.0, 0}, {-kInf, kPi* kLog10E}, kDivByZero},
    {"Log10", {0, 0}, {-kInf, 0}, kDivByZero},
    {"Log10", {1, kInf}, {kInf, kHalfPi* kLog10E}},
    {"Log10", {kInf, kInf}, {kInf, kQuarterPi* kLog10E}},
    {"Log10", {kInf, kNaN}, {kInf, kNaN}},
    {"Log10", {kNaN, kInf}, {kInf, kNaN}},
    {"Log10", kBothNaN, kBothNaN},
    {"Log10", {10, 0}, {1, 0}},
    {"Log10", {1000, 0}, {3, 0}},
    {"Log10", {0, 100}, {2, kHalfPi* kLog10E}},

    {"Cosh", {0, 0}, {1, 0}},
    {"Cosh", {-0.0, 0}, {1, -0.0}},
    {"Cosh", {0, kInf}, {kNaN, 0}, kInvalid},
    {"Cosh", {0, kNaN}, {kNaN, 0}},
    {"Cosh", {1, kInf}, kBothNaN, kInvalid},
    {"Cosh", {1, kNaN}, kBothNaN},
    {"Cosh", {kInf, 0}, {kInf, 0}},
    {"Cosh", {kInf, 1}, {kInf, kInf}},
    {"Cosh", {kInf, 2}, {-kInf, kInf}},
    {"Cosh", {kInf, kInf}, {kInf, kNaN}, kInvalid},
    {"Cosh", {kInf, kNaN}, {kInf, kNaN}},
    {"Cosh", {kNaN, 0}, {kNaN, 0}},
    {"Cosh", {kNaN, 1}, kBothNaN},
    {"Cosh", kBothNaN, kBothNaN},

    {"Sinh", {0, 0}, {0, 0}},
    {"Sinh", {0, kInf}, {0, kNaN}, kInvalid},
    {"Sinh", {0, kNaN}, {0, kNaN}},
    {"Sinh", {1, kInf}, kBothNaN, kInvalid},
    {"Sinh", {1, kNaN}, kBothNaN},
    {"Sinh", {kInf, 0}, {kInf, 0}},
    {"Sinh", {kInf, 1}, {kInf, kInf}},
    {"Sinh", {kInf, 2}, {-kInf, kInf}},
    {"Sinh", {kInf, kInf}, {kInf, kNaN}, kInvalid},
    {"Sinh", {kInf, kNaN}, {kInf, kNaN}},
    {"Sinh", {kNaN, 0}, {kNaN, 0}},
    {"Sinh", {kNaN, 1}, kBothNaN},
    {"Sinh", kBothNaN, kBothNaN},

    {"Tanh", {0, 0}, {0, 0}},
    {"Tanh", {0, kInf}, {0, kNaN}, kInvalid},
    {"Tanh", {0, kNaN}, {0, kNaN}},
    {"Tanh", {1, kInf}, kBothNaN, kInvalid},
    {"Tanh", {1, kNaN}, kBothNaN},
    {"Tanh", {kInf, 0}, {1, 0}},
    {"Tanh", {kInf, 1}, {1, 0}},
    {"Tanh", {kInf, 2}, {1, -0.0}},
    {"Tanh", {kInf, kInf}, {1, 0}},
    {"Tanh", {kInf, kNaN}, {1, 0}},
    {"Tanh", {kNaN, 0}, {kNaN, 0}},
    {"Tanh", {kNaN, 1}, kBothNaN},
    {"Tanh", kBothNaN, kBothNaN},

    {"Acos", {0, 0}, {kHalfPi, -0.0}},
    {"Acos", {-0.0, 0}, {kHalfPi, -0.0}},
    {"Acos", {0, kNaN}, {kHalfPi, kNaN}},
    {"Acos", {1, kInf}, {kHalfPi, -kInf}},
    {"Acos", {1, kNaN}, kBothNaN},
    {"Acos", {-kInf, 1}, {kPi, -kInf}},
    {"Acos", {kInf, 1}, {0, -kInf}},
    {"Acos", {-kInf, kInf}, {kThreeQuartersPi, -kInf}},
    {"Acos", {kInf, kInf}, {kQuarterPi, -kInf}},
    {"Acos", {kInf, kNaN}, {kNaN, -kInf}},
    {"Acos", {kNaN, 1}, kBothNaN},
    {"Acos", {kNaN, kInf}, {kNaN, -kInf}},
    {"Acos", kBothNaN, kBothNaN},
    {"Acos", {1, 0}, {0, -0.0}},
    {"Acos", {-1, 0}, {kPi, -0.0}},

    {"Acosh", {0, 0}, {0, kHalfPi}},
    {"Acosh", {-0.0, 0}, {0, kHalfPi}},
    {"Acosh", {0, kNaN}, {kNaN, kHalfPi}},
    {"Acosh", {1, kInf}, {kInf, kHalfPi}},
    {"Acosh", {1, kNaN}, kBothNaN},
    {"Acosh", {-kInf, 1}, {kInf, kPi}},
    {"Acosh", {kInf, 1}, {kInf, 0}},
    {"Acosh", {-kInf, kInf}, {kInf, kThreeQuartersPi}},
    {"Acosh", {kInf, kInf}, {kInf, kQuarterPi}},
    {"Acosh", {-kInf, kNaN}, {kInf, kNaN}},
    {"Acosh", {kNaN, 1}, kBothNaN},
    {"Acosh", {kNaN, kInf}, {kInf, kNaN}},
    {"Acosh", kBothNaN, kBothNaN},
    {"Acosh", {1, 0}, {0, 0}},
    {"Acosh", {-1, 0}, {0, kPi}},

    {"Asinh", {0, 0}, {0, 0}},
    {"Asinh", {1, kInf}, {kInf, kHalfPi}},
    {"Asinh", {1, kNaN}, kBothNaN},
    {"Asinh", {kInf, 1}, {kInf, 0}},
    {"Asinh", {kInf, kInf}, {kInf, kQuarterPi}},
    {"Asinh", {kInf, kNaN}, {kInf, kNaN}},
    {"Asinh", {kNaN, 0}, {kNaN, 0}},
    {"Asinh", {kNaN, 1}, kBothNaN},
    {"Asinh", {kNaN, kInf}, {kInf, kNaN}},
    {"Asinh", kBothNaN, kBothNaN},
    {"Asinh", {0, 1}, {0, kHalfPi}},

    {"Atanh", {0, 0}, {0, 0}},
    {"Atanh", {0, kNaN}, {0, kNaN}},
    {"Atanh", {1, 0}, {kInf, 0}, kDivByZero},
    {"Atanh", {1, kInf}, {0, kHalfPi}},
    {"Atanh", {1, kNaN}, kBothNaN},
    {"Atanh", {kInf, 1}, {0, kHalfPi}},
    {"Atanh", {kInf, kInf}, {0, kHalfPi}},
    {"Atanh", {kInf, kNaN}, {0, kNaN}},
    {"Atanh", {kNaN, 1}, kBothNaN},
    {"Atanh", {kNaN, kInf}, {0, kHalfPi}},
    {"Atanh", kBothNaN, kBothNaN},
};

struct PowCase {
  Number a, b, r;
  uint32_t flags = 0;
};
constexpr PowCase kPowCases[] = {
    {{0, 0}, {0, 0}, {1, 0}},
    {{kInf, 0}, {0, 0}, {1, 0}},
    {kBothNaN, {0, 0}, {1, 0}},
    {{3, -4}, {0, -0.0}, {1, 0}},
    {{0, 0}, {2, 0}, {0, 0}},
    {{0, 0}, {2, 1}, {0, -0.0}},
    {{0, 0}, {-2, 0}, {kInf, -0.0}, kDivByZero},
    {{0, 0}, {0, 1}, kBothNaN, kInvalid},
    {{2, 0}, {3, 0}, {8, 0}},
    {{2, -0.0}, {3, 0}, {8, -0.0}},
    {{1, 0}, {5, 7}, {1, 0}},
    {{kInf, 0}, {1, 0}, {kInf, 0}},
    {{kNaN, 1}, {1, 0}, kBothNaN},
    {{1, 1}, {1, kNaN}, kBothNaN},
    {{0, 0}, {-0.0, 1}, kBothNaN, kInvalid},  // no negative real part, no pole
    {{1, 1}, {0, kInf}, {0, 0}},
    {{1, 1}, {0, -kInf}, {kInf, kNaN}, kInvalid},
};

constexpr pex::Tier kTiers[] = {pex::Tier::HA, pex::Tier::LA, pex::Tier::EP};

const pex::Entry& EntryOf(const char* function, char type, pex::Tier tier = pex::Tier::HA) {
  const bool is_double = type == 'z';
  const char* const suffix = tier == pex::Tier::HA   ? "_HA"
                             : tier == pex::Tier::LA ? (is_double ? "_50" : "_21")
                                                     : (is_double ? "_26" : "_11");
  const pex::Entry* entry = pex::FindEntry(std::string("_pex") + type + function + suffix);
  EXPECT_NE(entry, nullptr) << function;
  return *entry;
}

Number Conjugate(Number z) { return {z.re, -z.im}; }

void Expect(const pex::Entry& entry, Number a, Number b, Number wanted, uint32_t flags) {
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    for (const int n : {1, 37}) {
      const Outcome got = Call(entry, a, b, n, n / 2);
      const Number r = Rounded(entry, wanted);
      // Log10's imaginary parts are products of two roundings.
      const bool close = entry.function->name == "Log10" && Same(got.r.re, r.re) &&
                         std::fabs(got.r.im - r.im) <= 0x1p-22 * (entry.is_double() ? 0x1p-29 : 1);
      EXPECT_TRUE(Same(got.r, r) || close)
          << entry.symbol << Text(a) << Text(b) << " on " << level.name << ": " << Text(got.r)
          << ", not " << Text(r);
      EXPECT_EQ(got.flags, flags) << entry.symbol << Text(a) << Text(b);
    }
  }
}

TEST(ComplexElementary, SpecialValues) {
  for (const Case& c : kCases) {
    for (const char type : {'z', 'c'}) {
      for (const pex::Tier tier : kTiers) {
        const pex::Entry& entry = EntryOf(c.function, type, tier);
        Expect(entry, c.a, {1, 1}, c.r, c.flags);
        Expect(entry, Conjugate(c.a), {1, 1}, Conjugate(c.r), c.flags);
      }
    }
  }
}

TEST(ComplexElementary, PowersOfSpecialValues) {
  for (const PowCase& c : kPowCases) {
    for (const char type : {'z', 'c'}) {
      for (const char* name : {"Pow", "Powx"}) {
        // The neighbours of a Powx have its exponent too, and may raise flags.
        const pex::Entry& entry = EntryOf(name, type);
        const Outcome got = Call(entry, c.a, c.b);
        EXPECT_TRUE(Same(got.r, c.r)) << entry.symbol << Text(c.a) << Text(c.b) << Text(got.r);
        EXPECT_EQ(got.flags, c.flags) << entry.symbol << Text(c.a) << Text(c.b);
      }
      Expect(EntryOf("Pow", type), c.a, c.b, c.r, c.flags);
    }
  }
}

// In every range of bases and exponents: ln a = ln |a| +- 0 i, and b times as much.
TEST(ComplexElementary, RealPowersKeepTheSignOfZero) {
  for (const char type : {'z', 'c'}) {
    for (const double x : {0x1p-130, 0.5, 1.0, 3.0, 0x1p125}) {
      for (const double k : {1.0, 3.0, 15.5, 25.0, 150.0, 400.0, 0x1p40}) {
        for (const double exponent : {k, -k}) {
          for (const double zero : {0.0, -0.0}) {
            for (const double b_im : {0.0, -0.0}) {
              const Number a = {x, zero}, b = {exponent, b_im};
              const Number r = Call(EntryOf("Pow", type), a, b).r;
              EXPECT_TRUE(Same({0, r.im}, {0, zero * exponent}))
                  << type << Text(a) << Text(b) << Text(r);
            }
          }
        }
      }
    }
  }
}

// Exponents that take more bits of the logarithm than a double's.
constexpr PowCase kWeightyPowers[] = {
    {{-0x1.23c0034c9210dp+1, -0x1.3dbc764f80cd2p-22},
     {-0x1.707b50d077835p+53, 0x1.8287b17fdd662p+51},
     {-0x1.72da1288eeba8p+185, -0x1.a4cb9571cb05ep+183}},
    {{-0x1.204ad6636aecbp-1, -0x1.a71f057194819p-1},
     {-0x1.28ad469d7a21ap+58, -0x1.880ad169fbb94p+0},
     {-0x1.912dfed27b512p+745, -0x1.aa4fe8ae75b78p+745}},
    {{0x1.8p+1, 0}, {0, 0x1.b5p+1000}, {0x1.0a44fc117012p-1, -0x1.b550afc9ada8fp-1}},
    {{0x1.8cb4728fc7dc1p+122, 0},
     {0x1p-2, 0x1.beb94853f31cap+469},
     {-0x1.496047441a16fp+30, -0x1.d3a785a403fdbp+29}},
    {{0x1.fffffffffff49p-1, 0},
     {0, -0x1.52fdb9b653bcbp+1019},
     {-0x1.98f8f1ff6cafp-6, 0x1.ffd728b7a9d7cp-1}},
    {{0x1.0523657458f01p+231, 0x1.fd6303f4a346dp+165},
     {0x1.23814b0ade9e2p-5, -0x1.ab630811cb487p+56},
     {0x1.5b361b4060dcbp+3, -0x1.2b1f35e15b2eep+8}},
    {{-0x1p+0, -0x1.21c13e1e8cc24p-60},
     {0x1.8ab14b3fb3439p+124, 0x1.a1927cb65f594p-67},
     {0x1.bc1b9d27f2679p+22, 0x1.4b65d8cb2b044p+18}},
    {{-0x1.98296058b256ep-1, 0x1.351739ada792fp-1},
     {0x1.0b2d167df0a4cp+65, -0x1.26f8a31fb2b4ap+48},
     {0x1.8cb2795c89ee8p-888, 0x1.bed4d67733edp-885}},
    {{0, 0x1.000001p+0}, {0x1p+21, -0x1.8p-3}, {0x1.856fd6300aa8bp+0, -0x1.2413e011fe0e9p-26}},
    {{0x1.4p+0, 0}, {0, 0x1p+127}, {-0x1.72c3406ac6359p-1, 0x1.611962c24151dp-1}},
    {{0x1.6519cp+97, 0}, {0, 0x1.3b58e4p+86}, {-0x1.faa49058cbf44p-1, 0x1.277cbd7bcab22p-3}},
    {{-0x1p+0, -0x1.36c2a6p-60},
     {0x1.e8e8fep+124, -0x1.e04f48p-67},
     {0x1.64c3bdd5be165p+32, 0x1.1fd6e309f8d6p+28}},
    {{0x0.0000000000001p-1022, 0}, {0, 0x1p+1023}, {0x1.121afb612fb92p-1, -0x1.b072612b097eep-1}},
    {{0x1.8p+1023, 0x0.0000000000001p-1022},
     {0x1p-20, 0x1p+1023},
     {-0x1.8b898a11ff8ap-4, 0x1.fdf491ed0ac19p-1}},
    // Multiples of ln |a| and of the angle that cancel, of numbers on the axes.
    {{0, 0x1.8p+1}, {0x1.6e0766b681648p+18, 0x1p+18}, {0x1.f57c1aaa03956p-2, 0x1.be663287e5d7bp-1}},
    {{0, -0x1.4p+0},
     {0x1.c2842e6328237p+20, -0x1.fffe8p+17},
     {-0x1.ffc13c42a74ap-1, 0x1.faf94050d1347p-6}},
    {{-0x1.cp+0, 0},
     {0x1.67497b153600bp+19, 0x1.00004p+17},
     {0x1.fa6dd8fa074efp-1, -0x1.2d4ae4049a556p-3}},
};

TEST(ComplexElementary, PowersWithLargeExponents) {
  for (const char type : {'z', 'c'}) {
    for (const PowCase& c : kWeightyPowers) {
      const auto is_float = [](Number x) {
        return x.re == static_cast<float>(x.re) && x.im == static_cast<float>(x.im);
      };
      if (type == 'c' && !(is_float(c.a) && is_float(c.b))) continue;
      for (const char* name : {"Pow", "Powx"}) {
        const Outcome got = Call(EntryOf(name, type), c.a, c.b);
        EXPECT_LE(std::hypot(got.r.re - c.r.re, got.r.im - c.r.im),
                  (type == 'z' ? 0x1p-53 : 0x1p-24) * 1.01 * std::hypot(c.r.re, c.r.im))
            << name << type << Text(c.a) << Text(c.b) << Text(got.r);
        EXPECT_EQ(got.flags, 0u) << name << type << Text(c.a) << Text(c.b);
      }
    }
  }
}

// Off by 1.09 and 0.97 ulp of the modulus when the angle had 58 bits.
TEST(ComplexElementary, PowersWithTheLargestVectorExponents) {
  constexpr PowCase kCases[] = {
      {{-0x1.6d8fbc5a1bca8p-1, -0x1.6e8926f0b81edp-1},
       {0x1.1531db598488p+1, -0x1.06d81b9896fefp+4},
       {0x1.41b65987b1d01p-57, 0x1.f7df44ca09d8fp-57}},
      {{0x1.63d6c6df1e29fp-2, -0x1.3ab02a5f00dcp+0},
       {0x1.3e6ac88c7a29cp+4, 0x1.9537712f0faa3p-4},
       {0x1.e34d56a126636p+6, -0x1.59968a79960d9p+6}},
      {{-0x1.e99d7b752de27p+0, 0x1.d443d8a0db1bfp-2},
       {-0x1.1caff0c395aa3p+1, 0x1.1c6a01c11d8a4p+4},
       {0x1.d0e36da7e5ba9p-78, -0x1.9e245d0ad8a08p-78}},
  };
  for (const PowCase& c : kCases) Expect(EntryOf("Pow", 'z'), c.a, c.b, c.r, 0);
}

// A part that whole quarters of the circle make 0 is 0 beside an infinite one, and has the sign
// that the argument's own zero gives it.
TEST(ComplexElementary, QuartersOfTheCircleAreExact) {
  for (const char type : {'z', 'c'}) {
    const double large = type == 'z' ? 0x1p1000 : 0x1p100;
    const PowCase cases[] = {
        {{-large, 0}, {3, 0}, {-kInf, 0}, kOverflow},
        {{-large, 0}, {2, 0}, {kInf, -0.0}, kOverflow},
        {{-large, -0.0}, {2, 0}, {kInf, 0}, kOverflow},
        {{-1 / large, 0}, {-3, 0}, {-kInf, -0.0}, kOverflow},
        {{0, large}, {2, 0}, {-kInf, 0}, kOverflow},
        {{0, large}, {3, 0}, {-0.0, -kInf}, kOverflow},
        {{-0.0, large}, {3, 0}, {0, -kInf}, kOverflow},
        {{0, -large}, {5, 0}, {0, -kInf}, kOverflow},
        {{-large, 0}, {1.5, 0}, {-0.0, -kInf}, kOverflow},
        {{-large, -0.0}, {1.5, 0}, {-0.0, kInf}, kOverflow},
        {{-1, 0}, {0x1p60, 0}, {1, -0.0}},
        {{-1, 0}, {0x1p52 + 1, 0}, {-1, 0}},
        {{0, 1}, {0x1p100, 0}, {1, -0.0}},
        {{-1, 0}, {1, -0x1p8}, {-kInf, 0}, kOverflow},
    };
    for (const PowCase& c : cases) {
      if (type == 'c' && (c.b.re != static_cast<float>(c.b.re) || c.b.im != 0)) continue;
      Expect(EntryOf("Pow", type), c.a, c.b, c.r, c.flags);
    }
  }
}

// Special values, thresholds of the vector kernels, and random numbers of all sizes.
std::vector<Number> Arguments(bool is_double) {
  std::vector<double> parts = {0,    -0.0,     1,        -1,         0.5,    2,
                               kInf, -kInf,    kNaN,     0x1p7,      0x1p9,  512.5,
                               4096, 0x1p-100, 0x1p-126, 0x1.fp-127, 0x1p100};
  if (is_double) parts.insert(parts.end(), {0x1p-1074, 0x1p-200, 0x1p400, 0x1p1023, 709.0, -745.5});
  Random random(7);
  for (int i = 0; i < 40; ++i) {
    const double m = 1 + random.Below(1u << 23) * 0x1p-23;
    parts.push_back(std::ldexp(i % 2 ? m : -m, static_cast<int>(random.Below(40)) - 30));
  }
  std::vector<Number> all;
  for (const double x : parts) {
    for (const double y : parts) all.push_back({x, y});
  }
  return all;
}

struct Rotation {
  const char* function;
  const char* of;  // at iz
  bool turned;     // and the result by -i
};

TEST(ComplexElementary, RotationsAreExact) {
  constexpr Rotation kRotations[] = {{"Cos", "Cosh", false},
                                     {"Sin", "Sinh", true},
                                     {"Tan", "Tanh", true},
                                     {"Asin", "Asinh", true},
                                     {"Atan", "Atanh", true}};
  for (const char type : {'z', 'c'}) {
    for (const Rotation& c : kRotations) {
      for (const Number z : Arguments(type == 'z')) {
        const Outcome got = Call(EntryOf(c.function, type), z);
        Outcome wanted = Call(EntryOf(c.of, type), {-z.im, z.re});
        if (c.turned) wanted.r = {wanted.r.im, -wanted.r.re};
        EXPECT_TRUE(Same(got.r, wanted.r) && got.flags == wanted.flags)
            << c.function << Text(z) << Text(got.r) << ", not " << Text(wanted.r);
      }
    }
  }
}

TEST(ComplexElementary, FunctionsKeepTheirSymmetries) {
  for (const char type : {'z', 'c'}) {
    for (const char* name : {"Exp", "Ln", "Log10", "Sqrt", "Cosh", "Sinh", "Tanh", "Cos", "Sin",
                             "Tan", "Acosh", "Asinh", "Atanh", "Acos", "Asin", "Atan"}) {
      const std::string n = name;
      const bool odd = n == "Sinh" || n == "Tanh" || n == "Sin" || n == "Tan" || n == "Asinh" ||
                       n == "Atanh" || n == "Asin" || n == "Atan";
      for (const Number z : Arguments(type == 'z')) {
        for (const pex::Tier tier : kTiers) {
          const pex::Entry& entry = EntryOf(name, type, tier);
          const Number r = Call(entry, z).r;
          EXPECT_TRUE(Same(Call(entry, Conjugate(z)).r, Conjugate(r))) << entry.symbol << Text(z);
          if (!odd) continue;
          EXPECT_TRUE(Same(Call(entry, {-z.re, -z.im}).r, {-r.re, -r.im}))
              << entry.symbol << Text(z);
        }
      }
    }
  }
}

TEST(ComplexElementary, TheTiersOfAPowerAgree) {
  for (const char type : {'z', 'c'}) {
    for (const char* name : {"Pow", "Powx"}) {
      for (const Number z : Arguments(type == 'z')) {
        const Number b = {1.5, -0.75};
        EXPECT_TRUE(Same(Call(EntryOf(name, type, pex::Tier::EP), z, b).r,
                         Call(EntryOf(name, type), z, b).r))
            << name << Text(z);
      }
    }
  }
}

// An element's result does not depend on which of a function's kernels its neighbours call for, not
// even where the quotient of the parts lies next to the middle of two doubles.
TEST(ComplexElementary, NeighboursDoNotMatter) {
  constexpr int kCount = 6000;
  const uint64_t seed = 11;
  Random random(seed);
  std::vector<double> a(2 * kCount);
  for (double& x : a) {
    const double m = 1 + random.Below(1u << 30) * 0x1p-30 + random.Below(1u << 22) * 0x1p-52;
    x = std::ldexp(random.Below(2) ? m : -m, -static_cast<int>(random.Below(70)));
  }
  for (int i = 0; i < 200; ++i) {
    a[2 * i] = std::ldexp(i % 2 ? 0x1.fffffffffffffp-1 : -0x1.fffffffffffffp-1, i % 7);
    a[2 * i + 1] = std::ldexp(0x1.0000000000001p0, i % 7 - i / 2);
  }
  struct Neighbour {
    const char* function;
    double re, im;
  };
  for (const Neighbour& c :
       {Neighbour{"Ln", 0x1p300, 1}, Neighbour{"Ln", 1, 0}, Neighbour{"Exp", 1, 600},
        Neighbour{"Exp", 0, 1}, Neighbour{"Atanh", 0x1p150, 1}, Neighbour{"Atanh", 1, 0},
        Neighbour{"Atan", 0x1p-300, 1}, Neighbour{"Atan", 0, 3}}) {
    std::vector<double> mixed;
    for (int i = 0; i < kCount; ++i) {
      mixed.insert(mixed.end(), {a[2 * i], a[2 * i + 1], c.re, c.im});
    }
    for (const pex::Tier tier : kTiers) {
      const pex::Entry& entry = EntryOf(c.function, 'z', tier);
      for (const Level& level : kLevels) {
        if (!ProcessorHas(level)) continue;
        const UseLevel use(level);
        std::vector<double> r(2 * kCount), among(4 * kCount);
        entry.Call(kCount, a.data(), nullptr, r.data(), nullptr);
        entry.Call(2 * kCount, mixed.data(), nullptr, among.data(), nullptr);
        for (int i = 0; i < kCount; ++i) {
          const Number alone = {r[2 * i], r[2 * i + 1]};
          EXPECT_TRUE(Same(alone, {among[4 * i], among[4 * i + 1]}))
              << entry.symbol << Text({a[2 * i], a[2 * i + 1]}) << Text(alone) << " on "
              << level.name << ", seed " << seed;
        }
      }
    }
  }
}

// The float kernels find what they do not cover without a flag, and raise those of their results: a
// subnormal one may come out without a rounding, and without underflow.
TEST(ComplexElementary, SingleKernelsRaiseWhatTheirResultsDo) {
  std::vector<double> parts = {
      0,       -0.0,    1,        -1,       0.5,      87,       -87,    88,      -88,     -100,
      1607,    1608,    1609,     4097,     0x1p50,   0x1p51,   0x1p52, 0x1p127, 0x1p-20, 0x1p-40,
      0x1p-51, 0x1p-52, 0x1p-100, 0x1p-126, 0x1p-127, 0x1p-149, kInf,   -kInf,   kNaN};
  for (const char* name : {"Exp", "Ln"}) {
    const pex::Entry& exact = EntryOf(name, 'c');
    for (const double x : parts) {
      for (const double y : parts) {
        const Outcome wanted = Call(exact, {x, y});
        for (const pex::Tier tier : {pex::Tier::LA, pex::Tier::EP}) {
          const pex::Entry& entry = EntryOf(name, 'c', tier);
          for (const Level& level : kLevels) {
            if (!ProcessorHas(level)) continue;
            const UseLevel use(level);
            for (const int n : {1, 37}) {
              const Outcome got = Call(entry, {x, y}, {1, 1}, n, n / 2);
              EXPECT_TRUE(got.flags == wanted.flags || (got.flags | kUnderflow) == wanted.flags)
                  << entry.symbol << Text({x, y}) << Text(got.r) << " on " << level.name;
              for (const auto& [a, b] :
                   {std::pair(got.r.re, wanted.r.re), std::pair(got.r.im, wanted.r.im)}) {
                const bool special = b == 0 || !std::isfinite(b);
                EXPECT_TRUE(!special || Same(a, b))
                    << entry.symbol << Text({x, y}) << Text(got.r) << ", not " << Text(wanted.r);
              }
            }
          }
        }
      }
    }
  }
}

// Factors that leave the doubles where the product does not.
TEST(ComplexElementary, NothingOverflowsOnTheWay) {
  const auto expect = [](const char* name, Number z, Number wanted) {
    const Outcome got = Call(EntryOf(name, 'z'), z);
    for (const auto& [x, y] : {std::pair(got.r.re, wanted.re), std::pair(got.r.im, wanted.im)}) {
      EXPECT_TRUE(x == y || std::fabs(x - y) <= 0x1p-52 * std::fabs(y))
          << name << Text(z) << Text(got.r);
    }
    return got.flags;
  };
  const auto product = [](double x, double y) {  // e^x y
    return static_cast<double>(std::exp(static_cast<long double>(x)) * y);
  };
  EXPECT_EQ(expect("Exp", {1400, 0x1p-1074}, {kInf, product(1400, 0x1p-1074)}), kOverflow);
  EXPECT_EQ(expect("Sinh", {-1400, 0x1p-1074}, {-kInf, product(1400, 0x1p-1074) / 2}), kOverflow);
  EXPECT_EQ(
      expect("Exp", {709.9, 0.8}, {product(709.9, std::cos(0.8)), product(709.9, std::sin(0.8))}),
      0u);
  EXPECT_EQ(
      expect("Ln", {0x1.8p1023, 0x1.8p1023}, {std::log(1.5) + 1023.5 * std::log(2.0), kQuarterPi}),
      0u);
  EXPECT_EQ(expect("Ln", {0x1p-1074, 0}, {-1074 * std::log(2.0), 0}), 0u);
  EXPECT_EQ(expect("Asinh", {0x1p1023, 0}, {std::asinh(0x1p1023), 0}), 0u);
  EXPECT_EQ(expect("Acos", {1, 0x1p-1074}, {0x1p-537, -0x1p-537}), 0u);
  EXPECT_EQ(expect("Atanh", {0x1p-600, 1}, {0x1p-601, kQuarterPi}), 0u);
  EXPECT_EQ(expect("Sqrt", {0x1p-1074, 0x1p-1074},
                   {1.0986841134678098 * 0x1p-537, 0.45508986056222733 * 0x1p-537}),
            0u);
}

// Next to the unit circle the logarithm is that of the exact x^2 + y^2: also where the larger
// square is below 1/2, and its difference from 1 is no double.
TEST(ComplexElementary, LogarithmsNextToTheUnitCircle) {
  constexpr int kCount = 20000;
  const uint64_t seed = 5;
  Random random(seed);
  std::vector<double> a(2 * kCount);
  std::vector<long double> modulus(kCount);
  for (int i = 0; i < kCount; ++i) {
    const double half = 0x1.6a09e667f3bcdp-1;  // sqrt(1/2)
    const double spread = std::ldexp(random.Unit(), -static_cast<int>(random.Below(45)));
    const double x = half * (1 + (random.Below(2) ? spread * 0.4 : -spread * 0.4));
    double y = std::sqrt(1 - x * x);
    y += std::ldexp(y, -22 - static_cast<int>(random.Below(32))) * (2 * random.Unit() - 1);
    const auto in_units = [](double v) { return static_cast<__int128>(std::ldexp(v, 55)); };
    const double parts[] = {x, y};  // multiples of 2^-55
    const __int128 size = in_units(parts[0]) * in_units(parts[0]) +
                          in_units(parts[1]) * in_units(parts[1]) - (__int128{1} << 110);
    modulus[i] = std::log1p(std::ldexp(static_cast<long double>(size), -110)) / 2;
    const bool swap = random.Below(2);
    a[2 * i] = parts[swap];
    a[2 * i + 1] = parts[!swap];
  }
  struct Want {
    const char* function;
    pex::Tier tier;
    long double factor;
    double bound;
  };
  for (const Want& want :
       {Want{"Ln", pex::Tier::HA, 1, 0x1p-52}, Want{"Ln", pex::Tier::LA, 1, 0x1p-50},
        Want{"Ln", pex::Tier::EP, 1, 0x1p-26},
        Want{"Log10", pex::Tier::HA, 0.434294481903251827651L, 0x1p-52}}) {
    const pex::Entry& entry = EntryOf(want.function, 'z', want.tier);
    std::vector<double> r(2 * kCount);
    entry.Call(kCount, a.data(), nullptr, r.data(), nullptr);
    for (int i = 0; i < kCount; ++i) {
      const long double wanted = modulus[i] * want.factor;
      EXPECT_LE(std::fabs(r[2 * i] - wanted), want.bound * std::fabs(wanted))
          << entry.symbol << Text({a[2 * i], a[2 * i + 1]}) << " " << r[2 * i] << ", seed " << seed;
    }
  }
}

// On the circle's tangents at 1 and i the real part is y^2/2, of floats rounded once where it is
// subnormal.
TEST(ComplexElementary, SubnormalLogarithmsNextToOne) {
  constexpr int kCount = 1000;
  const uint64_t seed = 6;
  Random random(seed);
  std::vector<float> a(2 * kCount), r(2 * kCount), wanted(kCount);
  for (int i = 0; i < kCount; ++i) {
    const double y =
        static_cast<float>(std::ldexp(1 + random.Unit(), -63 - static_cast<int>(random.Below(10))));
    const bool swap = random.Below(2);
    a[2 * i + swap] = random.Below(2) ? 1 : -1;
    a[2 * i + !swap] = static_cast<float>(y);
    wanted[i] = static_cast<float>(y * y / 2);
  }
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    EntryOf("Ln", 'c').Call(kCount, a.data(), nullptr, r.data(), nullptr);
    for (int i = 0; i < kCount; ++i) {
      EXPECT_EQ(r[2 * i], wanted[i])
          << Text({a[2 * i], a[2 * i + 1]}) << " on " << level.name << ", seed " << seed;
    }
  }
}

// Its error times the exponent would be that of a power.
TEST(ComplexElementary, LargePowersOfNumbersInsideTheUnitCircle) {
  const Number a = {0x1.68d6bf298599p-1, -0x1.68c32b968681fp-1}, b = {1e5, 3};
  const Number r = Call(EntryOf("Pow", 'z'), a, b).r;
  EXPECT_LE(std::hypot(r.re + 0x1.d344cd9df4fc1p-493, r.im + 0x1.0ddf99ef53da1p-491),
            0x1p-51 * std::hypot(r.re, r.im))
      << Text(r);
}

// Exact squares, and parts too small to count beside them: their products underflow in silence.
TEST(ComplexElementary, NothingUnderflowsOnTheWay) {
  struct Range {
    const char* function;
    char type;
    int low, high;  // of the smaller and the larger part's exponent
  };
  for (const Range& c :
       {Range{"Ln", 'z', -400, 400}, Range{"Log10", 'z', -400, 400}, Range{"Sqrt", 'z', -400, 400},
        Range{"Atan", 'z', -200, 200}, Range{"Atanh", 'z', -200, 200}, Range{"Ln", 'c', -60, 60},
        Range{"Log10", 'c', -60, 60}, Range{"Sqrt", 'c', -60, 60}, Range{"Atan", 'c', -60, 30},
        Range{"Atanh", 'c', -60, 30}, Range{"Arg", 'z', -400, 400}, Range{"Arg", 'c', -60, 60},
        Range{"Abs", 'z', -400, 499}, Range{"Abs", 'c', -60, 60}}) {
    for (const pex::Tier tier : kTiers) {
      const pex::Entry& entry = EntryOf(c.function, c.type, tier);
      for (const Level& level : kLevels) {
        if (!ProcessorHas(level)) continue;
        const UseLevel use(level);
        for (int high = 0; high < c.high; high += 3) {
          for (int low = -3; low >= c.low; low -= 5) {
            const Number z = {std::ldexp(1.0, high), std::ldexp(1.25, low)};
            for (const int n : {1, 5}) {
              const Outcome r[] = {Call(entry, z, {1, 1}, n, n / 2),
                                   Call(entry, {-z.im, z.re}, {1, 1}, n, n / 2)};
              ASSERT_EQ(r[0].flags, 0u) << entry.symbol << Text(z) << " on " << level.name;
              ASSERT_EQ(r[1].flags, 0u) << entry.symbol << "i" << Text(z) << " on " << level.name;
            }
          }
        }
      }
    }
  }
}

}  // namespace
