// Hyperbolic functions of a complex number, and the trigonometric ones, which they are of iz.
//
//   sinh z = sinh x cos y + i cosh x sin y
//   cosh z = cosh x cos y + i sinh x sin y
//   tanh z = (sinh x cosh x + i sin y cos y) / (sinh^2 x + cos^2 y)
//
// All are products and sums of positive terms, so each part keeps the relative error of the real
// functions. Where Annex G leaves the sign of a zero beside a NaN open, it is that of the product
// which the zero stands for.
#include "pex_core/_heap/complex/complex_parts.h"

using namespace pex::cmplx;
using pex::ComplexExtended;

namespace {

// NaN for an infinite y (invalid), or of the NaN parts.
long double NaNOf(double x, double y) {
  return IsInfinite(y) && !IsNaN(x) ? pex::ldbl::Invalid() : Quiet(x, y);
}

// infinity (cos y + i sin y), the signs being those of the finite y's cosine and sine.
ComplexExtended InfiniteTimesCis(double y) {
  const SineCosine v = SinCos(y);
  return {__builtin_copysignl(kInfinity, v.cos), __builtin_copysignl(kInfinity, v.sin)};
}

ComplexExtended CoshSpecial(double x, double y) {
  const long double zero = IsNegative(x) != IsNegative(y) ? -0.0L : 0.0L;
  if (IsZero(x)) return {NaNOf(x, y), zero};
  if (IsInfinite(x)) {
    if (IsZero(y)) return {kInfinity, zero};
    if (!IsFinite(y)) return {kInfinity, NaNOf(x, y)};
    const ComplexExtended r = InfiniteTimesCis(y);
    return {r.re, IsNegative(x) ? -r.im : r.im};
  }
  if (IsZero(y)) return {Quiet(x, x), zero};
  const long double nan = NaNOf(x, y);
  return {nan, nan};
}

ComplexExtended SinhSpecial(double x, double y) {
  if (IsZero(x)) return {x, NaNOf(x, y)};
  if (IsInfinite(x)) {
    if (IsZero(y)) return {x, y};
    if (!IsFinite(y)) return {x, NaNOf(x, y)};
    const ComplexExtended r = InfiniteTimesCis(y);
    return {IsNegative(x) ? -r.re : r.re, r.im};
  }
  if (IsZero(y)) return {Quiet(x, x), y};
  const long double nan = IsInfinite(y) && !IsNaN(x) ? pex::ldbl::Invalid() : QuietFirst(x, y);
  return {nan, nan};
}

ComplexExtended TanhSpecial(double x, double y) {
  if (IsInfinite(x)) {
    if (!IsFinite(y)) return {WithSign(1, x), WithSign(0, y)};
    const SineCosine v = SinCos(y);
    const bool negative = __builtin_signbit(v.sin) != __builtin_signbit(v.cos);
    return {WithSign(1, x), IsZero(y) ? y : negative ? -0.0L : 0.0L};
  }
  if (IsZero(x)) return {x, NaNOf(x, y)};
  if (IsZero(y)) return {Quiet(x, x), y};
  const long double nan = NaNOf(x, y);
  return {nan, nan};
}

// -i f(i z).
template <ComplexExtended (*F)(double, double)>
ComplexExtended Rotated(double re, double im) {
  const ComplexExtended r = F(-im, re);
  return {r.im, -r.re};
}

}  // namespace

ComplexExtended _pexccosh_scalar(double re, double im) {
  if (!AreFinite(re, im)) return CoshSpecial(re, im);
  const SinhCosh h = HyperbolicPair(Clamped(re));
  const SineCosine v = SinCos(im);
  return {h.cosh * v.cos, h.sinh * v.sin};
}

ComplexExtended _pexcsinh_scalar(double re, double im) {
  if (!AreFinite(re, im)) return SinhSpecial(re, im);
  const SinhCosh h = HyperbolicPair(Clamped(re));
  const SineCosine v = SinCos(im);
  return {h.sinh * v.cos, h.cosh * v.sin};
}

ComplexExtended _pexctanh_scalar(double re, double im) {
  if (!AreFinite(re, im)) return TanhSpecial(re, im);
  const SinhCosh h = HyperbolicPair(Clamped(re));
  const SineCosine v = SinCos(im);
  const long double scale = 1 / (h.sinh * h.sinh + v.cos * v.cos);
  return {h.sinh * h.cosh * scale, v.sin * v.cos * scale};
}

ComplexExtended _pexccos_scalar(double re, double im) { return _pexccosh_scalar(-im, re); }
ComplexExtended _pexcsin_scalar(double re, double im) { return Rotated<_pexcsinh_scalar>(re, im); }
ComplexExtended _pexctan_scalar(double re, double im) { return Rotated<_pexctanh_scalar>(re, im); }
