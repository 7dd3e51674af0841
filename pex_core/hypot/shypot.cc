// sqrt(a^2 + b^2) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/hypot/shypot.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/hypot/hypot-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

using EP = HypotKernel<float, HypotPlain<float>>;
using LA = HypotKernel<float, HypotPlain<float>>;
using HA = HypotKernel<float, HypotHA<float>>;

PEX_PLAIN_BINARY(float, sHypot_11, EP)
PEX_PLAIN_BINARY(float, sHypot_21, LA)
PEX_PLAIN_BINARY(float, sHypot_HA, HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(float, sHypot_11)
PEX_EXPORT_BINARY(float, sHypot_21)
PEX_EXPORT_BINARY(float, sHypot_HA)
}  // namespace pex
#endif
