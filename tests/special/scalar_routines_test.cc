// The routines that vector kernels leave single elements to. Which ones a kernel leaves to them is
// its own affair, so they are held to what they promise wherever they may be asked.
#include <gtest/gtest.h>

#include <mpfr.h>

#include <algorithm>
#include <cmath>

#include "accuracy/ulp.h"
#include "pex_core/_heap/real/atan_scalar.h"
#include "pex_core/_heap/real/erfinv_tail.h"
#include "pex_core/_heap/real/hyperbolic_scalar.h"
#include "pex_core/_heap/real/root_scalar.h"
#include "pex_core/erfc/erfc_rare.h"
#include "pex_core/exp/exp_rare.h"
#include "pex_core/ln/ln_rare.h"
#include "tests/support/random.h"

namespace {

constexpr uint64_t kSeed = 61;

using pex::accuracy::ErrorOf;
using pex::accuracy::kDouble;
using pex::accuracy::kSingle;
using pex::accuracy::Real;

constexpr long kBits = 200;

using Exact = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

int ThreeHalves(mpfr_ptr r, mpfr_srcptr x, mpfr_rnd_t) {
  Real root(kBits);
  mpfr_sqrt(root, x, MPFR_RNDN);
  return mpfr_mul(r, root, x, MPFR_RNDN);
}
int NormalTail(mpfr_ptr r, mpfr_srcptr x, mpfr_rnd_t) {
  Real half(kBits);
  mpfr_set_d(half, 0.5, MPFR_RNDN);
  mpfr_sqrt(half, half, MPFR_RNDN);
  mpfr_mul(half, half, x, MPFR_RNDN);
  mpfr_neg(half, half, MPFR_RNDN);
  mpfr_erfc(r, half, MPFR_RNDN);
  return mpfr_div_2ui(r, r, 1, MPFR_RNDN);
}

struct Double {
  const char* name;
  int (*routine)(double, double*);
  Exact exact;
  double low, high, bound;
};
constexpr Double kDoubles[] = {
    {"exp", pex::dExpScalar, mpfr_exp, -708.3, 709.7, 0.53},
    {"exp", pex::dExpScalar, mpfr_exp, 0x1p-60, 1, 0.53},
    {"exp", pex::dExpScalar, mpfr_exp, -0x1p-60, -1, 0.53},
    {"ln", pex::dLnScalar, mpfr_log, 0x1p-1074, 0.9, 0.53},
    {"ln", pex::dLnScalar, mpfr_log, 0.9, 1.1, 0.58},
    {"ln", pex::dLnScalar, mpfr_log, 1.1, 0x1p1023, 0.53},
    {"log10", pex::dLog10Scalar, mpfr_log10, 0x1p-1074, 0.9, 0.53},
    {"log10", pex::dLog10Scalar, mpfr_log10, 0.9, 1.1, 0.58},
    {"log10", pex::dLog10Scalar, mpfr_log10, 1.1, 0x1p1023, 0.53},
    {"cosh", pex::dCoshScalar, mpfr_cosh, 0x1p-60, 1, 0.54},
    {"cosh", pex::dCoshScalar, mpfr_cosh, -710.4, 710.4, 0.54},
    {"sinh", pex::dSinhScalar, mpfr_sinh, 0x1p-60, 0.0272, 0.51},
    {"sinh", pex::dSinhScalar, mpfr_sinh, -0.0272, -0.1, 0.9},
    {"sinh", pex::dSinhScalar, mpfr_sinh, 0.1, 30, 0.6},
    {"sinh", pex::dSinhScalar, mpfr_sinh, -710.4, -20, 0.6},
    {"1/sqrt", pex::InvSqrtScalar, mpfr_rec_sqrt, 0x1p-1074, 0x1p1023, 0.51},
    {"x^(3/2)", pex::Pow3o2Scalar, ThreeHalves, 0x1p-715, 0x1.95p682, 0.51},
    {"erfc", pex::dErfcRare, mpfr_erfc, 16, 26.5, 0.52},
    {"the normal distribution", pex::dCdfNormRare, NormalTail, -37.5, -23, 0.52},
};

struct Single {
  const char* name;
  int (*routine)(float, float*);
  Exact exact;
  double low, high;
};
int Arctangent(float x, float* r) {
  *r = _pexsatan_scalar(x);
  return 0;
}
constexpr Single kSingles[] = {
    {"exp", pex::sExpScalar, mpfr_exp, -87.3, 88.7},
    {"exp", pex::sExpScalar, mpfr_exp, -0x1p-40, -1},
    {"ln", pex::sLnScalar, mpfr_log, 0x1p-149, 0x1p127},
    {"ln", pex::sLnScalar, mpfr_log, 0.9, 1.1},
    {"log10", pex::sLog10Scalar, mpfr_log10, 0x1p-149, 0x1p127},
    {"log10", pex::sLog10Scalar, mpfr_log10, 0.9, 1.1},
    {"cosh", pex::sCoshScalar, mpfr_cosh, 0x1p-40, 1},
    {"cosh", pex::sCoshScalar, mpfr_cosh, -89.4, 89.4},
    {"sinh", pex::sSinhScalar, mpfr_sinh, -0x1p-40, -1},
    {"sinh", pex::sSinhScalar, mpfr_sinh, 1, 89.4},
    {"1/sqrt", pex::InvSqrtScalar, mpfr_rec_sqrt, 0x1p-149, 0x1p127},
    {"x^(3/2)", pex::Pow3o2Scalar, ThreeHalves, 0x1p-84, 0x1p85},
    {"atan", Arctangent, mpfr_atan, 0x1p-126, 0x1p127},
    {"atan", Arctangent, mpfr_atan, -0x1p-15, -0x1p-11},
    {"atan", Arctangent, mpfr_atan, -0x1p-4, -16},
    {"erfc", pex::sErfcRare, mpfr_erfc, 0x1p-20, 9.19},
    {"the normal distribution", pex::sCdfNormRare, NormalTail, -12.9, -0x1p-20},
};

// Even steps of the number or, where it has one sign, of its logarithm.
double Between(double low, double high, double share) {
  if (low * high < 0) return low + (high - low) * share;
  const double from = std::log2(std::fabs(low)), to = std::log2(std::fabs(high));
  return std::copysign(std::exp2(from + (to - from) * share), low);
}

TEST(ScalarRoutines, KeepTheirBoundsInDoublePrecision) {
  Random random(kSeed);
  for (const Double& c : kDoubles) {
    for (int i = 0; i < 1000; ++i) {
      const double x = Between(c.low, c.high, random.Unit());
      double got = 0;
      EXPECT_EQ(c.routine(x, &got), 0) << c.name << std::hexfloat << " " << x;
      Real exact(kBits);
      mpfr_set_d(exact, x, MPFR_RNDN);
      const int inexact = c.exact(exact, exact, MPFR_RNDN);
      ASSERT_LE(ErrorOf(exact, inexact, got, kDouble).ulp, c.bound)
          << c.name << std::hexfloat << " " << x << ": " << got << ", seed " << kSeed;
    }
  }
}

TEST(ScalarRoutines, RoundRightInSinglePrecision) {
  Random random(kSeed + 1);
  for (const Single& c : kSingles) {
    for (int i = 0; i < 1000; ++i) {
      const auto x = static_cast<float>(Between(c.low, c.high, random.Unit()));
      float got = 0;
      EXPECT_EQ(c.routine(x, &got), 0) << c.name << std::hexfloat << " " << x;
      Real exact(kBits);
      mpfr_set_flt(exact, x, MPFR_RNDN);
      const int inexact = c.exact(exact, exact, MPFR_RNDN);
      ASSERT_LE(ErrorOf(exact, inexact, got, kSingle).ulp, 0.5 + 1e-6)
          << c.name << std::hexfloat << " " << x << ": " << got << ", seed " << kSeed + 1;
    }
  }
}

// In all four quadrants, next to the axes, and at the ends of the range.
TEST(ScalarRoutines, AnglesKeepTheirBounds) {
  Random random(kSeed + 2);
  for (int i = 0; i < 8000; ++i) {
    const auto number = [&](int exponent) {
      const double m = random.Below(8) == 0 ? 1 : 1 + random.Unit();
      return std::ldexp(random.Below(2) ? m : -m, exponent);
    };
    const int apart = static_cast<int>(random.Below(i % 2 ? 160 : 8)) - (i % 2 ? 80 : 4);
    const bool is_float = i % 4 < 2;
    const int most = is_float ? 126 : 1022;
    const int at = static_cast<int>(random.Below(static_cast<uint32_t>(2 * most))) - most;
    double y = number(std::clamp(at + apart, -most, most)), x = number(at);
    Real exact(kBits), exact_x(kBits);
    double got = 0;
    if (is_float) {
      y = static_cast<float>(y), x = static_cast<float>(x);
      got = _pexsatan2_scalar(static_cast<float>(y), static_cast<float>(x));
    } else {
      EXPECT_EQ(pex::dAtan2Scalar(y, x, &got), 0);
    }
    mpfr_set_d(exact, y, MPFR_RNDN);
    mpfr_set_d(exact_x, x, MPFR_RNDN);
    const int inexact = mpfr_atan2(exact, exact, exact_x, MPFR_RNDN);
    ASSERT_LE(ErrorOf(exact, inexact, got, is_float ? kSingle : kDouble).ulp,
              is_float ? 0.50001 : 0.52)
        << std::hexfloat << y << ", " << x << ": " << got << ", seed " << kSeed + 2;
  }
}

// The relative error of z = erfcinv(q) is that of erfc(z) over z (ln erfc)'(z).
TEST(ScalarRoutines, InversesOfTheTailsKeepTheirBound) {
  Random random(kSeed + 3);
  for (int i = 0; i < 250; ++i) {
    const double q = Between(0x1p-1074, 0x1p-20, random.Unit());
    for (const bool normal : {false, true}) {
      const pex::Two v = normal ? pex::NormInvTail(q) : pex::ErfcInvTail(q);
      Real z(kBits), off(kBits), slope(kBits);
      mpfr_set_d(z, v.hi, MPFR_RNDN);
      mpfr_add_d(z, z, v.lo, MPFR_RNDN);
      if (normal) {
        Real half(kBits);
        mpfr_set_d(half, 0.5, MPFR_RNDN);
        mpfr_sqrt(half, half, MPFR_RNDN);
        mpfr_mul(z, z, half, MPFR_RNDN);
      }
      mpfr_erfc(off, z, MPFR_RNDN);
      mpfr_sub_d(off, off, q, MPFR_RNDN);
      mpfr_sqr(slope, z, MPFR_RNDN);
      mpfr_exp(slope, slope, MPFR_RNDN);  // e^(z^2) sqrt(pi)/2
      mpfr_mul(off, off, slope, MPFR_RNDN);
      mpfr_div(off, off, z, MPFR_RNDN);
      ASSERT_LE(std::fabs(mpfr_get_d(off, MPFR_RNDN)) * std::sqrt(M_PI) / 2, 0x1p-58)
          << std::hexfloat << q << " normal " << normal << ", seed " << kSeed + 3;
    }
  }
}

}  // namespace
