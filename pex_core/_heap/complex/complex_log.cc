// Logarithms and powers of a complex number.
//
// ln z = ln(x^2 + y^2)/2 + i atan2(y, x). Near the unit circle x^2 + y^2 - 1 is summed exactly from
// the exact squares, whatever cancels, and goes into ln(1 + t). Powers take both parts as pairs,
// whose 2^-78 leaves b ln a with an error of |b ln a| 2^-77; where that is too much, fixed point
// has the bits. The powers of numbers on an axis turn by quarters of the circle, which are counted
// exactly.
#include <utility>

#include "pex_core/_heap/complex/complex_long_log.h"
#include "pex_core/_heap/complex/complex_parts.h"

using namespace pex::cmplx;
using pex::ComplexExtended;
using namespace pex::ldbl;

namespace {

constexpr long double kLog10E = 0x6.f2dec549b9438cap-4L;  // 1/ln 10

// x^2 + y^2 - 1 for 1/2 < x^2 + y^2 < 2, x >= y >= 0: three sweeps of exact sums leave the terms
// without overlap.
Pair SquaresLessOne(long double x, long double y) {
  const Pair x2 = TwoSquare(x), y2 = TwoSquare(y);
  const Pair off = FastTwoSum(-1, x2.hi);  // lo is not 0 for some x^2 < 1/2
  long double t[5] = {off.lo, y2.lo, x2.lo, y2.hi, off.hi};
  for (int sweep = 0; sweep < 3; ++sweep) {
    for (int i = 1; i < 5; ++i) {
      const Pair s = TwoSum(t[i], t[i - 1]);
      t[i] = s.hi;
      t[i - 1] = s.lo;
    }
  }
  return FastTwoSum(t[4], t[3] + (t[2] + (t[1] + t[0])));
}

bool NearOne(long double square) { return square > 0.5L && square < 2; }

// ln |z|; -infinity and the divide-by-zero flag for 0.
long double LogModulus(long double x, long double y) {
  const long double square = x * x + y * y;
  if (!NearOne(square)) return 0.5L * Log(square);
  if (x < y) std::swap(x, y);
  return 0.5L * Log1p(SquaresLessOne(x, y).hi);
}

// The same as a pair, z not 0.
Pair LogModulusPair(long double x, long double y) {
  if (x < y) std::swap(x, y);
  const Pair square = Add(TwoSquare(x), TwoSquare(y));
  if (!NearOne(square.hi)) return ScaleBy(LogPair(square), 0.5L);
  return ScaleBy(Log1pPair(SquaresLessOne(x, y)), 0.5L);
}

Pair ArgumentPair(double x, double y) {
  Pair r;
  if (IsZero(y)) {
    r = {0, 0};
  } else if (IsZero(x)) {
    r = kPiOver2;
  } else {
    r = AngleOf({__builtin_fabsl(y), 0}, {__builtin_fabsl(x), 0});
  }
  if (IsNegative(x) && !IsZero(x)) r = AddFast(ScaleBy(kPiOver2, 2), Negate(r));
  return IsNegative(y) ? Negate(r) : r;
}

ComplexExtended LogSpecial(double x, double y) {
  const bool infinite = IsInfinite(x) || IsInfinite(y);
  if (IsNaN(x) || IsNaN(y)) {
    const long double nan = Quiet(x, y);
    return {infinite ? kInfinity : nan, nan};
  }
  return {kInfinity, _pexatan2l_scalar(y, x)};
}

// quadrant pi/2 + rest.
struct Turn {
  int quadrant;
  Pair rest;
};

// With a rest of at most pi/4 in size.
Turn Reduced(Turn x) {
  if (x.rest.hi == 0) return x;
  LongDoubleReduction part;
  x.quadrant += _pexreduce_pi04l(&part, x.rest.hi);
  Pair r = {part.high, part.low};
  if (x.rest.lo != 0) {
    x.quadrant += _pexreduce_pi04l(&part, x.rest.lo);
    r = Add(r, Pair{part.high, part.low});
  }
  if (__builtin_fabsl(r.hi) > kPiOver2.hi * 0.5L) {
    x.quadrant += r.hi > 0 ? 1 : -1;
    r = Add(r, r.hi > 0 ? Negate(kPiOver2) : kPiOver2);
  }
  return {x.quadrant, r};
}

SinCosPair SinCosOf(Turn x) {
  // A zero has a sign.
  const SinCosPair v = x.rest.hi == 0 ? SinCosPair{x.rest, {1, 0}} : SinCos(x.rest);
  switch (x.quadrant & 3) {
    case 0:
      return v;
    case 1:
      return {v.cos, Negate(v.sin)};
    case 2:
      return {Negate(v.sin), Negate(v.cos)};
    default:
      return {Negate(v.cos), v.sin};
  }
}

// The angle of a number on an axis: quarters of the circle, and a zero on the side of 0, the sign
// of the part that is zero.
Turn AxisAngle(double x, double y) {
  const auto zero = [](bool negative) { return Pair{negative ? -0.0L : 0.0L, 0}; };
  if (IsZero(y)) {
    if (!IsNegative(x)) return {0, zero(IsNegative(y))};
    return {IsNegative(y) ? -2 : 2, zero(!IsNegative(y))};
  }
  return {IsNegative(y) ? -1 : 1, zero(IsNegative(x) == IsNegative(y))};
}

// b times the angle.
Turn Times(Turn angle, double b) {
  const long double quarters = angle.quadrant * static_cast<long double>(b);
  // Numbers from 2^62 on are multiples of 4.
  const int64_t whole = __builtin_fabsl(quarters) < 0x1p62L ? static_cast<int64_t>(quarters) : 0;
  const long double rest = __builtin_fabsl(quarters) < 0x1p62L ? quarters - whole : 0;
  return {static_cast<int>(whole & 3),
          rest == 0 ? Pair{angle.rest.hi * b, 0} : Mul(kPiOver2, rest)};
}

long double LargerSize(long double x, long double y) {
  const long double a = __builtin_fabsl(x), b = __builtin_fabsl(y);
  return a > b ? a : b;
}

// The largest of the products in b ln a; those with quarters of the circle are exact.
long double Weight(Pair size, Pair angle, long double x, long double y, bool on_axis) {
  const long double most = LargerSize(size.hi, angle.hi);
  return LargerSize(x * (on_axis ? size.hi : most), y * most);
}

// More weight leaves pairs less than 58 bits of the turn, which counts where the result is neither
// infinite nor 0.
constexpr long double kMostWeight = 0x1p20L;

// Powers with an infinity, a NaN or a zero among the parts: e^(b ln a) in plain arithmetic.
ComplexExtended PowSpecial(double a_re, double a_im, double b_re, double b_im) {
  if (IsZero(b_re) && IsZero(b_im)) return {1, 0};
  // 0^b is infinite, and divide-by-zero raised, for a negative real part of b alone.
  const bool vanishes =
      IsZero(a_re) && IsZero(a_im) && !(IsFinite(b_re) && IsNegative(b_re) && !IsZero(b_re));
  const ComplexExtended log = vanishes ? ComplexExtended{-kInfinity, _pexatan2l_scalar(a_im, a_re)}
                                       : _pexclog_scalar(a_re, a_im);
  const auto rounded = [](long double x) { return static_cast<double>(x); };
  if (IsZero(b_im)) return _pexcexpl_scalar(rounded(b_re * log.re), rounded(b_re * log.im));
  if (IsZero(b_re)) return _pexcexpl_scalar(rounded(-b_im * log.im), rounded(b_im * log.re));
  return _pexcexpl_scalar(rounded(b_re * log.re - b_im * log.im),
                          rounded(b_re * log.im + b_im * log.re));
}

}  // namespace

