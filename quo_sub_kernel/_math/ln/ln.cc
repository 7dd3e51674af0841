// The scalar natural logarithm, x = 2^k m with m in [1, 2):
//   log(x) = k log(2) + log(1/c) + log(1 + t),  t = c m - 1,  |t| < 0.0082,
// where c is the reciprocal of the multiple of 1/64 nearest to m, and log(1 + t) is t and a
// polynomial. m is split into a head of 32 bits and a tail, so that head c - 1 is exact.
// Largest error seen: 1.50 ulp, as three sums round in turn; 0.53 ulp for m next above 1.
#include <bit>
#include <cstddef>
#include <cstdint>

#include "quo_sub_kernel/_math/ln/ln_tables.h"
#include "quo_sub_kernel/_math/scalar.h"

namespace quo {
namespace {

constexpr int kMantissaBits = 52, kBias = 1023, kExponentMask = 0x7FF;
constexpr uint64_t kOne = 0x3FF0000000000000, kMantissa = 0x000FFFFFFFFFFFFF;
constexpr uint64_t kHead = 0x7FFFFFFFFFE00000;
constexpr double kTwo52 = 4503599627370496.0;

// 2^42 - 1 + 7.5/1024. Added to m, it leaves m - 1 to 2^-10 in the low word, moved by half a step
// of 1/64: bits 4 to 10 are the number of the nearest step.
constexpr double kRowShift = 4398046511103.0073;
constexpr uint32_t kRowMask = 0x7F0;

// log(2) as a multiple of 2^-42 and the rest.
constexpr double kLn2High = 0.6931471805598903, kLn2Low = 5.497923018708371e-14;

// log(1 + t) - t = A2 t^2 + .. + A7 t^7.
constexpr double kA2 = -0.5000000000000031, kA3 = 0.33333333333333787, kA4 = -0.24999999959276006,
                 kA5 = 0.1999999994995557, kA6 = -0.1666800146149218, kA7 = 0.1428709072311373;

int BiasedExponent(double x) {
  return static_cast<int>(std::bit_cast<uint64_t>(x) >> kMantissaBits) & kExponentMask;
}

}  // namespace

double __quodLn(double x) {
  int exponent = BiasedExponent(x) - kBias;
  if (exponent == -kBias) {
    x *= kTwo52;
    if (x == 0) return kLnSmallest;
    exponent = BiasedExponent(x) - kBias - kMantissaBits;
  }
  const double m = std::bit_cast<double>((std::bit_cast<uint64_t>(x) & kMantissa) | kOne);
  const double k = exponent;
  const auto offset = static_cast<uint32_t>(std::bit_cast<uint64_t>(m + kRowShift)) & kRowMask;
  const size_t row = offset / sizeof T_Tbl[0];

  const double head = std::bit_cast<double>(std::bit_cast<uint64_t>(m) & kHead);
  const double t_head = head * B_Tbl[row][0] - 1;
  const double t_tail = (m - head) * B_Tbl[row][1];
  const double t = t_head + t_tail;

  // The tail belongs to the low sum, but to the high one for m next to 1, where that is m - 1.
  double high = T_Tbl[row][0] + t_head + k * kLn2High;
  double low = k * kLn2Low + T_Tbl[row][1];
  (exponent == 0 && row == 0 ? high : low) += t_tail;

  const double t2 = t * t;
  const double even = t2 * (kA2 + t2 * (kA4 + t2 * kA6));
  const double odd = t2 * t * (kA3 + t2 * (kA5 + t2 * kA7));
  return (high + low) + (even + odd);
}

float __quosLn(float x) { return static_cast<float>(__quodLn(x)); }

}  // namespace quo
