// The inverse hyperbolic functions as logarithms: u + rest with asinh(a) = ln(u + rest), a >= 0,
// and so on; in double precision for one tier each and for single precision.

#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/log_of_sum-inl.h"

#if defined(PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_
#undef PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_
#else
#define PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_
#endif
HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// From here on asinh(a) and acosh(a) are ln(2a) to 2^-62 of themselves.
template <typename T>
inline constexpr T kLargeArgument = sizeof(T) == 8 ? T(0x1p28) : T(0x1p13);

// ln(2a) where a is large, as ln(a/4) + 3 ln(2): a/4 leaves room for the reduction's exponents. The
// rest must be 0 there.
template <class D, class V, class M>
HWY_INLINE LogArgument<V> OrLarge(D d, M large, V a, V u, V rest) {
  using T = hn::TFromD<D>;
  return {hn::IfThenElse(large, hn::Mul(a, hn::Set(d, T(0.25))), u), rest,
          hn::IfThenElseZero(large, hn::Set(d, T(3)))};
}

// u = a + sqrt(1 + a^2), a >= 0. The root's rounding error belongs to the rest: for small a it is
// most of what u - 1 lacks.
struct AsinhSum {
  static constexpr double kFactor = 1;
  static constexpr bool kHasLarge = true;
  static constexpr bool kExactSum = false;
  template <class D, class V>
  static HWY_INLINE LogArgument<V> Plain(D d, V a) {
    using T = hn::TFromD<D>;
    const V one = hn::Set(d, T(1));
    const auto large = hn::Gt(a, hn::Set(d, kLargeArgument<T>));
    const V y = hn::IfThenZeroElse(large, a);
    const V root = hn::Sqrt(hn::Add(hn::Mul(y, y), one));
    return OrLarge(d, large, a, hn::Add(y, root), hn::Zero(d));
  }
  template <bool kFull, class D, class V>
  static HWY_INLINE LogArgument<V> Argument(D d, V a) {
    using T = hn::TFromD<D>;
    const V one = hn::Set(d, T(1));
    const auto large = hn::Gt(a, hn::Set(d, kLargeArgument<T>));
    const V y = hn::IfThenZeroElse(large, a);
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
    return OrLarge(d, large, a, u.hi, hn::Add(u.lo, residual));
  }
};

// u = a + sqrt(a^2 - 1), a >= 1. Plain's rest is u - 1.
struct AcoshSum {
  static constexpr double kFactor = 1;
  static constexpr bool kHasLarge = true;
  static constexpr bool kExactSum = true;
  template <class D, class V>
  static HWY_INLINE LogArgument<V> Plain(D d, V a) {
    using T = hn::TFromD<D>;
    const V one = hn::Set(d, T(1));
    const auto large = hn::Gt(a, hn::Set(d, kLargeArgument<T>));
    const V y = hn::IfThenElse(large, one, a);
    const V less = hn::Sub(y, one);
    const V root = hn::Sqrt(hn::Mul(less, hn::Add(y, one)));
    return OrLarge(d, large, a, hn::Add(y, root), hn::Add(less, root));
  }
  template <bool kFull, class D, class V>
  static HWY_INLINE LogArgument<V> Argument(D d, V a) {
    using T = hn::TFromD<D>;
    const V one = hn::Set(d, T(1));
    const auto large = hn::Gt(a, hn::Set(d, kLargeArgument<T>));
    const V y = hn::IfThenElse(large, one, a);
    const Pair<V> square = TwoProduct(d, y, y);
    const Pair<V> less = FastTwoSum(square.hi, hn::Neg(one));
    const Pair<V> w = FastTwoSum(less.hi, hn::Add(less.lo, square.lo));
    const V root = hn::Sqrt(w.hi);
    const Pair<V> u = FastTwoSum(y, root);
    V rest = u.lo;
    if constexpr (kFull || sizeof(T) == 4) {
      const V residual = hn::Add(Remainder(d, w.hi, root, root), w.lo);
      if constexpr (kFull) {
        // The root of 0 has no residual; the small number keeps the quotient from being 0/0.
        rest =
            hn::Add(rest, hn::Div(residual, hn::Add(hn::Add(root, root), hn::Set(d, T(0x1p-100)))));
      } else {
        // 1/(2 root) to within an eighth, by the bits.
        const V half_inverse = FromBits(d, hn::Sub(SetBits(d, 0x7E7311C3), Bits(d, root)));
        rest = hn::Add(rest, hn::Mul(residual, half_inverse));
      }
    }
    return OrLarge(d, large, a, u.hi, rest);
  }
};

