// The inverse hyperbolic tangent of complex numbers in double precision, and from it the inverse
// tangent. For x, y >= 0 and D = (1 - x)^2 + y^2
//
//   atanh(x + iy) = ln((D + 4x)/D)/4 + i atan2(2y, 2 (1 - x) - D)/2.
//
// D is known in two parts, and so is the argument of the logarithm's polynomial, (c (D + 4x) - D)/D
// for the factor c that brings the ratio next to 1: where that factor is 1, no 4x is too small to
// be kept. The difference 2 (1 - x) - D cancels next to the unit circle alone, where D counts for
// little beside y. Largest error seen: 0.83 ulp.

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_vector-inl.h"
#include "pex_core/_heap/real/atan_octant-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// a + b = hi + lo exactly, for a, b >= 0.
template <class V>
HWY_INLINE Pair<V> SumOfPositive(V a, V b) {
  return FastTwoSum(hn::Max(a, b), hn::Min(a, b));
}

// D, and 2 (1 - x) - D.
template <class V>
struct AtanhTerms {
  Pair<V> square, across;
};

template <class D, class V>
HWY_INLINE AtanhTerms<V> AtanhTermsOf(D d, V x, V y) {
  const V one = hn::Set(d, 1.0);
  const V more = hn::Max(x, one), less = hn::Min(x, one);
  const V h = hn::Sub(more, less);  // |1 - x|
  const V h_rest = hn::Sub(hn::Sub(more, h), less);
  const V major = hn::Max(h, y), minor = hn::Min(h, y);
  const Pair<V> major2 = TwoProduct(d, major, major), minor2 = TwoProduct(d, minor, minor);
  const Pair<V> sum = FastTwoSum(major2.hi, minor2.hi);
  const V low = hn::Add(hn::Add(major2.lo, minor2.lo), hn::Mul(hn::Add(h, h), h_rest));
  const Pair<V> square = {sum.hi, hn::Add(sum.lo, low)};
  const V side = hn::Sub(one, x);
  const V side_rest = hn::Xor(hn::Add(h_rest, h_rest), hn::And(side, hn::SignBit(d)));
  const Pair<V> across = TwoSum(hn::Add(side, side), hn::Neg(square.hi));
  return {square, {across.hi, hn::Add(across.lo, hn::Sub(side_rest, square.lo))}};
}

// ln((s + u)/s), u >= 0. kTiny: u/s may be below 2^-300 or 0.
template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void LogOfRatio(D d, const Pair<V> (&s)[K], const V (&u)[K], V (&r)[K]) {
  V inverse[K], ratio[K], low[K], t[K], w[K], w2[K], p[K];
  Pair<V> n[K];
  LogShort<D> v[K];
  for (size_t k = 0; k < K; ++k) inverse[k] = hn::Div(hn::Set(d, 1.0), s[k].hi);
  for (size_t k = 0; k < K; ++k) {
    n[k] = SumOfPositive(s[k].hi, u[k]);
    ratio[k] = hn::Mul(n[k].hi, inverse[k]);
  }
  LogShortReduce(d, ratio, v);
  for (size_t k = 0; k < K; ++k) {
    const V c = FromBits(d, hn::Sub(Bits(d, v[k].c), v[k].exponent_bits));
    const Pair<V> product = TwoProduct(d, c, n[k].hi);
    const V above = hn::Mul(hn::Sub(c, hn::Set(d, 1.0)), s[k].lo);
    const Pair<V> top = FastTwoSum(hn::Sub(product.hi, s[k].hi),
                                   hn::Add(product.lo, hn::Add(hn::Mul(c, n[k].lo), above)));
    t[k] = hn::Mul(top.hi, inverse[k]);
    const V rest = hn::Sub(top.lo, hn::Mul(t[k], s[k].lo));
    low[k] = hn::Mul(hn::Add(Remainder(d, top.hi, t[k], s[k].hi), rest), inverse[k]);
  }
  for (size_t k = 0; k < K; ++k) {
    w[k] = hn::Div(t[k], hn::Add(t[k], hn::Set(d, 2.0)));
    if constexpr (kTiny) w[k] = ToBeSquared(d, w[k]);
    w2[k] = hn::Mul(w[k], w[k]);
  }
  Horner(d, w2, kLnShort, p);
  for (size_t k = 0; k < K; ++k) {
    const V rest = hn::Mul(w[k], hn::Sub(t[k], hn::Mul(w2[k], p[k])));
    const V log = hn::Sub(t[k], hn::Sub(rest, low[k]));
    const V head =
        AddExactProduct(v[k].e, hn::Set(d, NaturalLog::kLog2Hi * kExponentUnit), v[k].log);
    r[k] = hn::Add(head, AddExactProduct(v[k].e, hn::Set(d, kLn2Rest * kExponentUnit), log));
  }
}

