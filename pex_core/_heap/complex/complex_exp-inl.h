// e^x cos y and e^x sin y in double precision: the exponential as a table's number times 1 + p, and
// its products with sums of two parts.

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_vector-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_EXP_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_EXP_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_EXP_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_EXP_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Powers of 2^(1/16) without the exponents' own share of the steps, and what they lack, over
// themselves.
struct ExpColumns {
  alignas(64) double power[16], rest[16];
};
constexpr ExpColumns kExpColumns = [] {
  ExpColumns c{};
  for (int64_t i = 0; i < 16; ++i) {
    c.power[i] = __builtin_bit_cast(double, BitsOfNumber(kPowPowers16.hi[i]) - (i << 48));
    c.rest[i] = kPowPowers16.lo[i] / kPowPowers16.hi[i];
  }
  return c;
}();
constexpr PowPairs<16> kExpPairs = SideBySide(kExpColumns.power, kExpColumns.rest);

// e^x = t (1 + p).
template <class D>
struct ExpFactors {
  VecOf<D> t, p;
};

// x may be numbers or pairs.
template <class D, class X, size_t K, class V = VecOf<D>>
HWY_INLINE void ExpFactorsOf(D d, const X (&x)[K], ExpFactors<D> (&r)[K]) {
  using Tier = PowLA;
  V kf[K], y[K], square[K], q[K];
  const V shifter = hn::Set(d, 0x1.8p52);  // leaves the rounded integer in the low bits
  for (size_t k = 0; k < K; ++k) {
    const V head = Head(d, x[k]);
    kf[k] = hn::Add(hn::Mul(head, hn::Set(d, Tier::kSteps * 0x1.71547652b82fep+0)), shifter);
    const V kd = hn::Sub(kf[k], shifter);
    const V high = SubExactProduct(kd, hn::Set(d, Tier::kStepHi), head);
    if constexpr (kIsPair<X, D>) {
      y[k] = hn::Sub(high, hn::Sub(hn::Mul(kd, hn::Set(d, Tier::kStepLo)), x[k].lo));
    } else {
      y[k] = SubExactProduct(kd, hn::Set(d, Tier::kStepRest), high);
    }
    square[k] = hn::Mul(y[k], y[k]);
  }
  EvenOdd(d, y, square, Tier::kExpPolynomial, q);
  BitsOf<D> steps[K];
  for (size_t k = 0; k < K; ++k) steps[k] = Bits(d, kf[k]);
#if HWY_TARGET == HWY_AVX2
  const RowPlaces<2, K> places(steps);
#endif
  for (size_t k = 0; k < K; ++k) {
    PairOf<D> row;
#if HWY_TARGET == HWY_AVX2
    places.Columns(kExpPairs.row[0], k, row.hi, row.lo);
#else
    row = PowLookUp<16>(d, kExpColumns.power, kExpColumns.rest, kExpPairs, steps[k]);
#endif
    r[k].t = FromBits(d, hn::Add(Bits(d, row.hi), hn::ShiftLeft<48>(steps[k])));
    r[k].p = hn::Add(row.lo, hn::Add(y[k], hn::Mul(square[k], q[k])));
  }
}

// t (1 + p) b.
template <class D, class V>
HWY_INLINE V ProductOfSums(D d, V t, V p, Pair<V> b) {
  const Pair<V> head = TwoProduct(d, t, b.hi);
  const V rest = hn::Mul(t, hn::Add(b.lo, hn::Mul(p, hn::Add(b.hi, b.lo))));
  return hn::Add(head.hi, hn::Add(head.lo, rest));
}

// e^x (cos y + i sin y) of its factors.
template <class D, class V>
HWY_INLINE Complex<V> PolarProduct(D d, const ExpFactors<D>& e, const Sixteenth<D>& u, V s, V c) {
  const Pair<V> sin = SumOfAngles<Wave::kSine>(d, u, s, c);
  const Pair<V> cos = SumOfAngles<Wave::kCosine>(d, u, s, c);
  const auto sign = hn::And(hn::ShiftLeft<59>(u.index), SetBits(d, uint64_t{1} << 63));
  const V t = FromBits(d, hn::Xor(Bits(d, e.t), sign));
  return {ProductOfSums(d, t, e.p, cos), ProductOfSums(d, t, e.p, sin)};
}

// e^x (cos y + i sin y) but for a zero y, |y| < 2^12; y may be numbers or pairs, as x.
template <class D, class X, size_t K, class V = VecOf<D>>
HWY_INLINE void PolarExp(D d, const X (&x)[K], const X (&y)[K], Complex<V> (&r)[K]) {
  V head[K], s[K], c[K];
  ExpFactors<D> e[K];
  Sixteenth<D> u[K];
  ExpFactorsOf(d, x, e);
  for (size_t k = 0; k < K; ++k) head[k] = Head(d, y[k]);
  ReduceToSixteenth(d, head, u);
  if constexpr (kIsPair<X, D>) {
    // An ulp of y may weigh much against what remains of it.
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> sum = TwoSum(u[k].y, hn::Add(u[k].rest, y[k].lo));
      u[k].y = sum.hi;
      u[k].rest = sum.lo;
    }
  }
  SmallSineCosine(d, u, s, c);
  for (size_t k = 0; k < K; ++k) r[k] = PolarProduct(d, e[k], u[k], s[k], c[k]);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_EXP_INL_H_
