/// \file
/// Vector functions over contiguous ranges. Included by pexquo/pexquo.hpp.
///
/// Every function of the library is an object that is called with the argument ranges and the
/// result ranges, with arguments alone, or with numbers:
///
/// \code
/// std::vector<double> x = {0, 1, 2}, y(3);
/// pexquo::exp(x, y);                           // y[i] = e^x[i], without a copy
/// pexquo::exp(x, y, pexquo::tier::la);         // faster, within 1 to 4 ulp
/// const auto z = pexquo::exp(x);               // a new vector
/// const float e = pexquo::exp(1.0f);           // one number
/// pexquo::exp(std::span(x).first(2), x);       // throws pexquo::argument_error: sizes differ
/// pexquo::exp(x, x);                           // in place
/// \endcode
///
/// Ranges are contiguous and hold float, double, std::complex<float> or std::complex<double>:
/// std::vector, std::array, C arrays, std::span. All ranges of a call have the same size. A result
/// may be an argument of the same type itself; any other overlap of a result with an argument or
/// with another result is refused. Being objects, the functions are called by their full name and
/// can be handed on: `cores.apply(pexquo::exp, x, y)`.
#ifndef PEXQUO_FUNCTIONS_HPP_
#define PEXQUO_FUNCTIONS_HPP_

#include <atomic>
#include <complex>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <exception>
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

namespace pexquo {

/// How accurate a function is. `current` is what the thread's mode says: HA, unless an error_scope
/// or pexSetMode has changed it. Functions with one exact computation do not look at it.
enum class tier : std::uint32_t {
  current = 0,
  la = PEX_ACCURACY_LA,  ///< within 1 to 4 ulp, by function
  ha = PEX_ACCURACY_HA,  ///< within 1 ulp, mostly 0.55
  ep = PEX_ACCURACY_EP,  ///< 26 correct bits in double, 11 in single precision
};

/// What arrays may hold.
template <typename T>
concept element = std::same_as<T, float> || std::same_as<T, double> ||
    std::same_as<T, std::complex<float>> || std::same_as<T, std::complex<double>>;

/// A contiguous range of elements to read.
template <typename R>
concept input_array = std::ranges::contiguous_range<R> && std::ranges::sized_range<R> &&
    element<std::remove_cv_t<std::ranges::range_value_t<R>>>;

/// A contiguous range of elements to write, that does not die with the call.
template <typename R>
concept output_array = input_array<R> && std::ranges::borrowed_range<R> &&
    std::same_as<std::ranges::range_reference_t<R>,
                 std::add_lvalue_reference_t<std::ranges::range_value_t<R>>>;

namespace detail {

template <typename R>
using ElementOf = std::remove_cv_t<std::ranges::range_value_t<R>>;

// The library's complex numbers have the layout of std::complex.
inline const PexComplex16* C(const std::complex<double>* p) {
  return reinterpret_cast<const PexComplex16*>(p);
}
inline const PexComplex8* C(const std::complex<float>* p) {
  return reinterpret_cast<const PexComplex8*>(p);
}
inline PexComplex16* C(std::complex<double>* p) { return reinterpret_cast<PexComplex16*>(p); }
inline PexComplex8* C(std::complex<float>* p) { return reinterpret_cast<PexComplex8*>(p); }
inline PexComplex16 C(std::complex<double> z) { return {z.real(), z.imag()}; }
inline PexComplex8 C(std::complex<float> z) { return {z.real(), z.imag()}; }

// A callback must not throw through the library: what it throws waits for the end of the call. The
// count of waiting exceptions is that of all threads; the error_scope of the thread has its own.
inline std::atomic<int> g_waiting{0};
[[gnu::cold]] inline void RethrowWaiting();

// The name under which the object `function` is known.
inline std::string PublicName(std::string_view function) {
  return "pexquo::" + std::string(function);
}

[[noreturn, gnu::cold, gnu::noinline]] inline void ThrowSizes(const char* function,
                                                              const char* name, std::size_t size,
                                                              std::size_t expected,
                                                              std::source_location where) {
  throw argument_error(
      PublicName(function),
      name + (" has " + std::to_string(size)) + " elements, a has " + std::to_string(expected), 0,
      where);
}

[[noreturn, gnu::cold, gnu::noinline]] inline void ThrowOverlap(const char* function,
                                                                const char* written,
                                                                const char* other,
                                                                std::source_location where) {
  throw argument_error(PublicName(function), std::string(written) + " overlaps " + other, 0, where);
}

[[noreturn, gnu::cold, gnu::noinline]] inline void ThrowRefused(const char* function,
                                                                std::int32_t status,
                                                                std::source_location where) {
  throw argument_error(PublicName(function), pexStatusText(status), status, where);
}

// Whether n elements at x share memory with n elements at y.
template <typename X, typename Y>
bool Overlap(const X* x, const Y* y, std::size_t n) {
  const auto a = reinterpret_cast<std::uintptr_t>(x), b = reinterpret_cast<std::uintptr_t>(y);
  return b - a < n * sizeof(X) || a - b < n * sizeof(Y);
}

// The same, where equal arrays of one type are well.
template <typename X, typename Y>
bool OverlapPartly(const X* x, const Y* y, std::size_t n) {
  if constexpr (std::is_same_v<X, Y>) {
    return x != y && Overlap(x, y, n);
  } else {
    return Overlap(x, y, n);
  }
}

inline void CheckSize(const char* function, const char* name, std::size_t size,
                      std::size_t expected, std::source_location where) {
  if (size != expected) [[unlikely]] {
    ThrowSizes(function, name, size, expected, where);
  }
}

// A checked call, which can be run as a whole or in pieces. `first` and `second` are the results.
template <typename Calls, typename R, typename Piece>
struct Job {
  using Function = Calls;
  std::size_t size;
  R* first;
  R* second;    // null where there is one result
  Piece piece;  // (mode, first element, count) -> status
  R scalar;     // the number that is an argument, of functions of an array and a number

