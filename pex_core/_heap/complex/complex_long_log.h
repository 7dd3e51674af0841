// b ln a in fixed point, for powers whose exponent weighs more than the bits of a pair.
#ifndef PEX_CORE__HEAP_COMPLEX_COMPLEX_LONG_LOG_H_
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_LONG_LOG_H_

#include "pex_core/_heap/real/extended.h"

#pragma GCC visibility push(hidden)
namespace pex::cmplx {

// The real part; the imaginary one is quadrant pi/2 + rest, |rest| <= pi/4.
struct LongProduct {
  ldbl::Pair re;
  int quadrant;
  ldbl::Pair rest;
};

// b ln a for finite a, b, neither of them 0. Re, unless it is above 2^12, and rest are off by less
// than 2^-100.
LongProduct TimesLogarithm(double a_re, double a_im, double b_re, double b_im);

}  // namespace pex::cmplx
#pragma GCC visibility pop

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_LONG_LOG_H_
