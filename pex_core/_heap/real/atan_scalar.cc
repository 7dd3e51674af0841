// atan(y/x) from the quotient t in two parts: by an odd polynomial below 1/8, else by the
// breakpoint c in the middle of t's half octave, atan(t) = atan(c) + atan((t - c)/(1 + t c)).
#include "pex_core/_heap/real/atan_scalar.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "pex_core/_heap/real/atan_tables.h"
#include "pex_core/_heap/real/exact_scalar.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

// Doubles next to constants, and the next parts.
constexpr Two kPi = {3.141592653589793, 1.2246467991473532e-16};
constexpr Two kHalfPi = {1.5707963267948966, 6.123233995736766e-17};
constexpr Two kQuarterPi = {0.7853981633974483, 3.061616997868383e-17};
constexpr Two kThreeQuartersPi = {2.356194490192345, 9.184850993605148e-17};

Two Quotient(Two n, Two m) {
  const double q = n.hi / m.hi;
  const Two p = TwoProduct(q, m.hi);
  const double rest = ((n.hi - p.hi) - p.lo) + (n.lo - q * m.lo);
  return {q, rest / m.hi};
}

// t^3 (c[0] + c[1] t^2 + ...): what atan(t) is more than t, |t| < 1/8.
double Tail(double t) {
  const double z = t * t;
  double p = -0.06313688776899645;
  p = p * z + 0.07683539769703819;
  p = p * z + -0.0909079559611586;
  p = p * z + 0.11111110301985087;
  p = p * z + -0.1428571428262597;
  p = p * z + 0.19999999999994408;
  p = p * z + -0.3333333333333333;
  return t * z * p;
}

// atan(t) with an error below 2^-60 of itself, 2^-60 < t.hi < 2^60.
Two PositiveAtan(Two t) {
  if (t.hi < 0.125) return FastTwoSum(t.hi, t.lo + Tail(t.hi));
  const uint64_t bits = std::bit_cast<uint64_t>(t.hi);
  const int row = std::min((static_cast<int>(bits >> 32) - 0x3FC00000) >> 19, 113);
  const uint64_t start = uint64_t{0x3FC00000} + (static_cast<uint64_t>(row) << 19);
  const double c = std::bit_cast<double>((start + (1 << 18)) << 32);
  const Two tc = TwoProduct(t.hi, c);
  const double low = tc.lo + t.lo * c;
  const Two m = tc.hi > 1 ? FastTwoSum(tc.hi, 1) : FastTwoSum(1, tc.hi);
  const Two u = Quotient({t.hi - c, t.lo}, {m.hi, m.lo + low});
  const double* angle = _pexdAtanHATab[row];
  const Two s = FastTwoSum(angle[0], u.hi);
  return FastTwoSum(s.hi, s.lo + (angle[1] + (u.lo + Tail(u.hi))));
}

// y/x for positive finite y and x whose exponents differ by 54 at most, scaled where the error of
// a product would be lost.
Two ScaledQuotient(double y, double x) {
  if (std::max(x, y) >= 0x1p960) {
    y *= 0x1p-1022;
    x *= 0x1p-1022;
  } else if (std::min(x, y) < 0x1p-800) {
    y *= 4.49423283715579e307;  // 2^1022
    x *= 4.49423283715579e307;
  }
  return Quotient({y, 0}, {x, 0});
}

int Exponent(double x) {
  const int field = static_cast<int>(std::bit_cast<uint64_t>(x) >> 52) & 0x7FF;
  if (field != 0) return field - 1023;
  const uint64_t rest = std::bit_cast<uint64_t>(x) << 12;
  return -1023 - std::countl_zero(rest);
}

// The sum that is computed, whatever the compiler knows: it rounds and raises inexact.
double Sum(Two v) {
  const volatile double hi = v.hi;
  return hi + v.lo;
}

void RaiseUnderflow() {
  const volatile double tiny = std::numeric_limits<double>::min();
  [[maybe_unused]] const volatile double zero = tiny * tiny;
}

// atan2(y, x) for y, x >= 0, or pi less that, in the cases that the special values decide.
bool SpecialAngle(double y, double x, bool left, Two* r) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  if (y == kInfinity && x == kInfinity) {
    *r = left ? kThreeQuartersPi : kQuarterPi;
  } else if (y == 0 || x == kInfinity) {
    *r = left ? kPi : Two{0, 0};
  } else if (x == 0 || y == kInfinity) {
    *r = kHalfPi;
  } else {
    return false;
  }
  return true;
}

// The same in all other cases. Where the quotient is negligible beside pi/2 or pi it is a small
// correction of them; the angle next to 0 is the quotient itself.
Two CommonAngle(double y, double x, bool left) {
  const int d = Exponent(y) - Exponent(x);
  if (d < -53) return left ? kPi : Two{y / x, 0};
  if (d >= 54) {
    if (d >= 74) return kHalfPi;
    const double rest = ScaledQuotient(x, y).hi;
    return {kHalfPi.hi, kHalfPi.lo + (left ? rest : -rest)};
  }
  const Two angle = PositiveAtan(ScaledQuotient(y, x));
  if (!left) return angle;
  const Two s = FastTwoSum(kPi.hi, -angle.hi);
  return {s.hi, s.lo + (kPi.lo - angle.lo)};
}

// hi + lo rounded once to a float: to odd first, which keeps the side of a middle.
float RoundOnce(Two v) {
  const Two s = FastTwoSum(v.hi, v.lo);
  uint64_t bits = std::bit_cast<uint64_t>(s.hi);
  if (s.lo != 0 && bits % 2 == 0) bits += std::signbit(s.hi) == std::signbit(s.lo) ? 1 : -1;
  return static_cast<float>(std::bit_cast<double>(bits));
}

}  // namespace

int dAtan2Scalar(double y, double x, double* r) {
  if (y != y || x != x) {
    *r = y + x;
    return PEX_STATUS_OK;
  }
  const bool left = std::signbit(x);
  const double ay = std::fabs(y), ax = std::fabs(x);
  Two angle;
  const bool special = SpecialAngle(ay, ax, left, &angle);
  if (!special) angle = CommonAngle(ay, ax, left);
  const double sum = Sum(angle);
  // The quotient may be exact, the angle is not.
  if (!special && sum < std::numeric_limits<double>::min()) RaiseUnderflow();
  *r = std::copysign(sum, y);
  return PEX_STATUS_OK;
}

}  // namespace pex

extern "C" float _pexsatan_scalar(float x) {
  if (x != x) return x + x;
  const double a = std::fabs(static_cast<double>(x));
  // Below 2^-13 the result is x less at most a third of its ulp.
  if (a < 0x1p-13) return a == 0 ? x : static_cast<float>(x - x * (a * a) / 3);
  if (a >= 0x1p40) return std::copysign(static_cast<float>(pex::kHalfPi.hi), x);
  return std::copysign(pex::RoundOnce(pex::PositiveAtan({a, 0})), x);
}

extern "C" float _pexsatan2_scalar(float y, float x) {
  if (y != y || x != x) return y + x;
  const bool left = std::signbit(x);
  const double ay = std::fabs(static_cast<double>(y)), ax = std::fabs(static_cast<double>(x));
  pex::Two angle;
  if (!pex::SpecialAngle(ay, ax, left, &angle)) angle = pex::CommonAngle(ay, ax, left);
  return std::copysign(pex::RoundOnce(angle), y);
}
