// Powers of complex numbers, by complex numbers and by one for all, in single and double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cpow/cpow.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_pow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

int cPow(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r) {
  return MapComplex<SinglePow>(n, a, b, r);
}
int zPow(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r) {
  return MapComplex<DoublePow>(n, a, b, r);
}
int cPowx(int32_t n, const PexComplex8* a, PexComplex8 b, PexComplex8* r) {
  return MapComplex<SinglePow>(n, a, b, r);
}
int zPowx(int32_t n, const PexComplex16* a, PexComplex16 b, PexComplex16* r) {
  return MapComplex<DoublePow>(n, a, b, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cPow);
HWY_EXPORT(zPow);
HWY_EXPORT(cPowx);
HWY_EXPORT(zPowx);
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuard, cPow, cPow_11)
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuard, cPow, cPow_21)
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, ControlGuard, cPow, cPow_HA)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuard, zPow, zPow_26)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuard, zPow, zPow_50)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, ControlGuard, zPow, zPow_HA)
PEX_EXPORT_COMPLEX_SCALAR(PexComplex8, ControlGuard, cPowx, cPowx_11)
PEX_EXPORT_COMPLEX_SCALAR(PexComplex8, ControlGuard, cPowx, cPowx_21)
PEX_EXPORT_COMPLEX_SCALAR(PexComplex8, ControlGuard, cPowx, cPowx_HA)
PEX_EXPORT_COMPLEX_SCALAR(PexComplex16, ControlGuard, zPowx, zPowx_26)
PEX_EXPORT_COMPLEX_SCALAR(PexComplex16, ControlGuard, zPowx, zPowx_50)
PEX_EXPORT_COMPLEX_SCALAR(PexComplex16, ControlGuard, zPowx, zPowx_HA)
}  // namespace pex
#endif
