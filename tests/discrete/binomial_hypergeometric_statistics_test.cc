// Samples of binomial and hypergeometric numbers against Boost.Math: all values, the tails alone,
// moments and neighbours. Built twice: with kDraws = 10^6, and 10^7 for the slow run.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/hypergeometric.hpp>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "tests/discrete/counts.h"
#include "tests/support/statistics.h"

#ifndef PEXQUO_DRAWS
#define PEXQUO_DRAWS 1000000
#endif

namespace {

using counts::Law;
using counts::Stream;

constexpr auto B = Law::Binomial;
constexpr auto H = Law::Hypergeometric;

constexpr int32_t kDraws = PEXQUO_DRAWS, kHighest = 2147483647;
constexpr double kLevel = 1e-5;  // of hundreds of p-values from fixed seeds

const Law kLaws[] = {B(1, 0.5),
                     B(1000, 1e-12),
                     B(kHighest, 1e-12),
                     B(kHighest, 1 - 1e-12),
                     B(10, 0.01),
                     B(1, 0.1),
                     B(20, 0.3),
                     B(20, 0.7),
                     B(40, 0.5),
                     B(27, 0.37),
                     B(999, 0.01),
                     B(1001, 0.01),
                     B(100, 0.3),
                     B(3000, 0.99),
                     B(240, 0.5),
                     B(kHighest, 2.7e-8),
                     B(242, 0.5),
                     B(610000, 1e-4),
                     B(kHighest, 2.9e-8),
                     B(1000, 0.4),
                     B(20000, 0.5),
                     B(1000000, 0.99),
                     B(100000000, 1e-4),
                     B(kHighest, 1e-4),
                     H(2, 1, 1),
                     H(kHighest, 3, 1000000000),
                     H(100, 20, 30),
                     H(100, 80, 30),
                     H(100, 20, 70),
                     H(100, 80, 70),
                     H(960, 480, 480),
                     H(1000, 500, 500),
                     H(1000, 1, 999),
                     H(100000, 50, 40000),
                     H(100000, 99900, 40000),
                     H(10000, 2000, 3000),
                     H(10000, 7000, 9000),
                     H(100000, 30000, 200),
                     H(1000000, 300000, 400000)};

struct Exact {
  std::function<double(double)> pdf, cdf, above;
};

Exact ExactOf(const Law& law) {
  const auto from = [](auto d) {
    return Exact{[d](double k) { return pdf(d, k); }, [d](double k) { return cdf(d, k); },
                 [d](double k) { return cdf(complement(d, k)); }};
  };
  if (law.l == 0) return from(boost::math::binomial_distribution<double>(law.s, law.p));
  using Hypergeometric = boost::math::hypergeometric_distribution<double>;
  return from(Hypergeometric(static_cast<uint64_t>(law.m), static_cast<uint64_t>(law.s),
                             static_cast<uint64_t>(law.l)));
}

class Sample : public testing::TestWithParam<Law> {};

TEST_P(Sample, HasItsLaw) {
  const Law law = GetParam();
  const Exact exact = ExactOf(law);
  const auto mean = static_cast<double>(law.Mean());
  const double deviation = std::sqrt(static_cast<double>(law.Variance()));
  const auto at = [&](double z) {
    const double k = std::round(mean + z * deviation);
    return static_cast<int64_t>(std::clamp(k + (z > 6 ? 8 : 0), static_cast<double>(law.Least()),
                                           static_cast<double>(law.Most())));
  };
  for (const int32_t id : {QUO_BRNG_MT19937, QUO_BRNG_MCG59}) {
    SCOPED_TRACE(testing::Message() << id << ", seed 20240229");
    const auto r = law.Draw(Stream(id), kDraws);

    const int64_t least = at(-7), most = at(7);
    const auto below = [&](int64_t k) {
      return k > law.Least() ? exact.cdf(static_cast<double>(k - 1)) : 0;
    };
    const auto above = [&](int64_t k) {
      return k < law.Most() ? exact.above(static_cast<double>(k)) : 0;
    };
    const auto p_value = [&](int64_t from, int64_t to) {
      return statistics::ChiSquareOfIntegersP(r, from, to, exact.pdf, below(from), above(to));
    };
    EXPECT_GT(p_value(least, most), kLevel);
    EXPECT_GT(p_value(least, at(-3.3)), kLevel) << "the lower tail";
    EXPECT_GT(p_value(at(3.3), most), kLevel) << "the upper tail";

    if (mean * kDraws > 100 && deviation * deviation * kDraws > 100) {
      const double middle = std::round(mean);  // sums of numbers of 10 digits would not be exact
      std::vector<double> off(r.begin(), r.end());
      for (double& x : off) x -= middle;
      const auto moments = statistics::MomentsOf(off);
      const double root = std::sqrt(static_cast<double>(kDraws));
      const double mean_off = static_cast<double>(law.Mean() - middle);
      EXPECT_GT(statistics::NormalP((moments.mean - mean_off) / deviation * root), kLevel);
      const double ratio = moments.variance / (deviation * deviation);
      EXPECT_GT(statistics::NormalP((ratio - 1) * root / std::sqrt(moments.kurtosis - 1)), kLevel);
      EXPECT_GT(statistics::SerialCorrelationP(off, 1), kLevel);
      EXPECT_GT(statistics::SerialCorrelationP(off, 2), kLevel);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Counts, Sample, testing::ValuesIn(kLaws));

// So wide that its values are as good as continuous: the normal limit with Cornish and Fisher's
// first term, within 1e-8 of the distribution function.
TEST(WideSample, HasItsLaw) {
  for (const Law& law :
       {B(kHighest, 0.5), B(kHighest, 0.466), H(kHighest, kHighest / 2, kHighest / 2),
        H(kHighest, 1000000000, 1500000000)}) {
    SCOPED_TRACE(testing::PrintToString(law));
    const auto mean = static_cast<double>(law.Mean());
    const double deviation = std::sqrt(static_cast<double>(law.Variance()));
    const double l = law.l == 0 ? 1e300 : law.l, p = law.l == 0 ? law.p : law.m / l;
    const double skewness = (1 - 2 * p) * (law.l == 0 ? 1 : 1 - 2.0 * law.s / l) / deviation;
    const auto r = law.Draw(Stream(QUO_BRNG_MT19937), kDraws);
    EXPECT_GT(statistics::KolmogorovSmirnovP(r,
                                             [&](double k) {
                                               const double z = (k + 0.5 - mean) / deviation;
                                               return 0.5 * std::erfc(-z * std::sqrt(0.5)) -
                                                      skewness / 6 * (z * z - 1) *
                                                          std::exp(-z * z / 2) * 0.3989422804;
                                             }),
              kLevel);
    const auto moments = statistics::MomentsOf(r);
    const double root = std::sqrt(static_cast<double>(kDraws));
    EXPECT_GT(statistics::NormalP((moments.mean - mean) / deviation * root), kLevel);
    EXPECT_GT(statistics::NormalP((moments.variance / (deviation * deviation) - 1) * root /
                                  std::sqrt(2.0)),
              kLevel);
    EXPECT_GT(statistics::NormalP((moments.skewness - skewness) * root / std::sqrt(6.0)), kLevel);
    EXPECT_GT(statistics::NormalP((moments.kurtosis - 3) * root / std::sqrt(24.0)), kLevel);
  }
}

}  // namespace
