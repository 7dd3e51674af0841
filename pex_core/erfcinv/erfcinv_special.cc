#include "pex_core/erfcinv/erfcinv_special.h"

#include "pex_core/_heap/real/erfinv_tail.h"
#include "pexquo/pex.h"

namespace pex {

int dErfcInv_SC(const double* a, double* r) {
  int code;
  if (InverseLimits(*a, 1.0, 1.0, r, &code)) return code;
  const double x = *a;
  *r = x <= 1 ? RoundTail(ErfcInvTail(x), false) : RoundTail(ErfcInvTail(2 - x), true);
  return PEX_STATUS_OK;
}

int sErfcInv_SC(const float* a, float* r) {
  int code;
  if (InverseLimits(*a, 1.0f, 1.0f, r, &code)) return code;
  const double x = *a;
  *r =
      x <= 1 ? RoundTailToFloat(ErfcInvTail(x), false) : RoundTailToFloat(ErfcInvTail(2 - x), true);
  return PEX_STATUS_OK;
}

}  // namespace pex
