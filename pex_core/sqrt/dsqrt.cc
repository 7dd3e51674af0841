// sqrt(x): the processor's root in double precision, correctly rounded in every tier.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sqrt/dsqrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_hardware-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdSqrt";

PEX_UNARY(double, dSqrt_26, SqrtKernel<double>)
PEX_UNARY(double, dSqrt_50, SqrtKernel<double>)
PEX_UNARY(double, dSqrt_HA, SqrtKernel<double>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dSqrt_26)
PEX_EXPORT_UNARY(double, dSqrt_50)
PEX_EXPORT_UNARY(double, dSqrt_HA)
}  // namespace pex
#endif
