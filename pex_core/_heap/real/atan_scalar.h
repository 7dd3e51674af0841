// Scalar arctangents: the elements that the vector kernels of atan2 leave, and single precision.
#ifndef PEX_CORE__HEAP_REAL_ATAN_SCALAR_H_
#define PEX_CORE__HEAP_REAL_ATAN_SCALAR_H_

#pragma GCC visibility push(hidden)
extern "C" {

// atan(x) correctly rounded; a NaN comes back quiet.
float _pexsatan_scalar(float x);

// atan2(y, x) with an error below 0.50001 ulp, correctly signed for zeros and infinities: +-0 for
// y = +-0 and x >= +0, +-pi for y = +-0 and x <= -0, +-pi/2 for x = +-0 or infinite y, +-pi/4 and
// +-3pi/4 for two infinities. Raises underflow where a subnormal result is rounded.
float _pexsatan2_scalar(float y, float x);

}  // extern "C"

namespace pex {

// The same in double precision, with an error below 0.52 ulp. Status 0 in every case. Raises
// underflow where the result is subnormal, exact quotients included, or zero but for y = 0 or
// infinite x.
int dAtan2Scalar(double y, double x, double* r);

}  // namespace pex
#pragma GCC visibility pop

#endif  // PEX_CORE__HEAP_REAL_ATAN_SCALAR_H_
