// a b and a conj(b) in double precision. _26 rounds every product and every sum. _50 and _HA take
// the products exactly and round each part once: at most 0.5001 ulp of the part, whatever cancels.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cmul/zmul.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/cmul/cmul-inl.h"
#include "pex_core/cmul/exact_products-inl.h"
#include "pex_core/cmul/zmul_scalar.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// Common lanes have parts from 2^-484 below 2^511, so that products and their errors are exact and
// sums do not overflow, or zero.
template <bool kConjugate>
struct ExactMul : ComplexKernel<double> {
  using Outside = PartsOutside<0x21B00000, 0x5FDFFFFF>;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&a)[K], const Complex<V> (&b)[K]) {
    return Outside::AnyOfGroup(d, a, b);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a, Complex<V> b) {
    return Outside::Any(d, a.re, a.im, b.re, b.im);
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, Complex<V> a, Complex<V> b, Complex<V>& r) {
    const ProductParts<V> product = ExactProduct<kConjugate>(d, a, b);
    r = {hn::Sub(product.re.hi, product.re.less), hn::Sub(product.im.hi, product.im.less)};
  }
  static Complex<double> Rare(Complex<double> a, Complex<double> b) {
    return kConjugate ? zMulByConjScalar(a, b) : zMulScalar(a, b);
  }
};

using C16 = PexComplex16;

int zMul_26(int32_t n, const C16* a, const C16* b, C16* r) {
  return MapPlainMul<double, false>(n, a, b, r);
}
int zMul(int32_t n, const C16* a, const C16* b, C16* r) {
  return MapComplex<ExactMul<false>>(n, a, b, r);
}
int zMulByConj_26(int32_t n, const C16* a, const C16* b, C16* r) {
  return MapPlainMul<double, true>(n, a, b, r);
}
int zMulByConj(int32_t n, const C16* a, const C16* b, C16* r) {
  return MapComplex<ExactMul<true>>(n, a, b, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zMul_26);
HWY_EXPORT(zMul);
HWY_EXPORT(zMulByConj_26);
HWY_EXPORT(zMulByConj);
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuardButDaz, zMul_26, zMul_26)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuard, zMul, zMul_50)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuard, zMul, zMul_HA)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuardButDaz, zMulByConj_26, zMulByConj_26)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuard, zMulByConj, zMulByConj_50)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuard, zMulByConj, zMulByConj_HA)
}  // namespace pex
#endif
