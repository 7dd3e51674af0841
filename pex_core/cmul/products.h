// Elements in 80-bit arithmetic: exact products and their sums.
#ifndef PEX_CORE_CMUL_PRODUCTS_H_
#define PEX_CORE_CMUL_PRODUCTS_H_

#include "pex_core/_heap/real/extended.h"

namespace pex::ldbl {

// p + q for exact products of doubles. The relative error is below 2^-120, whatever cancels. A sum
// of zeros may be +0 or -0.
inline Pair SumOfProducts(Pair p, Pair q) {
  const Pair s = TwoSum(p.hi, q.hi), low = TwoSum(p.lo, q.lo);
  const Pair sum = FastTwoSum(s.hi, s.lo + low.hi);
  return FastTwoSum(sum.hi, sum.lo + low.lo);
}

// Whatever is computed from x, or to give x, stays on its side of the call.
template <class A>
[[gnu::always_inline]] inline void Barrier(A& x) {
  __asm__ volatile("" : "+m"(x));
}

// F(x...) with the x87 control word put aside. Arguments and result pass through barriers between
// the ends of the guard, so no arithmetic of F can move out of them.
template <auto F, class... A>
[[gnu::noinline]] auto UnderX87Guard(A... x) {
  const X87Guard guard;
  (Barrier(x), ...);
  auto r = F(x...);
  Barrier(r);
  return r;
}

}  // namespace pex::ldbl

#endif  // PEX_CORE_CMUL_PRODUCTS_H_
