// How far powers of two are from the chord of their octave, for the programs that write tables of
// it.
#ifndef GEN_OVER_CHORD_H_
#define GEN_OVER_CHORD_H_

#include <mpfr.h>

#include <cmath>
#include <limits>

// Whether (1 - c) - c t, c = 2^n (1 + j/steps), is the same rounded once and twice for every n.
template <typename T>
bool SameRoundedOnceAndTwice(T t, int j, int steps) {
  using Limits = std::numeric_limits<T>;
  for (int n = Limits::min_exponent - 1; n < Limits::max_exponent; ++n) {
    const T c = std::ldexp(1 + static_cast<T>(j) / steps, n);
    const volatile T product = c * t;
    if ((1 - c) - product != std::fma(-c, t, 1 - c)) return false;
  }
  return true;
}

// 2^(j/steps)/(1 + j/steps) - 1: the number next to it for which that holds, or one as near as can
// be.
template <typename T>
T OverChord(int j, int steps) {
  mpfr_t x;
  mpfr_init2(x, 300);
  mpfr_set_si(x, j, MPFR_RNDN);
  mpfr_div_si(x, x, steps, MPFR_RNDN);
  mpfr_exp2(x, x, MPFR_RNDN);
  mpfr_div_d(x, x, 1 + static_cast<double>(j) / steps, MPFR_RNDN);
  mpfr_sub_si(x, x, 1, MPFR_RNDN);
  const T next =
      static_cast<T>(sizeof(T) == 4 ? mpfr_get_flt(x, MPFR_RNDN) : mpfr_get_d(x, MPFR_RNDN));
  mpfr_clear(x);
  const T ulp =
      j == 0 ? 0 : std::ldexp(T(1), std::ilogb(next) - std::numeric_limits<T>::digits + 1);
  T t = next;
  for (int i = 1; !SameRoundedOnceAndTwice(t, j, steps); i = i > 0 ? -i : 1 - i) t = next + i * ulp;
  return t;
}

#endif  // GEN_OVER_CHORD_H_
