// x^y = 2^(y log2|x|) with a sign. log2|x| comes from three tables of reciprocals, each of which
// brings the significand closer to 1, and is kept as two doubles.
#include "pex_core/_heap/real/pow_rare.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "pex_core/_heap/real/pow_tables.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

constexpr auto& kTable = _pexdPowHATab;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Where the parts of the table begin.
enum {
  kFirst = 0,
  kFirstLog = 33,
  kSecond = 99,
  kSecondLog = 132,
  kThird = 198,
  kThirdLog = 327,
  kPowers = 585,
  kHuge = 850,
  kTiny = 851,
  kZero = 852,
  kSigns = 853,
  kShifter = 855
};

struct Sum {
  double hi, lo;
};

Sum TwoSum(double a, double b) {
  const double hi = a + b, t = hi - a;
  return {hi, (a - (hi - t)) + (b - t)};
}

// a b exactly: halves split at 2^27 + 1 (Dekker 1971).
Sum TwoProduct(double a, double b) {
  const double ca = a * 134217729.0, cb = b * 134217729.0;
  const double a_hi = ca - (ca - a), b_hi = cb - (cb - b);
  const double a_lo = a - a_hi, b_lo = b - b_hi;
  const double hi = a * b;
  return {hi, ((a_hi * b_hi - hi) + a_hi * b_lo + a_lo * b_hi) + a_lo * b_lo};
}

// (a.hi + a.lo) b
Sum Times(Sum a, double b) {
  const Sum p = TwoProduct(a.hi, b);
  return {p.hi, p.lo + a.lo * b};
}

uint32_t HighWord(double x) { return static_cast<uint32_t>(std::bit_cast<uint64_t>(x) >> 32); }

int ExponentField(double x) { return static_cast<int>(HighWord(x) >> 20 & 0x7FF); }

double PowerOfTwo(int n) { return std::bit_cast<double>(static_cast<uint64_t>(n + 1023) << 52); }

// A product that is carried out and raises its flags.
double Product(double a, double b) {
  const volatile double x = a;
  const volatile double product = x * b;
  return product;
}

enum IntegerClass { kNoInteger, kOdd, kEven };

IntegerClass ClassOf(double y) {
  const uint64_t bits = std::bit_cast<uint64_t>(y) & 0x7FFFFFFFFFFFFFFF;
  const int k = static_cast<int>(bits >> 52) - 1023;
  if (bits == 0) return kEven;
  if (k < 0 || k == 1024) return kNoInteger;
  if (k >= 53) return kEven;
  const uint64_t significand = (bits & 0x000FFFFFFFFFFFFF) | 0x0010000000000000;
  if (significand & ((uint64_t{1} << (52 - k)) - 1)) return kNoInteger;
  return significand >> (52 - k) & 1 ? kOdd : kEven;
}

// log2(x) for finite x > 0 as a sum with |lo| at most half an ulp of hi.
Sum Log2(double x) {
  int shift = 0;
  if (ExponentField(x) == 0) {
    x *= 0x1p200;
    shift = 200;
  }
  const uint32_t high = HighWord(x) & 0xFFFFF;
  const double m =
      std::bit_cast<double>((std::bit_cast<uint64_t>(x) & 0x000FFFFFFFFFFFFF) | 0x3FF0000000000000);
  // From half a step below 3/2 on, significands count down from the next exponent.
  const int exponent = ExponentField(x) - 1023 - shift + (high >= 0x7C000);

  const uint32_t i = ((high & 0xFC000) + 0x4000) >> 15;
  const Sum t1 = TwoProduct(m, kTable[kFirst + i]);
  const uint32_t j = ((HighWord(t1.hi) & 0xFC00) + 0x400) >> 11;
  const Sum t2 = Times(t1, kTable[kSecond + j]);
  const uint32_t k = ((HighWord(t2.hi) & 0xFF0) + 0x10) >> 5;
  const Sum t3 = Times(t2, kTable[kThird + k]);

  const Sum v = TwoSum(t3.hi - kTable[kThird], t3.lo);
  const double p =
      v.hi *
      (9.597935033233503e-8 +
       v.hi * (-0.3465736568077919 + v.hi * (0.16015105075870564 + v.hi * -0.08325619496470027)));
  const double* log1 = kTable + kFirstLog + 2 * i;
  const double* log2 = kTable + kSecondLog + 2 * j;
  const double* log3 = kTable + kThirdLog + 2 * k;
  const double high_parts = exponent + log1[0] + log2[0] + log3[0];  // exact
  const double low_parts = log1[1] + log2[1] + log3[1];
  const Sum sum = TwoSum(high_parts, v.hi);
  return TwoSum(sum.hi, sum.lo + (low_parts + v.lo + p));
}