// u = 1 + 2a/(1 - a), 0 <= a < 1.
struct AtanhSum {
  static constexpr double kFactor = 0.5;
  static constexpr bool kHasLarge = false;
  static constexpr bool kExactSum = false;
  template <class D, class V>
  static HWY_INLINE LogArgument<V> Plain(D d, V a) {
    const V one = hn::Set(d, static_cast<hn::TFromD<D>>(1));
    return {hn::Div(hn::Add(one, a), hn::Sub(one, a)), hn::Zero(d), hn::Zero(d)};
  }
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

// |x|, 0 for tiny x, and the result of F for those other arguments with the sign of x put back; a
// tiny x is its own result.
template <class D, class V>
HWY_INLINE V MagnitudeUnlessTiny(D d, V x, hn::TFromD<D> tiny) {
  return hn::IfThenZeroElse(MagnitudeBelow(d, x, tiny), hn::Abs(x));
}
template <class D, class V>
HWY_INLINE V SignedUnlessTiny(D d, V x, V magnitude, hn::TFromD<D> tiny) {
  return hn::IfThenElse(MagnitudeBelow(d, x, tiny), x, hn::CopySignToAbs(magnitude, x));
}

// The tiers in double precision. EP's sums of positive numbers need no rest.
template <class F, class D, class V, size_t K>
HWY_INLINE void InverseEP(D d, const V (&a)[K], V (&r)[K]) {
  V u[K], shift[K], p[K];
  LogReduced<D> v[K];
  for (size_t k = 0; k < K; ++k) {
    const LogArgument<V> x = F::Plain(d, a[k]);
    u[k] = x.u;
    shift[k] = x.shift;
  }
  LogReduce<NaturalLog>(d, u, v);
  for (size_t k = 0; k < K; ++k) {
    p[k] = hn::Mul(hn::Sub(v[k].m, v[k].row.a), v[k].row.factor);
    if constexpr (F::kHasLarge) v[k].e = hn::Add(v[k].e, shift[k]);
  }
  LogPlain<NaturalLog>(d, v, p, kLnEP, r);
  for (size_t k = 0; k < K && F::kFactor != 1; ++k) r[k] = hn::Mul(r[k], hn::Set(d, F::kFactor));
}

template <class F, class D, class V, size_t K>
HWY_INLINE void InverseLA(D d, const V (&a)[K], V (&r)[K]) {
  LogArgument<V> argument[K];
  for (size_t k = 0; k < K; ++k) argument[k] = F::template Argument<false>(d, a[k]);
  LogOfSumLA<F::kHasLarge, F::kExactSum>(d, argument, r);
  for (size_t k = 0; k < K && F::kFactor != 1; ++k) {
    r[k] = hn::Mul(r[k], hn::Set(d, F::kFactor));
  }
}

template <class F, class D, class V, size_t K>
HWY_INLINE void InverseHA(D d, const V (&a)[K], V (&r)[K]) {
  LogArgument<V> argument[K];
  Pair<V> sum[K];
  for (size_t k = 0; k < K; ++k) argument[k] = F::template Argument<true>(d, a[k]);
  LogOfSumPair(d, argument, sum);
  for (size_t k = 0; k < K; ++k) {
    r[k] = hn::Mul(hn::Add(sum[k].hi, sum[k].lo), hn::Set(d, F::kFactor));
  }
}

// The same in single precision.
template <class F, class D, class V>
HWY_INLINE V InverseSingleEP(D d, V a) {
  const LogArgument<V> x = F::Plain(d, a);
  const auto u = sLogReduce(d, x.u);
  V t = hn::Sub(u.m, hn::Set(d, 1.0f));
  if constexpr (std::is_same_v<F, AcoshSum>) {
    t = hn::IfThenElse(hn::RebindMask(d, hn::Eq(u.exponent_bits, SetBits(d, 0))), x.rest, t);
  }
  V scaled = u.scaled;
  if constexpr (F::kHasLarge) scaled = hn::Add(scaled, hn::Mul(x.shift, hn::Set(d, 0x1p23f)));
  const V r = sLogEPSum<sNaturalLog>(d, scaled, t);
  return F::kFactor == 1 ? r : hn::Mul(r, hn::Set(d, static_cast<float>(F::kFactor)));
}

template <class F, class D, class V>
HWY_INLINE V InverseSingleLA(D d, V a) {
  const LogArgument<V> x = F::template Argument<false>(d, a);
  auto u = sLogReduce(d, x.u);
  const auto point = sLogNextPoint(d, u.m);
  const V scale = FromBits(d, hn::Sub(Bits(d, hn::Set(d, 1.0f)), u.exponent_bits));  // 2^-e
  const Pair<V> t = FastTwoSum(hn::Sub(u.m, point.a), hn::Mul(scale, x.rest));
  if constexpr (F::kHasLarge) {
    u.scaled = hn::Add(u.scaled, hn::Mul(x.shift, hn::Set(d, 0x1p23f)));
  }
  const V r = sLogLASum<sNaturalLog>(d, u.scaled, t.hi, t.lo, point.row);
  return F::kFactor == 1 ? r : hn::Mul(r, hn::Set(d, static_cast<float>(F::kFactor)));
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_INL_H_
