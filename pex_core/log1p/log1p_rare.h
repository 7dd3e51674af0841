// The scalar log1p for arguments of -1 and below, very large ones and NaN.
#ifndef PEX_CORE_LOG1P_LOG1P_RARE_H_
#define PEX_CORE_LOG1P_LOG1P_RARE_H_

#include "pex_core/_kernel/exceptions.h"
#include "pex_core/ln/ln_rare.h"

namespace pex {

PEX_EXCEPTIONS_COUNT

// Status 2 for -1 (-inf), 1 below it (NaN), 0 otherwise. 1 + x has the sign and the zero that
// decide, and is as good as x where x is large. A NaN stays as it is.
template <typename T>
inline int Log1pRare(T x, T* r, int (*ln)(T, T*)) {
  return ln(IsNaN(x) ? x : x + T(1), r);
}

PEX_EXCEPTIONS_COUNT_END

}  // namespace pex

#endif  // PEX_CORE_LOG1P_LOG1P_RARE_H_
