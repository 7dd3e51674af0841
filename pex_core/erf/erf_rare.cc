#include "pex_core/erf/erf_rare.h"

#include <cmath>

#include "pexquo/pex.h"

namespace pex {
namespace {

// 2/sqrt(pi) as a double and the rest below it, and the double's upper half.
constexpr double kHi = 0x1.20dd750429b6dp+0, kLo = 0x1.1ae3a914fed8p-56;
constexpr double kUpper = 0x1.20dd75p+0, kLower = kHi - kUpper;

}  // namespace

int dErfRare(double x, double* r) {
  if (std::isnan(x) || std::isinf(x)) {
    *r = std::isnan(x) ? x + x : std::copysign(1.0, x);
    return PEX_STATUS_OK;
  }
  // Raised by 200 octaves; the error of the product by halves (Dekker).
  const double z = std::fabs(x) * 0x1p200;
  const double c = z * 134217729.0, upper = c - (c - z), lower = z - upper;
  double hi = z * kHi;
  double lo = lower * kLower - (((hi - upper * kUpper) - lower * kUpper) - upper * kLower);
  lo += z * kLo;
  if (hi < 0x1p-822) {
    // A subnormal number in the end: the sum with this number is on its grid.
    constexpr double kGrid = 0x1p-822;
    const double sum = kGrid + hi;
    const double rest = (hi - (sum - kGrid)) + lo;
    hi = (sum + rest) - kGrid;
    lo = 0;
  }
  *r = std::copysign((hi + lo) * 0x1p-200, x);
  return PEX_STATUS_OK;
}

int sErfRare(float x, float* r) {
  if (std::isnan(x) || std::isinf(x)) {
    *r = std::isnan(x) ? x + x : std::copysign(1.0f, x);
    return PEX_STATUS_OK;
  }
  double y = std::fabs(static_cast<double>(x)) * kHi;
  if (y < 0x1p-126) {
    constexpr double kGrid = 0x1.8p-97;  // its ulp is the least subnormal number
    y = (y + kGrid) - kGrid;
  }
  *r = std::copysign(static_cast<float>(y), x);
  return PEX_STATUS_OK;
}

}  // namespace pex
