// The standard normal distribution function in single precision: in float, HA in double.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cdfnorm/scdfnorm.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/cdfnorm-inl.h"
#include "pex_core/_heap/real/erf_fine-inl.h"
#include "pex_core/_heap/real/erfc-inl.h"
#include "pex_core/_heap/real/erfc_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/erfc/erfc_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsCdfNorm";

struct sCdfNormInFull {
  template <class D, class V>
  static HWY_NOINLINE V Of(D d, V x) {
    using Wide = hn::Rebind<double, D>;
    const Wide dd;
    using W = VecOf<Wide>;
    ErfcReduced<Wide> u[1];
    W e[1];
    // From 7 on the result is 1.
    const W wide = hn::PromoteTo(dd, x), ax = hn::Abs(hn::Min(wide, hn::Set(dd, 7.0)));
    const Pair<W> p = OverRootTwo(dd, ax);
    const W z[1] = {p.hi}, rest[1] = {p.lo};
    ErfcReduce<true>(dd, z, rest, u);
    ErfcScaled(dd, u, e);
    const W y = ErfcOrRest<false>(dd, wide, e[0], 2.0);
    // An ulp away from 1/2, for next to 0 the result lies that close to the middle of two floats.
    const W scale = hn::IfNegativeThenElse(wide, hn::Set(dd, 0x1.fffffffffffffp-302),
                                           hn::Set(dd, 0x1.0000000000001p-301));
    return hn::DemoteTo(d, hn::Mul(y, scale));
  }
};

using sCdfNormHA = sErfcAccurateKernel<sCdfNormTail, CdfNormFine, sCdfNormRare, sCdfNormInFull>;
using sCdfNormEP = sErfcKernel<sCdfNormTail, false, sCdfNormRare>;
using sCdfNormLA = sErfcKernel<sCdfNormTail, true, sCdfNormRare>;

PEX_UNARY(float, sCdfNorm_11, sCdfNormEP)
PEX_UNARY(float, sCdfNorm_21, sCdfNormLA)
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
