#include "accuracy/oracle.h"

#include <math.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace pex::accuracy {
namespace {

template <int (*F)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)>
int Exact(int, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) {
  return F(r, a, MPFR_RNDN);
}

template <long double (*F)(long double)>
long double Extended(int, long double a, long double) {
  return F(a);
}

constexpr Oracle kOracles[] = {
    {"Exp",
     Exact<mpfr_exp>,
     Extended<::expl>,
     ::exp,
     {0, 1, -1, 0x1.62e42fefa39efp-1},
     {{-745.2, -708.39}, {-708.4, -707.0}},
     {{-104.1, -87.33}, {-87.34, -85.9}}},
    {"Expm1", Exact<mpfr_expm1>, Extended<::expm1l>, ::expm1, {0, 1, -1, 0x1.62e42fefa39efp-1}},
    {"Ln", Exact<mpfr_log>, Extended<::logl>, ::log, {0, 1, 0x1.5bf0a8b145769p+1, 2}},
    {"Log10", Exact<mpfr_log10>, Extended<::log10l>, ::log10, {0, 1, 10, 0.1}},
    {"Log1p", Exact<mpfr_log1p>, Extended<::log1pl>, ::log1p, {0, 1, -1, 0x1.b7e151628aed3p+0}},
};

constexpr long kFirstPrecision = 120;
// Beyond this an undecided error is a tie; the functions here have none but exact values.
constexpr long kLastPrecision = 7680;

}  // namespace

std::span<const Oracle> Oracles() { return kOracles; }

const Oracle& OracleOf(const Function& function) {
  const auto* found = std::ranges::find(kOracles, function.name, &Oracle::function);
  if (found == std::end(kOracles)) {
    throw std::runtime_error("no exact reference for the catalogued function " +
                             std::string(function.name) + ": add it to accuracy/oracle.cc");
  }
  return *found;
}

Error ExactError(const Oracle& oracle, int result, double a, double b, double got,
                 const Format& format) {
  thread_local Real x(53), y(53);
  mpfr_set_d(x, a, MPFR_RNDN);
  mpfr_set_d(y, b, MPFR_RNDN);
  for (long bits = kFirstPrecision;; bits *= 2) {
    Real exact(bits);
    const int inexact = oracle.exact(result, exact, x, y);
    const Error error = ErrorOf(exact, inexact, got, format);
    const double doubt = std::ldexp(1.0, format.precision + 2 - static_cast<int>(bits));
    if (inexact == 0 || bits >= kLastPrecision || std::fabs(error.from_half) > doubt) return error;
  }
}

}  // namespace pex::accuracy
