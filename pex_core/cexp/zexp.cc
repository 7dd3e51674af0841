// e^z of complex numbers in double precision: one kernel for all accuracies, at most 0.55 ulp.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cexp/zexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// e^x = 2^n t (1 + p), t = hi + lo from the table of powers.
template <class D>
struct ExpFactors {
  PairOf<D> t;
  VecOf<D> p;
  BitsOf<D> power;  // n << 52
};

template <class D, class V, size_t K>
HWY_INLINE void ExpFactorsOf(D d, const V (&x)[K], ExpFactors<D> (&r)[K]) {
  using Tier = PowHA;
  V kf[K], y[K], square[K], q[K];
  const V shifter = hn::Set(d, 0x1.8p52);  // leaves the rounded integer in the low bits
  for (size_t k = 0; k < K; ++k) {
    kf[k] = hn::Add(hn::Mul(x[k], hn::Set(d, Tier::kSteps * 0x1.71547652b82fep+0)), shifter);
    const V kd = hn::Sub(kf[k], shifter);
    y[k] = hn::Sub(hn::Sub(x[k], hn::Mul(kd, hn::Set(d, Tier::kStepHi))),
                   hn::Mul(kd, hn::Set(d, Tier::kStepLo)));
    square[k] = hn::Mul(y[k], y[k]);
  }
  EvenOdd(d, y, square, Tier::kExpPolynomial, q);
  for (size_t k = 0; k < K; ++k) {
    const auto steps = Bits(d, kf[k]);
    r[k].p = hn::Add(y[k], hn::Mul(square[k], q[k]));
    r[k].t = PowLookUp<Tier::kSteps>(d, Tier::kPower, Tier::kPowerRest, Tier::kPowerPairs, steps);
    static_assert(Tier::kSteps == 32);
    r[k].power = hn::And(hn::ShiftLeft<47>(steps), SetBits(d, 0xFFF0000000000000));
  }
}

// Of two pairs; the low part of the first is `low` and may be large.
template <class D, class V>
HWY_INLINE V ProductOfSums(D d, V high, V low, Pair<V> b) {
  const Pair<V> p = TwoProduct(d, high, b.hi);
  const V rest = hn::Add(hn::Add(p.lo, hn::Mul(high, b.lo)), hn::Mul(low, hn::Add(b.hi, b.lo)));
  return hn::Add(p.hi, rest);
}

// kWide: also zeros, and imaginary parts from 2^9 to 2^12.
template <bool kWide>
struct dComplexExp : ElementaryKernel<ComplexExp, double> {
  static constexpr int kUnroll = 3;
  using Range = PartRange<-100, 9>::Outside<double>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> z) {
    if constexpr (kWide) return ElementaryKernel<ComplexExp, double>::MayBeRare(d, z);
    return KeyAbove(d, JoinKeys(d, Range::Key(d, hn::Abs(z.re)), Range::Key(d, hn::Abs(z.im))),
                    Range::kLimit);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    V x[K], y[K], s[K], c[K];
    ExpFactors<D> e[K];
    Sixteenth<D> u[K];
    for (size_t k = 0; k < K; ++k) {
      x[k] = z[k].re;
      y[k] = z[k].im;
    }
    ExpFactorsOf(d, x, e);
    ReduceToSixteenth(d, y, u);
    SmallSineCosine(d, u, s, c);
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> sin = SumOfAngles<Wave::kSine>(d, u[k], s[k], c[k]);
      const Pair<V> cos = SumOfAngles<Wave::kCosine>(d, u[k], s[k], c[k]);
      const V low = hn::Add(e[k].t.lo, hn::Mul(e[k].t.hi, e[k].p));
      const V re = ProductOfSums(d, e[k].t.hi, low, cos);
      V im = ProductOfSums(d, e[k].t.hi, low, sin);
      // No part leaves the normal numbers: the exponent is added, and the sign flipped.
      const auto sign = hn::And(hn::ShiftLeft<59>(u[k].index), SetBits(d, uint64_t{1} << 63));
      const auto scale = hn::Add(e[k].power, sign);
      r[k].re = FromBits(d, hn::Add(Bits(d, re), scale));
      r[k].im = FromBits(d, hn::Add(Bits(d, im), scale));
      if constexpr (kWide) r[k].im = hn::IfThenElse(hn::Eq(y[k], hn::Zero(d)), y[k], r[k].im);
    }
  }
};

struct dExp : dComplexExp<false> {
  using Wide = dComplexExp<true>;
};

int zExp(int32_t n, const PexComplex16* a, PexComplex16* r) { return MapComplex<dExp>(n, a, r); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zExp);
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zExp, zExp_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zExp, zExp_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zExp, zExp_HA)
}  // namespace pex
#endif
