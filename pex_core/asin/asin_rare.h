// The scalar inverse sine and cosine beyond 1 and of NaN.
#ifndef PEX_CORE_ASIN_ASIN_RARE_H_
#define PEX_CORE_ASIN_ASIN_RARE_H_

#include <limits>

#include "pex_core/_kernel/exceptions.h"
#include "pexquo/pex.h"

namespace pex {

PEX_EXCEPTIONS_COUNT

// NaN: itself, quiet, status 0. |x| > 1: NaN (the pattern 0xFFF8...), status 1.
template <typename T>
inline int AsinRare(T x, T* r) {
  if (x != x) {
    *r = x + x;
    return PEX_STATUS_OK;
  }
  *r = -std::numeric_limits<T>::quiet_NaN();
  return PEX_STATUS_DOMAIN;
}

PEX_EXCEPTIONS_COUNT_END

}  // namespace pex

#endif  // PEX_CORE_ASIN_ASIN_RARE_H_
