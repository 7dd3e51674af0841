/// \file
/// Element errors: collected, replaced, thrown. Included by pexquo/pexquo.hpp.
#ifndef PEXQUO_ERROR_SCOPE_HPP_
#define PEXQUO_ERROR_SCOPE_HPP_

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <limits>
#include <source_location>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pexquo/error.hpp"
#include "pexquo/functions.hpp"
#include "pexquo/pexquo.h"

namespace pexquo {

/// What is special about an element.
enum class reason : std::int32_t {
  domain = PEX_STATUS_DOMAIN,            ///< argument outside the domain: ln(-1)
  singularity = PEX_STATUS_SINGULARITY,  ///< a pole: ln(0)
  overflow = PEX_STATUS_OVERFLOW,        ///< e^1000
  underflow = PEX_STATUS_UNDERFLOW,      ///< e^-1000
};

/// "domain", "singularity", "overflow" or "underflow".
constexpr std::string_view name(reason why) {
  switch (why) {
    case reason::domain:
      return "domain";
    case reason::singularity:
      return "singularity";
    case reason::overflow:
      return "overflow";
    case reason::underflow:
      return "underflow";
  }
  return "unknown";
}

/// One special element of a call. Single-precision numbers are widened. Complex functions report
/// none.
class element_error {
 public:
  reason why{};           ///< what is special about it
  std::size_t index = 0;  ///< in the arrays of the call; of arrays beyond 2^32 elements modulo 2^32
  std::string function;   ///< the public C name: "vdLn"

  /// One number or two.
  std::span<const double> arguments() const {
    return {arguments_.data(),
            Count(std::begin(detail::kTwoArguments), std::end(detail::kTwoArguments))};
  }
  /// One number or two, as they stand in the result arrays; a replacement may change them.
  std::span<double> results() {
    return {results_.data(), Count(std::begin(detail::kTwoResults), std::end(detail::kTwoResults))};
  }
  /// \copydoc results
  std::span<const double> results() const {
    return {results_.data(), Count(std::begin(detail::kTwoResults), std::end(detail::kTwoResults))};
  }

  /// "element 3: vdLn(0) = -inf, singularity"
  std::string text() const {
    const auto values = results();
    return "element " + std::to_string(index) + ": " + function + "(" + List(arguments()) +
           ") = " + (values.size() > 1 ? "(" + List(values) + ")" : List(values)) + ", " +
           std::string(name(why));
  }

 private:
  friend class error_scope;

  std::size_t Count(const std::string_view* first, const std::string_view* last) const {
    const std::string_view plain =
        std::string_view(function).substr(std::min<std::size_t>(2, function.size()));
    return std::find(first, last, plain) == last ? 1 : 2;
  }
  static std::string List(std::span<const double> numbers) {
    std::string list;
    for (const double x : numbers) {
      char digits[32];
      std::snprintf(digits, sizeof(digits), "%.17g", std::isnan(x) ? std::fabs(x) : x);
      list += (list.empty() ? "" : ", ") + std::string(digits);
    }
    return list;
  }

  std::array<double, 2> arguments_{}, results_{};
};

/// Thrown by error_scope::check.
class evaluation_error : public error {
 public:
  /// \param first the first one
  /// \param count how many there are, this one included
  /// \param where the place of the check
  evaluation_error(element_error first, std::size_t count, std::source_location where)
      : error("pexquo::error_scope",
              first.text() + (count > 1 ? " (and " + std::to_string(count - 1) + " more)" : ""),
              static_cast<std::int32_t>(first.why), where),
        first_(std::move(first)),
        count_(count) {}

  const element_error& first() const noexcept { return first_; }  ///< the first one
  std::size_t count() const noexcept { return count_; }           ///< how many there are

