/// \file
/// Streams as generators of the standard library. Included by pexquo/pexquo.hpp.
#ifndef PEXQUO_BIT_GENERATOR_HPP_
#define PEXQUO_BIT_GENERATOR_HPP_

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <source_location>
#include <string>
#include <utility>

#include "pexquo/distributions.hpp"
#include "pexquo/error.hpp"
#include "pexquo/stream.hpp"

namespace pexquo {

/// A std::uniform_random_bit_generator on a stream of the generator G, for the algorithms and
/// distributions of the standard library:
///
/// \code
/// pexquo::bit_generator<pexquo::generator::mt19937> bits(42);
/// std::shuffle(deck.begin(), deck.end(), bits);
/// std::normal_distribution<> normal;
/// const double x = normal(bits);
/// \endcode
///
/// It owns its stream, from which it draws 256 outputs at a time. What it gives is the generator's
/// output word: from 0 to 2^32 - 1 for r250, mt19937 and mt2203, from 0 to 2^32 - 210 for mrg32k3a,
/// from 1 to 2^31 - 2 for mcg31m1. Of mcg59, whose low bits have short periods, it gives the 32
/// highest; of wh, whose output is a sum, the uniform number in units of 2^-24. Quasi-random
/// sequences are no random bits.
template <generator G>
requires(G != generator::sobol && G != generator::niederr) class bit_generator {
 public:
  /// Words of 32 bits, whatever the generator.
  using result_type = std::uint32_t;

  /// On a stream of its own.
  explicit bit_generator(const seed_words& seed,
                         std::source_location where = std::source_location::current())
      : stream_(G, seed, where) {}
  /// On a stream, copied or moved, of G or one of its members.
  /// \throws argument_error for a stream of another generator
  explicit bit_generator(stream s, std::source_location where = std::source_location::current())
      : stream_(std::move(s)) {
    if (stream_.kind() != G) {
      throw argument_error("pexquo::bit_generator",
                           "the stream is one of " + std::string(name(stream_.kind())) + ", not " +
                               std::string(name(G)),
                           0, where);
    }
  }

  /// The least.
  static constexpr result_type min() { return G == generator::mcg31m1 ? 1 : 0; }
  /// The greatest.
  static constexpr result_type max() {
    switch (G) {
      case generator::mcg31m1:
        return 0x7FFFFFFE;
      case generator::mrg32k3a:
        return 4294967086;
      case generator::wh:
        return (1u << 24) - 1;
      default:
        return std::numeric_limits<result_type>::max();
    }
  }

  /// The next one.
  result_type operator()() {
    if (next_ == kWords) Refill();
    return words_[next_++];
  }

  /// Moves on by n numbers.
  void discard(unsigned long long n) {
    for (; n != 0 && next_ != kWords; --n) ++next_;
    if (n >= kWords && stream_.can_skip()) {
      stream_.skip(n);
      return;
    }
    for (; n != 0; --n) (*this)();
  }

 private:
  static constexpr std::size_t kWords = 256;

  void Refill() {
    if constexpr (G == generator::wh) {
      std::array<std::int32_t, kWords> u;
      uniform_int{0, 1 << 24}.fill(stream_, u);
      for (std::size_t i = 0; i < kWords; ++i) words_[i] = static_cast<result_type>(u[i]);
    } else if constexpr (G == generator::mcg59) {
      std::array<std::uint32_t, 2 * kWords> outputs;
      uniform_bits{}.fill(stream_, outputs);
      constexpr int kLow = 59 - 32;
      for (std::size_t i = 0; i < kWords; ++i) {
        words_[i] = outputs[2 * i] >> kLow | outputs[2 * i + 1] << (32 - kLow);
      }
    } else {
      uniform_bits{}.fill(stream_, words_);
    }
    next_ = 0;
  }

  stream stream_;
  std::array<result_type, kWords> words_{};
  std::size_t next_ = kWords;
};

static_assert(std::uniform_random_bit_generator<bit_generator<generator::mt19937>>);

}  // namespace pexquo

#endif  // PEXQUO_BIT_GENERATOR_HPP_
