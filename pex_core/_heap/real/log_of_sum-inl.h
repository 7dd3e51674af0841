// ln(u + rest) + shift ln(2) in double precision for 1 <= u, |rest| at most a few ulp of u: what
// the inverse hyperbolic functions come to. Near u = 1 the result keeps the relative accuracy of (u
// - 1) + rest.

#include "hwy/highway.h"
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_heap/real/slog-inl.h"

#if defined(PEX_CORE__HEAP_REAL_LOG_OF_SUM_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_LOG_OF_SUM_INL_H_
#undef PEX_CORE__HEAP_REAL_LOG_OF_SUM_INL_H_
#else
#define PEX_CORE__HEAP_REAL_LOG_OF_SUM_INL_H_
#endif
HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class V>
struct LogArgument {
  V u, rest, shift;
};

// Within 2^-57 of itself.
template <bool kShift, class D, class V, size_t K>
HWY_INLINE void LogOfSumPair(D d, const LogArgument<V> (&x)[K], Pair<V> (&r)[K]) {
  V u[K];
  LogReduced<D> v[K];
  Pair<V> p[K];
  for (size_t k = 0; k < K; ++k) u[k] = x[k].u;
  LogReduce<NaturalLog>(d, u, v);
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> t =
        TwoSum(hn::Sub(v[k].m, v[k].row.a), hn::Mul(InversePower(d, v[k]), x[k].rest));
    p[k] = TwoProduct(d, t.hi, v[k].row.factor);
    p[k].lo = hn::Add(p[k].lo, hn::Mul(t.lo, v[k].row.factor));
    if constexpr (kShift) v[k].e = hn::Add(v[k].e, x[k].shift);
  }
  LogPair<NaturalLog>(d, v, p, r);
}

// Within 1.8 ulp for the arguments of the functions here. kExact keeps the rounding error of the
// polynomial's argument.
template <bool kShift, bool kExact, class D, class V, size_t K>
HWY_INLINE void LogOfSumLA(D d, const LogArgument<V> (&x)[K], V (&r)[K]) {
  V u[K], t[K], low[K];
  LogReduced<D> v[K];
  for (size_t k = 0; k < K; ++k) u[k] = x[k].u;
  LogReduce<NaturalLog>(d, u, v);
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> sum =
        FastTwoSum(hn::Sub(v[k].m, v[k].row.a), hn::Mul(InversePower(d, v[k]), x[k].rest));
    t[k] = sum.hi;
    low[k] = sum.lo;
    if constexpr (kShift) v[k].e = hn::Add(v[k].e, x[k].shift);
  }
  LogByDivision<NaturalLog>(d, v, t, r, kExact ? low : nullptr);
}

// ln(u) + shift ln(2) + extra with one rounding that counts, for 1 <= u below 1.5 * 2^1023: the
// logarithm's sum in full. The shift is in units of kExponentUnit. F::Find(d, x) gives them,
// F::Result(d, r, x) what becomes of the sum r. Without F::kFull the roundings of p and of its sum
// with the smaller terms remain, and the table's logarithm comes last.
template <class V>
struct FullLogArgument {
  V u, extra, shift;
  V rest;  // with F::kRest, what is added to u, such that 2^-e (u + rest) - a is exact
};

template <class F, class D>
struct LogOfSumPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = 1;
  V p[1], head, less, q[1];  // head: the sum so far, or less the table's logarithm

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    const FullLogArgument<V> of = F::Find(d, x[0]);
    LogShort<D> u[1];  // -e
    LogScale<true>(d, {of.u}, u);
    const LogPoint<V> row = LogPointAt<LongNaturalLog>(d, u[0].m);
    V t = hn::Sub(u[0].m, row.a);
    if constexpr (F::kRest) {
      const auto one = SetBits(d, BitsOfNumber(1.0));
      const V inverse_power = FromBits(d, hn::Add(one, u[0].exponent_bits));
      t = ExactProductLess(of.rest, inverse_power, hn::Sub(row.a, u[0].m));
    }
    const V argument = hn::Mul(t, row.factor);
    if constexpr (F::kShift) u[0].e = hn::Sub(u[0].e, of.shift);
    const V less_head =
        ExactProductLess(u[0].e, hn::Set(d, LongNaturalLog::kLog2Hi * kExponentUnit), row.log);
    head = F::kFull ? hn::Sub(argument, less_head) : less_head;
    const V rest_of_log2 = hn::Set(d, LongNaturalLog::kLog2Rest * kExponentUnit);
    if constexpr (F::kFull) {
      const V lost = Remainder(d, hn::Add(head, less_head), t, row.factor);
      less = hn::Sub(AddExactProduct(u[0].e, rest_of_log2, lost), of.extra);
    } else {
      less = ExactProductLess(u[0].e, rest_of_log2, of.extra);
    }
    p[0] = F::Counting(d, of, argument);
    V end[1] = {less};
    EndPart(end);
    less = end[0];
  }
  HWY_INLINE void Evaluate() { LogFullPolynomial<LongNaturalLog>(D(), p, q); }
  HWY_INLINE void Result(const V* x, V* r) const {
    const D d;
    // The polynomial's first coefficient is -1/2.
    const V square = hn::Mul(p[0], p[0]);
    const V bent = SubExactProduct(square, hn::Set(d, LongNaturalLog::kPolynomial[0]), less);
    const V low = hn::Sub(bent, hn::Mul(square, hn::Mul(q[0], p[0])));
    const V y = F::kFull ? hn::Sub(head, low) : hn::Sub(hn::Sub(p[0], low), head);
    r[0] = F::Result(d, y, x[0]);
  }
};

// The function F of x correctly rounded to single precision, x given in double: by LA's sum, and in
// full where that leaves the rounding in doubt. F::template Argument<true> makes the argument of
// the full sum.
template <class F, class D, class W, class V>
HWY_NOINLINE VecOf<D> LogOfSumInFull(D d, W wide, V x) {
  const LogArgument<V> argument[1] = {F::template Argument<true>(wide, x)};
  Pair<V> sum[1];
  LogOfSumPair<F::kHasLarge>(wide, argument, sum);
  const Pair<V> r = FastTwoSum(hn::Mul(sum[0].hi, hn::Set(wide, F::kFactor)),
                               hn::Mul(sum[0].lo, hn::Set(wide, F::kFactor)));
  return RoundPair(d, wide, r.hi, r.lo);
}

template <class F, class D, class V>
HWY_INLINE VecOf<D> LogOfSumSingle(D d, V x) {
  const hn::Rebind<double, D> wide;
  const LogArgument<V> argument[1] = {F::template Argument<false>(wide, x)};
  V r[1];
  LogOfSumLA<F::kHasLarge, F::kExactSum>(wide, argument, r);
  const V y = hn::Mul(r[0], hn::Set(wide, F::kFactor));
  // In units of the double's last place the middle of two floats is at 2^28 of 2^29.
  constexpr uint64_t kDoubt = 16;
  const auto place = hn::And(hn::Add(Bits(wide, y), SetBits(wide, kDoubt - 0x10000000)),
                             SetBits(wide, 0x1FFFFFFF));
  if (!hn::AllFalse(wide, hn::RebindMask(wide, hn::Lt(place, SetBits(wide, 2 * kDoubt)))))
      [[unlikely]] {
    return LogOfSumInFull<F>(d, wide, x);
  }
  return hn::DemoteTo(d, y);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_LOG_OF_SUM_INL_H_
