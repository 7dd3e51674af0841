// x^y in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/pow/dpow.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/pow_kernel-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdPow";

PEX_BINARY(double, dPow_26, dPowKernelEP)
PEX_BINARY(double, dPow_50, dPowKernelLA)
PEX_BINARY(double, dPow_HA, dPowKernelHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(double, dPow_26)
PEX_EXPORT_BINARY(double, dPow_50)
PEX_EXPORT_BINARY(double, dPow_HA)
}  // namespace pex
#endif
