// sqrt(x): the processor's root in single precision, correctly rounded in every tier.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sqrt/ssqrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_hardware-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsSqrt";

PEX_UNARY(float, sSqrt_11, SqrtKernel<float>)
PEX_UNARY(float, sSqrt_21, SqrtKernel<float>)
PEX_UNARY(float, sSqrt_HA, SqrtKernel<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sSqrt_11)
PEX_EXPORT_UNARY(float, sSqrt_21)
PEX_EXPORT_UNARY(float, sSqrt_HA)
}  // namespace pex
#endif
