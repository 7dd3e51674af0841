// The scalar exponentials: whole domain, special values and errors.
#ifndef PEX_CORE_EXP_EXP_RARE_H_
#define PEX_CORE_EXP_EXP_RARE_H_

namespace pex {

// e^x with an error below 0.53 ulp, subnormal results rounded once; returns the status code:
// 3 overflow (inf), 4 underflow (subnormal or 0), 0 otherwise.
int dExpScalar(double x, double* r);

// The same, but below 708.396 in magnitude the LA formula, whose product with the
// scaled power is rounded as a subnormal number in the lowest octaves: 2.46 ulp there.
int dExpLAScalar(double x, double* r);

// The same algorithm on the widened argument, rounded to single precision.
int sExpScalar(float x, float* r);

}  // namespace pex

#endif  // PEX_CORE_EXP_EXP_RARE_H_
