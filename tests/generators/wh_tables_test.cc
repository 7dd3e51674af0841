// The parameters of the WH members: what is promised of every row.
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <set>
#include <vector>

#include "quo_sub_kernel/wh/wh_tables.h"

namespace quo::test {
namespace {

constexpr int kRows = 273;
static_assert(sizeof(_quo_WH_A) == kRows * 4 && sizeof(_quo_WH_M) == kRows * 16 &&
              sizeof(_quodWH_IM_Tab) == kRows * 32);

uint64_t PowMod(uint64_t x, uint64_t e, uint64_t m) {
  uint64_t power = 1;
  for (; e != 0; e >>= 1, x = x * x % m) {
    if (e & 1) power = power * x % m;
  }
  return power;
}

std::vector<uint32_t> PrimeFactors(uint32_t n) {
  std::vector<uint32_t> factors;
  for (uint32_t p = 2; p * p <= n; ++p) {
    if (n % p == 0) factors.push_back(p);
    while (n % p == 0) n /= p;
  }
  if (n > 1) factors.push_back(n);
  return factors;
}

bool IsPrime(uint32_t n) { return PrimeFactors(n) == std::vector<uint32_t>{n}; }

bool IsPrimitiveRoot(uint32_t a, uint32_t m) {
  for (uint32_t p : PrimeFactors(m - 1)) {
    if (PowMod(a, (m - 1) / p, m) == 1) return false;
  }
  return true;
}

TEST(WhTables, GivenRows) {
  const struct {
    int row;
    uint32_t a[4], m[4];
  } given[] = {{0, {125, 117, 127, 126}, {16770647, 16770643, 16770623, 16770617}},
               {1, {127, 126, 125, 123}, {16770311, 16770283, 16770263, 16770209}},
               {2, {125, 119, 123, 126}, {16769807, 16769771, 16769749, 16769663}},
               {136, {126, 127, 125, 124}, {16758587, 16758571, 16758563, 16758527}},
               {272, {126, 127, 125, 124}, {16766363, 16766359, 16766327, 16766231}}};
  for (const auto& g : given) {
    for (int j = 0; j < 4; ++j) {
      EXPECT_EQ(_quo_WH_A[g.row][j], g.a[j]);
      EXPECT_EQ(_quo_WH_M[g.row][j], g.m[j]);
    }
  }
}

TEST(WhTables, ModuliAreDistinctPrimesInRange) {
  std::set<uint32_t> all;
  for (const auto& row : _quo_WH_M) {
    for (int j = 0; j < 4; ++j) {
      EXPECT_TRUE(IsPrime(row[j])) << row[j];
      EXPECT_TRUE(j == 0 || row[j] < row[j - 1]) << row[j];
      all.insert(row[j]);
    }
  }
  EXPECT_EQ(all.size(), 4u * kRows);
  EXPECT_EQ(*all.begin(), 16718909u);
  EXPECT_EQ(*all.rbegin(), 16776971u);
}

TEST(WhTables, MultipliersArePrimitiveRoots) {
  for (int i = 0; i < kRows; ++i) {
    for (int j = 0; j < 4; ++j) {
      const uint32_t a = _quo_WH_A[i][j];
      EXPECT_TRUE(a >= 112 && a <= 127) << a;
      EXPECT_TRUE(IsPrimitiveRoot(a, _quo_WH_M[i][j])) << a << " modulo " << _quo_WH_M[i][j];
    }
  }
}

// |1 - r m| below half an ulp of r times m, in exact arithmetic: r has 53 bits and m 24, so r m is
// a whole number of 2^-76 and fits 128 bits.
TEST(WhTables, ReciprocalsAreNearest) {
  for (int i = 0; i < kRows; ++i) {
    for (int j = 0; j < 4; ++j) {
      const double r = _quodWH_IM_Tab[i][j];
      const int64_t significand =
          static_cast<int64_t>(std::ldexp(r, 76));  // 1/m is in 2^-24 [1, 2)
      EXPECT_EQ(std::ldexp(static_cast<double>(significand), -76), r);
      __extension__ typedef __int128 Wide;
      const Wide error = (Wide{1} << 76) - Wide{significand} * _quo_WH_M[i][j];
      EXPECT_LT(2 * (error < 0 ? -error : error), Wide{_quo_WH_M[i][j]});
    }
  }
}

// The halves (m - 1)/2 of a row share no factor, so every period is about 2^93.
TEST(WhTables, PeriodsAreLong) {
  for (const auto& row : _quo_WH_M) {
    double log2_period = 1;
    for (int j = 0; j < 4; ++j) {
      for (int k = 0; k < j; ++k) EXPECT_EQ(std::gcd((row[j] - 1) / 2, (row[k] - 1) / 2), 1u);
      log2_period += std::log2((row[j] - 1) / 2);
    }
    EXPECT_GT(log2_period, 92.9799);
  }
}

}  // namespace
}  // namespace quo::test
