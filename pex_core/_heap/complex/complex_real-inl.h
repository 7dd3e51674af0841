// Real functions for the vector kernels of complex functions, in two kinds of numbers: unevaluated
// sums of two doubles (Pair), for results in double precision, and plain doubles, for results in
// single precision. Pairs are good to about 2^-58 of themselves, plain results to 2^-50.
//
// Names are overloaded for both kinds: formulas are written once, for a number N.

#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan-inl.h"
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_heap/real/pow-inl.h"
#include "pex_core/_heap/real/trig_quarter-inl.h"
#include "pex_core/_heap/real/trig_single_polynomials.h"
#include "pex_core/_heap/real/trig_sixteenth-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_REAL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_REAL_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_REAL_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_REAL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class D>
using PairOf = Pair<VecOf<D>>;

template <class N, class D>
inline constexpr bool kIsPair = std::is_same_v<N, PairOf<D>>;

// ---- Arithmetic. Sums are of terms of the same sign. ----
//
// The low part of a pair may reach 2^-8 of the high one. A product leaves out that of the low
// parts: one of the factors must be in normal form, its low part below an ulp of the high one.

template <class D>
HWY_INLINE VecOf<D> Normalized(D, VecOf<D> a) {
  return a;
}
template <class D>
HWY_INLINE PairOf<D> Normalized(D, PairOf<D> a) {
  return FastTwoSum(a.hi, a.lo);
}

template <class D>
HWY_INLINE VecOf<D> Value(D, VecOf<D> a) {
  return a;
}
template <class D>
HWY_INLINE VecOf<D> Value(D, PairOf<D> a) {
  return hn::Add(a.hi, a.lo);
}

// The leading part.
template <class D>
HWY_INLINE VecOf<D> Head(D, VecOf<D> a) {
  return a;
}
template <class D>
HWY_INLINE VecOf<D> Head(D, PairOf<D> a) {
  return a.hi;
}

template <class N, class D>
HWY_INLINE N From(D d, VecOf<D> x) {
  if constexpr (kIsPair<N, D>) {
    return {x, hn::Zero(d)};
  } else {
    return x;
  }
}

template <class D>
HWY_INLINE VecOf<D> Select(D, MaskOf<D> mask, VecOf<D> yes, VecOf<D> no) {
  return hn::IfThenElse(mask, yes, no);
}
template <class D>
HWY_INLINE PairOf<D> Select(D, MaskOf<D> mask, PairOf<D> yes, PairOf<D> no) {
  return {hn::IfThenElse(mask, yes.hi, no.hi), hn::IfThenElse(mask, yes.lo, no.lo)};
}

// The sign bits of `sign` flip that of a.
template <class D>
HWY_INLINE VecOf<D> WithFlippedSign(D d, VecOf<D> a, VecOf<D> sign) {
  return hn::Xor(a, hn::And(sign, hn::SignBit(d)));
}
template <class D>
HWY_INLINE PairOf<D> WithFlippedSign(D d, PairOf<D> a, VecOf<D> sign) {
  const auto bits = hn::And(sign, hn::SignBit(d));
  return {hn::Xor(a.hi, bits), hn::Xor(a.lo, bits)};
}

template <class D>
HWY_INLINE VecOf<D> Scaled(D d, VecOf<D> a, double power_of_two) {
  return hn::Mul(a, hn::Set(d, power_of_two));
}
template <class D>
HWY_INLINE PairOf<D> Scaled(D d, PairOf<D> a, double power_of_two) {
  const auto p = hn::Set(d, power_of_two);
  return {hn::Mul(a.hi, p), hn::Mul(a.lo, p)};
}

template <class D>
HWY_INLINE VecOf<D> Plus(D, VecOf<D> a, VecOf<D> b) {
  return hn::Add(a, b);
}
template <class D>
HWY_INLINE PairOf<D> Plus(D, PairOf<D> a, PairOf<D> b) {
  const auto s = TwoSum(a.hi, b.hi);
  return {s.hi, hn::Add(s.lo, hn::Add(a.lo, b.lo))};
}

