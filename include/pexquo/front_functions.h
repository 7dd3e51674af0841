/* Generated from catalogue/functions.def and complex_functions.def by catalogue/make_header.cc:
   change the row, then run `cmake --build --preset release --target header`. Included by
   pexquo/pexquo.h, which says what all these functions have in common. */
#ifndef PEXQUO_FRONT_FUNCTIONS_H_
#define PEXQUO_FRONT_FUNCTIONS_H_

/* ---- Real functions: d of doubles, s of floats. ---- */

/* r[i] = a + b */
PEXQUO_API int32_t vdAdd(int64_t n, const double* a, const double* b, double* r);
PEXQUO_API int32_t vdAddMode(int64_t n, const double* a, const double* b, double* r, uint32_t mode);
PEXQUO_API int32_t vsAdd(int64_t n, const float* a, const float* b, float* r);
PEXQUO_API int32_t vsAddMode(int64_t n, const float* a, const float* b, float* r, uint32_t mode);

/* r[i] = a - b */
PEXQUO_API int32_t vdSub(int64_t n, const double* a, const double* b, double* r);
PEXQUO_API int32_t vdSubMode(int64_t n, const double* a, const double* b, double* r, uint32_t mode);
PEXQUO_API int32_t vsSub(int64_t n, const float* a, const float* b, float* r);
PEXQUO_API int32_t vsSubMode(int64_t n, const float* a, const float* b, float* r, uint32_t mode);

/* r[i] = a * b */
PEXQUO_API int32_t vdMul(int64_t n, const double* a, const double* b, double* r);
PEXQUO_API int32_t vdMulMode(int64_t n, const double* a, const double* b, double* r, uint32_t mode);
PEXQUO_API int32_t vsMul(int64_t n, const float* a, const float* b, float* r);
PEXQUO_API int32_t vsMulMode(int64_t n, const float* a, const float* b, float* r, uint32_t mode);

