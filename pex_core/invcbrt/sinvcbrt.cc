// The reciprocal cube root in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/invcbrt/sinvcbrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/cbrt_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsInvCbrt";

PEX_UNARY(float, sInvCbrt_11, sRootKernelEP<InvCbrtForm>)
PEX_UNARY(float, sInvCbrt_21, sRootKernelLA<InvCbrtForm>)
PEX_UNARY(float, sInvCbrt_HA, sRootKernelHA<InvCbrtForm>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sInvCbrt_11)
PEX_EXPORT_UNARY(float, sInvCbrt_21)
PEX_EXPORT_UNARY(float, sInvCbrt_HA)
}  // namespace pex
#endif
