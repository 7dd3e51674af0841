// Kernels that are one instruction of the processor, correctly rounded: square root, reciprocal,
// quotient. Rare lanes are those with a status code.

#include "pex_core/_heap/real/root_scalar.h"
#include "pex_core/_kernel/elementwise-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ROOT_HARDWARE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ROOT_HARDWARE_INL_H_
#undef PEX_CORE__HEAP_REAL_ROOT_HARDWARE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ROOT_HARDWARE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Negative numbers but -0, and NaNs with a sign.
template <class D, class V>
HWY_INLINE MaskOf<D> IsNegative(D d, V x) {
  const auto flipped = hn::Xor(Bits(d, x), Bits(d, hn::SignBit(d)));
  return hn::RebindMask(d, hn::Gt(flipped, SetBits(d, 0)));
}

template <class D, class V>
HWY_INLINE MaskOf<D> IsZero(D d, V x) {
  return hn::RebindMask(d, hn::Eq(hn::Add(Bits(d, x), Bits(d, x)), SetBits(d, 0)));
}

template <typename T>
struct SqrtKernel : Kernel<T> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return IsNegative(d, x);
  }
  template <class D, class V>
  static HWY_INLINE V Main(D, V x) {
    return hn::Sqrt(x);
  }
  static HWY_INLINE int Rare(T x, T* r) { return SqrtScalar(x, r); }
};

template <typename T>
struct InvKernel : Kernel<T> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return IsZero(d, x);
  }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return hn::Div(hn::Set(d, 1), x);
  }
  static HWY_INLINE int Rare(T x, T* r) { return DivScalar(T(1), x, r); }
};

template <typename T>
struct DivKernel : Kernel<T> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  static constexpr int kArguments = 2;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V, V b) {
    return IsZero(d, b);
  }
  template <class D, class V>
  static HWY_INLINE V Main(D, V a, V b) {
    return hn::Div(a, b);
  }
  static HWY_INLINE int Rare(T a, T b, T* r) { return DivScalar(a, b, r); }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ROOT_HARDWARE_INL_H_
