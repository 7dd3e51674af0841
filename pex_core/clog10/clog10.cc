// The decimal logarithm of complex numbers in single precision: one kernel for all accuracies.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/clog10/clog10.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_log_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

int cLog10(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<LogInDouble<ComplexLog10>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cLog10);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cLog10, cLog10_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cLog10, cLog10_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cLog10, cLog10_HA)
}  // namespace pex
#endif
