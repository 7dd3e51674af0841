// The exponentials that are a formula, bit by bit: the double of middle accuracy, and the rare
// arguments of every tier, against plain scalar code.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "pexquo/pex.h"
#include "tests/support/levels.h"

namespace {

constexpr double kShifter = 6755399441055744.0;
constexpr double kEdge = 708.39599609375;  // from here on arguments are rare

double Double(uint64_t bits) { return std::bit_cast<double>(bits); }
uint64_t Bits(double x) { return std::bit_cast<uint64_t>(x); }

// A double, and the rest below it in units of it.
struct Pair {
  double hi, lo;
};

std::vector<Pair> Powers(int steps) {
  std::vector<Pair> table;
  mpfr_t x;
  mpfr_init2(x, 300);
  for (int j = 0; j < steps; ++j) {
    mpfr_set_si(x, j, MPFR_RNDN);
    mpfr_div_si(x, x, steps, MPFR_RNDN);
    mpfr_exp2(x, x, MPFR_RNDN);
    const double hi = mpfr_get_d(x, MPFR_RNDN);
    mpfr_sub_d(x, x, hi, MPFR_RNDN);
    mpfr_div_d(x, x, hi, MPFR_RNDN);
    table.push_back({hi, mpfr_get_d(x, MPFR_RNDN)});
  }
  mpfr_clear(x);
  return table;
}

double MiddleExp(double x) {
  static const std::vector<Pair> table = Powers(1024);
  const double kf = x * 1477.3197218702985 + kShifter;
  const double kd = kf - kShifter;
  const double power = table[Bits(kf) & 1023].hi;
  const double s = Double(Bits(power) + (Bits(kf) << 42 & 0xFFF0000000000000));
  const double r = x - kd * Double(0x3F462E42FEC00000) - kd * Double(0x3D5D1CF79ABC9E3B);
  const double p = (Double(0x3FC5555555555556) * r + Double(0x3FE0000001EBFBE0)) * r * r + r;
  return s * p + s;
}

// (hi + lo) 2^n as a subnormal number, rounded once.
double Subnormal(double hi, double lo, int n) {
  mpfr_t x;
  mpfr_init2(x, 200);
  mpfr_set_d(x, hi, MPFR_RNDN);
  mpfr_add_d(x, x, lo, MPFR_RNDN);
  mpfr_mul_2si(x, x, n + 1074, MPFR_RNDN);
  mpfr_rint(x, x, MPFR_RNDN);
  const double r = std::ldexp(mpfr_get_d(x, MPFR_RNDN), -1074);
  mpfr_clear(x);
  return r;
}

double RareExp(double x, int* code) {
  static const std::vector<Pair> table = Powers(64);
  *code = PEX_STATUS_OVERFLOW;
  if (x > Double(0x40862E42FEFA39EF)) return INFINITY;
  *code = PEX_STATUS_UNDERFLOW;
  if (x < Double(0xC0874910D52D3052)) return 0.0;
  const double kf = x * 92.33248261689366 + kShifter;
  const double kd = kf - kShifter;
  const int k = static_cast<int>(Bits(kf));
  const double r = x - kd * Double(0x3F862E42FEFA0000) - kd * Double(0x3D1CF79ABC9E3B3A);
  const double q =
      0.5 + r * (0.1666666666665788 + r * (0.04166666666677052 +
                                           r * (0.008333341995140497 + r * 0.0013888870459233254)));
  const Pair power = table[k & 63];
  const double rest = power.hi * (r + r * r * q + power.lo);
  const int n = k >> 6;
  if (x < Double(0xC086232BDD7ABCD2)) return Subnormal(power.hi, rest, n);
  *code = PEX_STATUS_OK;
  return std::ldexp(power.hi + rest, n);
}

using Entry = int (*)(int32_t, const double*, double*);

class ExpFormula : public testing::Test {
 protected:
  void SetUp() override { _pexSetMode(PEX_ERRMODE_IGNORE); }
  void TearDown() override { _pexSetMode(PEX_MODE_DEFAULT); }

  double Uniform(double a, double b) { return std::uniform_real_distribution<double>(a, b)(bits_); }

  const uint64_t seed_ = std::random_device()();
  std::mt19937_64 bits_{seed_};
};

TEST_F(ExpFormula, PowersHaveTheirKnownBits) {
  EXPECT_EQ(Bits(Powers(1024)[1].hi), 0x3FF002C605E2E8CFu);
  EXPECT_EQ(Bits(Powers(64)[1].hi), 0x3FF02C9A3E778061u);
  EXPECT_EQ(Bits(Powers(64)[1].lo), 0xBC7160139CD8DC5Du);
}

TEST_F(ExpFormula, CommonArguments) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  std::vector<double> x = {0.0, -0.0, 0x1p-1074, -0x1p-1074, 0x1p-53, -0x1p-53, 1.0, -1.0};
  for (double edge = kEdge, i = 0; i < 20; ++i) {
    edge = std::nextafter(edge, 0);
    x.insert(x.end(), {edge, -edge});
  }
  // The product with the power is subnormal, and its rounding shows in the sum.
  x.insert(x.end(), {-0x1.5daf408340abap+9, -0x1.58d8b2a6800cap+9, -0x1.5889551ecd03p+9});
  for (int i = 0; i < 50000; ++i) {
    x.insert(x.end(), {Uniform(-708.39, 708.39), Uniform(-1, 1), Uniform(-1e-3, 1e-3)});
    if (i % 8 == 0) x.push_back(Uniform(-708.39, -680));
  }
  std::vector<double> r(x.size());
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    std::feclearexcept(FE_ALL_EXCEPT);
    _pexdExp_50(static_cast<int32_t>(x.size()), x.data(), r.data());
    EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT), 0);
    for (size_t i = 0; i < x.size(); ++i) {
      ASSERT_EQ(Bits(r[i]), Bits(MiddleExp(x[i]))) << testing::PrintToString(x[i]);
    }
  }
}

TEST_F(ExpFormula, RareArguments) {
  SCOPED_TRACE("seed " + std::to_string(seed_));
  std::vector<double> x;
  for (const uint64_t edge : {0x40862E42FEFA39EFu, 0xC0874910D52D3052u, 0xC086232BDD7ABCD2u}) {
    for (uint64_t bits = edge - 20; bits <= edge + 20; ++bits) x.push_back(Double(bits));
  }
  for (int i = 0; i < 50000; ++i) {
    x.insert(x.end(), {Uniform(kEdge, 709.79), Uniform(-745.2, -708.396)});
  }
  std::vector<double> r(x.size());
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    for (const Entry entry : {_pexdExp_26, _pexdExp_50, _pexdExp_HA}) {
      entry(static_cast<int32_t>(x.size()), x.data(), r.data());
      for (size_t i = 0; i < x.size(); ++i) {
        int code;
        ASSERT_EQ(Bits(r[i]), Bits(RareExp(x[i], &code))) << testing::PrintToString(x[i]);
      }
    }
  }
  for (size_t i = 0; i < x.size(); i += 7) {
    int code;
    RareExp(x[i], &code);
    for (const Entry entry : {_pexdExp_26, _pexdExp_50, _pexdExp_HA}) {
      _pexClearErrStatus();
      entry(1, &x[i], r.data());
      ASSERT_EQ(_pexGetErrStatus(), code) << testing::PrintToString(x[i]);
    }
  }
}

}  // namespace
