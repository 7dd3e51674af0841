// Quotients of complex numbers by one division, without scaling: d = 1/|b|^2, a conj(b) d. Every
// product, sum and quotient is rounded.

#include "pex_core/cmul/cmul-inl.h"

#if defined(PEX_CORE_CDIV_CDIV_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_CDIV_CDIV_INL_H_
#undef PEX_CORE_CDIV_CDIV_INL_H_
#else
#define PEX_CORE_CDIV_CDIV_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class D, class V>
HWY_INLINE Complex<V> PlainQuotient(D d, Complex<V> a, Complex<V> b) {
  const V modulus = HardwareAdd(HardwareMul(b.re, b.re), HardwareMul(b.im, b.im));
  const V inverse = hn::Div(hn::Set(d, 1), modulus);
  const Complex<V> n = PlainProduct<true>(a, b);
  return {HardwareMul(n.re, inverse), HardwareMul(n.im, inverse)};
}

template <typename Element>
struct PlainDiv : ComplexKernel<Element> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 && sizeof(Element) == 4 ? 3 : 2;
  template <class D, class V>
  static HWY_INLINE void Main(D d, Complex<V> a, Complex<V> b, Complex<V>& r) {
    r = PlainQuotient(d, a, b);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CDIV_CDIV_INL_H_
