// The square-root family element by element: special values, status codes, and results that are
// subnormal or computed from subnormal numbers. All are correctly rounded, or within 0.501 ulp.
#ifndef PEX_CORE__HEAP_REAL_ROOT_SCALAR_H_
#define PEX_CORE__HEAP_REAL_ROOT_SCALAR_H_

namespace pex {

// Each returns the status code. A NaN comes out quiet, with its sign and payload.

// sqrt(x); code 1 and NaN for negative numbers.
int SqrtScalar(double x, double* r);
int SqrtScalar(float x, float* r);

// a / b; code 2 for a zero divisor, whatever a is.
int DivScalar(double a, double b, double* r);
int DivScalar(float a, float b, float* r);

// 1/sqrt(x); code 2 and an infinity with the sign of x for zeros, code 1 and NaN for negative
// numbers.
int InvSqrtScalar(double x, double* r);
int InvSqrtScalar(float x, float* r);

// x^(3/2), +0 for both zeros; code 1 and NaN for negative numbers.
int Pow3o2Scalar(double x, double* r);
int Pow3o2Scalar(float x, float* r);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_ROOT_SCALAR_H_
