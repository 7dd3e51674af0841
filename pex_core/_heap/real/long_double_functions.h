// Trigonometric, hyperbolic and inverse functions, powers and roots of 80-bit arguments: the C
// entries of the library's own use, and what they are made of. What long_double.h says of flags,
// errno and the control word holds here. Results of one argument are off by at most 0.501 ulp,
// those of two arguments by at most 0.51 ulp.
#ifndef PEX_CORE__HEAP_REAL_LONG_DOUBLE_FUNCTIONS_H_
#define PEX_CORE__HEAP_REAL_LONG_DOUBLE_FUNCTIONS_H_

#include "pex_core/_heap/real/long_double.h"

#pragma GCC visibility push(hidden)
extern "C" {

// x = q pi/2 + high + low, |high| <= pi/4 (up to its rounding), for finite x; q modulo 4, in 0..3.
struct LongDoubleReduction {
  long double high, low;
};
int _pexreduce_pi04l(LongDoubleReduction* record, long double x);

// Radians; NaN for infinities (invalid). Zeros keep their signs in sin and tan.
long double _pexsinl_scalar(long double x);
long double _pexcosl_scalar(long double x);
long double _pextanl_scalar(long double x);
void _pexsincosl_scalar(long double x, long double* sin, long double* cos);

// Degrees, exact at multiples of 30 and 90: a zero of sind has the sign of x, one of cosd is +0.
long double _pexsindl_scalar(long double x);
long double _pexcosdl_scalar(long double x);

// NaN beyond +-1 (invalid). In [-pi/2, pi/2]; acos in [0, pi].
long double _pexasinl_scalar(long double x);
long double _pexacosl_scalar(long double x);
long double _pexatanl_scalar(long double x);

// The angle of the point (x, y) in [-pi, pi], with the C library's special values; in degrees.
long double _pexatan2l_scalar(long double y, long double x);
long double _pexatan2dl_scalar(long double y, long double x);

// Overflow to infinities where the result does.
long double _pexsinhl_scalar(long double x);
long double _pexcoshl_scalar(long double x);
void _pexsinhcoshl_scalar(long double x, long double* sinh, long double* cosh);
long double _pextanhl_scalar(long double x);

// acosh: NaN below 1 (invalid); atanh: infinities for +-1 (divide-by-zero), NaN beyond (invalid).
long double _pexasinhl_scalar(long double x);
long double _pexacoshl_scalar(long double x);
long double _pexatanhl_scalar(long double x);

// x^y with the C library's special values and flags.
long double _pexpowl_scalar(long double x, long double y);

// Square roots, correctly rounded; NaN for negative numbers (invalid).
long double _pexsqrtl_scalar(long double x);
double _pexdsqrt_scalar(double x);
float _pexssqrt_scalar(float x);

}  // extern "C"

namespace pex::ldbl {

// Relative errors below 2^-78.
struct SinCosPair {
  Pair sin, cos;
};
// j of the j/64 nearest to x >= 0, from which x differs by a number: not 1 for the number below
// 2^-7, to which the sum would be rounded.
inline int NearestRow(long double x) { return x < 0x1p-7L ? 0 : static_cast<int>(x * 64 + 0.5L); }
SinCosPair SinCos(Pair x);     // |x| <= pi/4
Pair AngleOf(Pair y, Pair x);  // atan(y/x) for y >= 0, x > 0, both from 2^-4000 to 2^4000 or y = 0
inline constexpr Pair kPiOver2 = {0xc.90fdaa22168c235p-3L, -0xe.ce675d1fc8f8cbbp-69L};
inline constexpr Pair kLn2 = {0xb.17217f7d1cf79acp-4L, -0xd.871319ff0342543p-70L};
inline constexpr Pair kRadian = {0x8.efa351294e9c8aep-9L, 0xe.c5f66e9485c4d9p-77L};    // pi/180
inline constexpr Pair kDegrees = {0xe.52ee0d31e0fbdc3p+2L, 0xa.97537f40d257d73p-66L};  // 180/pi

}  // namespace pex::ldbl
#pragma GCC visibility pop

#endif  // PEX_CORE__HEAP_REAL_LONG_DOUBLE_FUNCTIONS_H_
