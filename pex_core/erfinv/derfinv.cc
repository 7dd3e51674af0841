// The inverse of the error function in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erfinv/derfinv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erfinv_kernels-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/erfinv/erfinv_special.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdErfInv";

using dErfInvEP = dErfInvKernel<InverseOfErf, ErfInvTier::kShort, dErfInv_SC>;
using dErfInvLA = dErfInvKernel<InverseOfErf, ErfInvTier::kLA, dErfInv_SC>;
using dErfInvHA = dErfInvKernel<InverseOfErf, ErfInvTier::kHA, dErfInv_SC>;

PEX_UNARY(double, dErfInv_26, dErfInvEP)
PEX_UNARY(double, dErfInv_50, dErfInvLA)
PEX_UNARY(double, dErfInv_HA, dErfInvHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dErfInv_26)
PEX_EXPORT_UNARY(double, dErfInv_50)
PEX_EXPORT_UNARY(double, dErfInv_HA)
}  // namespace pex
#endif
