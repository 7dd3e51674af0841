// The scalar power: every pair of arguments.
#ifndef PEX_CORE__HEAP_REAL_POW_RARE_H_
#define PEX_CORE__HEAP_REAL_POW_RARE_H_

namespace pex {

// x^y with an error below 0.55 ulp, subnormal results rounded once. Returns the status code: 1 for
// a pole (zero to a negative power, an infinity) and for negative x to a power that is no integer
// (NaN), else 0. Results that overflow or underflow are infinities, zeros or subnormal numbers with
// code 0.
int dPowScalar(double x, double y, double* r);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_POW_RARE_H_
