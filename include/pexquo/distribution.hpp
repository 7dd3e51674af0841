/// \file
/// What distributions have in common. Included by pexquo/distributions.hpp.
#ifndef PEXQUO_DISTRIBUTION_HPP_
#define PEXQUO_DISTRIBUTION_HPP_

#include <atomic>
#include <bit>
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
#include "pexquo/error_scope.hpp"
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

// A parameter as the single-precision calls take it: the nearest float, of two the even one,
// whatever the thread's rounding and flush modes.
constexpr float F(double x) {
  constexpr int kPlaces = 52, kFloatPlaces = 23, kBiases = 1023 - 127;
  constexpr std::uint32_t kInfinity = 0x7F800000;
  const auto bits = std::bit_cast<std::uint64_t>(x);
  const auto sign = static_cast<std::uint32_t>(bits >> 32) & 0x80000000;
  const int exponent = static_cast<int>(bits >> kPlaces & 0x7FF) - kBiases;  // as floats have it
  if (exponent == 0x7FF - kBiases) return static_cast<float>(x);  // infinite or not a number
  if (exponent >= 0xFF) return std::bit_cast<float>(sign | kInfinity);
  if (exponent < -kFloatPlaces) return std::bit_cast<float>(sign);
  // With the first 1; in places of the float, and what is beyond them.
  const std::uint64_t one = std::uint64_t{1} << kPlaces, fraction = (bits & (one - 1)) | one;
  const int beyond = kPlaces - kFloatPlaces + (exponent < 1 ? 1 - exponent : 0);
  const std::uint64_t half = std::uint64_t{1} << (beyond - 1), rest = fraction & (2 * half - 1);
  auto magnitude = static_cast<std::uint32_t>(fraction >> beyond);
  if (rest > half || (rest == half && magnitude % 2 == 1)) ++magnitude;
  if (exponent > 1) magnitude += static_cast<std::uint32_t>(exponent - 1) << kFloatPlaces;
  return std::bit_cast<float>(sign | magnitude);
}

inline std::vector<float> Floats(const std::vector<double>& numbers) {
  std::vector<float> floats;
  floats.reserve(numbers.size());
  for (const double x : numbers) floats.push_back(F(x));
  return floats;
}

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
    const std::int32_t status =
        self.draw(s.handle(), static_cast<std::int64_t>(n / unit), std::ranges::data(r));
    if (g_waiting.load(std::memory_order_relaxed) != 0) [[unlikely]] {
      RethrowWaiting();  // of a replacement: some distributions report elements
    }
    CheckStatus(D::kName, status, where);
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

}  // namespace pexquo

#endif  // PEXQUO_DISTRIBUTION_HPP_
