// The scalar special values of log1p: arguments of -1 and below, +inf and NaN.
#ifndef PEX_CORE_LOG1P_LOG1P_RARE_H_
#define PEX_CORE_LOG1P_LOG1P_RARE_H_

#include "pex_core/ln/ln_rare.h"

namespace pex {

// Status 2 for -1 (-inf), 1 below it (NaN), 0 otherwise.
template <typename T>
inline int Log1pRare(T x, T* r) {
  int code = 0;
  // 1 + x has the sign and the zero that decide, for what is rare here is no number near -1.
  LogSpecial(x + T(1), r, &code);
  return code;
}

}  // namespace pex

#endif  // PEX_CORE_LOG1P_LOG1P_RARE_H_
