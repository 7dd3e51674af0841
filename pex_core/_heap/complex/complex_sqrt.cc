// Square root of a complex number: t = sqrt((|x| + |z|)/2) and y/(2t) are its parts, or change
// places left of the imaginary axis. Nothing cancels, and no square of a double leaves the range of
// 80-bit numbers.
#include "pex_core/_heap/complex/complex_parts.h"

using namespace pex::cmplx;

namespace {

pex::ComplexExtended Special(double x, double y) {
  if (IsInfinite(y)) return {kInfinity, y};
  if (IsInfinite(x)) {
    const long double other = IsNaN(y) ? Quiet(y, y) : WithSign(0, y);
    if (!IsNegative(x)) return {kInfinity, other};
    return {IsNaN(y) ? other : 0, WithSign(kInfinity, y)};
  }
  const long double nan = QuietFirst(x, y);
  return {nan, nan};
}

}  // namespace

pex::ComplexExtended _pexcsqrt_scalar(double re, double im) {
  if (!AreFinite(re, im)) return Special(re, im);
  if (IsZero(re) && IsZero(im)) return {0, im};
  const long double x = re, y = im;
  const long double ax = __builtin_fabsl(x);
  const long double t = IsZero(im) ? __builtin_sqrtl(ax)
                                   : __builtin_sqrtl((ax + __builtin_sqrtl(x * x + y * y)) * 0.5L);
  const long double other = y / (2 * t);
  if (!IsNegative(re)) return {t, other};
  return {__builtin_fabsl(other), WithSign(t, im)};
}
