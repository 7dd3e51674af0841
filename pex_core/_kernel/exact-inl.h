// Exact sums and products, and double-double arithmetic on them: the same bits with and without
// fused operations.
//
// A pair (hi, lo) stands for hi + lo with |lo| at most half an ulp of hi. The theorems hold to
// nearest, without overflow, and for products without underflow of the error term.

#include "hwy/highway.h"

#if defined(PEX_CORE__KERNEL_EXACT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__KERNEL_EXACT_INL_H_
#undef PEX_CORE__KERNEL_EXACT_INL_H_
#else
#define PEX_CORE__KERNEL_EXACT_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class V>
struct Pair {
  V hi, lo;
};

// a + b = hi + lo exactly, for |a| >= |b| or a = 0 (Dekker 1971).
template <class V>
HWY_INLINE Pair<V> FastTwoSum(V a, V b) {
  const V hi = hn::Add(a, b);
  return {hi, hn::Sub(b, hn::Sub(hi, a))};
}

// a + b = hi + lo exactly, for any order (Knuth).
template <class V>
HWY_INLINE Pair<V> TwoSum(V a, V b) {
  const V hi = hn::Add(a, b);
  const V t = hn::Sub(hi, a);
  return {hi, hn::Add(hn::Sub(a, hn::Sub(hi, t)), hn::Sub(b, t))};
}

// x = hi + lo with both halves of at most 26 bits (of a float: 12), so that products of halves are
// exact (Veltkamp). A double must stay below the largest number times 2^-28. The 24 bits of a float
// are cut in the middle.
template <class D, class V>
HWY_INLINE Pair<V> SplitHalves(D d, V x) {
  if constexpr (sizeof(hn::TFromD<D>) == 4) {
    const V hi = hn::And(x, hn::BitCast(d, hn::Set(hn::RebindToUnsigned<D>(), 0xFFFFF000u)));
    return {hi, hn::Sub(x, hi)};
  } else {
    const V c = hn::Mul(x, hn::Set(d, 134217729.0));  // 2^27 + 1
    const V hi = hn::Sub(c, hn::Sub(c, x));
    return {hi, hn::Sub(x, hi)};
  }
}

// a * b = hi + lo exactly (Dekker 1971). An error of zero is +0, as the fused form gives it.
template <class D, class V>
HWY_INLINE Pair<V> TwoProduct(D d, V a, V b) {
  const V hi = hn::Mul(a, b);
#if HWY_TARGET == HWY_SSE4
  const Pair<V> x = SplitHalves(d, a), y = SplitHalves(d, b);
  const V err1 = hn::Sub(hi, hn::Mul(x.hi, y.hi));
  const V err2 = hn::Sub(err1, hn::Mul(x.lo, y.hi));
  const V err3 = hn::Sub(err2, hn::Mul(x.hi, y.lo));
  return {hi, hn::Add(hn::Sub(hn::Mul(x.lo, y.lo), err3), hn::Zero(d))};
#else
  (void)d;
  return {hi, hn::MulSub(a, b, hi)};  // exact: the error of a product is representable
#endif
}

// a * b + c, a * b - c and c - a * b where a * b is representable: fused or not, the result is the
// same.
template <class V>
HWY_INLINE V AddExactProduct(V a, V b, V c) {
  return hn::MulAdd(a, b, c);
}
template <class V>
HWY_INLINE V ExactProductLess(V a, V b, V c) {
  return hn::MulSub(a, b, c);
}
template <class V>
HWY_INLINE V SubExactProduct(V a, V b, V c) {
  return hn::NegMulAdd(a, b, c);
}

// a * b + c, a * b - c and c - a * b, fused where the level can: for steps whose rounding no result
// shows, as it is the number next to the true value or as every argument has been tried. What says
// so stands where they are used.
template <class V>
HWY_INLINE V HiddenMulAdd(V a, V b, V c) {
  return hn::MulAdd(a, b, c);
}
template <class V>
HWY_INLINE V HiddenMulSub(V a, V b, V c) {
  return hn::MulSub(a, b, c);
}
template <class V>
HWY_INLINE V HiddenNegMulAdd(V a, V b, V c) {
  return hn::NegMulAdd(a, b, c);
}

