// p + q for exact products p and q of doubles in 80-bit arithmetic.
#ifndef PEX_CORE_CMUL_PRODUCTS_H_
#define PEX_CORE_CMUL_PRODUCTS_H_

#include "pex_core/_heap/real/extended.h"

namespace pex::ldbl {

// The relative error is below 2^-120, whatever cancels. A sum of zeros may be +0 or -0.
inline Pair SumOfProducts(Pair p, Pair q) {
  const Pair s = TwoSum(p.hi, q.hi), low = TwoSum(p.lo, q.lo);
  const Pair sum = FastTwoSum(s.hi, s.lo + low.hi);
  return FastTwoSum(sum.hi, sum.lo + low.lo);
}

}  // namespace pex::ldbl

#endif  // PEX_CORE_CMUL_PRODUCTS_H_
