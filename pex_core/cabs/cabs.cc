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

// Lanes have parts from 2^-50 below 2^60, so that the squares and their errors are exact, or one of
// them zero.
struct cAbsWide : ModulusKernel<float, true> {
  using Outside = Atan2Outside<float, 0x26800000, 0x5D7FFFFF>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a) {
    return Outside::IsRare(d, a.im, a.re);
  }
  static float Rare(Complex<float> a) { return cAbsScalar(a); }
};

// Common lanes have parts from 2^-40 below 2^42: the square of one over the other does not
// underflow.
struct cAbsKernel : ModulusKernel<float> {
  static constexpr int kUnroll = 2;
  using Wide = cAbsWide;
#if HWY_TARGET == HWY_AVX3
  // By the bits of squares, which the computation needs anyway: of the sum, below 2^84 and no NaN
  // of either sign, and of the smaller part, from 2^-80 on. Comparisons under the mask of the ones
  // before keep off the unit of roots, where minima and maxima of integers would go.
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&a)[K]) {
    const hn::RebindToUnsigned<D> du;
    const auto least = hn::Set(du, 0x17800000), most = hn::Set(du, 0x697FFFFF);
    __mmask16 common = 0xFFFF;
    for (size_t k = 0; k < K; ++k) {
      const Squares<V> squares = SquaresOf(d, MagnitudesOf(d, a[k]));
      const auto sum = hn::BitCast(du, squares.sum), smaller = hn::BitCast(du, squares.smaller);
      common = _mm512_mask_cmple_epu32_mask(common, sum.raw, most.raw);
      common = _mm512_mask_cmpge_epu32_mask(common, smaller.raw, least.raw);
    }
    return common != 0xFFFF;
  }
#else
  static constexpr int32_t kLow = 0x2B800000, kHigh = 0x547FFFFF;
  // By the bits of the largest and of the least part.
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&a)[K]) {
    const hn::RebindToSigned<D> di;
    const Magnitudes<V> first = MagnitudesOf(d, a[0]);
    auto largest = Bits(d, first.larger), least = Bits(d, first.smaller);
    for (size_t k = 1; k < K; ++k) {
      const Magnitudes<V> parts = MagnitudesOf(d, a[k]);
      largest = hn::Max(largest, Bits(d, parts.larger));
      least = hn::Min(least, Bits(d, parts.smaller));
    }
    const auto outside =
        hn::Or(hn::Gt(largest, SetBits(d, kHigh)), hn::Lt(least, SetBits(d, kLow)));
    return !hn::AllFalse(di, outside);
  }
#endif
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a) {
    return cAbsWide::IsRare(d, a);
  }
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
