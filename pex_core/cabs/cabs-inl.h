// |a| for numbers whose squares neither overflow nor underflow: the squares in full, t + rest; the
// rounded root s of t; and what remains of t + rest over 2 s.

#include "pex_core/_heap/real/root_constants.h"
#include "pex_core/_heap/real/root_correct-inl.h"
#include "pex_core/cmul/exact_products-inl.h"

#if defined(PEX_CORE_CABS_CABS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_CABS_CABS_INL_H_
#undef PEX_CORE_CABS_CABS_INL_H_
#else
#define PEX_CORE_CABS_CABS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The parts of common numbers, ordered by magnitude; of floats without raising a flag, a NaN too.
// On AVX-512 the smaller one of floats keeps some sign, and a NaN beside a number is the smaller
// one.
template <class V>
struct Magnitudes {
  V larger, smaller;
};
template <class D, class V>
HWY_INLINE Magnitudes<V> MagnitudesOf(D d, Complex<V> a) {
  if constexpr (sizeof(hn::TFromD<D>) == 4) {
#if HWY_TARGET == HWY_AVX3
    // Operand 11: the one of the larger magnitude, without sign.
    const V larger = {_mm512_range_round_ps(a.re.raw, a.im.raw, 11, _MM_FROUND_NO_EXC)};
    return {larger, hn::Xor3(a.re, a.im, larger)};
#else
    const auto re = Bits(d, hn::Abs(a.re)), im = Bits(d, hn::Abs(a.im));
    return {FromBits(d, hn::Max(re, im)), FromBits(d, hn::Min(re, im))};
#endif
  } else {
#if HWY_TARGET == HWY_AVX3
    // Operands 10 and 11: the one of the smaller and of the larger magnitude, without sign.
    return {V{_mm512_range_pd(a.re.raw, a.im.raw, 11)}, V{_mm512_range_pd(a.re.raw, a.im.raw, 10)}};
#else
    const V re = hn::Abs(a.re), im = hn::Abs(a.im);
    return {hn::Max(re, im), hn::Min(re, im)};
#endif
  }
}

// The rounded squares of both parts and their sum; of floats on AVX-512 without raising a flag.
template <class V>
struct Squares {
  V larger, smaller, sum;
};
template <class D, class V>
HWY_INLINE Squares<V> SquaresOf(D, Magnitudes<V> a) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(hn::TFromD<D>) == 4) {
    constexpr int kQuiet = _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC;
    const auto p = _mm512_mul_round_ps(a.larger.raw, a.larger.raw, kQuiet);
    const auto q = _mm512_mul_round_ps(a.smaller.raw, a.smaller.raw, kQuiet);
    return {V{p}, V{q}, V{_mm512_add_round_ps(p, q, kQuiet)}};
  }
#endif
  const V p = hn::Mul(a.larger, a.larger), q = hn::Mul(a.smaller, a.smaller);
  return {p, q, hn::Add(p, q)};
}

// The sum of the squares in two parts; the relative error is below 2^-104, for floats 2^-46.
template <class D, class V>
HWY_INLINE Pair<V> SumOfSquares(D d, Magnitudes<V> a) {
  const Squares<V> squares = SquaresOf(d, a);
  const V p = squares.larger, s = squares.sum;
  const V rest = ProductLess(d, a.smaller, a.smaller, hn::Sub(s, p));
#if HWY_TARGET == HWY_SSE4
  return {s, hn::Add(rest, TwoProduct(d, a.larger, a.larger).lo)};
#else
  return {s, hn::Add(rest, ProductLess(d, a.larger, a.larger, p))};
#endif
}

// The magnitudes without a smaller one whose square counts for nothing: it lies below all bits of
// the larger one's, where it leaves the result as it is, but a product with it might underflow.
template <class D, class V>
HWY_INLINE Magnitudes<V> WithoutNothing(D d, Magnitudes<V> a) {
  using T = hn::TFromD<D>;
  const V least = hn::Mul(a.larger, hn::Set(d, sizeof(T) == 8 ? T(0x1p-300) : T(0x1p-37)));
  const V smaller = hn::Abs(a.smaller);
  return {a.larger, Selected(hn::IfThenZeroElse(hn::Lt(smaller, least), smaller))};
}

// Moduli up to their rounded roots, from where their last bits are found.
template <class V, size_t K>
struct BegunModuli {
  V square[K], rest[K], root[K];
};
// kFar: also of parts that lie far apart.
template <typename T, bool kFar = false>
struct ModulusKernel : ComplexKernel<T> {
  static constexpr bool kRealResult = true;
  template <class D, class V, size_t K>
  static HWY_INLINE BegunModuli<V, K> Begin(D d, const Complex<V> (&a)[K]) {
    BegunModuli<V, K> begun;
    for (size_t k = 0; k < K; ++k) {
      Magnitudes<V> parts = MagnitudesOf(d, a[k]);
      if constexpr (kFar) parts = WithoutNothing(d, parts);
      const Pair<V> square = SumOfSquares(d, parts);
      begun.square[k] = square.hi;
      begun.rest[k] = square.lo;
      begun.root[k] = square.hi;
    }
    // AVX-512's roots of doubles take longer than all the rest: one of three goes without.
    constexpr bool kLong = sizeof(T) == 8 && sizeof(V) == 64;
    MixedRoots<kLong ? K / 3 : 0>(d, begun.root);
    return begun;
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void End(D d, const BegunModuli<V, K>& begun, V (&r)[K]) {
    using C = RootConstants<T>;
    for (size_t k = 0; k < K; ++k) {
      const V s = begun.root[k];
      const V z = FromBits(d, hn::Sub(SetBits(d, C::kInverse), Bits(d, s)));
      const V half_inverse = hn::Mul(z, hn::Sub(hn::Set(d, C::kInverseSum), hn::Mul(s, z)));
      const V remainder = hn::Add(Remainder(d, begun.square[k], s, s), begun.rest[k]);
      r[k] = hn::Add(s, hn::Mul(remainder, half_inverse));
    }
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CABS_CABS_INL_H_
