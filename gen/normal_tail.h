// The normal distribution's tail and density, for the programs that write tables of them.
#ifndef GEN_NORMAL_TAIL_H_
#define GEN_NORMAL_TAIL_H_

#include <mpfr.h>

// density = that at c, in the precision of density and work, which are initialised.
inline void NormalDensity(double c, mpfr_t density, mpfr_t work) {
  mpfr_set_d(work, c, MPFR_RNDN);
  mpfr_sqr(density, work, MPFR_RNDN);
  mpfr_mul_d(density, density, -0.5, MPFR_RNDN);
  mpfr_exp(density, density, MPFR_RNDN);
  mpfr_const_pi(work, MPFR_RNDN);
  mpfr_mul_2ui(work, work, 1, MPFR_RNDN);
  mpfr_rec_sqrt(work, work, MPFR_RNDN);
  mpfr_mul(density, density, work, MPFR_RNDN);
}

// tail = the probability of more than c, density = that at c, in the precision of tail, density and
// work, which are initialised.
inline void NormalTail(double c, mpfr_t tail, mpfr_t density, mpfr_t work) {
  NormalDensity(c, density, work);
  mpfr_set_d(work, c, MPFR_RNDN);
  mpfr_set_d(tail, 0.5, MPFR_RNDN);
  mpfr_sqrt(tail, tail, MPFR_RNDN);
  mpfr_mul(tail, tail, work, MPFR_RNDN);
  mpfr_erfc(tail, tail, MPFR_RNDN);
  mpfr_mul_d(tail, tail, 0.5, MPFR_RNDN);
}

#endif  // GEN_NORMAL_TAIL_H_
