#include "pex_core/cdfnorminv/cdfnorminv_special.h"

#include "pex_core/_heap/real/erfinv_tail.h"
#include "pexquo/pex.h"

namespace pex {

int dCdfNormInv_SC(const double* a, double* r) {
  int code;
  if (InverseLimits(*a, 0.5, -1.0, r, &code)) return code;
  const double x = *a;
  *r = x <= 0.5 ? RoundTail(NormInvTail(2 * x), true) : RoundTail(NormInvTail(2 * (1 - x)), false);
  return PEX_STATUS_OK;
}

int sCdfNormInv_SC(const float* a, float* r) {
  int code;
  if (InverseLimits(*a, 0.5f, -1.0f, r, &code)) return code;
  const double x = *a;
  *r = x <= 0.5 ? RoundTailToFloat(NormInvTail(2 * x), true)
                : RoundTailToFloat(NormInvTail(2 * (1 - x)), false);
  return PEX_STATUS_OK;
}

}  // namespace pex
