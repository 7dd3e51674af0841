// Samples of 10^6 from fixed seeds against the normal distribution: distance of the distributions,
// moments, tails, correlation of neighbours; covariance of vectors.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/normal.hpp>
#include <cmath>
#include <vector>

#include "tests/gaussian/gaussian_reference.h"
#include "tests/support/statistics.h"

namespace {

using namespace reference;
using boost::math::normal;

constexpr int32_t kN = 1000000;
constexpr double kLevel = 1e-4;  // a p-value below is a failure

template <class P>
class GaussianStatistics : public testing::Test {};
using Types = testing::Types<Double, Single>;
TYPED_TEST_SUITE(GaussianStatistics, Types);

TYPED_TEST(GaussianStatistics, IsNormal) {
  using T = typename TypeParam::T;
  const struct { double a, sigma; } parameters[] = {{0, 1}, {-3, 0.25}, {1e6, 1e4}, {0, 1e-30}};
  constexpr uint32_t kSeed = 20240611;
  for (const int32_t id : {QUO_BRNG_MCG59, QUO_BRNG_WH + 11}) {
    for (const auto& p : parameters) {
      for (uint32_t method = 0; method < 3; ++method) {
        SCOPED_TRACE(testing::Message() << "generator " << id << ", method " << method << ", sigma "
                                        << p.sigma << ", seed " << kSeed);
        StreamState* stream = NewStream(id, kSeed);
        std::vector<T> x(kN);
        ASSERT_EQ(Gaussian(method, stream, kN, x.data(), T(p.a), T(p.sigma)), 0);
        __quoDeleteStream(&stream);

        const normal distribution(T(p.a), T(p.sigma));
        EXPECT_GT(statistics::KolmogorovSmirnovP(
                      x, [&](double v) { return boost::math::cdf(distribution, v); }),
                  kLevel);

        // The tails by themselves, to five deviations.
        std::vector<double> edges = {-5, -4.5, -4, -3.5, -3, -2.5, 2.5, 3, 3.5, 4, 4.5, 5};
        std::vector<int64_t> counts(edges.size() + 1);
        std::vector<double> standard(x.begin(), x.end()), probabilities(edges.size() + 1);
        for (double& v : standard) {
          v = (v - distribution.mean()) / distribution.standard_deviation();
          ++counts[static_cast<size_t>(std::upper_bound(edges.begin(), edges.end(), v) -
                                       edges.begin())];
        }
        double below = 0;
        for (size_t i = 0; i < edges.size(); ++i) {
          const double upper = boost::math::cdf(normal(), edges[i]);
          probabilities[i] = upper - below;
          below = upper;
        }
        probabilities.back() = boost::math::cdf(boost::math::complement(normal(), edges.back()));
        EXPECT_GT(statistics::ChiSquareP(counts, probabilities), kLevel);

        // Deviations of the moments of n normal numbers: 1, sqrt 2, sqrt 6, sqrt 24, by sqrt n.
        const auto m = statistics::MomentsOf(standard);
        const double root = std::sqrt(double{kN});
        EXPECT_GT(statistics::NormalP(m.mean * root), kLevel);
        EXPECT_GT(statistics::NormalP((m.variance - 1) * root / std::sqrt(2.0)), kLevel);
        EXPECT_GT(statistics::NormalP(m.skewness * root / std::sqrt(6.0)), kLevel);
        EXPECT_GT(statistics::NormalP((m.kurtosis - 3) * root / std::sqrt(24.0)), kLevel);
        for (const size_t lag : {1, 2, 3}) {
          EXPECT_GT(statistics::SerialCorrelationP(standard, lag), kLevel) << lag;
        }
      }
    }
  }
}

// Mean and covariance of vectors, whose standard errors are sqrt(C[i][i] / n) and
// sqrt((C[i][i] C[j][j] + C[i][j]^2) / n).
TYPED_TEST(GaussianStatistics, VectorsHaveTheCovariance) {
  using T = typename TypeParam::T;
  constexpr int32_t m = 4, n = kN / m;
  const T a[m] = {1, -2, 0, 10};
  const T full[m][m] = {{2, 9, 9, 9}, {-1, 1, 9, 9}, {T(0.5), 3, T(0.25), 9}, {1, 1, 1, 1}};
  const T packed[] = {2, -1, T(0.5), 1, 1, 3, 1, T(0.25), 1, 1};
  const T diagonal[m] = {2, 1, T(0.25), 1};
  for (const int32_t storage : {0, 1, 2}) {
    StreamState* stream = NewStream(QUO_BRNG_MCG59, 77);
    std::vector<T> x(kN);
    ASSERT_EQ(GaussianMV(2, stream, n, x.data(), m, storage, a,
                         storage == 0   ? full[0]
                         : storage == 1 ? packed
                                        : diagonal),
              0);
    __quoDeleteStream(&stream);
    double covariance[m][m] = {}, mean[m] = {}, seen[m][m] = {};
    for (int i = 0; i < m; ++i) {
      for (int j = 0; j < m; ++j) {
        for (int k = 0; k <= std::min(i, j); ++k) {
          if (storage == 2 && (k != i || k != j)) continue;
          covariance[i][j] += static_cast<double>(full[i][k]) * static_cast<double>(full[j][k]);
        }
      }
    }
    for (int v = 0; v < n; ++v) {
      for (int i = 0; i < m; ++i) {
        const double di = x[static_cast<size_t>(v * m + i)] - a[i];
        mean[i] += di / n;
        for (int j = 0; j < m; ++j)
          seen[i][j] += di * (x[static_cast<size_t>(v * m + j)] - a[j]) / n;
      }
    }
    for (int i = 0; i < m; ++i) {
      EXPECT_GT(statistics::NormalP(mean[i] / std::sqrt(covariance[i][i] / n)), kLevel);
      for (int j = 0; j < m; ++j) {
        const double error = std::sqrt(
            (covariance[i][i] * covariance[j][j] + covariance[i][j] * covariance[i][j]) / n);
        EXPECT_GT(statistics::NormalP((seen[i][j] - covariance[i][j]) / error), kLevel)
            << "storage " << storage << ", " << i << ' ' << j;
      }
    }
  }
}

}  // namespace