  void Run(tier accuracy, std::source_location where) const {
    if (size == 0) return;
    const std::int32_t status = piece(static_cast<std::uint32_t>(accuracy), std::size_t{0}, size);
    if (status < 0) [[unlikely]] {
      ThrowRefused(Calls::name, status, where);
    }
    if (g_waiting.load(std::memory_order_relaxed) != 0) [[unlikely]] {
      RethrowWaiting();
    }
  }
};

template <typename Calls, typename R, typename Piece>
Job<Calls, R, Piece> MakeJob(std::size_t size, R* first, R* second, Piece piece, R scalar = {}) {
  return {size, first, second, piece, scalar};
}

// Calls::call(mode, n, a, r) says which types a function takes.
template <typename Calls, typename A, typename R>
concept UnaryOf = requires(const A* a, R* r) {
  Calls::call(0u, std::int64_t{0}, a, r);
};
template <typename Calls, typename A, typename R>
concept BinaryOf = requires(const A* a, R* r) {
  Calls::call(0u, std::int64_t{0}, a, a, r);
};
template <typename Calls, typename A, typename R>
concept ScalarOf = requires(const A* a, R* r) {
  Calls::call(0u, std::int64_t{0}, a, A{}, r);
};
template <typename Calls, typename A, typename R>
concept TwoOf = requires(const A* a, R* r) {
  Calls::call(0u, std::int64_t{0}, a, r, r);
};

template <typename T>
struct Complex {
  using Other = std::complex<T>;
};
template <typename T>
struct Complex<std::complex<T>> {
  using Other = T;
};

// What a function of one argument makes of A: the same, or the modulus or argument of a complex
// number, or a complex number of a real one.
template <typename Calls, typename A>
struct UnaryResult {
  using Type = typename Complex<A>::Other;
};
template <typename Calls, typename A>
requires UnaryOf<Calls, A, A>
struct UnaryResult<Calls, A> {
  using Type = A;
};

}  // namespace detail

/// A function of one argument: `f(a, r)` writes r[i] = f(a[i]), `f(a)` returns a vector, and `f(x)`
/// the value for one number x.
template <typename Calls>
struct unary_function {
  /// r[i] = f(a[i]) for every i.
  /// \throws argument_error for different sizes, or if r overlaps a without being a
  template <input_array A, output_array R>
  requires detail::UnaryOf<Calls, detail::ElementOf<A>, detail::ElementOf<R>>
  void operator()(A&& a, R&& r, tier accuracy = tier::current,
                  std::source_location where = std::source_location::current()) const {
    job(a, r, where).Run(accuracy, where);
  }

