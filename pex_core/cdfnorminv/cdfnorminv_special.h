// The scalar quantile of the normal distribution: x outside of [2^-21, 1 - 2^-21], 1/2, NaN.
// Returns the status code: 2 for 0 and 1, 1 outside of [0, 1], 0 otherwise.
#ifndef PEX_CORE_CDFNORMINV_CDFNORMINV_SPECIAL_H_
#define PEX_CORE_CDFNORMINV_CDFNORMINV_SPECIAL_H_

namespace pex {

int dCdfNormInv_SC(const double* a, double* r);
int sCdfNormInv_SC(const float* a, float* r);

}  // namespace pex

#endif  // PEX_CORE_CDFNORMINV_CDFNORMINV_SPECIAL_H_
