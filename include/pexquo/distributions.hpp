/// \file
/// Distributions. Included by pexquo/pexquo.hpp.
///
/// A distribution is a small object of its parameters, which have standard values; it draws from
/// any stream and keeps nothing:
///
/// \code
/// pexquo::stream s("mrg32k3a", 1);
/// std::vector<double> x(1000);
/// pexquo::normal{0, 1}.fill(s, x);                      // every element
/// const auto waits = pexquo::exponential{}.sample(s, 10);    // a new vector<double>
/// const auto coarse = pexquo::exponential{}.sample<float>(s, 10);
/// const int heads = pexquo::bernoulli{0.5}(s);               // one number
/// pexquo::normal{0, -1}.fill(s, x);                     // throws pexquo::argument_error
/// \endcode
///
/// Continuous ones fill contiguous ranges of double or float, in which the parameters are rounded
/// to float; discrete ones fill ranges of std::int32_t. Numbers do not depend on how they are asked
/// for: filling n and then m elements gives the same as filling n + m. Parameters are checked when
/// numbers are drawn: argument_error, before the stream has moved. stream_error comes from streams.
/// The formulas are those of pexquo/quo.h.
#ifndef PEXQUO_DISTRIBUTIONS_HPP_
#define PEXQUO_DISTRIBUTIONS_HPP_

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <ranges>
#include <source_location>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "pexquo/error.hpp"
#include "pexquo/pexquo.h"
#include "pexquo/stream.hpp"

namespace pexquo {

/// A contiguous range of T to write.
template <typename R, typename T>
concept array_of = std::ranges::contiguous_range<R> && std::ranges::sized_range<R> &&
    std::ranges::borrowed_range<R> && std::same_as<std::ranges::range_reference_t<R>, T&>;

namespace detail {

// How many outputs of the generator a number takes, for pexquo::parallel.
enum class Takes {
  one,      // one
  two,      // two
  pairs,    // two for two numbers, the second of which may be held over
  varying,  // as many as it needs
};

// Rounded to float as the single-precision calls take it.
constexpr float F(double x) { return static_cast<float>(x); }

// What distributions share. D has a `kName`, `kTakes`, and for each type T that it can fill
// draw(handle, n, T* r), which draws n units; a unit is one element unless D says otherwise by
// unit(stream).
template <typename D, typename Standard>
class Distribution {
 public:
  /// Fills a contiguous range.
  /// \throws argument_error for a parameter out of its range, stream_error
  template <typename R>
  requires array_of<R, std::ranges::range_value_t<R>> &&
      requires(const D& d, std::ranges::range_value_t<R>* r) {
    d.draw(nullptr, 0, r);
  }
  void fill(stream& s, R&& r, std::source_location where = std::source_location::current()) const {
    const D& self = static_cast<const D&>(*this);
    const std::size_t n = std::ranges::size(r), unit = self.unit(s);
    if (n % unit != 0) {
      throw argument_error(
          D::kName,
          "r has " + std::to_string(n) + " elements, not a multiple of " + std::to_string(unit), 0,
          where);
    }
    CheckStatus(D::kName,
                self.draw(s.handle(), static_cast<std::int64_t>(n / unit), std::ranges::data(r)),
                where);
  }

  /// A new vector of n elements.
  template <typename T = Standard>
  [[nodiscard]] std::vector<T> sample(
      stream& s, std::size_t n,
      std::source_location where = std::source_location::current()) const {
    std::vector<T> r(n);
    fill(s, r, where);
    return r;
  }

  /// One number. Many at a time are much faster.
  [[nodiscard]] Standard operator()(
      stream& s, std::source_location where = std::source_location::current()) const {
    Standard r;
    fill(s, std::span<Standard, 1>(&r, 1), where);
    return r;
  }

