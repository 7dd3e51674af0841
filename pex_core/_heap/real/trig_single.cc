// Infinities, NaNs, and results next to the midpoint between two floats: the latter in pairs of
// doubles, to 95 bits and more.
#include "pex_core/_heap/real/trig_single.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "pex_core/_heap/real/exact_scalar.h"
#include "pex_core/_heap/real/trig_single_tables.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

Two Multiply(Two a, Two b) {
  const Two p = TwoProduct(a.hi, b.hi);
  return FastTwoSum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

Two Divide(Two a, Two b) {
  const double q = a.hi / b.hi;
  const Two p = Multiply(b, {q, 0});
  const Two rest = TwoSum(a.hi, -p.hi);
  return FastTwoSum(q, (rest.hi + (rest.lo + (a.lo - p.lo))) / b.hi);
}

// x = k pi/2 + y, |y| <= pi/4, k mod 4. The product of the 24 bits of x and 384 bits of 2/pi is an
// integer; its bits next to the binary point are k and y.
Two ReduceQuarter(float x, unsigned* k) {
  *k = 0;
  if (std::fabs(x) < 0.75f) return {x, 0};
  const uint32_t bits = std::bit_cast<uint32_t>(x);
  const int exponent = static_cast<int>(bits >> 23 & 0xFF) - 150;  // x = m 2^exponent
  const uint64_t m = (bits & 0x7FFFFF) | 0x800000;

  constexpr int kWords = 6;
  uint64_t product[kWords + 1];  // lowest first
  unsigned __int128 sum = 0;
  for (int i = 0; i < kWords; ++i) {
    sum += static_cast<unsigned __int128>(m) * sTwoOverPi[kWords - 1 - i];
    product[i] = static_cast<uint64_t>(sum);
    sum >>= 64;
  }
  product[kWords] = static_cast<uint64_t>(sum);

  // 64 bits from any place of the product on.
  const auto word = [&product](int place) {
    const int i = place / 64, shift = place % 64;
    const uint64_t above = i < kWords ? product[i + 1] : 0;
    return shift == 0 ? product[i] : product[i] >> shift | above << (64 - shift);
  };
  const int point = 64 * kWords - exponent;
  const unsigned __int128 fraction =
      static_cast<unsigned __int128>(word(point - 64)) << 64 | word(point - 128);
  const __int128 rest = static_cast<__int128>(fraction);  // of half a turn and more: negative
  const unsigned turns = static_cast<unsigned>(word(point)) + (rest < 0);

  const double hi = static_cast<double>(rest);
  const double lo = static_cast<double>(rest - static_cast<__int128>(hi));
  const Two y =
      Multiply({hi * 0x1p-128, lo * 0x1p-128}, {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54});
  const bool negative = bits >> 31;
  *k = negative ? 0 - turns : turns;
  return negative ? Two{-y.hi, -y.lo} : y;
}

// 1 - s/(first (first + 1)) (1 - s/((first + 2) (first + 3)) (1 - ...)): Taylor's series.
Two Series(Two s, int first) {
  Two p = {1, 0};
  for (int i = first + 24; i >= first; i -= 2) {
    const Two t = Divide(Multiply(s, p), {static_cast<double>(i * (i + 1)), 0});
    const Two sum = FastTwoSum(1, -t.hi);
    p = FastTwoSum(sum.hi, sum.lo - t.lo);
  }
  return p;
}
Two SineOf(Two y) { return Multiply(y, Series(Multiply(y, y), 2)); }
Two CosineOf(Two y) { return Series(Multiply(y, y), 1); }

Two Sine(float x) {
  unsigned k;
  const Two y = ReduceQuarter(x, &k);
  const Two r = k & 1 ? CosineOf(y) : SineOf(y);
  return k & 2 ? Two{-r.hi, -r.lo} : r;
}

Two Cosine(float x) {
  unsigned k;
  const Two y = ReduceQuarter(x, &k);
  const Two r = k & 1 ? SineOf(y) : CosineOf(y);
  return (k + 1) & 2 ? Two{-r.hi, -r.lo} : r;
}

Two Tangent(float x) {
  unsigned k;
  const Two y = ReduceQuarter(x, &k);
  const Two s = SineOf(y), c = CosineOf(y);
  return k & 1 ? Divide({-c.hi, -c.lo}, s) : Divide(s, c);
}

// Where v is a midpoint, the next double toward the rest.
double Rounding(Two v) {
  const uint64_t bits = std::bit_cast<uint64_t>(v.hi);
  if ((bits & 0x1FFFFFFF) != 0x10000000 || v.lo == 0) return v.hi;
  return std::bit_cast<double>(std::signbit(v.lo) == std::signbit(v.hi) ? bits + 1 : bits - 1);
}

template <Two (*kFunction)(float)>
double Settle(float x, double v, int doubt) {
  const uint64_t from_midpoint = std::bit_cast<uint64_t>(v) + 0x10000000 + (1ull << doubt);
  return (from_midpoint & 0x1FFFFFFF) >> (doubt + 1) == 0 ? Rounding(kFunction(x)) : v;
}

}  // namespace

double sSettleSine(float x, double v, int doubt) { return Settle<Sine>(x, v, doubt); }
double sSettleCosine(float x, double v, int doubt) { return Settle<Cosine>(x, v, doubt); }
double sSettleTangent(float x, double v, int doubt) { return Settle<Tangent>(x, v, doubt); }

int sTrigScalar(float x, float* r) {
  if (__builtin_isnan(x)) {
    *r = x + x;
    return PEX_STATUS_OK;
  }
  const volatile float infinity = x;
  *r = infinity - infinity;
  return PEX_STATUS_DOMAIN;
}

int sTrigScalar(float x, float* r1, float* r2) {
  const int code = sTrigScalar(x, r1);
  *r2 = *r1;
  return code;
}

}  // namespace pex
