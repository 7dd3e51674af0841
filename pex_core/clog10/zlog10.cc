// The decimal logarithm of complex numbers in double precision: one kernel for all accuracies.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/clog10/zlog10.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_log-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <bool kWide>
struct dComplexLog10 : ComplexLogKernel<ComplexLog10, kWide> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 3;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    Pair<V> size[K], angle[K];
    ComplexLogPairs<kWide>(d, z, size, angle);
    // 1/ln 10 and half of it
    const Pair<V> whole = {hn::Set(d, 0x1.bcb7b1526e50ep-2), hn::Set(d, 0x1.95355baaafad3p-57)};
    const Pair<V> half = {hn::Set(d, 0x1.bcb7b1526e50ep-3), hn::Set(d, 0x1.95355baaafad3p-58)};
    for (size_t k = 0; k < K; ++k) {
      r[k] = {Value(d, Times(d, size[k], half)),
              hn::CopySignToAbs(Value(d, Times(d, angle[k], whole)), z[k].im)};
    }
  }
};

struct dLog10 : dComplexLog10<false> {
  using Wide = dComplexLog10<true>;
};

int zLog10(int32_t n, const PexComplex16* a, PexComplex16* r) {
  return MapComplex<dLog10>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zLog10);
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zLog10, zLog10_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zLog10, zLog10_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zLog10, zLog10_HA)
}  // namespace pex
#endif
