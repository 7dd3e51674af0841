// The standard normal distribution function in single precision: in float, HA in double.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cdfnorm/scdfnorm.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/cdfnorm-inl.h"
#include "pex_core/_heap/real/erfc-inl.h"
#include "pex_core/_heap/real/erfc_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/erfc/erfc_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsCdfNorm";

template <typename Compute>
struct sCdfNormCommon : Kernel<float, Compute> {
  // Common from -12.94 to 242.
  struct Rarity : RareAbove<float, 0x42FFE148> {  // |x - 115| > 127.94
    template <class D>
    static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
      return Bits(d, hn::Abs(hn::Sub(x, hn::Set(d, 115.0f))));
    }
  };
  static HWY_INLINE int Rare(float x, float* r) { return sCdfNormRare(x, r); }
};

template <bool kLA>
struct sCdfNormShort : sCdfNormCommon<float> {
  static constexpr int kUnroll = kErfcSingleUnroll<kLA>;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V z[K], s[K];
    for (size_t k = 0; k < K; ++k) {
      // From 7 on the result is 1.
      const V ax = hn::Abs(hn::Min(x[k], hn::Set(d, 7.0f)));
      z[k] = hn::Add(ax, hn::Set(d, 0x1p-30f));
    }
    sErfcFromTable<sCdfNormTail, kLA>(d, z, s);
    for (size_t k = 0; k < K; ++k) {
      const V rest = hn::Sub(hn::Set(d, 1.0f), s[k]);
      out[k] = hn::IfNegativeThenElse(x[k], s[k], rest);
    }
  }
};

// Correctly rounded for all floats.
struct sCdfNormHA : sCdfNormCommon<double> {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const hn::Rebind<double, D> dd;
    VecOf<hn::Rebind<double, D>> wide[K], y[K];
    V a[K];
    for (size_t k = 0; k < K; ++k) {
      a[k] = x[k];
      wide[k] = hn::PromoteTo(dd, x[k]);
    }
    CdfNormScaled<ErfcTier::kShort>(dd, wide, y);
    const bool open = AnyRoundingInDoubt<17>(dd, y);
    for (size_t k = 0; k < K; ++k) {
      out[k] = hn::DemoteTo(d, hn::Mul(y[k], hn::Set(dd, 0x1p-300)));
    }
    if (open) [[unlikely]] {
      for (size_t k = 0; k < K; ++k) out[k] = InFull(d, a[k]);
    }
  }

  template <class D, class V>
  static HWY_NOINLINE V InFull(D d, V x) {
    using Wide = hn::Rebind<double, D>;
    const Wide dd;
    using W = VecOf<Wide>;
    ErfcReduced<Wide> u[1];
    Pair<W> e[1];
    // From 7 on the result is 1.
    const W wide = hn::PromoteTo(dd, x), ax = hn::Abs(hn::Min(wide, hn::Set(dd, 7.0)));
    const Pair<W> p = OverRootTwo(dd, ax);
    const W z[1] = {p.hi}, rest[1] = {p.lo};
    ErfcReduce<ErfcTier::kLA, true>(dd, z, rest, u);
    ErfcScaled<ErfcTier::kLA>(dd, u, e);
    const W y = ErfcOrRest<ErfcTier::kLA, false>(dd, wide, e[0], 2.0);
    // An ulp away from 1/2, for next to 0 the result lies that close to the middle of two floats.
    const W scale = hn::IfNegativeThenElse(wide, hn::Set(dd, 0x1.fffffffffffffp-302),
                                           hn::Set(dd, 0x1.0000000000001p-301));
    return hn::DemoteTo(d, hn::Mul(y, scale));
  }
};

PEX_UNARY(float, sCdfNorm_11, sCdfNormShort<false>)
PEX_UNARY(float, sCdfNorm_21, sCdfNormShort<true>)
PEX_UNARY(float, sCdfNorm_HA, sCdfNormHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sCdfNorm_11)
PEX_EXPORT_UNARY(float, sCdfNorm_21)
PEX_EXPORT_UNARY(float, sCdfNorm_HA)
}  // namespace pex
#endif
