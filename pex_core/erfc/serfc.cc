// The complementary error function in single precision: in float, HA in double.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erfc/serfc.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf_fine-inl.h"
#include "pex_core/_heap/real/erfc-inl.h"
#include "pex_core/_heap/real/erfc_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/erfc/erfc_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsErfc";

struct sErfcInFull {
  // The result times 2^300.
  template <class D, class V, class W, size_t K>
  static HWY_INLINE void Scaled(D, const V (&x)[K], W (&y)[K]) {
    using Wide = hn::Rebind<double, D>;
    const Wide dd;
    ErfcReduced<Wide> u[K];
    W wide[K], z[K], e[K];
    for (size_t k = 0; k < K; ++k) {
      // From -5 down the result is 2.
      wide[k] = hn::PromoteTo(dd, x[k]);
      const W ax = hn::Abs(hn::Max(wide[k], hn::Set(dd, -5.0)));
      z[k] = hn::Add(ax, hn::Set(dd, 0x1p-200));
    }
    ErfcReduce<false>(dd, z, z, u);
    ErfcScaled(dd, u, e);
    for (size_t k = 0; k < K; ++k) y[k] = ErfcOrRest<true>(dd, wide[k], e[k], 2.0);
  }

  // By 2^-300 less 2^-52 of it: -0x1.d93ec4p-17 has its result so close to the middle of two floats
  // that it came out on the other side; this shift sends no other float there.
  template <class D, class V>
  static HWY_NOINLINE V Of(D d, V x) {
    const hn::Rebind<double, D> dd;
    const V in[1] = {x};
    VecOf<hn::Rebind<double, D>> y[1];
    Scaled(d, in, y);
    return hn::DemoteTo(d, hn::Mul(y[0], hn::Set(dd, 0x1.ffffffffffffep-301)));
  }
};

using sErfcHA = sErfcAccurateKernel<sErfcTail, ErfcFine, sErfcRare, sErfcInFull>;
using sErfcEP = sErfcKernel<sErfcTail, false, sErfcRare>;
using sErfcLA = sErfcKernel<sErfcTail, true, sErfcRare>;

PEX_UNARY(float, sErfc_11, sErfcEP)
PEX_UNARY(float, sErfc_21, sErfcLA)
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