  /// \cond elements that are drawn together, and what each takes
  std::size_t unit(const stream&) const { return 1; }
  detail::Takes takes() const { return D::kTakes; }
  /// \endcond
};

}  // namespace detail

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

/// Integers from a to b - 1, a < b: without the upper bound, unlike std::uniform_int_distribution.
class uniform_int : public detail::Distribution<uniform_int, std::int32_t> {
 public:
  /// Of the parameters below.
  explicit constexpr uniform_int(std::int32_t the_a = 0, std::int32_t the_b = 2)
      : a(the_a), b(the_b) {}

  std::int32_t a;  ///< the least
  std::int32_t b;  ///< above the greatest

  /// \cond
  static constexpr std::string_view kName = "pexquo::uniform_int";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::int32_t draw(QuoStream* s, std::int64_t n, std::int32_t* r) const {
    return quoiRngUniform(0, s, n, r, a, b);
  }
  /// \endcond
};

/// The generator's raw outputs, each of 1, 2 (mcg59) or 4 (wh) words, low word first; ranges of
/// std::uint32_t hold a multiple of that.
class uniform_bits : public detail::Distribution<uniform_bits, std::uint32_t> {
 public:
  /// \cond
  static constexpr std::string_view kName = "pexquo::uniform_bits";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::size_t unit(const stream& s) const {
    BrngProperties generator;
    detail::CheckStatus(kName, quoGetBrngProperties(quoGetStreamBrng(s.handle()), &generator),
                        std::source_location::current());
    return static_cast<std::size_t>(generator.WordBytes) / sizeof(std::uint32_t);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, std::uint32_t* r) const {
    return quoiRngUniformBits(0, s, n, r);
  }
  /// \endcond
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
  detail::Takes takes() const { return detail::TakesOf(method_); }
  std::size_t unit(const stream&) const { return dimension(); }
  std::int32_t draw(QuoStream* s, std::int64_t n, double* r) const {
    return quodRngGaussianMV(static_cast<std::int32_t>(method_), s, n, r,
                             static_cast<std::int32_t>(dimension()),
                             static_cast<std::int32_t>(storage_), mean_.data(), factor_.data());
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, float* r) const {
    const std::vector<float> mean(mean_.begin(), mean_.end());
    const std::vector<float> factor(factor_.begin(), factor_.end());
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

/// 1 with probability p, else 0.
class bernoulli : public detail::Distribution<bernoulli, std::int32_t> {
 public:
  /// Of the parameters below.
  explicit constexpr bernoulli(double the_p = 0.5) : p(the_p) {}

  double p;  ///< from 0 to 1

  /// \cond
  static constexpr std::string_view kName = "pexquo::bernoulli";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::int32_t draw(QuoStream* s, std::int64_t n, std::int32_t* r) const {
    return quoiRngBernoulli(0, s, n, r, p);
  }
  /// \endcond
};

/// Failures before the first success.
class geometric : public detail::Distribution<geometric, std::int32_t> {
 public:
  /// Of the parameters below.
  explicit constexpr geometric(double the_p = 0.5) : p(the_p) {}

  double p;  ///< probability of a success, above 0, to 1

  /// \cond
  static constexpr std::string_view kName = "pexquo::geometric";
  static constexpr detail::Takes kTakes = detail::Takes::one;
  std::int32_t draw(QuoStream* s, std::int64_t n, std::int32_t* r) const {
    return quoiRngGeometric(0, s, n, r, p);
  }
  /// \endcond
};

/// Successes of a number of trials.
class binomial : public detail::Distribution<binomial, std::int32_t> {
 public:
  /// Of the parameters below.
  explicit constexpr binomial(std::int32_t the_trials = 1, double the_p = 0.5)
      : trials(the_trials), p(the_p) {}

  std::int32_t trials;  ///< from 0
  double p;             ///< probability of a success, from 0 to 1

  /// \cond
  static constexpr std::string_view kName = "pexquo::binomial";
  static constexpr detail::Takes kTakes = detail::Takes::varying;
  std::int32_t draw(QuoStream* s, std::int64_t n, std::int32_t* r) const {
    return quoiRngBinomial(0, s, n, r, trials, p);
  }
  /// \endcond
};

/// Poisson.
class poisson : public detail::Distribution<poisson, std::int32_t> {
 public:
  /// Of the parameters below.
  explicit constexpr poisson(double the_mean = 1) : mean(the_mean) {}

  double mean;  ///< above 0

  /// \cond
  static constexpr std::string_view kName = "pexquo::poisson";
  static constexpr detail::Takes kTakes = detail::Takes::varying;
  std::int32_t draw(QuoStream* s, std::int64_t n, std::int32_t* r) const {
    return quoiRngPoisson(0, s, n, r, mean);
  }
  /// \endcond
};

/// Poisson with a mean for each element: r[i] has means[i]. The means are looked at when numbers
/// are drawn, and have to live until then.
class poisson_v {
 public:
  /// Of these means, not copied.
  explicit poisson_v(std::span<const double> means) : means_(means) {}

  /// Fills a contiguous range of std::int32_t.
  /// \throws argument_error for another size than that of the means or a mean not above 0,
  /// stream_error
  template <array_of<std::int32_t> R>
  void fill(stream& s, R&& r, std::source_location where = std::source_location::current()) const {
    const std::size_t n = std::ranges::size(r);
    if (n != means_.size()) {
      throw argument_error(kName,
                           "r has " + std::to_string(n) + " elements, there are " +
                               std::to_string(means_.size()) + " means",
                           0, where);
    }
    detail::CheckStatus(kName,
                        quoiRngPoissonV(0, s.handle(), static_cast<std::int64_t>(n),
                                        std::ranges::data(r), means_.data()),
                        where);
  }

  /// A new vector, a number for each mean.
  [[nodiscard]] std::vector<std::int32_t> sample(
      stream& s, std::source_location where = std::source_location::current()) const {
    std::vector<std::int32_t> r(means_.size());
    fill(s, r, where);
    return r;
  }

 private:
  static constexpr std::string_view kName = "pexquo::poisson_v";
  std::span<const double> means_;
};

/// Marked ones in a sample drawn without putting back.
class hypergeometric : public detail::Distribution<hypergeometric, std::int32_t> {
 public:
  /// Of the parameters below.
  explicit constexpr hypergeometric(std::int32_t the_population = 2,
                                    std::int32_t the_sample_size = 1, std::int32_t the_marked = 1)
      : population(the_population), sample_size(the_sample_size), marked(the_marked) {}

  std::int32_t population;   ///< all, from 0
  std::int32_t sample_size;  ///< drawn, from 0 to all
  std::int32_t marked;       ///< marked among all, from 0 to all

  /// \cond
  static constexpr std::string_view kName = "pexquo::hypergeometric";
  static constexpr detail::Takes kTakes = detail::Takes::varying;
  std::int32_t draw(QuoStream* s, std::int64_t n, std::int32_t* r) const {
    return quoiRngHypergeometric(0, s, n, r, population, sample_size, marked);
  }
  /// \endcond
};

/// Failures before the a-th success.
class negative_binomial : public detail::Distribution<negative_binomial, std::int32_t> {
 public:
  /// Of the parameters below.
  explicit constexpr negative_binomial(double the_a = 1, double the_p = 0.5) : a(the_a), p(the_p) {}

  double a;  ///< above 0, not only integers
  double p;  ///< probability of a success, above 0, to 1

  /// \cond
  static constexpr std::string_view kName = "pexquo::negative_binomial";
  static constexpr detail::Takes kTakes = detail::Takes::varying;
  std::int32_t draw(QuoStream* s, std::int64_t n, std::int32_t* r) const {
    return quoiRngNegbinomial(0, s, n, r, a, p);
  }
  /// \endcond
};

}  // namespace pexquo

#endif  // PEXQUO_DISTRIBUTIONS_HPP_
