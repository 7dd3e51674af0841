// Inverse tangent of complex numbers, in single and double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/catan/catan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_atanh-inl.h"
#include "pex_core/_heap/complex/complex_atanh_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

int cAtan(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<ArctangentInDouble<ComplexAtan, true>>(n, a, r);
}
int zAtan(int32_t n, const PexComplex16* a, PexComplex16* r) {
  return MapComplex<dArctangent<ComplexAtan, true>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_COMPLEX_ELEMENTARY(Atan)
}  // namespace pex
#endif
