// Arg in single precision: _11 has 12 correct bits, _21 errs by less than 2 ulp, _HA by 0.5094.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/carg/carg.cc"
#include <type_traits>

#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan2_plain-inl.h"
#include "pex_core/_heap/real/atan_scalar.h"
#include "pex_core/carg/carg-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <bool kTiny>
struct sArgEP {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void Of(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    UnitAtan2<kAtanUnitSingleEP, true, kTiny>(d, y, x, r);
  }
};

template <bool kTiny>
struct sArgLA {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void Of(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    UnitAtan2<kAtan2SingleLA, false, kTiny>(d, y, x, r);
  }
};

struct sArgHA {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void Of(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    SingleAtan2HA(d, y, x, r);
  }
};

template <typename Compute, class Domain, class Formula>
struct sArg : ArgKernel<float, Compute, Domain, Formula> {
  static float Rare(Complex<float> a) { return _pexsatan2_scalar(a.im, a.re); }
};

// Most numbers have parts whose exponents few operations tell, without minima and maxima, which
// only AVX-512 gains by; all others are left to the rest of the domain, by the same formula.
struct sArgCommonDomain : sAtan2ModestDomain {
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const V (&y)[K], const V (&x)[K]) {
    return AnyOutside(d, y, x);
  }
};
template <template <bool kTiny> class Formula>
struct sArgCommon : sArg<float, sArgCommonDomain, Formula<false>> {
  using Wide = sArg<float, sAtan2Domain, Formula<true>>;
};
template <template <bool kTiny> class Formula>
using sArgPlain = std::conditional_t<HWY_TARGET == HWY_AVX3, sArgCommon<Formula>,
                                     sArg<float, sAtan2Domain, Formula<true>>>;

int cArg_11(int32_t n, const PexComplex8* a, float* r) {
  return MapComplex<sArgPlain<sArgEP>>(n, a, r);
}
int cArg_21(int32_t n, const PexComplex8* a, float* r) {
  return MapComplex<sArgPlain<sArgLA>>(n, a, r);
}
int cArg_HA(int32_t n, const PexComplex8* a, float* r) {
  return MapComplex<sArg<float, sAtan2WideDomain, sArgHA>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cArg_11);
HWY_EXPORT(cArg_21);
HWY_EXPORT(cArg_HA);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, float, ControlGuard, cArg_11, cArg_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, float, ControlGuard, cArg_21, cArg_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, float, ControlGuard, cArg_HA, cArg_HA)
}  // namespace pex
#endif
