// Single instructions whose exact behaviour is the contract: which operand's NaN comes out, which
// exceptions are raised, which rounding mode is taken.

#include <immintrin.h>

#include <cstdint>

#include "hwy/highway.h"

#if defined(PEX_CORE__KERNEL_HARDWARE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__KERNEL_HARDWARE_INL_H_
#undef PEX_CORE__KERNEL_HARDWARE_INL_H_
#else
#define PEX_CORE__KERNEL_HARDWARE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Operands of the round-to-integral instruction. The last two take the rounding mode of the control
// word; kCurrentQuiet alone never raises inexact.
enum Rounding {
  kNearest = 0,
  kDown = 1,
  kUp = 2,
  kTowardZero = 3,
  kCurrent = 4,
  kCurrentQuiet = 12
};

// One arithmetic instruction on these operands in this order. Compilers may swap the operands of a
// sum or a product otherwise, though of two NaNs the first one's payload comes out, and may compute
// a difference first and select afterwards, though only the selected operands raise nothing.
// Clang's assembler swaps them too, where a shorter encoding of the instruction is to be had: it
// gets none.
#if !defined(__clang__)
#define PEX_ENCODING ""
#elif HWY_TARGET == HWY_AVX2
#define PEX_ENCODING "%{vex3%} "
#else
#define PEX_ENCODING "%{evex%} "
#endif
// clang-format off
#if HWY_TARGET == HWY_SSE4
#define PEX_INSTRUCTION(Name, V, mnemonic)                                          \
  HWY_INLINE V Name(V a, V b) {                                                     \
    __asm__(mnemonic " %1, %0" : "+x"(a.raw) : "x"(b.raw));                         \
    return a;                                                                       \
  }
#else
#define PEX_INSTRUCTION(Name, V, mnemonic)                                          \
  HWY_INLINE V Name(V a, V b) {                                                     \
    __asm__(PEX_ENCODING "v" mnemonic " %2, %1, %0"                                 \
            : "=v"(a.raw) : "v"(a.raw), "v"(b.raw));                                \
    return a;                                                                       \
  }
#endif

// For one register type: the arithmetic, and rounding to an integer.
#define PEX_HARDWARE(V, suffix, round)                                              \
  PEX_INSTRUCTION(HardwareAdd, V, "add" suffix)                                     \
  PEX_INSTRUCTION(HardwareSub, V, "sub" suffix)                                     \
  PEX_INSTRUCTION(HardwareMul, V, "mul" suffix)                                     \
  template <Rounding kMode>                                                         \
  HWY_INLINE V RoundTo(V x) {                                                       \
    return V{round(x.raw, kMode)};                                                  \
  }
// clang-format on

template <size_t N>
using Doubles = hn::Vec128<double, N>;
template <size_t N>
using Floats = hn::Vec128<float, N>;

PEX_HARDWARE(Doubles<1>, "pd", _mm_round_pd)
PEX_HARDWARE(Doubles<2>, "pd", _mm_round_pd)
PEX_HARDWARE(Floats<1>, "ps", _mm_round_ps)
PEX_HARDWARE(Floats<2>, "ps", _mm_round_ps)
PEX_HARDWARE(Floats<4>, "ps", _mm_round_ps)
#if HWY_TARGET != HWY_SSE4
PEX_HARDWARE(hn::Vec256<double>, "pd", _mm256_round_pd)
PEX_HARDWARE(hn::Vec256<float>, "ps", _mm256_round_ps)
#endif
#if HWY_TARGET == HWY_AVX3
PEX_HARDWARE(hn::Vec512<double>, "pd", _mm512_roundscale_pd)
PEX_HARDWARE(hn::Vec512<float>, "ps", _mm512_roundscale_ps)
#endif

#undef PEX_HARDWARE
#undef PEX_INSTRUCTION
#undef PEX_ENCODING

// Products and sums that raise no flag, where whole registers can have them: what is lost by an
// underflow must not matter. The other levels' callers put tiny numbers aside, or add something to
// them.
#if HWY_TARGET == HWY_AVX3
HWY_INLINE hn::Vec512<float> SilentMul(hn::Vec512<float> x, hn::Vec512<float> y) {
  return {_mm512_mul_round_ps(x.raw, y.raw, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)};
}
HWY_INLINE hn::Vec512<double> SilentMul(hn::Vec512<double> x, hn::Vec512<double> y) {
  return {_mm512_mul_round_pd(x.raw, y.raw, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)};
}
HWY_INLINE hn::Vec512<float> SilentAdd(hn::Vec512<float> x, hn::Vec512<float> y) {
  return {_mm512_add_round_ps(x.raw, y.raw, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)};
}
HWY_INLINE hn::Vec512<double> SilentAdd(hn::Vec512<double> x, hn::Vec512<double> y) {
  return {_mm512_add_round_pd(x.raw, y.raw, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)};
}
template <class V>
inline constexpr bool kHasSilentMul = sizeof(V) == 64;
#else
template <class V>
HWY_INLINE V SilentMul(V x, V y) {
  return hn::Mul(x, y);
}
template <class V>
HWY_INLINE V SilentAdd(V x, V y) {
  return hn::Add(x, y);
}
template <class V>
inline constexpr bool kHasSilentMul = false;
#endif

// table[i] by lane, for constant tables. What the instruction finds in the lanes that it fills is
// of no use, but GCC would take any register, and the instruction would wait for what is computed
// there.
template <class D, typename T, class I>
HWY_INLINE hn::Vec<D> Gather(D d, const T* table, I i) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(hn::Vec<D>) == 64 && sizeof(T) == 8) {
    __m512i r;
    __mmask8 all;
    __asm__("vpxord %0, %0, %0\n\tkxnorw %1, %1, %1\n\tvpgatherqq (%2,%3,8), %0%{%1%}"
            : "=&v"(r), "=&Yk"(all)
            : "r"(table), "v"(i.raw));
    return hn::BitCast(d, hn::Vec512<uint64_t>{r});
  }
#endif
  return hn::GatherIndex(d, table, i);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__KERNEL_HARDWARE_INL_H_
