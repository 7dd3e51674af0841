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
   inf). Bounds in double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly
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

/* Sin: r[i] = the sine of a radians. Keeps the sign of zero. Arguments of any finite size are
   reduced exactly. Reports infinities (code 1, result NaN). Bounds in double: HA 0.55 ulp, _50 4
   ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdSin_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdSin_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdSin_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsSin_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsSin_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsSin_HA(int32_t n, const float* a, float* r);

/* Cos: r[i] = the cosine of a radians. Arguments of any finite size are reduced exactly. Reports
   infinities (code 1, result NaN). Bounds in double: HA 0.55 ulp, _50 4 ulp, _26 at least 26 bits;
   in single: HA correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdCos_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCos_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCos_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsCos_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCos_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCos_HA(int32_t n, const float* a, float* r);

/* SinCos: r[i] = the sine and the cosine of a radians. The sines go to the first result array.
   Arguments of any finite size are reduced exactly. Reports infinities (code 1, result NaN). Bounds
   in double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2
   ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdSinCos_26(int32_t n, const double* a, double* r1, double* r2);
PEXQUO_API int _pexdSinCos_50(int32_t n, const double* a, double* r1, double* r2);
PEXQUO_API int _pexdSinCos_HA(int32_t n, const double* a, double* r1, double* r2);
PEXQUO_API int _pexsSinCos_11(int32_t n, const float* a, float* r1, float* r2);
PEXQUO_API int _pexsSinCos_21(int32_t n, const float* a, float* r1, float* r2);
PEXQUO_API int _pexsSinCos_HA(int32_t n, const float* a, float* r1, float* r2);

/* Tan: r[i] = the tangent of a radians. Keeps the sign of zero. Arguments of any finite size are
   reduced exactly. Reports infinities (code 1, result NaN). Bounds in double: HA 0.55 ulp, _50 2
   ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdTan_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdTan_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdTan_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsTan_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsTan_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsTan_HA(int32_t n, const float* a, float* r);

/* Pow: r[i] = a^b. Reports a pole, zero to a negative power, with code 1 (result inf or -inf), and
   a negative base with a fractional exponent with code 1 (result NaN). Overflow and underflow are
   not reported. Bounds in double: HA 0.56 ulp, _50 1.5 ulp, _26 at least 26 bits; in single: HA
   0.51 ulp, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdPow_26(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexdPow_50(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexdPow_HA(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexsPow_11(int32_t n, const float* a, const float* b, float* r);
PEXQUO_API int _pexsPow_21(int32_t n, const float* a, const float* b, float* r);
PEXQUO_API int _pexsPow_HA(int32_t n, const float* a, const float* b, float* r);

/* Powx: r[i] = a^b, one b for all elements. Reports a pole, zero to a negative power, with code 1
   (result inf or -inf), and a negative base with a fractional exponent with code 1 (result NaN).
   Overflow and underflow are not reported. An exponent of 1/2, -1/2, 1/3, -1/3, 2/3, 3/2 or -1 is
   handed to Sqrt, InvSqrt, Cbrt, InvCbrt, Pow2o3, Pow3o2 or Inv, which report under their own
   names. Bounds in double: HA 0.56 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA 0.51 ulp,
   _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdPowx_26(int32_t n, const double* a, double b, double* r);
PEXQUO_API int _pexdPowx_50(int32_t n, const double* a, double b, double* r);
PEXQUO_API int _pexdPowx_HA(int32_t n, const double* a, double b, double* r);
PEXQUO_API int _pexsPowx_11(int32_t n, const float* a, float b, float* r);
PEXQUO_API int _pexsPowx_21(int32_t n, const float* a, float b, float* r);
PEXQUO_API int _pexsPowx_HA(int32_t n, const float* a, float b, float* r);

/* Pow2o3: r[i] = a^(2/3), the square of the real cube root. Reports nothing. Bounds in double: HA
   0.51 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at
   least 11 bits. */
PEXQUO_API int _pexdPow2o3_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdPow2o3_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdPow2o3_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsPow2o3_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsPow2o3_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsPow2o3_HA(int32_t n, const float* a, float* r);

