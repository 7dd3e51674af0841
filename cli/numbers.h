// Numbers as text: reading with every rounding correct, writing the shortest form that reads back.
#ifndef CLI_NUMBERS_H_
#define CLI_NUMBERS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace cli {

enum class Parsed { Ok, Malformed, OutOfRange };

// A decimal or hexadecimal number, inf or nan, rounded to nearest in T (float or double). A number
// beyond the largest finite one is out of range; one below the smallest becomes a subnormal or 0.
template <typename T>
Parsed ParseReal(std::string_view text, T* x);
extern template Parsed ParseReal(std::string_view, float*);
extern template Parsed ParseReal(std::string_view, double*);

// A decimal or 0x-hexadecimal integer, with a sign at most, from lo to hi.
Parsed ParseInteger(std::string_view text, int64_t lo, int64_t hi, int64_t* x);
// The same without a sign, up to 2^64 - 1.
Parsed ParseUnsigned(std::string_view text, uint64_t* x);

inline constexpr size_t kMaxNumberText = 32;
// Writes x to `to`, which has room for kMaxNumberText characters; returns how many were written.
template <typename T>
size_t FormatNumber(T x, char* to);
extern template size_t FormatNumber(float, char*);
extern template size_t FormatNumber(double, char*);
extern template size_t FormatNumber(int32_t, char*);
extern template size_t FormatNumber(uint32_t, char*);
extern template size_t FormatNumber(uint64_t, char*);

template <typename T>
std::string NumberText(T x) {
  char text[kMaxNumberText];
  return {text, FormatNumber(x, text)};
}

// `text` in double quotes for a message: bytes that do not print are escaped, long ones cut.
std::string Quoted(std::string_view text);
// Without blanks and tabs at both ends.
std::string_view Trimmed(std::string_view text);

}  // namespace cli

#endif  // CLI_NUMBERS_H_
