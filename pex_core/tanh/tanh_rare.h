// The scalar hyperbolic tangent of infinities and NaN.
#ifndef PEX_CORE_TANH_TANH_RARE_H_
#define PEX_CORE_TANH_TANH_RARE_H_

#include <cmath>

#include "pex_core/_kernel/exceptions.h"
#include "pexquo/pex.h"

namespace pex {

PEX_EXCEPTIONS_COUNT

template <typename T>
inline int TanhRare(T x, T* r) {
  *r = std::isinf(x) ? std::copysign(T(1), x) : x + x;
  return PEX_STATUS_OK;
}

PEX_EXCEPTIONS_COUNT_END

}  // namespace pex

#endif  // PEX_CORE_TANH_TANH_RARE_H_
