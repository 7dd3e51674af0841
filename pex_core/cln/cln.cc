// The natural logarithm of complex numbers in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cln/cln.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

int cLn(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<ElementaryKernel<ComplexLn, float>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cLn);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cLn, cLn_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cLn, cLn_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cLn, cLn_HA)
}  // namespace pex
#endif
