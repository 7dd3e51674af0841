// The scalar logarithm, square root and floor of the distributions.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "quo_sub_kernel/_math/ln/ln_tables.h"
#include "quo_sub_kernel/_math/scalar.h"
#include "tests/support/random.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

uint64_t Bits(double x) { return std::bit_cast<uint64_t>(x); }

double UlpError(double x) {
  const long double exact = std::log(static_cast<long double>(x));
  if (exact == 0) return quo::__quodLn(x) == 0 ? 0 : kInfinity;
  const long double error = std::fabs(quo::__quodLn(x) - exact);
  return static_cast<double>(std::ldexp(error, 52 - std::ilogb(exact)));
}

// The bounds are the largest errors seen over many more arguments, rounded up.
TEST(Ln, ErrsByAtMostOneAndAHalfUlp) {
  Random random(20241121);
  const auto positive = [&] { return std::bit_cast<double>(random.Bits() % Bits(kInfinity)); };
  const auto subnormal = [&] { return std::bit_cast<double>(random.Bits() >> 12); };
  const auto unit = [&] { return 1 - random.Unit(); };
  const auto above = [&] { return 1 + std::exp2(-7 - 45 * random.Unit()); };
  const auto below = [&] { return 1 - std::exp2(-7 - 46 * random.Unit()); };
  const auto edge = [&] {  // between two rows of the table
    return 1 + (random.Below(64) + 0.5) / 64 + (random.Unit() - 0.5) * 1e-5;
  };
  const auto expect = [](const char* regime, double bound, auto argument) {
    double worst = 0, at = 0;
    for (int i = 0; i < 100000; ++i) {
      const double x = argument(), error = UlpError(x);
      if (error > worst) worst = error, at = x;
    }
    EXPECT_LE(worst, bound) << regime << ", at " << std::hexfloat << at;
    EXPECT_GE(worst, 0.45) << regime << ": nothing was measured";
  };
  expect("all", 1.5, positive);
  expect("subnormal", 1.5, subnormal);
  expect("unit", 1.5, unit);
  expect("next above 1", 0.54, above);
  expect("next below 1", 1.01, below);
  expect("edges", 1.5, edge);
}

TEST(Ln, OfSpecialArguments) {
  EXPECT_EQ(Bits(quo::__quodLn(1)), Bits(0.0));
  EXPECT_EQ(quo::__quodLn(2), 0.6931471805599453);
  EXPECT_EQ(quo::__quodLn(0.5), -0.6931471805599453);
  EXPECT_EQ(Bits(quo::__quodLn(0)), 0xC0874385446D71C3);
  EXPECT_EQ(Bits(quo::__quodLn(-0.0)), 0xC0874385446D71C3);
  EXPECT_EQ(Bits(quo::__quodLn(5e-324)), 0xC0874385446D71C3) << "its logarithm stands for log(0)";
  EXPECT_NEAR(quo::__quodLn(std::numeric_limits<double>::max()), 709.782712893384, 1e-12);
  EXPECT_EQ(std::bit_cast<uint32_t>(quo::__quosLn(0x1p-149f)), 0xC2CE8ED0);
  EXPECT_EQ(std::bit_cast<uint32_t>(quo::kLnSmallestSingle), 0xC2CE8ED0);
  EXPECT_EQ(quo::__quosLn(0.1f), static_cast<float>(quo::__quodLn(0.1f)));
}

// Every row's own point is met without error of the reduction, from either side of a power of 2.
TEST(Ln, RowsBelongTogether) {
  for (int j = 0; j <= 64; ++j) {
    SCOPED_TRACE(j);
    const double c = quo::B_Tbl[j][0];
    EXPECT_EQ(c, quo::B_Tbl[j][1]);
    EXPECT_LE(std::fabs(c * (1 + j / 64.0) - 1), 0x1p-21);
    EXPECT_EQ(std::fmod(c, 0x1p-21), 0) << "the product with a head of 32 bits is exact";
    EXPECT_EQ(std::fmod(quo::T_Tbl[j][0], 0x1p-42), 0);
    const long double log = static_cast<long double>(quo::T_Tbl[j][0]) + quo::T_Tbl[j][1];
    EXPECT_NEAR(static_cast<double>(log + std::log(static_cast<long double>(c))), 0, 1e-19);
  }
}

TEST(Sqrt, IsCorrectlyRounded) {
  Random random(77);
  for (int i = 0; i < 20000; ++i) {
    const double x = std::ldexp(1 + random.Unit(), static_cast<int>(random.Below(1800)) - 900);
    const double root = quo::__quodSqrt(x);
    // x lies between the squares of the neighbouring halves: root^2 +- root ulp, up to ulp^2/4.
    const double ulp = std::ldexp(1.0, std::ilogb(root) - 52);
    ASSERT_LE(std::fabs(std::fma(root, root, -x)), root * ulp) << std::hexfloat << x;
  }
  EXPECT_EQ(Bits(quo::__quodSqrt(-0.0)), Bits(-0.0));
  EXPECT_EQ(quo::__quodSqrt(kInfinity), kInfinity);
}

TEST(Floor, OfEverySize) {
  struct Case {
    double x, want;
  };
  const double next = std::nextafter(1.0, 0.0);
  const Case cases[] = {
      {0.0, 0.0},
      {-0.0, -0.0},
      {0.5, 0.0},
      {next, 0.0},
      {5e-324, 0.0},
      {-5e-324, -1},
      {-0.5, -1},
      {-next, -1},
      {1, 1},
      {-1, -1},
      {1.5, 1},
      {2.5, 2},
      {-1.5, -2},
      {-2.5, -3},
      {3 - 0x1p-51, 2},
      {-3 - 0x1p-51, -4},
      {0x1p51 - 0.25, 0x1p51 - 1},
      {-0x1p51 + 0.25, -0x1p51},
      {0x1p51, 0x1p51},
      {0x1p51 + 0.5, 0x1p51},
      {-0x1p51 - 0.5, -0x1p51 - 1},
      {0x1p52 - 0.5, 0x1p52 - 1},
      {0x1p52 - 1, 0x1p52 - 1},
      {-0x1p52 + 0.5, -0x1p52},
      {0x1p52 + 1, 0x1p52 + 1},
      {-0x1p52 - 1, -0x1p52 - 1},
      {1e300, 1e300},
      {kInfinity, kInfinity},
      {-kInfinity, -kInfinity},
  };
  for (const Case& c : cases) {
    volatile double x = c.x;
    EXPECT_EQ(Bits(quo::__quodFloor(x)), Bits(c.want)) << c.x;
  }
  EXPECT_TRUE(std::isnan(quo::__quodFloor(std::numeric_limits<double>::quiet_NaN())));
  Random random(99);
  for (int i = 0; i < 200000; ++i) {
    const double size = std::exp2(54 * random.Unit()), x = random.Bits() & 1 ? size : -size;
    ASSERT_EQ(quo::__quodFloor(x), std::floor(x)) << x;
  }
}

}  // namespace
