// The cube root in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cbrt/dcbrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/cbrt_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdCbrt";

PEX_UNARY(double, dCbrt_26, dRootEP<CbrtForm>)
PEX_UNARY(double, dCbrt_50, dRootLA<CbrtForm>)
PEX_UNARY(double, dCbrt_HA, dRootHA<CbrtForm>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dCbrt_26)
PEX_EXPORT_UNARY(double, dCbrt_50)
PEX_EXPORT_UNARY(double, dCbrt_HA)
}  // namespace pex
#endif
