// The scalar atanh for arguments of 1 and beyond, and NaN.
#ifndef PEX_CORE_ATANH_ATANH_RARE_H_
#define PEX_CORE_ATANH_ATANH_RARE_H_

#include <cmath>

#include "pex_core/_kernel/exceptions.h"

namespace pex {

PEX_EXCEPTIONS_COUNT

// Status 2 for 1 and -1 (an infinity, divide by zero), 1 beyond (NaN, invalid), 0 for NaN.
template <typename T>
inline int AtanhRare(T x, T* r) {
  if (std::isnan(x)) {
    *r = x + x;
    return 0;
  }
  if (x == T(1) || x == T(-1)) {
    *r = x / T(0);
    return 2;
  }
  *r = (x - x) / T(0);
  return 1;
}

PEX_EXCEPTIONS_COUNT_END

}  // namespace pex

#endif  // PEX_CORE_ATANH_ATANH_RARE_H_
