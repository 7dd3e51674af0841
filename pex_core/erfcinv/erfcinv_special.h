// The scalar inverse of the complementary error function: x outside of [2^-20, 2 - 2^-20], 1, NaN.
// Returns the status code: 2 for 0 and 2, 1 outside of [0, 2], 0 otherwise.
#ifndef PEX_CORE_ERFCINV_ERFCINV_SPECIAL_H_
#define PEX_CORE_ERFCINV_ERFCINV_SPECIAL_H_

namespace pex {

int dErfcInv_SC(const double* a, double* r);
int sErfcInv_SC(const float* a, float* r);

}  // namespace pex

#endif  // PEX_CORE_ERFCINV_ERFCINV_SPECIAL_H_
