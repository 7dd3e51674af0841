// The error of a result against the exact value.
#ifndef ACCURACY_ULP_H_
#define ACCURACY_ULP_H_

#include <mpfr.h>

#include "accuracy/real.h"

namespace pex::accuracy {

// A binary format: `precision` significant bits, multiples of 2^lowest, magnitudes below 2^highest.
struct Format {
  int precision, lowest, highest;
};
inline constexpr Format kDouble{53, -1074, 1024};
inline constexpr Format kSingle{24, -149, 128};

struct Error {
  double ulp = 0;        // in units of the last place of the exact value
  double relative = 0;   // over the exact value, in units of 2^-precision
  double from_half = 0;  // ulp - 1/2 without the rounding of `ulp`: positive is a wrong rounding
  double wanted = 0;     // the exact value rounded to the format
};

// The error of `got` against `exact`, which MPFR rounded with the ternary value `inexact` (so a
// zero or an infinity with inexact != 0 stands for a number beyond MPFR's range).
//
// The unit is the spacing of the format just below the binade's upper end: 2^(e - precision) for
// 2^(e-1) <= |exact| < 2^e, and never less than 2^lowest, the spacing of subnormal numbers. The
// relative error of a subnormal value is taken over the smallest normal number. Both are rounded
// away from zero, so a result is correctly rounded exactly when `ulp` is at most 0.5.
//
// Special values compare as such, with infinite error for a mismatch: NaN, infinities and zeros of
// the exact function with their sign; a zero whose sign is not that of the exact value; an infinity
// where rounding would give a finite number; a finite number where |exact| >= 2^highest. An exact
// value that rounds to infinity but lies below 2^highest (by less than half a unit) may give either
// the largest number, with its ordinary error, or the infinity, with error 0.
Error ErrorOf(mpfr_srcptr exact, int inexact, double got, const Format& format);

// The correct bits that a relative error in units of 2^-precision leaves.
double CorrectBits(double relative, const Format& format);

}  // namespace pex::accuracy

#endif  // ACCURACY_ULP_H_
