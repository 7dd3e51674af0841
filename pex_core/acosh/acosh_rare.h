// The scalar acosh for arguments below 1, infinities and NaN.
#ifndef PEX_CORE_ACOSH_ACOSH_RARE_H_
#define PEX_CORE_ACOSH_ACOSH_RARE_H_

#include <cmath>

#include "pex_core/_kernel/exceptions.h"

namespace pex {

PEX_EXCEPTIONS_COUNT

// Status 1 below 1 (NaN, invalid), 0 otherwise.
template <typename T>
inline int AcoshRare(T x, T* r) {
  if (std::isnan(x) || std::isgreater(x, T(1))) {
    *r = x + x;
    return 0;
  }
  *r = (x - x) / T(0);
  return 1;
}

PEX_EXCEPTIONS_COUNT_END

}  // namespace pex

#endif  // PEX_CORE_ACOSH_ACOSH_RARE_H_
