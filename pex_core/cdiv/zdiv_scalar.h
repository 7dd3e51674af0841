// Quotients of single elements whose parts are zero, tiny, huge or not finite.
#ifndef PEX_CORE_CDIV_ZDIV_SCALAR_H_
#define PEX_CORE_CDIV_ZDIV_SCALAR_H_

#include "pex_core/_kernel/complex.h"

namespace pex {

// a/b, each part rounded once, without overflow or underflow on the way. Where b is zero or a part
// is an infinity or a NaN: 1/|b|^2 times a conj(b) in 80-bit arithmetic.
Complex<double> zDivScalar(Complex<double> a, Complex<double> b);

}  // namespace pex

#endif  // PEX_CORE_CDIV_ZDIV_SCALAR_H_
