// The scalar e^x - 1 for large |x|, infinities and NaN.
#ifndef PEX_CORE_EXPM1_EXPM1_RARE_H_
#define PEX_CORE_EXPM1_EXPM1_RARE_H_

#include <cmath>
#include <limits>

#include "pex_core/_kernel/exceptions.h"
#include "pex_core/exp/exp_rare.h"
#include "pexquo/pex.h"

namespace pex {

PEX_EXCEPTIONS_COUNT

// Where the 1 is beyond the last place of e^x, or e^x beyond that of 1. Status 3 for overflow
// alone.
template <typename T>
inline int Expm1Rare(T x, T* r, int (*exp)(T, T*)) {
  if (std::isless(x, T(0))) {  // quiet for NaN
    volatile T tiny = T(0x1p-100);
    *r = -T(1) + (x < -std::numeric_limits<T>::max() ? T(0) : tiny);  // inexact unless infinite
    return PEX_STATUS_OK;
  }
  return exp(x, r) == PEX_STATUS_OVERFLOW ? PEX_STATUS_OVERFLOW : PEX_STATUS_OK;
}

PEX_EXCEPTIONS_COUNT_END

}  // namespace pex

#endif  // PEX_CORE_EXPM1_EXPM1_RARE_H_
