// The scalar inverse error function: |x| < 2^-35, |x| >= 1 - 2^-20, infinities, NaN. Returns the
// status code: 2 for +-1, 1 beyond them, 0 otherwise.
#ifndef PEX_CORE_ERFINV_ERFINV_SPECIAL_H_
#define PEX_CORE_ERFINV_ERFINV_SPECIAL_H_

namespace pex {

int dErfInv_SC(const double* a, double* r);
int sErfInv_SC(const float* a, float* r);

}  // namespace pex

#endif  // PEX_CORE_ERFINV_ERFINV_SPECIAL_H_
