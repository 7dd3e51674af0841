#include "pex_core/cabs/cabs_scalar.h"

#include <cmath>
#include <limits>

#include "pex_core/_heap/real/long_double_functions.h"
#include "pex_core/cmul/products.h"

namespace pex {
namespace {

// A NaN made quiet, raising invalid where it was not; other numbers as they are.
template <typename T>
T Quiet(T x) {
  const volatile T same = x;
  return std::isnan(x) ? same + same : x;
}

// One part at least is not finite.
template <typename T>
T NotFinite(T re, T im) {
  const volatile T quiet_re = Quiet(re), quiet_im = Quiet(im);
  if (std::isinf(re) || std::isinf(im)) return std::numeric_limits<T>::infinity();
  return std::isnan(im) ? quiet_im : quiet_re;
}

double Modulus(double re, double im) {
  const ldbl::Pair square = ldbl::SumOfProducts(ldbl::TwoSquare(re), ldbl::TwoSquare(im));
  return static_cast<double>(ldbl::ToOdd(ldbl::Sqrt(square)));
}

}  // namespace

// In double precision squares of floats neither overflow nor underflow, and they are exact.
float cAbsScalar(Complex<float> a) {
  if (!std::isfinite(a.re) || !std::isfinite(a.im)) {
    return NotFinite(std::fabs(a.re), std::fabs(a.im));
  }
  const double re = a.re, im = a.im;
  return static_cast<float>(_pexdsqrt_scalar(re * re + im * im));
}

double zAbsScalar(Complex<double> a) {
  if (!std::isfinite(a.re) || !std::isfinite(a.im)) return NotFinite(a.re, a.im);
  if (a.re == 0) return std::fabs(a.im);
  if (a.im == 0) return std::fabs(a.re);
  return ldbl::UnderX87Guard<Modulus>(a.re, a.im);
}

}  // namespace pex
