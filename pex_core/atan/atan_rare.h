// The scalar arctangent of very large arguments, infinities and NaN.
#ifndef PEX_CORE_ATAN_ATAN_RARE_H_
#define PEX_CORE_ATAN_ATAN_RARE_H_

#include "pex_core/_kernel/exceptions.h"
#include "pexquo/pex.h"

namespace pex {

PEX_EXCEPTIONS_COUNT

// |x| >= 2^60 (single: 2^26) or NaN: half of pi, to nearest. Status 0.
inline int dAtanRare(double x, double* r) {
  *r = x != x  ? x + x
       : x > 0 ? 0x1.921fb54442d18p+0 + 0x1.1a62633145c07p-54
               : -0x1.921fb54442d18p+0 - 0x1.1a62633145c07p-54;
  return PEX_STATUS_OK;
}

inline int sAtanRare(float x, float* r) {
  *r = x != x ? x + x : x > 0 ? 0x1.921fb6p+0f : -0x1.921fb6p+0f;
  return PEX_STATUS_OK;
}

PEX_EXCEPTIONS_COUNT_END

}  // namespace pex

#endif  // PEX_CORE_ATAN_ATAN_RARE_H_
