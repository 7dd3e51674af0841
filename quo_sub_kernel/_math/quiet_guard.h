// Floating-point control of a generator call: round to nearest, no flushing, all exceptions masked.
// At the end the caller's control word is back, and of the exception flags only inexact may be new:
// extreme bounds overflow or underflow without a trace in the caller's flags.
#ifndef QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_
#define QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_

#include <immintrin.h>

#include <cstdint>
#include <cstring>

namespace quo {

class QuietGuard {
 public:
  template <typename T>
  QuietGuard(T a, T b) : saved_(_mm_getcsr()), quiet_(IsUnit(a, b)) {
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

  // Whether the bounds are 0 and 1, which raise nothing but inexact: asked of the bits, as
  // comparing numbers may raise flags itself.
  template <typename T>
  static bool IsUnit(T a, T b) {
    const T zero = 0, one = 1;
    return std::memcmp(&a, &zero, sizeof(T)) == 0 && std::memcmp(&b, &one, sizeof(T)) == 0;
  }

  uint32_t saved_;
  bool quiet_;  // nothing to restore at the end
};

}  // namespace quo

#endif  // QUO_SUB_KERNEL__MATH_QUIET_GUARD_H_
