// Floating-point control of a generator call: round to nearest, no flushing, all exceptions masked.
// At the end the caller's control word is back, and of the exception flags only inexact may be new:
// extreme bounds overflow or underflow without a trace in the caller's flags.
#ifndef QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_
#define QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_

#include <immintrin.h>

#include <bit>
#include <cstdint>

namespace quo {

class QuietGuard {
 public:
  template <typename T>
  QuietGuard(T a, T b) : saved_(_mm_getcsr()), quiet_(IsPlain(a) && IsPlain(b)) {
    if ((saved_ & ~kFlags) == kDefault) return;
    _mm_setcsr(kDefault | (saved_ & kFlags));
    quiet_ = false;
  }
  ~QuietGuard() {
    if (quiet_) return;
    const uint32_t now = _mm_getcsr();
    const uint32_t restored = saved_ | (now & kInexact);
    if (now != restored) _mm_setcsr(restored);
  }
  QuietGuard(const QuietGuard&) = delete;
  QuietGuard& operator=(const QuietGuard&) = delete;

 private:
  static constexpr uint32_t kFlags = 0x3F;      // MXCSR: the six sticky exception flags
  static constexpr uint32_t kInexact = 0x20;    // of these, inexact
  static constexpr uint32_t kDefault = 0x1F80;  // exceptions masked, nearest, no FTZ, no DAZ

  // Whether a bound is 0 or from 2^-30 to 2^31 in size. With such bounds a uniform is 0 or at least
  // 2^-107 in size, and nothing on the way to it raises more than inexact. Asked of the bits, as
  // comparing numbers may raise flags itself.
  static bool IsPlain(double x) { return IsPlain<52, 1023>(std::bit_cast<uint64_t>(x) << 1); }
  static bool IsPlain(float x) { return IsPlain<23, 127>(std::bit_cast<uint32_t>(x) << 1); }
  template <int kDigits, int kBias, typename Bits>
  static bool IsPlain(Bits doubled) {
    const int exponent = static_cast<int>(doubled >> (kDigits + 1)) - kBias;
    return doubled == 0 || (exponent >= -30 && exponent <= 30);
  }

  uint32_t saved_;
  bool quiet_;  // nothing to restore at the end
};

}  // namespace quo

#endif  // QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_
