// The scalar hyperbolic tangent of infinities and NaN.
#ifndef PEX_CORE_TANH_TANH_RARE_H_
#define PEX_CORE_TANH_TANH_RARE_H_

#include <cmath>

#include "pexquo/pex.h"

namespace pex {

template <typename T>
inline int TanhRare(T x, T* r) {
  *r = std::isinf(x) ? std::copysign(T(1), x) : x + x;
  return PEX_STATUS_OK;
}

}  // namespace pex

#endif  // PEX_CORE_TANH_TANH_RARE_H_
