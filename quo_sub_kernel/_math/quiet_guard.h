// Whether uniforms on given bounds can raise more than inexact.
#ifndef QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_
#define QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_

#include <bit>
#include <cstdint>

#include "pex_core/_kernel/control.h"

namespace quo {

using pex::QuietGuard;

template <int kDigits, int kBias, typename Bits>
constexpr bool IsPlainBound(Bits doubled) {
  const int exponent = static_cast<int>(doubled >> (kDigits + 1)) - kBias;
  return doubled == 0 || (exponent >= -30 && exponent <= 30);
}

// Whether a bound is 0 or from 2^-30 to 2^31 in size. With such bounds a uniform is 0 or at least
// 2^-107 in size, and nothing on the way to it raises more than inexact. Asked of the bits, as
// comparing numbers may raise flags itself.
constexpr bool IsPlainBound(double x) {
  return IsPlainBound<52, 1023>(std::bit_cast<uint64_t>(x) << 1);
}
constexpr bool IsPlainBound(float x) {
  return IsPlainBound<23, 127>(std::bit_cast<uint32_t>(x) << 1);
}

// For the constructor of QuietGuard.
template <typename T>
constexpr bool ArePlainBounds(T a, T b) {
  return IsPlainBound(a) && IsPlainBound(b);
}

}  // namespace quo

#endif  // QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_
