// The scalar hyperbolic cosine and sine: whole domain, special values and errors.
#ifndef PEX_CORE__HEAP_REAL_HYPERBOLIC_SCALAR_H_
#define PEX_CORE__HEAP_REAL_HYPERBOLIC_SCALAR_H_

namespace pex {

// cosh x with an error below 0.54 ulp. Returns the status code: 3 for an overflow (result inf, for
// finite |x| >= 710.475860073944), 0 otherwise.
int dCoshScalar(double x, double* r);

// sinh x likewise (result inf or -inf); below 0.51 ulp for |x| < 0.0272, 0.9 ulp just above, 0.6
// ulp from 0.1 on. A subnormal argument raises underflow.
int dSinhScalar(double x, double* r);

// The same in double precision, rounded to single: status 3 when that overflows.
int sCoshScalar(float x, float* r);
int sSinhScalar(float x, float* r);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_HYPERBOLIC_SCALAR_H_
