// x^y in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/pow/spow.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/pow_single_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsPow";

PEX_BINARY(float, sPow_11, sPowEP)
PEX_BINARY(float, sPow_21, sPowLA)
PEX_BINARY(float, sPow_HA, sPowHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(float, sPow_11)
PEX_EXPORT_BINARY(float, sPow_21)
PEX_EXPORT_BINARY(float, sPow_HA)
}  // namespace pex
#endif
