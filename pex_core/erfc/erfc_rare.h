// The scalar complementary error function where it is subnormal, 0 or 2, and the normal
// distribution function there, which is half of that of -x/sqrt(2).
#ifndef PEX_CORE_ERFC_ERFC_RARE_H_
#define PEX_CORE_ERFC_ERFC_RARE_H_

namespace pex {

// Any x > 16, large negative x, infinities, NaN; returns 4 where the result, rounded once, is
// subnormal, or 0 for a finite x, and 0 otherwise.
int dErfcRare(double x, double* r);

// The same for x < -23 and large x.
int dCdfNormRare(double x, double* r);

// For any x.
int sErfcRare(float x, float* r);
int sCdfNormRare(float x, float* r);

}  // namespace pex

#endif  // PEX_CORE_ERFC_ERFC_RARE_H_
