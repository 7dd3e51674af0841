// The argument of the complementary error function for the normal distribution.

#include "hwy/highway.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_REAL_CDFNORM_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_CDFNORM_INL_H_
#undef PEX_CORE__HEAP_REAL_CDFNORM_INL_H_
#else
#define PEX_CORE__HEAP_REAL_CDFNORM_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// x/sqrt(2) in two parts, x >= 0. To add 2^-200 keeps the products of tiny numbers from underflow
// and changes nothing else.
template <class D, class V>
HWY_INLINE Pair<V> OverRootTwo(D d, V x) {
  const V safe = hn::Add(x, hn::Set(d, 0x1p-200));
  const Pair<V> p = TwoProduct(d, safe, hn::Set(d, 0x1.6a09e667f3bcdp-1));
  return {p.hi, hn::Sub(p.lo, hn::Mul(safe, hn::Set(d, 0x1.bdd3413b26456p-55)))};
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_CDFNORM_INL_H_
