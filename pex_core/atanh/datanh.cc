// atanh(x) = sign(x) ln((1 + |x|)/(1 - |x|))/2 in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atanh/datanh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/inverse_hyperbolic-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/atanh/atanh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAtanh";

template <class Groups = LargeGroups<double>>
struct dAtanhCommon : Groups {
  using Rarity = RareAbove<double, 0x3FEFFFFF>;  // 1 and beyond, NaN
  static constexpr double kHarmless = 0;
  static HWY_INLINE int Rare(double x, double* r) { return AtanhRare(x, r); }
};

struct dAtanhEP : dAtanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    AtanhByHalves(d, x, 0.1716, dAtanhEPPolynomial, r);
  }
};

struct dAtanhLA : dAtanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    AtanhByHalves(d, x, 0.245, dAtanhLAPolynomial, r);
  }
};

// A tiny x is its own result.
inline constexpr double kTiny = 0x1p-28;

struct dAtanhHA : dAtanhCommon<Kernel<double>> {
  static constexpr int kUnroll = 4;  // more vectors do not fit the registers
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V a[K], y[K];
    for (size_t k = 0; k < K; ++k) a[k] = MagnitudeUnlessTiny(d, x[k], kTiny);
    InverseHA<AtanhSum, true>(d, a, y);
    for (size_t k = 0; k < K; ++k) r[k] = SignedUnlessTiny(d, x[k], y[k], kTiny);
  }
};

PEX_UNARY(double, dAtanh_26, dAtanhEP)
PEX_UNARY(double, dAtanh_50, dAtanhLA)
PEX_UNARY(double, dAtanh_HA, dAtanhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dAtanh_26)
PEX_EXPORT_UNARY(double, dAtanh_50)
PEX_EXPORT_UNARY(double, dAtanh_HA)
}  // namespace pex
#endif
