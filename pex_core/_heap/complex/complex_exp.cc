// e^z = e^x (cos y + i sin y).
#include "pex_core/_heap/complex/complex_parts.h"

using namespace pex::cmplx;

namespace {

pex::ComplexExtended Special(double x, double y) {
  if (IsZero(y)) return {pex::ldbl::Exp(x), y};
  if (IsInfinite(x)) {
    const long double size = IsNegative(x) ? 0 : kInfinity;
    if (IsFinite(y)) {
      const SineCosine v = SinCos(y);
      return {__builtin_copysignl(size, v.cos), __builtin_copysignl(size, v.sin)};
    }
    if (size == 0) return {0, WithSign(0, y)};
    return {size, IsNaN(y) ? Quiet(y, y) : pex::ldbl::Invalid()};
  }
  if (IsInfinite(y) && !IsNaN(x)) {
    const long double nan = pex::ldbl::Invalid();
    return {nan, nan};
  }
  const long double nan = Quiet(x, y);
  return {nan, nan};
}

}  // namespace

pex::ComplexExtended _pexcexpl_scalar(double re, double im) {
  if (!AreFinite(re, im)) return Special(re, im);
  if (IsZero(im)) return {pex::ldbl::Exp(re), im};
  const long double e = pex::ldbl::Exp(Clamped(re));
  const SineCosine v = SinCos(im);
  return {e * v.cos, e * v.sin};
}

pex::ComplexDouble _pexcexp_scalar(double re, double im) {
  const pex::ComplexExtended r = _pexcexpl_scalar(re, im);
  return {static_cast<double>(r.re), static_cast<double>(r.im)};
}
