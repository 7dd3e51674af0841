#include "accuracy/oracle.h"

#include <math.h>

#include <algorithm>
#include <cmath>
#include <limits>
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

template <int (*F)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t)>
int ExactOfTwo(int, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr b) {
  return F(r, a, b, MPFR_RNDN);
}

template <long double (*F)(long double, long double)>
long double ExtendedOfTwo(int, long double a, long double b) {
  return F(a, b);
}

int ExactSinCos(int result, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) {
  return result == 0 ? mpfr_sin(r, a, MPFR_RNDN) : mpfr_cos(r, a, MPFR_RNDN);
}
long double ExtendedSinCos(int result, long double a, long double) {
  return result == 0 ? ::sinl(a) : ::cosl(a);
}

// Squares and cubes of the arguments are exact before the one rounding.
int ExactPow2o3(int, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) {
  Real square(2 * mpfr_get_prec(a));
  mpfr_sqr(square, a, MPFR_RNDN);
  return mpfr_cbrt(r, square, MPFR_RNDN);
}
long double ExtendedPow2o3(int, long double a, long double) { return ::cbrtl(a * a); }
double QuickPow2o3(double a) { return static_cast<double>(::cbrtl(a * a)); }
// The C library's double cube root errs by 3.7 units.
double QuickCbrt(double a) { return static_cast<double>(::cbrtl(a)); }

int ExactPow3o2(int, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) {
  Real cube(3 * mpfr_get_prec(a));
  mpfr_pow_ui(cube, a, 3, MPFR_RNDN);
  return mpfr_sqrt(r, cube, MPFR_RNDN);
}
long double ExtendedPow3o2(int, long double a, long double) { return a * ::sqrtl(a); }
double QuickPow3o2(double a) { return static_cast<double>(a * ::sqrtl(a)); }

// The exponents for which Powx is a root: as they stand in either type.
bool IsExponent(double b, double fraction) {
  return b == fraction || b == static_cast<double>(static_cast<float>(fraction));
}

// MPFR's reciprocal root of -0 is +inf; 1 / sqrt(-0) is -inf.
int ExactInvSqrt(int, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) {
  if (mpfr_zero_p(a)) {
    mpfr_set_inf(r, mpfr_signbit(a) ? -1 : 1);
    return 0;
  }
  return mpfr_rec_sqrt(r, a, MPFR_RNDN);
}
long double ExtendedInvSqrt(int, long double a, long double) { return 1 / ::sqrtl(a); }
double QuickInvSqrt(double a) { return static_cast<double>(1 / ::sqrtl(a)); }

int ExactInvCbrt(int, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) {
  return mpfr_rootn_si(r, a, -3, MPFR_RNDN);
}
long double ExtendedInvCbrt(int, long double a, long double) { return 1 / ::cbrtl(a); }
double QuickInvCbrt(double a) { return static_cast<double>(1 / ::cbrtl(a)); }

int ExactPowx(int result, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr b) {
  const double exponent = mpfr_get_d(b, MPFR_RNDN);
  if (exponent == 0.5) return mpfr_sqrt(r, a, MPFR_RNDN);
  if (exponent == -0.5) return ExactInvSqrt(result, r, a, b);
  if (exponent == 1.5) return ExactPow3o2(result, r, a, b);
  if (IsExponent(exponent, 1.0 / 3)) return mpfr_cbrt(r, a, MPFR_RNDN);
  if (IsExponent(exponent, -1.0 / 3)) return ExactInvCbrt(result, r, a, b);
  if (IsExponent(exponent, 2.0 / 3)) return ExactPow2o3(result, r, a, b);
  return mpfr_pow(r, a, b, MPFR_RNDN);
}
long double ExtendedPowx(int result, long double a, long double b) {
  const auto exponent = static_cast<double>(b);
  if (exponent == 0.5) return ::sqrtl(a);
  if (exponent == -0.5) return ExtendedInvSqrt(result, a, b);
  if (exponent == 1.5) return ExtendedPow3o2(result, a, b);
  if (IsExponent(exponent, 1.0 / 3)) return ::cbrtl(a);
  if (IsExponent(exponent, -1.0 / 3)) return ExtendedInvCbrt(result, a, b);
  if (IsExponent(exponent, 2.0 / 3)) return ExtendedPow2o3(result, a, b);
  return ::powl(a, b);
}

