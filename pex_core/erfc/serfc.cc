// The complementary error function in single precision: in float, HA in double.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erfc/serfc.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erfc-inl.h"
#include "pex_core/_heap/real/erfc_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/erfc/erfc_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsErfc";

template <typename Compute>
struct sErfcCommon : Kernel<float, Compute> {
  // Common from -245 to 9.18.
  struct Rarity : RareAbove<float, 0x42FE5C28> {  // |x + 118| > 127.18
    template <class D>
    static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
      return Bits(d, hn::Abs(hn::Add(x, hn::Set(d, 118.0f))));
    }
  };
  static HWY_INLINE int Rare(float x, float* r) { return sErfcRare(x, r); }
};

template <bool kLA>
struct sErfcShort : sErfcCommon<float> {
  static constexpr int kUnroll = kErfcSingleUnroll<kLA>;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V z[K], s[K];
    for (size_t k = 0; k < K; ++k) {
      // From -5 down the result is 2.
      const V ax = hn::Abs(hn::Max(x[k], hn::Set(d, -5.0f)));
      z[k] = hn::Add(ax, hn::Set(d, 0x1p-30f));
    }
    sErfcFromTable<sErfcTail, kLA>(d, z, s);
    for (size_t k = 0; k < K; ++k) {
      const V rest = hn::Sub(hn::Set(d, 2.0f), s[k]);
      out[k] = hn::IfNegativeThenElse(x[k], rest, s[k]);
    }
  }
};

// Correctly rounded for all floats.
struct sErfcHA : sErfcCommon<double> {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const hn::Rebind<double, D> dd;
    V a[K];
    VecOf<hn::Rebind<double, D>> y[K];
    for (size_t k = 0; k < K; ++k) a[k] = x[k];
    Scaled<ErfcTier::kShort>(d, x, y);
    const bool open = AnyRoundingInDoubt<13>(dd, y);
    for (size_t k = 0; k < K; ++k) {
      out[k] = hn::DemoteTo(d, hn::Mul(y[k], hn::Set(dd, 0x1p-300)));
    }
    if (open) [[unlikely]] {
      for (size_t k = 0; k < K; ++k) out[k] = InFull(d, a[k]);
    }
  }

  // The result times 2^300.
  template <ErfcTier kTier, class D, class V, class W, size_t K>
  static HWY_INLINE void Scaled(D, const V (&x)[K], W (&y)[K]) {
    using Wide = hn::Rebind<double, D>;
    const Wide dd;
    ErfcReduced<Wide> u[K];
    W wide[K], z[K];
    Pair<W> e[K];
    for (size_t k = 0; k < K; ++k) {
      // From -5 down the result is 2.
      wide[k] = hn::PromoteTo(dd, x[k]);
      const W ax = hn::Abs(hn::Max(wide[k], hn::Set(dd, -5.0)));
      z[k] = hn::Add(ax, hn::Set(dd, 0x1p-200));
    }
    ErfcReduce<kTier, false>(dd, z, z, u);
    ErfcScaled<kTier>(dd, u, e);
    for (size_t k = 0; k < K; ++k) y[k] = ErfcOrRest<kTier, true>(dd, wide[k], e[k], 2.0);
  }

  // By 2^-300 less 2^-52 of it: -0x1.d93ec4p-17 has its result so close to the middle of two floats
  // that it came out on the other side; this shift sends no other float there.
  template <class D, class V>
  static HWY_NOINLINE V InFull(D d, V x) {
    const hn::Rebind<double, D> dd;
    const V in[1] = {x};
    VecOf<hn::Rebind<double, D>> y[1];
    Scaled<ErfcTier::kLA>(d, in, y);
    return hn::DemoteTo(d, hn::Mul(y[0], hn::Set(dd, 0x1.ffffffffffffep-301)));
  }
};

PEX_UNARY(float, sErfc_11, sErfcShort<false>)
PEX_UNARY(float, sErfc_21, sErfcShort<true>)
PEX_UNARY(float, sErfc_HA, sErfcHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sErfc_11)
PEX_EXPORT_UNARY(float, sErfc_21)
PEX_EXPORT_UNARY(float, sErfc_HA)
}  // namespace pex
#endif