  /// A new vector of f(a[i]).
  template <input_array A,
            typename R = typename detail::UnaryResult<Calls, detail::ElementOf<A>>::Type>
  requires detail::UnaryOf<Calls, detail::ElementOf<A>, R>
  [[nodiscard]] std::vector<R> operator()(
      A&& a, tier accuracy = tier::current,
      std::source_location where = std::source_location::current()) const {
    std::vector<R> r(std::ranges::size(a));
    job(a, r, where).Run(accuracy, where);
    return r;
  }

  /// f(x) of one number.
  template <element A, typename R = typename detail::UnaryResult<Calls, A>::Type>
  requires detail::UnaryOf<Calls, A, R>
  [[nodiscard]] R operator()(A x, tier accuracy = tier::current,
                             std::source_location where = std::source_location::current()) const {
    R r{};
    job(std::span<const A, 1>(&x, 1), std::span<R, 1>(&r, 1), where).Run(accuracy, where);
    return r;
  }

  /// \cond checked call, for pexquo::parallel
  template <typename A, typename R>
  static auto job(A&& a, R&& r, std::source_location where) {
    const std::size_t n = std::ranges::size(a);
    const auto* const x = std::ranges::data(a);
    auto* const y = std::ranges::data(r);
    detail::CheckSize(Calls::name, "r", std::ranges::size(r), n, where);
    if (detail::OverlapPartly(x, std::as_const(y), n)) [[unlikely]] {
      detail::ThrowOverlap(Calls::name, "r", "a", where);
    }
    return detail::MakeJob<Calls, detail::ElementOf<R>>(
        n, y, nullptr, [x, y](std::uint32_t mode, std::size_t first, std::size_t count) {
          return Calls::call(mode, static_cast<std::int64_t>(count), x + first, y + first);
        });
  }
  /// \endcond
};

/// A function of two arguments: `f(a, b, r)` writes r[i] = f(a[i], b[i]), `f(a, b)` returns a
/// vector, or for two numbers a number.
template <typename Calls>
struct binary_function {
  /// r[i] = f(a[i], b[i]) for every i.
  /// \throws argument_error for different sizes, or if r overlaps a or b without being it
  template <input_array A, input_array B, output_array R>
  requires std::same_as<detail::ElementOf<A>, detail::ElementOf<B>> &&
      detail::BinaryOf<Calls, detail::ElementOf<A>, detail::ElementOf<R>>
  void operator()(A&& a, B&& b, R&& r, tier accuracy = tier::current,
                  std::source_location where = std::source_location::current()) const {
    job(a, b, r, where).Run(accuracy, where);
  }

  /// A new vector of f(a[i], b[i]).
  template <input_array A, input_array B>
  requires std::same_as<detail::ElementOf<A>, detail::ElementOf<B>> &&
      detail::BinaryOf<Calls, detail::ElementOf<A>, detail::ElementOf<A>>
  [[nodiscard]] std::vector<detail::ElementOf<A>> operator()(
      A&& a, B&& b, tier accuracy = tier::current,
      std::source_location where = std::source_location::current()) const {
    std::vector<detail::ElementOf<A>> r(std::ranges::size(a));
    job(a, b, r, where).Run(accuracy, where);
    return r;
  }

