// The scalar side of sine, cosine and tangent in single precision.
#ifndef PEX_CORE__HEAP_REAL_TRIG_SINGLE_H_
#define PEX_CORE__HEAP_REAL_TRIG_SINGLE_H_

namespace pex {

// The one or two results for an infinity (NaN, raising invalid; returns code 1) or a NaN (itself,
// quiet; returns 0).
int sTrigScalar(float x, float* r);
int sTrigScalar(float x, float* r1, float* r2);

// v is the sine of x, give or take 2^doubt last places. Where that leaves open to which float it
// rounds, a double that rounds as the sine does; else v. x is finite. Likewise for the others.
using sSettle = double (*)(float x, double v, int doubt);
double sSettleSine(float x, double v, int doubt);
double sSettleCosine(float x, double v, int doubt);
double sSettleTangent(float x, double v, int doubt);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_SINGLE_H_
