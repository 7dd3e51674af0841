// e^z of complex numbers in single precision. LA and EP are one kernel in float arithmetic.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cexp/cexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_single-inl.h"
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_heap/real/trig_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// |re| <= kRe and |im| < kIm, of positive floats given by their bits.
template <int32_t kRe, int32_t kIm>
struct ExpRange {
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> z) {
    return KeyAbove(d, Key(d, z), kRe);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
    return LanesAbove(d, Key(d, z), kRe);
  }

 private:
  // The larger of the bits of |x| and those of |y| less what the limits differ by.
  template <class D, class V>
  static HWY_INLINE BitsOf<D> Key(D d, Complex<V> z) {
    const auto above = SetBits(d, static_cast<uint64_t>(kIm - 1 - kRe));
    return hn::Max(Bits(d, hn::Abs(z.re)), hn::Sub(Bits(d, hn::Abs(z.im)), above));
  }
};

// The number of quarter turns next to y, in the low bits of a float. The product of a tiny number
// would underflow.
inline constexpr float kTurnRounder = 0x1.8p23f;
template <class D, class V>
HWY_INLINE V Turns(D d, V y) {
  const V quiet = hn::Add(y, hn::Set(d, 0x1p-40f));
  return hn::Add(hn::Mul(quiet, hn::Set(d, 0x1.45f306p-1f)), hn::Set(d, kTurnRounder));
}

// (cos, sin) of k pi/2 + y, times what both are multiplied by, from those of y.
template <class D, class V>
HWY_INLINE Complex<V> TurnBack(D d, BitsOf<D> k, V sine, V cosine) {
  const auto odd = OddQuarter(d, k);
  const auto turn = hn::ShiftLeft<30>(k), next = hn::Add(turn, SetBits(d, 1 << 30));
  return {FlipSign(d, hn::IfThenElse(odd, sine, cosine), next),
          FlipSign(d, hn::IfThenElse(odd, cosine, sine), turn)};
}

// In double, |x| <= 512 and |y| < 4096: less than 0.505 ulp of each part. Quarter turns are counted
// in floats, N low enough for its product with the first part of pi/2 to be exact.
struct SingleExpHA : ComplexKernel<float>, ExpRange<BitsOfNumber(512.0f), BitsOfNumber(4096.0f)> {
  static constexpr int kUnroll = 4;
  static Complex<float> Rare(Complex<float> z) {
    return ElementaryKernel<ComplexExp, float>::Rare(z);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    const hn::Rebind<double, hn::Half<D>> wide;
    using W = VecOf<decltype(wide)>;
    V turns[K];
    W x[2 * K], n[2 * K], y[2 * K], e[2 * K], sine[2 * K], cosine[2 * K];
    for (size_t i = 0; i < K; ++i) {
      turns[i] = Turns(d, z[i].im);
      WidenHalves(d, hn::Sub(turns[i], hn::Set(d, kTurnRounder)), n[2 * i], n[2 * i + 1]);
      WidenHalves(d, z[i].re, x[2 * i], x[2 * i + 1]);
      WidenHalves(d, z[i].im, y[2 * i], y[2 * i + 1]);
    }
    for (size_t i = 0; i < 2 * K; ++i) {
      const W high = SubExactProduct(n[i], hn::Set(wide, 0x1.921fb5444p+0), y[i]);
      y[i] = hn::Sub(high, hn::Mul(n[i], hn::Set(wide, 0x1.68c234c4c6629p-39)));
    }
    Exp(wide, x, e);
    SineCosine(wide, y, sine, cosine);
    for (size_t i = 0; i < 2 * K; ++i) {
      sine[i] = hn::Mul(e[i], sine[i]);
      cosine[i] = hn::Mul(e[i], cosine[i]);
    }
    for (size_t i = 0; i < K; ++i) {
      r[i] = TurnBack(d, Bits(d, turns[i]), NarrowHalves(d, sine[2 * i], sine[2 * i + 1]),
                      NarrowHalves(d, cosine[2 * i], cosine[2 * i + 1]));
    }
  }

