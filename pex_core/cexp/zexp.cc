// e^z of complex numbers in double precision: one kernel for all accuracies, at most 0.55 ulp.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cexp/zexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_vector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// Powers of 2^(1/32) without the exponents' own share of the steps, and what they lack, over
// themselves.
struct ExpColumns {
  alignas(64) double power[32], rest[32];
};
constexpr ExpColumns kExpColumns = [] {
  ExpColumns c{};
  for (int64_t i = 0; i < 32; ++i) {
    c.power[i] = __builtin_bit_cast(double, BitsOfNumber(kPowPowers32.hi[i]) - (i << 47));
    c.rest[i] = kPowPowers32.lo[i] / kPowPowers32.hi[i];
  }
  return c;
}();
constexpr PowPairs<32> kExpPairs = SideBySide(kExpColumns.power, kExpColumns.rest);

// e^x = t (1 + p).
template <class D>
struct ExpFactors {
  VecOf<D> t, p;
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
    const PairOf<D> row = PowLookUp<32>(d, kExpColumns.power, kExpColumns.rest, kExpPairs, steps);
    r[k].t = FromBits(d, hn::Add(Bits(d, row.hi), hn::ShiftLeft<47>(steps)));
    r[k].p = hn::Add(row.lo, hn::Add(y[k], hn::Mul(square[k], q[k])));
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
  static constexpr int kUnroll = 4;
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
      const auto sign = hn::And(hn::ShiftLeft<59>(u[k].index), SetBits(d, uint64_t{1} << 63));
      const V t = FromBits(d, hn::Xor(Bits(d, e[k].t), sign)), low = hn::Mul(t, e[k].p);
      r[k] = {ProductOfSums(d, t, low, cos), ProductOfSums(d, t, low, sin)};
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
