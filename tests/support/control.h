// A caller's floating-point control words for the length of a scope, and the flags of a call.
#ifndef TESTS_SUPPORT_CONTROL_H_
#define TESTS_SUPPORT_CONTROL_H_

#include <immintrin.h>

#include <cstdint>

inline constexpr uint32_t kMxcsrDefault = 0x1F80;
inline constexpr uint32_t kMxcsrFlags = 0x3F;
inline constexpr uint16_t kX87Default = 0x37F;
enum SseFlag : uint32_t {
  kInvalid = 1,
  kDenormal = 2,
  kDivByZero = 4,
  kOverflow = 8,
  kUnderflow = 16,
  kInexact = 32
};

struct Control {
  const char* name;
  uint32_t mxcsr = kMxcsrDefault;
  uint16_t x87 = kX87Default;
};

inline constexpr Control kDefaultControl = {"default"};
inline constexpr Control kControls[] = {
    {"round down", 0x3F80},
    {"round up", 0x5F80},
    {"round to zero", 0x7F80},
    {"flush to zero", 0x9F80},
    {"denormals are zero", 0x1FC0},
    {"round up, flush, denormals are zero", 0xDFC0},
    {"exceptions unmasked", 0x0000},
    {"exceptions unmasked, round down", 0x2000},
    {"x87 single precision", kMxcsrDefault, 0x07F},
    {"x87 double precision, round up", kMxcsrDefault, 0xA7F},
    {"x87 round to zero", kMxcsrDefault, 0xF7F},
};

inline uint16_t X87Control() {
  uint16_t word;
  __asm__ volatile("fnstcw %0" : "=m"(word));
  return word;
}

// Whether the upper halves of vector registers are in use: SSE code would wait for them with every
// result. False where the processor does not say.
inline bool UpperHalvesInUse() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__OPTIMIZE__)
  return false;  // GCC clears them from -O2 on, and such builds have less
#else
  const auto in_use = []() -> bool {
    uint32_t low, high;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(1));
    return (low & 4) != 0;
  };
  static const bool says = [&] {
    uint32_t a = 0xD, b, c = 1, d;
    if (!__builtin_cpu_supports("avx")) return false;
    __asm__("cpuid" : "+a"(a), "=b"(b), "+c"(c), "=d"(d));
    if ((a & 4) == 0) return false;
    __asm__ volatile("vzeroupper" : : : "memory");
    return !in_use();
  }();
  return says && in_use();
#endif
}

inline bool X87RegistersEmpty() {
  uint16_t environment[14];
  __asm__ volatile("fnstenv %0\n\tfldenv %0" : "=m"(environment) : : "memory");
  return environment[4] == 0xFFFF;  // the tag word
}

// Sets the control words and clears the flags; finds out afterwards what the scope's calls did. The
// compiler keeps the calls between construction and Finish, for it cannot see into them.
class UseControl {
 public:
  explicit UseControl(const Control& control, uint32_t standing_flags = 0)
      : control_(control), saved_mxcsr_(_mm_getcsr()), saved_x87_(X87Control()) {
    __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(control.x87) : "memory");
    _mm_setcsr(control.mxcsr | standing_flags);
  }
  ~UseControl() { Finish(); }
  UseControl(const UseControl&) = delete;
  UseControl& operator=(const UseControl&) = delete;

  // Restores the control words of before.
  void Finish() {
    if (finished_) return;
    finished_ = true;
    const uint32_t mxcsr = _mm_getcsr();
    uint16_t status;
    __asm__ volatile("fnstsw %0" : "=m"(status));
    flags_ = mxcsr & kMxcsrFlags;
    x87_flags_ = status & 0x3F;
    kept_ = (mxcsr & ~kMxcsrFlags) == control_.mxcsr && X87Control() == control_.x87 &&
            X87RegistersEmpty() && !UpperHalvesInUse();
    __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(saved_x87_) : "memory");
    _mm_setcsr(saved_mxcsr_);
  }

  uint32_t flags() const { return flags_; }          // of MXCSR, at Finish
  uint32_t x87_flags() const { return x87_flags_; }  // of the x87 status word, at Finish
  // The control words were those set, the x87 registers empty and no upper halves in use.
  bool kept() const { return kept_; }

 private:
  Control control_;
  uint32_t saved_mxcsr_;
  uint16_t saved_x87_;
  uint32_t flags_ = 0, x87_flags_ = 0;
  bool kept_ = false, finished_ = false;
};

#endif  // TESTS_SUPPORT_CONTROL_H_