// a - b in normal form, whatever cancels.
template <class D>
HWY_INLINE VecOf<D> Difference(D, VecOf<D> a, VecOf<D> b) {
  return hn::Sub(a, b);
}
template <class D>
HWY_INLINE PairOf<D> Difference(D, PairOf<D> a, PairOf<D> b) {
  const auto s = TwoSum(a.hi, hn::Neg(b.hi));
  return TwoSum(s.hi, hn::Add(s.lo, hn::Sub(a.lo, b.lo)));
}

// x + y and x^2 of doubles.
template <class N, class D>
HWY_INLINE N SumOf(D, VecOf<D> x, VecOf<D> y) {
  if constexpr (kIsPair<N, D>) {
    return TwoSum(x, y);
  } else {
    return hn::Add(x, y);
  }
}
template <class N, class D>
HWY_INLINE N SquareOf(D d, VecOf<D> x) {
  if constexpr (kIsPair<N, D>) {
    return TwoProduct(d, x, x);
  } else {
    return hn::Mul(x, x);
  }
}

template <class D>
HWY_INLINE VecOf<D> Times(D, VecOf<D> a, VecOf<D> b) {
  return hn::Mul(a, b);
}
template <class D>
HWY_INLINE PairOf<D> Times(D d, PairOf<D> a, PairOf<D> b) {
  const auto p = TwoProduct(d, a.hi, b.hi);
  return {p.hi, hn::Add(p.lo, hn::Add(hn::Mul(a.hi, b.lo), hn::Mul(a.lo, b.hi)))};
}
template <class D>
HWY_INLINE PairOf<D> Times(D d, PairOf<D> a, VecOf<D> b) {
  const auto p = TwoProduct(d, a.hi, b);
  return {p.hi, hn::Add(p.lo, hn::Mul(a.lo, b))};
}

// a b rounded; a zero has the sign of the product.
template <class D>
HWY_INLINE VecOf<D> Product(D, VecOf<D> a, VecOf<D> b) {
  return hn::Mul(a, b);
}
template <class D>
HWY_INLINE VecOf<D> Product(D d, PairOf<D> a, PairOf<D> b) {
  const auto p = Times(d, a, b);
  return hn::CopySign(hn::Add(p.hi, p.lo), p.hi);
}

// 1/b, for quotients by b.
template <class D>
HWY_INLINE VecOf<D> InverseHead(D d, VecOf<D> b) {
  return hn::Div(hn::Set(d, 1.0), b);
}
template <class D>
HWY_INLINE VecOf<D> InverseHead(D d, PairOf<D> b) {
  return hn::Div(hn::Set(d, 1.0), b.hi);
}
template <class D>
HWY_INLINE VecOf<D> OverWith(D, VecOf<D> a, VecOf<D>, VecOf<D> inverse) {
  return hn::Mul(a, inverse);
}
template <class D>
HWY_INLINE PairOf<D> OverWith(D d, PairOf<D> a, PairOf<D> b, VecOf<D> inverse) {
  const auto q = hn::Mul(a.hi, inverse);
  const auto p = TwoProduct(d, q, b.hi);
  const auto rest = hn::Add(hn::Sub(hn::Sub(a.hi, p.hi), p.lo), hn::Sub(a.lo, hn::Mul(q, b.lo)));
  return {q, hn::Mul(rest, inverse)};
}
template <class N, class D>
HWY_INLINE N Over(D d, N a, N b) {
  return OverWith(d, a, b, InverseHead(d, b));
}

// The square root of a >= 0.
template <class D>
HWY_INLINE VecOf<D> Root(D, VecOf<D> a) {
  return hn::Sqrt(a);
}
// 1/(2 s) to 2^-6, from the bits: the difference of a constant and s, and a step of Newton's.
template <class D, class V = VecOf<D>>
HWY_INLINE V RoughHalfInverse(D d, V s) {
  const V y = FromBits(d, hn::Sub(SetBits(d, 0x7FCE623822FC16E6), Bits(d, s)));
  return hn::Mul(y, hn::Sub(hn::Set(d, 2.0), hn::Mul(hn::Add(s, s), y)));
}
// Of the correction six bits are enough: the root is good to 2^-59.
template <class D>
HWY_INLINE PairOf<D> Root(D d, PairOf<D> a) {
  const auto s = hn::Sqrt(a.hi);
  const auto rest = hn::Add(Remainder(d, a.hi, s, s), a.lo);
  return {s, hn::Mul(rest, RoughHalfInverse(d, s))};
}

