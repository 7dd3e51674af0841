// The inverse of the error function in single precision: in float, HA in double.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erfinv/serfinv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erfinv_kernels-inl.h"
#include "pex_core/_heap/real/erfinv_single-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/erfinv/erfinv_special.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsErfInv";

using sErfInvEP = sErfInvKernel<InverseOfErf, false, sErfInv_SC>;
using sErfInvLA = sErfInvKernel<InverseOfErf, true, sErfInv_SC>;
using sErfInvHA = sErfInvHAKernel<InverseOfErf, sErfInv_SC>;

PEX_UNARY(float, sErfInv_11, sErfInvEP)
PEX_UNARY(float, sErfInv_21, sErfInvLA)
PEX_UNARY(float, sErfInv_HA, sErfInvHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sErfInv_11)
PEX_EXPORT_UNARY(float, sErfInv_21)
PEX_EXPORT_UNARY(float, sErfInv_HA)
}  // namespace pex
#endif
