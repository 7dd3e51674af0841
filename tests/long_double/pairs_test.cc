// Exact operations and pair functions against MPFR.
#include <fenv.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/long_double/reference.h"

namespace long_double_test {
namespace {

using pex::ldbl::Pair;

constexpr int kPoints = 50000;

void Set(Real& to, Pair p) {
  mpfr_set_ld(to.get(), p.hi, MPFR_RNDN);
  static Real low(64);
  mpfr_set_ld(low.get(), p.lo, MPFR_RNDN);
  mpfr_add(to.get(), to.get(), low.get(), MPFR_RNDN);
}

// |got - want| / |want| in units of 2^-128.
double RelativeError(Pair got, Real& want) {
  static Real value(400);
  Set(value, got);
  mpfr_sub(value.get(), value.get(), want.get(), MPFR_RNDN);
  if (mpfr_zero_p(value.get())) return 0;
  mpfr_div(value.get(), value.get(), want.get(), MPFR_RNDN);
  mpfr_mul_2si(value.get(), value.get(), 128, MPFR_RNDN);
  return std::fabs(mpfr_get_d(value.get(), MPFR_RNDA));
}

// A pair with a random low part, now and then with a short or no one.
Pair RandomPair(Random& g, int low, int high, bool sign) {
  const long double hi = g.Exponents(low, high, sign);
  switch (g.Int(0, 3)) {
    case 0:
      return {hi, 0};
    case 1:
      return pex::ldbl::FastTwoSum(hi, std::ldexp(hi, -66 - g.Int(0, 60)));
    default:
      return pex::ldbl::FastTwoSum(hi, hi * (g.Unit() - 0.5L) * 0x1p-64L);
  }
}

// The theorems on sums and products: nothing is lost, whatever the significands.
TEST(LongDoublePairs, ExactOperations) {
  Random g(10);
  Real want(400), x(64), got(400);
  for (int i = 0; i < kPoints; ++i) {
    const long double a = g.Exponents(-100, 100, true);
    const long double b = i % 4 == 0 ? g.Near(-a) : g.Exponents(-100, 100, true);
    mpfr_set_ld(x.get(), b, MPFR_RNDN);
    const auto same = [&](Pair p) {
      Set(got, p);
      return mpfr_equal_p(got.get(), want.get()) && p.hi == p.hi + p.lo;
    };
    mpfr_set_ld(want.get(), a, MPFR_RNDN);
    mpfr_add(want.get(), want.get(), x.get(), MPFR_RNDN);
    ASSERT_TRUE(same(pex::ldbl::TwoSum(a, b))) << std::hexfloat << a << " + " << b;
    const bool ordered = std::fabs(a) >= std::fabs(b);
    ASSERT_TRUE(same(pex::ldbl::FastTwoSum(ordered ? a : b, ordered ? b : a)));
    mpfr_set_ld(want.get(), a, MPFR_RNDN);
    mpfr_mul(want.get(), want.get(), x.get(), MPFR_RNDN);
    ASSERT_TRUE(same(pex::ldbl::TwoProduct(a, b))) << std::hexfloat << a << " * " << b;
    mpfr_sqr(want.get(), x.get(), MPFR_RNDN);
    ASSERT_TRUE(same(pex::ldbl::TwoSquare(b))) << std::hexfloat << b << " squared";
  }
}

TEST(LongDoublePairs, PairArithmetic) {
  Random g(11);
  Real want(400), x(400), y(400);
  double sum = 0, mixed = 0, product = 0, square = 0, quotient = 0, root = 0;
  for (int i = 0; i < kPoints; ++i) {
    const Pair a = RandomPair(g, -50, 50, true), b = RandomPair(g, -50, 50, true);
    Set(x, a);
    Set(y, b);
    mpfr_mul(want.get(), x.get(), y.get(), MPFR_RNDN);
    product = std::max(product, RelativeError(Mul(a, b), want));
    mpfr_mul_d(want.get(), x.get(), 0.7, MPFR_RNDN);
    mixed = std::max(mixed, RelativeError(Mul(a, static_cast<long double>(0.7)), want));
    mpfr_sqr(want.get(), x.get(), MPFR_RNDN);
    square = std::max(square, RelativeError(Square(a), want));
    mpfr_div(want.get(), x.get(), y.get(), MPFR_RNDN);
    quotient = std::max(quotient, RelativeError(Div(a, b), want));
    const Pair positive = a.hi < 0 ? Negate(a) : a, other = b.hi < 0 ? Negate(b) : b;
    mpfr_abs(x.get(), x.get(), MPFR_RNDN);
    mpfr_abs(y.get(), y.get(), MPFR_RNDN);
    mpfr_sqrt(want.get(), x.get(), MPFR_RNDN);
    root = std::max(root, RelativeError(Sqrt(positive), want));
    mpfr_add(want.get(), x.get(), y.get(), MPFR_RNDN);
    sum = std::max(sum, RelativeError(Add(positive, other), want));
    const bool ordered = positive.hi >= other.hi;
    sum = std::max(
        sum, RelativeError(AddFast(ordered ? positive : other, ordered ? other : positive), want));
  }
  std::printf(
      "in 2^-128: sum %.2f, product %.2f, by a number %.2f, square %.2f, quotient %.2f, root "
      "%.2f\n",
      sum, product, mixed, square, quotient, root);
  EXPECT_LE(sum, 4);
  EXPECT_LE(product, 7);
  EXPECT_LE(mixed, 4);
  EXPECT_LE(square, 7);
  EXPECT_LE(quotient, 16);
  EXPECT_LE(root, 8);
  EXPECT_EQ(Sqrt(Pair{0, 0}).hi, 0);
}

// Scale against one rounding by MPFR to the format with its subnormal numbers, flags included.
TEST(LongDoublePairs, Scale) {
  Random g(12);
  Real want(400), rounded(64);
  const mpfr_exp_t emin = mpfr_get_emin(), emax = mpfr_get_emax();
  for (int i = 0; i < kPoints; ++i) {
    Pair v = RandomPair(g, -30, 30, true);
    // Short numbers make ties and exact results.
    if (i % 3 == 0) {
      v.hi = std::ldexp(static_cast<long double>(g.Int(1, 64) * 2 + 1), -6);
      v.lo = i % 2 ? 0 : v.hi * (g.Unit() - 0.5L) * 0x1p-65L;
    }
    const int n = i % 4 == 0 ? g.Int(-16500, 16500) : g.Int(-16500, -16370);
    Set(want, v);
    mpfr_mul_2si(want.get(), want.get(), n, MPFR_RNDN);
    mpfr_set_emin(-16444);
    mpfr_set_emax(16384);
    int ternary = mpfr_set(rounded.get(), want.get(), MPFR_RNDN);
    ternary = mpfr_check_range(rounded.get(), ternary, MPFR_RNDN);
    const int inexact = mpfr_subnormalize(rounded.get(), ternary, MPFR_RNDN);
    mpfr_set_emin(emin);
    mpfr_set_emax(emax);
    const long double expected = mpfr_get_ld(rounded.get(), MPFR_RNDN);
    feclearexcept(FE_ALL_EXCEPT);
    const long double got = pex::ldbl::Scale(v, n);
    const int flags = fetestexcept(FE_OVERFLOW | FE_UNDERFLOW | FE_INVALID | FE_DIVBYZERO);
    ASSERT_EQ(got, expected) << std::hexfloat << v.hi << " + " << v.lo << " times 2^" << std::dec
                             << n;
    ASSERT_EQ(std::signbit(got), std::signbit(expected));
    int raised = std::isinf(got) ? FE_OVERFLOW : 0;
    if (std::fabs(got) < kMin && inexact != 0) raised = FE_UNDERFLOW;
    ASSERT_EQ(flags, raised) << std::hexfloat << v.hi << " + " << v.lo << " times 2^" << std::dec
                             << n;
  }
}

TEST(LongDoublePairs, Functions) {
  Random g(13);
  Real want(400), x(400);
  double exp = 0, log = 0, log1p = 0;
  for (int i = 0; i < kPoints; ++i) {
    const Pair a = RandomPair(g, -70, 12, true);
    Set(x, a);
    mpfr_exp(want.get(), x.get(), MPFR_RNDN);
    const pex::ldbl::Scaled s = pex::ldbl::ExpPair(a);
    mpfr_mul_2si(want.get(), want.get(), -s.n, MPFR_RNDN);
    exp = std::max(exp, RelativeError(s.value, want));
    Pair b;
    switch (i % 3) {
      case 0:
        b = RandomPair(g, -16200, 16000, false);
        break;
      case 1:
        b = RandomPair(g, -2, 1, false);
        break;
      default:
        b = Add(Pair{1, 0}, RandomPair(g, -300, -6, true));
    }
    Set(x, b);
    mpfr_log(want.get(), x.get(), MPFR_RNDN);
    log = std::max(log, RelativeError(pex::ldbl::LogPair(b), want));
    Pair c = i % 2 ? RandomPair(g, -200, -2, true) : RandomPair(g, -2, 16000, false);
    Set(x, c);
    mpfr_log1p(want.get(), x.get(), MPFR_RNDN);
    log1p = std::max(log1p, RelativeError(pex::ldbl::Log1pPair(c), want));
  }
  std::printf("log2 of the largest relative error: exp %.1f, log %.1f, log1p %.1f\n",
              std::log2(exp) - 128, std::log2(log) - 128, std::log2(log1p) - 128);
  EXPECT_LE(exp, 0x1p40);
  EXPECT_LE(log, 0x1p41);
  EXPECT_LE(log1p, 0x1p41);
}

}  // namespace
}  // namespace long_double_test
