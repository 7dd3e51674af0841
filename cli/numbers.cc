#include "cli/numbers.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace cli {
namespace {

constexpr size_t kLongestNumber = 4096;

double ToReal(const char* text, char** end, double) { return std::strtod(text, end); }
float ToReal(const char* text, char** end, float) { return std::strtof(text, end); }

bool NamesInfinity(std::string_view text) {
  return text.find_first_of("iI") != std::string_view::npos;
}

}  // namespace

template <typename T>
Parsed ParseReal(std::string_view text, T* x) {
  const char* const end = text.data() + text.size();
  const auto fast = std::from_chars(text.data(), end, *x);
  if (fast.ec == std::errc() && fast.ptr == end && std::isfinite(*x) && *x != 0) return Parsed::Ok;
  // Signs, hexadecimal forms, zeros, extremes and names: rare, so the slow way.
  if (text.empty() || text.size() > kLongestNumber || text.front() == ' ' || text.front() == '\t' ||
      text.find('\0') != std::string_view::npos) {
    return Parsed::Malformed;
  }
  const std::string copy(text);
  char* stop = nullptr;
  *x = ToReal(copy.c_str(), &stop, T());
  if (stop != copy.c_str() + copy.size()) return Parsed::Malformed;
  return std::isinf(*x) && !NamesInfinity(text) ? Parsed::OutOfRange : Parsed::Ok;
}
template Parsed ParseReal(std::string_view, float*);
template Parsed ParseReal(std::string_view, double*);

Parsed ParseUnsigned(std::string_view text, uint64_t* x) {
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, *x, base);
  if (result.ptr != end || result.ec == std::errc::invalid_argument) return Parsed::Malformed;
  return result.ec == std::errc() ? Parsed::Ok : Parsed::OutOfRange;
}

Parsed ParseInteger(std::string_view text, int64_t lo, int64_t hi, int64_t* x) {
  const bool negative = !text.empty() && text.front() == '-';
  if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  uint64_t magnitude = 0;
  const Parsed parsed = ParseUnsigned(text, &magnitude);
  if (parsed != Parsed::Ok) return parsed;
  constexpr uint64_t kMax = std::numeric_limits<int64_t>::max();
  if (magnitude > kMax) return Parsed::OutOfRange;
  *x = negative ? -static_cast<int64_t>(magnitude) : static_cast<int64_t>(magnitude);
  return *x < lo || *x > hi ? Parsed::OutOfRange : Parsed::Ok;
}

template <typename T>
size_t FormatNumber(T x, char* to) {
  if constexpr (std::is_floating_point_v<T>) {
    if (std::isnan(x)) x = std::numeric_limits<T>::quiet_NaN();  // the sign of a NaN says nothing
  }
  return static_cast<size_t>(std::to_chars(to, to + kMaxNumberText, x).ptr - to);
}
template size_t FormatNumber(float, char*);
template size_t FormatNumber(double, char*);
template size_t FormatNumber(int32_t, char*);
template size_t FormatNumber(uint32_t, char*);
template size_t FormatNumber(uint64_t, char*);

std::string Quoted(std::string_view text) {
  constexpr size_t kShown = 40;
  constexpr char kDigits[] = "0123456789abcdef";
  std::string out = "\"";
  for (const char c : text.substr(0, kShown)) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) {
      out += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
    } else {
      out += c;
    }
  }
  return out + (text.size() > kShown ? "...\"" : "\"");
}

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace cli
