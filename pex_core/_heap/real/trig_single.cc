#include "pex_core/_heap/real/trig_single.h"

#include "pexquo/pex.h"

namespace pex {

int sTrigScalar(float x, float* r) {
  if (__builtin_isnan(x)) {
    *r = x + x;
    return PEX_STATUS_OK;
  }
  const volatile float infinity = x;
  *r = infinity - infinity;
  return PEX_STATUS_DOMAIN;
}

int sTrigScalar(float x, float* r1, float* r2) {
  const int code = sTrigScalar(x, r1);
  *r2 = *r1;
  return code;
}

}  // namespace pex
