// Elementary functions of one 80-bit argument: the C entries of the library's own use, and what
// they are made of.
//
// The entries give the same bits under any control word of the caller and leave it as it was. They
// set no errno and raise no flag but inexact unless the result warrants it: overflow, underflow,
// invalid, divide-by-zero. The functions in pex::ldbl take 64-bit precision and rounding to nearest
// for granted: code that calls many of them puts one X87Guard around all (control.h).
#ifndef PEX_CORE__HEAP_REAL_LONG_DOUBLE_H_
#define PEX_CORE__HEAP_REAL_LONG_DOUBLE_H_

#include "pex_core/_heap/real/extended.h"

#pragma GCC visibility push(hidden)
extern "C" {

// e^x: inf for inf, +0 for -inf; overflow to inf, underflow to a subnormal number or +0.
long double _pexexpl_scalar(long double x);

// ln x: -inf for +-0 (divide-by-zero), NaN for x < 0 (invalid), inf for inf.
long double _pexlogl_scalar(long double x);

// ln(1 + x): +-0 for +-0, -inf for -1 (divide-by-zero), NaN for x < -1 (invalid), inf for inf.
long double _pexlog1pl_scalar(long double x);

// |x|; a NaN becomes a quiet NaN without sign. Raises nothing.
long double _pexfabsl_scalar(long double x);

}  // extern "C"

namespace pex::ldbl {

// The bodies of the entries.
long double Exp(long double x);
long double Log(long double x);
long double Log1p(long double x);

// value 2^n.
struct Scaled {
  Pair value;
  int n;
};

// e^x with a relative error below 2^-88, value in (0.99, 2.01). |x.hi| < 2^14; below 2^-4000 the
// argument should be 0, else underflow is raised.
Scaled ExpPair(Pair x);

// ln x with a relative error below 2^-87 for normal x > 0, in whole or of the leading part alone.
// x.hi >= 2^-16300 where x.lo is not 0.
Pair LogPair(Pair x);

// ln(1 + x) with a relative error below 2^-87, for x > -1; below 2^-4000 in size it is x.
Pair Log1pPair(Pair x);

}  // namespace pex::ldbl
#pragma GCC visibility pop

#endif  // PEX_CORE__HEAP_REAL_LONG_DOUBLE_H_
