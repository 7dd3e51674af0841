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

// hi - less, where |less| is at most half an ulp of hi.
template <class V>
struct Reduced {
  V hi, less;
};

// a b as hi - less exactly; less is +0 where hi is exact.
template <class D, class V>
HWY_INLINE Reduced<V> LessProduct(D d, V a, V b) {
#if HWY_TARGET == HWY_SSE4
  const Pair<V> p = TwoProduct(d, a, b);
  return {p.hi, hn::Sub(hn::Zero(d), p.lo)};
#else
  (void)d;
  const V hi = hn::Mul(a, b);
  return {hi, hn::NegMulAdd(a, b, hi)};
#endif
}

// p + q with a relative error below 2^-100, whatever cancels: where the leading parts do, their sum
// is exact, and so is the sum of that and p.less when the latter matters. Corrections are
// subtracted, as +0 where there is nothing to correct, so that sums of zeros keep their sign.
template <class V>
HWY_INLINE Reduced<V> SumOfProducts(Reduced<V> p, Reduced<V> q) {
  const V s = hn::Add(p.hi, q.hi);
  const V t = hn::Sub(s, p.hi);
  const V less = hn::Add(hn::Sub(hn::Sub(s, t), p.hi), hn::Sub(t, q.hi));
  const V hi = hn::Sub(s, p.less);
  const V hi_less = hn::Add(hn::Sub(hi, s), p.less);
  return {hi, hn::Add(hn::Add(hi_less, q.less), less)};
}

template <class V>
struct ProductParts {
  Reduced<V> re, im;
};

// a b, or a conj(b).
template <bool kConjugate, class D, class V>
HWY_INLINE ProductParts<V> ExactProduct(D d, Complex<V> a, Complex<V> b) {
  const V other = hn::Neg(kConjugate ? a.re : a.im);
  if constexpr (kConjugate) {
    return {SumOfProducts(LessProduct(d, a.re, b.re), LessProduct(d, a.im, b.im)),
            SumOfProducts(LessProduct(d, a.im, b.re), LessProduct(d, other, b.im))};
  } else {
    return {SumOfProducts(LessProduct(d, a.re, b.re), LessProduct(d, other, b.im)),
            SumOfProducts(LessProduct(d, a.re, b.im), LessProduct(d, a.im, b.re))};
  }
}

// |x|^2 with a relative error below 2^-104.
template <class D, class V>
HWY_INLINE Pair<V> SumOfSquares(D d, Complex<V> x) {
  const Pair<V> p = TwoProduct(d, x.re, x.re), q = TwoProduct(d, x.im, x.im);
  const Pair<V> s = FastTwoSum(hn::Max(p.hi, q.hi), hn::Min(p.hi, q.hi));
  return {s.hi, hn::Add(s.lo, hn::Add(p.lo, q.lo))};
}

template <class D, class V>
HWY_INLINE MaskOf<D> IsZero(D d, Complex<V> x) {
  const auto bits = hn::Or(Bits(d, hn::Abs(x.re)), Bits(d, hn::Abs(x.im)));
  return hn::RebindMask(d, hn::Eq(bits, SetBits(d, 0)));
}

// Which parts of numbers are outside a range of high words, all of them or all but zeros.
template <int32_t kLow, int32_t kHigh>
struct PartsOutside {
  using Range = RareOutside<double, kLow, kHigh>;
  template <class D, class V, class... W>
  static HWY_INLINE MaskOf<D> Any(D d, V x, W... rest) {
    return KeyAbove(d, JoinedKey(d, x, rest...), Range::kLimit);
  }
  template <class D, class V, class... W>
  static HWY_INLINE MaskOf<D> AnyButZeros(D d, V x, W... rest) {
    const auto one_for_zero = [d](V v) HWY_ATTR {
      return hn::IfThenElse(hn::Eq(v, hn::Zero(d)), hn::Set(d, 1.0), v);
    };
    return LanesAbove(d, JoinedKey(d, one_for_zero(x), one_for_zero(rest)...), Range::kLimit);
  }

 private:
  template <class D, class V, class... W>
  static HWY_INLINE BitsOf<D> JoinedKey(D d, V x, W... rest) {
    auto key = Range::Key(d, hn::Abs(x));
    ((key = JoinKeys(d, key, Range::Key(d, hn::Abs(rest)))), ...);
    return key;
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CMUL_EXACT_PRODUCTS_INL_H_
