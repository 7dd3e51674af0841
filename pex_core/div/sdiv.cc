// a/b: the processor's quotient in single precision, correctly rounded in every tier.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/div/sdiv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_hardware-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsDiv";

PEX_BINARY(float, sDiv_11, DivKernel<float>)
PEX_BINARY(float, sDiv_21, DivKernel<float>)
PEX_BINARY(float, sDiv_HA, DivKernel<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(float, sDiv_11)
PEX_EXPORT_BINARY(float, sDiv_21)
PEX_EXPORT_BINARY(float, sDiv_HA)
}  // namespace pex
#endif
