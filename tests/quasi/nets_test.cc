// What makes the quasi-random sequences even: their tables, elementary intervals, nets and
// discrepancy; and their first points as published.
#include <gtest/gtest.h>

#include <algorithm>

#include "quo_sub_kernel/niederr/niederr_table.h"
#include "tests/quasi/plain.h"

namespace {

using quasi::Kind;
using quasi::Owned;
using quasi::Words;

class Nets : public testing::TestWithParam<Kind> {};
INSTANTIATE_TEST_SUITE_P(Generators, Nets, testing::ValuesIn(quasi::kKinds),
                         [](const auto& info) { return std::string(info.param.name); });

// Points first .. first + count - 1 of so many coordinates; first is at least 1.
Words Points(const Kind& kind, uint32_t dimension, uint32_t first, size_t count) {
  const Owned stream(kind.id, {dimension});
  EXPECT_EQ(__quoSkipAheadStream(stream, uint64_t{first - 1} * dimension), QUO_OK);
  return stream.Take(count * dimension);
}

// ---- Tables. ----

TEST(Tables, SobolHasPrimitivePolynomialsInOrderAndOddNumbers) {
  uint32_t next = 3;  // the least not looked at
  for (const quo::SobolCoordinate& c : quo::kSobolTable) {
    const auto is_primitive = [](uint32_t p) {
      const uint32_t size = 1u << quasi::Degree(p);
      uint32_t order = 1;
      for (uint64_t x = quasi::Divide(2, p); x > 1 && order < size; ++order) {
        x = quasi::Divide(x << 1, p);
      }
      return p % 2 == 1 && order == size - 1;
    };
    while (!is_primitive(next)) ++next;
    EXPECT_EQ(c.polynomial, next++);
    const int e = quasi::Degree(c.polynomial);
    for (int k = 0; k < 8; ++k) {
      if (k < e) {
        EXPECT_TRUE(c.m[k] % 2 == 1 && c.m[k] < 2 << k) << c.polynomial;
      } else {
        EXPECT_EQ(c.m[k], 0) << c.polynomial;
      }
    }
  }
}

TEST(Tables, NiederrHasAllIrreduciblePolynomialsInOrderWithTheirNumerators) {
  uint32_t next = 2;
  for (const quo::NiederrCoordinate& c : quo::kNiederrTable) {
    while (!quasi::IsIrreducible(next)) ++next;
    ASSERT_EQ(c.polynomial, next);
    const uint64_t y = quasi::Numerator(next);
    ASSERT_NE(y, 0u);
    for (int k = 0; k < quasi::Degree(next); ++k) {
      ASSERT_EQ(c.digits >> k & 1, quasi::Digits(y, next) >> (31 - k) & 1) << next;
    }
    ++next;
  }
}

// ---- Published points. ----

// Of the Sobol sequence the first ten after the origin that S. Joe and F. Y. Kuo give for their
// numbers; Niederreiter's first two coordinates, whose numerators leave no choice, are those of
// P. Bratley, B. L. Fox, H. Niederreiter.
TEST(FirstPoints, AreThePublishedOnes) {
  const std::vector<double> sobol = {0.5,    0.5,    0.5,     //
                                     0.75,   0.25,   0.25,    //
                                     0.25,   0.75,   0.75,    //
                                     0.375,  0.375,  0.625,   //
                                     0.875,  0.875,  0.125,   //
                                     0.625,  0.125,  0.875,   //
                                     0.125,  0.625,  0.375,   //
                                     0.1875, 0.3125, 0.9375,  //
                                     0.6875, 0.8125, 0.4375};
  const std::vector<double> niederr = {0.5,   0.5,   0.75,  0.25,  0.25,  0.75,  0.375,  0.375,
                                       0.875, 0.875, 0.625, 0.125, 0.125, 0.625, 0.1875, 0.3125};
  const auto check = [](int32_t id, uint32_t dimension, const std::vector<double>& want) {
    const Owned stream(id, {dimension});
    std::vector<double> got(want.size());
    ASSERT_EQ(_quodRngUniform(0, stream, static_cast<int32_t>(got.size()), got.data(), 0, 1),
              QUO_OK);
    EXPECT_EQ(got, want);
  };
  check(QUO_BRNG_SOBOL, 3, sobol);
  check(QUO_BRNG_NIEDERR, 2, niederr);
}

// ---- Evenness. ----

// 2^m points from a multiple of 2^m on: one in each of the 2^m intervals of every coordinate.
TEST_P(Nets, EveryCoordinateIsEvenlySpreadInEachBlock) {
  const uint32_t s = GetParam().dimensions;
  for (int m = 1; m <= 12; ++m) {
    for (const uint32_t block : {1u, 2u, 5u, 0xFFFFFFFFu >> m}) {
      const uint32_t count = 1u << m;
      const Words x = Points(GetParam(), s, block << m, count);
      for (uint32_t i = 0; i < s; ++i) {
        std::vector<char> seen(count);
        for (size_t k = 0; k < count; ++k) seen[x[k * s + i] >> (32 - m)] = 1;
        ASSERT_EQ(std::count(seen.begin(), seen.end(), 1), count) << "coordinate " << i << " " << m;
      }
    }
  }
}

// The same for 2^m up to 2^32 points: every leading square of the matrix is regular. The matrices
// are those that the points come from, as other tests show.
TEST_P(Nets, EveryLeadingSquareIsRegular) {
  for (size_t i = 0; i < GetParam().dimensions; ++i) {
    quasi::Columns v = GetParam().columns(i);
    // Columns are cleared of row k by the column that has its pivot there.
    for (size_t k = 0; k < 32; ++k) {
      const uint32_t pivot = 0x80000000u >> k;
      ASSERT_NE(v[k] & pivot, 0u) << i << " " << k;
      for (size_t c = k + 1; c < 32; ++c) v[c] ^= v[c] & pivot ? v[k] : 0;
    }
  }
}

// Calls visit(parts) with the ways to write `total` as a sum of s numbers.
template <class Visit>
void EachSum(uint32_t s, int total, std::vector<int>& parts, const Visit& visit) {
  if (s == 1) {
    parts.push_back(total);
    visit(parts);
    parts.pop_back();
    return;
  }
  for (int part = 0; part <= total; ++part) {
    parts.push_back(part);
    EachSum(s - 1, total - part, parts, visit);
    parts.pop_back();
  }
}

// Whether 2^t of the 2^m points lie in each elementary interval of volume 2^(t-m).
bool IsNet(const Words& x, uint32_t s, int m, int t) {
  bool sound = true;
  std::vector<int> parts;
  EachSum(s, m - t, parts, [&](const std::vector<int>& digits) {
    std::vector<uint32_t> counts(size_t{1} << (m - t));
    for (size_t k = 0; k < x.size(); k += s) {
      size_t cell = 0;
      for (uint32_t i = 0; i < s; ++i) {
        const uint64_t leading = uint64_t{x[k + i]} >> (32 - digits[i]);
        cell = cell << digits[i] | static_cast<size_t>(leading);
      }
      ++counts[cell];
    }
    for (const uint32_t count : counts) sound &= count == 1u << t;
  });
  return sound;
}

// t is the sum of e - 1 over the coordinates, the first of Sobol's aside.
TEST_P(Nets, BlocksAreNets) {
  const bool sobol = GetParam().id == QUO_BRNG_SOBOL;
  int t = 0;
  for (uint32_t s = 1; s <= 6; ++s) {
    const uint32_t polynomial = !sobol   ? quo::kNiederrTable[s - 1].polynomial
                                : s == 1 ? 3
                                         : quo::kSobolTable[s - 2].polynomial;
    t += quasi::Degree(polynomial) - 1;
    for (int m = t; m <= (s < 5 ? 12 : t + 3); ++m) {
      for (const uint32_t block : {1u, 6u}) {
        EXPECT_TRUE(IsNet(Points(GetParam(), s, block << m, size_t{1} << m), s, m, t))
            << s << " coordinates, m = " << m << ", t = " << t;
      }
    }
  }
  // The test itself sees what is no net.
  Words bad = Points(GetParam(), 2, 256, 256);
  EXPECT_TRUE(IsNet(bad, 2, 8, 0));
  bad[100] ^= 0x80000000;
  EXPECT_FALSE(IsNet(bad, 2, 8, 0));
}

// The exact star discrepancy of points of the square: the greatest difference between the part of
// the points in a box from the origin, open or closed, and its area, taken at the corners that the
// points' coordinates make.
double StarDiscrepancy(std::vector<std::pair<double, double>> points) {
  std::sort(points.begin(), points.end());
  const double n = static_cast<double>(points.size());
  std::vector<double> y = {0, 1};  // of the points so far, and the ends
  double most = 0;
  for (size_t i = 0; i <= points.size(); ++i) {
    const double left = i == 0 ? 0 : points[i - 1].first;
    const double right = i == points.size() ? 1 : points[i].first;
    for (size_t k = 0; k + 1 < y.size(); ++k) {
      const double inside = static_cast<double>(k) / n;
      most = std::max({most, inside - left * y[k], right * y[k + 1] - inside});
    }
    if (i < points.size()) {
      y.insert(std::upper_bound(y.begin(), y.end() - 1, points[i].second), points[i].second);
    }
  }
  return most;
}

double PairDiscrepancy(const std::vector<double>& u, size_t s, size_t i, size_t j) {
  std::vector<std::pair<double, double>> points;
  for (size_t k = 0; k < u.size(); k += s) points.push_back({u[k + i], u[k + j]});
  return StarDiscrepancy(points);
}

TEST(Discrepancy, OfFewPointsByHand) {
  EXPECT_DOUBLE_EQ(StarDiscrepancy({{0.5, 0.5}}), 0.75);
  EXPECT_DOUBLE_EQ(StarDiscrepancy({{1, 1}}), 1);
  EXPECT_DOUBLE_EQ(StarDiscrepancy({{0.25, 0.25}, {0.75, 0.75}}), 0.4375);
}

// 2^10 points of every pair of neighbours and of the first ten coordinates: far below pseudo-random
// points, the mean of 20 samples of which is 0.039.
TEST_P(Nets, PairsHaveLowDiscrepancy) {
  constexpr size_t kPoints = 1024;
  double random = 0;
  for (uint32_t seed = 1; seed <= 20; ++seed) {
    const Owned stream(QUO_BRNG_MT19937, {seed});
    std::vector<double> u(2 * kPoints);
    _quodRngUniform(0, stream, static_cast<int32_t>(u.size()), u.data(), 0, 1);
    random += PairDiscrepancy(u, 2, 0, 1) / 20;
  }
  EXPECT_GT(random, 0.03);
  constexpr uint32_t kCoordinates = 10;
  const Owned stream(GetParam().id, {kCoordinates});
  std::vector<double> u(kCoordinates * kPoints);
  _quodRngUniform(0, stream, static_cast<int32_t>(u.size()), u.data(), 0, 1);
  double worst = 0, sum = 0;
  int pairs = 0;
  for (size_t i = 0; i < kCoordinates; ++i) {
    for (size_t j = 0; j < i; ++j, ++pairs) {
      const double one = PairDiscrepancy(u, kCoordinates, i, j);
      worst = std::max(worst, one);
      sum += one;
    }
  }
  EXPECT_LT(PairDiscrepancy(u, kCoordinates, 0, 1), random / 8);
  EXPECT_LT(sum / pairs, random / 6);
  EXPECT_LT(worst, random / 3);
}

}  // namespace
