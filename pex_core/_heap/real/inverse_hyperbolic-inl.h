// The inverse hyperbolic functions. As logarithms, asinh(a) = ln(u + rest), a >= 0, and so on;
// atanh in EP and LA and the single asinh and acosh in LA by a quotient and an odd polynomial
// instead.

#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_heap/real/log_of_sum-inl.h"
#include "pex_core/_heap/real/root_correct-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_
#undef PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_
#else
#define PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_
#endif
HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// From here on asinh(a) and acosh(a) are ln(2a) to 2^-62 of themselves, and squares may overflow.
// Only kernels of the wide kind have such arguments, and the plain sums of EP.
template <typename T>
inline constexpr T kLargeArgument = sizeof(T) == 8 ? T(0x1p28) : T(0x1p60);

// ln(2a) where a is large, as ln(a/4) + 3 ln(2): a/4 leaves room for the reduction's exponents. The
// rest must be 0 there.
template <class D, class V, class M>
HWY_INLINE LogArgument<V> OrLarge(D d, M large, V a, V u, V rest) {
  using T = hn::TFromD<D>;
  return {hn::IfThenElse(large, hn::Mul(a, hn::Set(d, T(0.25))), u), rest,
          hn::IfThenElseZero(large, hn::Set(d, T(3)))};
}

// Of how many vectors' roots EP's sums go by estimates: where the processor's take longer than all
// the rest.
template <class V, size_t K>
inline constexpr size_t kEstimatedRoots = sizeof(V) == 64 && K >= 4 ? K / 2 : 0;

