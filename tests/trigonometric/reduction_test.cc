// The scalar reduction by pi/2 against MPFR.
#include <gtest/gtest.h>

#include <cstdio>

#include "pex_core/_heap/real/trig_reduce.h"
#include "tests/trigonometric/arguments.h"

namespace trigonometric_test {
namespace {

TEST(ReduceByPiOver2, LeavesTheRestOfTheNearestMultiple) {
  constexpr uint64_t kSeed = 30;
  std::printf("seed %d\n", static_cast<int>(kSeed));
  Real half_pi(kExactAngle), quotient(kExactAngle), rest(kExactAngle);
  mpfr_const_pi(half_pi.get(), MPFR_RNDN);
  mpfr_div_ui(half_pi.get(), half_pi.get(), 2, MPFR_RNDN);
  for (const double x : Arguments(20000, kSeed)) {
    pex::ReducedArgument r;
    const int quadrant = pex::_pexreduce_pio2d(&r, x);
    ASSERT_LE(std::fabs(r.high), 0.7854) << std::hexfloat << x;
    ASSERT_EQ(r.high + r.low, r.high) << std::hexfloat << x;
    // (x - high - low)/(pi/2) is the quadrant modulo 4, but for the error.
    mpfr_set_d(quotient.get(), x, MPFR_RNDN);
    mpfr_sub_d(quotient.get(), quotient.get(), r.high, MPFR_RNDN);
    mpfr_sub_d(quotient.get(), quotient.get(), r.low, MPFR_RNDN);
    mpfr_div(quotient.get(), quotient.get(), half_pi.get(), MPFR_RNDN);
    mpfr_rint(rest.get(), quotient.get(), MPFR_RNDN);
    mpfr_sub(quotient.get(), quotient.get(), rest.get(), MPFR_RNDN);
    ASSERT_LE(std::fabs(mpfr_get_d(quotient.get(), MPFR_RNDN)), std::fabs(r.high) * 0x1p-68)
        << std::hexfloat << x;
    mpfr_set_ui(quotient.get(), 4, MPFR_RNDN);
    mpfr_fmod(rest.get(), rest.get(), quotient.get(), MPFR_RNDN);
    ASSERT_EQ((mpfr_get_si(rest.get(), MPFR_RNDN) + 4) % 4, quadrant) << std::hexfloat << x;
  }
}

}  // namespace
}  // namespace trigonometric_test
