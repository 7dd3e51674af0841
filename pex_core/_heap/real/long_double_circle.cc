// Sine, cosine and tangent of 80-bit numbers.
//
// x 2/pi is formed exactly modulo 4 from the digits of 2/pi that matter (Payne and Hanek 1983). The
// rest r = j/64 + d, |d| <= 1/128, goes into the sums of angles with sines and cosines of j/64 as
// pairs: off by less than 2^-14 ulp.
#include <bit>

#include "pex_core/_heap/real/long_double_circle_tables.h"
#include "pex_core/_heap/real/long_double_functions.h"

namespace pex::ldbl {
namespace {

typedef unsigned __int128 Wide;

// Multiples of pi/2 in x, modulo 4, and the rest. |x| < pi/4 is its own rest.
int Reduce(long double x, Pair* rest) {
  const Bits b = ToBits(x);
  const bool negative = b.sign_exponent >> 15;
  const int exponent = (b.sign_exponent & 0x7FFF) - 16383;
  if (exponent < -1) {
    *rest = {x, 0};
    return 0;
  }
  // |x| = significand 2^(exponent - 63). The digits of 2/pi before `first` come to multiples of 4.
  const int first = 128 + exponent - 63 - 2;
  uint64_t digits[4];
  for (int i = 0; i < 4; ++i) {
    const int word = first / 64 + i, shift = first % 64;
    digits[i] = shift == 0
                    ? kTwoOverPiDigits[word]
                    : kTwoOverPiDigits[word] << shift | kTwoOverPiDigits[word + 1] >> (64 - shift);
  }
  // The fraction of significand * digits, most significant word first: quarters of |x| 2/pi.
  uint64_t fraction[4];
  uint64_t carry = 0;
  for (int i = 3; i >= 0; --i) {
    const Wide product = static_cast<Wide>(b.significand) * digits[i] + carry;
    fraction[i] = static_cast<uint64_t>(product);
    carry = static_cast<uint64_t>(product >> 64);
  }
  int quadrant = static_cast<int>(fraction[0] >> 62);
  for (int i = 0; i < 3; ++i) fraction[i] = fraction[i] << 2 | fraction[i + 1] >> 62;
  fraction[3] <<= 2;
  // To the nearest multiple.
  const bool above = fraction[0] >> 63;
  if (above) {
    ++quadrant;
    for (uint64_t& word : fraction) word = ~word;
  }
  int first_word = 0;
  while (first_word < 2 && fraction[first_word] == 0) ++first_word;
  const int zeros = std::countl_zero(fraction[first_word]);
  uint64_t top[2];
  for (int i = 0; i < 2; ++i) {
    const int word = first_word + i;
    const uint64_t next = word + 1 < 4 ? fraction[word + 1] : 0;
    top[i] = zeros == 0 ? fraction[word] : fraction[word] << zeros | next >> (64 - zeros);
  }
  const int weight = -64 * (first_word + 1) - zeros;
  const Pair f = FastTwoSum(static_cast<long double>(top[0]) * PowerOfTwo(weight),
                            static_cast<long double>(top[1]) * PowerOfTwo(weight - 64));
  const Pair r = Mul(f, kPiOver2);
  *rest = above != negative ? Negate(r) : r;
  return (negative ? -quadrant : quadrant) & 3;
}

// sin d - d and cos d - 1 of |d| <= 1/128 + 2^-64.
constexpr long double SineTail(long double d, long double d2) {
  return d * d2 *
         (-1.0L / 6 +
          d2 * (1.0L / 120 + d2 * (-1.0L / 5040 + d2 * (1.0L / 362880 - d2 * (1.0L / 39916800)))));
}
constexpr long double CosineTail(long double d2) {
  return d2 * d2 * (1.0L / 24 + d2 * (-1.0L / 720 + d2 * (1.0L / 40320 - d2 * (1.0L / 3628800))));
}

long double SinOf(int quadrant, Pair r) {
  const SinCosPair v = SinCos(r);
  const Pair p = quadrant & 1 ? v.cos : v.sin;
  return quadrant & 2 ? -p.hi : p.hi;
}

bool IsTiny(long double x) { return (ToBits(x).sign_exponent & 0x7FFF) < 16383 - 33; }
bool IsFinite(long double x) { return (ToBits(x).sign_exponent & 0x7FFF) != 0x7FFF; }

long double SinBody(long double x) {
  if (!IsFinite(x)) [[unlikely]]
    return x != x ? x + x : Invalid();
  if (IsTiny(x)) return Tiny(x);
  Pair r;
  const int quadrant = Reduce(x, &r);
  return SinOf(quadrant, r);
}

long double CosBody(long double x) {
  if (!IsFinite(x)) [[unlikely]]
    return x != x ? x + x : Invalid();
  if (IsTiny(x)) return 1;
  Pair r;
  const int quadrant = Reduce(x, &r);
  return SinOf(quadrant + 1, r);
}

long double TanBody(long double x) {
  if (!IsFinite(x)) [[unlikely]]
    return x != x ? x + x : Invalid();
  if (IsTiny(x)) return Tiny(x);
  Pair r;
  const int quadrant = Reduce(x, &r);
  const SinCosPair v = SinCos(r);
  return quadrant & 1 ? -Div(v.cos, v.sin).hi : Div(v.sin, v.cos).hi;
}

void SinCosBody(long double x, long double* sin, long double* cos) {
  if (!IsFinite(x)) [[unlikely]] {
    *sin = *cos = x != x ? x + x : Invalid();
    return;
  }
  if (IsTiny(x)) {
    *sin = Tiny(x);
    *cos = 1;
    return;
  }
  Pair r;
  const int quadrant = Reduce(x, &r);
  const SinCosPair v = SinCos(r);
  *sin = quadrant & 1 ? v.cos.hi : v.sin.hi;
  *cos = quadrant & 1 ? -v.sin.hi : v.cos.hi;
  if (quadrant & 2) {
    *sin = -*sin;
    *cos = -*cos;
  }
}

// x = 90 q + r, exactly, |r| <= 45; q modulo 4.
int ReduceDegrees(long double x, long double* r) {
  long double rest = x;
  if (!(__builtin_fabsl(x) < 360)) rest = __builtin_fmodl(x, 360);
  const int quarters = static_cast<int>(rest * (1.0L / 90) + (rest < 0 ? -0.5L : 0.5L));
  *r = rest - 90 * quarters;
  return quarters & 3;
}

// Below this the product with pi/180 is all there is to the sine, and may be subnormal.
constexpr long double kSmallDegrees = 0x1p-30L;

long double SindBody(long double x) {
  if (!IsFinite(x)) [[unlikely]]
    return x != x ? x + x : Invalid();
  if (x == 0) return x;
  if (__builtin_fabsl(x) < kSmallDegrees) {
    // Raised out of the reach of underflow, and rounded once on the way back.
    return Scale(Mul(kRadian, x * 0x1p8000L), -8000);
  }
  long double r;
  const int quadrant = ReduceDegrees(x, &r);
  if (r == 0 && !(quadrant & 1)) return x < 0 ? -0.0L : 0.0L;
  return SinOf(quadrant, Mul(kRadian, r));
}

long double CosdBody(long double x) {
  if (!IsFinite(x)) [[unlikely]]
    return x != x ? x + x : Invalid();
  if (__builtin_fabsl(x) < kSmallDegrees) return 1;
  long double r;
  const int quadrant = ReduceDegrees(x, &r);
  if (r == 0 && (quadrant & 1)) return 0;
  return SinOf(quadrant + 1, Mul(kRadian, r));
}

int ReduceBody(LongDoubleReduction* record, long double x) {
  Pair r;
  const int quadrant = Reduce(x, &r);
  *record = {r.hi, r.lo};
  return quadrant;
}

}  // namespace

SinCosPair SinCos(Pair x) {
  const bool negative = x.hi < 0;
  const Pair a = negative ? Negate(x) : x;
  const int j = NearestRow(a.hi);
  const Pair d = FastTwoSum(a.hi - j * 0x1p-6L, a.lo);  // the difference is exact
  const Pair square = TwoSquare(d.hi);
  const long double d2 = square.hi;
  const Pair sine = AddFast(d, SineTail(d.hi, d2));
  // cos d - 1 = -d^2/2 + ...
  const Pair less =
      AddFast(ScaleBy({square.hi, square.lo + 2 * d.hi * d.lo}, -0.5L), CosineTail(d2));
  SinCosPair r;
  if (j == 0) {
    r = {sine, AddFast(Pair{1, 0}, less)};
  } else {
    const CircleRow& row = kCircle[j];
    const Pair s = {row.sin.hi, row.sin.lo}, c = {row.cos.hi, row.cos.lo};
    r.sin = AddFast(s, Add(Mul(c, sine), Mul(s, less)));
    r.cos = AddFast(c, Add(Mul(c, less), Negate(Mul(s, sine))));
  }
  if (negative) r.sin = Negate(r.sin);
  return r;
}

}  // namespace pex::ldbl

using namespace pex::ldbl;

int _pexreduce_pi04l(LongDoubleReduction* record, long double x) {
  const pex::X87Guard guard;
  __asm__ volatile("" : "+m"(x));
  const int quadrant = ReduceBody(record, x);
  __asm__ volatile("" : "+m"(*record));
  return quadrant;
}

long double _pexsinl_scalar(long double x) { return Guarded<SinBody>(x); }
long double _pexcosl_scalar(long double x) { return Guarded<CosBody>(x); }
long double _pextanl_scalar(long double x) { return Guarded<TanBody>(x); }
void _pexsincosl_scalar(long double x, long double* sin, long double* cos) {
  Guarded<SinCosBody>(x, sin, cos);
}
long double _pexsindl_scalar(long double x) { return Guarded<SindBody>(x); }
long double _pexcosdl_scalar(long double x) { return Guarded<CosdBody>(x); }
