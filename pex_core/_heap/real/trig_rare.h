// The arguments that the trigonometric vector kernels leave to scalar code.
#ifndef PEX_CORE__HEAP_REAL_TRIG_RARE_H_
#define PEX_CORE__HEAP_REAL_TRIG_RARE_H_

#include "pex_core/_kernel/exceptions.h"
#include "pexquo/pex.h"

namespace pex {

PEX_EXCEPTIONS_COUNT

// An infinity: the default NaN, raising invalid, and code 1. A NaN: itself, quiet, and code 0.
template <typename T>
inline int TrigRare(T x, T* r) {
  if (x != x) {
    *r = x + x;
    return PEX_STATUS_OK;
  }
  *r = x * T(0);
  return PEX_STATUS_DOMAIN;
}

template <typename T>
inline int TrigRare(T x, T* r1, T* r2) {
  const int code = TrigRare(x, r1);
  *r2 = *r1;
  return code;
}

PEX_EXCEPTIONS_COUNT_END

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_RARE_H_
