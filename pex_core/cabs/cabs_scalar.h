// Moduli of single elements.
#ifndef PEX_CORE_CABS_CABS_SCALAR_H_
#define PEX_CORE_CABS_CABS_SCALAR_H_

#include "pex_core/_kernel/complex.h"

namespace pex {

// |a| within 0.5001 ulp for finite numbers of any size. Infinity where a part is one; otherwise the
// imaginary part where it is a NaN, or the real one, quiet: in single precision without its sign. A
// signalling NaN raises invalid.
float cAbsScalar(Complex<float> a);
double zAbsScalar(Complex<double> a);

}  // namespace pex

#endif  // PEX_CORE_CABS_CABS_SCALAR_H_
