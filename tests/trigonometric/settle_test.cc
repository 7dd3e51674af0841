// The last word on a rounding in single precision: the nearest double of any size of argument,
// against MPFR. Few floats ask for it, and every double that is as good as a middle of two floats
// gets it.
#include <gtest/gtest.h>

#include <mpfr.h>

#include <cmath>
#include <vector>

#include "pex_core/_heap/real/trig_single.h"
#include "tests/support/random.h"
#include "tests/trigonometric/arguments.h"

namespace trigonometric_test {
namespace {

constexpr double kMiddle = 1 + 0x1p-24;  // of two floats: everything is in doubt
constexpr int kDoubt = 27;

TEST(Settle, GivesTheNearestDoubleOfEveryQuarter) {
  constexpr struct {
    const char* name;
    pex::sSettle settle;
    int (*exact)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
  } kFunctions[] = {{"sine", pex::sSettleSine, mpfr_sin},
                    {"cosine", pex::sSettleCosine, mpfr_cos},
                    {"tangent", pex::sSettleTangent, mpfr_tan}};
  constexpr uint64_t kSeed = 33;
  Random random(kSeed);
  std::vector<float> arguments = {0.5f,           0.75f,       0x1.921fb6p+0f,
                                  0x1.921fb6p+1f, 0x1.1p+127f, 0x1.fffffep+127f};
  for (int exponent = -12; exponent < 128; ++exponent) {
    for (int i = 0; i < 8; ++i) {
      const double m = 1 + random.Below(1u << 23) * 0x1p-23;
      arguments.push_back(static_cast<float>(std::ldexp(i % 2 ? m : -m, exponent)));
    }
  }
  Real value(400);
  for (const float x : arguments) {
    for (const auto& f : kFunctions) {
      mpfr_set_flt(value.get(), x, MPFR_RNDN);
      f.exact(value.get(), value.get(), MPFR_RNDN);
      EXPECT_EQ(f.settle(x, kMiddle, kDoubt), mpfr_get_d(value.get(), MPFR_RNDN))
          << f.name << std::hexfloat << " " << x << ", seed " << kSeed;
    }
  }
}

TEST(Settle, LeavesWhatIsNotInDoubt) {
  for (const double v : {1.0, 1 + 0x1p-24 + 0x1p-40, -0.75, 1 + 0x1p-24 - 0x1p-40}) {
    EXPECT_EQ(pex::sSettleSine(2.5f, v, 10), v);
    EXPECT_EQ(pex::sSettleCosine(2.5f, v, 10), v);
    EXPECT_EQ(pex::sSettleTangent(2.5f, v, 10), v);
  }
}

}  // namespace
}  // namespace trigonometric_test