 private:
  template <class W, size_t K, class D>
  static HWY_INLINE void Exp(D d, const W (&x)[K], W (&e)[K]) {
    const W shifter = hn::Set(d, 0x1.8p52);  // leaves the rounded integer in the low bits
    W f[K], p[K];
    BitsOf<D> n[K];
    for (size_t i = 0; i < K; ++i) {
      f[i] = hn::Mul(x[i], hn::Set(d, 0x1.71547652b82fep+0));  // 1/ln2
      const W nf = hn::Add(f[i], shifter);
      n[i] = hn::ShiftLeft<52>(Bits(d, nf));
      f[i] = hn::Sub(f[i], hn::Sub(nf, shifter));
    }
    Horner(d, f, sExpComplexHAPolynomial, p);
    for (size_t i = 0; i < K; ++i) p[i] = hn::Add(hn::Mul(p[i], f[i]), hn::Set(d, 1.0));
    for (size_t i = 0; i < K; ++i) e[i] = FromBits(d, hn::Add(Bits(d, p[i]), n[i]));
  }

  template <class W, size_t K, class D>
  static HWY_INLINE void SineCosine(D d, const W (&y)[K], W (&sine)[K], W (&cosine)[K]) {
    const W one = hn::Set(d, 1.0);
    W s[K];
    for (size_t i = 0; i < K; ++i) s[i] = hn::Mul(y[i], y[i]);
    Horner(d, s, sQuarterSinComplexHAPolynomial, sine);
    for (size_t i = 0; i < K; ++i) sine[i] = hn::Add(hn::Mul(sine[i], s[i]), one);
    for (size_t i = 0; i < K; ++i) sine[i] = hn::Mul(sine[i], y[i]);
    Horner(d, s, sQuarterCosComplexHAPolynomial, cosine);
    for (size_t i = 0; i < K; ++i) cosine[i] = hn::Add(hn::Mul(cosine[i], s[i]), one);
  }
};

// The product without a flag where that costs nothing: on AVX-512.
template <class D, class V>
HWY_INLINE V QuietMul(D, V a, V b) {
#if HWY_TARGET == HWY_AVX3
  return V{_mm512_mul_round_ps(a.raw, b.raw, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)};
#else
  return hn::Mul(a, b);
#endif
}

// A reduced argument whose powers raise no underflow. The other levels put 0 in place of tiny
// numbers, and the terms that are added to them vanish as they would anyway: they are -0, where the
// first coefficient is negative.
template <class D, class V>
HWY_INLINE V Tame(D d, V y) {
  return HWY_TARGET == HWY_AVX3 ? y
                                : Selected(hn::IfThenZeroElse(MagnitudeBelow(d, y, 0x1p-40f), y));
}

// e^x by the table and the cubic of the real function's LA, with what the table's floats are off;
// sine and cosine by one reduction, of which the third part of pi/2, N low < 2^-28, counts for the
// sine alone. Each factor is off by less than 1.7 units of 2^-24 but for the roundings that end it:
// below 3.6 ulp in all, 3.11 seen.
struct SingleExpLA : ExpRange<BitsOfNumber(87.0f), BitsOfNumber(1608.0f)> {
  static constexpr int kUnroll = 4;
  using Reduce = Reduction<Turn::kQuarter>;

