// asinh(x) = sign(x) ln(|x| + sqrt(1 + x^2)) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/asinh/dasinh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/inverse_hyperbolic-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/asinh/asinh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAsinh";

struct dAsinhCommon : Kernel<double> {
  using Rarity = RareAbove<double, 0x7FEFFFFF>;  // infinities, NaN
  static HWY_INLINE int Rare(double x, double* r) { return AsinhRare(x, r); }
};

struct dAsinhWideEP : dAsinhCommon {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V a[K], y[K];
    for (size_t k = 0; k < K; ++k) {
      a[k] = hn::IfThenElse(MagnitudeBelow(d, x[k], kLeastEP), hn::Set(d, 1.0), hn::Abs(x[k]));
    }
    InverseEP<AsinhSum, true>(d, a, y);
    for (size_t k = 0; k < K; ++k) r[k] = SignedUnlessTiny(d, x[k], y[k], kLeastEP);
  }
};

struct dAsinhEP : dAsinhCommon {
  using Rarity = RareByMagnitude<RareOutside<double, 0x3E900000, 0x5EEFFFFF>>;
  using Wide = dAsinhWideEP;
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V a[K], y[K];
    for (size_t k = 0; k < K; ++k) a[k] = hn::Abs(x[k]);
    InverseEP<AsinhSum, false>(d, a, y);
    for (size_t k = 0; k < K; ++k) r[k] = hn::CopySignToAbs(y[k], x[k]);
  }
};

template <bool kFull>
struct dAsinhInFull : InverseFull<AsinhRootSum<kFull, false>, dAsinhCommon> {
  using Rarity = RareByMagnitude<RareOutside<double, 0x3E300000, 0x418FFFFF>>;  // 2^-28 to 2^26
  using Wide = InverseFull<AsinhRootSum<kFull, true>, dAsinhCommon>;
};

using dAsinhLA = dAsinhInFull<false>;
using dAsinhHA = dAsinhInFull<true>;

PEX_UNARY(double, dAsinh_26, dAsinhEP)
PEX_UNARY(double, dAsinh_50, dAsinhLA)
PEX_UNARY(double, dAsinh_HA, dAsinhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dAsinh_26)
PEX_EXPORT_UNARY(double, dAsinh_50)
PEX_EXPORT_UNARY(double, dAsinh_HA)
}  // namespace pex
#endif
