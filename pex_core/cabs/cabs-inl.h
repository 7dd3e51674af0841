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

// The magnitudes of the parts of floats, ordered by their bits, where a NaN raises no flag.
template <class V>
struct Magnitudes {
  V larger, smaller;
};
template <class D, class V>
HWY_INLINE Magnitudes<V> MagnitudesOf(D d, Complex<V> a) {
  const auto re = Bits(d, hn::Abs(a.re)), im = Bits(d, hn::Abs(a.im));
  return {FromBits(d, hn::Max(re, im)), FromBits(d, hn::Min(re, im))};
}

// The same as SumOfSquares for floats; the relative error is below 2^-46.
template <class D, class V>
HWY_INLINE Pair<V> SumOfSquares(D d, Magnitudes<V> a) {
  const V p = hn::Mul(a.larger, a.larger), q = hn::Mul(a.smaller, a.smaller);
  const V s = hn::Add(p, q);
  const V rest = ProductLess(d, a.smaller, a.smaller, hn::Sub(s, p));
  return {s, hn::Add(rest, TwoProduct(d, a.larger, a.larger).lo)};
}

template <class D, class V>
HWY_INLINE V ModulusOf(D d, Pair<V> square) {
  using C = RootConstants<hn::TFromD<D>>;
  const V s = hn::Sqrt(square.hi);
  const V z = FromBits(d, hn::Sub(SetBits(d, C::kInverse), Bits(d, s)));
  const V half_inverse = hn::Mul(z, hn::Sub(hn::Set(d, C::kInverseSum), hn::Mul(s, z)));
  const V remainder = hn::Add(Remainder(d, square.hi, s, s), square.lo);
  return hn::Add(s, hn::Mul(remainder, half_inverse));
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CABS_CABS_INL_H_
