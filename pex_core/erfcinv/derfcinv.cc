// The inverse of the complementary error function in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erfcinv/derfcinv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erfinv_kernels-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/erfcinv/erfcinv_special.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdErfcInv";

using dErfcInvEP = dErfInvKernel<InverseOfErfc, ErfInvTier::kShort, dErfcInv_SC>;
using dErfcInvLA = dErfInvKernel<InverseOfErfc, ErfInvTier::kLA, dErfcInv_SC>;
using dErfcInvHA = dErfInvKernel<InverseOfErfc, ErfInvTier::kHA, dErfcInv_SC>;

PEX_UNARY(double, dErfcInv_26, dErfcInvEP)
PEX_UNARY(double, dErfcInv_50, dErfcInvLA)
PEX_UNARY(double, dErfcInv_HA, dErfcInvHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dErfcInv_26)
PEX_EXPORT_UNARY(double, dErfcInv_50)
PEX_EXPORT_UNARY(double, dErfcInv_HA)
}  // namespace pex
#endif
