// Floating-point control of a generator call: round to nearest, no flushing, all exceptions masked.
// At the end the caller's control word is back, and of the exception flags only inexact may be new:
// extreme bounds overflow or underflow without a trace in the caller's flags.
#ifndef QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_
#define QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_

#include <immintrin.h>

#include <cstdint>

namespace quo {

class QuietGuard {
 public:
  QuietGuard() : saved_(_mm_getcsr()) {
    if ((saved_ & ~kFlags) != kDefault) _mm_setcsr(kDefault | (saved_ & kFlags));
  }
  ~QuietGuard() {
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
  uint32_t saved_;
};

}  // namespace quo

#endif  // QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_
