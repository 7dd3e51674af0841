// |a| in single precision, one computation for all tiers: at most 0.501 ulp.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cabs/cabs.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan2_domain-inl.h"
#include "pex_core/cabs/cabs-inl.h"
#include "pex_core/cabs/cabs_scalar.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// Common lanes have parts from 2^-50 below 2^60, so that the squares and their errors are exact, or
// one of them zero.
struct cAbsKernel : ComplexKernel<float> {
  static constexpr bool kRealResult = true;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 3 : 2;
  static constexpr int32_t kLow = 0x26800000, kHigh = 0x5D7FFFFF;
  using Outside = Atan2Outside<float, kLow, kHigh>;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&a)[K]) {
    const Magnitudes<V> first = MagnitudesOf(d, a[0]);
    auto largest = Bits(d, first.larger), least = Bits(d, first.smaller);
    for (size_t k = 1; k < K; ++k) {
      const Magnitudes<V> parts = MagnitudesOf(d, a[k]);
      largest = hn::Max(largest, Bits(d, parts.larger));
      least = hn::Min(least, Bits(d, parts.smaller));
    }
    const auto outside =
        hn::Or(hn::Gt(largest, SetBits(d, kHigh)), hn::Lt(least, SetBits(d, kLow)));
    return !hn::AllFalse(hn::RebindToSigned<D>(), outside);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a) {
    return Outside::IsRare(d, a.im, a.re);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE BegunModuli<V, K> Begin(D d, const Complex<V> (&a)[K]) {
    return BeginModuli(d, a);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void End(D d, const BegunModuli<V, K>& begun, V (&r)[K]) {
    EndModuli(d, begun, r);
  }
  static float Rare(Complex<float> a) { return cAbsScalar(a); }
};

int cAbs(int32_t n, const PexComplex8* a, float* r) { return MapComplex<cAbsKernel>(n, a, r); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cAbs);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, float, ControlGuard, cAbs, cAbs_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, float, ControlGuard, cAbs, cAbs_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, float, ControlGuard, cAbs, cAbs_HA)
}  // namespace pex
#endif
