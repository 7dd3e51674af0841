// a b and a conj(b) in single precision. _11 computes in single precision, rounding every product
// and every sum; _21 and _HA in double precision, where products are exact, rounded once.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cmul/cmul.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/cmul/cmul-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <bool kConjugate>
struct MulInDouble : ComplexKernel<float, double, HWY_TARGET == HWY_AVX2> {
  static constexpr int kUnroll = 4;
  template <class D, class V>
  static HWY_INLINE void Main([[maybe_unused]] D d, Complex<V> a, Complex<V> b, Complex<V>& r) {
    if constexpr (MulInDouble::kWidened) {
      r = PlainProduct<kConjugate>(a, b);
    } else {
      r = Narrow(d, PlainProduct<kConjugate>(Widen(d, a), Widen(d, b)));
    }
  }
};

using C8 = PexComplex8;

int cMul_11(int32_t n, const C8* a, const C8* b, C8* r) {
  return MapPlainMul<float, false>(n, a, b, r);
}
int cMul(int32_t n, const C8* a, const C8* b, C8* r) {
  return MapComplex<MulInDouble<false>>(n, a, b, r);
}
int cMulByConj_11(int32_t n, const C8* a, const C8* b, C8* r) {
  return MapPlainMul<float, true>(n, a, b, r);
}
int cMulByConj(int32_t n, const C8* a, const C8* b, C8* r) {
  return MapComplex<MulInDouble<true>>(n, a, b, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cMul_11);
HWY_EXPORT(cMul);
HWY_EXPORT(cMulByConj_11);
HWY_EXPORT(cMulByConj);
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuardButDaz, cMul_11, cMul_11)
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuard, cMul, cMul_21)
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuard, cMul, cMul_HA)
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuardButDaz, cMulByConj_11, cMulByConj_11)
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuard, cMulByConj, cMulByConj_21)
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuard, cMulByConj, cMulByConj_HA)
}  // namespace pex
#endif
