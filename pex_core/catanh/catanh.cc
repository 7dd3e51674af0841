// Inverse hyperbolic tangent of complex numbers, in single and double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/catanh/catanh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_atanh-inl.h"
#include "pex_core/_heap/complex/complex_atanh_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

int cAtanh(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<ArctangentInDouble<ComplexAtanh, false>>(n, a, r);
}
int zAtanh(int32_t n, const PexComplex16* a, PexComplex16* r) {
  return MapComplex<dArctangent<ComplexAtanh, false>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_COMPLEX_ELEMENTARY(Atanh)
}  // namespace pex
#endif