// u = a + sqrt(1 + a^2), a >= 0. The root's rounding error belongs to the rest: for small a it is
// most of what u - 1 lacks.
struct AsinhSum {
  static constexpr double kFactor = 1;
  static constexpr bool kHasLarge = true;
  static constexpr bool kExactSum = false;
  template <class D, class V>
  static HWY_INLINE LogArgument<V> NotLarge(D d, V a) {
    const V one = hn::Set(d, static_cast<hn::TFromD<D>>(1));
    const V root = hn::Sqrt(hn::Add(hn::Mul(a, a), one));
    return {hn::Add(a, root), hn::Zero(d), hn::Zero(d)};
  }
  template <class D, class V>
  static HWY_INLINE LogArgument<V> Plain(D d, V a) {
    const auto large = hn::Gt(a, hn::Set(d, kLargeArgument<hn::TFromD<D>>));
    const LogArgument<V> r = NotLarge(d, Selected(hn::IfThenZeroElse(large, a)));
    return OrLarge(d, large, a, r.u, r.rest);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Sums(D d, const V (&a)[K], V (&u)[K]) {
    for (size_t k = 0; k < K; ++k) u[k] = hn::Add(hn::Mul(a[k], a[k]), hn::Set(d, 1.0));
    MixedRoots<kEstimatedRoots<V, K>>(d, u);
    for (size_t k = 0; k < K; ++k) u[k] = hn::Add(a[k], u[k]);
  }
  template <bool kFull, class D, class V>
  static HWY_INLINE LogArgument<V> Argument(D d, V a) {
    using T = hn::TFromD<D>;
    const V one = hn::Set(d, T(1));
    const auto large = hn::Gt(a, hn::Set(d, kLargeArgument<T>));
    const V y = Selected(hn::IfThenZeroElse(large, a));
    Pair<V> square{hn::Mul(y, y), hn::Zero(d)};
    if constexpr (kFull) square = TwoProduct(d, y, y);
    const Pair<V> sum = kFull ? TwoSum(one, square.hi) : FastTwoSum(one, square.hi);
    const V root = hn::Sqrt(sum.hi);
    V residual = hn::Add(Remainder(d, sum.hi, root, root), sum.lo);
    // It weighs where the root is close to 1; LA takes it for 1, and leaves the residual out beyond
    // a = 2.
    if constexpr (kFull) {
      residual = hn::Div(hn::Add(residual, square.lo), hn::Add(root, root));
    } else {
      residual =
          hn::IfThenElseZero(hn::Lt(y, hn::Set(d, T(2))), hn::Mul(residual, hn::Set(d, T(0.5))));
    }
    const Pair<V> u = FastTwoSum(root, y);
    const V rest = hn::Add(u.lo, residual);
    return OrLarge(d, large, a, u.hi, rest);
  }
};

// u = a + sqrt(a^2 - 1), a >= 1. Plain's rest is u - 1.
struct AcoshSum {
  static constexpr double kFactor = 1;
  static constexpr bool kHasLarge = true;
  static constexpr bool kExactSum = true;
  template <class D, class V>
  static HWY_INLINE LogArgument<V> NotLarge(D d, V a) {
    const V one = hn::Set(d, static_cast<hn::TFromD<D>>(1));
    const V less = hn::Sub(a, one);
    const V root = hn::Sqrt(hn::Mul(less, hn::Add(a, one)));
    return {hn::Add(a, root), hn::Add(less, root), hn::Zero(d)};
  }
  template <class D, class V>
  static HWY_INLINE LogArgument<V> Plain(D d, V a) {
    using T = hn::TFromD<D>;
    const auto large = hn::Gt(a, hn::Set(d, kLargeArgument<T>));
    const LogArgument<V> r = NotLarge(d, Selected(hn::IfThenElse(large, hn::Set(d, T(1)), a)));
    return OrLarge(d, large, a, r.u, r.rest);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Sums(D d, const V (&a)[K], V (&u)[K]) {
    const V one = hn::Set(d, 1.0);
    // The root of 0 is none of the estimates'.
    for (size_t k = 0; k < K; ++k) {
      u[k] = hn::Max(hn::Mul(hn::Sub(a[k], one), hn::Add(a[k], one)), hn::Set(d, 0x1p-200));
    }
    MixedRoots<kEstimatedRoots<V, K>>(d, u);
    for (size_t k = 0; k < K; ++k) u[k] = hn::Add(a[k], u[k]);
  }
  template <bool kFull, class D, class V>
  static HWY_INLINE LogArgument<V> Argument(D d, V a) {
    using T = hn::TFromD<D>;
    const V one = hn::Set(d, T(1));
    const auto large = hn::Gt(a, hn::Set(d, kLargeArgument<T>));
    const V y = Selected(hn::IfThenElse(large, one, a));
    const Pair<V> square = TwoProduct(d, y, y);
    const Pair<V> less = FastTwoSum(square.hi, hn::Neg(one));
    const Pair<V> w = FastTwoSum(less.hi, hn::Add(less.lo, square.lo));
    const V root = hn::Sqrt(w.hi);
    const Pair<V> u = FastTwoSum(y, root);
    V rest = u.lo;
    if constexpr (kFull) {
      const V residual = hn::Add(Remainder(d, w.hi, root, root), w.lo);
      // The root of 0 has no residual; the small number keeps the quotient from being 0/0.
      rest =
          hn::Add(rest, hn::Div(residual, hn::Add(hn::Add(root, root), hn::Set(d, T(0x1p-100)))));
    }
    return OrLarge(d, large, a, u.hi, rest);
  }
};

// u = 1 + 2a/(1 - a), 0 <= a < 1.
struct AtanhSum {
  static constexpr double kFactor = 0.5;
  static constexpr bool kHasLarge = false;
  static constexpr bool kExactSum = false;
  template <bool kFull, class D, class V>
  static HWY_INLINE LogArgument<V> Argument(D d, V a) {
    using T = hn::TFromD<D>;
    const V one = hn::Set(d, T(1));
    const V twice = hn::Add(a, a);
    const V less = hn::Sub(one, a);
    const V quotient = hn::Div(twice, less);
    V residual = Remainder(d, twice, quotient, less);
    if constexpr (sizeof(hn::TFromD<D>) == 8) {
      const V less_lost = hn::Sub(hn::Sub(one, less), a);
      residual = hn::Sub(residual, hn::Mul(quotient, less_lost));
    }
    if constexpr (kFull) {
      const Pair<V> u = TwoSum(one, quotient);
      return {u.hi, hn::Add(u.lo, hn::Div(residual, less)), hn::Zero(d)};
    }
    // The residual weighs where 1 - a is close to 1. The sum's error is exact below 2^53.
    const V u = hn::Add(one, quotient);
    return {u, hn::Add(hn::Sub(quotient, hn::Sub(u, one)), residual), hn::Zero(d)};
  }
};

// EP in double precision. Common arguments are those from kLeastEP (asinh) or 1 on (acosh) below
// kLargeEP, where nothing overflows and the plain sum has the bits; kWide takes all others that are
// not rare, with large ones as ln(2a) and tiny ones as themselves.
inline constexpr double kLeastEP = 0x1p-22, kLargeEP = 0x1p496;

template <class F, bool kWide, class D, class V, size_t K>
HWY_INLINE void InverseEP(D d, const V (&a)[K], V (&r)[K]) {
  V u[K], t[K], head[K];
  LogShort<D, true> v[K];
  if constexpr (kWide) {
    V y[K];
    for (size_t k = 0; k < K; ++k) {
      y[k] = hn::IfThenElse(hn::Ge(a[k], hn::Set(d, kLargeEP)), hn::Set(d, 1.0), a[k]);
    }
    F::Sums(d, y, u);
    for (size_t k = 0; k < K; ++k) {
      const auto large = hn::Ge(a[k], hn::Set(d, kLargeEP));
      u[k] = hn::IfThenElse(large, hn::Mul(a[k], hn::Set(d, 0.25)), u[k]);
    }
  } else {
    F::Sums(d, a, u);
  }
  LogShortReduce<NaturalLog::Factors>(d, u, v);
  for (size_t k = 0; k < K; ++k) {
    t[k] = ShortProductLessOne(d, v[k].m, v[k].c);
    if constexpr (kWide) {
      const auto large = hn::Ge(a[k], hn::Set(d, kLargeEP));
      v[k].e = hn::Add(v[k].e, hn::IfThenElseZero(large, hn::Set(d, 3.0)));
    }
  }
  LogHead<NaturalLog>(d, v, head);
  LogPlainSum(d, head, t, kLnEP, r);
}

// LA and HA: the logarithm of u = a + r, r the root of w = a^2 + 1 or a^2 - 1. What the rounded
// numbers leave of these is worth (rest(u) + rest(w)/(2r))/u, and 1/u = |r - a|, of which below
// 2^26 enough is left. From there on asinh(a) and acosh(a) are ln(2a) to 2^-54.
inline constexpr double kLargeFull = 0x1p26;

template <bool kFullTier, bool kWide>
struct RootSum {
  static constexpr bool kFull = kFullTier, kRest = false, kShift = kWide;
  template <class D, class V>
  static HWY_INLINE FullLogArgument<V> OrLarge(D d, MaskOf<D> large, V a, V u, V extra) {
    if constexpr (!kWide) return {u, extra, extra, extra};
    // ln(a/4) + 3 ln(2): a/4 leaves room for the reduction's exponents.
    const V shift = hn::IfThenElseZero(large, hn::Set(d, 3 / kExponentUnit));
    const V quarter = hn::Mul(Selected(hn::IfThenElseZero(large, a)), hn::Set(d, 0.25));
    return {hn::IfThenElse(large, quarter, u), hn::IfThenZeroElse(large, extra), shift, shift};
  }
  template <class D, class V>
  static HWY_INLINE V Counting(D, const FullLogArgument<V>&, V argument) {
    return argument;
  }
};

// kWide takes large arguments too, and tiny ones, which are their own results.
template <bool kFull, bool kWide>
struct AsinhRootSum : RootSum<kFull, kWide> {
  static constexpr double kTiny = 0x1p-28;
  template <class D, class V>
  static HWY_INLINE FullLogArgument<V> Find(D d, V x) {
    const V one = hn::Set(d, 1.0), a = hn::Abs(x);
    const auto large = hn::Gt(a, hn::Set(d, kLargeFull));
    V y = a;
    if constexpr (kWide) {
      y = Selected(hn::IfThenZeroElse(hn::Or(large, MagnitudeBelow(d, x, kTiny)), a));
    }
    Pair<V> square = {hn::Mul(y, y), one};
    if constexpr (kFull) square = TwoProduct(d, y, y);
    const Pair<V> w = FastTwoSum(one, square.hi);  // w - 1 is exact below 2^53
    const V root = hn::Sqrt(w.hi);
    const V lost = kFull ? hn::Add(w.lo, square.lo) : w.lo;
    const V residual = hn::Add(Remainder(d, w.hi, root, root), lost);
    const Pair<V> u = FastTwoSum(root, y);
    // r = (u + 1/u)/2, and for i = 1/u 1/(2r) = i/(1 + i^2): next to 1 to the second order, and
    // else in HA to 3 % for i > 1/3, below which it counts for little.
    const V i = hn::Sub(root, y);
    V half_inverse = hn::Min(i, hn::Set(d, 0.5));
    if constexpr (kFull) {
      const V slope = hn::Sub(hn::Set(d, 0.9), hn::Mul(i, hn::Set(d, 0.2)));
      half_inverse = hn::Mul(i, hn::Sub(hn::Set(d, 1.2), hn::Mul(i, slope)));
    }
    const V rest = hn::Add(u.lo, hn::Mul(residual, half_inverse));
    return RootSum<kFull, kWide>::OrLarge(d, large, a, u.hi, hn::Mul(rest, i));
  }
  template <class D, class V>
  static HWY_INLINE V Result(D d, V r, V x) {
    return kWide ? SignedUnlessTiny(d, x, r, kTiny) : hn::CopySignToAbs(r, x);
  }
};

// 1/(2r): by a straight line through the bits, within 6 %, or another one, within 2 % of what a
// step takes to 2^-11.
template <bool kFull, class D, class V>
HWY_INLINE V HalfInverse(D d, V r) {
  const auto line = SetBits(d, kFull ? 0x7FD6009E00000000 : 0x7FCE624000000000);
  const V y = FromBits(d, hn::Sub(line, Bits(d, r)));
  if constexpr (!kFull) return y;
  return hn::Mul(y, hn::Sub(hn::Set(d, 1.4145), hn::Mul(r, y)));
}

template <bool kFull, bool kWide>
struct AcoshRootSum : RootSum<kFull, kWide> {
  template <class D, class V>
  static HWY_INLINE FullLogArgument<V> Find(D d, V a) {
    const V one = hn::Set(d, 1.0);
    const auto large = hn::Gt(a, hn::Set(d, kLargeFull));
    const V y = kWide ? Selected(hn::IfThenElse(large, one, a)) : a;
    const V less = hn::Sub(y, one);  // exact
    // What the root lacks counts in LA too: up to 1.5 ulp of a result next to 2^-5.
    Pair<V> w = {hn::Add(hn::Mul(less, less), hn::Add(less, less)), one};
    if constexpr (kFull) {
      const Pair<V> more = FastTwoSum(y, one);
      w = TwoProduct(d, less, more.hi);
      w.lo = hn::Add(w.lo, hn::Mul(less, more.lo));
    }
    const V root = hn::Sqrt(w.hi);
    V residual = Remainder(d, w.hi, root, root);
    if constexpr (kFull) residual = hn::Add(residual, w.lo);
    const Pair<V> u = FastTwoSum(y, root);
    const V rest = hn::Add(u.lo, hn::Mul(residual, HalfInverse<kFull>(d, root)));
    return RootSum<kFull, kWide>::OrLarge(d, large, a, u.hi, hn::Mul(rest, hn::Sub(y, root)));
  }
  template <class D, class V>
  static HWY_INLINE V Result(D, V r, V) {
    return r;
  }
};

// HA: half the logarithm of u = 1 + q, q = 2a/(1 - a) rounded. What q lacks is to 1 + q as its
// residual to 1 + a. Where u is 1, q is the result's double, and its products would underflow.
struct AtanhQuotient {
  static constexpr bool kFull = true, kRest = true, kShift = false;
  template <class D, class V>
  static HWY_INLINE FullLogArgument<V> Find(D d, V x) {
    const V one = hn::Set(d, 1.0), a = hn::Abs(x);
    const V twice = hn::Add(a, a), less = hn::Sub(one, a);
    const V q = hn::Div(twice, less);
    const V u = hn::Add(q, one);
    const V less_lost =
        Selected(hn::IfThenElseZero(hn::Ne(u, one), hn::Sub(hn::Sub(one, less), a)));
    const V residual = hn::Sub(Remainder(d, twice, q, less), hn::Mul(q, less_lost));
    // 1/(1 + a) = 1/(2 - less), exact for less = 1 and else within 5 %.
    const V slope = hn::Add(hn::Mul(less, hn::Set(d, 0.34)), hn::Set(d, 0.18));
    const V inverse = hn::Add(hn::Mul(less, slope), hn::Set(d, 0.48));
    return {u, hn::Mul(residual, inverse), q, hn::Sub(q, hn::Sub(u, one))};
  }
  template <class D, class V>
  static HWY_INLINE V Counting(D d, const FullLogArgument<V>& of, V argument) {
    return Selected(hn::IfThenElseZero(hn::Ne(of.u, hn::Set(d, 1.0)), argument));
  }
  template <class D, class V>
  static HWY_INLINE V Result(D d, V r, V x) {
    return hn::CopySignToAbs(hn::Mul(r, hn::Set(d, 0.5)), x);
  }
};

// The kernels' groups, a part at a time.
template <class F, class Common>
struct InverseFull : Common {
  static constexpr int kUnroll = 8;
  static constexpr int kRestUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D, const V (&x)[K], V (&r)[K]) {
    LogOfSumPart<F, D> parts[K];
    SomeInTurn<2>(parts, x, r);
  }
};

// The same in single precision. kWide takes large arguments too.
template <class F, bool kWide, class D, class V>
HWY_INLINE V InverseSingleEP(D d, V a) {
  const LogArgument<V> x = kWide ? F::Plain(d, a) : F::NotLarge(d, a);
  const auto u = sLogReduce(d, x.u);
  V t = hn::Sub(u.m, hn::Set(d, 1.0f));
  if constexpr (std::is_same_v<F, AcoshSum>) {
    t = hn::IfThenElse(hn::RebindMask(d, hn::Eq(u.exponent_bits, SetBits(d, 0))), x.rest, t);
  }
  V scaled = u.scaled;
  if constexpr (kWide) scaled = hn::Add(scaled, hn::Mul(x.shift, hn::Set(d, 0x1p23f)));
  return sLogEPSum<sNaturalLog>(d, scaled, t);
}

// asinh a and acosh a as asinh(y), close to their zeros for y = a or the root, and from 1/2 on as
//   ln u = e ln(2) + asinh(y), u = 2^e m, y = (m - 1/m)/2.
// What the sum u loses comes back in y, to within a third of it. asinh(y) = y + y^3 c(y^2). kWide
// takes large arguments too, where u = 2a: as a/2, and two more in e.
struct SingleAsinh {
  static constexpr float kZero = 0;
  static constexpr float kFirst = 0x1.0acd00p-1f;  // sinh(1/2)
  template <class D, class V>
  static HWY_INLINE V Root(D d, V a) {
    return hn::Sqrt(hn::Add(hn::Mul(a, a), hn::Set(d, 1.0f)));
  }
  template <class V>
  static HWY_INLINE Pair<V> Sum(V a, V root) {
    return FastTwoSum(root, a);
  }
  template <class V>
  static HWY_INLINE V NearZero(V a, V) {
    return a;
  }
};

struct SingleAcosh {
  static constexpr float kZero = 1;
  static constexpr float kFirst = 0x1.20ac18p+0f;  // cosh(1/2)
  template <class D, class V>
  static HWY_INLINE V Root(D d, V a) {
    const V less = hn::Sub(a, hn::Set(d, 1.0f));
    return hn::Sqrt(hn::Add(hn::Mul(less, less), hn::Add(less, less)));
  }
  template <class V>
  static HWY_INLINE Pair<V> Sum(V a, V root) {
    return FastTwoSum(a, root);
  }
  template <class V>
  static HWY_INLINE V NearZero(V, V root) {
    return root;
  }
};

template <class F, bool kWide, class D, class V, size_t K>
HWY_INLINE void InverseSingleLA(D d, const V (&a)[K], V (&r)[K]) {
  V y[K], y2[K], p[K], scaled[K];
  for (size_t k = 0; k < K; ++k) {
    const V one = hn::Set(d, 1.0f);
    const auto far = hn::RebindMask(d, hn::Gt(Bits(d, a[k]), SetBits(d, BitsOfNumber(F::kFirst))));
    V x = a[k];
    MaskOf<D> large;
    if constexpr (kWide) {
      large =
          hn::RebindMask(d, hn::Gt(Bits(d, x), SetBits(d, BitsOfNumber(kLargeArgument<float>))));
      x = Selected(hn::IfThenElse(large, hn::Set(d, F::kZero), x));
    }
    const V root = F::Root(d, x);
    const Pair<V> sum = F::Sum(x, root);
    V u = hn::IfThenElse(far, sum.hi, one);
    if constexpr (kWide) u = hn::IfThenElse(large, hn::Mul(a[k], hn::Set(d, 0.5f)), u);
    const auto reduced = sLogReduce(d, u);
    const V scale = FromBits(d, hn::Sub(Bits(d, one), reduced.exponent_bits));  // 2^-e
    const V twice = hn::Sub(reduced.m, hn::Div(one, reduced.m));
    const V sinh = hn::Add(hn::Mul(twice, hn::Set(d, 0.5f)), hn::Mul(scale, sum.lo));
    y[k] = hn::IfThenElse(far, sinh, F::NearZero(x, root));
    scaled[k] = reduced.scaled;
    if constexpr (kWide) {
      scaled[k] = hn::Add(scaled[k], hn::IfThenElseZero(large, hn::Set(d, 0x1p24f)));
    }
  }
  for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(y[k], y[k]);
  Horner(d, y2, sAsinhPolynomial, p);
  for (size_t k = 0; k < K; ++k) {
    const V rest = hn::Mul(y[k], hn::Mul(y2[k], p[k]));
    const V head = hn::Mul(scaled[k], hn::Set(d, 0x1.62e430p-24f));
    r[k] = hn::Add(head, hn::Add(y[k], rest));
  }
}

// floor(log2) of positive normal numbers, given by their bits.
template <class D>
HWY_INLINE VecOf<D> ExponentOf(D d, BitsOf<D> bits) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    return VecOf<D>{_mm512_getexp_pd(FromBits(d, bits).raw)};
  } else {
    return VecOf<D>{_mm512_getexp_ps(FromBits(d, bits).raw)};
  }
