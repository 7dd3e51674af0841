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

template <class D, class V, size_t K>
HWY_INLINE void Modulus(D d, const Complex<V> (&a)[K], V (&r)[K]) {
  using C = RootConstants<hn::TFromD<D>>;
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> square = SumOfSquares(d, a[k]);
    const V s = hn::Sqrt(square.hi);
    const V z = FromBits(d, hn::Sub(SetBits(d, C::kInverse), Bits(d, s)));
    const V half_inverse = hn::Mul(z, hn::Sub(hn::Set(d, C::kInverseSum), hn::Mul(s, z)));
    const V remainder = hn::Add(Remainder(d, square.hi, s, s), square.lo);
    r[k] = hn::Add(s, hn::Mul(remainder, half_inverse));
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CABS_CABS_INL_H_
