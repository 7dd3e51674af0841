/// \file
/// Continuous distributions. Included by pexquo/distributions.hpp.
#ifndef PEXQUO_CONTINUOUS_HPP_
#define PEXQUO_CONTINUOUS_HPP_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <source_location>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "pexquo/distribution.hpp"
#include "pexquo/error.hpp"
#include "pexquo/pexquo.h"
#include "pexquo/stream.hpp"

namespace pexquo {

/// How normal numbers are made of uniform ones.
enum class normal_method : std::int32_t {
  boxmuller = QUO_METHOD_GAUSSIAN_BOXMULLER,    ///< two uniforms a number
  boxmuller2 = QUO_METHOD_GAUSSIAN_BOXMULLER2,  ///< two uniforms two numbers; the second may wait
                                                ///< in the stream for the next call
  icdf = QUO_METHOD_GAUSSIAN_ICDF,  ///< inversion: one uniform a number, ascending with it
};

namespace detail {

constexpr Takes TakesOf(normal_method method) {
  return method == normal_method::boxmuller    ? Takes::two
         : method == normal_method::boxmuller2 ? Takes::pairs
                                               : Takes::one;
}

}  // namespace detail

/// Uniform on [a, b), a < b. Rounding may give b itself, unless the numbers are clamped.
class uniform : public detail::Distribution<uniform, double> {
 public:
  /// Of the parameters below.
  explicit constexpr uniform(double the_a = 0, double the_b = 1, bool the_clamp = false)
      : a(the_a), b(the_b), clamp(the_clamp) {}

  double a;    ///< lower bound
  double b;    ///< upper bound
  bool clamp;  ///< whether numbers are forced into [a, b]

  /// \cond
  static constexpr std::string_view kName = "pexquo::uniform";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngUniform(Method(), s, n, r, a, b);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngUniform(Method(), s, n, r, detail::F(a), detail::F(b));
  }
  /// \endcond

 private:
  std::int32_t Method() const { return clamp ? static_cast<std::int32_t>(QUO_METHOD_ACCURATE) : 0; }
};

/// Normal.
class normal : public detail::Distribution<normal, double> {
 public:
  /// Of the parameters below.
  explicit constexpr normal(double the_mean = 0, double the_sigma = 1,
                            normal_method the_method = normal_method::icdf)
      : mean(the_mean), sigma(the_sigma), method(the_method) {}

  double mean;           ///< mean
  double sigma;          ///< standard deviation, above 0
  normal_method method;  ///< how

  /// \cond
  static constexpr std::string_view kName = "pexquo::normal";
  detail::Takes takes() const { return detail::TakesOf(method); }
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngGaussian(static_cast<std::int32_t>(method), s, n, r, mean, sigma);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngGaussian(static_cast<std::int32_t>(method), s, n, r, detail::F(mean),
                           detail::F(sigma));
  }
  /// \endcond
};

/// How the lower triangular factor T of a multivariate normal distribution is stored.
enum class storage : std::int32_t {
  full = QUO_STORAGE_FULL,          ///< m rows of m numbers; those above the diagonal are not read
  packed = QUO_STORAGE_PACKED,      ///< m (m + 1) / 2 numbers, by columns from the diagonal down
  diagonal = QUO_STORAGE_DIAGONAL,  ///< m numbers
};

/// Multivariate normal: vectors mean + T z of dimension m, one behind the other in the range, whose
/// size is a multiple of m; z standard normal, T lower triangular, so that T T' is the covariance.
///
/// \code
/// const pexquo::normal_mv pair({0, 1}, {1, 0, 0.5, 2});   // rows (1 0) and (0.5 2)
/// const auto xy = pair.sample(s, 2 * 1000);
/// \endcode
class normal_mv : public detail::Distribution<normal_mv, double> {
 public:
  /// \throws argument_error if there is no mean or the factor has not as many numbers as its
  /// storage says
  normal_mv(std::vector<double> mean, std::vector<double> factor, storage stored = storage::full,
            normal_method method = normal_method::icdf,
            std::source_location where = std::source_location::current())
      : mean_(std::move(mean)), factor_(std::move(factor)), storage_(stored), method_(method) {
    const std::size_t m = mean_.size();
    const std::size_t wanted = stored == storage::full     ? m * m
                               : stored == storage::packed ? m * (m + 1) / 2
                                                           : m;
    if (m == 0) throw argument_error(kName, "the mean has no element", QUO_BAD_DIMENSION, where);
    if (factor_.size() != wanted) {
      throw argument_error(kName,
                           "the factor has " + std::to_string(factor_.size()) + " numbers, not " +
                               std::to_string(wanted),
                           QUO_BAD_DIMENSION, where);
    }
  }