/* Pow3o2: r[i] = a^(3/2). Zero, without a sign, for both zeros. Reports negative arguments (code 1,
   result NaN). Bounds in double: HA 0.51 ulp, _50 1.5 ulp, _26 at least 26 bits; in single: HA
   correctly rounded, _21 1.5 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdPow3o2_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdPow3o2_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdPow3o2_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsPow3o2_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsPow3o2_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsPow3o2_HA(int32_t n, const float* a, float* r);

/* Sqrt: r[i] = the square root of a. Correctly rounded. Keeps the sign of zero. Reports negative
   arguments (code 1, result NaN). Bounds in double: HA 0.5 ulp, _50 0.5 ulp, _26 at least 26 bits;
   in single: HA correctly rounded, _21 0.5 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdSqrt_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdSqrt_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdSqrt_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsSqrt_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsSqrt_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsSqrt_HA(int32_t n, const float* a, float* r);

/* InvSqrt: r[i] = 1 / the square root of a. Reports a pole at plus or minus 0 (code 2, result inf
   or -inf) and negative arguments (code 1, result NaN). Bounds in double: HA 0.52 ulp, _50 1.5 ulp,
   _26 at least 26 bits; in single: HA correctly rounded, _21 1.5 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdInvSqrt_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdInvSqrt_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdInvSqrt_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsInvSqrt_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsInvSqrt_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsInvSqrt_HA(int32_t n, const float* a, float* r);

/* Cbrt: r[i] = the cube root of a. Reports nothing. Bounds in double: HA 0.51 ulp, _50 2 ulp, _26
   at least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdCbrt_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCbrt_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCbrt_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsCbrt_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCbrt_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCbrt_HA(int32_t n, const float* a, float* r);

/* InvCbrt: r[i] = 1 / the cube root of a. Reports a pole at plus or minus 0 (code 2, result inf or
   -inf). Bounds in double: HA 0.51 ulp, _50 1.5 ulp, _26 at least 26 bits; in single: HA correctly
   rounded, _21 1.5 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdInvCbrt_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdInvCbrt_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdInvCbrt_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsInvCbrt_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsInvCbrt_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsInvCbrt_HA(int32_t n, const float* a, float* r);

/* Inv: r[i] = 1 / a. Correctly rounded. Reports a pole at plus or minus 0 (code 2, result inf or
   -inf). Bounds in double: HA 0.5 ulp, _50 0.5 ulp, _26 at least 26 bits; in single: HA correctly
   rounded, _21 0.5 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdInv_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdInv_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdInv_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsInv_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsInv_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsInv_HA(int32_t n, const float* a, float* r);

/* Div: r[i] = a / b. Correctly rounded. Reports a divisor of plus or minus 0, whatever a is (code
   2, the quotient as it is: inf, -inf or NaN). Bounds in double: HA 0.5 ulp, _50 0.5 ulp, _26 at
   least 26 bits; in single: HA correctly rounded, _21 0.5 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdDiv_26(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexdDiv_50(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexdDiv_HA(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexsDiv_11(int32_t n, const float* a, const float* b, float* r);
PEXQUO_API int _pexsDiv_21(int32_t n, const float* a, const float* b, float* r);
PEXQUO_API int _pexsDiv_HA(int32_t n, const float* a, const float* b, float* r);

/* Hypot: r[i] = the square root of a^2 + b^2. No overflow or underflow on the way; inf if either
   argument is infinite. Reports nothing. Bounds in double: HA 0.51 ulp, _50 1.5 ulp, _26 at least
   26 bits; in single: HA 0.51 ulp, _21 1.5 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdHypot_26(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexdHypot_50(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexdHypot_HA(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexsHypot_11(int32_t n, const float* a, const float* b, float* r);
PEXQUO_API int _pexsHypot_21(int32_t n, const float* a, const float* b, float* r);
PEXQUO_API int _pexsHypot_HA(int32_t n, const float* a, const float* b, float* r);

/* Acos: r[i] = the arc cosine of a, in [0, pi]. Reports arguments beyond plus or minus 1 (code 1,
   result NaN). Bounds in double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA
   correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdAcos_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAcos_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAcos_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsAcos_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAcos_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAcos_HA(int32_t n, const float* a, float* r);

/* Asin: r[i] = the arc sine of a, in [-pi/2, pi/2]. Keeps the sign of zero. Reports arguments
   beyond plus or minus 1 (code 1, result NaN). Bounds in double: HA 0.55 ulp, _50 2 ulp, _26 at
   least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdAsin_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAsin_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAsin_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsAsin_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAsin_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAsin_HA(int32_t n, const float* a, float* r);

/* Atan: r[i] = the arc tangent of a, in [-pi/2, pi/2]. Keeps the sign of zero. Reports nothing.
   Bounds in double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded,
   _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdAtan_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAtan_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAtan_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsAtan_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAtan_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAtan_HA(int32_t n, const float* a, float* r);

/* Atan2: r[i] = the angle of the point (b, a), in [-pi, pi]. a is the ordinate, b the abscissa;
   signs of zero choose the side. Reports nothing. Bounds in double: HA 0.55 ulp, _50 2 ulp, _26 at
   least 26 bits; in single: HA 0.51 ulp, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdAtan2_26(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexdAtan2_50(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexdAtan2_HA(int32_t n, const double* a, const double* b, double* r);
PEXQUO_API int _pexsAtan2_11(int32_t n, const float* a, const float* b, float* r);
PEXQUO_API int _pexsAtan2_21(int32_t n, const float* a, const float* b, float* r);
PEXQUO_API int _pexsAtan2_HA(int32_t n, const float* a, const float* b, float* r);

/* Acosh: r[i] = the inverse hyperbolic cosine of a. Reports arguments below 1 (code 1, result NaN).
   Bounds in double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded,
   _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdAcosh_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAcosh_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAcosh_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsAcosh_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAcosh_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAcosh_HA(int32_t n, const float* a, float* r);

/* Asinh: r[i] = the inverse hyperbolic sine of a. Keeps the sign of zero. Reports nothing. Bounds
   in double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2
   ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdAsinh_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAsinh_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAsinh_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsAsinh_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAsinh_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAsinh_HA(int32_t n, const float* a, float* r);

/* Atanh: r[i] = the inverse hyperbolic tangent of a. Keeps the sign of zero. Reports poles at 1 and
   -1 (code 2, result inf or -inf) and arguments beyond them (code 1, result NaN). Bounds in double:
   HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at
   least 11 bits. */
