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
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    AtanhByHalves(d, x, 0.1716, dAtanhEPPolynomial, r);
  }
};

struct dAtanhLA : dAtanhCommon<> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    AtanhByHalves(d, x, 0.245, dAtanhLAPolynomial, r);
  }
};

using dAtanhHA = InverseFull<AtanhQuotient, dAtanhCommon<Kernel<double>>>;

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
