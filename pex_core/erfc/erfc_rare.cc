// The formula of erfc-inl.h in full.
#include "pex_core/erfc/erfc_rare.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "pex_core/_heap/real/erf_polynomials.h"
#include "pex_core/_heap/real/erf_tables.h"
#include "pex_core/_heap/real/exact_scalar.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

// A product that is carried out and raises its flags.
double Underflow() {
  const volatile double tiny = std::numeric_limits<double>::min();
  const volatile double zero = tiny * tiny;
  return zero;
}

// z/sqrt(2)
Two OverRootTwo(double z) {
  Two p = TwoProduct(z, 0x1.6a09e667f3bcdp-1);
  p.lo += z * -0x1.bdd3413b26456p-55;
  return FastTwoSum(p.hi, p.lo);
}

// erfc(z.hi + z.lo) for 0 <= z <= 27.25, times 2^300.
Two Complement(Two z) {
  const double shifter = 0x1.8p45;
  const double sum = z.hi + shifter;
  const size_t j = static_cast<uint32_t>(std::bit_cast<uint64_t>(sum));
  const double c = sum - shifter;
  const double exact = z.hi - c, d = exact + z.lo, d_rest = z.lo - (d - exact);
  const Two ends = FastTwoSum(2 * c, d);
  Two square = TwoProduct(d, ends.hi);
  square.lo += d * ends.lo + d_rest * (ends.hi + d);
  const double w = square.hi, w2 = w * w, v = d * d;
  double t = kErfcMeanHA[8];
  for (int i = 8; i-- > 0;) t = t * w + kErfcMeanHA[i];
  const double r =
      (kErfcRatioHA[0] + w2 * (kErfcRatioHA[1] + w2 * (kErfcRatioHA[2] + w2 * kErfcRatioHA[3]))) *
          v +
      (1.0 / 60 - w2 * (1.0 / 2520)) * (v * v);
  // 1 - w/2 + t: what weighs most by itself.
  t = w2 * t + (1 + (w2 * t - w * 0.5)) * r;
  const ErfcRow& row = kErfcRows[j];
  const double value_rest = std::bit_cast<double>(kErfcRests[j]);
  const double slope_rest = std::bit_cast<double>(kErfcRests[j] << 32);
  Two p = TwoProduct(row.slope, d);
  p.lo += slope_rest * d + row.slope * d_rest;
  Two half = TwoProduct(p.hi, w * 0.5);
  half.lo += (p.hi * square.lo + p.lo * w) * 0.5;
  const Two head = FastTwoSum(row.value, -p.hi), bent = FastTwoSum(head.hi, half.hi);
  return FastTwoSum(bent.hi, (head.lo + bent.lo) + ((value_rest - p.lo) + (half.lo - p.hi * t)));
}

// y 2^-300 rounded once; subnormal where it is below 2^-1022.
double Unscale(Two y, bool subnormal) {
  if (!subnormal) return (y.hi + y.lo) * 0x1p-300;
  Underflow();
  constexpr double kGrid = 0x1p-722;  // its sum with a subnormal number, scaled, is on the grid
  const double sum = kGrid + y.hi;
  const double rest = (y.hi - (sum - kGrid)) + y.lo;
  return ((sum + rest) - kGrid) * 0x1p-300;
}

// NaN, infinities and where the function is one of its limits in the upper direction; false for
// others.
template <typename T>
bool Limits(T x, bool increasing, T most, T* r) {
  if (std::isnan(x)) {
    *r = x + x;
  } else if (increasing == (x > 0)) {
    *r = most;
  } else if (std::isinf(x)) {
    *r = 0;
  } else {
    return false;
  }
  return true;
}

}  // namespace

int dErfcRare(double x, double* r) {
  if (Limits(x, false, 2.0, r)) return PEX_STATUS_OK;
  if (x > 0x1.b39dc41e48bfcp+4) {  // erfc(x) = 2^-1075
    *r = Underflow();
    return PEX_STATUS_UNDERFLOW;
  }
  const bool subnormal = x > 0x1.a8b12fc6e4891p+4;  // erfc(x) = 2^-1022
  *r = Unscale(Complement({x, 0}), subnormal);
  return subnormal ? PEX_STATUS_UNDERFLOW : PEX_STATUS_OK;
}

int dCdfNormRare(double x, double* r) {
  if (Limits(x, true, 1.0, r)) return PEX_STATUS_OK;
  if (x < -0x1.33e21dc3f3bd7p+5) {
    *r = Underflow();
    return PEX_STATUS_UNDERFLOW;
  }
  const bool subnormal = x < -0x1.2c27b05bf1a0ap+5;
  const Two y = Complement(OverRootTwo(-x));
  *r = Unscale({y.hi * 0.5, y.lo * 0.5}, subnormal);
  return subnormal ? PEX_STATUS_UNDERFLOW : PEX_STATUS_OK;
}

int sErfcRare(float x, float* r) {
  if (Limits(x, false, 2.0f, r)) return PEX_STATUS_OK;
  const double z = x < 15 ? x : 15;
  *r = static_cast<float>(0x1p-300 * Complement({z, 0}).hi);
  return x > 0x1.2639bep+3f ? PEX_STATUS_UNDERFLOW : PEX_STATUS_OK;
}

int sCdfNormRare(float x, float* r) {
  if (Limits(x, true, 1.0f, r)) return PEX_STATUS_OK;
  const double z = x > -20 ? -x : 20;
  *r = static_cast<float>(0x1p-301 * Complement(OverRootTwo(z)).hi);
  return x < -0x1.9e6602p+3f ? PEX_STATUS_UNDERFLOW : PEX_STATUS_OK;
}

}  // namespace pex
