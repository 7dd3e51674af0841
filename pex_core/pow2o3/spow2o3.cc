// x^(2/3), the square of the cube root, in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/pow2o3/spow2o3.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/cbrt_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsPow2o3";

PEX_UNARY(float, sPow2o3_11, sRootKernelEP<Pow2o3Form>)
PEX_UNARY(float, sPow2o3_21, sRootKernelLA<Pow2o3Form>)
PEX_UNARY(float, sPow2o3_HA, sRootKernelHA<Pow2o3Form>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sPow2o3_11)
PEX_EXPORT_UNARY(float, sPow2o3_21)
PEX_EXPORT_UNARY(float, sPow2o3_HA)
}  // namespace pex
#endif
