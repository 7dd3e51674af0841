// The complementary error function in double precision: 2 - erfc(-x) for negative x.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erfc/derfc.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erfc-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/erfc/erfc_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdErfc";

template <ErfcTier kTier>
struct dErfcKernel : Kernel<double> {
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
    ErfcReduced<D> u[K];
    V z[K];
    Pair<V> e[K];
    // From -6 down the result is 2.
    for (size_t k = 0; k < K; ++k) z[k] = hn::Abs(hn::Max(x[k], hn::Set(d, -6.0)));
    ErfcReduce<kTier, false>(d, z, z, u);
    ErfcScaled<kTier, false>(d, u, e);
    for (size_t k = 0; k < K; ++k) {
      const V two = hn::Set(d, 2.0);
      if constexpr (kTier == ErfcTier::kHA) {
        const V y = Unscaled<0>(d, hn::Add(e[k].hi, e[k].lo), u[k].j);
        const Pair<V> less = FastTwoSum(two, hn::Neg(e[k].hi));
        out[k] = hn::IfNegativeThenElse(x[k], hn::Add(less.hi, hn::Sub(less.lo, e[k].lo)), y);
      } else {
        const V y = Unscaled<0>(d, e[k].hi, u[k].j);
        out[k] = hn::IfNegativeThenElse(x[k], hn::Sub(two, y), y);
      }
    }
  }
};

using dErfcEP = dErfcKernel<ErfcTier::kEP>;
using dErfcLA = dErfcKernel<ErfcTier::kLA>;
using dErfcHA = dErfcKernel<ErfcTier::kHA>;

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
