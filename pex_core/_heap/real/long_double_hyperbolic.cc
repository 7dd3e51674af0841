// Hyperbolic functions of 80-bit numbers and their inverses, from the pairs of the exponential and
// the logarithm: off by less than 2^-14 ulp.
#include "pex_core/_heap/real/long_double_functions.h"

namespace pex::ldbl {
namespace {

constexpr Pair kOne = {1, 0};
constexpr long double kInfinity = __builtin_infl();

bool IsTiny(long double x) { return (ToBits(x).sign_exponent & 0x7FFF) < 16383 - 33; }

// sinh and cosh of 0 < a, times 2^-n.
struct Halves {
  Pair sinh, cosh;
  int n;
};

// From here on e^-a does not count.
constexpr long double kLarge = 50;
// Beyond the last finite results.
constexpr long double kBeyond = 11500;

Halves SinhCosh(long double a) {
  const Scaled e = ExpPair({a < kBeyond ? a : kBeyond, 0});
  if (a >= kLarge) return {e.value, e.value, e.n - 1};
  const Pair inverse = ScaleBy(Div(kOne, e.value), PowerOfTwo(-2 * e.n));
  Halves r = {AddFast(e.value, Negate(inverse)), AddFast(e.value, inverse), e.n - 1};
  if (a < 0x1p-8L) {
    // a + a^3/6 + ..., which keeps its last digits.
    const long double a2 = a * a;
    const long double tail =
        a * a2 * (1.0L / 6 + a2 * (1.0L / 120 + a2 * (1.0L / 5040 + a2 * (1.0L / 362880))));
    r.sinh = ScaleBy(FastTwoSum(a, tail), PowerOfTwo(-r.n));
  }
  return r;
}

long double SinhBody(long double x) {
  if (x != x) return x + x;
  if (IsTiny(x)) return Tiny(x);
  const long double a = __builtin_fabsl(x);
  if (a == kInfinity) return x;
  const Halves h = SinhCosh(a);
  const long double r = Scale(h.sinh, h.n);
  return x < 0 ? -r : r;
}

long double CoshBody(long double x) {
  if (x != x) return x + x;
  if (IsTiny(x)) return 1;
  const long double a = __builtin_fabsl(x);
  if (a == kInfinity) return a;
  const Halves h = SinhCosh(a);
  return Scale(h.cosh, h.n);
}

void SinhCoshBody(long double x, long double* sinh, long double* cosh) {
  *sinh = SinhBody(x);
  *cosh = CoshBody(x);
}

long double TanhBody(long double x) {
  if (x != x) return x + x;
  if (IsTiny(x)) return Tiny(x);
  const long double a = __builtin_fabsl(x);
  long double r = 1;
  if (a < kLarge) {
    const Halves h = SinhCosh(a);
    r = Div(h.sinh, h.cosh).hi;
  }
  return x < 0 ? -r : r;
}

// ln(2 a) for a where it is asinh(a) and acosh(a).
constexpr long double kLogarithmic = 0x1p40L;
long double LogOfTwice(long double a) { return AddFast(LogPair({a, 0}), kLn2).hi; }

long double AsinhBody(long double x) {
  if (x != x) return x + x;
  if (IsTiny(x)) return Tiny(x);
  const long double a = __builtin_fabsl(x);
  if (a == kInfinity) return x;
  long double r;
  if (a > kLogarithmic) {
    r = LogOfTwice(a);
  } else {
    // ln(1 + a + a^2/(1 + sqrt(1 + a^2))).
    const Pair square = TwoSquare(a);
    const Pair root = Sqrt(Add(square, 1.0L));
    const Pair y = Add({a, 0}, Div(square, Add(root, 1.0L)));
    r = Log1pPair(y).hi;
  }
  return x < 0 ? -r : r;
}

long double AcoshBody(long double x) {
  if (x != x) return x + x;  // first: an order relation with NaN would raise invalid
  if (x < 1) return Invalid();
  if (x == kInfinity) return x;
  if (x > kLogarithmic) return LogOfTwice(x);
  if (x == 1) return 0;
  // ln(1 + t + sqrt(t (t + 2))), t = x - 1.
  const Pair t = TwoSum(x, -1);
  const Pair root = Sqrt(Mul(t, Add(t, 2.0L)));
  return Log1pPair(Add(t, root)).hi;
}

long double AtanhBody(long double x) {
  if (x != x) return x + x;
  const long double a = __builtin_fabsl(x);
  if (a >= 1) {
    if (a > 1) return Invalid();
    long double zero = 0;
    __asm__ volatile("" : "+t"(zero));
    return x / zero;
  }
  if (IsTiny(x)) return Tiny(x);
  // ln(1 + 2a/(1 - a))/2.
  const Pair y = Div({2 * a, 0}, TwoSum(1, -a));
  const long double r = 0.5L * Log1pPair(y).hi;
  return x < 0 ? -r : r;
}

}  // namespace
}  // namespace pex::ldbl

using namespace pex::ldbl;

long double _pexsinhl_scalar(long double x) { return Guarded<SinhBody>(x); }
long double _pexcoshl_scalar(long double x) { return Guarded<CoshBody>(x); }
void _pexsinhcoshl_scalar(long double x, long double* sinh, long double* cosh) {
  Guarded<SinhCoshBody>(x, sinh, cosh);
}
long double _pextanhl_scalar(long double x) { return Guarded<TanhBody>(x); }
long double _pexasinhl_scalar(long double x) { return Guarded<AsinhBody>(x); }
long double _pexacoshl_scalar(long double x) { return Guarded<AcoshBody>(x); }
long double _pexatanhl_scalar(long double x) { return Guarded<AtanhBody>(x); }