int ExactInv(int, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) {
  return mpfr_ui_div(r, 1, a, MPFR_RNDN);
}
long double ExtendedInv(int, long double a, long double) { return 1 / a; }
double QuickInv(double a) { return 1 / a; }

long double ExtendedDiv(int, long double a, long double b) { return a / b; }

// erfc(-a / sqrt(2)) / 2.
int ExactCdfNorm(int, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) {
  const long bits = mpfr_get_prec(r) + 64;
  Real x(bits);
  mpfr_set_ui(x, 2, MPFR_RNDN);
  mpfr_rec_sqrt(x, x, MPFR_RNDN);
  mpfr_mul(x, x, a, MPFR_RNDN);
  mpfr_neg(x, x, MPFR_RNDN);
  Real y(bits);
  const int inexact = mpfr_erfc(y, x, MPFR_RNDN);
  mpfr_div_2ui(y, y, 1, MPFR_RNDN);
  const int rounded = mpfr_set(r, y, MPFR_RNDN);
  return rounded != 0 ? rounded : inexact;
}
// The rounding error of the argument, which the function magnifies by its square, is put back with
// the derivative.
long double ExtendedCdfNorm(int, long double a, long double) {
  constexpr long double kHigh = 0x1.6ap-1L, kLow = 0x9.e667f3bcc908b2fbp-17L;
  const long double high = -a * kHigh;
  if (!(std::fabs(high) < 110)) return 0.5L * ::erfcl(high);
  const long double argument = high - a * kLow;
  const long double rest = (high - argument) - a * kLow;
  return 0.5L * (::erfcl(argument) - 1.12837916709551257390L * ::expl(-argument * argument) * rest);
}
double QuickCdfNorm(double a) { return static_cast<double>(ExtendedCdfNorm(0, a, 0)); }

// The inverses of the error functions, from x = erf(y) and q = 1 - |x|, of which x is exact for
// q >= 1/2 and q elsewhere, by Halley's method.
template <typename T>
struct ErfArgument {
  T x, q;
};
template <typename T>
ErfArgument<T> OfErf(T a) {
  return {a, 1 - std::fabs(a)};
}
template <typename T>
ErfArgument<T> OfErfc(T a) {
  return {1 - a, std::min(a, 2 - a)};
}
template <typename T>
ErfArgument<T> OfCdfNorm(T a) {
  return {2 * (a - T(0.5)), 2 * std::min(a, 1 - a)};
}

// Within a few units of T's last place, for finite y.
template <typename T>
T ErfInverse(ErfArgument<T> u) {
  constexpr T kHalfRootPi = 0.88622692545275801365L;
  const T x = std::fabs(u.x), q = u.q;
  if (!(q >= 0)) return std::numeric_limits<T>::quiet_NaN();
  if (q == 0) return std::copysign(std::numeric_limits<T>::infinity(), u.x);
  if (x < T(0x1p-18)) return kHalfRootPi * u.x * (1 + x * x * T(0.26179938779914943654L));
  T y;
  if (q >= T(0.5)) {
    const T x2 = x * x;
    y = kHalfRootPi * x * (1 + x2 * (T(0.2618) + x2 * (T(0.14393) + x2 * T(0.13))));
  } else {
    const T log = -std::log(q), pi = 3.14159265358979323846L;
    const T y2 = log - T(0.5) * std::log(pi * (log + T(0.3)));
    y = std::sqrt(y2 < T(0.2) ? T(0.2) : y2);
    if (y > 2) y = std::sqrt(log - std::log(std::sqrt(pi) * y * (1 + 1 / (2 * y * y + 3))));
  }
  for (int i = 0; i < 20; ++i) {
    const T difference = q >= T(0.5) ? std::erf(y) - x : q - std::erfc(y);
    const T newton = difference * kHalfRootPi * std::exp(y * y);
    y -= newton / (1 + newton * y);
    if (std::fabs(newton) * (1 + y) < (sizeof(T) == 8 ? T(0x1p-18) : T(0x1p-23)) * y) break;
  }
  return std::copysign(y, u.x);
}

