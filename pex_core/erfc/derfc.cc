// The complementary error function in double precision: 2 - erfc(-x) for negative x.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erfc/derfc.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf_fine-inl.h"
#include "pex_core/_heap/real/erfc-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/erfc/erfc_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdErfc";

struct dErfcHA : Kernel<double> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 6;
  // Common from -8164 to 26.54, where the result comes close to the subnormal numbers.
  struct Rarity : RareAbove<double, 0x40AFFF14> {  // |x + 4069| > 4095.54
    template <class D>
    static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
      return Bits(d, hn::Abs(hn::Add(x, hn::Set(d, 4069.0))));
    }
  };
  static HWY_INLINE int Rare(double x, double* r) { return dErfcRare(x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    constexpr ErfcTier kTier = ErfcTier::kHA;
    ErfcReduced<D> u[K];
    V z[K];
    Pair<V> e[K];
    for (size_t k = 0; k < K; ++k) {
      // From -6 down the result is 2.
      const V ax = hn::Abs(hn::Max(x[k], hn::Set(d, -6.0)));
      z[k] = hn::Add(ax, hn::Set(d, 0x1p-200));
    }
    ErfcReduce<kTier, false>(d, z, z, u);
    ErfcScaled<kTier>(d, u, e);
    for (size_t k = 0; k < K; ++k) {
      const V y = ErfcOrRest<kTier, true>(d, x[k], e[k], 2.0);
      out[k] = hn::Mul(y, hn::Set(d, 0x1p-300));
    }
  }
};

using dErfcEP = FineKernel<ErfcFine, ErfcTier::kEP, dErfcRare>;
using dErfcLA = FineKernel<ErfcFine, ErfcTier::kLA, dErfcRare>;

PEX_UNARY(double, dErfc_26, dErfcEP)
PEX_UNARY(double, dErfc_50, dErfcLA)
PEX_UNARY(double, dErfc_HA, dErfcHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dErfc_26)
PEX_EXPORT_UNARY(double, dErfc_50)
PEX_EXPORT_UNARY(double, dErfc_HA)
}  // namespace pex
#endif
