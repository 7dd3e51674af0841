// e^z, in single and double precision. LA and EP in single precision are one kernel in float
// arithmetic; those in double are HA's.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cexp/cexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_single-inl.h"
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_heap/real/trig_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// e^x by the table and the cubic of the real function's LA, with what the table's floats are off;
// sine and cosine by one reduction, of which the third part of pi/2, N low < 2^-28, counts for the
// sine alone. Each factor is off by less than 1.7 units of 2^-24 but for the roundings that end it:
// below 3.6 ulp in all, 2.93 seen.
struct SingleExp {
  static constexpr int kUnroll = 4;
  using Reduce = Reduction<Turn::kQuarter>;

  // |x| > 87 or |y| >= 1608: e^x leaves the normal numbers, or the reduction its bounds.
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> z) {
    return KeyAbove(d, Key(d, z), kLimit);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
    return LanesAbove(d, Key(d, z), kLimit);
  }

  template <class D, class V>
  static HWY_INLINE void Main(D d, Complex<V> z, Complex<V>& r) {
    const Complex<V> zs[1] = {z};
    Complex<V> rs[1];
    MainGroup(d, zs, rs);
    r = rs[0];
  }

  // A step at a time for all vectors.
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    V e[K], sine[K], cosine[K];
    BitsOf<D> k[K];
    Exp(d, z, e);
    SineCosine(d, z, k, sine, cosine);
    for (size_t i = 0; i < K; ++i) {
      const auto odd = OddQuarter(d, k[i]);
      const auto next = hn::Add(k[i], SetBits(d, 1));
      const V re = hn::IfThenElse(odd, sine[i], cosine[i]);
      const V im = hn::IfThenElse(odd, cosine[i], sine[i]);
      r[i] = {hn::Mul(e[i], FlipSign(d, re, hn::ShiftLeft<30>(next))),
              hn::Mul(e[i], FlipSign(d, im, hn::ShiftLeft<30>(k[i])))};
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
      r[i] = hn::Sub(hn::NegMulAdd(kd, hn::Set(d, 0x1.62ep-4f), y[i]),
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
      const V quotient = Reduce::Quotient(d, z[i].im);
      k[i] = Bits(d, quotient);
      low[i] = Reduce::Multiple(d, quotient);
    }
    for (size_t i = 0; i < K; ++i)
      y[i] = ExactDifference(d, z[i].im, low[i], hn::Set(d, kPiHigh * Reduce::kUnit));
    for (size_t i = 0; i < K; ++i) {
      y[i] = hn::NegMulAdd(low[i], hn::Set(d, kPiMiddle * Reduce::kUnit), y[i]);  // exact product
      low[i] = hn::Mul(low[i], hn::Set(d, kPiLow * Reduce::kUnit));
    }
    for (size_t i = 0; i < K; ++i) {
      const V tame = Tame<Turn::kQuarter>(d, y[i]);
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

 private:
  static constexpr float kLargestAngle = 1608;
  static constexpr int32_t kLimit = BitsOfNumber(87.0f);
  // The larger of the bits of |x| and those of |y| less what the limits differ by.
  template <class D, class V>
  static HWY_INLINE BitsOf<D> Key(D d, Complex<V> z) {
    const auto above = SetBits(d, BitsOfNumber(kLargestAngle) - kLimit);
    return hn::Max(Bits(d, hn::Abs(z.re)), hn::Sub(Bits(d, hn::Abs(z.im)), above));
  }
};

PEX_COMPLEX_BODIES(Exp)
int cExp_21(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleKernel<ElementaryKernel<ComplexExp, float>, SingleExp>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cExp);
HWY_EXPORT(cExp_21);
HWY_EXPORT(zExp);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp_21, cExp_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp_21, cExp_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp, cExp_HA)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zExp, zExp_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zExp, zExp_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zExp, zExp_HA)
}  // namespace pex
#endif
