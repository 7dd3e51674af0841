// (cos x, sin x) in single precision, one computation for all tiers: in double precision by a
// reduction by pi/2 in two parts and polynomials of degree 7 and 8, rounded once.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/ccis/ccis.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_single-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/ccis/cis-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

inline constexpr double kSine[] = {-0.16666654612881793, 0.008332160761521766,
                                   -0.00019515283190447318};
inline constexpr double kCosine[] = {-0.5, 0.04166664568297557, -0.0013887316254360454,
                                     2.443315705834904e-05};

// Horner's scheme in steps that are fused where there is such an operation. The results of CIS are
// rounded to floats, and of none of the floats that are its argument do they show how often a step
// was rounded: a test goes through all of them.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void HornerForFloat(D d, const V (&x)[K], const double (&c)[N], V (&p)[K]) {
  for (size_t k = 0; k < K; ++k) p[k] = hn::Set(d, c[N - 1]);
  for (size_t i = N - 1; i-- > 0;) {
    for (size_t k = 0; k < K; ++k) p[k] = HiddenMulAdd(p[k], x[k], hn::Set(d, c[i]));
  }
}

// (cos x, sin x) of one vector in three parts, for |x| from 2^-125 to 10000; of N pi/2 then all
// bits but the last few of the second part are exact.
template <class D>
struct CISInDouble {
  using V = VecOf<D>;
  using Wide = hn::Rebind<double, hn::Half<D>>;
  using W = VecOf<Wide>;
  V turns;
  StoredHalves<D> n, arg;
  W y[2], y2[2], sine[2], cosine[2];

  HWY_INLINE void Count(V x) {
    const D d;
    const V rounder = hn::Set(d, 12582912.0f);
    turns = hn::Add(hn::Mul(x, hn::Set(d, 0.63661975f)), rounder);
    n.Store(hn::Sub(turns, rounder));
    arg.Store(x);
  }
  HWY_INLINE void Reduce(V) {
    const Wide wide;
    W ns[2], xs[2];
    n.Widen(ns);
    arg.Widen(xs);
    for (size_t k = 0; k < 2; ++k) {
      const W high = SubExactProduct(ns[k], hn::Set(wide, 0x1.921FB5444p+0), xs[k]);  // exact
      y[k] = HiddenMulAdd(ns[k], hn::Set(wide, -0x1.68C234C4C6629p-39), high);
      y2[k] = hn::Mul(y[k], y[k]);
    }
  }
  HWY_INLINE void Evaluate() {
    HornerForFloat(Wide(), y2, kSine, sine);
    HornerForFloat(Wide(), y2, kCosine, cosine);
    for (size_t k = 0; k < 2; ++k) {
      sine[k] = HiddenMulAdd(hn::Mul(y[k], y2[k]), sine[k], y[k]);
      cosine[k] = HiddenMulAdd(y2[k], cosine[k], hn::Set(Wide(), 1.0));
    }
  }
  HWY_INLINE Complex<V> Result(V) const {
    const D d;
    const V sin_y = NarrowHalves(d, sine[0], sine[1]);
    const V cos_y = NarrowHalves(d, cosine[0], cosine[1]);
    const auto quadrant = Bits(d, turns), turn = hn::ShiftLeft<30>(quadrant);
    const auto next = hn::Add(turn, SetBits(d, 1 << 30));
    const auto flipped = [d](V v, BitsOf<D> sign) HWY_ATTR {
      return hn::Xor(v, hn::And(FromBits(d, sign), hn::SignBit(d)));
    };
#if HWY_TARGET == HWY_AVX2  // exchanged, for a selection costs three operations
    const auto odd = hn::BroadcastSignBit(hn::Add(turn, turn));
    const V differing = hn::And(hn::Xor(sin_y, cos_y), FromBits(d, odd));
    return {flipped(hn::Xor(cos_y, differing), next), flipped(hn::Xor(sin_y, differing), turn)};
#else
#if HWY_TARGET == HWY_AVX3
    const auto odd = hn::RebindMask(d, hn::TestBit(quadrant, SetBits(d, 1)));
#else
    const auto odd = hn::MaskFromVec(FromBits(d, hn::Add(turn, turn)));
#endif
    return {flipped(hn::IfThenElse(odd, sin_y, cos_y), next),
            flipped(hn::IfThenElse(odd, cos_y, sin_y), turn)};
#endif
  }
};

template <class D, class V, size_t K>
HWY_INLINE void CISGroup(D, const V (&x)[K], Complex<V> (&r)[K]) {
  CISInDouble<D> parts[K];
  for (size_t k = 0; k < K; ++k) parts[k].Count(x[k]);
  InTurn(parts, r, x);
}

// The lanes that the kernel below leaves: tiny ones, zeros, and up to all finite numbers.
struct cCISWide : ComplexKernel<float> {
  static constexpr bool kRealArgument = true;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return WideCIS<float>::IsRare(d, x);
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, V x, Complex<V>& r) {
    using Range = RareAbove<float, 0x461C4000>;
    const auto large = LanesAbove(d, Range::Key(d, x), Range::kLimit);
    const auto tiny = MagnitudeBelow(d, x, 0x1p-60f);
    const V harmless = hn::Set(d, kHarmless);
    const V in[1] = {Selected(hn::IfThenElse(hn::Or(large, tiny), harmless, x))};
    Complex<V> common[1];
    CISGroup(d, in, common);
    r = {hn::IfThenElse(tiny, hn::Set(d, 1.0f), common[0].re),
         hn::IfThenElse(tiny, x, common[0].im)};
    if (hn::AllFalse(d, large)) return;
    const hn::Half<D> half;
    using H = VecOf<decltype(half)>;
    const V reduced = Selected(hn::IfThenElse(large, x, harmless));
    Complex<H> low, high;
    WideCIS<float>::Main(half, hn::LowerHalf(half, reduced), low);
    WideCIS<float>::Main(half, hn::UpperHalf(half, reduced), high);
    r = {hn::IfThenElse(large, hn::Combine(d, high.re, low.re), r.re),
         hn::IfThenElse(large, hn::Combine(d, high.im, low.im), r.im)};
  }
  static Complex<float> Rare(float x) { return WideCIS<float>::Rare(x); }
};

// Common lanes have the 128 exponents from 2^-115 below 2^13: less the first of them, they have
// only the lower 7 bits.
struct cCISKernel : ComplexKernel<float> {
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
    CISGroup(d, x, r);
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
