// What is left of the single-precision sine, cosine and tangent for a scalar: infinities and NaN.
#ifndef PEX_CORE__HEAP_REAL_TRIG_SINGLE_H_
#define PEX_CORE__HEAP_REAL_TRIG_SINGLE_H_

namespace pex {

// The one or two results for an infinity (NaN, raising invalid; returns code 1) or a NaN (itself,
// quiet; returns 0).
int sTrigScalar(float x, float* r);
int sTrigScalar(float x, float* r1, float* r2);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_SINGLE_H_
