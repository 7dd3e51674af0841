// The reciprocal cube root in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/invcbrt/dinvcbrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/cbrt_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdInvCbrt";

PEX_UNARY(double, dInvCbrt_26, dRootEP<InvCbrtForm>)
PEX_UNARY(double, dInvCbrt_50, dRootLA<InvCbrtForm>)
PEX_UNARY(double, dInvCbrt_HA, dRootHA<InvCbrtForm>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dInvCbrt_26)
PEX_EXPORT_UNARY(double, dInvCbrt_50)
PEX_EXPORT_UNARY(double, dInvCbrt_HA)
}  // namespace pex
#endif
