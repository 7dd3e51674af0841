// The inverse of the complementary error function in single precision: in float, HA in double.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erfcinv/serfcinv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erfinv_kernels-inl.h"
#include "pex_core/_heap/real/erfinv_single-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/erfcinv/erfcinv_special.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsErfcInv";

using sErfcInvEP = sErfInvKernel<InverseOfErfc, false, sErfcInv_SC>;
using sErfcInvLA = sErfInvKernel<InverseOfErfc, true, sErfcInv_SC>;
using sErfcInvHA = sErfInvHAKernel<InverseOfErfc, sErfcInv_SC>;

PEX_UNARY(float, sErfcInv_11, sErfcInvEP)
PEX_UNARY(float, sErfcInv_21, sErfcInvLA)
PEX_UNARY(float, sErfcInv_HA, sErfcInvHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sErfcInv_11)
PEX_EXPORT_UNARY(float, sErfcInv_21)
PEX_EXPORT_UNARY(float, sErfcInv_HA)
}  // namespace pex
#endif