  /// How many numbers a vector has.
  std::size_t dimension() const noexcept { return mean_.size(); }

  /// \cond
  static constexpr std::string_view kName = "pexquo::normal_mv";
  // Large full factors are multiplied by the system's BLAS, whose rounding may go by the number of
  // vectors: they are not drawn in blocks.
  detail::Takes takes() const {
    constexpr std::size_t kMostByItself = 10;
    return storage_ == storage::full && dimension() > kMostByItself ? detail::Takes::varying
                                                                    : detail::TakesOf(method_);
  }
  std::size_t unit(const stream&) const { return dimension(); }
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngGaussianMV(static_cast<std::int32_t>(method_), s, n, r,
                             static_cast<std::int32_t>(dimension()),
                             static_cast<std::int32_t>(storage_), mean_.data(), factor_.data());
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    const std::vector<float> mean = detail::Floats(mean_), factor = detail::Floats(factor_);
    return quosRngGaussianMV(static_cast<std::int32_t>(method_), s, n, r,
                             static_cast<std::int32_t>(dimension()),
                             static_cast<std::int32_t>(storage_), mean.data(), factor.data());
  }
  /// \endcond

 private:
  // One vector is more than one number.
  using Distribution::operator();

  std::vector<double> mean_, factor_;
  storage storage_;
  normal_method method_;
};

/// Exponential beyond a: density e^(-(x - a)/beta)/beta.
class exponential : public detail::Distribution<exponential, double> {
 public:
  /// Of the parameters below.
  explicit constexpr exponential(double the_a = 0, double the_beta = 1)
      : a(the_a), beta(the_beta) {}

  double a;     ///< displacement
  double beta;  ///< scale, above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::exponential";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngExponential(0, s, n, r, a, beta);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngExponential(0, s, n, r, detail::F(a), detail::F(beta));
  }
  /// \endcond
};

/// Laplace (two-sided exponential) about a.
class laplace : public detail::Distribution<laplace, double> {
 public:
  /// Of the parameters below.
  explicit constexpr laplace(double the_a = 0, double the_beta = 1) : a(the_a), beta(the_beta) {}

  double a;     ///< mean
  double beta;  ///< scale, above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::laplace";
  static constexpr detail::Takes kTakes = detail::Takes::two;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngLaplace(0, s, n, r, a, beta);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngLaplace(0, s, n, r, detail::F(a), detail::F(beta));
  }
  /// \endcond
};

/// Weibull beyond a.
class weibull : public detail::Distribution<weibull, double> {
 public:
  /// Of the parameters below.
  explicit constexpr weibull(double the_alpha = 1, double the_a = 0, double the_beta = 1)
      : alpha(the_alpha), a(the_a), beta(the_beta) {}

  double alpha;  ///< shape, above 0
  double a;      ///< displacement
  double beta;   ///< scale, above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::weibull";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngWeibull(0, s, n, r, alpha, a, beta);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngWeibull(0, s, n, r, detail::F(alpha), detail::F(a), detail::F(beta));
  }
  /// \endcond
};

/// Cauchy about a.
class cauchy : public detail::Distribution<cauchy, double> {
 public:
  /// Of the parameters below.
  explicit constexpr cauchy(double the_a = 0, double the_beta = 1) : a(the_a), beta(the_beta) {}

  double a;     ///< median
  double beta;  ///< half the half-value width, above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::cauchy";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngCauchy(0, s, n, r, a, beta);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngCauchy(0, s, n, r, detail::F(a), detail::F(beta));
  }
  /// \endcond
};

