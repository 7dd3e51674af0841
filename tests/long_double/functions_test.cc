// Largest errors and special values of the long-double trigonometric, hyperbolic and inverse
// functions, powers and roots, against MPFR.
#include <fenv.h>
#include <gtest/gtest.h>

#include <functional>

#include "pex_core/_heap/real/long_double_functions.h"
#include "tests/long_double/reference.h"

namespace long_double_test {
namespace {

using Draw = std::function<long double(Random&)>;
using Reference = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
using Reference2 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);

long Points() {
  const char* given = std::getenv("PEXQUO_TEST_POINTS");
  return given ? std::atol(given) : 20000;
}

int SineOfDegrees(mpfr_ptr r, mpfr_srcptr x, mpfr_rnd_t round) {
  return mpfr_sinu(r, x, 360, round);
}
int CosineOfDegrees(mpfr_ptr r, mpfr_srcptr x, mpfr_rnd_t round) {
  return mpfr_cosu(r, x, 360, round);
}
int InDegrees(mpfr_ptr r, mpfr_srcptr y, mpfr_srcptr x, mpfr_rnd_t round) {
  return mpfr_atan2u(r, y, x, 360, round);
}

const Draw kWhole = [](Random& g) { return g.Exponents(-16382, 16383, true); };
const Draw kSmall = [](Random& g) { return g.Exponents(-70, 0, true); };
const Draw kTiny = [](Random& g) { return g.Exponents(-16383, -30, true); };

Draw Between(long double low, long double high) {
  return [=](Random& g) { return g.Uniform(low, high); };
}
// Around multiples of `step`.
Draw Multiples(long double step) {
  return [=](Random& g) { return g.Near(g.Int(-100000, 100000) * step); };
}
Draw Around(long double centre) {
  return [=](Random& g) { return centre + g.Exponents(-64, -2, true); };
}

struct Unary {
  const char* name;
  Function f;
  Reference reference;
  std::vector<Draw> regimes;
};

constexpr long double kHalfPi = 0xc.90fdaa22168c235p-3L;

// Edges of the steps of the tables, the first of them more often.
const Draw kEdges = [](Random& g) {
  return g.Near((g.Int(0, 1) ? g.Int(-128, 128) : 1) * 0x1p-7L);
};

const Unary kUnary[] = {
    {"sin",
     _pexsinl_scalar,
     mpfr_sin,
     {kWhole, kSmall, kTiny, kEdges, Between(-100, 100), Multiples(kHalfPi)}},
    {"cos",
     _pexcosl_scalar,
     mpfr_cos,
     {kWhole, kSmall, kTiny, kEdges, Between(-100, 100), Multiples(kHalfPi)}},
    {"tan",
     _pextanl_scalar,
     mpfr_tan,
     {kWhole, kSmall, kTiny, kEdges, Between(-100, 100), Multiples(kHalfPi)}},
    {"sind", _pexsindl_scalar, SineOfDegrees, {kSmall, kTiny, Between(-1000, 1000), Multiples(15)}},
    {"cosd",
     _pexcosdl_scalar,
     CosineOfDegrees,
     {kSmall, kTiny, Between(-1000, 1000), Multiples(15)}},
    {"asin", _pexasinl_scalar, mpfr_asin, {kSmall, kTiny, Between(-1, 1)}},
    {"acos", _pexacosl_scalar, mpfr_acos, {kSmall, kTiny, Between(-1, 1)}},
    {"atan",
     _pexatanl_scalar,
     mpfr_atan,
     {kWhole, kSmall, kTiny, kEdges, Between(-4, 4), Around(1)}},
    {"sinh", _pexsinhl_scalar, mpfr_sinh, {kSmall, kTiny, Between(-2, 2), Between(-11357, 11357)}},
    {"cosh", _pexcoshl_scalar, mpfr_cosh, {kSmall, kTiny, Between(-2, 2), Between(-11357, 11357)}},
    {"tanh", _pextanhl_scalar, mpfr_tanh, {kSmall, kTiny, Between(-2, 2), Between(-60, 60)}},
    {"asinh", _pexasinhl_scalar, mpfr_asinh, {kWhole, kSmall, kTiny, Between(-2, 2)}},
    {"acosh",
     _pexacoshl_scalar,
     mpfr_acosh,
     {[](Random& g) { return g.Exponents(0, 16383, false); }, Between(1, 2),
      [](Random& g) { return 1 + g.Exponents(-63, -2, false); }}},
    {"atanh", _pexatanhl_scalar, mpfr_atanh, {kSmall, kTiny, Between(-1, 1)}},
    {"sqrt", _pexsqrtl_scalar, mpfr_sqrt, {[](Random& g) {
       return g.Exponents(-16383, 16383, false);
     }}},
};

TEST(LongDoubleFunctions, OfOneArgumentAreRounded) {
  Real x(64), want(110);
  for (const Unary& function : kUnary) {
    Random random(17);
    double worst = 0;
    long double at = 0;
    for (const Draw& draw : function.regimes) {
      for (long i = 0; i < Points() / static_cast<long>(function.regimes.size()); ++i) {
        const long double argument = draw(random);
        mpfr_set_ld(x.get(), argument, MPFR_RNDN);
        function.reference(want.get(), x.get(), MPFR_RNDN);
        const double error = UlpError(function.f(argument), want);
        if (!(error <= worst)) {
          worst = error;
          at = argument;
        }
      }
    }
    EXPECT_LE(worst, 0.501) << function.name << " at " << std::hexfloat << at;
    std::printf("%s: largest error 0.5 %+.3g ulp at %La\n", function.name, worst - 0.5, at);
  }
}

struct Binary {
  const char* name;
  long double (*f)(long double, long double);
  Reference2 reference;
  std::vector<std::pair<Draw, Draw>> regimes;
};

const Draw kPositive = [](Random& g) { return g.Exponents(-16382, 16383, false); };

const Binary kBinary[] = {
    {"atan2",
     _pexatan2l_scalar,
     mpfr_atan2,
     {{kWhole, kWhole},
      {Between(-9, 9), Between(-9, 9)},
      {kSmall, Between(-1, 1)},
      {kEdges, [](Random& g) { return g.Near(g.Int(1, 16)); }}}},
    {"atan2d",
     _pexatan2dl_scalar,
     InDegrees,
     {{kWhole, kWhole}, {Between(-9, 9), Between(-9, 9)}, {kSmall, Between(-1, 1)}}},
    {"pow",
     _pexpowl_scalar,
     mpfr_pow,
     {{Between(0, 9), Between(-99, 99)},
      {kPositive, Between(-1, 1)},
      {Around(1), [](Random& g) { return g.Exponents(0, 60, true); }},
      {[](Random& g) { return -static_cast<long double>(g.Int(1, 99)); },
       [](Random& g) { return static_cast<long double>(g.Int(-99, 99)); }}}},
};

TEST(LongDoubleFunctions, OfTwoArgumentsAreWithinBound) {
  Real x(64), y(64), want(110);
  for (const Binary& function : kBinary) {
    Random random(18);
    double worst = 0;
    long double at[2] = {};
    for (const auto& [first, second] : function.regimes) {
      for (long i = 0; i < Points() / static_cast<long>(function.regimes.size()); ++i) {
        const long double a = first(random), b = second(random);
        mpfr_set_ld(x.get(), a, MPFR_RNDN);
        mpfr_set_ld(y.get(), b, MPFR_RNDN);
        function.reference(want.get(), x.get(), y.get(), MPFR_RNDN);
        const double error = UlpError(function.f(a, b), want);
        if (!(error <= worst)) {
          worst = error;
          at[0] = a;
          at[1] = b;
        }
      }
    }
    EXPECT_LE(worst, 0.51) << function.name << " at " << std::hexfloat << at[0] << ", " << at[1];
    std::printf("%s: largest error 0.5 %+.3g ulp at %La, %La\n", function.name, worst - 0.5, at[0],
                at[1]);
  }
}

TEST(LongDoubleFunctions, PairsOfResultsAreThoseOfTheSingleFunctions) {
  Random random(19);
  for (int i = 0; i < 10000; ++i) {
    const long double x = i % 2 ? kWhole(random) : random.Uniform(-20, 20);
    long double s, c;
    _pexsincosl_scalar(x, &s, &c);
    EXPECT_EQ(s, _pexsinl_scalar(x)) << std::hexfloat << x;
    EXPECT_EQ(c, _pexcosl_scalar(x)) << std::hexfloat << x;
    _pexsinhcoshl_scalar(x, &s, &c);
    EXPECT_EQ(s, _pexsinhl_scalar(x)) << std::hexfloat << x;
    EXPECT_EQ(c, _pexcoshl_scalar(x)) << std::hexfloat << x;
  }
}

TEST(LongDoubleFunctions, ReductionLeavesTheRest) {
  Random random(20);
  Real exact(17000), pi(17000), rest(17000);
  mpfr_const_pi(pi.get(), MPFR_RNDN);
  mpfr_div_2ui(pi.get(), pi.get(), 1, MPFR_RNDN);
  for (int i = 0; i < 300; ++i) {
    const long double x = kWhole(random);
    LongDoubleReduction r;
    const int quadrant = _pexreduce_pi04l(&r, x);
    mpfr_set_ld(exact.get(), x, MPFR_RNDN);
    long low_bits = 0;
    mpfr_remquo(rest.get(), &low_bits, exact.get(), pi.get(), MPFR_RNDN);
    EXPECT_EQ(quadrant, low_bits & 3) << std::hexfloat << x;
    mpfr_set_ld(exact.get(), r.high, MPFR_RNDN);
    mpfr_sub(exact.get(), rest.get(), exact.get(), MPFR_RNDN);
    const long double low = mpfr_get_ld(exact.get(), MPFR_RNDN);
    EXPECT_NEAR(r.low, low, 0x1p-80L * std::fabs(r.high)) << std::hexfloat << x;
  }
}

constexpr long double kPi = 2 * kHalfPi;

TEST(LongDoubleFunctions, SpecialValues) {
  const struct {
    const char* what;
    long double got, want;
  } rows[] = {
      {"sind(180)", _pexsindl_scalar(180), 0},
      {"sind(-360)", _pexsindl_scalar(-360), -0.0L},
      {"sind(30)", _pexsindl_scalar(30), 0.5L},
      {"sind(1e30 + ...)", _pexsindl_scalar(0x1p200L * 45), 0},
      {"cosd(90)", _pexcosdl_scalar(90), 0},
      {"cosd(-270)", _pexcosdl_scalar(-270), 0},
      {"cosd(60)", _pexcosdl_scalar(60), 0.5L},
      {"cosd(180)", _pexcosdl_scalar(180), -1},
      {"acos(-1)", _pexacosl_scalar(-1), kPi},
      {"acos(1)", _pexacosl_scalar(1), 0},
      {"asin(-1)", _pexasinl_scalar(-1), -kHalfPi},
      {"atan(-inf)", _pexatanl_scalar(-kInf), -kHalfPi},
      {"atan2(0, -0)", _pexatan2l_scalar(0, -0.0L), kPi},
      {"atan2(-0, -0)", _pexatan2l_scalar(-0.0L, -0.0L), -kPi},
      {"atan2(-0, 1)", _pexatan2l_scalar(-0.0L, 1), -0.0L},
      {"atan2(inf, -inf)", _pexatan2l_scalar(kInf, -kInf), 1.5L * kHalfPi},
      {"atan2(1, -inf)", _pexatan2l_scalar(1, -kInf), kPi},
      {"atan2d(1, 1)", _pexatan2dl_scalar(1, 1), 45},
      {"atan2d(-1, -1)", _pexatan2dl_scalar(-1, -1), -135},
      {"atan2d(1, 0)", _pexatan2dl_scalar(1, 0), 90},
      {"tanh(60)", _pextanhl_scalar(60), 1},
      {"sinh(-inf)", _pexsinhl_scalar(-kInf), -kInf},
      {"sinh(12000)", _pexsinhl_scalar(12000), kInf},
      {"cosh(-12000)", _pexcoshl_scalar(-12000), kInf},
      {"acosh(1)", _pexacoshl_scalar(1), 0},
      {"atanh(-1)", _pexatanhl_scalar(-1), -kInf},
      {"pow(1, nan)", _pexpowl_scalar(1, __builtin_nanl("")), 1},
      {"pow(nan, 0)", _pexpowl_scalar(__builtin_nanl(""), 0), 1},
      {"pow(-1, inf)", _pexpowl_scalar(-1, kInf), 1},
      {"pow(-0, -3)", _pexpowl_scalar(-0.0L, -3), -kInf},
      {"pow(-0, -2)", _pexpowl_scalar(-0.0L, -2), kInf},
      {"pow(-0, 3)", _pexpowl_scalar(-0.0L, 3), -0.0L},
      {"pow(-inf, -3)", _pexpowl_scalar(-kInf, -3), -0.0L},
      {"pow(0.5, inf)", _pexpowl_scalar(0.5L, kInf), 0},
      {"pow(0.5, -inf)", _pexpowl_scalar(0.5L, -kInf), kInf},
      {"pow(2, 16384)", _pexpowl_scalar(2, 16384), kInf},
      {"pow(2, -16445)", _pexpowl_scalar(2, -16445), kDenormMin},
      {"pow(-8, 3)", _pexpowl_scalar(-8, 3), -512},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.got, row.want) << row.what;
    EXPECT_EQ(std::signbit(row.got), std::signbit(row.want)) << row.what;
  }
  for (const Unary& function : kUnary) {
    EXPECT_TRUE(std::isnan(function.f(__builtin_nanl("")))) << function.name;
  }
}

