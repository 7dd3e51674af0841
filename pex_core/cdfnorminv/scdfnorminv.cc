// The quantile of the standard normal distribution in single precision: in float, HA in double.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cdfnorminv/scdfnorminv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erfinv_kernels-inl.h"
#include "pex_core/_heap/real/erfinv_single-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/cdfnorminv/cdfnorminv_special.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsCdfNormInv";

using sCdfNormInvEP = sErfInvKernel<InverseOfCdfNorm, false, sCdfNormInv_SC>;
using sCdfNormInvLA = sErfInvKernel<InverseOfCdfNorm, true, sCdfNormInv_SC>;
using sCdfNormInvHA = sErfInvHAKernel<InverseOfCdfNorm, sCdfNormInv_SC>;

PEX_UNARY(float, sCdfNormInv_11, sCdfNormInvEP)
PEX_UNARY(float, sCdfNormInv_21, sCdfNormInvLA)
PEX_UNARY(float, sCdfNormInv_HA, sCdfNormInvHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sCdfNormInv_11)
PEX_EXPORT_UNARY(float, sCdfNormInv_21)
PEX_EXPORT_UNARY(float, sCdfNormInv_HA)
}  // namespace pex
#endif
