// a/b in double precision. _26 rounds every step and does not scale: |b|^2 overflows for |b| above
// 2^512. _50 and _HA take |b|^2 and a conj(b) in two parts each, with exact products, and correct
// the quotients by their remainders: at most 0.5001 ulp of the part, whatever cancels.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cdiv/zdiv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/cdiv/cdiv-inl.h"
#include "pex_core/cdiv/zdiv_scalar.h"
#include "pex_core/cmul/exact_products-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// The same with |less| at most half an ulp of hi.
template <class D, class V>
HWY_INLINE Reduced<V> Normalized(D d, Reduced<V> x) {
  const V hi = hn::Sub(x.hi, x.less);
  return {hi, hn::Add(MultiplierSub(d, hi, x.hi), x.less)};
}

// (n.hi - n.less)/m for a normalized numerator, where inverse is 1/m.hi rounded. What the first
// quotient is too large is subtracted, as +0 where it is exact, so that zeros keep their sign.
template <class D, class V>
HWY_INLINE V Quotient(D d, Reduced<V> n, Pair<V> m, V inverse) {
  const V q = hn::Mul(n.hi, inverse);
  const V excess = hn::Add(hn::Add(ProductLess(d, q, m.hi, n.hi), n.less), hn::Mul(q, m.lo));
  return hn::Sub(q, hn::Mul(excess, inverse));
}

// Common lanes have parts from 2^-240 below 2^240, so that neither products nor quotients leave the
// normal numbers, or zero; b is not zero.
struct ExactDiv : ComplexKernel<double> {
  using Outside = PartsOutside<0x30F00000, 0x4EEFFFFF, 8>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> a, Complex<V> b) {
    return Outside::MayBeAny(d, a.re, a.im, b.re, b.im);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a, Complex<V> b) {
    return hn::Or(IsZero(d, b), Outside::Any(d, a.re, a.im, b.re, b.im));
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, Complex<V> a, Complex<V> b, Complex<V>& r) {
    const ProductParts<V> n = ExactProduct<true>(d, a, b);
    const Pair<V> m = SumOfSquares(d, b);
    const V inverse = hn::Div(hn::Set(d, 1.0), m.hi);
    r = {Quotient(d, Normalized(d, n.re), m, inverse),
         Quotient(d, Normalized(d, n.im), m, inverse)};
  }
  static Complex<double> Rare(Complex<double> a, Complex<double> b) { return zDivScalar(a, b); }
};

int zDiv_26(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r) {
  return MapComplex<PlainDiv<double>>(n, a, b, r);
}
int zDiv(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r) {
  return MapComplex<ExactDiv>(n, a, b, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zDiv_26);
HWY_EXPORT(zDiv);
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuardButDaz, zDiv_26, zDiv_26)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuard, zDiv, zDiv_50)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuard, zDiv, zDiv_HA)
}  // namespace pex
#endif
