// a + b in the caller's rounding and flush modes, part by part; of two NaNs the first.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cadd/cadd.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/complex-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct ComplexAdd : PlainKernel<T, 2> {
  static constexpr bool kMemoryBound = true;
  template <class D, class V>
  static HWY_INLINE V Main(D, V a, V b) {
    return HardwareAdd(a, b);
  }
};

int cAdd(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r) {
  return MapParts<ComplexAdd<float>>(n, a, b, r);
}
int zAdd(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r) {
  return MapParts<ComplexAdd<double>>(n, a, b, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cAdd);
HWY_EXPORT(zAdd);
PEX_EXPORT_COMPLEX_BINARY(PexComplex8, NoGuard, cAdd, cAdd)
PEX_EXPORT_COMPLEX_BINARY(PexComplex16, NoGuard, zAdd, zAdd)
}  // namespace pex
#endif
