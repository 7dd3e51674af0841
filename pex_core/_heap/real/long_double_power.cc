// Powers and square roots of 80-bit numbers: x^y = e^(y ln x) with ln x as a pair, off by less than
// 2^-8 ulp.
#include "pex_core/_heap/real/long_double_functions.h"

namespace pex::ldbl {
namespace {

constexpr long double kInfinity = __builtin_infl();

enum class Parity { NotInteger, Odd, Even };

// Of a finite number; those from 2^64 on are even.
Parity ParityOf(long double y) {
  const Bits b = ToBits(y);
  const int exponent = (b.sign_exponent & 0x7FFF) - 16383;
  if (exponent < 0) return y == 0 ? Parity::Even : Parity::NotInteger;
  if (exponent > 63) return Parity::Even;
  const uint64_t unit = uint64_t{1} << (63 - exponent);
  if (b.significand & (unit - 1)) return Parity::NotInteger;
  return b.significand & unit ? Parity::Odd : Parity::Even;
}

// 0^y, inf^y and x^inf, x not 1 or -1; |x| and the sign of the result.
long double Extreme(long double a, long double y, bool negative) {
  const auto with_sign = [negative](long double r) { return negative ? -r : r; };
  if (__builtin_fabsl(y) == kInfinity) return (a > 1) == (y > 0) ? kInfinity : 0.0L;
  if (a == kInfinity) return with_sign(y > 0 ? kInfinity : 0.0L);
  if (y > 0) return with_sign(0);
  long double zero = 0;
  __asm__ volatile("" : "+t"(zero));
  return with_sign(1 / zero);
}

// |y ln x| of at least this overflows, or underflows to 0.
constexpr long double kBeyond = 11500;

long double PowBody(long double x, long double y) {
  if (x == 1 || y == 0) return 1;
  if (x != x || y != y) [[unlikely]]
    return x + y;
  const long double a = __builtin_fabsl(x);
  const bool infinite = __builtin_fabsl(y) == kInfinity;
  const Parity parity = infinite ? Parity::Even : ParityOf(y);
  const bool negative = __builtin_signbit(x) && parity == Parity::Odd;
  if (a == 1 && (infinite || parity != Parity::NotInteger)) return negative ? -1 : 1;
  if (a == 0 || a == kInfinity || infinite) [[unlikely]]
    return Extreme(a, y, negative);
  if (x < 0 && parity == Parity::NotInteger) return Invalid();

  const Pair log = LogPair({a, 0});
  const int size = Exponent(log.hi) + Exponent(y);
  long double r;
  if (size > 13) {
    const bool up = (log.hi > 0) == (y > 0);
    r = up ? Raise(0x1p16383L, 0x1p16383L) : Raise(0x1p-16382L, 0x1p-16382L);
  } else if (size < -80) {
    r = 1;
  } else {
    const Pair product = Mul(log, y);
    const bool beyond = __builtin_fabsl(product.hi) > kBeyond;
    const Pair argument = beyond ? Pair{product.hi > 0 ? kBeyond : -kBeyond, 0} : product;
    const Scaled e = ExpPair(argument);
    r = Scale(e.value, e.n);
  }
  return negative ? -r : r;
}

long double SqrtBody(long double x) { return __builtin_sqrtl(x); }

}  // namespace
}  // namespace pex::ldbl

using namespace pex::ldbl;

long double _pexpowl_scalar(long double x, long double y) { return Guarded<PowBody>(x, y); }
long double _pexsqrtl_scalar(long double x) { return Guarded<SqrtBody>(x); }
double _pexdsqrt_scalar(double x) { return __builtin_sqrt(x); }
float _pexssqrt_scalar(float x) { return __builtin_sqrtf(x); }
