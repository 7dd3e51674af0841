// atanh(x) = sign(x) ln((1 + |x|)/(1 - |x|))/2 in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atanh/satanh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/inverse_hyperbolic-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/atanh/atanh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAtanh";

template <class Groups = LargeGroups<float>>
struct sAtanhCommon : Groups {
  using Rarity = RareAbove<float, 0x3F7FFFFF>;  // 1 and beyond, NaN
  static constexpr float kHarmless = 0;
  static HWY_INLINE int Rare(float x, float* r) { return AtanhRare(x, r); }
};

struct sAtanhEP : sAtanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    AtanhByHalves(d, x, 0.1716f, sAtanhEPPolynomial, r);
  }
};

struct sAtanhLA : sAtanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    AtanhByHalves(d, x, 0.245f, sAtanhLAPolynomial, r);
  }
};

// A tiny x is its own result.
inline constexpr float kTiny = 0x1p-13f;

// In double precision. Correctly rounded for all floats.
struct sAtanhHA : sAtanhCommon<Kernel<float, double>> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const hn::Rebind<double, D> wide;
    const V a = MagnitudeUnlessTiny(d, x, kTiny);
    const V y = LogOfSumSingle<AtanhSum>(d, hn::PromoteTo(wide, a));
    return SignedUnlessTiny(d, x, y, kTiny);
  }
};

PEX_UNARY(float, sAtanh_11, sAtanhEP)
PEX_UNARY(float, sAtanh_21, sAtanhLA)
PEX_UNARY(float, sAtanh_HA, sAtanhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sAtanh_11)
PEX_EXPORT_UNARY(float, sAtanh_21)
PEX_EXPORT_UNARY(float, sAtanh_HA)
}  // namespace pex
#endif
