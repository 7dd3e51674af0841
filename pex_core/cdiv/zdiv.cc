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
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&a)[K], const Complex<V> (&b)[K]) {
    return Outside::AnyOfGroup(d, a, b);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a, Complex<V> b) {
    return hn::Or(IsZero(d, b), Outside::Any(d, a.re, a.im, b.re, b.im));
  }
  // a conj(b), |b|^2 and the inverse of that.
  template <class V, size_t K>
  struct Begun {
    Reduced<V> re[K], im[K];
    Pair<V> m[K];
    V inverse[K];
  };
  template <class D, class V, size_t K>
  static HWY_INLINE Begun<V, K> Begin(D d, const Complex<V> (&a)[K], const Complex<V> (&b)[K]) {
    Begun<V, K> begun;
    for (size_t k = 0; k < K; ++k) {
      begun.m[k] = SumOfSquares(d, b[k]);
      begun.inverse[k] = hn::Div(hn::Set(d, 1.0), begun.m[k].hi);
      const ProductParts<V> n = ExactProduct<true>(d, a[k], b[k]);
      begun.re[k] = n.re;
      begun.im[k] = n.im;
    }
    return begun;
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void End(D d, const Begun<V, K>& begun, Complex<V> (&r)[K]) {
    for (size_t k = 0; k < K; ++k) {
      r[k] = {Quotient(d, Normalized(d, begun.re[k]), begun.m[k], begun.inverse[k]),
              Quotient(d, Normalized(d, begun.im[k]), begun.m[k], begun.inverse[k])};
    }
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
