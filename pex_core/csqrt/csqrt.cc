// The square root of complex numbers. LA and EP in single precision are one kernel in float
// arithmetic; all else is HA's.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/csqrt/csqrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// The formula of ComplexSqrt rounded step by step: |z| is off by 2 units of 2^-24, the parts by at
// most 3.5.
struct SingleSqrtLA : ComplexKernel<float> {
  using Range = PartRange<-60, 60>;
  static constexpr int kUnroll = 4;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> z) {
    return hn::Or(Range::AnyOutside(d, z.re), Range::AnyOutside(d, z.im));
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
    return hn::Or(IsPoint(d, z, 0),
                  hn::Or(Range::LanesOutside(d, z.re), Range::LanesOutside(d, z.im)));
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, Complex<V> z, Complex<V>& r) {
    const V ax = hn::Abs(z.re), ay = hn::Abs(z.im), half = hn::Set(d, 0.5f);
    const V modulus = hn::Sqrt(hn::Add(hn::Mul(ax, ax), hn::Mul(ay, ay)));
    const V major = hn::Sqrt(hn::Mul(hn::Add(modulus, ax), half));
    const V minor = hn::Div(hn::Mul(ay, half), major);
    r = {hn::IfNegativeThenElse(z.re, minor, major),
         hn::CopySignToAbs(hn::IfNegativeThenElse(z.re, major, minor), z.im)};
  }
  static Complex<float> Rare(Complex<float> z) {
    return RoundedScalar<float, _pexcsqrt_scalar, double, double>(z.re, z.im);
  }
};

PEX_COMPLEX_BODIES(Sqrt)
int cSqrt_21(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleSqrtLA>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cSqrt);
HWY_EXPORT(cSqrt_21);
HWY_EXPORT(zSqrt);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cSqrt_21, cSqrt_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cSqrt_21, cSqrt_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cSqrt, cSqrt_HA)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zSqrt, zSqrt_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zSqrt, zSqrt_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zSqrt, zSqrt_HA)
}  // namespace pex
#endif
