#include "accuracy/ulp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace pex::accuracy {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr float kMaxSingle = std::numeric_limits<float>::max();

// The error of `got` against hi + lo, a finite sum that MPFR holds exactly. mpfr_set_d takes
// hi * 2^scale, for values beyond double.
Error Of(double hi, double lo, double got, const Format& format, int scale = 0) {
  Real exact(2400);
  mpfr_set_d(exact, hi, MPFR_RNDN);
  mpfr_mul_2si(exact, exact, scale, MPFR_RNDN);
  mpfr_add_d(exact, exact, lo, MPFR_RNDN);
  return ErrorOf(exact, 0, got, format);
}

TEST(Ulp, UnitIsThatOfTheExactValue) {
  const struct {
    double hi, lo, got;
    Format format;
    double ulp;
  } cases[] = {
      {1, 0, 1, kDouble, 0},
      {1, 0, 1 + 0x1p-52, kDouble, 1},
      {1, 0, 1 - 0x1p-53, kDouble, 0.5},
      {1, -0x1p-54, 1, kDouble, 0.5},  // below 1 the unit is half as large
      {1, -0x1p-54, 1 - 0x1p-53, kDouble, 0.5},
      {1, -0x1p-54, 1 + 0x1p-52, kDouble, 2.5},
      {1, 0x1p-54, 1, kDouble, 0.25},
      {-3, 0, -3 - 0x1p-50, kDouble, 2},
      {-3, 0, 3, kDouble, 0x1.8p+53},
      {0x1p-1022, 0, 0x1p-1022 - 0x1p-1074, kDouble, 1},  // the spacing stays below the normals
      {0x1p-1030, 0, 0x1p-1030 + 0x1p-1073, kDouble, 2},
      {0x1p-1074, 0, 0, kDouble, 1},
      {0x1p-1074, 0, -0x1p-1074, kDouble, 2},
      {1, 0x1p-24, 1, kSingle, 0.5},
      {1, -0x1p-25, 1, kSingle, 0.5},
      {0x1p-126, -0x1p-150, 0x1p-126, kSingle, 0.5},
      {0x1p-149, 0, 0x1p-148, kSingle, 1},
  };
  for (const auto& c : cases) {
    const Error error = Of(c.hi, c.lo, c.got, c.format);
    EXPECT_EQ(error.ulp, c.ulp) << c.hi << " + " << c.lo << ", got " << c.got;
    EXPECT_EQ(error.from_half, c.ulp - 0.5);
  }
}

TEST(Ulp, HalfAUnitIsToldFromALittleMore) {
  // 1 + 2^-53 is midway; 2^-200 decides.
  EXPECT_EQ(Of(1, 0x1p-53, 1, kDouble).from_half, 0);
  Real exact(400);
  for (const int sign : {-1, 1}) {
    mpfr_set_d(exact, 1, MPFR_RNDN);
    mpfr_add_d(exact, exact, 0x1p-53, MPFR_RNDN);
    mpfr_add_d(exact, exact, sign * 0x1p-200, MPFR_RNDN);
    const Error error = ErrorOf(exact, 0, 1, kDouble);
    EXPECT_EQ(error.from_half, sign * 0x1p-148);
    EXPECT_EQ(error.ulp > 0.5, sign > 0);
    EXPECT_EQ(error.wanted, sign > 0 ? 1 + 0x1p-52 : 1);
  }
}

TEST(Ulp, RelativeErrorIsOverTheExactValueOrTheSmallestNormal) {
  EXPECT_EQ(Of(1.5, 0, 1.5 + 0x1.8p-26, kDouble).relative, 0x1p27);
  EXPECT_EQ(CorrectBits(Of(1.5, 0, 1.5 + 0x1.8p-26, kDouble).relative, kDouble), 26);
  EXPECT_EQ(CorrectBits(Of(-1, 0, -1 + 0x1p-11, kSingle).relative, kSingle), 11);
  EXPECT_EQ(Of(0x1p-1074, 0, 0, kDouble).relative, 2);
  EXPECT_EQ(CorrectBits(0, kDouble), kInf);
}

TEST(Ulp, OverflowAllowsWhatRoundingAllows) {
  const double half = 0x1p970;  // half the unit of the largest number
  EXPECT_EQ(Of(kMax, half, kInf, kDouble).ulp, 0);
  EXPECT_EQ(Of(kMax, half, kMax, kDouble).ulp, 0.5);
  EXPECT_EQ(Of(kMax, std::nextafter(half, 0), kInf, kDouble).ulp, kInf);
  EXPECT_EQ(Of(kMax, 1.5 * half, kMax, kDouble).ulp, 0.75);
  EXPECT_EQ(Of(kMax, half, -kInf, kDouble).ulp, kInf);
  EXPECT_EQ(Of(1, 0, kMax, kDouble, 1024).ulp, kInf);
  EXPECT_EQ(Of(1, 0, kInf, kDouble, 1024).ulp, 0);
  EXPECT_EQ(Of(-1, 0, -kInf, kDouble, 2000).ulp, 0);
  EXPECT_EQ(Of(kMaxSingle, 0x1p103, kInf, kSingle).ulp, 0);
  EXPECT_EQ(Of(kMaxSingle, 0x1p102, kInf, kSingle).ulp, kInf);
  EXPECT_EQ(Of(0x1p128, 0, kMaxSingle, kSingle).ulp, kInf);
}

TEST(Ulp, SpecialValuesCompareAsSuch) {
  Real exact(120);
  const auto of = [&](double x, int inexact, double got) {
    mpfr_set_d(exact, x, MPFR_RNDN);
    return ErrorOf(exact, inexact, got, kDouble).ulp;
  };
  EXPECT_EQ(of(kNaN, 0, kNaN), 0);
  EXPECT_EQ(of(kNaN, 0, 1), kInf);
  EXPECT_EQ(of(1, 0, kNaN), kInf);
  EXPECT_EQ(of(kInf, 0, kInf), 0);
  EXPECT_EQ(of(kInf, 0, -kInf), kInf);
  EXPECT_EQ(of(kInf, 0, kMax), kInf);
  EXPECT_EQ(of(0, 0, 0.0), 0);
  EXPECT_EQ(of(0, 0, -0.0), kInf);
  EXPECT_EQ(of(-0.0, 0, 0.0), kInf);
  EXPECT_EQ(of(0, 0, 0x1p-1074), kInf);  // an exact zero has no tolerance
  // Below MPFR's range: a number, not a zero.
  EXPECT_EQ(of(0, -1, 0x1p-1074), 1);
  EXPECT_EQ(of(0, -1, -0.0), kInf);
  EXPECT_EQ(of(0, -1, 0.0), of(0, -1, 0.0));
  EXPECT_LT(of(0, -1, 0.0), 1e-300);
  EXPECT_EQ(Of(-1, 0, 0.0, kDouble, -1075).ulp, kInf);  // sign of a result that vanishes
  EXPECT_EQ(Of(-1, 0, -0.0, kDouble, -1075).ulp, 0.5);
}

}  // namespace
}  // namespace pex::accuracy
