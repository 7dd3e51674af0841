// sqrt(a^2 + b^2) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/hypot/dhypot.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/hypot/hypot-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

using EP = HypotKernel<double, HypotEP>;
using LA = HypotKernel<double, HypotPlain<double>>;
using HA = HypotKernel<double, HypotHA<double>>;

PEX_PLAIN_BINARY(double, dHypot_26, EP)
PEX_PLAIN_BINARY(double, dHypot_50, LA)
PEX_PLAIN_BINARY(double, dHypot_HA, HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(double, dHypot_26)
PEX_EXPORT_BINARY(double, dHypot_50)
PEX_EXPORT_BINARY(double, dHypot_HA)
}  // namespace pex
#endif
