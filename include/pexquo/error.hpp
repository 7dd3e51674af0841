/// \file
/// The exceptions of the C++ interface. Included by pexquo/pexquo.hpp.
#ifndef PEXQUO_ERROR_HPP_
#define PEXQUO_ERROR_HPP_

#include <cstdint>
#include <source_location>
#include <stdexcept>
#include <string>
#include <string_view>

#include "pexquo/pexquo.h"

namespace pexquo {

/// A call that the library refuses, or that failed. what() tells file and line of the call, the
/// function and the reason:
/// `main.cc:12: pexquo::exp: r has 3 elements, a has 4`.
///
/// \code
/// try {
///   pexquo::stream("mt19937", 1).skip(100);
/// } catch (const pexquo::error& e) {
///   std::puts(e.what());  // ...: the generator cannot skip ahead
/// }
/// \endcode
class error : public std::runtime_error {
 public:
  /// \param function the public name, "pexquo::exp"
  /// \param reason   a sentence without a full stop
  /// \param status   the code of the library below (pexquo/pexquo.h), 0 where it was not asked
  /// \param where    the place of the call
  error(std::string_view function, std::string_view reason, std::int32_t status,
        std::source_location where)
      : std::runtime_error(Text(function, reason, where)), status_(status), where_(where) {}

  /// The code of the library below (QUO_BAD_SCALE, ...); 0 where it was not asked.
  std::int32_t status() const noexcept { return status_; }
  /// The place of the call.
  const std::source_location& where() const noexcept { return where_; }

 private:
  static std::string Text(std::string_view function, std::string_view reason,
                          const std::source_location& where) {
    std::string_view file = where.file_name();
    file.remove_prefix(file.rfind('/') + 1);
    std::string text(file);
    text += ':';
    text += std::to_string(where.line());
    text += ": ";
    text += function;
    text += ": ";
    text += reason;
    return text;
  }

  std::int32_t status_;
  std::source_location where_;
};

/// Arguments that make no sense: arrays of different sizes or that overlap in part, a parameter of
/// a distribution out of its range, an unknown generator. Nothing was written and no stream moved.
class argument_error : public error {
 public:
  using error::error;
};

/// A stream that cannot do what is asked: its generator does not skip ahead or leapfrog, an
/// abstract stream's source failed, the stream was moved from, memory ran out.
class stream_error : public error {
 public:
  using error::error;
};

/// A stream file that cannot be written or read.
class file_error : public error {
 public:
  using error::error;
};

namespace detail {

/// Throws what fits the status of a stream or distribution call; `what` is put before its text.
[[noreturn, gnu::cold, gnu::noinline]] inline void ThrowStatus(std::string_view function,
                                                               std::int32_t status,
                                                               std::source_location where) {
  const char* const text = quoStatusText(status);
  if (status <= QUO_CLOSE_FAILED && status >= QUO_BAD_FILE_FORMAT) {
    throw file_error(function, text, status, where);
  }
  const bool argument = (status <= QUO_BAD_COUNT && status >= QUO_BAD_LEAP) ||
                        status == QUO_INVALID_BRNG || status == QUO_DIFFERENT_BRNGS ||
                        status == QUO_BAD_STREAM_COUNT || status == QUO_NULL_POINTER ||
                        status == QUO_NULL_ARRAY;
  if (argument) throw argument_error(function, text, status, where);
  throw stream_error(function, text, status, where);
}

inline void CheckStatus(std::string_view function, std::int32_t status,
                        std::source_location where) {
  if (status < 0) [[unlikely]] {
    ThrowStatus(function, status, where);
  }
}

}  // namespace detail
}  // namespace pexquo

#endif  // PEXQUO_ERROR_HPP_
