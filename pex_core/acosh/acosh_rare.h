// The scalar acosh for arguments below 1, infinities and NaN.
#ifndef PEX_CORE_ACOSH_ACOSH_RARE_H_
#define PEX_CORE_ACOSH_ACOSH_RARE_H_

#include <cmath>

namespace pex {

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

}  // namespace pex

#endif  // PEX_CORE_ACOSH_ACOSH_RARE_H_