PEXQUO_API int _pexdAtanh_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAtanh_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdAtanh_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsAtanh_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAtanh_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsAtanh_HA(int32_t n, const float* a, float* r);

/* Cosh: r[i] = the hyperbolic cosine of a. Reports overflow (code 3, result inf). Bounds in double:
   HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at
   least 11 bits. */
PEXQUO_API int _pexdCosh_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCosh_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCosh_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsCosh_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCosh_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCosh_HA(int32_t n, const float* a, float* r);

/* Sinh: r[i] = the hyperbolic sine of a. Keeps the sign of zero. Reports overflow (code 3, result
   inf or -inf). Bounds in double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA
   correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdSinh_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdSinh_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdSinh_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsSinh_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsSinh_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsSinh_HA(int32_t n, const float* a, float* r);

/* Tanh: r[i] = the hyperbolic tangent of a. Keeps the sign of zero. Reports nothing. Bounds in
   double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp,
   _11 at least 11 bits. */
PEXQUO_API int _pexdTanh_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdTanh_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdTanh_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsTanh_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsTanh_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsTanh_HA(int32_t n, const float* a, float* r);

/* Erf: r[i] = the error function of a. Keeps the sign of zero. Reports nothing. Bounds in double:
   HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at
   least 11 bits. */
PEXQUO_API int _pexdErf_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdErf_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdErf_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsErf_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsErf_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsErf_HA(int32_t n, const float* a, float* r);

/* Erfc: r[i] = 1 - the error function of a. Reports underflow (code 4, result subnormal or 0).
   Bounds in double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded,
   _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdErfc_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdErfc_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdErfc_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsErfc_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsErfc_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsErfc_HA(int32_t n, const float* a, float* r);

/* CdfNorm: r[i] = the standard normal distribution function of a. Reports underflow (code 4, result
   subnormal or 0). Bounds in double: HA 0.55 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA
   correctly rounded, _21 2 ulp, _11 at least 11 bits. */
PEXQUO_API int _pexdCdfNorm_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCdfNorm_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCdfNorm_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsCdfNorm_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCdfNorm_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCdfNorm_HA(int32_t n, const float* a, float* r);

