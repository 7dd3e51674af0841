// e^z of complex numbers in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cexp/cexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

int cExp(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<ElementaryKernel<ComplexExp, float>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cExp);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp, cExp_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp, cExp_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp, cExp_HA)
}  // namespace pex
#endif
