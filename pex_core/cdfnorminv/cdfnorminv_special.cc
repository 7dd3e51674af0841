#include "pex_core/cdfnorminv/cdfnorminv_special.h"

#include <cmath>

#include "pex_core/_heap/real/erfinv_tail.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

// All but 0 < x < 1, and 0.5; false for others.
template <typename T>
bool Limits(T x, T* r, int* code) {
  const volatile T zero = 0;
  *code = PEX_STATUS_OK;
  if (std::isnan(x)) {
    *r = x * x;
  } else if (x == T(0.5)) {
    *r = 0;
  } else if (x == 0 || x == 1) {
    *r = (x == 0 ? T(-1) : T(1)) / zero;
    *code = PEX_STATUS_SINGULARITY;
  } else if (!(std::isgreater(x, T(0)) && std::isless(x, T(1)))) {
    *r = zero / zero;
    *code = PEX_STATUS_DOMAIN;
  } else {
    return false;
  }
  return true;
}

}  // namespace

int dCdfNormInv_SC(const double* a, double* r) {
  int code;
  if (Limits(*a, r, &code)) return code;
  const double x = *a;
  *r = x <= 0.5 ? RoundTail(NormInvTail(2 * x), true) : RoundTail(NormInvTail(2 * (1 - x)), false);
  return PEX_STATUS_OK;
}

int sCdfNormInv_SC(const float* a, float* r) {
  int code;
  if (Limits(*a, r, &code)) return code;
  const double x = *a;
  *r = x <= 0.5 ? RoundTailToFloat(NormInvTail(2 * x), true)
                : RoundTailToFloat(NormInvTail(2 * (1 - x)), false);
  return PEX_STATUS_OK;
}

}  // namespace pex