template <ErfArgument<long double> (*Of)(long double), bool kNorm>
long double ExtendedErfInverse(int, long double a, long double) {
  return ErfInverse(Of(a)) * (kNorm ? 1.41421356237309504880L : 1.0L);
}
template <ErfArgument<double> (*Of)(double), bool kNorm>
double QuickErfInverse(double a) {
  return ErfInverse(Of(a)) * (kNorm ? 1.41421356237309504880 : 1.0);
}

// By Newton's method from the extended value.
template <ErfArgument<long double> (*Of)(long double), bool kNorm>
int ExactErfInverse(int, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) {
  const ErfArgument<long double> u = Of(mpfr_get_ld(a, MPFR_RNDN));  // x or q exact
  const long double start = ErfInverse(u);
  if (start == 0 || !std::isfinite(start)) return mpfr_set_ld(r, start, MPFR_RNDN);
  const long bits = mpfr_get_prec(r) + 64;
  const bool central = u.q >= 0.5L;
  Real y(bits), value(bits), factor(bits), target(64);
  mpfr_set_ld(y, std::fabs(start), MPFR_RNDN);
  mpfr_set_ld(target, central ? std::fabs(u.x) : u.q, MPFR_RNDN);
  for (bool last = false; !last;) {
    central ? mpfr_erf(value, y, MPFR_RNDN) : mpfr_erfc(value, y, MPFR_RNDN);
    mpfr_sub(value, value, target, MPFR_RNDN);
    mpfr_sqr(factor, y, MPFR_RNDN);
    mpfr_exp(factor, factor, MPFR_RNDN);
    mpfr_mul(value, value, factor, MPFR_RNDN);
    mpfr_const_pi(factor, MPFR_RNDN);
    mpfr_sqrt(factor, factor, MPFR_RNDN);
    mpfr_mul(value, value, factor, MPFR_RNDN);
    mpfr_div_2ui(value, value, 1, MPFR_RNDN);
    // A step squares the relative error, but for a factor of up to y^2 < 2^10.
    last = mpfr_zero_p(value) ||
           mpfr_get_exp(value) < mpfr_get_exp(y) - static_cast<mpfr_exp_t>(bits) / 2 - 8;
    central ? mpfr_sub(y, y, value, MPFR_RNDN) : mpfr_add(y, y, value, MPFR_RNDN);
  }
  if (kNorm) {
    mpfr_sqrt_ui(factor, 2, MPFR_RNDN);
    mpfr_mul(y, y, factor, MPFR_RNDN);
  }
  if (std::signbit(start)) mpfr_neg(y, y, MPFR_RNDN);
  const int rounded = mpfr_set(r, y, MPFR_RNDN);
  return rounded != 0 ? rounded : 1;
}

