// 1/x: the processor's quotient in double precision, correctly rounded in every tier.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/inv/dinv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_hardware-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdInv";

PEX_UNARY(double, dInv_26, InvKernel<double>)
PEX_UNARY(double, dInv_50, InvKernel<double>)
PEX_UNARY(double, dInv_HA, InvKernel<double>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dInv_26)
PEX_EXPORT_UNARY(double, dInv_50)
PEX_EXPORT_UNARY(double, dInv_HA)
}  // namespace pex
#endif
