// The scalar atanh for arguments of 1 and beyond, and NaN.
#ifndef PEX_CORE_ATANH_ATANH_RARE_H_
#define PEX_CORE_ATANH_ATANH_RARE_H_

#include <cmath>

namespace pex {

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

}  // namespace pex

#endif  // PEX_CORE_ATANH_ATANH_RARE_H_