// The direction of a point does not change with its distance.
TEST(LongDoubleFunctions, AnglesOfSubnormalNumbers) {
  for (const long double scale : {0x1p-16445L, 0x1p-16430L, 0x1p-16382L}) {
    for (const int y : {1, -2, 3, 7, -1000}) {
      for (const int x : {1, -2, 5, -9, 1023}) {
        EXPECT_EQ(_pexatan2l_scalar(y * scale, x * scale), _pexatan2l_scalar(y, x))
            << y << ", " << x << " times " << scale;
        EXPECT_EQ(_pexatan2dl_scalar(y * scale, x * scale), _pexatan2dl_scalar(y, x))
            << y << ", " << x << " times " << scale;
      }
    }
  }
}

TEST(LongDoubleFunctions, FlagsAreWarranted) {
  const struct {
    const char* what;
    std::function<void()> call;
    int flags;
  } rows[] = {
      {"sin(inf)", [] { (void)_pexsinl_scalar(kInf); }, FE_INVALID},
      {"sin(1e4000)", [] { (void)_pexsinl_scalar(1e4000L); }, 0},
      {"cos(tiny)", [] { (void)_pexcosl_scalar(0x1p-16000L); }, 0},
      {"tan(tiny)", [] { (void)_pextanl_scalar(0x1p-16000L); }, 0},
      {"sind(tiny)", [] { (void)_pexsindl_scalar(0x1p-16000L); }, 0},
      {"asin(2)", [] { (void)_pexasinl_scalar(2); }, FE_INVALID},
      {"acos(1e-4000)", [] { (void)_pexacosl_scalar(1e-4000L); }, 0},
      {"atan(1e4000)", [] { (void)_pexatanl_scalar(1e4000L); }, 0},
      {"atan2(1e-4000, 1)", [] { (void)_pexatan2l_scalar(1e-4000L, 1); }, 0},
      {"atan2(1e-4000, 1e900)", [] { (void)_pexatan2l_scalar(1e-4000L, 1e940L); }, FE_UNDERFLOW},
      {"sinh(1e-4000)", [] { (void)_pexsinhl_scalar(1e-4000L); }, 0},
      {"cosh(12000)", [] { (void)_pexcoshl_scalar(12000); }, FE_OVERFLOW},
      {"acosh(0.5)", [] { (void)_pexacoshl_scalar(0.5L); }, FE_INVALID},
      {"atanh(1)", [] { (void)_pexatanhl_scalar(1); }, FE_DIVBYZERO},
      {"atanh(2)", [] { (void)_pexatanhl_scalar(2); }, FE_INVALID},
      {"pow(0, -1)", [] { (void)_pexpowl_scalar(0, -1); }, FE_DIVBYZERO},
      {"pow(-8, 1/3)", [] { (void)_pexpowl_scalar(-8, 1.0L / 3); }, FE_INVALID},
      {"pow(3, 1e-4000)", [] { (void)_pexpowl_scalar(3, 1e-4000L); }, 0},
      {"pow(10, 5000)", [] { (void)_pexpowl_scalar(10, 5000); }, FE_OVERFLOW},
      {"pow(10, -5000)", [] { (void)_pexpowl_scalar(10, -5000); }, FE_UNDERFLOW},
      {"sqrt(-1)", [] { (void)_pexsqrtl_scalar(-1); }, FE_INVALID},
  };
  for (const auto& row : rows) {
    feclearexcept(FE_ALL_EXCEPT);
    row.call();
    EXPECT_EQ(fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT), row.flags) << row.what;
  }
}

