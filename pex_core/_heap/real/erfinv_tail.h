// The inverse of the complementary error function far from its zero, by one element.
#ifndef PEX_CORE__HEAP_REAL_ERFINV_TAIL_H_
#define PEX_CORE__HEAP_REAL_ERFINV_TAIL_H_

#include <cmath>

#include "pex_core/_heap/real/exact_scalar.h"
#include "pexquo/pex.h"

namespace pex {

// erfcinv(q) and sqrt(2) erfcinv(q) for 0 < q <= 2^-20, subnormal q too, within 2^-58.
Two ErfcInvTail(double q);
Two NormInvTail(double q);

// s, or -s where `negative`, rounded once.
double RoundTail(Two s, bool negative);
float RoundTailToFloat(Two s, bool negative);

// The result and the code of an inverse function on (0, 2 middle) at its ends, where it is infinite
// with the sign of `at_zero` at 0 and with the other one at 2 middle, outside, for NaN, and for the
// middle, its zero; false for other x. The operations are carried out and raise their flags.
template <typename T>
bool InverseLimits(T x, T middle, T at_zero, T* r, int* code) {
  const volatile T zero = 0;
  *code = PEX_STATUS_OK;
  if (std::isnan(x)) {
    *r = x * x;
  } else if (x == middle) {
    *r = 0;
  } else if (x == 0 || x == 2 * middle) {
    *r = (x == 0 ? at_zero : -at_zero) / zero;
    *code = PEX_STATUS_SINGULARITY;
  } else if (!(std::isgreater(x, T(0)) && std::isless(x, 2 * middle))) {
    *r = zero / zero;
    *code = PEX_STATUS_DOMAIN;
  } else {
    return false;
  }
  return true;
}

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_ERFINV_TAIL_H_
