/// \file
/// Discrete distributions. Included by pexquo/distributions.hpp.
#ifndef PEXQUO_DISCRETE_HPP_
#define PEXQUO_DISCRETE_HPP_

#include <cstddef>
#include <cstdint>
#include <ranges>
#include <source_location>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "pexquo/distribution.hpp"
#include "pexquo/error.hpp"
#include "pexquo/pexquo.h"
#include "pexquo/stream.hpp"

namespace pexquo {

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
    const std::int32_t id = quoGetStreamBrng(s.handle());
    if (id < 0 || quoGetBrngProperties(id, &generator) < 0) return 1;  // the draw is refused
    return static_cast<std::size_t>(generator.WordBytes) / sizeof(std::uint32_t);
  }
  std::int32_t draw(QuoStream* s, std::int64_t n, std::uint32_t* r) const {
    return quoiRngUniformBits(0, s, n, r);
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

#endif  // PEXQUO_DISCRETE_HPP_