  /// f(x, y) of two numbers.
  template <element A>
  requires detail::BinaryOf<Calls, A, A>
  [[nodiscard]] A operator()(A x, std::type_identity_t<A> y, tier accuracy = tier::current,
                             std::source_location where = std::source_location::current()) const {
    A r;
    job(std::span<const A, 1>(&x, 1), std::span<const A, 1>(&y, 1), std::span<A, 1>(&r, 1), where)
        .Run(accuracy, where);
    return r;
  }

  /// \cond checked call, for pexquo::parallel
  template <typename A, typename B, typename R>
  static auto job(A&& a, B&& b, R&& r, std::source_location where) {
    const std::size_t n = std::ranges::size(a);
    const auto* const x = std::ranges::data(a);
    const auto* const y = std::ranges::data(b);
    auto* const z = std::ranges::data(r);
    detail::CheckSize(Calls::name, "b", std::ranges::size(b), n, where);
    detail::CheckSize(Calls::name, "r", std::ranges::size(r), n, where);
    if (detail::OverlapPartly(x, std::as_const(z), n)) [[unlikely]] {
      detail::ThrowOverlap(Calls::name, "r", "a", where);
    }
    if (detail::OverlapPartly(y, std::as_const(z), n)) [[unlikely]] {
      detail::ThrowOverlap(Calls::name, "r", "b", where);
    }
    return detail::MakeJob<Calls, detail::ElementOf<R>>(
        n, z, nullptr, [x, y, z](std::uint32_t mode, std::size_t first, std::size_t count) {
          return Calls::call(mode, static_cast<std::int64_t>(count), x + first, y + first,
                             z + first);
        });
  }
  /// \endcond
};

/// A function of an array and one number: `f(a, b, r)` writes r[i] = f(a[i], b), `f(a, b)` returns
/// a vector, or for two numbers a number.
template <typename Calls>
struct scalar_function {
  /// r[i] = f(a[i], b) for every i.
  /// \throws argument_error for different sizes, or if r overlaps a without being a
  template <input_array A, output_array R>
  requires detail::ScalarOf<Calls, detail::ElementOf<A>, detail::ElementOf<R>>
  void operator()(A&& a, std::type_identity_t<detail::ElementOf<A>> b, R&& r,
                  tier accuracy = tier::current,
                  std::source_location where = std::source_location::current()) const {
    job(a, b, r, where).Run(accuracy, where);
  }

  /// A new vector of f(a[i], b).
  template <input_array A>
  requires detail::ScalarOf<Calls, detail::ElementOf<A>, detail::ElementOf<A>>
  [[nodiscard]] std::vector<detail::ElementOf<A>> operator()(
      A&& a, std::type_identity_t<detail::ElementOf<A>> b, tier accuracy = tier::current,
      std::source_location where = std::source_location::current()) const {
    std::vector<detail::ElementOf<A>> r(std::ranges::size(a));
    job(a, b, r, where).Run(accuracy, where);
    return r;
  }

  /// f(x, b) of two numbers.
  template <element A>
  requires detail::ScalarOf<Calls, A, A>
  [[nodiscard]] A operator()(A x, std::type_identity_t<A> b, tier accuracy = tier::current,
                             std::source_location where = std::source_location::current()) const {
    A r;
    job(std::span<const A, 1>(&x, 1), b, std::span<A, 1>(&r, 1), where).Run(accuracy, where);
    return r;
  }

