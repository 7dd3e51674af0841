// The scalar error function for tiny arguments, infinities and NaN.
#ifndef PEX_CORE_ERF_ERF_RARE_H_
#define PEX_CORE_ERF_ERF_RARE_H_

namespace pex {

// |x| < 2^-900, where erf(x) = 2/sqrt(pi) x to far more than the working precision, rounded once
// and without a flag but inexact; infinities and NaN. Returns 0.
int dErfRare(double x, double* r);

// The same for |x| < 2^-80.
int sErfRare(float x, float* r);

}  // namespace pex

#endif  // PEX_CORE_ERF_ERF_RARE_H_
