// a/b: the processor's quotient in double precision, correctly rounded in every tier.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/div/ddiv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_hardware-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdDiv";

PEX_BINARY(double, dDiv_26, DivKernel<double>)
PEX_BINARY(double, dDiv_50, DivKernel<double>)
PEX_BINARY(double, dDiv_HA, DivKernel<double>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(double, dDiv_26)
PEX_EXPORT_BINARY(double, dDiv_50)
PEX_EXPORT_BINARY(double, dDiv_HA)
}  // namespace pex
#endif
