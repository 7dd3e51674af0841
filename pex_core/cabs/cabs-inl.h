// |a| for numbers whose squares neither overflow nor underflow: the squares in full, t + rest; the
// rounded root s of t; and what remains of t + rest over 2 s.

#include "pex_core/_heap/real/root_constants.h"
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

// The magnitudes of the parts of common numbers, ordered; those of floats by their bits, where a
// NaN raises no flag.
template <class V>
struct Magnitudes {
  V larger, smaller;
};
template <class D, class V>
HWY_INLINE Magnitudes<V> MagnitudesOf(D d, Complex<V> a) {
  if constexpr (sizeof(hn::TFromD<D>) == 4) {
    const auto re = Bits(d, hn::Abs(a.re)), im = Bits(d, hn::Abs(a.im));
    return {FromBits(d, hn::Max(re, im)), FromBits(d, hn::Min(re, im))};
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

// The sum of the squares in two parts; the relative error is below 2^-104, for floats 2^-46.
template <class D, class V>
HWY_INLINE Pair<V> SumOfSquares(D d, Magnitudes<V> a) {
  const V p = hn::Mul(a.larger, a.larger), q = hn::Mul(a.smaller, a.smaller);
  const V s = hn::Add(p, q);
  const V rest = ProductLess(d, a.smaller, a.smaller, hn::Sub(s, p));
  return {s, hn::Add(rest, TwoProduct(d, a.larger, a.larger).lo)};
}

// Moduli up to their rounded roots, from where their last bits are found.
template <class V, size_t K>
struct BegunModuli {
  V square[K], rest[K], root[K];
};
template <class D, class V, size_t K>
HWY_INLINE BegunModuli<V, K> BeginModuli(D d, const Complex<V> (&a)[K]) {
  BegunModuli<V, K> begun;
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> square = SumOfSquares(d, MagnitudesOf(d, a[k]));
    begun.square[k] = square.hi;
    begun.rest[k] = square.lo;
    begun.root[k] = hn::Sqrt(square.hi);
  }
  return begun;
}
template <class D, class V, size_t K>
HWY_INLINE void EndModuli(D d, const BegunModuli<V, K>& begun, V (&r)[K]) {
  using C = RootConstants<hn::TFromD<D>>;
  for (size_t k = 0; k < K; ++k) {
    const V s = begun.root[k];
    const V z = FromBits(d, hn::Sub(SetBits(d, C::kInverse), Bits(d, s)));
    const V half_inverse = hn::Mul(z, hn::Sub(hn::Set(d, C::kInverseSum), hn::Mul(s, z)));
    const V remainder = hn::Add(Remainder(d, begun.square[k], s, s), begun.rest[k]);
    r[k] = hn::Add(s, hn::Mul(remainder, half_inverse));
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CABS_CABS_INL_H_
