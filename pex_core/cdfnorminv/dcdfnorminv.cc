// The quantile of the standard normal distribution in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cdfnorminv/dcdfnorminv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erfinv_kernels-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/cdfnorminv/cdfnorminv_special.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdCdfNormInv";

using dCdfNormInvEP = dErfInvKernel<InverseOfCdfNorm, ErfInvTier::kShort, dCdfNormInv_SC>;
using dCdfNormInvLA = dErfInvKernel<InverseOfCdfNorm, ErfInvTier::kLA, dCdfNormInv_SC>;
using dCdfNormInvHA = dErfInvKernel<InverseOfCdfNorm, ErfInvTier::kHA, dCdfNormInv_SC>;

PEX_UNARY(double, dCdfNormInv_26, dCdfNormInvEP)
PEX_UNARY(double, dCdfNormInv_50, dCdfNormInvLA)
PEX_UNARY(double, dCdfNormInv_HA, dCdfNormInvHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dCdfNormInv_26)
PEX_EXPORT_UNARY(double, dCdfNormInv_50)
PEX_EXPORT_UNARY(double, dCdfNormInv_HA)
}  // namespace pex
#endif
