// a - b in the caller's rounding and flush modes, part by part; of two NaNs the first.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/csub/csub.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/complex-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct ComplexSub : PlainKernel<T, 2> {
  static constexpr bool kMemoryBound = true;
  template <class D, class V>
  static HWY_INLINE V Main(D, V a, V b) {
    return HardwareSub(a, b);
  }
};

int cSub(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r) {
  return MapParts<ComplexSub<float>>(n, a, b, r);
}
int zSub(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r) {
  return MapParts<ComplexSub<double>>(n, a, b, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cSub);
HWY_EXPORT(zSub);
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, NoGuard, cSub, cSub)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, NoGuard, zSub, zSub)
}  // namespace pex
#endif