// A quiet NaN passes through without a flag, and so without a report of the functions above these.
TEST(LongDoubleFunctions, QuietNaNRaisesNothing) {
  const volatile long double nan = __builtin_nanl("");
  for (const Unary& function : kUnary) {
    feclearexcept(FE_ALL_EXCEPT);
    EXPECT_TRUE(std::isnan(function.f(nan))) << function.name;
    EXPECT_EQ(fetestexcept(FE_ALL_EXCEPT), 0) << function.name;
  }
}

TEST(LongDoubleFunctions, AnyControlWordGivesTheSameBits) {
  Random random(21);
  for (int i = 0; i < 200; ++i) {
    const long double x = random.Uniform(-0.99L, 0.99L), y = random.Uniform(-9, 9);
    for (const Unary& function : kUnary) {
      const long double argument = function.f == _pexacoshl_scalar ? 1 + std::fabs(x) : x;
      const long double usual = function.f(argument), usual2 = _pexpowl_scalar(2 + x, y);
      fesetround(FE_UPWARD);
      const long double upward = function.f(argument), upward2 = _pexpowl_scalar(2 + x, y);
      fesetround(FE_TONEAREST);
      EXPECT_TRUE(upward == usual || std::isnan(usual)) << function.name;
      EXPECT_EQ(upward2, usual2);
    }
  }
}

}  // namespace
}  // namespace long_double_test