ComplexExtended _pexclog_scalar(double re, double im) {
  if (!AreFinite(re, im)) return LogSpecial(re, im);
  return {LogModulus(__builtin_fabsl(re), __builtin_fabsl(im)), _pexatan2l_scalar(im, re)};
}

ComplexExtended _pexclog10_scalar(double re, double im) {
  const ComplexExtended log = _pexclog_scalar(re, im);
  return {log.re * kLog10E, log.im * kLog10E};
}

ComplexExtended _pexcpow_scalar(double a_re, double a_im, double b_re, double b_im) {
  if (!AreFinite(a_re, a_im) || !AreFinite(b_re, b_im) || (IsZero(a_re) && IsZero(a_im)) ||
      (IsZero(b_re) && IsZero(b_im))) {
    return PowSpecial(a_re, a_im, b_re, b_im);
  }
  const Pair size = LogModulusPair(__builtin_fabsl(a_re), __builtin_fabsl(a_im));
  const Pair angle = ArgumentPair(a_re, a_im);
  const long double x = b_re, y = b_im;
  const bool on_axis = IsZero(a_re) || IsZero(a_im);
  Pair re = Add(Mul(size, x), Mul(angle, -y));
  Turn im;
  const long double weight = Weight(size, angle, x, y, on_axis);
  if (weight > kMostWeight && __builtin_fabsl(re.hi) < kBeyond + weight * 0x1p-60L) {
    const LongProduct product = TimesLogarithm(a_re, a_im, b_re, b_im);
    re = product.re;
    im = {product.quadrant, product.rest};
  } else {
    im = on_axis ? Times(AxisAngle(a_re, a_im), b_re) : Turn{0, Mul(angle, x)};
    if (y != 0) {
      const Pair sum = Add(im.rest, Mul(size, y));
      // The sign that sums of pairs lose.
      im.rest = sum.hi == 0 ? Pair{im.rest.hi + size.hi * y, 0} : sum;
    }
    im = Reduced(im);
  }
  if (!(__builtin_fabsl(re.hi) < kBeyond)) re = {re.hi < 0 ? -kBeyond : kBeyond, 0};
  const Scaled e = ExpPair(re);
  const long double scale = PowerOfTwo(e.n);
  const SinCosPair v = SinCosOf(im);
  const auto part = [&](Pair factor) {
    return factor.hi == 0 ? factor.hi : Mul(e.value, factor).hi * scale;
  };
  return {part(v.cos), part(v.sin)};
}