/* ErfInv: r[i] = the inverse of the error function at a. Keeps the sign of zero. Reports poles at 1
   and -1 (code 2, result inf or -inf) and arguments beyond them (code 1, result NaN). Bounds in
   double: HA 0.51 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp,
   _11 at least 11 bits. */
PEXQUO_API int _pexdErfInv_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdErfInv_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdErfInv_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsErfInv_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsErfInv_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsErfInv_HA(int32_t n, const float* a, float* r);

/* ErfcInv: r[i] = the inverse of 1 - the error function at a. Reports poles at 0 and 2 (code 2,
   result inf or -inf) and arguments outside [0, 2] (code 1, result NaN). Bounds in double: HA 0.51
   ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp, _11 at least 11
   bits. */
PEXQUO_API int _pexdErfcInv_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdErfcInv_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdErfcInv_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsErfcInv_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsErfcInv_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsErfcInv_HA(int32_t n, const float* a, float* r);

/* CdfNormInv: r[i] = the quantile of the standard normal distribution at a. Reports poles at 0 and
   1 (code 2, result -inf or inf) and arguments outside [0, 1] (code 1, result NaN). Bounds in
   double: HA 0.51 ulp, _50 2 ulp, _26 at least 26 bits; in single: HA correctly rounded, _21 2 ulp,
   _11 at least 11 bits. */
