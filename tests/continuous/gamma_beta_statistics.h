// Samples of gamma and beta numbers against Boost's distribution functions.
#ifndef TESTS_CONTINUOUS_GAMMA_BETA_STATISTICS_H_
#define TESTS_CONTINUOUS_GAMMA_BETA_STATISTICS_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/gamma.hpp>
#include <cmath>
#include <iterator>
#include <vector>

#include "tests/continuous/gamma_beta.h"
#include "tests/support/statistics.h"

namespace gamma_beta {

constexpr double kLevel = 1e-4;

// The range in which a type tells apart numbers near 0 and, for beta, near 1.
template <typename T>
bool IsResolved(const Shape& s, double x) {
  const bool is_double = sizeof(T) == 8;
  const double least = is_double ? 1e-290 : 1e-36;
  return x > least && (s.IsGamma() || x < 1 - (is_double ? 1e-12 : 1e-3));
}

// Kolmogorov and Smirnov's test by the distances at 20000 values of a sorted sample.
template <typename T, class Distribution>
void ExpectKolmogorovSmirnov(const Shape& s, const std::vector<T>& sorted, const Distribution& d) {
  double distance = 0;
  const double n = static_cast<double>(sorted.size());
  const size_t step = std::max<size_t>(1, sorted.size() / 20000);
  for (size_t i = step / 2; i < sorted.size(); i += step) {
    const double x = static_cast<double>(sorted[i]);
    if (!IsResolved<T>(s, x)) continue;
    distance = std::max(distance, std::fabs(cdf(d, x) - (static_cast<double>(i) + 0.5) / n));
  }
  EXPECT_GT(statistics::KolmogorovP(distance, sorted.size()), kLevel) << "distance " << distance;
}

// Counts between quantiles far out on either side.
template <typename T, class Distribution>
void ExpectTails(const Shape& s, const std::vector<T>& sorted, const Distribution& d) {
  std::vector<int64_t> counts;
  std::vector<double> chances;
  int64_t seen = 0;
  double below = 0;
  const auto cell_to = [&](double x, double chance) {
    if (!IsResolved<T>(s, x)) return;
    const auto end = std::lower_bound(sorted.begin(), sorted.end(), static_cast<T>(x));
    counts.push_back(end - sorted.begin() - seen);
    chances.push_back(chance - below);
    seen = end - sorted.begin();
    below = chance;
  };
  constexpr double kTails[] = {3e-6, 1e-5, 3e-5, 1e-4, 3e-4, 1e-3, 1e-2};
  for (const double tail : kTails) cell_to(quantile(d, tail), tail);
  cell_to(quantile(d, 0.5), 0.5);
  for (size_t i = std::size(kTails); i-- > 0;) {
    cell_to(quantile(complement(d, kTails[i])), 1 - kTails[i]);
  }
  counts.push_back(static_cast<int64_t>(sorted.size()) - seen);
  chances.push_back(1 - below);
  EXPECT_GT(statistics::ChiSquareP(counts, chances), kLevel);
}

template <typename T, class Distribution>
void ExpectMoments(const std::vector<T>& sample, const Distribution& d) {
  const double root = std::sqrt(static_cast<double>(sample.size()));
  const statistics::Moments m = statistics::MomentsOf(sample);
  const double deviation = standard_deviation(d), spread = std::sqrt(kurtosis(d) - 1);
  if (deviation < (sizeof(T) == 4 ? 1e-6 : 1e-7) * mean(d)) return;  // lost in the sums' rounding
  EXPECT_GT(statistics::NormalP((m.mean - mean(d)) / deviation * root), kLevel);
  if (spread > 5) return;  // the sum of squares is not yet normal
  EXPECT_GT(statistics::NormalP((m.variance / variance(d) - 1) / spread * root), kLevel);
}

template <typename T, class Distribution>
void ExpectDistributed(const Shape& s, StreamState* stream, size_t n, const Distribution& d) {
  std::vector<T> r(n);
  ASSERT_EQ(Draw(s, stream, static_cast<int32_t>(n), r.data()), QUO_OK);
  ExpectMoments(r, d);
  for (const size_t lag : {1u, 2u, 512u}) {
    EXPECT_GT(statistics::SerialCorrelationP(r, lag), kLevel) << lag << " apart";
  }
  std::sort(r.begin(), r.end());
  ExpectKolmogorovSmirnov(s, r, d);
  ExpectTails(s, r, d);
}

// n numbers of one generator and seed.
template <typename T>
void ExpectDistributed(const Shape& s, int32_t id, size_t n) {
  const uint32_t seed = 161803;
  SCOPED_TRACE(testing::Message() << s << ", generator " << std::hex << id << std::dec << ", seed "
                                  << seed << ", bytes " << sizeof(T));
  StreamState* stream = nullptr;
  ASSERT_EQ(__quoNewStreamEx(&stream, id, 1, &seed), QUO_OK);
  if (s.IsGamma()) {
    ExpectDistributed<T>(s, stream, n, boost::math::gamma_distribution<>(s.p, 1));
  } else {
    ExpectDistributed<T>(s, stream, n, boost::math::beta_distribution<>(s.p, s.q));
  }
  __quoDeleteStream(&stream);
}

}  // namespace gamma_beta

#endif  // TESTS_CONTINUOUS_GAMMA_BETA_STATISTICS_H_
