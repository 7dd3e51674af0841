// 1/x: the processor's quotient in single precision, correctly rounded in every tier.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/inv/sinv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_hardware-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsInv";

PEX_UNARY(float, sInv_11, InvKernel<float>)
PEX_UNARY(float, sInv_21, InvKernel<float>)
PEX_UNARY(float, sInv_HA, InvKernel<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sInv_11)
PEX_EXPORT_UNARY(float, sInv_21)
PEX_EXPORT_UNARY(float, sInv_HA)
}  // namespace pex
#endif