PEXQUO_API int _pexdCdfNormInv_26(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCdfNormInv_50(int32_t n, const double* a, double* r);
PEXQUO_API int _pexdCdfNormInv_HA(int32_t n, const double* a, double* r);
PEXQUO_API int _pexsCdfNormInv_11(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCdfNormInv_21(int32_t n, const float* a, float* r);
PEXQUO_API int _pexsCdfNormInv_HA(int32_t n, const float* a, float* r);

/* ---- Complex functions. Bounds are ulp of each part of a result, or, where it is said, of its
   larger part. They report no element and change no status. ---- */

/* Add: r[i] = a + b. Rounds as the caller's control word says. */
PEXQUO_API int _pexzAdd(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r);
PEXQUO_API int _pexcAdd(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);

/* Sub: r[i] = a - b. Rounds as the caller's control word says. */
PEXQUO_API int _pexzSub(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r);
PEXQUO_API int _pexcSub(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);

/* Mul: r[i] = a b. _26 and _11 round every product and sum and take subnormal arguments as the
   caller's control word says; the other tiers are one computation that takes the products exactly,
   so that cancellation loses nothing. Bounds in double: HA 0.51 ulp, _50 0.51 ulp, _26 at least 51
   bits of the larger part; in single: HA 0.51 ulp, _21 0.51 ulp, _11 at least 22 bits of the larger
   part. */
PEXQUO_API int _pexzMul_26(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r);
PEXQUO_API int _pexzMul_50(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r);
PEXQUO_API int _pexzMul_HA(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r);
PEXQUO_API int _pexcMul_11(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int _pexcMul_21(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int _pexcMul_HA(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);

/* MulByConj: r[i] = a conj(b). As Mul. Bounds in double: HA 0.51 ulp, _50 0.51 ulp, _26 at least 51
   bits of the larger part; in single: HA 0.51 ulp, _21 0.51 ulp, _11 at least 22 bits of the larger
   part. */
PEXQUO_API int _pexzMulByConj_26(int32_t n, const PexComplex16* a, const PexComplex16* b,
    PexComplex16* r);
PEXQUO_API int _pexzMulByConj_50(int32_t n, const PexComplex16* a, const PexComplex16* b,
    PexComplex16* r);
PEXQUO_API int _pexzMulByConj_HA(int32_t n, const PexComplex16* a, const PexComplex16* b,
    PexComplex16* r);
PEXQUO_API int _pexcMulByConj_11(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8*
    r);
PEXQUO_API int _pexcMulByConj_21(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8*
    r);
PEXQUO_API int _pexcMulByConj_HA(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8*
    r);

/* Div: r[i] = a/b. a conj(b) times 1/|b|^2. _26 and _11 do not scale: |b|^2 overflows for |b|
   beyond 2^512 and 2^64 and underflows below 2^-511 and 2^-63. They take subnormal arguments as the
   caller's control word says. A zero b gives NaN in both parts, raising divide-by-zero and invalid.
   Bounds in double: HA 0.51 ulp, _50 0.51 ulp, _26 at least 50 bits of the larger part; in single:
   HA 0.51 ulp, _21 0.51 ulp, _11 at least 21 bits of the larger part. */
PEXQUO_API int _pexzDiv_26(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r);
PEXQUO_API int _pexzDiv_50(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r);
PEXQUO_API int _pexzDiv_HA(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r);
PEXQUO_API int _pexcDiv_11(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int _pexcDiv_21(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int _pexcDiv_HA(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);

/* Conj: r[i] = conj(a). Flips the sign bit of the imaginary part, also of a NaN. */
PEXQUO_API int _pexzConj(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcConj(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Abs: r[i] = |a|. One computation for all tiers, without overflow or underflow on the way.
   Infinity where a part is infinite, else NaN where one is: in double with the NaN's sign, in
   single without. Bounds in double: HA 0.51 ulp, _50 0.51 ulp, _26 at least 52 bits; in single: HA
   0.51 ulp, _21 0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzAbs_26(int32_t n, const PexComplex16* a, double* r);
PEXQUO_API int _pexzAbs_50(int32_t n, const PexComplex16* a, double* r);
PEXQUO_API int _pexzAbs_HA(int32_t n, const PexComplex16* a, double* r);
PEXQUO_API int _pexcAbs_11(int32_t n, const PexComplex8* a, float* r);
PEXQUO_API int _pexcAbs_21(int32_t n, const PexComplex8* a, float* r);
PEXQUO_API int _pexcAbs_HA(int32_t n, const PexComplex8* a, float* r);

/* Arg: r[i] = the angle of a in [-pi, pi]. The values of Atan2 of the imaginary and the real part;
   _26 is _50. Cut along the negative real axis, where the sign of the imaginary part's zero chooses
   pi or -pi; 0 and -0 have the angles of their signs, infinities a multiple of pi/4, NaN gives NaN.
   Bounds in double: HA 0.55 ulp, _50 4 ulp, _26 at least 50 bits; in single: HA 0.51 ulp, _21 4
   ulp, _11 at least 11 bits. */
PEXQUO_API int _pexzArg_26(int32_t n, const PexComplex16* a, double* r);
PEXQUO_API int _pexzArg_50(int32_t n, const PexComplex16* a, double* r);
PEXQUO_API int _pexzArg_HA(int32_t n, const PexComplex16* a, double* r);
PEXQUO_API int _pexcArg_11(int32_t n, const PexComplex8* a, float* r);
PEXQUO_API int _pexcArg_21(int32_t n, const PexComplex8* a, float* r);
PEXQUO_API int _pexcArg_HA(int32_t n, const PexComplex8* a, float* r);

/* CIS: r[i] = cos a + i sin a. One computation for all tiers. NaN in both parts for infinities,
   raising invalid, and for NaN. Bounds in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits;
   in single: HA 0.6 ulp, _21 0.6 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzCIS_26(int32_t n, const double* a, PexComplex16* r);
PEXQUO_API int _pexzCIS_50(int32_t n, const double* a, PexComplex16* r);
PEXQUO_API int _pexzCIS_HA(int32_t n, const double* a, PexComplex16* r);
PEXQUO_API int _pexcCIS_11(int32_t n, const float* a, PexComplex8* r);
PEXQUO_API int _pexcCIS_21(int32_t n, const float* a, PexComplex8* r);
PEXQUO_API int _pexcCIS_HA(int32_t n, const float* a, PexComplex8* r);

/* Exp: r[i] = e^a. One computation in double precision; in single, _11 is _21, which computes in
   floats. No overflow or underflow on the way: e^x may exceed all numbers where its product with
   the sine does not. No cuts. Real part -infinity gives zeros, +infinity infinite parts, with the
   signs of cos and sin of the imaginary part. Bounds in double: HA 0.8 ulp, _50 0.8 ulp, _26 at
   least 52 bits; in single: HA 0.51 ulp, _21 3.6 ulp, _11 at least 21 bits. */
PEXQUO_API int _pexzExp_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzExp_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzExp_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcExp_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcExp_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcExp_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Ln: r[i] = ln a. In single precision _21 and _11 compute in floats. Imaginary part in [-pi, pi],
   cut along the negative real axis. The real part keeps its relative accuracy next to the unit
   circle, but in _11, whose bits are those of the modulus. -infinity for 0, raising divide-by-zero;
   +infinity with the angle of the argument where a part is infinite. Bounds in double: HA 0.65 ulp,
   _50 2 ulp, _26 at least 29 bits of the larger part; in single: HA 0.51 ulp, _21 2.6 ulp, _11 at
   least 11 bits of the larger part. */
PEXQUO_API int _pexzLn_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzLn_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzLn_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcLn_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcLn_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcLn_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Log10: r[i] = log10 a. As Ln, both parts divided by ln 10. Bounds in double: HA 0.7 ulp, _50 0.7
   ulp, _26 at least 52 bits; in single: HA 0.51 ulp, _21 0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzLog10_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzLog10_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzLog10_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcLog10_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcLog10_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcLog10_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Sqrt: r[i] = sqrt(a). One computation in double precision; in single, _11 is _21, which computes
   in floats. In the right half-plane, cut along the negative real axis. An infinite imaginary part
   gives infinity in both parts, whatever the real part. Bounds in double: HA 0.55 ulp, _50 0.55
   ulp, _26 at least 52 bits; in single: HA 0.51 ulp, _21 2.5 ulp, _11 at least 21 bits. */
PEXQUO_API int _pexzSqrt_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzSqrt_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzSqrt_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcSqrt_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcSqrt_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcSqrt_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Cosh: r[i] = cosh a. One computation for all tiers. No overflow or underflow on the way. No cuts.
   Infinite real parts give infinite parts, with the signs of cos and sin of the imaginary part.
   Bounds in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits; in single: HA 0.51 ulp, _21
   0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzCosh_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzCosh_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzCosh_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcCosh_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcCosh_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcCosh_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Sinh: r[i] = sinh a. One computation for all tiers. No overflow or underflow on the way. No cuts.
   Infinite real parts give infinite parts, with the signs of cos and sin of the imaginary part.
   Bounds in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits; in single: HA 0.51 ulp, _21
   0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzSinh_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzSinh_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzSinh_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcSinh_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcSinh_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcSinh_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Tanh: r[i] = tanh a. One computation for all tiers. No overflow or underflow on the way. No cuts;
   poles at odd multiples of i pi/2, which no number hits. 1 and -1 for infinite real parts. Bounds
   in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits; in single: HA 0.51 ulp, _21 0.51 ulp,
   _11 at least 23 bits. */
PEXQUO_API int _pexzTanh_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzTanh_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzTanh_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcTanh_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcTanh_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcTanh_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Cos: r[i] = cos a. One computation for all tiers. No overflow or underflow on the way. No cuts.
   cos a = cosh(ia), bit for bit. Bounds in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits;
   in single: HA 0.51 ulp, _21 0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzCos_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzCos_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzCos_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcCos_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcCos_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcCos_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Sin: r[i] = sin a. One computation for all tiers. No overflow or underflow on the way. No cuts.
   sin a = -i sinh(ia), bit for bit. Bounds in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52
   bits; in single: HA 0.51 ulp, _21 0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzSin_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzSin_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzSin_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcSin_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcSin_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcSin_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Tan: r[i] = tan a. One computation for all tiers. No overflow or underflow on the way. No cuts;
   poles at odd multiples of pi/2, which no number hits. tan a = -i tanh(ia), bit for bit: i and -i
   for infinite imaginary parts. Bounds in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits;
   in single: HA 0.51 ulp, _21 0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzTan_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzTan_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzTan_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcTan_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcTan_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcTan_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Acosh: r[i] = acosh a. One computation for all tiers. No overflow or underflow on the way. Real
   part not negative, cut along the real axis below 1. +infinity with the angle of the argument
   where a part is infinite. Bounds in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits; in
   single: HA 0.51 ulp, _21 0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzAcosh_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAcosh_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAcosh_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcAcosh_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAcosh_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAcosh_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Asinh: r[i] = asinh a. One computation for all tiers. No overflow or underflow on the way. Cut
   along the imaginary axis beyond i and -i. An infinite part makes the real part infinite. Bounds
   in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits; in single: HA 0.51 ulp, _21 0.51 ulp,
   _11 at least 23 bits. */
PEXQUO_API int _pexzAsinh_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAsinh_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAsinh_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcAsinh_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAsinh_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAsinh_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Atanh: r[i] = atanh a. One computation for all tiers. No overflow or underflow on the way. Cut
   along the real axis beyond 1 and -1; infinite at 1 and -1, raising divide-by-zero. Imaginary part
   pi/2 or -pi/2, by its sign, where a part is infinite. Bounds in double: HA 0.9 ulp, _50 0.9 ulp,
   _26 at least 52 bits; in single: HA 0.51 ulp, _21 0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzAtanh_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAtanh_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAtanh_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcAtanh_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAtanh_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAtanh_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Acos: r[i] = acos a. One computation for all tiers. No overflow or underflow on the way. Real
   part in [0, pi], cut along the real axis beyond 1 and -1. An infinite part makes the imaginary
   part infinite. Bounds in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits; in single: HA
   0.51 ulp, _21 0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzAcos_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAcos_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAcos_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcAcos_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAcos_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAcos_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Asin: r[i] = asin a. One computation for all tiers. No overflow or underflow on the way. asin a =
   -i asinh(ia), bit for bit. Real part in [-pi/2, pi/2], cut along the real axis beyond 1 and -1.
   Bounds in double: HA 0.55 ulp, _50 0.55 ulp, _26 at least 52 bits; in single: HA 0.51 ulp, _21
   0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzAsin_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAsin_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAsin_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcAsin_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAsin_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAsin_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Atan: r[i] = atan a. One computation for all tiers. No overflow or underflow on the way. atan a =
   -i atanh(ia), bit for bit. Real part in [-pi/2, pi/2], cut along the imaginary axis beyond i and
   -i; infinite at i and -i, raising divide-by-zero. Bounds in double: HA 0.9 ulp, _50 0.9 ulp, _26
   at least 52 bits; in single: HA 0.51 ulp, _21 0.51 ulp, _11 at least 23 bits. */
PEXQUO_API int _pexzAtan_26(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAtan_50(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexzAtan_HA(int32_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int _pexcAtan_11(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAtan_21(int32_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int _pexcAtan_HA(int32_t n, const PexComplex8* a, PexComplex8* r);

/* Pow: r[i] = a^b. One computation for all tiers. a^b = e^(b ln a), ln as in Ln: cut along the
   negative real axis of a. A part of b that is zero takes no part in the product: a^0 is 1, 0^b is
   0 for real b > 0. The bound holds for |b ln a| below 2^20. Bounds in double: HA 1 ulp of the
   larger part, _50 1 ulp of the larger part, _26 at least 52 bits of the larger part; in single: HA
   0.8 ulp of the larger part, _21 0.8 ulp of the larger part, _11 at least 23 bits of the larger
   part. */
PEXQUO_API int _pexzPow_26(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r);
PEXQUO_API int _pexzPow_50(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r);
PEXQUO_API int _pexzPow_HA(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r);
PEXQUO_API int _pexcPow_11(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int _pexcPow_21(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int _pexcPow_HA(int32_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);

/* Powx: r[i] = a^b for one b. As Pow. Bounds in double: HA 1 ulp of the larger part, _50 1 ulp of
   the larger part, _26 at least 52 bits of the larger part; in single: HA 0.8 ulp of the larger
   part, _21 0.8 ulp of the larger part, _11 at least 23 bits of the larger part. */
PEXQUO_API int _pexzPowx_26(int32_t n, const PexComplex16* a, PexComplex16 b, PexComplex16* r);
PEXQUO_API int _pexzPowx_50(int32_t n, const PexComplex16* a, PexComplex16 b, PexComplex16* r);
PEXQUO_API int _pexzPowx_HA(int32_t n, const PexComplex16* a, PexComplex16 b, PexComplex16* r);
PEXQUO_API int _pexcPowx_11(int32_t n, const PexComplex8* a, PexComplex8 b, PexComplex8* r);
PEXQUO_API int _pexcPowx_21(int32_t n, const PexComplex8* a, PexComplex8 b, PexComplex8* r);
PEXQUO_API int _pexcPowx_HA(int32_t n, const PexComplex8* a, PexComplex8 b, PexComplex8* r);

#endif /* PEXQUO_PEX_FUNCTIONS_H_ */
