// |a| in single precision, one computation for all tiers: at most 0.501 ulp.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cabs/cabs.cc"
#include <type_traits>

#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan2_domain-inl.h"
#include "pex_core/cabs/cabs-inl.h"
#include "pex_core/cabs/cabs_scalar.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// Common lanes have parts from 2^-50 below 2^60, so that the squares and their errors are exact, or
// one of them zero.
struct cAbsKernel : ModulusKernel<float> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 3 : 2;
  static constexpr int32_t kLow = 0x26800000, kHigh = 0x5D7FFFFF;
  using Outside = Atan2Outside<float, kLow, kHigh>;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&a)[K]) {
    auto [largest, least] = RangeOf(d, a[0]);
    for (size_t k = 1; k < K; ++k) {
      const Range<D> range = RangeOf(d, a[k]);
      largest = hn::Max(largest, range.largest);
      least = hn::Min(least, range.least);
    }
    const Pattern<D> dp;
    const auto outside =
        hn::Or(hn::Gt(largest, hn::Set(dp, kMost)), hn::Lt(least, hn::Set(dp, kLeast)));
    return !hn::AllFalse(dp, outside);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a) {
    return Outside::IsRare(d, a.im, a.re);
  }
  static float Rare(Complex<float> a) { return cAbsScalar(a); }

 private:
  // Bits between whose limits all parts are common. On AVX-512 those of squares, which the
  // computation needs anyway: of the sum, below 2^120 and no NaN of either sign, and of the smaller
  // part, from 2^-100 on.
  static constexpr bool kOfSquares = HWY_TARGET == HWY_AVX3;
  template <class D>
  using Pattern = std::conditional_t<kOfSquares, hn::RebindToUnsigned<D>, hn::RebindToSigned<D>>;
  static constexpr int32_t kLeast = kOfSquares ? 0x0D800000 : kLow;
  static constexpr int32_t kMost = kOfSquares ? 0x7B7FFFFF : kHigh;
  template <class D>
  struct Range {
    hn::Vec<Pattern<D>> largest, least;
  };
  template <class D, class V>
  static HWY_INLINE Range<D> RangeOf(D d, Complex<V> a) {
    const Pattern<D> dp;
    const Magnitudes<V> parts = MagnitudesOf(d, a);
    if constexpr (kOfSquares) {
      const Squares<V> squares = SquaresOf(d, parts);
      return {hn::BitCast(dp, squares.sum), hn::BitCast(dp, squares.smaller)};
    } else {
      return {hn::BitCast(dp, parts.larger), hn::BitCast(dp, parts.smaller)};
    }
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
