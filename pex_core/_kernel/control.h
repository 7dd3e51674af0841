// Floating-point control of a vector call: round to nearest, no flushing, all exceptions masked. The
// caller's control bits come back at the end; the sticky flags raised meanwhile stay.
#ifndef PEX_CORE__KERNEL_CONTROL_H_
#define PEX_CORE__KERNEL_CONTROL_H_

#include <immintrin.h>

#include <cstdint>

namespace pex {

class ControlGuard {
 public:
  ControlGuard() : saved_(_mm_getcsr()) {
    if ((saved_ & ~kFlags) != kDefault) _mm_setcsr(kDefault | (saved_ & kFlags));
  }
  ~ControlGuard() {
    if ((saved_ & ~kFlags) != kDefault) {
      _mm_setcsr((saved_ & ~kFlags) | (_mm_getcsr() & kFlags));
    }
  }
  ControlGuard(const ControlGuard&) = delete;
  ControlGuard& operator=(const ControlGuard&) = delete;

 private:
  static constexpr uint32_t kFlags = 0x3F;      // MXCSR: the six sticky exception flags
  static constexpr uint32_t kDefault = 0x1F80;  // exceptions masked, nearest, no FTZ, no DAZ
  uint32_t saved_;
};

// The rounding and flush bits alone for the time of a call: to nearest, no flushing. The exception
// masks stay the caller's, and so do the flags.
class RoundingGuard {
 public:
  RoundingGuard() : saved_(_mm_getcsr()) {
    if (saved_ & kRounding) _mm_setcsr(saved_ & ~kRounding);
  }
  ~RoundingGuard() {
    if (saved_ & kRounding) _mm_setcsr(_mm_getcsr() | (saved_ & kRounding));
  }
  RoundingGuard(const RoundingGuard&) = delete;
  RoundingGuard& operator=(const RoundingGuard&) = delete;

 private:
  static constexpr uint32_t kRounding = 0xE040;  // rounding control, flush to zero, denormals are 0
  uint32_t saved_;
};

// ControlGuard for x87 code: 64-bit significands, round to nearest, exceptions masked.
class X87Guard {
 public:
  X87Guard() {
    __asm__ volatile("fnstcw %0" : "=m"(saved_));
    if ((saved_ & 0xF3F) != kExtended) Load(kExtended);
  }
  ~X87Guard() {
    if ((saved_ & 0xF3F) != kExtended) Load(saved_);
  }
  X87Guard(const X87Guard&) = delete;
  X87Guard& operator=(const X87Guard&) = delete;

 private:
  static constexpr uint16_t kExtended = 0x33F;  // precision 64 bits, nearest, exceptions masked
  static void Load(uint16_t word) {
    // An unmasked exception whose flag stands would trap at the next x87 instruction.
    if ((word & 0x3F) != 0x3F) __asm__ volatile("fnclex");
    __asm__ volatile("fldcw %0" : : "m"(word));
  }
  uint16_t saved_;
};

}  // namespace pex

#endif  // PEX_CORE__KERNEL_CONTROL_H_