  // A step at a time for all vectors.
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    V e[K], sine[K], cosine[K];
    BitsOf<D> k[K];
    Exp(d, z, e);
    SineCosine(d, z, k, sine, cosine);
    for (size_t i = 0; i < K; ++i) {
      r[i] = TurnBack(d, k[i], hn::Mul(e[i], sine[i]), hn::Mul(e[i], cosine[i]));
    }
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void Exp(D d, const Complex<V> (&z)[K], V (&e)[K]) {
    const V shifter = hn::Set(d, 0x1.8p23f);  // leaves the rounded integer in the low bits
    V y[K], kf[K], r[K], p[K];
    for (size_t i = 0; i < K; ++i) y[i] = hn::Add(z[i].re, hn::Set(d, 0x1p-36f));
    for (size_t i = 0; i < K; ++i) kf[i] = hn::Mul(y[i], hn::Set(d, 0x1.715476p+3f));  // 8/ln2
    for (size_t i = 0; i < K; ++i) kf[i] = hn::Add(kf[i], shifter);
    // ln2/8 = 0x1.62ep-4 + 0x1.0bfbe8p-18, the product of k and the first part exact.
    for (size_t i = 0; i < K; ++i) {
      const V kd = hn::Sub(kf[i], shifter);
      r[i] = hn::Sub(SubExactProduct(kd, hn::Set(d, 0x1.62ep-4f), y[i]),
                     hn::Mul(kd, hn::Set(d, 0x1.0bfbe8p-18f)));
    }
    Horner(d, r, sExpLAPolynomial, p);
    for (size_t i = 0; i < K; ++i) p[i] = hn::Mul(p[i], r[i]);
    for (size_t i = 0; i < K; ++i) p[i] = hn::Mul(p[i], r[i]);
    for (size_t i = 0; i < K; ++i) {
      const auto k = Bits(d, kf[i]);
      p[i] = hn::Add(hn::Add(p[i], LookupEighth(d, sExpEighthsRest, k)), r[i]);
      const V t = LookupEighth(d, sExpEighths, k);
      const auto n = hn::And(hn::ShiftLeft<20>(k), SetBits(d, 0xFF800000));
      // Multiplied by 2^n before the sum, the product could underflow.
      e[i] = FromBits(d, hn::Add(Bits(d, hn::Add(hn::Mul(t, p[i]), t)), n));
    }
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void SineCosine(D d, const Complex<V> (&z)[K], BitsOf<D> (&k)[K], V (&sine)[K],
                                    V (&cosine)[K]) {
    V y[K], low[K], s[K], cube[K], p[K];
    for (size_t i = 0; i < K; ++i) {
      const V turns = Turns(d, z[i].im);
      k[i] = Bits(d, turns);
      low[i] = hn::Sub(turns, hn::Set(d, kTurnRounder));
    }
    for (size_t i = 0; i < K; ++i)
      y[i] = Remainder(d, z[i].im, low[i], hn::Set(d, kPiHigh * Reduce::kUnit));
    for (size_t i = 0; i < K; ++i) {
      y[i] = SubExactProduct(low[i], hn::Set(d, kPiMiddle * Reduce::kUnit), y[i]);
      low[i] = hn::Mul(low[i], hn::Set(d, kPiLow * Reduce::kUnit));
    }
    for (size_t i = 0; i < K; ++i) {
      const V tame = Tame(d, y[i]);
      s[i] = QuietMul(d, tame, tame);
      cube[i] = QuietMul(d, tame, s[i]);
    }
    QuietHorner(d, s, sQuarterSinLAPolynomial, p);
    for (size_t i = 0; i < K; ++i) p[i] = QuietMul(d, cube[i], p[i]);
    for (size_t i = 0; i < K; ++i) p[i] = hn::Sub(low[i], p[i]);
    for (size_t i = 0; i < K; ++i) sine[i] = hn::Sub(y[i], p[i]);  // in this order -0 gives -0
    QuietHorner(d, s, sQuarterCosProductPolynomial, p);
    for (size_t i = 0; i < K; ++i) p[i] = QuietMul(d, s[i], p[i]);
    for (size_t i = 0; i < K; ++i) cosine[i] = hn::Add(p[i], hn::Set(d, 1.0f));
  }
  template <class D, class V, size_t K, size_t N>
  static HWY_INLINE void QuietHorner(D d, const V (&x)[K], const float (&c)[N], V (&p)[K]) {
    for (size_t i = 0; i < K; ++i) p[i] = hn::Set(d, c[N - 1]);
    for (size_t n = N - 1; n-- > 0;) {
      for (size_t i = 0; i < K; ++i) p[i] = QuietMul(d, p[i], x[i]);
      for (size_t i = 0; i < K; ++i) p[i] = hn::Add(p[i], hn::Set(d, c[n]));
    }
  }
};

int cExp_HA(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleExpHA>(n, a, r);
}
int cExp_21(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleKernel<SingleExpHA, SingleExpLA>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cExp_21);
HWY_EXPORT(cExp_HA);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp_21, cExp_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp_21, cExp_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp_HA, cExp_HA)
}  // namespace pex
#endif
