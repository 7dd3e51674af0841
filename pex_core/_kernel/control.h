// Floating-point control of a vector call: round to nearest, no flushing, all exceptions masked.
// The caller's control bits come back at the end; the sticky flags raised meanwhile stay.
#ifndef PEX_CORE__KERNEL_CONTROL_H_
#define PEX_CORE__KERNEL_CONTROL_H_

#include <immintrin.h>

#include <cstdint>

namespace pex {

// The control bits kCallers are left as they are.
template <uint32_t kCallers>
class ControlGuardBut {
 public:
  ControlGuardBut() : saved_(_mm_getcsr()) {
    if ((saved_ & ~kKept) != kDefault) _mm_setcsr(kDefault | (saved_ & kKept));
  }
  ~ControlGuardBut() {
    if ((saved_ & ~kKept) != kDefault) {
      _mm_setcsr((saved_ & ~kFlags) | (_mm_getcsr() & kFlags));
    }
  }
  // Whether the control word differs from what a guard sets.
  static bool IsNeeded() { return (_mm_getcsr() & ~kKept) != kDefault; }

  ControlGuardBut(const ControlGuardBut&) = delete;
  ControlGuardBut& operator=(const ControlGuardBut&) = delete;

 private:
  static constexpr uint32_t kFlags = 0x3F;  // MXCSR: the six sticky exception flags
  static constexpr uint32_t kKept = kFlags | kCallers;
  static constexpr uint32_t kDefault = 0x1F80;  // exceptions masked, nearest, no FTZ, no DAZ
  uint32_t saved_;
};

using ControlGuard = ControlGuardBut<0>;

// Whether subnormal arguments count as zeros stays the caller's choice.
using ControlGuardButDaz = ControlGuardBut<0x40>;

// The caller's control word as it is.
struct NoGuard {
  static constexpr bool IsNeeded() { return false; }
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
  static bool IsNeeded() { return (_mm_getcsr() & kRounding) != 0; }

  RoundingGuard(const RoundingGuard&) = delete;
  RoundingGuard& operator=(const RoundingGuard&) = delete;

 private:
  static constexpr uint32_t kRounding = 0xE040;  // rounding control, flush to zero, denormals are 0
  uint32_t saved_;
};

// As ControlGuard, for calls that leave no trace in the caller's flags but perhaps inexact: random
// numbers.
class QuietGuard {
 public:
  // `quiet`: the caller knows that nothing more than inexact can be raised; saves the way back.
  explicit QuietGuard(bool quiet = false) : saved_(_mm_getcsr()), quiet_(quiet) {
    if ((saved_ & ~kFlags) == kDefault) return;
    _mm_setcsr(kDefault | (saved_ & kFlags));
    quiet_ = false;
  }
  // Writes what it has read: to read the word once more would wait for all arithmetic under way,
  // and the caller of a random number can do without its inexact.
  ~QuietGuard() {
    if (!quiet_) _mm_setcsr(saved_);
  }
  QuietGuard(const QuietGuard&) = delete;
  QuietGuard& operator=(const QuietGuard&) = delete;

 private:
  static constexpr uint32_t kFlags = 0x3F;
  static constexpr uint32_t kDefault = 0x1F80;
  uint32_t saved_;
  bool quiet_;  // nothing to restore at the end
};

// ControlGuard for x87 code: 64-bit significands, round to nearest, exceptions masked.
class X87Guard {
 public:
  X87Guard() : saved_(Current()) {
    if ((saved_ & kControl) != kExtended) Load(kExtended);
  }
  ~X87Guard() {
    if ((saved_ & kControl) != kExtended) Restore(saved_);
  }
  X87Guard(const X87Guard&) = delete;
  X87Guard& operator=(const X87Guard&) = delete;

  // Whether the control word differs from what a guard sets.
  static bool Needed() { return (Current() & kControl) != kExtended; }

  static uint16_t Current() {
    uint16_t word;
    __asm__ volatile("fnstcw %0" : "=m"(word));
    return word;
  }

  // A flag that stands when its exception is unmasked would trap at the next x87 instruction: such
  // flags are cleared, and only they.
  static void Restore(uint16_t word) {
    uint16_t status;
    __asm__ volatile("fnstsw %0" : "=m"(status));
    if (status & ~word & kFlags) {
      uint32_t environment[7];
      __asm__ volatile("fnstenv %0" : "=m"(environment));
      environment[0] = (environment[0] & 0xFFFF0000) | word;
      environment[1] &= ~static_cast<uint32_t>(~word & kFlags);
      __asm__ volatile("fldenv %0" : : "m"(environment));
    } else {
      Load(word);
    }
  }

 private:
  static constexpr uint16_t kFlags = 0x3F;      // exception masks, and flags of the status word
  static constexpr uint16_t kControl = 0xF3F;   // precision, rounding and masks
  static constexpr uint16_t kExtended = 0x33F;  // precision 64 bits, nearest, exceptions masked

  static void Load(uint16_t word) { __asm__ volatile("fldcw %0" : : "m"(word)); }
  uint16_t saved_;
};

// What a callback does to the control bits of MXCSR and x87 ends with the callback, so that no
// element is computed under them; the flags that it raises stay.
class CallbackGuard {
 public:
  CallbackGuard() = default;
  ~CallbackGuard() {
    const uint32_t now = _mm_getcsr();
    if ((now ^ mxcsr_) & ~kFlags) _mm_setcsr((mxcsr_ & ~kFlags) | (now & kFlags));
    if (X87Guard::Current() != x87_) X87Guard::Restore(x87_);
  }
  CallbackGuard(const CallbackGuard&) = delete;
  CallbackGuard& operator=(const CallbackGuard&) = delete;

 private:
  static constexpr uint32_t kFlags = 0x3F;
  const uint32_t mxcsr_ = _mm_getcsr();
  const uint16_t x87_ = X87Guard::Current();
};

}  // namespace pex

#endif  // PEX_CORE__KERNEL_CONTROL_H_
