// Inverse sine, cosine and tangent of 80-bit numbers, and the angle of a point.
//
// All are atan(y/x) of pairs y >= 0, x > 0; the quotient, inverted where it is above 1, is reduced
// to the difference of its angle and that of the nearest j/64: off by less than 2^-14 ulp.
#include "pex_core/_heap/real/long_double_circle_tables.h"
#include "pex_core/_heap/real/long_double_functions.h"

namespace pex::ldbl {
namespace {

constexpr long double kInfinity = __builtin_infl();
constexpr Pair kPi = {2 * kPiOver2.hi, 2 * kPiOver2.lo};
constexpr Pair kOne = {1, 0};

// atan d - d of |d| <= 1/127.
constexpr long double ArctangentTail(long double d, long double d2) {
  return d * d2 *
         (-1.0L / 3 +
          d2 * (1.0L / 5 + d2 * (-1.0L / 7 + d2 * (1.0L / 9 + d2 * (-1.0L / 11 + d2 / 13)))));
}

// atan t, 0 <= t <= 1.
Pair ArctangentBelowOne(Pair t) {
  const int j = NearestRow(t.hi);
  const long double c = j * 0x1p-6L;
  Pair d = t;
  if (j != 0) {
    const Pair difference = FastTwoSum(t.hi - c, t.lo);  // the difference is exact
    d = Div(difference, AddFast(kOne, Mul(t, c)));
  }
  const Pair atan = AddFast(d, ArctangentTail(d.hi, d.hi * d.hi));
  if (j == 0) return atan;
  return AddFast(Pair{kArctangents[j].hi, kArctangents[j].lo}, atan);
}

// 1 - a^2 for 0 <= a <= 1, without cancellation.
Pair OneLessSquare(long double a) {
  const Pair less = TwoSum(1, -a), more = TwoSum(1, a);
  return Mul(less, more);
}

bool IsTiny(long double x) { return (ToBits(x).sign_exponent & 0x7FFF) < 16383 - 33; }

long double AsinBody(long double x) {
  if (x != x) [[unlikely]]  // first: an order relation with NaN would raise invalid
    return x + x;
  const long double a = __builtin_fabsl(x);
  if (a > 1) [[unlikely]]
    return Invalid();
  if (IsTiny(x)) return Tiny(x);
  const Pair cosine = Sqrt(OneLessSquare(a));
  const Pair r = cosine.hi == 0 ? kPiOver2 : AngleOf({a, 0}, cosine);
  return x < 0 ? -r.hi : r.hi;
}

long double AcosBody(long double x) {
  if (x != x) [[unlikely]]
    return x + x;
  const long double a = __builtin_fabsl(x);
  if (a > 1) [[unlikely]]
    return Invalid();
  if (a == 1) return x < 0 ? kPi.hi : 0;
  if (ToBits(a).sign_exponent < 16383 - 140) return kPiOver2.hi;
  const Pair angle = AngleOf(Sqrt(OneLessSquare(a)), {a, 0});
  return x < 0 ? AddFast(kPi, Negate(angle)).hi : angle.hi;
}

long double AtanBody(long double x) {
  if (x != x) [[unlikely]]
    return x + x;
  if (IsTiny(x)) return Tiny(x);
  const long double a = __builtin_fabsl(x);
  const Pair r = a > 0x1p140L ? kPiOver2 : AngleOf({a, 0}, kOne);
  return x < 0 ? -r.hi : r.hi;
}

// A pair and the power of two that it is to be multiplied by.
Scaled Normal(long double x) {
  int n = 0;
  if (ToBits(x).sign_exponent == 0) {
    x *= 0x1p64L;
    n = -64;
  }
  Bits b = ToBits(x);
  n += b.sign_exponent - 16383;
  b.sign_exponent = 16383;
  return {{FromBits(b), 0}, n};
}

// The angle of (x, y), times `unit` (a pair, or 1), rounded once.
long double Angle(long double y, long double x, Pair unit, Pair half_circle) {
  if (x != x || y != y) [[unlikely]]
    return x + y;
  const bool left = __builtin_signbit(x), below = __builtin_signbit(y);
  const long double ax = __builtin_fabsl(x), ay = __builtin_fabsl(y);
  const auto signed_value = [below](long double r) { return below ? -r : r; };
  const Pair quarter = ScaleBy(half_circle, 0.5L);
  if (ay == 0) return signed_value(left ? half_circle.hi : 0.0L);
  if (ax == 0) return signed_value(quarter.hi);
  if (ay == kInfinity) {
    if (ax != kInfinity) return signed_value(quarter.hi);
    const Pair eighth = ScaleBy(half_circle, 0.25L);
    return signed_value(left ? Add(quarter, eighth).hi : eighth.hi);
  }
  if (ax == kInfinity) return signed_value(left ? half_circle.hi : 0.0L);
  const Scaled u = Normal(ay), v = Normal(ax);
  const int difference = u.n - v.n;
  if (difference > 150) return signed_value(quarter.hi);
  if (difference < -150) {
    if (left) return signed_value(half_circle.hi);
    // atan t is t.
    return signed_value(Scale(Mul(Div(u.value, v.value), unit), difference));
  }
  Pair angle = AngleOf(ScaleBy(u.value, PowerOfTwo(difference)), v.value);
  if (unit.hi != 1) angle = Mul(angle, unit);
  return signed_value(left ? AddFast(half_circle, Negate(angle)).hi : angle.hi);
}

long double Atan2Body(long double y, long double x) { return Angle(y, x, kOne, kPi); }
long double Atan2dBody(long double y, long double x) { return Angle(y, x, kDegrees, {180, 0}); }

}  // namespace

Pair AngleOf(Pair y, Pair x) {
  if (y.hi == 0) return {0, 0};
  if (y.hi > x.hi || (y.hi == x.hi && y.lo > x.lo)) {
    return AddFast(kPiOver2, Negate(ArctangentBelowOne(Div(x, y))));
  }
  return ArctangentBelowOne(Div(y, x));
}

}  // namespace pex::ldbl

using namespace pex::ldbl;

long double _pexasinl_scalar(long double x) { return Guarded<AsinBody>(x); }
long double _pexacosl_scalar(long double x) { return Guarded<AcosBody>(x); }
long double _pexatanl_scalar(long double x) { return Guarded<AtanBody>(x); }
long double _pexatan2l_scalar(long double y, long double x) { return Guarded<Atan2Body>(y, x); }
long double _pexatan2dl_scalar(long double y, long double x) { return Guarded<Atan2dBody>(y, x); }