#if HWY_TARGET == HWY_SSE4
// Floats in double precision, where their products are exact: the fused steps of floats, but that a
// sum is rounded twice. From memory a conversion takes no shuffle.
struct WideHalves {
  hn::Vec128<double> lower, upper;
};
HWY_INLINE WideHalves InHalves(hn::Vec128<float> x) {
  WideHalves wide;
  alignas(16) double memory[2];
  _mm_store_pd(memory, _mm_castps_pd(x.raw));
  asm("cvtps2pd %1, %0" : "=x"(wide.lower.raw) : "m"(memory[0]));
  asm("cvtps2pd %1, %0" : "=x"(wide.upper.raw) : "m"(memory[1]));
  return wide;
}

// f of both halves, rounded to floats.
template <class F, class... W>
HWY_INLINE hn::Vec128<float> ByHalves(F f, const W&... x) {
  return hn::Vec128<float>{
      _mm_movelh_ps(_mm_cvtpd_ps(f(x.lower...).raw), _mm_cvtpd_ps(f(x.upper...).raw))};
}
#endif

// c - a * b rounded once, where that, a * b or c less the rounded product is representable: what a
// quotient, a square root, a reduction or a rounded sum leaves.
template <class D, class V>
HWY_INLINE V Remainder(D d, V c, V a, V b) {
#if HWY_TARGET == HWY_SSE4
  const Pair<V> product = TwoProduct(d, a, b);
  return hn::Sub(hn::Sub(c, product.hi), product.lo);
#else
  (void)d;
  return hn::NegMulAdd(a, b, c);
#endif
}

// a * b - c rounded once, for c that the rounded product differs from by a number (from its half to
// its double, say); +0 for 0.
template <class D, class V>
HWY_INLINE V ProductLess(D d, V a, V b, V c) {
#if HWY_TARGET == HWY_SSE4
  const Pair<V> product = TwoProduct(d, a, b);
  return hn::Add(hn::Sub(product.hi, c), product.lo);  // the difference is exact
#else
  (void)d;
  return hn::MulSub(a, b, c);
#endif
}
template <class D, class V>
HWY_INLINE V ProductLessOne(D d, V a, V b) {
  return ProductLess(d, a, b, hn::Set(d, static_cast<hn::TFromD<D>>(1)));
}

// The bits of a number's upper half: all but 26, of a float all but 12.
template <typename TU>
inline constexpr TU kUpperBits = static_cast<TU>(TU(~TU{0}) << (sizeof(TU) == 8 ? 26 : 12));

// x * c + addend rounded once, for a c so short (26 bits, of a float 12) that its products with the
// halves of x are exact, and an addend next to the product that leaves the upper one's sum exact.
template <class D, class V>
HWY_INLINE V ShortMulAdd(D d, V x, V c, V addend) {
#if HWY_TARGET == HWY_SSE4
  using TU = hwy::MakeUnsigned<hn::TFromD<D>>;
  const V upper = hn::And(x, hn::BitCast(d, hn::Set(hn::RebindToUnsigned<D>(), kUpperBits<TU>)));
  const V lower = hn::Sub(x, upper);
  return hn::Add(hn::Add(hn::Mul(upper, c), addend), hn::Mul(lower, c));  // exact but for the last
#else
  (void)d;
  return hn::MulAdd(x, c, addend);
#endif
}

