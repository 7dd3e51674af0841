// Statistical tests of samples from fixed seeds: p-values to be held against a small level, such as
// 1e-4, which a sound sample of a fixed seed passes for good.
#ifndef TESTS_SUPPORT_STATISTICS_H_
#define TESTS_SUPPORT_STATISTICS_H_

#include <algorithm>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace statistics {

// The chance of a largest distance of at least `distance` between the distribution of n values and
// their own: Kolmogorov's limit with the correction of M. A. Stephens, "Use of the
// Kolmogorov-Smirnov, Cramer-von Mises and related statistics without extensive tables", J. Royal
// Statistical Society B 32 (1970).
inline double KolmogorovP(double distance, size_t n) {
  const double root = std::sqrt(static_cast<double>(n));
  const double x = (root + 0.12 + 0.11 / root) * distance;
  if (!(x >= 0.2)) return std::isnan(x) ? 0 : 1;  // below 0.2 the chance is 1 to 10^-12
  double sum = 0;
  for (int k = 1; k <= 100; ++k) sum += (k % 2 ? 2 : -2) * std::exp(-2.0 * k * k * x * x);
  return std::clamp(sum, 0.0, 1.0);
}

// The p-value of a sample against a continuous distribution function. A NaN in the sample gives 0.
template <typename T, class Cdf>
double KolmogorovSmirnovP(std::vector<T> sample, const Cdf& cdf) {
  if (std::any_of(sample.begin(), sample.end(), [](T x) { return std::isnan(x); })) return 0;
  std::sort(sample.begin(), sample.end());
  const double n = static_cast<double>(sample.size());
  double distance = 0;
  for (size_t i = 0; i < sample.size(); ++i) {
    const double p = cdf(static_cast<double>(sample[i]));
    const double below = static_cast<double>(i) / n;
    distance = std::max({distance, p - below, below + 1 / n - p});
  }
  return KolmogorovP(distance, sample.size());
}

// The p-value of counts of cells against the cells' probabilities, which add up to 1. Neighbouring
// cells are joined until each expects at least 10. A count where none can be gives 0.
inline double ChiSquareP(const std::vector<int64_t>& counts,
                         const std::vector<double>& probabilities) {
  double total = 0;
  for (const int64_t count : counts) total += static_cast<double>(count);
  std::vector<double> seen, expected;
  double more_seen = 0, more_expected = 0;
  for (size_t i = 0; i < counts.size(); ++i) {
    if (probabilities[i] == 0 && counts[i] != 0) return 0;
    more_seen += static_cast<double>(counts[i]);
    more_expected += total * probabilities[i];
    if (more_expected < 10) continue;
    seen.push_back(more_seen);
    expected.push_back(more_expected);
    more_seen = more_expected = 0;
  }
  if (seen.size() < 2) return 1;
  seen.back() += more_seen;
  expected.back() += more_expected;
  double sum = 0;
  for (size_t i = 0; i < seen.size(); ++i) {
    sum += (seen[i] - expected[i]) * (seen[i] - expected[i]) / expected[i];
  }
  return boost::math::gamma_q(0.5 * static_cast<double>(seen.size() - 1), 0.5 * sum);
}

// The p-value of whole numbers against the probability of each: cells from `least` to `most`, and
// one on either side for the rest.
template <typename T, class Pdf>
double ChiSquareOfIntegersP(const std::vector<T>& sample, int64_t least, int64_t most,
                            const Pdf& pdf, double below_least, double above_most) {
  const size_t cells = static_cast<size_t>(most - least + 3);
  std::vector<int64_t> counts(cells);
  std::vector<double> probabilities(cells);
  probabilities.front() = below_least;
  probabilities.back() = above_most;
  for (int64_t x = least; x <= most; ++x) {
    probabilities[static_cast<size_t>(x - least + 1)] = pdf(static_cast<double>(x));
  }
  for (const T value : sample) {
    const int64_t cell = std::clamp<int64_t>(static_cast<int64_t>(value) - least + 1, 0,
                                             static_cast<int64_t>(cells) - 1);
    ++counts[static_cast<size_t>(cell)];
  }
  return ChiSquareP(counts, probabilities);
}

struct Moments {
  double mean, variance, skewness, kurtosis;  // kurtosis 3 for a normal distribution
};

template <typename T>
Moments MomentsOf(const std::vector<T>& sample) {
  const double n = static_cast<double>(sample.size());
  double mean = 0, m2 = 0, m3 = 0, m4 = 0;
  for (const T x : sample) mean += static_cast<double>(x);
  mean /= n;
  for (const T x : sample) {
    const double d = static_cast<double>(x) - mean, d2 = d * d;
    m2 += d2;
    m3 += d2 * d;
    m4 += d2 * d2;
  }
  m2 /= n, m3 /= n, m4 /= n;
  return {mean, m2, m3 / (m2 * std::sqrt(m2)), m4 / (m2 * m2)};
}

// The p-value (two-sided) of a number that should be normal with mean 0 and deviation 1.
inline double NormalP(double z) { return std::erfc(std::fabs(z) * std::sqrt(0.5)); }

// The p-value of the correlation between two samples, or, by values `lag` apart, within one, for
// independent values of finite variance.
template <typename T>
double CorrelationP(const T* x, const T* y, size_t n) {
  const double count = static_cast<double>(n);
  double mx = 0, my = 0, xx = 0, yy = 0, xy = 0;
  for (size_t i = 0; i < n; ++i) mx += static_cast<double>(x[i]), my += static_cast<double>(y[i]);
  mx /= count, my /= count;
  for (size_t i = 0; i < n; ++i) {
    const double dx = static_cast<double>(x[i]) - mx, dy = static_cast<double>(y[i]) - my;
    xx += dx * dx, yy += dy * dy, xy += dx * dy;
  }
  return NormalP(xy / std::sqrt(xx * yy) * std::sqrt(count));
}
template <typename T>
double SerialCorrelationP(const std::vector<T>& sample, size_t lag) {
  return CorrelationP(sample.data(), sample.data() + lag, sample.size() - lag);
}

}  // namespace statistics

#endif  // TESTS_SUPPORT_STATISTICS_H_
