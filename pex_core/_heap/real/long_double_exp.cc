// e^x of an 80-bit number.
//
// e^x = 2^n 2^(j/256) e^r, 256 n + j = round(x 256/ln2), |r| <= ln2/512. A first evaluation is off
// by less than 2^-8 ulp; where that leaves the rounding in doubt (one argument in 64), and for
// subnormal results, the pair of ExpPair decides, off by less than 2^-24 ulp.
#include "pex_core/_heap/real/long_double.h"
#include "pex_core/_heap/real/long_double_tables.h"

namespace pex::ldbl {
namespace {

constexpr long double kShifter = 0x1.8p63L;  // its sum with an integer ends in that integer
constexpr long double k256OverLn2 = 0xb.8aa3b295c17f0bcp+5L;  // 256/ln2
constexpr long double kLn2Over256Hi = 0xb.17217f7d2p-12L;     // ln2/256, 41 bits: times any k exact
constexpr long double kLn2Over256Lo = -0xc.21950d871319ffp-54L;  // the rest

struct Reduced {
  Pair r;
  int n;
  const PairRow& power;
};

// x less the nearest multiple of ln2/256, with an absolute error below 2^-91. Both products' and
// the first difference's exactness rest on |k| < 2^23.
inline Reduced Reduce(Pair x) {
  const long double kf = x.hi * k256OverLn2 + kShifter;
  const long double kd = kf - kShifter;
  const int k = static_cast<int>(static_cast<uint32_t>(ToBits(kf).significand));
  const long double rough = x.hi - kd * kLn2Over256Hi;
  return {TwoSum(rough, x.lo - kd * kLn2Over256Lo), k >> 8, _pex_pex_expl_table_256[k & 255]};
}

// The special arguments, and those with an exponent outside of 2^-66 .. 2^14.
[[gnu::noinline]] long double Special(long double x) {
  constexpr long double kInfinity = __builtin_infl();
  if (x != x) return x + x;
  if (x > 1) return x == kInfinity ? x : Raise(0x1p16383L, 0x1p16383L);
  if (x < -1) return x == -kInfinity ? 0.0L : Raise(0x1p-16382L, 0x1p-16382L);
  return 1;
}

[[gnu::noinline]] long double Accurate(long double x) {
  const Scaled s = ExpPair({x, 0});
  return Scale(s.value, s.n);
}

[[gnu::always_inline]] inline long double Body(long double x) {
  const unsigned exponent = ToBits(x).sign_exponent & 0x7FFF;
  if (exponent - (16383 - 66) >= 66 + 14) [[unlikely]]
    return Special(x);
  const Reduced a = Reduce({x, 0});
  const long double r = a.r.hi;
  const long double r2 = r * r;
  // e^r - 1 - r: Taylor's terms to r^6/6!.
  const long double q =
      r2 * ((0.5L + r * (1.0L / 6)) + r2 * ((1.0L / 24 + r * (1.0L / 120)) + r2 * (1.0L / 720)));
  const long double p = r + (a.r.lo + q);
  const Pair v = FastTwoSum(a.power.hi, a.power.lo + a.power.hi * p);
  if (!RoundsTo(v, 0x1p-6L) || static_cast<unsigned>(a.n + 16380) > 2u * 16380) [[unlikely]] {
    return Accurate(x);
  }
  return v.hi * PowerOfTwo(a.n);
}

}  // namespace

long double Exp(long double x) { return Body(x); }

Scaled ExpPair(Pair x) {
  const Reduced a = Reduce(x);
  const long double r = a.r.hi;
  // p = e^r - 1 = r + r^2/2 + r^3 tail, the tail Taylor's to r^8/8!: what is left out is below
  // 2^-104.
  const Pair square = TwoSquare(r);
  const long double r2 = square.hi;
  const long double tail =
      (1.0L / 6 + r * (1.0L / 24)) +
      r2 * ((1.0L / 120 + r * (1.0L / 720)) + r2 * (1.0L / 5040 + r * (1.0L / 40320)));
  const long double cubic = r * r2 * tail;
  Pair p = FastTwoSum(r, 0.5L * r2);
  p = FastTwoSum(p.hi, p.lo + (cubic + (0.5L * square.lo + (a.r.lo + r * a.r.lo))));
  const Pair t = {a.power.hi, a.power.lo};
  return {AddFast(t, Mul(t, p)), a.n};
}

}  // namespace pex::ldbl

long double _pexexpl_scalar(long double x) { return pex::ldbl::Guarded<pex::ldbl::Body>(x); }