 private:
  element_error first_;
  std::size_t count_;
};

/// What an error_scope does.
struct error_options {
  /// The accuracy of calls that name none.
  tier accuracy = tier::current;
  /// What else happens at a special element, of PEX_ERRMODE_ERRNO, _STDERR and _EXCEPT.
  std::uint32_t also = 0;
  /// How many errors are kept; those beyond are counted only.
  std::size_t keep = std::numeric_limits<std::size_t>::max();
  /// Called for each special element, in the thread of the call; what it leaves in results() is
  /// written to the arrays. What it throws ends up at the caller of the function, once the arrays
  /// are complete.
  std::function<void(element_error&)> replace{};
};

/// Collects the element errors of the vector functions that the thread calls while it lives, and of
/// pexquo::lognormal, whose e^z may overflow or underflow, and sets the thread's mode: nothing but
/// the collecting happens at a special element (no errno, no flag), unless the options say more.
/// Scopes nest: the innermost one collects, and the thread's mode and callback are as before after
/// each. Threads do not see each other's scopes.
///
/// \code
/// const std::vector<double> x = {1, 0, -4};
/// pexquo::error_scope errors;
/// const auto y = pexquo::ln(x);                    // 0, -inf, NaN
/// for (const auto& e : errors) std::puts(e.text().c_str());
///
/// pexquo::error_scope clipped{{.replace = [](auto& e) { e.results()[0] = -745; }}};
/// const auto z = pexquo::ln(x);                    // 0, -745, -745
/// \endcode
class error_scope {
 public:
  /// Begins to collect, in the calling thread.
  explicit error_scope(error_options options = {})
      : options_(std::move(options)),
        outer_(std::exchange(Innermost(), this)),
        old_mode_(pexGetMode()),
        old_callback_(pexSetErrorCallBack(&error_scope::Collect)) {
    pexSetMode(static_cast<std::uint32_t>(options_.accuracy) | PEX_ERRMODE_CALLBACK |
               (options_.also & kStandardHandling));
  }

  /// The same with an accuracy alone.
  explicit error_scope(tier accuracy) : error_scope(error_options{.accuracy = accuracy}) {}

  /// In the thread that made it, the innermost first.
  ~error_scope() {
    if (waiting_ != nullptr) detail::g_waiting.fetch_sub(1, std::memory_order_relaxed);
    pexSetErrorCallBack(old_callback_);
    pexSetMode(old_mode_);
    Innermost() = outer_;
  }

  error_scope(const error_scope&) = delete;
  error_scope& operator=(const error_scope&) = delete;

  /// The errors so far, in the order of the calls and in each by ascending index.
  const std::vector<element_error>& errors() const noexcept { return errors_; }
  /// The first of those kept.
  auto begin() const noexcept { return errors_.begin(); }
  /// Behind the last of those kept.
  auto end() const noexcept { return errors_.end(); }
  /// One of those kept.
  const element_error& operator[](std::size_t i) const { return errors_[i]; }
  /// How many there were, kept or not.
  std::size_t size() const noexcept { return count_; }
  /// Whether there was none.
  bool empty() const noexcept { return count_ == 0; }
  /// Forgets them.
  void clear() noexcept {
    errors_.clear();
    count_ = 0;
  }

  /// Throws evaluation_error if there was an error.
  void check(std::source_location where = std::source_location::current()) const {
    if (count_ != 0) throw evaluation_error(first_, count_, where);
  }

 private:
  friend void detail::RethrowWaiting();

  static constexpr std::uint32_t kStandardHandling =
      PEX_ERRMODE_ERRNO | PEX_ERRMODE_STDERR | PEX_ERRMODE_EXCEPT;

  static error_scope*& Innermost() {
    static thread_local error_scope* innermost = nullptr;
    return innermost;
  }

  static int Collect(PexErrorContext* record) noexcept {
    error_scope* const scope = Innermost();
    if (scope == nullptr || scope->waiting_ != nullptr || record->code <= 0) return 0;
    try {
      scope->Add(*record);
    } catch (...) {
      scope->waiting_ = std::current_exception();
      detail::g_waiting.fetch_add(1, std::memory_order_relaxed);
    }
    return 0;  // go on: results are written back, and what `also` asks for happens
  }

  void Add(PexErrorContext& record) {
    element_error e;
    e.why = static_cast<reason>(record.code);
    e.index = static_cast<std::uint32_t>(record.index);
    e.function.assign(record.func_name, static_cast<std::size_t>(record.func_name_len));
    e.arguments_ = {record.arg1, record.arg2};
    e.results_ = {record.res1, record.res2};
    if (options_.replace) {
      options_.replace(e);
      record.res1 = e.results_[0];
      record.res2 = e.results_[1];
    }
    if (count_ == 0) first_ = e;
    ++count_;
    if (errors_.size() < options_.keep) errors_.push_back(std::move(e));
  }

  error_options options_;
  std::vector<element_error> errors_;
  element_error first_;
  std::size_t count_ = 0;
  std::exception_ptr waiting_;
  error_scope* outer_;
  std::uint32_t old_mode_;
  PexErrorCallBack old_callback_;
};

namespace detail {

inline void RethrowWaiting() {
  error_scope* const scope = error_scope::Innermost();
  if (scope == nullptr || scope->waiting_ == nullptr) return;
  g_waiting.fetch_sub(1, std::memory_order_relaxed);
  std::rethrow_exception(std::exchange(scope->waiting_, nullptr));
}

}  // namespace detail
}  // namespace pexquo

#endif  // PEXQUO_ERROR_SCOPE_HPP_
