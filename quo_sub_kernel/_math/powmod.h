// Powers of matrices modulo 32-bit moduli, for the generators alone.
#ifndef QUO_SUB_KERNEL__MATH_POWMOD_H_
#define QUO_SUB_KERNEL__MATH_POWMOD_H_

#include <cstdint>

// Moves w = (oldest, middle, newest) on by e steps of the recurrence
//   next = (row[0] newest + row[1] middle + row[2] oldest) mod m,
// that is, multiplies it by the e-th power of the companion matrix of `row`, which is below m.
// Words of m or more count as their residues; e = 0 leaves the residues. Any m from 1 to 2^32 - 1.
extern "C" void __quoiVect3PowMod(uint32_t w[3], const uint32_t row[3], uint64_t e, uint32_t m);

#endif  // QUO_SUB_KERNEL__MATH_POWMOD_H_
