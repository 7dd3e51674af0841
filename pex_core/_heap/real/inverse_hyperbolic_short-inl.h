// asinh and acosh in single precision by floats: ln(a + sqrt(a^2 + 1)) and ln(a + sqrt(a^2 - 1)) as
// sums of two floats.

#include "hwy/highway.h"
#include "pex_core/_heap/real/slog_short-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_SHORT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_SHORT_INL_H_
#undef PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_SHORT_INL_H_
#else
#define PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_SHORT_INL_H_
#endif

#if HWY_TARGET != HWY_SSE4

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// 1 + a^2 or a^2 - 1 for a not so large that the 1 is of no concern.
template <bool kMinus, class D, class V>
HWY_INLINE Pair<V> SquareAndOne(D d, V a) {
  const V one = hn::Set(d, 1.0f);
  const V square = hn::Mul(a, a), square_rest = HiddenMulSub(a, a, square);
  if constexpr (kMinus) {
    const V less = hn::Sub(square, one);
    return FastTwoSum(less, hn::Add(hn::Sub(hn::Sub(square, less), one), square_rest));
  } else {
    const V sum = hn::Add(square, one);
    const V rest = hn::Sub(hn::Min(square, one), hn::Sub(sum, hn::Max(square, one)));
    return {sum, hn::Add(rest, square_rest)};
  }
}

// ln(a + sqrt(a^2 + 1)), or that of a^2 - 1. From 2^30 on it is ln(2a), made of a/8, which leaves
// room for the reduction's exponents.
template <bool kMinus, class D, class V>
HWY_INLINE sLogShort<V> sLnOfRootShort(D d, V a) {
  constexpr float kLarge = 0x1p30f;
  const auto large = hn::Gt(a, hn::Set(d, kLarge));
  const V y = hn::Min(a, hn::Set(d, kLarge));
  const Pair<V> square = SquareAndOne<kMinus>(d, y);
  const V root = hn::Sqrt(square.hi);
  // The root of 0 has no remainder.
  const V divisor = kMinus ? hn::Max(root, hn::Set(d, 0x1p-60f)) : root;
  const V half_inverse = hn::Div(hn::Set(d, 0.5f), divisor);
  const V remainder = hn::Add(HiddenNegMulAdd(root, root, square.hi), square.lo);
  const Pair<V> sum = kMinus ? FastTwoSum(y, root) : FastTwoSum(root, y);
  const V t = HiddenMulAdd(remainder, half_inverse, sum.lo);
  const V shift = hn::IfThenElseZero(large, hn::Set(d, 4 * 0x1p23f));
  return sLnOfSumShort(d, hn::IfThenElse(large, hn::Mul(a, hn::Set(d, 0.125f)), sum.hi),
                       hn::IfThenZeroElse(large, t), shift);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET != HWY_SSE4

#endif  // PEX_CORE__HEAP_REAL_INVERSE_HYPERBOLIC_SHORT_INL_H_
