// The scalar asinh for infinities and NaN.
#ifndef PEX_CORE_ASINH_ASINH_RARE_H_
#define PEX_CORE_ASINH_ASINH_RARE_H_

#include "pex_core/_kernel/exceptions.h"

namespace pex {

PEX_EXCEPTIONS_COUNT

// Both are their own results; a signalling NaN becomes quiet.
template <typename T>
inline int AsinhRare(T x, T* r) {
  *r = x + x;
  return 0;
}

PEX_EXCEPTIONS_COUNT_END

}  // namespace pex

#endif  // PEX_CORE_ASINH_ASINH_RARE_H_