  /// \cond checked call, for pexquo::parallel
  template <typename A, typename R>
  static auto job(A&& a, detail::ElementOf<A> b, R&& r, std::source_location where) {
    const std::size_t n = std::ranges::size(a);
    const auto* const x = std::ranges::data(a);
    auto* const y = std::ranges::data(r);
    detail::CheckSize(Calls::name, "r", std::ranges::size(r), n, where);
    if (detail::OverlapPartly(x, std::as_const(y), n)) [[unlikely]] {
      detail::ThrowOverlap(Calls::name, "r", "a", where);
    }
    return detail::MakeJob<Calls, detail::ElementOf<R>>(
        n, y, nullptr,
        [x, b, y](std::uint32_t mode, std::size_t first, std::size_t count) {
          return Calls::call(mode, static_cast<std::int64_t>(count), x + first, b, y + first);
        },
        b);
  }
  /// \endcond
};

/// A function of one argument with two results: `f(a, r1, r2)` writes them, `f(a)` returns a pair
/// of vectors, and `f(x)` a pair of numbers.
template <typename Calls>
struct two_result_function {
  /// r1[i] and r2[i] = f(a[i]) for every i.
  /// \throws argument_error for different sizes, if a result overlaps a without being a, or if the
  /// results overlap
  template <input_array A, output_array R1, output_array R2>
  requires std::same_as<detail::ElementOf<R1>, detail::ElementOf<R2>> &&
      detail::TwoOf<Calls, detail::ElementOf<A>, detail::ElementOf<R1>>
  void operator()(A&& a, R1&& r1, R2&& r2, tier accuracy = tier::current,
                  std::source_location where = std::source_location::current()) const {
    job(a, r1, r2, where).Run(accuracy, where);
  }

  /// Two new vectors.
  template <input_array A>
  requires detail::TwoOf<Calls, detail::ElementOf<A>, detail::ElementOf<A>>
  [[nodiscard]] auto operator()(
      A&& a, tier accuracy = tier::current,
      std::source_location where = std::source_location::current()) const {
    using Vector = std::vector<detail::ElementOf<A>>;
    std::pair<Vector, Vector> r(Vector(std::ranges::size(a)), Vector(std::ranges::size(a)));
    job(a, r.first, r.second, where).Run(accuracy, where);
    return r;
  }

  /// Both results for one number.
  template <element A>
  requires detail::TwoOf<Calls, A, A>
  [[nodiscard]] std::pair<A, A> operator()(
      A x, tier accuracy = tier::current,
      std::source_location where = std::source_location::current()) const {
    std::pair<A, A> r;
    job(std::span<const A, 1>(&x, 1), std::span<A, 1>(&r.first, 1), std::span<A, 1>(&r.second, 1),
        where)
        .Run(accuracy, where);
    return r;
  }

  /// \cond checked call, for pexquo::parallel
  template <typename A, typename R1, typename R2>
  static auto job(A&& a, R1&& r1, R2&& r2, std::source_location where) {
    const std::size_t n = std::ranges::size(a);
    const auto* const x = std::ranges::data(a);
    auto* const y = std::ranges::data(r1);
    auto* const z = std::ranges::data(r2);
    detail::CheckSize(Calls::name, "r1", std::ranges::size(r1), n, where);
    detail::CheckSize(Calls::name, "r2", std::ranges::size(r2), n, where);
    if (detail::OverlapPartly(x, std::as_const(y), n)) [[unlikely]] {
      detail::ThrowOverlap(Calls::name, "r1", "a", where);
    }
    if (detail::OverlapPartly(x, std::as_const(z), n)) [[unlikely]] {
      detail::ThrowOverlap(Calls::name, "r2", "a", where);
    }
    if (detail::Overlap(y, z, n)) [[unlikely]] {
      detail::ThrowOverlap(Calls::name, "r2", "r1", where);
    }
    return detail::MakeJob<Calls, detail::ElementOf<R1>>(
        n, y, z, [x, y, z](std::uint32_t mode, std::size_t first, std::size_t count) {
          return Calls::call(mode, static_cast<std::int64_t>(count), x + first, y + first,
                             z + first);
        });
  }
  /// \endcond
};

}  // namespace pexquo

#include "pexquo/function_list.hpp"  // IWYU pragma: export

#endif  // PEXQUO_FUNCTIONS_HPP_