// x * c - subtrahend likewise; -0 for x = -0 and a subtrahend of 0.
template <class D, class V>
HWY_INLINE V ShortMulSub(D d, V x, V c, V subtrahend) {
#if HWY_TARGET == HWY_SSE4
  using TU = hwy::MakeUnsigned<hn::TFromD<D>>;
  const V upper = hn::And(x, hn::BitCast(d, hn::Set(hn::RebindToUnsigned<D>(), kUpperBits<TU>)));
  return hn::Sub(hn::Sub(hn::Mul(upper, c), subtrahend), hn::Mul(hn::Sub(upper, x), c));
#else
  (void)d;
  return hn::MulSub(x, c, subtrahend);
#endif
}

// addend - x * c likewise, -addend for ShortMulAdd's; +0 for 0.
template <class D, class V>
HWY_INLINE V ShortNegMulAdd(D d, V x, V c, V addend) {
#if HWY_TARGET == HWY_SSE4
  return hn::Sub(hn::Zero(d), ShortMulAdd(d, x, c, hn::Neg(addend)));
#else
  (void)d;
  return hn::NegMulAdd(x, c, addend);
#endif
}

// x * c + addend rounded once, for an x so short that its products with the upper part of c and
// with the rest of it are exact, and an addend whose sum with the former is exact.
template <class D, class V, typename T>
HWY_INLINE V PartsMulAdd(D d, V x, T c, [[maybe_unused]] T upper, V addend) {
#if HWY_TARGET == HWY_SSE4
  const V sum = hn::Add(hn::Mul(x, hn::Set(d, upper)), addend);
  return hn::Add(sum, hn::Mul(x, hn::Set(d, c - upper)));  // exact but for this
#else
  return hn::MulAdd(x, hn::Set(d, c), addend);
#endif
}

// addend - x * c rounded once, for an x so short that its products with both parts of c are exact,
// where what the sum with the upper one leaves takes the lower one exactly.
template <class D, class V, typename T>
HWY_INLINE V PartsNegMulAdd(D d, V x, T c, [[maybe_unused]] T upper, V addend) {
#if HWY_TARGET == HWY_SSE4
  const V product = hn::Mul(x, hn::Set(d, upper));
  const V sum = hn::Sub(addend, product);
  const V rest = hn::Sub(hn::Sub(addend, sum), product);
  return hn::Add(sum, hn::Sub(rest, hn::Mul(x, hn::Set(d, c - upper))));
#else
  return hn::NegMulAdd(x, hn::Set(d, c), addend);
#endif
}

// (a.hi + a.lo) + b for |a.hi| >= |b| or a.hi = 0. The error is at most 2 u^2 (|a| + |b|), u half
// an ulp of 1: twice the working precision, unless the sum cancels.
template <class V>
HWY_INLINE Pair<V> AddFast(Pair<V> a, V b) {
  const Pair<V> s = FastTwoSum(a.hi, b);
  return FastTwoSum(s.hi, hn::Add(s.lo, a.lo));
}

// The sum of two pairs in any order. The error is at most 3 u^2 (|a| + |b|).
template <class V>
HWY_INLINE Pair<V> Add(Pair<V> a, Pair<V> b) {
  const Pair<V> s = TwoSum(a.hi, b.hi);
  return FastTwoSum(s.hi, hn::Add(s.lo, hn::Add(a.lo, b.lo)));
}

// The product of a pair and a number, and of two pairs. The relative error is at most 4 u^2 and
// 8 u^2.
template <class D, class V>
HWY_INLINE Pair<V> Mul(D d, Pair<V> a, V b) {
  const Pair<V> p = TwoProduct(d, a.hi, b);
  return FastTwoSum(p.hi, hn::Add(p.lo, hn::Mul(a.lo, b)));
}

template <class D, class V>
HWY_INLINE Pair<V> Mul(D d, Pair<V> a, Pair<V> b) {
  const Pair<V> p = TwoProduct(d, a.hi, b.hi);
  return FastTwoSum(p.hi, hn::Add(p.lo, hn::Add(hn::Mul(a.hi, b.lo), hn::Mul(a.lo, b.hi))));
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__KERNEL_EXACT_INL_H_