/* r[i] = a * a */
PEXQUO_API int32_t vdSqr(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdSqrMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsSqr(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsSqrMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = |a| */
PEXQUO_API int32_t vdAbs(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdAbsMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsAbs(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsAbsMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the least integer not below a */
PEXQUO_API int32_t vdCeil(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdCeilMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsCeil(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsCeilMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the greatest integer not above a */
PEXQUO_API int32_t vdFloor(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdFloorMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsFloor(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsFloorMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = a rounded toward zero */
PEXQUO_API int32_t vdTrunc(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdTruncMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsTrunc(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsTruncMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = a rounded to an integer in the caller's rounding mode */
PEXQUO_API int32_t vdRint(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdRintMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsRint(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsRintMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = a rounded to an integer in the caller's rounding mode */
PEXQUO_API int32_t vdNearbyInt(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdNearbyIntMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsNearbyInt(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsNearbyIntMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the nearest integer, ties away from zero */
PEXQUO_API int32_t vdRound(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdRoundMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsRound(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsRoundMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = integer part and fractional part of a, both with its sign */
PEXQUO_API int32_t vdModf(int64_t n, const double* a, double* r1, double* r2);
PEXQUO_API int32_t vdModfMode(int64_t n, const double* a, double* r1, double* r2, uint32_t mode);
PEXQUO_API int32_t vsModf(int64_t n, const float* a, float* r1, float* r2);
PEXQUO_API int32_t vsModfMode(int64_t n, const float* a, float* r1, float* r2, uint32_t mode);

/* r[i] = e^a */
PEXQUO_API int32_t vdExp(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdExpMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsExp(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsExpMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = e^a - 1 */
PEXQUO_API int32_t vdExpm1(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdExpm1Mode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsExpm1(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsExpm1Mode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the natural logarithm of a */
PEXQUO_API int32_t vdLn(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdLnMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsLn(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsLnMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the decimal logarithm of a */
PEXQUO_API int32_t vdLog10(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdLog10Mode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsLog10(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsLog10Mode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the natural logarithm of 1 + a */
PEXQUO_API int32_t vdLog1p(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdLog1pMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsLog1p(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsLog1pMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the sine of a radians */
PEXQUO_API int32_t vdSin(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdSinMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsSin(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsSinMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the cosine of a radians */
PEXQUO_API int32_t vdCos(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdCosMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsCos(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsCosMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the sine and the cosine of a radians */
PEXQUO_API int32_t vdSinCos(int64_t n, const double* a, double* r1, double* r2);
PEXQUO_API int32_t vdSinCosMode(int64_t n, const double* a, double* r1, double* r2, uint32_t mode);
PEXQUO_API int32_t vsSinCos(int64_t n, const float* a, float* r1, float* r2);
PEXQUO_API int32_t vsSinCosMode(int64_t n, const float* a, float* r1, float* r2, uint32_t mode);

/* r[i] = the tangent of a radians */
PEXQUO_API int32_t vdTan(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdTanMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsTan(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsTanMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = a^b */
PEXQUO_API int32_t vdPow(int64_t n, const double* a, const double* b, double* r);
PEXQUO_API int32_t vdPowMode(int64_t n, const double* a, const double* b, double* r, uint32_t mode);
PEXQUO_API int32_t vsPow(int64_t n, const float* a, const float* b, float* r);
PEXQUO_API int32_t vsPowMode(int64_t n, const float* a, const float* b, float* r, uint32_t mode);

/* r[i] = a^b, one b for all elements */
PEXQUO_API int32_t vdPowx(int64_t n, const double* a, double b, double* r);
PEXQUO_API int32_t vdPowxMode(int64_t n, const double* a, double b, double* r, uint32_t mode);
PEXQUO_API int32_t vsPowx(int64_t n, const float* a, float b, float* r);
PEXQUO_API int32_t vsPowxMode(int64_t n, const float* a, float b, float* r, uint32_t mode);

/* r[i] = a^(2/3), the square of the real cube root */
PEXQUO_API int32_t vdPow2o3(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdPow2o3Mode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsPow2o3(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsPow2o3Mode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = a^(3/2) */
PEXQUO_API int32_t vdPow3o2(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdPow3o2Mode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsPow3o2(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsPow3o2Mode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the square root of a */
PEXQUO_API int32_t vdSqrt(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdSqrtMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsSqrt(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsSqrtMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = 1 / the square root of a */
PEXQUO_API int32_t vdInvSqrt(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdInvSqrtMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsInvSqrt(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsInvSqrtMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the cube root of a */
PEXQUO_API int32_t vdCbrt(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdCbrtMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsCbrt(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsCbrtMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = 1 / the cube root of a */
PEXQUO_API int32_t vdInvCbrt(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdInvCbrtMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsInvCbrt(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsInvCbrtMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = 1 / a */
PEXQUO_API int32_t vdInv(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdInvMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsInv(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsInvMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = a / b */
PEXQUO_API int32_t vdDiv(int64_t n, const double* a, const double* b, double* r);
PEXQUO_API int32_t vdDivMode(int64_t n, const double* a, const double* b, double* r, uint32_t mode);
PEXQUO_API int32_t vsDiv(int64_t n, const float* a, const float* b, float* r);
PEXQUO_API int32_t vsDivMode(int64_t n, const float* a, const float* b, float* r, uint32_t mode);

/* r[i] = the square root of a^2 + b^2 */
PEXQUO_API int32_t vdHypot(int64_t n, const double* a, const double* b, double* r);
PEXQUO_API int32_t vdHypotMode(int64_t n, const double* a, const double* b, double* r, uint32_t
    mode);
PEXQUO_API int32_t vsHypot(int64_t n, const float* a, const float* b, float* r);
PEXQUO_API int32_t vsHypotMode(int64_t n, const float* a, const float* b, float* r, uint32_t mode);

/* r[i] = the arc cosine of a, in [0, pi] */
PEXQUO_API int32_t vdAcos(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdAcosMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsAcos(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsAcosMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the arc sine of a, in [-pi/2, pi/2] */
PEXQUO_API int32_t vdAsin(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdAsinMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsAsin(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsAsinMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the arc tangent of a, in [-pi/2, pi/2] */
PEXQUO_API int32_t vdAtan(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdAtanMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsAtan(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsAtanMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the angle of the point (b, a), in [-pi, pi] */
PEXQUO_API int32_t vdAtan2(int64_t n, const double* a, const double* b, double* r);
PEXQUO_API int32_t vdAtan2Mode(int64_t n, const double* a, const double* b, double* r, uint32_t
    mode);
PEXQUO_API int32_t vsAtan2(int64_t n, const float* a, const float* b, float* r);
PEXQUO_API int32_t vsAtan2Mode(int64_t n, const float* a, const float* b, float* r, uint32_t mode);

/* r[i] = the inverse hyperbolic cosine of a */
PEXQUO_API int32_t vdAcosh(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdAcoshMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsAcosh(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsAcoshMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the inverse hyperbolic sine of a */
PEXQUO_API int32_t vdAsinh(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdAsinhMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsAsinh(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsAsinhMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the inverse hyperbolic tangent of a */
PEXQUO_API int32_t vdAtanh(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdAtanhMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsAtanh(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsAtanhMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the hyperbolic cosine of a */
PEXQUO_API int32_t vdCosh(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdCoshMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsCosh(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsCoshMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the hyperbolic sine of a */
PEXQUO_API int32_t vdSinh(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdSinhMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsSinh(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsSinhMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the hyperbolic tangent of a */
PEXQUO_API int32_t vdTanh(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdTanhMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsTanh(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsTanhMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the error function of a */
PEXQUO_API int32_t vdErf(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdErfMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsErf(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsErfMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = 1 - the error function of a */
PEXQUO_API int32_t vdErfc(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdErfcMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsErfc(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsErfcMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the standard normal distribution function of a */
PEXQUO_API int32_t vdCdfNorm(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdCdfNormMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsCdfNorm(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsCdfNormMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the inverse of the error function at a */
PEXQUO_API int32_t vdErfInv(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdErfInvMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsErfInv(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsErfInvMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the inverse of 1 - the error function at a */
PEXQUO_API int32_t vdErfcInv(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdErfcInvMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsErfcInv(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsErfcInvMode(int64_t n, const float* a, float* r, uint32_t mode);

/* r[i] = the quantile of the standard normal distribution at a */
PEXQUO_API int32_t vdCdfNormInv(int64_t n, const double* a, double* r);
PEXQUO_API int32_t vdCdfNormInvMode(int64_t n, const double* a, double* r, uint32_t mode);
PEXQUO_API int32_t vsCdfNormInv(int64_t n, const float* a, float* r);
PEXQUO_API int32_t vsCdfNormInvMode(int64_t n, const float* a, float* r, uint32_t mode);

/* ---- Complex functions: z of doubles, c of floats. ---- */

/* r[i] = a + b */
PEXQUO_API int32_t vzAdd(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r);
PEXQUO_API int32_t vzAddMode(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r, uint32_t mode);
PEXQUO_API int32_t vcAdd(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int32_t vcAddMode(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r,
    uint32_t mode);

/* r[i] = a - b */
PEXQUO_API int32_t vzSub(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r);
PEXQUO_API int32_t vzSubMode(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r, uint32_t mode);
PEXQUO_API int32_t vcSub(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int32_t vcSubMode(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r,
    uint32_t mode);

/* r[i] = a b */
PEXQUO_API int32_t vzMul(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r);
PEXQUO_API int32_t vzMulMode(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r, uint32_t mode);
PEXQUO_API int32_t vcMul(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int32_t vcMulMode(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r,
    uint32_t mode);

/* r[i] = a conj(b) */
PEXQUO_API int32_t vzMulByConj(int64_t n, const PexComplex16* a, const PexComplex16* b,
    PexComplex16* r);
PEXQUO_API int32_t vzMulByConjMode(int64_t n, const PexComplex16* a, const PexComplex16* b,
    PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcMulByConj(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8*
    r);
PEXQUO_API int32_t vcMulByConjMode(int64_t n, const PexComplex8* a, const PexComplex8* b,
    PexComplex8* r, uint32_t mode);

/* r[i] = a/b */
PEXQUO_API int32_t vzDiv(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r);
PEXQUO_API int32_t vzDivMode(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r, uint32_t mode);
PEXQUO_API int32_t vcDiv(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int32_t vcDivMode(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r,
    uint32_t mode);

/* r[i] = conj(a) */
PEXQUO_API int32_t vzConj(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzConjMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcConj(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcConjMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = |a| */
PEXQUO_API int32_t vzAbs(int64_t n, const PexComplex16* a, double* r);
PEXQUO_API int32_t vzAbsMode(int64_t n, const PexComplex16* a, double* r, uint32_t mode);
PEXQUO_API int32_t vcAbs(int64_t n, const PexComplex8* a, float* r);
PEXQUO_API int32_t vcAbsMode(int64_t n, const PexComplex8* a, float* r, uint32_t mode);

/* r[i] = the angle of a in [-pi, pi] */
PEXQUO_API int32_t vzArg(int64_t n, const PexComplex16* a, double* r);
PEXQUO_API int32_t vzArgMode(int64_t n, const PexComplex16* a, double* r, uint32_t mode);
PEXQUO_API int32_t vcArg(int64_t n, const PexComplex8* a, float* r);
PEXQUO_API int32_t vcArgMode(int64_t n, const PexComplex8* a, float* r, uint32_t mode);

/* r[i] = cos a + i sin a */
PEXQUO_API int32_t vzCIS(int64_t n, const double* a, PexComplex16* r);
PEXQUO_API int32_t vzCISMode(int64_t n, const double* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcCIS(int64_t n, const float* a, PexComplex8* r);
PEXQUO_API int32_t vcCISMode(int64_t n, const float* a, PexComplex8* r, uint32_t mode);

/* r[i] = e^a */
PEXQUO_API int32_t vzExp(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzExpMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcExp(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcExpMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = ln a */
PEXQUO_API int32_t vzLn(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzLnMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcLn(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcLnMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = log10 a */
PEXQUO_API int32_t vzLog10(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzLog10Mode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcLog10(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcLog10Mode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = sqrt(a) */
PEXQUO_API int32_t vzSqrt(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzSqrtMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcSqrt(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcSqrtMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = cosh a */
PEXQUO_API int32_t vzCosh(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzCoshMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcCosh(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcCoshMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = sinh a */
PEXQUO_API int32_t vzSinh(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzSinhMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcSinh(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcSinhMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = tanh a */
PEXQUO_API int32_t vzTanh(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzTanhMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcTanh(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcTanhMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = cos a */
PEXQUO_API int32_t vzCos(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzCosMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcCos(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcCosMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = sin a */
PEXQUO_API int32_t vzSin(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzSinMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcSin(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcSinMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = tan a */
PEXQUO_API int32_t vzTan(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzTanMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcTan(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcTanMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = acosh a */
PEXQUO_API int32_t vzAcosh(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzAcoshMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcAcosh(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcAcoshMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = asinh a */
PEXQUO_API int32_t vzAsinh(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzAsinhMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcAsinh(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcAsinhMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = atanh a */
PEXQUO_API int32_t vzAtanh(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzAtanhMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcAtanh(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcAtanhMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = acos a */
PEXQUO_API int32_t vzAcos(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzAcosMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcAcos(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcAcosMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = asin a */
PEXQUO_API int32_t vzAsin(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzAsinMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcAsin(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcAsinMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = atan a */
PEXQUO_API int32_t vzAtan(int64_t n, const PexComplex16* a, PexComplex16* r);
PEXQUO_API int32_t vzAtanMode(int64_t n, const PexComplex16* a, PexComplex16* r, uint32_t mode);
PEXQUO_API int32_t vcAtan(int64_t n, const PexComplex8* a, PexComplex8* r);
PEXQUO_API int32_t vcAtanMode(int64_t n, const PexComplex8* a, PexComplex8* r, uint32_t mode);

/* r[i] = a^b */
PEXQUO_API int32_t vzPow(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r);
PEXQUO_API int32_t vzPowMode(int64_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16*
    r, uint32_t mode);
PEXQUO_API int32_t vcPow(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r);
PEXQUO_API int32_t vcPowMode(int64_t n, const PexComplex8* a, const PexComplex8* b, PexComplex8* r,
    uint32_t mode);

/* r[i] = a^b for one b */
PEXQUO_API int32_t vzPowx(int64_t n, const PexComplex16* a, PexComplex16 b, PexComplex16* r);
PEXQUO_API int32_t vzPowxMode(int64_t n, const PexComplex16* a, PexComplex16 b, PexComplex16* r,
    uint32_t mode);
PEXQUO_API int32_t vcPowx(int64_t n, const PexComplex8* a, PexComplex8 b, PexComplex8* r);
PEXQUO_API int32_t vcPowxMode(int64_t n, const PexComplex8* a, PexComplex8 b, PexComplex8* r,
    uint32_t mode);

#endif /* PEXQUO_FRONT_FUNCTIONS_H_ */
