// (cos x, sin x) in single precision, one computation for all tiers: in double precision by a
// reduction by pi/2 in two parts and polynomials of degree 7 and 8, rounded once.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/ccis/ccis.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/ccis/cis-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

inline constexpr double kSine[] = {-0.16666654612881793, 0.008332160761521766,
                                   -0.00019515283190447318};
inline constexpr double kCosine[] = {-0.5, 0.04166664568297557, -0.0013887316254360454,
                                     2.443315705834904e-05};

// (cos x, sin x) for |x| from 2^-125 to 10000; of N pi/2 then all bits but the last few of the
// second part are exact.
template <class D, class V, size_t K>
HWY_INLINE void CISInDouble(D d, const V (&x)[K], Complex<V> (&r)[K]) {
  const hn::Rebind<double, D> wide;
  using W = VecOf<decltype(wide)>;
  V turns[K];
  W y[K], y2[K], sine[K], cosine[K];
  const V rounder = hn::Set(d, 12582912.0f);
  for (size_t k = 0; k < K; ++k) {
    turns[k] = hn::Add(hn::Mul(x[k], hn::Set(d, 0.63661975f)), rounder);
    const W n = hn::PromoteTo(wide, hn::Sub(turns[k], rounder));
    const W high =
        SubExactProduct(n, hn::Set(wide, 0x1.921FB5444p+0), hn::PromoteTo(wide, x[k]));  // exact
    y[k] = hn::Sub(high, hn::Mul(n, hn::Set(wide, 0x1.68C234C4C6629p-39)));
  }
  for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(y[k], y[k]);
  Horner(wide, y2, kSine, sine);
  Horner(wide, y2, kCosine, cosine);
  for (size_t k = 0; k < K; ++k) {
    const V sin_y = hn::DemoteTo(d, hn::Add(y[k], hn::Mul(hn::Mul(y[k], y2[k]), sine[k])));
    const V cos_y = hn::DemoteTo(d, hn::Add(hn::Set(wide, 1.0), hn::Mul(y2[k], cosine[k])));
    const auto quadrant = Bits(d, turns[k]), next = hn::Add(quadrant, SetBits(d, 1));
#if HWY_TARGET == HWY_AVX3
    const auto odd = hn::RebindMask(d, hn::TestBit(quadrant, SetBits(d, 1)));
#else
    const auto odd = hn::MaskFromVec(FromBits(d, hn::ShiftLeft<31>(quadrant)));
#endif
    const auto flipped = [d](V v, BitsOf<D> turn) HWY_ATTR {
      return hn::Xor(v, hn::And(FromBits(d, hn::ShiftLeft<30>(turn)), hn::SignBit(d)));
    };
    r[k] = {flipped(hn::IfThenElse(odd, sin_y, cos_y), next),
            flipped(hn::IfThenElse(odd, cos_y, sin_y), quadrant)};
  }
}

// The lanes that the kernel below leaves: tiny ones, zeros, and up to all finite numbers.
struct cCISWide : WideCIS<float> {
  template <class D, class V>
  static HWY_INLINE void Main(D d, V x, Complex<V>& r) {
    using Range = RareAbove<float, 0x461C4000>;
    const auto large = LanesAbove(d, Range::Key(d, x), Range::kLimit);
    const auto tiny = MagnitudeBelow(d, x, 0x1p-60f);
    const V harmless = hn::Set(d, kHarmless);
    const V in[1] = {hn::IfThenElse(hn::Or(large, tiny), harmless, x)};
    Complex<V> common[1];
    CISInDouble(d, in, common);
    r = {hn::IfThenElse(tiny, hn::Set(d, 1.0f), common[0].re),
         hn::IfThenElse(tiny, x, common[0].im)};
    if (hn::AllFalse(d, large)) return;
    Complex<V> wide;
    WideCIS<float>::Main(d, hn::IfThenElse(large, x, harmless), wide);
    r = {hn::IfThenElse(large, wide.re, r.re), hn::IfThenElse(large, wide.im, r.im)};
  }
};

// Common lanes have the 128 exponents from 2^-115 below 2^13: less the first of them, they have
// only the lower 7 bits.
struct cCISKernel : ComplexKernel<float, double> {
  static constexpr bool kRealArgument = true;
  static constexpr int kUnroll = 8;
  using Wide = cCISWide;
  template <class D, class V, size_t K>
  static HWY_INLINE BitsOf<D> Outside(D d, const V (&x)[K]) {
    const auto first = SetBits(d, (127 - 115) << 23);
    auto joined = hn::Sub(Bits(d, x[0]), first);
    for (size_t k = 1; k < K; ++k) joined = hn::Or(joined, hn::Sub(Bits(d, x[k]), first));
    return hn::And(joined, SetBits(d, 0x40000000));
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    const V in[1] = {x};
    return hn::RebindMask(d, hn::Gt(Outside(d, in), SetBits(d, 0)));
  }
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const V (&x)[K]) {
    return !hn::AllFalse(hn::RebindToSigned<D>(), hn::Gt(Outside(d, x), SetBits(d, 0)));
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], Complex<V> (&r)[K]) {
    CISInDouble(d, x, r);
  }
};

int cCIS(int32_t n, const float* x, PexComplex8* r) { return MapComplex<cCISKernel>(n, x, r); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cCIS);
PEX_EXPORT_COMPLEX_UNARY(float, PexComplex8, ControlGuard, cCIS, cCIS_11)
PEX_EXPORT_COMPLEX_UNARY(float, PexComplex8, ControlGuard, cCIS, cCIS_21)
PEX_EXPORT_COMPLEX_UNARY(float, PexComplex8, ControlGuard, cCIS, cCIS_HA)
}  // namespace pex
#endif
