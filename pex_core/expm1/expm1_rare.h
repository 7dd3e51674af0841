// The scalar special values of e^x - 1: arguments far from zero, infinities and NaN.
#ifndef PEX_CORE_EXPM1_EXPM1_RARE_H_
#define PEX_CORE_EXPM1_EXPM1_RARE_H_

#include "pex_core/exp/exp_rare.h"

namespace pex {

// For x below -60 or above 88, infinities and NaN: -1 below, e^x itself above, where 1 is far below
// half an ulp. Status 3 for overflow (inf), 0 otherwise.
inline int sExpm1Rare(float x, float* r) {
  if (x < 0.0f) {
    *r = -1.0f;
    return 0;
  }
  return sExpScalar(x, r);
}

}  // namespace pex

#endif  // PEX_CORE_EXPM1_EXPM1_RARE_H_