/// Rayleigh beyond a, with mean square beta^2 there.
class rayleigh : public detail::Distribution<rayleigh, double> {
 public:
  /// Of the parameters below.
  explicit constexpr rayleigh(double the_a = 0, double the_beta = 1) : a(the_a), beta(the_beta) {}

  double a;     ///< displacement
  double beta;  ///< scale, above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::rayleigh";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngRayleigh(0, s, n, r, a, beta);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngRayleigh(0, s, n, r, detail::F(a), detail::F(beta));
  }
  /// \endcond
};

/// Lognormal: b + beta e^z, z normal. It draws pairs as normal_method::boxmuller2 does, and may
/// hold one over.
class lognormal : public detail::Distribution<lognormal, double> {
 public:
  /// Of the parameters below.
  explicit constexpr lognormal(double the_mean = 0, double the_sigma = 1, double the_b = 0,
                               double the_beta = 1)
      : mean(the_mean), sigma(the_sigma), b(the_b), beta(the_beta) {}

  double mean;   ///< mean of z
  double sigma;  ///< standard deviation of z, above 0
  double b;      ///< displacement
  double beta;   ///< scale, above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::lognormal";
  static constexpr detail::Takes kTakes = detail::Takes::pairs;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngLognormal(0, s, n, r, mean, sigma, b, beta);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngLognormal(0, s, n, r, detail::F(mean), detail::F(sigma), detail::F(b),
                            detail::F(beta));
  }
  // Whether some uniforms make an e^z of type T overflow or underflow, which is reported. |z -
  // mean| is below 38.6 sigma, of floats below 14.4 sigma.
  template <typename T>
  bool reports() const {
    constexpr bool kIsFloat = std::is_same_v<T, float>;
    return !(std::fabs(mean) + (kIsFloat ? 14.5 : 39.0) * sigma < (kIsFloat ? 87.0 : 708.0));
  }
  /// \endcond
};

/// Gumbel of least values: density e^z e^(-e^z)/beta with z = (x - a)/beta.
class gumbel : public detail::Distribution<gumbel, double> {
 public:
  /// Of the parameters below.
  explicit constexpr gumbel(double the_a = 0, double the_beta = 1) : a(the_a), beta(the_beta) {}

  double a;     ///< mode
  double beta;  ///< scale, above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::gumbel";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngGumbel(0, s, n, r, a, beta);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngGumbel(0, s, n, r, detail::F(a), detail::F(beta));
  }
  /// \endcond
};

/// Gamma beyond a.
class gamma : public detail::Distribution<gamma, double> {
 public:
  /// Of the parameters below.
  explicit constexpr gamma(double the_alpha = 1, double the_a = 0, double the_beta = 1)
      : alpha(the_alpha), a(the_a), beta(the_beta) {}

  double alpha;  ///< shape, above 0
  double a;      ///< displacement
  double beta;   ///< scale, above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::gamma";
  static constexpr detail::Takes kTakes = detail::Takes::varying;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngGamma(0, s, n, r, alpha, a, beta);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngGamma(0, s, n, r, detail::F(alpha), detail::F(a), detail::F(beta));
  }
  /// \endcond
};

/// Beta on [a, a + scale].
class beta : public detail::Distribution<beta, double> {
 public:
  /// Of the parameters below.
  explicit constexpr beta(double the_p = 1, double the_q = 1, double the_a = 0,
                          double the_scale = 1)
      : p(the_p), q(the_q), a(the_a), scale(the_scale) {}

  double p;      ///< first shape, above 0
  double q;      ///< second shape, above 0
  double a;      ///< displacement
  double scale;  ///< length of the interval, above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::beta";
  static constexpr detail::Takes kTakes = detail::Takes::varying;
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngBeta(0, s, n, r, p, q, a, scale);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    return quosRngBeta(0, s, n, r, detail::F(p), detail::F(q), detail::F(a), detail::F(scale));
  }
  /// \endcond
};

}  // namespace pexquo

#endif  // PEXQUO_CONTINUOUS_HPP_
