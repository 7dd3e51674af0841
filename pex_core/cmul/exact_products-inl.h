// Sums of two products of doubles in which cancellation loses nothing.

#include "pex_core/_kernel/complex-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE_CMUL_EXACT_PRODUCTS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_CMUL_EXACT_PRODUCTS_INL_H_
#undef PEX_CORE_CMUL_EXACT_PRODUCTS_INL_H_
#else
#define PEX_CORE_CMUL_EXACT_PRODUCTS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// hi - less.
template <class V>
struct Reduced {
  V hi, less;
};

// a b + c rounded once, for c that the rounded product differs from -c by a number; +0 for 0.
template <class D, class V>
HWY_INLINE V ProductAnd(D d, V a, V b, V c) {
#if HWY_TARGET == HWY_SSE4
  const Pair<V> product = TwoProduct(d, a, b);
  return hn::Add(hn::Add(product.hi, c), product.lo);
#else
  (void)d;
  return hn::MulAdd(a, b, c);
#endif
}

// a - b as a fused operation where there is one: the product with 1 is exact, so that the result is
// the same, and it comes from the multipliers, while the adders have more to do.
template <class D, class V>
HWY_INLINE V MultiplierSub(D d, V a, V b) {
#if HWY_TARGET == HWY_SSE4
  (void)d;
  return hn::Sub(a, b);
#else
  return ExactProductLess(a, hn::Set(d, 1.0), b);
#endif
}

// a b + u v, or a b - u v, with a relative error below 2^-100, whatever cancels. s, the sum of the
// rounded products, is itself the sum of two numbers, and they differ from those products by
// numbers (Knuth's sum): one fused operation each gives what they exceed the exact products by.
// Where the products cancel, s is exact, and so is s less the one excess when that matters. Nothing
// in excess is +0, so that sums of zeros keep their sign. After cancellation |less| may be as large
// as |hi|.
template <bool kMinus, class D, class V>
HWY_INLINE Reduced<V> SumOfProducts(D d, V a, V b, V u, V v) {
  const V p = hn::Mul(a, b), q = hn::Mul(u, v);
  const V s = kMinus ? hn::Sub(p, q) : hn::Add(p, q);
  const V t = hn::Sub(s, p);
  const V p_excess = Remainder(d, hn::Sub(s, t), a, b);
  const V q_excess = kMinus ? ProductAnd(d, u, v, t) : Remainder(d, t, u, v);
  const V hi = hn::Sub(s, p_excess);
  const V hi_excess = hn::Add(MultiplierSub(d, hi, s), p_excess);
  return {hi, hn::Add(hi_excess, q_excess)};
}

template <class V>
struct ProductParts {
  Reduced<V> re, im;
};

// a b, or a conj(b).
template <bool kConjugate, class D, class V>
HWY_INLINE ProductParts<V> ExactProduct(D d, Complex<V> a, Complex<V> b) {
  if constexpr (kConjugate) {
    return {SumOfProducts<false>(d, a.re, b.re, a.im, b.im),
            SumOfProducts<true>(d, a.im, b.re, a.re, b.im)};
  } else {
    return {SumOfProducts<true>(d, a.re, b.re, a.im, b.im),
            SumOfProducts<false>(d, a.re, b.im, a.im, b.re)};
  }
}

// |x|^2 likewise, with a relative error below 2^-104.
template <class D, class V>
HWY_INLINE Pair<V> SumOfSquares(D d, Complex<V> x) {
  const V p = hn::Mul(x.re, x.re), s = hn::Add(p, hn::Mul(x.im, x.im));
  const V t = hn::Sub(s, p);
  return {s, hn::Add(ProductLess(d, x.re, x.re, hn::Sub(s, t)), ProductLess(d, x.im, x.im, t))};
}

template <class D, class V>
HWY_INLINE MaskOf<D> IsZero(D d, Complex<V> x) {
  const auto bits = hn::Or(Bits(d, hn::Abs(x.re)), Bits(d, hn::Abs(x.im)));
  return hn::RebindMask(d, hn::Eq(bits, SetBits(d, 0)));
}

// Rare lanes of numbers whose parts shall be 0 or have high words from kLow to kHigh. The cheap
// test takes the 2^kLog2 exponents around 2^0: less the first of them, they have only the lowest
// kLog2 bits, whatever the sign.
template <int32_t kLow, int32_t kHigh, int kLog2 = 9>
struct PartsOutside {
  static constexpr int kFirst = 1023 - (1 << (kLog2 - 1));
  static_assert(kLow <= kFirst << 20 && kHigh >= ((kFirst + (1 << kLog2)) << 20) - 1);
  // Whether any of several numbers may be, from the high words of their parts.
  template <class D, size_t K, class... X>
  static HWY_INLINE bool AnyOfGroup(D d, const X (&... x)[K]) {
    const hn::Repartition<int32_t, D> d32;
    const auto first = hn::Set(d32, kFirst << 20);
    const auto upper = hn::Set(d32, static_cast<int32_t>((~uint32_t{0} << (21 + kLog2)) >> 1));
    auto joined = hn::Zero(d32);
    const auto shifted = [&](const auto& number) HWY_ATTR {
      return hn::Sub(hn::BitCast(d32, HighWords(d, number.re, number.im)), first);
    };
    for (size_t k = 0; k < K; ++k) ((joined = hn::Or(joined, shifted(x[k]))), ...);
    return HasAnyBit(joined, upper);
  }
  template <class D, class V, class... W>
  static HWY_INLINE MaskOf<D> Any(D d, V x, W... rest) {
    using Range = RareOutside<double, kLow, kHigh>;
    const auto key = [d](V v) HWY_ATTR {
      const V one_for_zero = hn::IfThenElse(hn::Eq(v, hn::Zero(d)), hn::Set(d, 1.0), v);
      return Range::Key(d, hn::Abs(one_for_zero));
    };
    auto joined = key(x);
    ((joined = JoinKeys(d, joined, key(rest))), ...);
    return LanesAbove(d, joined, Range::kLimit);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CMUL_EXACT_PRODUCTS_INL_H_
