// What the catalogued functions are, for the measurer: exact by MPFR, and quickly by the C library.
#ifndef ACCURACY_ORACLE_H_
#define ACCURACY_ORACLE_H_

#include <array>
#include <span>

#include "accuracy/ulp.h"
#include "catalogue/catalogue.h"

namespace pex::accuracy {

// Largest relative errors of the quick references. The C library documents a few units of its last
// place (2^-63, 2^-52); a test compares them with MPFR.
inline constexpr double kExtendedError = 0x1p-60;
inline constexpr double kQuickError = 0x1p-40;

struct Oracle {
  std::string_view function;
  // The exact value of result 0 or 1, rounded to nearest in r's precision; MPFR's ternary value.
  // Functions of one argument ignore b.
  int (*exact)(int result, mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr b);
  // The same in 80-bit arithmetic with a relative error below kExtendedError.
  long double (*extended)(int result, long double a, long double b);
  // Functions of one argument, for a single-precision argument: relative error below kQuickError.
  double (*quick)(double a);
  std::array<double, 4> near{};  // zeros of the function, arguments where it is 1, and 0 and 1
  // Arguments whose results are subnormal, and those whose results lie in the two least normal
  // binades, where the last step of a formula may be normal and a step before it subnormal.
  // {0, 0}: subnormal arguments are those arguments.
  struct Small {
    Range subnormal{}, least_normal{};
  };
  Small small_d{}, small_s{};
  double (*quick_second)(double a) = nullptr;          // the same for result 1, where there is one
  double (*quick_pair)(double a, double b) = nullptr;  // the same for functions of two arguments
};

std::span<const Oracle> Oracles();
// Throws std::runtime_error that names the function when a tiered function has none.
const Oracle& OracleOf(const Function& function);

inline const Format& FormatOf(const Entry& entry) { return entry.is_double() ? kDouble : kSingle; }

// The error of `got` as result 0 or 1 of the function for (a, b), decided: the precision grows from
// 120 bits until it is certain on which side of half a unit the error lies.
Error ExactError(const Oracle& oracle, int result, double a, double b, double got,
                 const Format& format);

}  // namespace pex::accuracy

#endif  // ACCURACY_ORACLE_H_
