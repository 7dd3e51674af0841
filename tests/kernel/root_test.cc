// Square roots of several vectors are correctly rounded on every level, whatever estimates they
// start from.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <set>
#include <vector>

#include "tests/kernel/root_kernels.h"
#include "tests/support/levels.h"
#include "tests/support/random.h"

namespace {

constexpr size_t kCount = 4096;  // of a call's elements

// The numbers of [1, 4) whose roots lie nearest to the middle of two neighbours, K and K + 1 units
// of 2^-52: t 2^104 = K^2 + K + j for a small j, even as t is a multiple of 2^-52 (2^-51 from 2
// on). The solutions K modulo 2^52 (2^53) grow bit by bit.
std::vector<double> HardArguments() {
  std::vector<double> hard;
  for (const int bits : {52, 53}) {
    for (int j = -64; j <= 64; j += 2) {
      const auto sum = [j](uint64_t k) { return k * k + k + static_cast<uint64_t>(j); };
      std::set<uint64_t> solutions = {0, 1};
      for (int b = 1; b <= bits; ++b) {
        std::set<uint64_t> longer;
        for (const uint64_t k : solutions) {
          for (const uint64_t next : {k, k + (uint64_t{1} << (b - 1))}) {
            if ((sum(next) & ((uint64_t{1} << b) - 1)) == 0) longer.insert(next);
          }
        }
        solutions = longer;
      }
      for (uint64_t k : solutions) {
        if (bits == 52) k += uint64_t{1} << 52;
        if (k < uint64_t{1} << 52) continue;
        const auto square = static_cast<unsigned __int128>(k) * k + k + static_cast<__int128>(j);
        const auto t = static_cast<uint64_t>(square >> bits);
        if (t >> 52 == 1)
          hard.push_back(std::ldexp(static_cast<double>(t), bits == 52 ? -52 : -51));
      }
    }
  }
  return hard;
}

class Roots : public testing::TestWithParam<Level> {};

void Check(const std::vector<double>& t, const double* estimates) {
  std::vector<double> r(t.size());
  RunRoots(t.size(), t.data(), estimates, r.data());
  for (size_t i = 0; i < t.size(); ++i) {
    ASSERT_EQ(r[i], std::sqrt(t[i]))
        << std::hexfloat << t[i] << " from " << (estimates != nullptr ? estimates[i] : 0);
  }
}

TEST_P(Roots, OfAnyNumbers) {
  SKIP_WITHOUT(GetParam());
  const UseLevel level(GetParam());
  Random random(20);
  std::vector<double> t(kCount);
  for (int round = 0; round < 200; ++round) {
    for (double& x : t) {
      x = std::ldexp(1 + random.Unit(), static_cast<int>(random.Below(1000)) - 500);
    }
    Check(t, nullptr);
  }
}

TEST_P(Roots, NextToTheMiddleOfTwoNumbers) {
  SKIP_WITHOUT(GetParam());
  const UseLevel level(GetParam());
  const std::vector<double> hard = HardArguments();
  ASSERT_GT(hard.size(), 80u);
  EXPECT_EQ(std::count(hard.begin(), hard.end(), 1 + 0x1p-52), 1);
  EXPECT_EQ(std::count(hard.begin(), hard.end(), 4 - 0x1p-51), 1);
  Random random(21);
  std::vector<double> t(kCount), y(kCount);
  for (size_t i = 0; i < kCount; ++i) {
    t[i] = std::ldexp(hard[i % hard.size()], 2 * static_cast<int>(random.Below(500)) - 500);
  }
  Check(t, nullptr);
  for (int round = 0; round < 200; ++round) {
    for (size_t i = 0; i < kCount; ++i) {
      const double error = round < 20 ? (round % 2 ? 1 : -1) : 2 * random.Unit() - 1;
      y[i] = (1 + error * 0x1p-14) / std::sqrt(t[i]);
      if (round % 4 < 2) {  // 16 bits, as processors give
        const int scale = 15 - std::ilogb(y[i]);
        y[i] = std::ldexp(std::floor(std::ldexp(y[i], scale)), -scale);
      }
    }
    Check(t, y.data());
  }
}

int32_t Pattern(double y) { return std::bit_cast<int32_t>(static_cast<float>(y)); }

// Whether t's root is right from each estimate that is within 2^-14.
void CheckEveryEstimate(float t) {
  const double inverse = 1 / std::sqrt(double{t});
  ASSERT_EQ(
      WrongRoots(t, Pattern(inverse * (1 - 0x1p-14)) - 1, Pattern(inverse * (1 + 0x1p-14)) + 1), 0u)
      << std::hexfloat << t;
}

// Of [1, 4), the numbers whose roots are within a 32nd unit of the middle of two neighbours, where
// an error shows first, and every 64th.
TEST(RootsOfFloats, NextToTheMiddleFromEveryEstimate) {
  SKIP_WITHOUT(kLevels[2]);
  int hard = 0;
  for (int32_t bits = Pattern(1); bits < Pattern(4); ++bits) {
    const float t = std::bit_cast<float>(bits);
    const double units = std::sqrt(double{t}) * 0x1p23;
    const bool is_hard = std::fabs(units - std::floor(units) - 0.5) < 1.0 / 32;
    hard += is_hard;
    if (is_hard || bits % 64 == 0) {
      ASSERT_NO_FATAL_FAILURE(CheckEveryEstimate(t));
    }
  }
  EXPECT_GT(hard, 1'000'000);
}

TEST(RootsOfFloats, OfAllFromEveryEstimate) {
  SKIP_WITHOUT(kLevels[2]);
  for (int32_t bits = Pattern(1); bits < Pattern(4); ++bits) {
    ASSERT_NO_FATAL_FAILURE(CheckEveryEstimate(std::bit_cast<float>(bits)));
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, Roots, testing::ValuesIn(kLevels),
                         testing::PrintToStringParamName());

}  // namespace
