// Products of single elements whose parts are zero, tiny, huge or not finite.
#ifndef PEX_CORE_CMUL_ZMUL_SCALAR_H_
#define PEX_CORE_CMUL_ZMUL_SCALAR_H_

#include "pex_core/_kernel/complex.h"

namespace pex {

// a b and a conj(b), each part rounded once. Where a part is an infinity or a NaN, the formula
// in 80-bit arithmetic.
Complex<double> zMulScalar(Complex<double> a, Complex<double> b);
Complex<double> zMulByConjScalar(Complex<double> a, Complex<double> b);

}  // namespace pex

#endif  // PEX_CORE_CMUL_ZMUL_SCALAR_H_