#else
  const hn::RebindToUnsigned<D> du;
  constexpr bool kDouble = sizeof(hn::TFromD<D>) == 8;
  constexpr int kFraction = kDouble ? 52 : 23;
  const auto field = hn::ShiftRight<kFraction>(hn::BitCast(du, bits));
  // The field at the end of a number's significand.
  const auto number =
      hn::Or(field, hn::BitCast(du, SetBits(d, kDouble ? 0x4330000000000000 : 0x4B000000)));
  return hn::Sub(hn::BitCast(d, number), hn::Set(d, kDouble ? 0x1p52 + 1023 : 0x1p23f + 127));
#endif
}

// atanh(a) = e ln(2)/2 + atanh(s), 0 <= a < 1: 2^e stands next to (1 + a)/(1 - a), and with
// q = (2^e - 1) (1 - a)/2
//   s = (a - q)/(1 + q).
// For e = 0 that is s = a exactly, so small arguments are no case of their own. e = 1 begins at
// `first`: the later, the less the roundings of s weigh in the sum, and the larger s becomes.
template <class D>
struct AtanhReduced {
  VecOf<D> s, e;
};

template <class D, class V>
HWY_INLINE AtanhReduced<D> AtanhReduce(D d, V a, hn::TFromD<D> first) {
  using T = hn::TFromD<D>;
  constexpr auto kUnit = BitsOfNumber(T(2)) - BitsOfNumber(T(1));
  const auto mask = SetBits(d, static_cast<uint64_t>(-kUnit));
  const V one = hn::Set(d, T(1));
  const V u = hn::Add(one, a), v = hn::Sub(one, a);
  // The difference of the bits is the logarithm of the quotient in units of kUnit, roughly.
  const auto start = BitsOfNumber(T(2)) - (BitsOfNumber(1 + first) - BitsOfNumber(1 - first));
  const auto above = hn::Add(hn::Sub(Bits(d, u), Bits(d, v)), SetBits(d, start));
  const auto power = hn::And(above, mask);  // the bits of 2^e
  const V half_power = FromBits(d, hn::Sub(power, SetBits(d, kUnit)));
  const V q = hn::Mul(hn::Sub(half_power, hn::Set(d, T(0.5))), v);
  return {hn::Div(hn::Sub(a, q), hn::Add(one, q)), ExponentOf(d, above)};
}

