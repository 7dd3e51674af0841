#include "accuracy/ulp.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pex::accuracy {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

double Rounded(mpfr_srcptr exact, const Format& format) {
  return format.precision == 53 ? mpfr_get_d(exact, MPFR_RNDN) : mpfr_get_flt(exact, MPFR_RNDN);
}

Error Special(bool same, double wanted) {
  return same ? Error{0, 0, -0.5, wanted} : Error{kInf, kInf, kInf, wanted};
}

// |got - exact| in units of 2^unit, and over max(|exact|, smallest normal).
Error Distance(mpfr_srcptr exact, double got, const Format& format, double wanted) {
  const long exponent = mpfr_zero_p(exact) ? mpfr_get_emin() : mpfr_get_exp(exact);
  const long unit = std::max<long>(exponent - format.precision, format.lowest);
  Error error{.wanted = wanted};
  Real distance(mpfr_get_prec(exact) + 64), scaled(mpfr_get_prec(exact) + 64);
  mpfr_sub_d(distance, exact, got, MPFR_RNDN);
  mpfr_abs(distance, distance, MPFR_RNDN);

  mpfr_mul_2si(scaled, distance, -unit, MPFR_RNDN);
  error.ulp = mpfr_get_d(scaled, MPFR_RNDU);
  mpfr_sub_d(scaled, scaled, 0.5, MPFR_RNDN);
  error.from_half = mpfr_get_d(scaled, MPFR_RNDA);

  const long smallest_normal = format.lowest + format.precision - 1;
  mpfr_mul_2si(distance, distance, format.precision, MPFR_RNDN);
  if (exponent - 1 < smallest_normal) {
    mpfr_mul_2si(distance, distance, -smallest_normal, MPFR_RNDN);
  } else {
    mpfr_div(distance, distance, exact, MPFR_RNDN);
  }
  error.relative = std::fabs(mpfr_get_d(distance, MPFR_RNDA));
  return error;
}

}  // namespace

Error ErrorOf(mpfr_srcptr exact, int inexact, double got, const Format& format) {
  const double wanted = Rounded(exact, format);
  if (mpfr_nan_p(exact) || std::isnan(got)) {
    return Special(mpfr_nan_p(exact) && std::isnan(got), wanted);
  }
  const bool same_sign = std::signbit(got) == static_cast<bool>(mpfr_signbit(exact));
  if (std::isinf(wanted) && std::isinf(got)) return Special(same_sign, wanted);
  const bool beyond =
      mpfr_inf_p(exact) || (mpfr_regular_p(exact) && mpfr_get_exp(exact) > format.highest);
  if (beyond || std::isinf(got)) return Special(false, wanted);
  if (mpfr_zero_p(exact) && inexact == 0) return Special(got == 0 && same_sign, wanted);
  if (got == 0 && !same_sign) return Special(false, wanted);
  return Distance(exact, got, format, wanted);
}

double CorrectBits(double relative, const Format& format) {
  return relative == 0 ? kInf : format.precision - std::log2(relative);
}

}  // namespace pex::accuracy
