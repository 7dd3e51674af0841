// (cos x, sin x) in single precision, one computation for all tiers: in double precision by a
// reduction by pi/2 in two parts and polynomials of degree 7 and 8, rounded once.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/ccis/ccis.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_quarter-inl.h"
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
  static constexpr int kUnroll = 4;
  using Range = RareAbove<float, 0x461C4000>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return KeyAbove(d, Range::Key(d, x), Range::kLimit);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], Complex<V> (&r)[K]) {
    const hn::Rebind<double, D> wide;
    using W = VecOf<decltype(wide)>;
    W n[K], y[K], y2[K], sine[K], cosine[K];
    const V rounder = hn::Set(d, 12582912.0f);
    for (size_t k = 0; k < K; ++k) {
      // The product of a tiny number would underflow.
      const V quiet = hn::IfThenZeroElse(MagnitudeBelow(d, x[k], 0x1p-60f), x[k]);
      const V turns = hn::Mul(quiet, hn::Set(d, 0.63661975f));
      n[k] = hn::PromoteTo(wide, hn::Sub(hn::Add(turns, rounder), rounder));
    }
    for (size_t k = 0; k < K; ++k) {
      const W high =
          hn::NegMulAdd(n[k], hn::Set(wide, 0x1.921FB5444p+0), hn::PromoteTo(wide, x[k]));  // exact
      y[k] = hn::Sub(high, hn::Mul(n[k], hn::Set(wide, 0x1.68C234C4C6629p-39)));
    }
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(y[k], y[k]);
    Horner(wide, y2, kSine, sine);
    Horner(wide, y2, kCosine, cosine);
    const W sign_bit = hn::SignBit(wide);
    for (size_t k = 0; k < K; ++k) {
      const W s = hn::Add(y[k], hn::Mul(hn::Mul(y[k], y2[k]), sine[k]));
      const W signed_s = hn::Or(s, hn::And(y[k], sign_bit));  // of y = -0
      const W c = hn::Add(hn::Set(wide, 1.0), hn::Mul(y2[k], cosine[k]));
      const auto quadrant = Bits(wide, hn::Add(n[k], hn::Set(wide, kShifter)));
      const auto odd = OddLanes(wide, quadrant);
      const auto next = hn::Add(quadrant, SetBits(wide, 1));
      const W sin = FlipSign<1>(wide, hn::IfThenElse(odd, c, signed_s), quadrant);
      const W cos = FlipSign<1>(wide, hn::IfThenElse(odd, signed_s, c), next);
      r[k] = Narrow(d, Complex<W>{cos, sin});
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
