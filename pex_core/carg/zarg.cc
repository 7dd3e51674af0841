// Arg in double precision: _26 and _50 are one computation that errs by less than 2 ulp, _HA errs
// by at most 0.55.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/carg/zarg.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan2_full-inl.h"
#include "pex_core/_heap/real/atan2_plain-inl.h"
#include "pex_core/_heap/real/atan_scalar.h"
#include "pex_core/carg/carg-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <bool kTiny>
struct dArgLA {
  static constexpr int kUnroll = kTiny ? 1 : HWY_TARGET == HWY_AVX3 ? 6 : 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void Of(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    OctantAtan2LA<kTiny>(d, y, x, r);
  }
};

template <bool kTiny>
struct dArgHA {
  static constexpr int kUnroll = kTiny ? 1 : 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void Of(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    FullAtan2<kTiny>(d, y, x, r);
  }
};

template <class Formula, class Domain>
struct dArg : ArgKernel<double, double, Domain, Formula> {
  static double Rare(Complex<double> a) {
    double r;
    dAtan2Scalar(a.im, a.re, &r);
    return r;
  }
};

template <template <bool kTiny> class Formula>
struct dArgCommon : dArg<Formula<false>, Atan2ModestDomain> {
  using Wide = dArg<Formula<true>, Atan2Domain>;
};

int zArg(int32_t n, const PexComplex16* a, double* r) {
  return MapComplex<dArgCommon<dArgLA>>(n, a, r);
}
int zArg_HA(int32_t n, const PexComplex16* a, double* r) {
  return MapComplex<dArgCommon<dArgHA>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zArg);
HWY_EXPORT(zArg_HA);
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, double, ControlGuard, zArg, zArg_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, double, ControlGuard, zArg, zArg_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, double, ControlGuard, zArg_HA, zArg_HA)
}  // namespace pex
#endif
