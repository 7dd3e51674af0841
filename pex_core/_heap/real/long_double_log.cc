// ln x and ln(1 + x) of an 80-bit number.
//
// x = 2^e z with z in [sqrt 1/2, sqrt 2), ln x = e ln2 - ln c + ln(1 + r), where c is a number of
// nine bits near 1/z and r = z c - 1, |r| < 2^-8.19, exact in 64 bits. A first evaluation is off by
// less than 2^-8 ulp; where that leaves the rounding in doubt (one argument in 64), a pair decides,
// off by less than 2^-23 ulp.
#include <bit>

#include "pex_core/_heap/real/long_double.h"
#include "pex_core/_heap/real/long_double_tables.h"

namespace pex::ldbl {
namespace {

constexpr long double kLn2Hi = 0xb.17217f7d1cf8p-4L;       // ln2, 49 bits: times any e exact
constexpr long double kLn2Lo = -0xc.a86c3898cff81a1p-57L;  // the rest

// x = 2^e z; e ln2 - ln c = hi + lo, where hi is exact and lo is off by less than 2^-64 lo.
struct Reduced {
  long double hi, lo;
  long double r;       // z c - 1 for the x that was reduced
  long double weight;  // c 2^-63 z/m, m the significand in [1, 2)
  int exponent;        // of x
};

// Of a number significand 2^(exponent - 63), leading bit of the significand set.
inline Reduced Reduce(uint64_t significand, int exponent) {
  uint64_t nearest = significand + (uint64_t{1} << 54);
  if (nearest < significand) nearest = significand;  // past the last row
  const unsigned row = static_cast<unsigned>(nearest >> 55) - 256;
  const int e = exponent + (row >= kHalvedRow);
  // The difference to the row's centre, below 1.5 2^55 in size, times nine bits is exact, and so is
  // the sum.
  const int64_t off = static_cast<int64_t>(significand - (nearest >> 55 << 55));
  const ReciprocalRow& c = _pex_pex_rcp_table_256[row];
  const long double r = static_cast<long double>(off) * c.weight + c.excess;
  return {e * kLn2Hi + _pex_pex_logl_table_256[row], e * kLn2Lo + _pex_pex_log_table_256[row], r,
          c.weight, exponent};
}

// Of a positive finite number.
inline Reduced Reduce(long double x) {
  const Bits b = ToBits(x);
  const int exponent = b.sign_exponent - 16383 + (b.sign_exponent == 0);
  const int zeros = std::countl_zero(b.significand);  // of a subnormal number
  return Reduce(b.significand << zeros, exponent - zeros);
}

// r of x + low, |low| at most half an ulp of x. Beside a value that is not small, a low part that
// can only underflow is left out.
inline Pair WithLow(const Reduced& a, long double low) {
  if (low == 0) return {a.r, 0};
  const long double t = low * PowerOfTwo(63 - a.exponent) * a.weight;
  if (a.hi != 0 && __builtin_fabsl(t) < 0x1p-200L) return {a.r, 0};
  return TwoSum(a.r, t);
}

// hi + lo + ln(1 + r). The terms to r^9/9 leave out less than 2^-77 r.
inline Pair Quick(long double hi, long double lo, Pair r) {
  const long double x = r.hi, x2 = x * x;
  const long double tail =
      (1.0L / 3 - x * (1.0L / 4)) +
      x2 * ((1.0L / 5 - x * (1.0L / 6)) + x2 * ((1.0L / 7 - x * (1.0L / 8)) + x2 * (1.0L / 9)));
  const long double q = x * x2 * tail - 0.5L * x2;
  const Pair s = FastTwoSum(hi, x);
  return FastTwoSum(s.hi, s.lo + ((lo + r.lo) + q));
}

// The same as a pair off by less than 2^-87 of its value. The terms to r^12/12 leave out less than
// 2^-100 r; those from r^4 on are sums of single numbers.
Pair Full(long double hi, long double lo, Pair r) {
  constexpr Pair kThird = {1.0L / 3, -0xa.aaaaaaaaaaaaaabp-70L};
  const long double x = r.hi;
  const Pair square = TwoSquare(x);
  const long double x2 = square.hi;
  const long double tail = (1.0L / 4 - x * (1.0L / 5)) +
                           x2 * ((1.0L / 6 - x * (1.0L / 7)) +
                                 x2 * ((1.0L / 8 - x * (1.0L / 9)) +
                                       x2 * ((1.0L / 10 - x * (1.0L / 11)) + x2 * (1.0L / 12))));
  const Pair cubic = Mul(Mul(square, x), kThird);
  const Pair q = AddFast(ScaleBy(square, -0.5L), cubic);
  const Pair p = FastTwoSum(x, q.hi);
  const Pair log1p = FastTwoSum(p.hi, p.lo + (q.lo + (r.lo / (1 + x) - x2 * x2 * tail)));
  const Pair s = TwoSum(hi, log1p.hi);
  return FastTwoSum(s.hi, s.lo + (lo + log1p.lo));
}

// hi + lo + ln(1 + r + low), rounded.
[[gnu::noinline]] long double Accurate(long double hi, long double lo, long double r,
                                       long double low) {
  return Full(hi, lo, {r, low}).hi;
}

inline long double Rounded(long double hi, long double lo, Pair r) {
  const Pair v = Quick(hi, lo, r);
  if (!RoundsTo(v, 0x1p-6L)) [[unlikely]]
    return Accurate(hi, lo, r.hi, r.lo);
  return v.hi;
}

// ln x of a zero, a negative number, an infinity or a NaN.
[[gnu::noinline]] long double Special(long double x) {
  if (x != x) return x + x;
  if (x > 0) return x;
  long double zero = 0;
  __asm__ volatile("" : "+t"(zero));
  return x == 0 ? -1 / zero : zero / zero;
}

[[gnu::always_inline]] inline long double LogBody(long double x) {
  const Bits b = ToBits(x);
  if (b.sign_exponent >= 0x7FFF || b.significand == 0) [[unlikely]]
    return Special(x);
  const Reduced a = Reduce(x);
  return Rounded(a.hi, a.lo, {a.r, 0});
}

[[gnu::always_inline]] inline long double Log1pBody(long double x) {
  const unsigned exponent = ToBits(x).sign_exponent & 0x7FFF;
  if (exponent < 16383 - 66) {
    if (x == 0) return x;
    if (exponent == 0) Raise(0x1p-16382L, 0x1p-16382L);
    return x;
  }
  if (exponent == 0x7FFF || !(x > -1)) [[unlikely]]
    return Special(1 + x);
  const Pair s = TwoSum(1, x);
  const Reduced a = Reduce(s.hi);
  if (a.hi == 0) return Rounded(0, 0, {x, 0});
  return Rounded(a.hi, a.lo, WithLow(a, s.lo));
}

}  // namespace

long double Log(long double x) { return LogBody(x); }

long double Log1p(long double x) { return Log1pBody(x); }

Pair LogPair(Pair x) {
  const Reduced a = Reduce(x.hi);
  const Pair r = WithLow(a, x.lo);
  if (a.hi == 0 && __builtin_fabsl(r.hi) < 0x1p-4000L) return r;
  return Full(a.hi, a.lo, r);
}

Pair Log1pPair(Pair x) {
  if (__builtin_fabsl(x.hi) < 0x1p-4000L) return x;
  // 1 + x is an exact pair. Close to 1 its difference from 1 is x itself.
  const Pair s = TwoSum(1, x.hi);
  const Reduced a = Reduce(s.hi);
  return Full(a.hi, a.lo, a.hi == 0 ? x : WithLow(a, s.lo + x.lo));
}

}  // namespace pex::ldbl

long double _pexlogl_scalar(long double x) { return pex::ldbl::Guarded<pex::ldbl::LogBody>(x); }

long double _pexlog1pl_scalar(long double x) { return pex::ldbl::Guarded<pex::ldbl::Log1pBody>(x); }
