// |x| = N ln2/64 + r, N = 64 M + J, |r| <= ln2/128: e^|x| = 2^M 2^(J/64) e^r, and e^-|x| likewise.
#include "pex_core/_heap/real/hyperbolic_scalar.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "pex_core/_heap/real/exp_tables.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

constexpr double kShifter = 6755399441055744.0;  // its sum with an integer ends in that integer
constexpr double k64OverLn2 = 92.33248261689366;
constexpr double kLn2Over64Hi = 0.010830424696223417;
constexpr double kLn2Over64Lo = 2.572804622327669e-14;
constexpr double kOverflow = 710.475860073944;    // ln of twice the largest number
constexpr double kOneSided = 21.487562597358306;  // 31 ln2: e^-x is beyond the last place of e^x
constexpr double kSinhSeries = 0.02720470510300388;

double PowerOfTwo(int n) { return std::bit_cast<double>(static_cast<uint64_t>(n + 1023) << 52); }

// A product that is carried out and raises its flags.
template <typename T>
T Raise(T a, T b) {
  const volatile T x = a;
  const volatile T product = x * b;
  return product;
}

struct Reduced {
  int m, j;
  double r;
};

Reduced Reduce(double x) {
  const double shifted = x * k64OverLn2 + kShifter;
  const double kd = shifted - kShifter;
  const int n = static_cast<int>(static_cast<uint32_t>(std::bit_cast<uint64_t>(shifted)));
  return {n >> 6, n & 63, x - kd * kLn2Over64Hi - kd * kLn2Over64Lo};
}

// e^x/2 for x from 31 ln2 to the overflow of the result.
double HalfExp(double x) {
  const auto [m, j, r] = Reduce(x);
  const double q =
      0.5 + r * (0.1666666666665788 + r * (0.04166666666677052 +
                                           r * (0.008333341995140497 + r * 0.0013888870459233254)));
  const double p = r + r * r * q;
  const double* t = dHyperbolicTable[j];
  const double v = t[0] + (t[1] + t[0] * p);
  // 2^1024 is no double, so the last octave is reached in two steps.
  return m > 1024 ? v * PowerOfTwo(m - 2) * 2.0 : v * PowerOfTwo(m - 1);
}

// (e^x + e^-x)/2 or (e^x - e^-x)/2 for 0 <= x < 31 ln2.
double TwoSided(double x, double sign) {
  const auto [m, j, r] = Reduce(x);
  const double up = PowerOfTwo(m - 1);
  const double down = sign * (j == 0 ? PowerOfTwo(-m - 1) : PowerOfTwo(-m - 2));
  const double* a = dHyperbolicTable[j];
  const double* b = dHyperbolicTable[-j & 63];
  const double grow = a[0] * up, decay = b[0] * down;
  const double sum = grow + decay, difference = grow - decay;
  const double r2 = r * r;
  const double cosh = r2 * (0.5 + r2 * (0.04166666666677052 + r2 * 0.0013888870459233254));  // - 1
  const double sinh = r + r * r2 * (0.1666666666665788 + r2 * 0.008333341995140497);
  const double low = ((grow - sum) + decay) + (a[1] * up + b[1] * down);
  return sum + (difference * sinh + (sum * cosh + low));
}

int Overflows(float y) {
  return std::fabs(y) > std::numeric_limits<float>::max() ? PEX_STATUS_OVERFLOW : PEX_STATUS_OK;
}

// Far enough for a float to overflow, and for double precision not to.
double Clamped(float x) { return std::fmin(std::fmax(double{x}, -100.0), 100.0); }

}  // namespace

int dCoshScalar(double x, double* r) {
  const uint64_t bits = std::bit_cast<uint64_t>(x) & 0x7FFFFFFFFFFFFFFF;
  const double a = std::bit_cast<double>(bits);
  if (bits >= 0x7FF0000000000000) {
    *r = x * x;
    return PEX_STATUS_OK;
  }
  if (bits >> 32 < 0x3C900001) {
    *r = 1.0 + a;
    return PEX_STATUS_OK;
  }
  if (!(kOverflow > a)) {
    constexpr double kMax = std::numeric_limits<double>::max();
    *r = Raise(kMax, kMax);
    return PEX_STATUS_OVERFLOW;
  }
  *r = a < kOneSided ? TwoSided(a, 1.0) : HalfExp(a);
  return PEX_STATUS_OK;
}

int dSinhScalar(double x, double* r) {
  const uint64_t bits = std::bit_cast<uint64_t>(x) & 0x7FFFFFFFFFFFFFFF;
  const double a = std::bit_cast<double>(bits);
  const int exponent = static_cast<int>(bits >> 52);
  if (exponent == 0x7FF || bits == 0) {
    *r = x + x;
    return PEX_STATUS_OK;
  }
  if (exponent < 970) {
    if (exponent == 0) Raise(a, 0x1p-1022);
    *r = x;
    return PEX_STATUS_OK;
  }
  if (!(kOverflow > a)) {
    constexpr double kMax = std::numeric_limits<double>::max();
    *r = Raise(std::copysign(kMax, x), kMax);
    return PEX_STATUS_OVERFLOW;
  }
  if (a < kSinhSeries) {
    const double x2 = x * x;
    const double p =
        0.16666666666666666 +
        x2 * (0.008333333333333333 + x2 * (0.0001984126984126984 + x2 * 2.7557319223985893e-6));
    *r = x + x * x2 * p;
    return PEX_STATUS_OK;
  }
  *r = std::copysign(a < kOneSided ? TwoSided(a, -1.0) : HalfExp(a), x);
  return PEX_STATUS_OK;
}

int sCoshScalar(float x, float* r) {
  if (!std::islessequal(std::fabs(x), std::numeric_limits<float>::max())) {
    *r = x * x;
    return PEX_STATUS_OK;
  }
  double y;
  dCoshScalar(Clamped(x), &y);
  *r = Raise(static_cast<float>(y), 1.0f);
  return Overflows(*r);
}

int sSinhScalar(float x, float* r) {
  if (!std::islessequal(std::fabs(x), std::numeric_limits<float>::max())) {
    *r = x + x;
    return PEX_STATUS_OK;
  }
  double y;
  dSinhScalar(Clamped(x), &y);
  *r = Raise(static_cast<float>(y), 1.0f);
  return Overflows(*r);
}

}  // namespace pex
