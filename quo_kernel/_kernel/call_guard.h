// Floating-point environment of a distribution call: round to nearest, no flushing, all exceptions
// masked. At the end the caller's control bits are back, and of the exceptions met on the way only
// inexact remains to be seen.
#ifndef QUO_KERNEL__KERNEL_CALL_GUARD_H_
#define QUO_KERNEL__KERNEL_CALL_GUARD_H_

#include <immintrin.h>

#include <cstdint>

namespace quo {

class CallGuard {
 public:
  CallGuard() : saved_(_mm_getcsr()) {
    if ((saved_ & ~kFlags) != kDefault) _mm_setcsr(kDefault | (saved_ & kFlags));
  }
  ~CallGuard() {
    const uint32_t now = _mm_getcsr();
    const uint32_t wanted = saved_ | (now & kInexact);
    if (now != wanted) _mm_setcsr(wanted);
  }
  CallGuard(const CallGuard&) = delete;
  CallGuard& operator=(const CallGuard&) = delete;

 private:
  static constexpr uint32_t kFlags = 0x3F;      // MXCSR: the six sticky exception flags
  static constexpr uint32_t kInexact = 0x20;    // one of them
  static constexpr uint32_t kDefault = 0x1F80;  // exceptions masked, nearest, no FTZ, no DAZ
  uint32_t saved_;
};

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_CALL_GUARD_H_