// ---- Exponential and hyperbolic functions, |x| <= 700. ----

// e^x
template <class D>
HWY_INLINE VecOf<D> ExpOf(D d, VecOf<D> x) {
  const PairOf<D> p[1] = {{x, hn::Zero(d)}};
  VecOf<D> r[1];
  PowExp<PowLA>(d, p, r);
  return r[0];
}

// sinh x and cosh x.
template <class N>
struct SinhCosh {
  N sinh, cosh;
};

// The sum of HyperbolicHA, both ways.
template <class N, class D>
HWY_INLINE SinhCosh<N> SinhCoshOf(D d, VecOf<D> x) {
  using V = VecOf<D>;
  auto u = Split<Points::kAccurate>(d, hn::Abs(x));
  // Far beyond the last place, but what is left of it must not underflow when r multiplies it.
  u.decay = hn::Max(u.decay, hn::Set(d, 0x1p-200));
  const V r = u.r, r2 = hn::Mul(r, r);
  const V even = Horner(d, r2, dCoshHAPolynomial), odd = Horner(d, r2, dSinhPolynomial);
  const V cosh = hn::Mul(r2, hn::Add(hn::Set(d, 0.5), hn::Mul(r2, even)));  // cosh r - 1
  const V sinh = hn::Add(hn::Mul(hn::Mul(r, r2), odd), u.r_rest);           // sinh r - r
  const PairOf<D> sum = FastTwoSum(u.grow, u.decay);
  const V difference = hn::Sub(u.grow, u.decay);
  const PairOf<D> rest = {difference, hn::Sub(hn::Sub(u.grow, difference), u.decay)};
  // a cosh r + b sinh r
  const auto combined = [&](PairOf<D> a, PairOf<D> b) HWY_ATTR {
    const PairOf<D> product = TwoProduct(d, b.hi, r);
    const PairOf<D> head = FastTwoSum(a.hi, product.hi);
    const V low = hn::Add(hn::Add(a.lo, head.lo), hn::Add(product.lo, hn::Mul(b.lo, r)));
    const V high = hn::Add(hn::Mul(a.hi, cosh), hn::Mul(b.hi, sinh));
    return FastTwoSum(head.hi, hn::Add(high, low));
  };
  const PairOf<D> s = WithFlippedSign(d, combined(rest, sum), x);
  const PairOf<D> c = combined(sum, rest);
  if constexpr (kIsPair<N, D>) {
    return {{hn::IfThenElse(hn::Eq(x, hn::Zero(d)), x, s.hi), s.lo}, c};
  } else {
    return {hn::CopySign(Value(d, s), x), Value(d, c)};
  }
}

// ---- Sine and cosine, |y| < 2^12. ----

template <class N>
struct SineCosine {
  N sin, cos;
};