// The angle of (x, y) without a sign, y >= 0. kTiny: y/x may be below 2^-250 or 0.
template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void AngleOfPair(D d, const Pair<V> (&x)[K], const V (&y)[K], V (&r)[K]) {
  V q[K], low[K], tail[K], base[K], turn[K];
  for (size_t k = 0; k < K; ++k) {
    const auto u = AtanOctantPartsOf(d, y[k], x[k].hi);
    const V left = hn::IfNegativeThenElse(x[k].hi, hn::Set(d, 0x1.1a62633145c07p-53), hn::Zero(d));
    const V base_rest = hn::IfThenElse(u.steep, hn::Set(d, 0x1.1a62633145c07p-54), left);
    const V x_rest = hn::Xor(x[k].lo, hn::And(x[k].hi, hn::SignBit(d)));
    const V x_part = hn::Mul(u.c, x_rest);
    const Pair<V> ch = TwoProduct(d, u.c, u.high);
    const V n = hn::Sub(u.low, ch.hi);  // exact
    const V n_rest = hn::Sub(hn::IfThenElse(u.steep, x_rest, hn::Neg(x_part)), ch.lo);
    const Pair<V> m = FastTwoSum(u.high, hn::Mul(u.c, u.low));
    const V m_rest = hn::Add(m.lo, hn::IfThenElse(u.steep, x_part, x_rest));
    const V inverse = hn::Div(hn::Set(d, 1.0), m.hi);
    q[k] = hn::Mul(n, inverse);
    const V rest = hn::Sub(n_rest, hn::Mul(q[k], m_rest));
    low[k] = hn::Mul(hn::Add(Remainder(d, n, q[k], m.hi), rest), inverse);
    low[k] = hn::Add(hn::Xor(low[k], u.turn), base_rest);
    base[k] = u.base;
    turn[k] = u.turn;
  }
  AtanOctantTail<kTiny>(d, q, kAtanOctantHA, tail);
  for (size_t k = 0; k < K; ++k) {
    const V rest = hn::Add(hn::Xor(tail[k], turn[k]), low[k]);
    r[k] = hn::Add(base[k], hn::Add(hn::Xor(q[k], turn[k]), rest));
  }
}

// kWide: parts from 2^-200 to 2^200 and zeros instead of 2^-80 to 2^80.
template <class F, bool kRotated, bool kWide>
struct dComplexArctangent : ElementaryKernel<F, double> {
  static constexpr int kUnroll = 4;
  using Range = PartRange<-80, 80>::Outside<double>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> z) {
    if constexpr (kWide) return ElementaryKernel<F, double>::MayBeRare(d, z);
    return KeyAbove(d, JoinKeys(d, Range::Key(d, hn::Abs(z.re)), Range::Key(d, hn::Abs(z.im))),
                    Range::kLimit);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    V x4[K], y2[K], log[K], angle[K];
    Pair<V> square[K], across[K];
    for (size_t k = 0; k < K; ++k) {
      const V x = hn::Abs(kRotated ? z[k].im : z[k].re), y = hn::Abs(kRotated ? z[k].re : z[k].im);
      const AtanhTerms<V> terms = AtanhTermsOf(d, x, y);
      square[k] = terms.square;
      across[k] = terms.across;
      x4[k] = hn::Mul(x, hn::Set(d, 4.0));
      y2[k] = hn::Add(y, y);
    }
    LogOfRatio<kWide>(d, square, x4, log);
    AngleOfPair<kWide>(d, across, y2, angle);
    for (size_t k = 0; k < K; ++k) {
      const V size = hn::Mul(log[k], hn::Set(d, 0.25)), turn = hn::Mul(angle[k], hn::Set(d, 0.5));
      r[k] = {hn::CopySignToAbs(kRotated ? turn : size, z[k].re),
              hn::CopySignToAbs(kRotated ? size : turn, z[k].im)};
    }
  }
};

template <class F, bool kRotated>
struct dArctangent : dComplexArctangent<F, kRotated, false> {
  using Wide = dComplexArctangent<F, kRotated, true>;
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_INL_H_
