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

// Common lanes have |x| <= 10000; of N pi/2 then all bits but the last few of the second part are
// exact.
struct cCISCommon : ComplexKernel<float, double> {
  static constexpr bool kRealArgument = true;
  static constexpr int kUnroll = 8;
  static constexpr float kTiny = 0x1p-60f;
  using Range = RareAbove<float, 0x461C4000>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return KeyAbove(d, Range::Key(d, x), Range::kLimit);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], Complex<V> (&r)[K]) {
    const hn::Rebind<double, D> wide;
    using W = VecOf<decltype(wide)>;
    V turns[K];
    W y[K], y2[K], sine[K], cosine[K];
    const V rounder = hn::Set(d, 12582912.0f);
    for (size_t k = 0; k < K; ++k) {
      // The product of a tiny number would underflow.
      const V quiet = hn::IfThenZeroElse(MagnitudeBelow(d, x[k], kTiny), x[k]);
      turns[k] = hn::Add(hn::Mul(quiet, hn::Set(d, 0.63661975f)), rounder);
      const W n = hn::PromoteTo(wide, hn::Sub(turns[k], rounder));
      const W high =
          hn::NegMulAdd(n, hn::Set(wide, 0x1.921FB5444p+0), hn::PromoteTo(wide, x[k]));  // exact
      y[k] = hn::Sub(high, hn::Mul(n, hn::Set(wide, 0x1.68C234C4C6629p-39)));
    }
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(y[k], y[k]);
    Horner(wide, y2, kSine, sine);
    Horner(wide, y2, kCosine, cosine);
    for (size_t k = 0; k < K; ++k) {
      const W s = hn::Add(y[k], hn::Mul(hn::Mul(y[k], y2[k]), sine[k]));
      const W c = hn::Add(hn::Set(wide, 1.0), hn::Mul(y2[k], cosine[k]));
      // With it -0 keeps its sign.
      const V sin_y = hn::IfThenElse(MagnitudeBelow(d, x[k], kTiny), x[k], hn::DemoteTo(d, s));
      const V cos_y = hn::DemoteTo(d, c);
      const auto quadrant = Bits(d, turns[k]), next = hn::Add(quadrant, SetBits(d, 1));
      const auto odd = hn::MaskFromVec(FromBits(d, hn::ShiftLeft<31>(quadrant)));
      const auto flipped = [d](V v, BitsOf<D> turn) HWY_ATTR {
        return hn::Xor(v, hn::And(FromBits(d, hn::ShiftLeft<30>(turn)), hn::SignBit(d)));
      };
      r[k] = {flipped(hn::IfThenElse(odd, sin_y, cos_y), next),
              flipped(hn::IfThenElse(odd, cos_y, sin_y), quadrant)};
    }
  }
};

// The other lanes come from the kernel for all finite numbers.
struct cCISWide : WideCIS<float> {
  template <class D, class V>
  static HWY_INLINE void Main(D d, V x, Complex<V>& r) {
    using Range = cCISCommon::Range;
    const auto large = LanesAbove(d, Range::Key(d, x), Range::kLimit);
    const V harmless = hn::Set(d, kHarmless);
    const V in[1] = {hn::IfThenElse(large, harmless, x)};
    Complex<V> common[1], wide;
    cCISCommon::MainGroup(d, in, common);
    WideCIS<float>::Main(d, hn::IfThenElse(large, x, harmless), wide);
    r = {hn::IfThenElse(large, wide.re, common[0].re),
         hn::IfThenElse(large, wide.im, common[0].im)};
  }
};

struct cCISKernel : cCISCommon {
  using Wide = cCISWide;
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
