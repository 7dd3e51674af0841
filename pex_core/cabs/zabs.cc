// |a| in double precision, one computation for all tiers: at most 0.501 ulp.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cabs/zabs.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/cabs/cabs-inl.h"
#include "pex_core/cabs/cabs_scalar.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// Lanes have parts from 2^-400 below 2^500, so that the squares and their errors are exact, or one
// of them zero; common ones have parts around 1.
using zAbsOutside = PartsOutside<0x26F00000, 0x5F2FFFFF>;

struct zAbsWide : ModulusKernel<double, true> {
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a) {
    return hn::Or(IsZero(d, a), zAbsOutside::Any(d, a.re, a.im));
  }
  static double Rare(Complex<double> a) { return zAbsScalar(a); }
};

struct zAbsKernel : ModulusKernel<double> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 3 : 2;
  using Wide = zAbsWide;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&a)[K]) {
    return zAbsOutside::AnyOfGroup(d, a);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a) {
    return zAbsWide::IsRare(d, a);
  }
};

int zAbs(int32_t n, const PexComplex16* a, double* r) { return MapComplex<zAbsKernel>(n, a, r); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zAbs);
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, double, ControlGuard, zAbs, zAbs_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, double, ControlGuard, zAbs, zAbs_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, double, ControlGuard, zAbs, zAbs_HA)
}  // namespace pex
#endif