// The sum, atanh(s) = s + s^3 c(s^2). The square of tiny numbers, which would underflow, counts as
// 0.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void AtanhByHalves(D d, const V (&x)[K], hn::TFromD<D> first,
                              const hn::TFromD<D> (&c)[N], V (&r)[K]) {
  using T = hn::TFromD<D>;
  AtanhReduced<D> u[K];
  V a[K], s2[K], p[K];
  for (size_t k = 0; k < K; ++k) a[k] = hn::Abs(x[k]);
  for (size_t k = 0; k < K; ++k) u[k] = AtanhReduce(d, a[k], first);
  for (size_t k = 0; k < K; ++k) {
    const auto tiny = BitsOfNumber(sizeof(T) == 8 ? T(0x1p-28) : T(0x1p-13));
    const auto counts = hn::RebindMask(d, hn::Gt(Bits(d, a[k]), SetBits(d, tiny)));
    const V w = Selected(hn::IfThenElseZero(counts, u[k].s));
    s2[k] = hn::Mul(w, w);
  }
  Horner(d, s2, c, p);
  for (size_t k = 0; k < K; ++k) {
    const V rest = hn::Mul(u[k].s, hn::Mul(s2[k], p[k]));
    const V head = hn::Mul(u[k].e, hn::Set(d, T(0x1.62e42fefa39efp-2)));
    r[k] = hn::CopySignToAbs(hn::Add(head, hn::Add(u[k].s, rest)), x[k]);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_
