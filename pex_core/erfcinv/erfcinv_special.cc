#include "pex_core/erfcinv/erfcinv_special.h"

#include <cmath>

#include "pex_core/_heap/real/erfinv_tail.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

// All but 0 < x < 2, and 1; false for others.
template <typename T>
bool Limits(T x, T* r, int* code) {
  const volatile T zero = 0;
  *code = PEX_STATUS_OK;
  if (std::isnan(x)) {
    *r = x * x;
  } else if (x == T(1)) {
    *r = 0;
  } else if (x == 0 || x == 2) {
    *r = (x == 0 ? T(1) : T(-1)) / zero;
    *code = PEX_STATUS_SINGULARITY;
  } else if (!(std::isgreater(x, T(0)) && std::isless(x, T(2)))) {
    *r = zero / zero;
    *code = PEX_STATUS_DOMAIN;
  } else {
    return false;
  }
  return true;
}

}  // namespace

int dErfcInv_SC(const double* a, double* r) {
  int code;
  if (Limits(*a, r, &code)) return code;
  const double x = *a;
  *r = x <= 1 ? RoundTail(ErfcInvTail(x), false) : RoundTail(ErfcInvTail(2 - x), true);
  return PEX_STATUS_OK;
}

int sErfcInv_SC(const float* a, float* r) {
  int code;
  if (Limits(*a, r, &code)) return code;
  const double x = *a;
  *r =
      x <= 1 ? RoundTailToFloat(ErfcInvTail(x), false) : RoundTailToFloat(ErfcInvTail(2 - x), true);
  return PEX_STATUS_OK;
}

}  // namespace pex
