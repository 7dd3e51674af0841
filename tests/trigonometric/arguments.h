// Arguments and exact values for the tests of trigonometric routines.
#ifndef TESTS_TRIGONOMETRIC_ARGUMENTS_H_
#define TESTS_TRIGONOMETRIC_ARGUMENTS_H_

#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "accuracy/real.h"
#include "tests/support/random.h"

namespace trigonometric_test {

using pex::accuracy::Real;
constexpr long kExactAngle = 2400;  // bits that hold any double reduced by pi/2 and then some

// Doubles of every size, ordinary angles, and the doubles next to multiples of pi/2 and pi/64.
inline std::vector<double> Arguments(int count, uint64_t seed) {
  Random random(seed);
  Real angle(kExactAngle);
  const auto multiple = [&](double n, int parts) {
    mpfr_const_pi(angle.get(), MPFR_RNDN);
    mpfr_mul_d(angle.get(), angle.get(), n, MPFR_RNDN);
    mpfr_div_ui(angle.get(), angle.get(), static_cast<unsigned>(parts), MPFR_RNDN);
    return mpfr_get_d(angle.get(), MPFR_RNDN);
  };
  // Next to multiples of pi/2 as no other doubles; the ends of the reductions' ranges.
  std::vector<double> all = {6381956970095103e59,
                             0x1.6ac5b262ca1ffp+849,
                             1e22,
                             0x1.fffffffffffffp1023,
                             0x1p17,
                             0x1.fffffffffffffp16,
                             0x1p23,
                             0x1.fffffffffffffp22,
                             0x1p30,
                             0x1.fffffffffffffp29,
                             0x1p-252,
                             0x1.fffffffffffffp-253,
                             1e300};
  while (static_cast<int>(all.size()) < count) {
    const double sign = random.Below(2) ? 1 : -1;
    all.push_back(sign * std::ldexp(1 + random.Unit(), static_cast<int>(random.Below(1300)) - 276));
    all.push_back(sign * std::ldexp(1 + random.Unit(), static_cast<int>(random.Below(40)) - 8));
    all.push_back(sign * 8 * random.Unit());
    all.push_back(multiple(
        sign * std::floor(std::ldexp(1 + random.Unit(), static_cast<int>(random.Below(34)))), 2));
    all.push_back(multiple(
        sign * std::floor(std::ldexp(1 + random.Unit(), static_cast<int>(random.Below(20)))), 64));
  }
  return all;
}

}  // namespace trigonometric_test

#endif  // TESTS_TRIGONOMETRIC_ARGUMENTS_H_
