// Samples of 10^6 numbers against Boost's distribution functions, fixed seeds.
#include <gtest/gtest.h>

#include <boost/math/distributions.hpp>
#include <functional>
#include <vector>

#include "tests/continuous/distributions.h"
#include "tests/support/statistics.h"

namespace {

namespace bm = boost::math;
using continuous::Distribution;
using continuous::Name;

constexpr int32_t kDraws = 1000000;
constexpr double kLevel = 1e-4;

using Cdf = std::function<double(double)>;

// The distribution function.
Cdf CdfOf(const Distribution& d) {
  const double a = d.a, beta = d.beta;
  switch (d.name) {
    case Name::kExponential:
      return [=, e = bm::exponential(1 / beta)](double x) { return cdf(e, x - a); };
    case Name::kLaplace:
      return [e = bm::laplace(a, beta)](double x) { return cdf(e, x); };
    case Name::kWeibull:
      return [=, e = bm::weibull(d.first, beta)](double x) { return cdf(e, x - a); };
    case Name::kCauchy:
      return [e = bm::cauchy(a, beta)](double x) { return cdf(e, x); };
    case Name::kRayleigh:
      return [=, e = bm::rayleigh(beta / std::sqrt(2.0))](double x) { return cdf(e, x - a); };
    case Name::kGumbel:  // Boost's is that of the largest value
      return [e = bm::extreme_value(-a, beta)](double x) { return cdf(complement(e, -x)); };
    case Name::kLognormal:
      return [=, e = bm::lognormal(d.first, d.sigma)](double x) { return cdf(e, (x - a) / beta); };
  }
  return nullptr;
}

// Ordinary and extreme. Single precision cannot tell apart what a large displacement rounds away.
const std::vector<Distribution> kCases = {
    {Name::kExponential, 0, 1},
    {Name::kExponential, -3, 0.125},
    {Name::kExponential, 0, 1e30},
    {Name::kLaplace, 0, 1},
    {Name::kLaplace, 2, 0.5},
    {Name::kLaplace, 0, 1e-30},
    {Name::kWeibull, 0, 1, 1},
    {Name::kWeibull, 1, 2, 3.5},
    {Name::kWeibull, 0, 1, 0.1},
    {Name::kWeibull, 0, 1, 40},
    {Name::kCauchy, 0, 1},
    {Name::kCauchy, -5, 0.01},
    {Name::kCauchy, 0, 1e25},
    {Name::kRayleigh, 0, 1},
    {Name::kRayleigh, 4, 10},
    {Name::kRayleigh, 0, 1e-25},
    {Name::kGumbel, 0, 1},
    {Name::kGumbel, 100, 30},
    {Name::kGumbel, 0, 1e20},
    {Name::kLognormal, 0, 1, 0, 1},
    {Name::kLognormal, 1, 3, -1, 0.25},
    {Name::kLognormal, 0, 1, 2, 5},
};

template <typename T>
void ExpectDistributed(const Distribution& d, int32_t id) {
  SCOPED_TRACE(testing::Message() << "distribution " << static_cast<int>(d.name) << ", a " << d.a
                                  << ", beta " << d.beta << ", " << d.first << ", generator "
                                  << std::hex << id);
  StreamState* stream = nullptr;
  const uint32_t seed = 271828;
  __quoNewStreamEx(&stream, id, 1, &seed);
  std::vector<T> r(kDraws);
  ASSERT_EQ(continuous::Draw(d, 0, stream, kDraws, r.data()), QUO_OK);
  __quoDeleteStream(&stream);
  const Cdf distribution = CdfOf(d);
  EXPECT_GT(statistics::KolmogorovSmirnovP(r, distribution), kLevel);

  // What the distribution function makes uniform, in 1000 cells, and pair by pair.
  std::vector<double> u(r.size());
  std::vector<int64_t> counts(1000);
  for (size_t i = 0; i < r.size(); ++i) {
    u[i] = distribution(static_cast<double>(r[i]));
    ++counts[std::min<size_t>(static_cast<size_t>(u[i] * 1000), 999)];
  }
  EXPECT_GT(statistics::ChiSquareP(counts, std::vector<double>(1000, 0.001)), kLevel);
  EXPECT_GT(statistics::SerialCorrelationP(u, 1), kLevel);
}

TEST(Statistics, OfDoubles) {
  for (const Distribution& d : kCases) ExpectDistributed<double>(d, QUO_BRNG_MT19937);
}

TEST(Statistics, OfSingles) {
  for (const Distribution& d : kCases) ExpectDistributed<float>(d, QUO_BRNG_MCG31M1);
}

}  // namespace
