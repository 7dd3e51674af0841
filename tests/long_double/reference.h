// What the long-double tests share: seeds, MPFR values, random arguments.
#ifndef TESTS_LONG_DOUBLE_REFERENCE_H_
#define TESTS_LONG_DOUBLE_REFERENCE_H_

#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "accuracy/real.h"
#include "pex_core/_heap/real/long_double.h"

namespace long_double_test {

using pex::accuracy::Real;
using Function = long double (*)(long double);

constexpr long double kInf = __builtin_infl();
constexpr long double kMin = 0x1p-16382L;        // smallest normal number
constexpr long double kDenormMin = 0x1p-16445L;  // smallest subnormal number
constexpr long double kMax = 0xf.fffffffffffffffp+16380L;

// PEXQUO_TEST_SEED, or a fresh seed; printed, so that a failure can be repeated.
inline uint64_t Seed() {
  static const uint64_t seed = [] {
    const char* given = std::getenv("PEXQUO_TEST_SEED");
    const uint64_t s = given ? std::strtoull(given, nullptr, 0) : std::random_device{}();
    std::printf("PEXQUO_TEST_SEED=%llu\n", static_cast<unsigned long long>(s));
    return s;
  }();
  return seed;
}

// |got - want| in ulps of the 80-bit format at `want`; ulps below the normal numbers are 2^-16445.
// Beyond the largest number the format is continued for one binade, and infinity stands at its
// start.
inline double UlpError(long double got, Real& want) {
  static Real difference(200);
  if (mpfr_nan_p(want.get())) return std::isnan(got) ? 0 : HUGE_VAL;
  if (mpfr_inf_p(want.get())) return got == mpfr_get_ld(want.get(), MPFR_RNDN) ? 0 : HUGE_VAL;
  mpfr_exp_t exponent = mpfr_zero_p(want.get()) ? -20000 : mpfr_get_exp(want.get()) - 64;
  if (exponent < -16445) exponent = -16445;
  if (std::isinf(got) && exponent > 16300) {
    mpfr_set_si_2exp(difference.get(), got > 0 ? 1 : -1, 16384, MPFR_RNDN);
    if (mpfr_cmpabs(want.get(), difference.get()) > 0) return 0;
  } else {
    mpfr_set_ld(difference.get(), got, MPFR_RNDN);
  }
  mpfr_sub(difference.get(), difference.get(), want.get(), MPFR_RNDN);
  mpfr_div_2si(difference.get(), difference.get(), exponent, MPFR_RNDN);
  return std::fabs(mpfr_get_d(difference.get(), MPFR_RNDA));
}

class Random {
 public:
  explicit Random(uint64_t salt) : engine_(Seed() + salt) {}
  uint64_t Word() { return engine_(); }
  int Int(int low, int high) {
    return low + static_cast<int>((Word() >> 32) * static_cast<uint64_t>(high - low + 1) >> 32);
  }
  // In [0, 1), 64 bits, the last of them random.
  long double Unit() { return static_cast<long double>(Word()) * 0x1p-64L; }
  long double Uniform(long double low, long double high) { return low + (high - low) * Unit(); }
  // Any significand, exponent uniform in [low, high], -16383 giving a subnormal number; any sign
  // where `sign` is set.
  long double Exponents(int low, int high, bool sign) {
    const int exponent = Int(low, high) + 16383;
    uint64_t significand = Word() | uint64_t{1} << 63;
    if (exponent == 0) significand = (significand << 1 >> 1) >> Int(0, 62);
    const auto s = static_cast<uint16_t>(sign && Word() >> 63 ? 0x8000 : 0);
    return pex::ldbl::FromBits({significand, static_cast<uint16_t>(exponent | s)});
  }
  // A few ulps from x.
  long double Near(long double x) {
    for (int i = Int(-5, 5); i != 0; i += i < 0 ? 1 : -1)
      x = std::nextafter(x, i < 0 ? -kInf : kInf);
    return x;
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace long_double_test

#endif  // TESTS_LONG_DOUBLE_REFERENCE_H_
