// The cube root in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cbrt/scbrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/cbrt_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsCbrt";

PEX_UNARY(float, sCbrt_11, sRootKernelEP<CbrtForm>)
PEX_UNARY(float, sCbrt_21, sRootKernelLA<CbrtForm>)
PEX_UNARY(float, sCbrt_HA, sRootKernelHA<CbrtForm>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sCbrt_11)
PEX_EXPORT_UNARY(float, sCbrt_21)
PEX_EXPORT_UNARY(float, sCbrt_HA)
}  // namespace pex
#endif
