// Inverse hyperbolic and inverse trigonometric functions of a complex number.
//
// For a, b >= 0 let r = |a + 1 + ib|, s = |a - 1 + ib|, A = (r + s)/2. Then asin(a + ib) = atan(a /
// sqrt((A - a)(A + a))) + i ln(A + sqrt((A - 1)(A + 1))) (Hull, Fairgrieve and Tang 1997), where A
// - 1 and A - a are written as sums of positive terms: r - (a + 1) = b^2/(r + (a + 1)), and the
// like. No term can leave the range of 80-bit numbers, so one formula holds for all doubles.
//
//   atanh z = ln(1 + 4x/((1 - x)^2 + y^2))/4 + i atan2(2y, (1 - x)(1 + x) - y^2)/2 for x >= 0
#include "pex_core/_heap/complex/complex_parts.h"

using namespace pex::cmplx;
using pex::ComplexExtended;

namespace {

// asin(a + ib) = atan(a/root) + i log.
struct Arc {
  long double root, log;
};

Arc ArcOf(long double a, long double b) {
  const long double b2 = b * b;
  const long double more = a + 1, less = a - 1;
  const long double r = __builtin_sqrtl(more * more + b2);
  const long double s = __builtin_sqrtl(less * less + b2);
  const long double from_r = b2 / (r + more);  // r - (a + 1)
  // s - |a - 1| and s + |a - 1|, the smaller of which is 0 for b = 0.
  const long double s_more = s + __builtin_fabsl(less);
  const long double s_less = b2 == 0 ? 0 : b2 / s_more;
  const long double A = 0.5L * (r + s);
  const long double over_one = 0.5L * (from_r + (less < 0 ? s_less : s_more));
  const long double over_a = 0.5L * (from_r + (less < 0 ? s_more : s_less));
  return {__builtin_sqrtl(over_a * (A + a)),
          pex::ldbl::Log1p(over_one + __builtin_sqrtl(over_one * (over_one + 2)))};
}

// The direction of x + iy with an infinite part, for x, y not NaN: from 0 to pi, without a sign.
long double FarAngle(double x, double y) {
  if (!IsInfinite(x)) return kHalfPi;
  if (!IsInfinite(y)) return IsNegative(x) ? kPi : 0;
  return IsNegative(x) ? kHalfPi + kQuarterPi : kQuarterPi;
}

ComplexExtended AsinhSpecial(double x, double y) {
  const bool infinite = IsInfinite(x) || IsInfinite(y);
  if (IsNaN(x) || IsNaN(y)) {
    const long double nan = Quiet(x, y);
    if (IsNaN(x) && IsZero(y)) return {nan, y};
    return {infinite ? WithSign(kInfinity, x) : nan, nan};
  }
  return {WithSign(kInfinity, x), WithSign(FarAngle(__builtin_fabs(x), y), y)};
}

// {angle, size}: the parts of acos without their signs.
ComplexExtended AcosSpecial(double x, double y) {
  const bool infinite = IsInfinite(x) || IsInfinite(y);
  if (IsNaN(x) || IsNaN(y)) {
    const long double nan = Quiet(x, y);
    return {IsZero(x) ? kHalfPi : nan, infinite ? kInfinity : nan};
  }
  return {FarAngle(x, y), kInfinity};
}

// The parts of acos without the imaginary one's sign.
ComplexExtended AcosUnsigned(double re, double im) {
  if (!AreFinite(re, im)) return AcosSpecial(re, im);
  const Arc arc = ArcOf(__builtin_fabsl(re), __builtin_fabsl(im));
  return {_pexatan2l_scalar(arc.root, re), arc.log};
}

ComplexExtended AtanhSpecial(double x, double y) {
  if (IsInfinite(y)) return {WithSign(0, x), WithSign(kHalfPi, y)};
  if (IsInfinite(x)) {
    return {WithSign(0, x), IsNaN(y) ? Quiet(y, y) : WithSign(kHalfPi, y)};
  }
  const long double nan = QuietFirst(x, y);
  return {IsZero(x) ? x : nan, nan};
}

// -i f(i z).
template <ComplexExtended (*F)(double, double)>
ComplexExtended Rotated(double re, double im) {
  const ComplexExtended r = F(-im, re);
  return {r.im, -r.re};
}

}  // namespace

ComplexExtended _pexcasinh_scalar(double re, double im) {
  if (!AreFinite(re, im)) return AsinhSpecial(re, im);
  // asinh(x + iy) = -i asin(-y + ix), up to signs that are the argument's.
  const long double y = im;
  const Arc arc = ArcOf(__builtin_fabsl(y), __builtin_fabsl(re));
  return {WithSign(arc.log, re), _pexatan2l_scalar(y, arc.root)};
}

ComplexExtended _pexcacos_scalar(double re, double im) {
  const ComplexExtended r = AcosUnsigned(re, im);
  return {r.re, IsNegative(im) ? r.im : -r.im};
}

ComplexExtended _pexcacosh_scalar(double re, double im) {
  const ComplexExtended r = AcosUnsigned(re, im);
  return {r.im, WithSign(r.re, im)};
}

ComplexExtended _pexcatanh_scalar(double re, double im) {
  if (!AreFinite(re, im)) return AtanhSpecial(re, im);
  const long double x = __builtin_fabsl(re), y = im;
  const long double less = 1 - x, more = 1 + x;
  const long double y2 = y * y;
  const long double angle = 0.5L * _pexatan2l_scalar(2 * y, less * more - y2);
  const long double size = 0.25L * pex::ldbl::Log1p(4 * x / (less * less + y2));
  return {WithSign(size, re), angle};
}

ComplexExtended _pexcasin_scalar(double re, double im) {
  return Rotated<_pexcasinh_scalar>(re, im);
}
ComplexExtended _pexcatan_scalar(double re, double im) {
  return Rotated<_pexcatanh_scalar>(re, im);
}
