// a/b in single precision. _11 computes in single precision without scaling: |b|^2 overflows for
// |b| above 2^64 and underflows below 2^-63. _21 and _HA compute in double precision, where it
// does neither.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cdiv/cdiv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/cdiv/cdiv-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

struct DivInDouble : ComplexKernel<float, double, HWY_TARGET != HWY_AVX3> {
  static constexpr int kUnroll = 4;
  template <class D, class V>
  static HWY_INLINE void Main([[maybe_unused]] D d, Complex<V> a, Complex<V> b, Complex<V>& r) {
    const WideOf<D> wide;
    if constexpr (DivInDouble::kWidened) {
      r = PlainQuotient(wide, a, b);
    } else {
      r = Narrow(d, PlainQuotient(wide, Widen(d, a), Widen(d, b)));
    }
  }
};

int cDiv_11(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r) {
  return MapComplex<PlainDiv<float>>(n, a, b, r);
}
int cDiv(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r) {
  return MapComplex<DivInDouble>(n, a, b, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cDiv_11);
HWY_EXPORT(cDiv);
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuardButDaz, cDiv_11, cDiv_11)
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuard, cDiv, cDiv_21)
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuard, cDiv, cDiv_HA)
}  // namespace pex
#endif
