#include "pex_core/erfinv/erfinv_special.h"

#include <cmath>
#include <limits>

#include "pex_core/_heap/real/erfinv_tail.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

// Operations that are carried out and raise their flags.
double Underflow() {
  const volatile double tiny = std::numeric_limits<double>::min();
  const volatile double zero = tiny * tiny;
  return zero;
}

template <typename T>
T Invalid() {
  const volatile T zero = 0;
  return zero / zero;
}

// |x| >= 1 or NaN; false for others.
template <typename T>
bool Limits(T x, T* r, int* code) {
  const volatile T zero = 0;
  if (std::isnan(x)) {
    *r = x + x;
    *code = PEX_STATUS_OK;
  } else if (std::fabs(x) == 1) {
    *r = x / zero;
    *code = PEX_STATUS_SINGULARITY;
  } else if (std::isgreater(std::fabs(x), T(1))) {
    *r = Invalid<T>();
    *code = PEX_STATUS_DOMAIN;
  } else {
    return false;
  }
  return true;
}

// sqrt(pi)/2 x for |x| < 2^-35: within 2^-65 before its one rounding, subnormal or not.
double Tiny(double x) {
  constexpr double kHigh = 0.88623046875, kLow = -3.543297241986351e-6;
  constexpr double kScale = 0x1p256, kLeastNormal = 0x1p-766;
  const double scaled = x * kScale;
  const double high = 103079215105.0 * scaled - 103079215104.0 * scaled;  // 16 bits
  const double a = high * kHigh, b = (scaled - high) * kHigh + scaled * kLow;
  double sum = a + b;
  if (std::isless(std::fabs(sum), kLeastNormal)) {
    Underflow();
    const double grid = std::copysign(kLeastNormal, x);  // its sums are subnormal numbers, scaled
    const double rest = b - (sum - a), on_grid = grid + sum;
    sum = (on_grid + ((sum - (on_grid - grid)) + rest)) - grid;
  }
  return sum / kScale;
}

}  // namespace

int dErfInv_SC(const double* a, double* r) {
  const double x = *a;
  int code;
  if (Limits(x, r, &code)) return code;
  if (x == 0) {
    *r = x;
  } else if (std::isless(std::fabs(x), 0x1p-35)) {
    *r = Tiny(x);
  } else {
    *r = RoundTail(ErfcInvTail(1 - std::fabs(x)), std::signbit(x));
  }
  return PEX_STATUS_OK;
}

int sErfInv_SC(const float* a, float* r) {
  const float x = *a;
  int code;
  if (Limits(x, r, &code)) return code;
  const double wide = x;
  if (x == 0) {
    *r = x;
  } else if (std::isless(std::fabs(x), 0x1p-35f)) {
    *r = static_cast<float>(wide * 0x1.c5bf891b4ef6bp-1);
  } else {
    *r = RoundTailToFloat(ErfcInvTail(1 - std::fabs(wide)), std::signbit(x));
  }
  return PEX_STATUS_OK;
}

}  // namespace pex
