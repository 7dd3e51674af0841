// Products of complex numbers with every product and every sum rounded.

#include "pex_core/_kernel/complex-inl.h"
#include "pex_core/_kernel/hardware-inl.h"

#if defined(PEX_CORE_CMUL_CMUL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_CMUL_CMUL_INL_H_
#undef PEX_CORE_CMUL_CMUL_INL_H_
#else
#define PEX_CORE_CMUL_CMUL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// a b, or a conj(b). Of two NaNs the first one's bits come out.
template <bool kConjugate, class V>
HWY_INLINE Complex<V> PlainProduct(Complex<V> a, Complex<V> b) {
  const V rr = HardwareMul(a.re, b.re), ii = HardwareMul(a.im, b.im);
  const V ri = HardwareMul(a.re, b.im), ir = HardwareMul(a.im, b.re);
  if constexpr (kConjugate) {
    return {HardwareAdd(rr, ii), HardwareSub(ir, ri)};
  } else {
    return {HardwareSub(rr, ii), HardwareAdd(ri, ir)};
  }
}

template <typename T, bool kConjugate, size_t kBytes = HWY_MAX_BYTES>
struct PlainMul : ComplexKernel<T> {
  using Tag = hn::CappedTag<T, kBytes / sizeof(T)>;
  template <class D, class V>
  static HWY_INLINE void Main(D, Complex<V> a, Complex<V> b, Complex<V>& r) {
    r = PlainProduct<kConjugate>(a, b);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CMUL_CMUL_INL_H_