// y.lo is taken for 0.
template <class D>
HWY_INLINE SineCosine<PairOf<D>> SinCosOf(D d, PairOf<D> y) {
  using V = VecOf<D>;
  const V in[1] = {y.hi};
  Sixteenth<D> u[1];
  V s[1], c[1];
  ReduceToSixteenth(d, in, u);
  SmallSineCosine(d, u, s, c);
  const auto sign = FromBits(d, hn::ShiftLeft<59>(u[0].index));
  SineCosine<PairOf<D>> r;
  r.sin = WithFlippedSign(d, SumOfAngles<Wave::kSine>(d, u[0], s[0], c[0]), sign);
  r.cos = WithFlippedSign(d, SumOfAngles<Wave::kCosine>(d, u[0], s[0], c[0]), sign);
  r.sin.hi = hn::IfThenElse(hn::Eq(y.hi, hn::Zero(d)), y.hi, r.sin.hi);
  return r;
}
template <class D>
HWY_INLINE SineCosine<VecOf<D>> SinCosOf(D d, VecOf<D> y) {
  using V = VecOf<D>;
  const V in[1] = {y};
  Quarters<D, 1> u;
  QuarterEP::Reduce(d, in, u);
  const V r = u.y[0], r2 = hn::Mul(r, r), r4 = hn::Mul(r2, r2);
  const V s = hn::Add(r, hn::Mul(hn::Mul(r, r2), EvenOdd(d, r2, r4, sQuarterSinHAPolynomial)));
  const V c = hn::Add(hn::Set(d, 1.0), hn::Mul(r2, EvenOdd(d, r2, r4, sQuarterCosHAPolynomial)));
  const auto quadrant = u.quadrant[0];
  const auto odd = OddLanes(d, quadrant);
  const V sin = FlipSign<1>(d, hn::IfThenElse(odd, c, s), quadrant);
  return {hn::IfThenElse(hn::Eq(y, hn::Zero(d)), y, sin),
          FlipSign<1>(d, hn::IfThenElse(odd, s, c), hn::Add(quadrant, SetBits(d, 1)))};
}

// ---- Logarithms. ----

// ln u, and for lanes near 1 ln(1 + t). Normal u > 0.
template <class D>
HWY_INLINE PairOf<D> LogOf(D d, PairOf<D> u, MaskOf<D> near, PairOf<D> t) {
  using V = VecOf<D>;
  const V in[1] = {Selected(hn::IfThenElse(near, hn::Set(d, 1.0), u.hi))};
  LogReduced<D> v[1];
  LogReduce<NaturalLog>(d, in, v);
  const PairOf<D> far = TwoSum(hn::Sub(v[0].m, v[0].row.a), hn::Mul(InversePower(d, v[0]), u.lo));
  const PairOf<D> s = Select(d, near, t, far);
  PairOf<D> p[1] = {TwoProduct(d, s.hi, v[0].row.factor)}, r[1];
  p[0].lo = hn::Add(p[0].lo, hn::Mul(s.lo, v[0].row.factor));
  LogPair<NaturalLog>(d, v, p, r);
  return r[0];
}
template <class D>
HWY_INLINE VecOf<D> LogOf(D d, VecOf<D> u, MaskOf<D> near, VecOf<D> t) {
  using V = VecOf<D>;
  const V one = hn::Set(d, 1.0);
  const V in[1] = {Selected(hn::IfThenElse(near, one, u))};
  LogReduced<D> v[1];
  LogReduce<NaturalLog>(d, in, v);
  v[0].m = hn::IfThenElse(near, hn::Add(one, t), v[0].m);
  const V s[1] = {hn::IfThenElse(near, t, hn::Sub(v[0].m, v[0].row.a))};
  V r[1];
  LogByDivision<NaturalLog>(d, v, s, r);
  return r[0];
}

// Below this a number added to 1 is taken for itself: of the sum too little would be left of it.
template <class N, class D>
inline constexpr double kNearOne = kIsPair<N, D> ? 0x1p-40 : 0x1p-5;

// ln(1 + t), t >= 0.
template <class N, class D>
HWY_INLINE N Log1pOf(D d, N t) {
  const auto near = hn::Lt(Head(d, t), hn::Set(d, kNearOne<N, D>));
  return LogOf(d, Plus(d, From<N>(d, hn::Set(d, 1.0)), t), near, t);
}

