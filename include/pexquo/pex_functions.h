/* Generated from catalogue/functions.def by catalogue/make_header.cc: change the row, then
   run `cmake --build --preset release --target header`. Included by pexquo/pex.h. */
#ifndef PEXQUO_PEX_FUNCTIONS_H_
#define PEXQUO_PEX_FUNCTIONS_H_

/* Add: r[i] = a + b. Rounds as the caller's control word says. */
PEXQUO_API int _pexdAdd(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexsAdd(int32_t n, const float* a, const float* b, float* r);

/* Sub: r[i] = a - b. Rounds as the caller's control word says. */
PEXQUO_API int _pexdSub(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexsSub(int32_t n, const float* a, const float* b, float* r);

/* Mul: r[i] = a * b. Rounds as the caller's control word says. */
PEXQUO_API int _pexdMul(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexsMul(int32_t n, const float* a, const float* b, float* r);

/* Sqr: r[i] = a * a. Rounds as the caller's control word says. */
PEXQUO_API int _pexdSqr(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsSqr(int32_t n, const float* a, float* r);

/* Abs: r[i] = |a|. A multiplication by plus or minus one: a signalling NaN becomes quiet and raises
   invalid, and a NaN keeps its sign. */
PEXQUO_API int _pexdAbs(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsAbs(int32_t n, const float* a, float* r);

/* Ceil: r[i] = the least integer not below a. May raise inexact. */
PEXQUO_API int _pexdCeil(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsCeil(int32_t n, const float* a, float* r);

/* Floor: r[i] = the greatest integer not above a. May raise inexact. */
PEXQUO_API int _pexdFloor(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsFloor(int32_t n, const float* a, float* r);

/* Trunc: r[i] = a rounded toward zero. May raise inexact. */
PEXQUO_API int _pexdTrunc(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsTrunc(int32_t n, const float* a, float* r);

/* Rint: r[i] = a rounded to an integer in the caller's rounding mode. May raise inexact. */
PEXQUO_API int _pexdRint(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsRint(int32_t n, const float* a, float* r);

/* NearbyInt: r[i] = a rounded to an integer in the caller's rounding mode. Never raises inexact. */
PEXQUO_API int _pexdNearbyInt(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsNearbyInt(int32_t n, const float* a, float* r);

/* Round: r[i] = the nearest integer, ties away from zero. May raise inexact; an infinity raises
   invalid and stays. */
PEXQUO_API int _pexdRound(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsRound(int32_t n, const float* a, float* r);

/* Modf: r[i] = integer part and fractional part of a, both with its sign. The integer parts go to
   the first result array. May raise inexact. */
PEXQUO_API int _pexdModf(int32_t n, const double* a, double* r1, double* r2);
PEXQUO_API int _pexsModf(int32_t n, const float* a, float* r1, float* r2);

/* Exp: r[i] = e^a. e^-inf is 0. Reports overflow (code 3, result inf) and underflow (code 4, result
   subnormal or 0). Bounds in double: HA 0.55 ulp, _50 2.46 ulp, _26 at least 26 bits; in single: HA
   correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdExp_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdExp_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdExp_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsExp_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsExp_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsExp_HA(int32_t n, const float* a, float* r);

/* Expm1: r[i] = e^a - 1. Keeps the sign of zero; -1 for -inf. Reports overflow (code 3, result
   inf). Bounds in double: HA 0.63 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly
   rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdExpm1_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdExpm1_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdExpm1_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsExpm1_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsExpm1_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsExpm1_HA(int32_t n, const float* a, float* r);

/* Ln: r[i] = the natural logarithm of a. Reports a pole at plus or minus 0 (code 2, result -inf)
   and negative arguments (code 1, result NaN). Bounds in double: HA 0.56 ulp, _50 1 ulp, _26 at
   least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdLn_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdLn_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdLn_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsLn_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsLn_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsLn_HA(int32_t n, const float* a, float* r);

/* Log10: r[i] = the decimal logarithm of a. Reports a pole at plus or minus 0 (code 2, result -inf)
   and negative arguments (code 1, result NaN). Bounds in double: HA 0.57 ulp, _50 2 ulp, _26 at
   least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdLog10_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdLog10_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdLog10_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsLog10_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsLog10_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsLog10_HA(int32_t n, const float* a, float* r);

/* Log1p: r[i] = the natural logarithm of 1 + a. Keeps the sign of zero. Reports a pole at -1 (code
   2, result -inf) and arguments below -1 (code 1, result NaN). Bounds in double: HA 0.56 ulp, _50 2
   ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdLog1p_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdLog1p_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdLog1p_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsLog1p_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsLog1p_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsLog1p_HA(int32_t n, const float* a, float* r);

#endif /* PEXQUO_PEX_FUNCTIONS_H_ */