// (hi + lo) 2^n, rounded once, where that is subnormal: the sum is rounded to the grid of the
// subnormal numbers, raised by 200 octaves, by the addition of a number whose ulp that grid is.
double Subnormal(double hi, double lo, int n) {
  Product(kTable[kTiny], kTable[kTiny]);  // raises underflow
  const double scale = PowerOfTwo(n + 200);
  hi *= scale;
  lo *= scale;
  constexpr double kGrid = 0x1p-822;  // ulp 2^-874 up to the largest sum
  const Sum sum = TwoSum(kGrid, hi);
  const double rest = sum.lo + lo;
  // The nearest point for hi may not be the nearest for the whole.
  return Product((sum.hi + rest) - kGrid, 0x1p-200);
}

// Finite nonzero y, finite x > 0 and not 1.
double PositivePower(double x, double y, double sign) {
  const Sum log = Log2(x);
  const int e = ExponentField(y) + ExponentField(log.hi);
  if (e >= 2057) {
    const double end = std::signbit(y) == std::signbit(log.hi) ? kTable[kHuge] : kTable[kTiny];
    return Product(sign * end, end);
  }
  if (e < 1985) {
    const volatile double tiny = kTable[kTiny];
    return sign * (1.0 + tiny);
  }

  const Sum product = TwoProduct(log.hi, y);
  const Sum z = TwoSum(product.hi, product.lo + log.lo * y);
  const double shifted = z.hi + kTable[kShifter];
  const int n = static_cast<int>(static_cast<uint32_t>(std::bit_cast<uint64_t>(shifted)));
  const double r = (z.hi - (shifted - kTable[kShifter])) + z.lo;
  const double p =
      r * (0.6931471805599453 +
           r * (0.24022650695910072 + r * (0.05550410866482158 + r * (0.009618129107628477 +
                                                                      r * 0.0013333558146428443))));
  const double* power = kTable + kPowers + 2 * (n & 127);
  const Sum w = TwoSum(power[0], power[0] * p + power[1]);
  const int m = n >> 7;

  const int q = m + ExponentField(w.hi) - 1023;
  if (q >= 1024) return Product(sign * kTable[kHuge], kTable[kHuge]);
  if (q >= -1022) {
    const uint64_t scaled = std::bit_cast<uint64_t>(w.hi) + (static_cast<uint64_t>(m) << 52);
    return sign * std::bit_cast<double>(scaled);
  }
  if (q < -1084) return sign * Product(kTable[kTiny], kTable[kTiny]);
  return sign * Subnormal(w.hi, w.lo, m);
}

}  // namespace

int dPowScalar(double x, double y, double* r) {
  const IntegerClass y_class = ClassOf(y);
  const bool negative = std::signbit(x);
  const double sign = kTable[kSigns + (negative && y_class == kOdd)];
  const double zero = kTable[kZero];

  if (x == 1.0) {
    const volatile double sum = x + y;  // a signalling NaN raises invalid
    (void)sum;
    *r = 1.0;
    return PEX_STATUS_OK;
  }
  if (y == 0.0) {
    *r = 1.0;
    return PEX_STATUS_OK;
  }
  if (std::isnan(x) || std::isnan(y)) {
    const volatile double sum = x + y;  // a signalling NaN raises invalid
    (void)sum;
    *r = std::isnan(x) ? x + x : y + y;  // the first of two, in whichever order they are added
    return PEX_STATUS_OK;
  }
  if (x == 0.0) {
    if (y > 0.0) {
      *r = sign * zero;
      return PEX_STATUS_OK;
    }
    const volatile double divisor = zero;
    *r = sign / divisor;
    return PEX_STATUS_DOMAIN;
  }
  if (x == -1.0 && (y_class != kNoInteger || std::isinf(y))) {
    *r = sign;
    return PEX_STATUS_OK;
  }
  if (std::isinf(x) || std::isinf(y)) {
    if (std::fabs(x) >= 1.0) {
      *r = sign * (y > 0.0 ? kInfinity : zero);
    } else {
      *r = y > 0.0 ? zero : kInfinity;
    }
    return PEX_STATUS_OK;
  }
  if (negative && y_class == kNoInteger) {
    const volatile double divisor = zero;
    *r = divisor / zero;
    return PEX_STATUS_DOMAIN;
  }
  *r = PositivePower(std::fabs(x), y, sign);
  return PEX_STATUS_OK;
}

}  // namespace pex
