// Statistical tests of counts against their distribution functions, for distributions of any width.
#ifndef TESTS_DISCRETE_COUNT_DRAWS_H_
#define TESTS_DISCRETE_COUNT_DRAWS_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/negative_binomial.hpp>
#include <boost/math/distributions/poisson.hpp>
#include <cmath>
#include <cstdint>
#include <vector>

#include "pexquo/quo.h"
#include "tests/support/statistics.h"

namespace count_draws {

constexpr double kLevel = 1e-5;  // of each p-value

// n counts of a stream of its own, from a seed.
template <class Draw>
std::vector<int32_t> Drawn(int32_t generator, uint32_t seed, int32_t n, const Draw& draw) {
  StreamState* stream = nullptr;
  __quoNewStreamEx(&stream, generator, 1, &seed);
  std::vector<int32_t> r(static_cast<size_t>(n));
  EXPECT_EQ(draw(stream, n, r.data()), QUO_OK);
  __quoDeleteStream(&stream);
  return r;
}

// Chi-square over cells of about a seventh of a deviation, single counts where these are wider and
// for the first ones; the two tails of about 10^-4 apart; mean; correlation of neighbours.
template <class Exact>
void ExpectDistribution(const std::vector<int32_t>& r, const Exact& exact) {
  const double mean = boost::math::mean(exact), deviation = boost::math::standard_deviation(exact);
  std::vector<double> ends;  // last counts of the cells
  for (double t = -6; t < 12; t += 0.15) ends.push_back(std::floor(mean + t * deviation));
  for (int k = 0; k < 40; ++k) ends.push_back(k);
  std::sort(ends.begin(), ends.end());
  ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
  std::erase_if(ends, [](double k) { return k < 0 || k > 2147483646; });
  ASSERT_FALSE(ends.empty());

  std::vector<double> below, above, probabilities;
  for (const double k : ends) {
    below.push_back(cdf(exact, k));
    above.push_back(cdf(complement(exact, k)));
    const size_t i = below.size() - 1;
    const double from_below = i == 0 ? below[0] : below[i] - below[i - 1];
    probabilities.push_back(below[i] < 0.5 ? from_below : (i == 0 ? 1 : above[i - 1]) - above[i]);
  }
  probabilities.push_back(above.back());
  std::vector<int64_t> counts(probabilities.size());
  for (const int32_t k : r) {
    ASSERT_GE(k, 0);
    ++counts[static_cast<size_t>(std::lower_bound(ends.begin(), ends.end(), k) - ends.begin())];
  }
  EXPECT_GT(statistics::ChiSquareP(counts, probabilities), kLevel);

  const double n = static_cast<double>(r.size());
  const auto expect_share = [&](const char* tail, double probability, int64_t seen) {
    if (n * probability < 10) return;
    const double z = (static_cast<double>(seen) - n * probability) / std::sqrt(n * probability);
    EXPECT_GT(statistics::NormalP(z), kLevel) << tail << " tail of probability " << probability;
  };
  int64_t seen = 0;
  for (size_t i = 0; i < ends.size() && below[i] < 1e-3; ++i) {
    seen += counts[i];
    if (below[i] > 1e-4) expect_share("lower", below[i], seen);
  }
  seen = counts.back();
  for (size_t i = ends.size(); i-- > 0 && above[i] < 1e-3; seen += counts[i]) {
    if (above[i] > 1e-4) expect_share("upper", above[i], seen);
  }

  if (mean + 12 * deviation > 2147483647) return;  // saturated
  double sum = 0;
  for (const int32_t k : r) sum += k;
  const double z = (sum / n - mean) / deviation * std::sqrt(n);
  if (n * (1 - cdf(exact, 0)) > 1000) {
    EXPECT_GT(statistics::NormalP(z), kLevel) << "mean " << sum / n << " in place of " << mean;
    EXPECT_GT(statistics::SerialCorrelationP(r, 1), kLevel);
  }
}

constexpr double kMeans[] = {1e-9, 1e-4, 0.1, 1,     3,   9.5, 26.999, 27, 27.9,
                             30,   43,   100, 999.3, 1e3, 1e4, 1e6,    1e9};

struct Successes {
  double a, p;
};
constexpr Successes kSuccesses[] = {
    // tables
    {0.1, 0.5},
    {0.1, 1 - 1e-9},
    {1, 0.3},
    {2.5, 0.3},
    {2.5, 1 - 1e-9},
    {5, 0.4},
    {0.02, 0.1},
    {1e6, 1 - 1e-6},
    {1e6, 1 - 1e-9},
    {37.5, 0.2},
    // tangents
    {1, 1e-3},
    {1, 1e-6},
    {1.0001, 1e-3},
    {1.2, 1e-3},
    {2, 1e-4},
    {2.5, 1e-3},
    {2.5, 1e-6},
    {10, 1e-4},
    {50, 0.05},
    {1e3, 0.5},
    {1e5, 0.99},
    {1e6, 0.5},
    {1e6, 1e-3},
    {1e9, 0.99},
    // power pieces
    {0.1, 1e-3},
    {0.1, 1e-6},
    {0.5, 1e-3},
    {0.5, 1e-6},
    {0.9, 1e-3},
    {0.999, 1e-3},
    {1e-3, 1e-6},
    {0.99, 1e-8}};

inline void ExpectAllPoisson(int32_t generator, uint32_t seed, int32_t n) {
  for (const uint32_t method : {QUO_METHOD_POISSON_PTPE, QUO_METHOD_POISSON_NORMAL}) {
    for (const double mean : kMeans) {
      SCOPED_TRACE(testing::Message() << "generator " << generator << " seed " << seed << " method "
                                      << method << " mean " << mean);
      const auto draw = [&](StreamState* s, int32_t count, int32_t* r) {
        return _quoiRngPoisson(method, s, count, r, mean);
      };
      ExpectDistribution(Drawn(generator, seed, n, draw), boost::math::poisson(mean));
    }
  }
}

inline void ExpectAllNegbinomial(int32_t generator, uint32_t seed, int32_t n) {
  for (const Successes& s : kSuccesses) {
    SCOPED_TRACE(testing::Message()
                 << "generator " << generator << " seed " << seed << " a " << s.a << " p " << s.p);
    const auto draw = [&](StreamState* stream, int32_t count, int32_t* r) {
      return _quoiRngNegbinomial(0, stream, count, r, s.a, s.p);
    };
    ExpectDistribution(Drawn(generator, seed, n, draw), boost::math::negative_binomial(s.a, s.p));
  }
}

// Means drawn in turn; each mean's counts are a sample of their own.
inline void ExpectAllVarying(int32_t generator, uint32_t seed, int32_t n) {
  constexpr double kTurn[] = {0.3, 1000, 26.9, 5, 27, 1e6, 80.5};
  constexpr size_t kCount = std::size(kTurn);
  std::vector<double> means(static_cast<size_t>(n));
  for (size_t i = 0; i < means.size(); ++i) means[i] = kTurn[i % kCount];
  const auto draw = [&](StreamState* stream, int32_t count, int32_t* r) {
    return _quoiRngPoissonV(0, stream, count, r, means.data());
  };
  const std::vector<int32_t> all = Drawn(generator, seed, n, draw);
  for (size_t j = 0; j < kCount; ++j) {
    SCOPED_TRACE(testing::Message()
                 << "generator " << generator << " seed " << seed << " mean " << kTurn[j]);
    std::vector<int32_t> r;
    for (size_t i = j; i < all.size(); i += kCount) r.push_back(all[i]);
    ExpectDistribution(r, boost::math::poisson(kTurn[j]));
  }
}

}  // namespace count_draws

#endif  // TESTS_DISCRETE_COUNT_DRAWS_H_