constexpr double kPi = 0x1.921fb54442d18p+1;
// The double number next to an odd multiple of pi / 2.
constexpr double kNearestToPole = 0x1.6ac5b262ca1ffp+849;

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
    {"Sin", Exact<mpfr_sin>, Extended<::sinl>, ::sin, {0, kPi, kPi / 2, kNearestToPole}},
    {"Cos", Exact<mpfr_cos>, Extended<::cosl>, ::cos, {0, kPi, kPi / 2, kNearestToPole}},
    {"SinCos",
     ExactSinCos,
     ExtendedSinCos,
     ::sin,
     {0, kPi, kPi / 2, kNearestToPole},
     {},
     {},
     ::cos},
    {"Tan", Exact<mpfr_tan>, Extended<::tanl>, ::tan, {0, kPi, kPi / 2, kNearestToPole}},
    {"Pow",
     ExactOfTwo<mpfr_pow>,
     ExtendedOfTwo<::powl>,
     nullptr,
     {0, 1, -1, 2},
     {},
     {},
     nullptr,
     ::pow},
    {"Powx", ExactPowx, ExtendedPowx, nullptr, {0, 1, -1, 2}},
    {"Pow2o3", ExactPow2o3, ExtendedPow2o3, QuickPow2o3, {0, 1, -1, 8}},
    {"Pow3o2",
     ExactPow3o2,
     ExtendedPow3o2,
     QuickPow3o2,
     {0, 1, -1, 4},
     {{0x1p-716, 0x1p-681}, {0x1p-682, 0x1p-680}},
     {{0x1p-100, 0x1p-83}, {0x1p-85, 0x1p-83}}},
    {"Sqrt", Exact<mpfr_sqrt>, Extended<::sqrtl>, ::sqrt, {0, 1, 4, 2}},
    {"InvSqrt", ExactInvSqrt, ExtendedInvSqrt, QuickInvSqrt, {0, 1, 4, 2}},
    {"Cbrt", Exact<mpfr_cbrt>, Extended<::cbrtl>, QuickCbrt, {0, 1, -1, 8}},
    {"InvCbrt", ExactInvCbrt, ExtendedInvCbrt, QuickInvCbrt, {0, 1, -1, 8}},
    {"Inv",
     ExactInv,
     ExtendedInv,
     QuickInv,
     {0, 1, -1, 2},
     {{0x1p1022, 0x1.fffffffffffffp1023}, {0x1p1020, 0x1p1022}},
     {{0x1p126, 0x1.fffffep127}, {0x1p124, 0x1p126}}},
    {"Div", ExactOfTwo<mpfr_div>, ExtendedDiv, nullptr, {0, 1, -1, 2}},
    {"Hypot",
     ExactOfTwo<mpfr_hypot>,
     ExtendedOfTwo<::hypotl>,
     nullptr,
     {0, 1, -1, 3},
     {},
     {},
     nullptr,
     ::hypot},
    {"Acos", Exact<mpfr_acos>, Extended<::acosl>, ::acos, {0, 1, -1, 0.5}},
    {"Asin", Exact<mpfr_asin>, Extended<::asinl>, ::asin, {0, 1, -1, 0.5}},
    {"Atan", Exact<mpfr_atan>, Extended<::atanl>, ::atan, {0, 1, -1, 0.125}},
    {"Atan2",
     ExactOfTwo<mpfr_atan2>,
     ExtendedOfTwo<::atan2l>,
     nullptr,
     {0, 1, -1, 0.125},
     {},
     {},
     nullptr,
     ::atan2},
    {"Acosh", Exact<mpfr_acosh>, Extended<::acoshl>, ::acosh, {0, 1, 2, 0x1.8b07551d9f55p+0}},
    {"Asinh", Exact<mpfr_asinh>, Extended<::asinhl>, ::asinh, {0, 1, -1, 0x1.2cd9fc44eb982p+0}},
    {"Atanh", Exact<mpfr_atanh>, Extended<::atanhl>, ::atanh, {0, 1, -1, 0x1.85efab514f394p-1}},
    {"Cosh", Exact<mpfr_cosh>, Extended<::coshl>, ::cosh, {0, 1, -1, 0}},
    {"Sinh", Exact<mpfr_sinh>, Extended<::sinhl>, ::sinh, {0, 1, -1, 0x1.c34366179d427p-1}},
    {"Tanh", Exact<mpfr_tanh>, Extended<::tanhl>, ::tanh, {0, 1, -1, 0}},
    {"Erf", Exact<mpfr_erf>, Extended<::erfl>, ::erf, {0, 1, -1, 0}},
    {"Erfc",
     Exact<mpfr_erfc>,
     Extended<::erfcl>,
     ::erfc,
     {0, 1, -1, 0},
     {{26.54, 27.23}, {26.51, 26.55}},
     {{9.19, 10.06}, {9.1, 9.2}}},
    {"CdfNorm",
     ExactCdfNorm,
     ExtendedCdfNorm,
     QuickCdfNorm,
     {0, 1, -1, 0},
     {{-38.49, -37.51}, {-37.53, -37.48}},
     {{-14.2, -12.9}, {-13, -12.8}}},
    {"ErfInv",
     ExactErfInverse<OfErf, false>,
     ExtendedErfInverse<OfErf, false>,
     QuickErfInverse<OfErf, false>,
     {0, 1, -1, 0x1.af767a741088bp-1}},
    {"ErfcInv",
     ExactErfInverse<OfErfc, false>,
     ExtendedErfInverse<OfErfc, false>,
     QuickErfInverse<OfErfc, false>,
     {0, 1, 2, 0x1.4226162fbddd5p-3}},
    {"CdfNormInv",
     ExactErfInverse<OfCdfNorm, true>,
     ExtendedErfInverse<OfCdfNorm, true>,
     QuickErfInverse<OfCdfNorm, true>,
     {0, 0.5, 1, 0x1.aec4bd120d37dp-1}},
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