// x^2 + y^2 - 1 where that is small, x >= y >= 0: exact squares, and for pairs sweeps of exact sums
// that leave the terms without overlap.
template <class N, class D>
HWY_INLINE N SquaresLessOne(D d, VecOf<D> x, VecOf<D> y) {
  using V = VecOf<D>;
  const V one = hn::Set(d, 1.0);
  if constexpr (kIsPair<N, D>) {
    const PairOf<D> x2 = TwoProduct(d, x, x), y2 = TwoProduct(d, y, y);
    const PairOf<D> off = FastTwoSum(hn::Neg(one), x2.hi);  // lo is not 0 for some x^2 < 1/2
    V t[5] = {off.lo, y2.lo, x2.lo, y2.hi, off.hi};
    for (int sweep = 0; sweep < 3; ++sweep) {
      for (int i = 1; i < 5; ++i) {
        const PairOf<D> s = TwoSum(t[i], t[i - 1]);
        t[i] = s.hi;
        t[i - 1] = s.lo;
      }
    }
    return {t[4], hn::Add(t[3], hn::Add(t[2], hn::Add(t[1], t[0])))};
  } else {
    return hn::Add(hn::Sub(hn::Mul(x, x), one), hn::Mul(y, y));
  }
}

// ln sqrt(x^2 + y^2).
template <class N, class D>
HWY_INLINE N LogModulusOf(D d, VecOf<D> x, VecOf<D> y) {
  using V = VecOf<D>;
  const V ax = hn::Abs(x), ay = hn::Abs(y);
  const V more = hn::Max(ax, ay), less = hn::Min(ax, ay);
  const N square = Plus(d, SquareOf<N>(d, more), SquareOf<N>(d, less));
  const auto near =
      hn::Lt(hn::Abs(hn::Sub(Head(d, square), hn::Set(d, 1.0))), hn::Set(d, kNearOne<N, D>));
  N t = square;
  if (!hn::AllFalse(d, near)) t = SquaresLessOne<N>(d, more, less);
  return Scaled(d, LogOf(d, square, near, t), 0.5);
}

// ---- The angle of the point (x, y). ----

// x, y >= 0, not both 0, taken from pi where `left` is negative.
template <class D>
HWY_INLINE PairOf<D> AngleOf(D d, PairOf<D> y, PairOf<D> x, VecOf<D> left) {
  using V = VecOf<D>;
  const auto row = AtanRowOf(d, y.hi, x.hi);
  const PairOf<D> cx = TwoProduct(d, row.c, x.hi), cy = TwoProduct(d, row.c, y.hi);
  const V n = hn::Sub(hn::Mul(row.finite, y.hi), cx.hi);  // exact
  const V n_lo = hn::Sub(hn::Sub(hn::Mul(row.finite, y.lo), hn::Mul(row.c, x.lo)), cx.lo);
  const PairOf<D> m = TwoSum(hn::Mul(row.finite, x.hi), cy.hi);
  const V m_lo = hn::Add(hn::Add(hn::Mul(row.finite, x.lo), hn::Mul(row.c, y.lo)), cy.lo);
  const PairOf<D> t = AtanQuotient(d, PairOf<D>{n, n_lo}, PairOf<D>{m.hi, hn::Add(m.lo, m_lo)});
  const V lead[1] = {t.hi};
  V tail[1];
  AtanTail(d, lead, kAtanHA, tail);
  const V zero = hn::Zero(d), sign = hn::And(left, hn::SignBit(d));
  const V pi = hn::IfNegativeThenElse(left, hn::Set(d, 0x1.921fb54442d18p+1), zero);
  const V pi_rest = hn::IfNegativeThenElse(left, hn::Set(d, 0x1.1a62633145c07p-53), zero);
  const PairOf<D> s1 = FastTwoSum(pi, hn::Xor(row.angle, sign));
  const PairOf<D> s2 = FastTwoSum(s1.hi, hn::Xor(t.hi, sign));
  const V low = hn::Xor(hn::Add(tail[0], hn::Add(t.lo, row.rest)), sign);
  return {s2.hi, hn::Add(s2.lo, hn::Add(s1.lo, hn::Add(pi_rest, low)))};
}
template <class D>
HWY_INLINE VecOf<D> AngleOf(D d, VecOf<D> y, VecOf<D> x, VecOf<D> left) {
  using V = VecOf<D>;
  const V ys[1] = {y}, xs[1] = {hn::CopySignToAbs(x, left)};
  V r[1];
  PlainAtan2(d, ys, xs, kAtan2LA, r);
  return r[0];
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_REAL_INL_H_
