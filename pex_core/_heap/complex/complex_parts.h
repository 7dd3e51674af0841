// What the complex kernels share: classes of doubles without a flag, and real functions of 80-bit
// numbers to full precision, without the last rounding's care.
#ifndef PEX_CORE__HEAP_COMPLEX_COMPLEX_PARTS_H_
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_PARTS_H_

#include <bit>
#include <cstdint>

#include "pex_core/_heap/complex/complex_scalar.h"
#include "pex_core/_heap/real/long_double_functions.h"

namespace pex::cmplx {

inline constexpr long double kInfinity = __builtin_infl();
inline constexpr long double kNaN = __builtin_nanl("");
inline constexpr long double kPi = 2 * ldbl::kPiOver2.hi;
inline constexpr long double kHalfPi = ldbl::kPiOver2.hi;
inline constexpr long double kQuarterPi = ldbl::kPiOver2.hi / 2;

inline uint64_t Magnitude(double x) { return std::bit_cast<uint64_t>(x) & 0x7FFFFFFFFFFFFFFF; }
inline bool IsNaN(double x) { return Magnitude(x) > 0x7FF0000000000000; }
inline bool IsInfinite(double x) { return Magnitude(x) == 0x7FF0000000000000; }
inline bool IsFinite(double x) { return Magnitude(x) < 0x7FF0000000000000; }
inline bool IsZero(double x) { return Magnitude(x) == 0; }
inline bool AreFinite(double x, double y) { return IsFinite(x) && IsFinite(y); }
inline bool IsNegative(double x) { return std::bit_cast<uint64_t>(x) >> 63; }

// r with the sign of x.
inline long double WithSign(long double r, double x) {
  return IsNegative(x) ? -__builtin_fabsl(r) : __builtin_fabsl(r);
}

// A quiet NaN of a NaN part, or of both: the one with the larger significand. The processor's rule
// for signalling NaNs depends on where the operands come from, so they are loaded first, which
// makes them quiet.
inline long double Quiet(double x, double y) {
  long double a = x, b = y;
  __asm__("" : "+t"(a), "+u"(b));
  return a + b;
}

// The same with y from memory: beside a signalling y it is x that counts, if it is a NaN.
inline long double QuietFirst(double x, double y) {
  long double sum = x;
  __asm__("faddl %1" : "+t"(sum) : "m"(y));
  return sum;
}

// From here on e^x times any sine or cosine of a double overflows or underflows a double.
inline constexpr double kBeyond = 2048;
inline double Clamped(double x) { return x > kBeyond ? kBeyond : x < -kBeyond ? -kBeyond : x; }

struct SineCosine {
  long double sin, cos;
};
SineCosine SinCos(double x);  // finite x

struct SinhCosh {
  long double sinh, cosh;
};
SinhCosh HyperbolicPair(double x);  // |x| <= 2048

}  // namespace pex::cmplx

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_PARTS_H_
