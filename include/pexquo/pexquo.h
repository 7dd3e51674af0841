/* pexquo: vector math and random numbers, the library for programs in C (libpexquo_front).
 *
 * Vector functions take the number of elements first, then the argument arrays, then the results:
 *
 *     double x[3] = {0, 1, 2}, y[3];
 *     vdExp(3, x, y);
 *
 * Streams are made once and drawn from by the distributions:
 *
 *     QuoStream* stream;
 *     quoNewStream(&stream, QUO_BRNG_MT19937, 1);
 *     quodRngGaussian(QUO_METHOD_GAUSSIAN_ICDF, stream, 3, y, 0.0, 1.0);
 *     quoDeleteStream(&stream);
 *
 * Every argument is checked, and every refusal has a status of its own, which pexStatusText and
 * quoStatusText put into words. Counts are 64-bit. There is no state but the calling thread's mode,
 * status and callback, so all functions may be called from any thread; a stream belongs to one
 * thread at a time.
 *
 * This header is clean C89 but for the 64-bit types of <stdint.h>. It brings along the types and
 * constants of the kernels behind it (pexquo/pex.h, pexquo/quo.h). */
#ifndef PEXQUO_PEXQUO_H_
#define PEXQUO_PEXQUO_H_

#include <stdint.h>

#include "pexquo/pex.h"
#include "pexquo/quo.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The version of the library, "major.minor.patch". */
PEXQUO_API const char* pexquoVersion(void);

/* ---- Vector functions. ----
 *
 * v, the type of the elements (s float, d double, c PexComplex8, z PexComplex16), and the name of
 * the function: vdExp, vsLn, vzMul. Results may overwrite arguments of the same type at the same
 * address. The accuracy is that of the thread's mode word, PEX_ACCURACY_HA at first; functions that
 * are exact or correctly rounded have one computation. How accurate each is and what it makes of
 * special values stands at the kernels in pexquo/pex_functions.h: PEX_ACCURACY_EP takes _26 and
 * _11, PEX_ACCURACY_LA takes _50 and _21, PEX_ACCURACY_HA takes _HA.
 *
 * They return 0 when the function was computed. Special elements (domain, pole, overflow,
 * underflow) do not change that: they are reported one by one to the thread's status and callback,
 * as its mode word says. Refused calls touch no array and return
 *   PEX_STATUS_BAD_SIZE (-1)  for a negative count,
 *   PEX_STATUS_BAD_MEM (-2)   for a null array, unless the count is 0;
 * they are reported in the same way, under the public name ("vdExp"), with the number of the
 * refused parameter, counted from 1, as the index.
 *
 * Long arrays are computed in pieces of 2^30 elements, with the same results. The index of an
 * element in an error record is that in the whole array, modulo 2^32: the record's field has 32
 * bits. Where _pexSetInterfInputVectorPointer has set a base, indices count from there.
 *
 * The functions whose names end in Mode take a mode word for this one call, as their last argument:
 * its accuracy and its error field, where they are not zero, stand in for the thread's (0 changes
 * nothing). An error field of the call's is the thread's while the call lasts, for its callback
 * too, and goes with it. PEX_ERRMODE_CALLBACK has to be among its bits for the callback to be
 * called. The third field is not used. */

/* Values of the accuracy field; what is none of them counts as PEX_ACCURACY_HA. */
#define PEX_ACCURACY_LA 1u /* within 1 to 4 ulp */
#define PEX_ACCURACY_HA 2u /* within 1 ulp, mostly 0.55 */
#define PEX_ACCURACY_EP 3u /* 26 correct bits in double, 11 in single precision */

#include "pexquo/front_functions.h"

/* Copies of chosen elements, i = 0 .. n-1, as the kernels of pexquo/pex.h say. Increments, indices
 * and masks are 64-bit; increments may be negative or zero. Indices are not checked. */

/* y[i] = a[i * inca] */
PEXQUO_API int32_t vdPackI(int64_t n, const double* a, int64_t inca, double* y);
PEXQUO_API int32_t vdPackIMode(int64_t n, const double* a, int64_t inca, double* y, uint32_t mode);
PEXQUO_API int32_t vsPackI(int64_t n, const float* a, int64_t inca, float* y);
PEXQUO_API int32_t vsPackIMode(int64_t n, const float* a, int64_t inca, float* y, uint32_t mode);
/* y[i] = a[ia[i]] */
PEXQUO_API int32_t vdPackV(int64_t n, const double* a, const int64_t* ia, double* y);
PEXQUO_API int32_t vdPackVMode(int64_t n, const double* a, const int64_t* ia, double* y,
                               uint32_t mode);
PEXQUO_API int32_t vsPackV(int64_t n, const float* a, const int64_t* ia, float* y);
PEXQUO_API int32_t vsPackVMode(int64_t n, const float* a, const int64_t* ia, float* y,
                               uint32_t mode);
/* The a[i] with ma[i] != 0, one after the other from y[0]. */
PEXQUO_API int32_t vdPackM(int64_t n, const double* a, const int64_t* ma, double* y);
PEXQUO_API int32_t vdPackMMode(int64_t n, const double* a, const int64_t* ma, double* y,
                               uint32_t mode);
PEXQUO_API int32_t vsPackM(int64_t n, const float* a, const int64_t* ma, float* y);
PEXQUO_API int32_t vsPackMMode(int64_t n, const float* a, const int64_t* ma, float* y,
                               uint32_t mode);
/* y[i * incy] = a[i] */
PEXQUO_API int32_t vdUnpackI(int64_t n, const double* a, double* y, int64_t incy);
PEXQUO_API int32_t vdUnpackIMode(int64_t n, const double* a, double* y, int64_t incy,
                                 uint32_t mode);
PEXQUO_API int32_t vsUnpackI(int64_t n, const float* a, float* y, int64_t incy);
PEXQUO_API int32_t vsUnpackIMode(int64_t n, const float* a, float* y, int64_t incy, uint32_t mode);
/* y[iy[i]] = a[i]; of equal indices the last one stays. */
PEXQUO_API int32_t vdUnpackV(int64_t n, const double* a, double* y, const int64_t* iy);
PEXQUO_API int32_t vdUnpackVMode(int64_t n, const double* a, double* y, const int64_t* iy,
                                 uint32_t mode);
PEXQUO_API int32_t vsUnpackV(int64_t n, const float* a, float* y, const int64_t* iy);
PEXQUO_API int32_t vsUnpackVMode(int64_t n, const float* a, float* y, const int64_t* iy,
                                 uint32_t mode);
/* The y[i] with my[i] != 0 become a[0], a[1] and so on; the other y[i] are left alone. */
PEXQUO_API int32_t vdUnpackM(int64_t n, const double* a, double* y, const int64_t* my);
PEXQUO_API int32_t vdUnpackMMode(int64_t n, const double* a, double* y, const int64_t* my,
                                 uint32_t mode);
PEXQUO_API int32_t vsUnpackM(int64_t n, const float* a, float* y, const int64_t* my);
PEXQUO_API int32_t vsUnpackMMode(int64_t n, const float* a, float* y, const int64_t* my,
                                 uint32_t mode);

/* ---- Mode, status and callback of the calling thread. ---- */

/* The mode word: an accuracy (PEX_ACCURACY_...) and error bits (PEX_ERRMODE_...). Setting replaces
 * each field that has a bit set in `mode`, so 0 changes nothing; returns the previous word. At
 * first PEX_MODE_DEFAULT: HA, errno, exception flags and the callback, no messages. */
PEXQUO_API uint32_t pexSetMode(uint32_t mode);
PEXQUO_API uint32_t pexGetMode(void);
/* The code of the thread's last special element or refused call, until it is cleared. Setting and
 * clearing return the previous one. */
PEXQUO_API int32_t pexGetErrStatus(void);
PEXQUO_API int32_t pexSetErrStatus(int32_t status);
PEXQUO_API int32_t pexClearErrStatus(void);
/* What is called with the record of each special element. Setting switches PEX_ERRMODE_CALLBACK on,
 * clearing off; both return the previous callback. */
PEXQUO_API PexErrorCallBack pexSetErrorCallBack(PexErrorCallBack callback);
PEXQUO_API PexErrorCallBack pexGetErrorCallBack(void);
PEXQUO_API PexErrorCallBack pexClearErrorCallBack(void);
/* A sentence without a full stop, in memory that is never freed, for a PEX_STATUS_... code; for any
 * other number too. */
PEXQUO_API const char* pexStatusText(int32_t status);

/* ---- Statuses of streams and distributions, besides those of pexquo/quo.h. ----
 *
 * A call with such a status has written nothing, advanced no stream and changed none. */

#define QUO_NULL_STREAM (-2001)     /* no stream: the pointer is null, as after quoDeleteStream */
#define QUO_DEAD_STREAM (-2002)     /* not a stream, or its head was overwritten */
#define QUO_NULL_POINTER (-2003)    /* a null pointer where a result, a name or a record belongs */
#define QUO_NULL_ARRAY (-2004)      /* a null array with a count above 0 */
#define QUO_BAD_COUNT (-2005)       /* a negative count, or too many seed words */
#define QUO_UNKNOWN_METHOD (-2006)  /* the distribution has no such method */
#define QUO_NOT_FINITE (-2007)      /* a parameter is infinite or not a number */
#define QUO_EMPTY_RANGE (-2008)     /* uniform: a is not below b */
#define QUO_WIDE_RANGE (-2009)      /* uniform: b - a or a + b overflows */
#define QUO_BAD_SCALE (-2010)       /* sigma or beta is not positive */
#define QUO_BAD_SHAPE (-2011)       /* a shape (alpha, p, q) is not positive */
#define QUO_BAD_PROBABILITY (-2012) /* p is outside the distribution's range */
#define QUO_BAD_DIMENSION (-2013)   /* multivariate: a dimension below 1, or n times it too large */
#define QUO_BAD_STORAGE (-2014)     /* multivariate: no such storage */
#define QUO_BAD_TRIALS (-2015)      /* binomial: a negative number of trials */
#define QUO_BAD_MEAN (-2016)        /* Poisson: lambda is not positive, or too large */
#define QUO_BAD_POPULATION (-2017)  /* hypergeometric: l, s, m are not counts with s, m <= l */
#define QUO_BAD_SUCCESSES (-2018)   /* negative binomial: a is not positive */
#define QUO_BAD_LEAP (-2019)        /* leapfrog: k is not one of 0 .. nstreams - 1 */

/* A sentence without a full stop, in memory that is never freed, for a status of a stream or
 * distribution call; for any other number too. */
PEXQUO_API const char* quoStatusText(int32_t status);

/* ---- Streams. ----
 *
 * All return 0 or a negative status: QUO_NULL_STREAM, QUO_DEAD_STREAM or QUO_NULL_POINTER for what
 * is not there, otherwise those that are named and of the generator. What makes a stream sets
 * *stream to null when it fails; what *stream pointed to before is not looked at. */

typedef StreamState QuoStream;

/* A new stream of a generator (QUO_BRNG_..., plus the member's number for families) from one seed,
 * or from params[0] .. params[n - 1]. QUO_INVALID_BRNG, QUO_NO_MEMORY; QUO_BAD_COUNT for a negative
 * n or one above 2^31 - 1. n = 0 takes the generator's standard seed. */
PEXQUO_API int32_t quoNewStream(QuoStream** stream, int32_t brng, uint32_t seed);
PEXQUO_API int32_t quoNewStreamEx(QuoStream** stream, int32_t brng, int64_t n,
                                  const uint32_t* params);
/* Streams of numbers that the caller brings, from buffer[n] and a function that refills it:
 * integers, and doubles or floats on [a, b). See pexquo/quo.h. QUO_BAD_COUNT for n < 1,
 * QUO_NULL_ARRAY, QUO_NULL_FUNCTION, QUO_NOT_FINITE, QUO_EMPTY_RANGE, QUO_WIDE_RANGE. */
PEXQUO_API int32_t quoiNewAbstractStream(QuoStream** stream, int32_t n, uint32_t* buffer,
                                         RefillI refill);
PEXQUO_API int32_t quodNewAbstractStream(QuoStream** stream, int32_t n, double* buffer, double a,
                                         double b, RefillD refill);
PEXQUO_API int32_t quosNewAbstractStream(QuoStream** stream, int32_t n, float* buffer, float a,
                                         float b, RefillS refill);
/* Frees a stream and sets the pointer to null; does nothing where it is null already. */
PEXQUO_API int32_t quoDeleteStream(QuoStream** stream);
/* A new stream that goes on as `source` does. */
PEXQUO_API int32_t quoCopyStream(QuoStream** copy, const QuoStream* source);
/* Makes a stream go on as another of the same generator, and the same member of a family, does.
 * QUO_DIFFERENT_BRNGS, and then the destination is as before. Not copied are the step of an
 * MCG31M1 or MCG59 stream that leaps, and the place and the source of an abstract stream. */
PEXQUO_API int32_t quoCopyStreamState(QuoStream* destination, const QuoStream* source);
/* From now on the stream delivers elements k, k + nstreams, k + 2 nstreams ... of its sequence,
 * counted from where it stands, 0 <= k < nstreams. QUO_BAD_STREAM_COUNT for nstreams < 1,
 * QUO_BAD_LEAP, QUO_LEAPFROG_UNSUPPORTED. */
PEXQUO_API int32_t quoLeapfrogStream(QuoStream* stream, int32_t k, int32_t nstreams);
/* Moves the stream on by nskip elements. QUO_SKIPAHEAD_UNSUPPORTED. */
PEXQUO_API int32_t quoSkipAheadStream(QuoStream* stream, uint64_t nskip);
/* Writes a stream to a file, and makes a stream of one that goes on exactly where the saved one
 * stood. QUO_OPEN_FAILED, QUO_WRITE_FAILED, QUO_CLOSE_FAILED, QUO_READ_FAILED, QUO_BAD_FILE,
 * QUO_BAD_FILE_FORMAT, QUO_NO_MEMORY. */
PEXQUO_API int32_t quoSaveStream(const QuoStream* stream, const char* path);
PEXQUO_API int32_t quoLoadStream(QuoStream** stream, const char* path);
/* The identifier that the stream was made with, which is not negative. */
PEXQUO_API int32_t quoGetStreamBrng(const QuoStream* stream);
/* Generators: the record of one (QUO_INVALID_BRNG), how many rows the registry has, and a new row,
 * whose identifier is returned (statuses of __quoRegisterBrng). Registration must not meet other
 * calls in time. */
PEXQUO_API int32_t quoGetBrngProperties(int32_t brng, BrngProperties* properties);
PEXQUO_API int32_t quoGetNumBrngs(void);
PEXQUO_API int32_t quoRegisterBrng(const BrngProperties* properties);

/* ---- Distributions. ----
 *
 * n numbers at r, drawn from the stream; pexquo/quo.h says by which formulas and from how many
 * uniforms. Numbers do not depend on how they are asked for: two calls for n and m numbers give the
 * same as one for n + m (but for the last bits of vectors of more than 10 dimensions by a full
 * factor, which the system's BLAS multiplies). All return 0 or a negative status. Checked in this
 * order: the stream (QUO_NULL_STREAM, QUO_DEAD_STREAM), n (QUO_BAD_COUNT), r (QUO_NULL_ARRAY,
 * unless n is 0), the method (QUO_UNKNOWN_METHOD), the parameters, each with the status of its
 * condition and all numbers with QUO_NOT_FINITE. A generator's own status comes back as it is
 * (QUO_WRONG_OUTPUT,
 * ...); what was drawn by then is at r.
 *
 * The method is 0 where a distribution has one. */

/* Uniform on [a, b), a < b, but that rounding may give b (of floats on [0, 1) one of 2^25); by
 * QUO_METHOD_ACCURATE clamped into [a, b]. Integers: a .. b - 1. */
PEXQUO_API int32_t quodRngUniform(int32_t method, QuoStream* stream, int64_t n, double* r, double a,
                                  double b);
PEXQUO_API int32_t quosRngUniform(int32_t method, QuoStream* stream, int64_t n, float* r, float a,
                                  float b);
PEXQUO_API int32_t quoiRngUniform(int32_t method, QuoStream* stream, int64_t n, int32_t* r,
                                  int32_t a, int32_t b);
/* The generator's raw outputs: of 1, 2 or 4 words each (WordBytes / 4 of its properties). */
PEXQUO_API int32_t quoiRngUniformBits(int32_t method, QuoStream* stream, int64_t n, uint32_t* r);
/* Normal with mean a and standard deviation sigma > 0; methods QUO_METHOD_GAUSSIAN_... */
PEXQUO_API int32_t quodRngGaussian(int32_t method, QuoStream* stream, int64_t n, double* r,
                                   double a, double sigma);
PEXQUO_API int32_t quosRngGaussian(int32_t method, QuoStream* stream, int64_t n, float* r, float a,
                                   float sigma);
/* n vectors a + T z of dimension dimen >= 1 at r, one behind the other; z standard normal by a
 * method of the normal distribution, T lower triangular with t stored as mstorage says
 * (QUO_STORAGE_...). QUO_BAD_DIMENSION also where n dimen is beyond 2^63 - 1. */
PEXQUO_API int32_t quodRngGaussianMV(int32_t method, QuoStream* stream, int64_t n, double* r,
                                     int32_t dimen, int32_t mstorage, const double* a,
                                     const double* t);
PEXQUO_API int32_t quosRngGaussianMV(int32_t method, QuoStream* stream, int64_t n, float* r,
                                     int32_t dimen, int32_t mstorage, const float* a,
                                     const float* t);
/* Exponential beyond a with scale beta > 0. */
PEXQUO_API int32_t quodRngExponential(int32_t method, QuoStream* stream, int64_t n, double* r,
                                      double a, double beta);
PEXQUO_API int32_t quosRngExponential(int32_t method, QuoStream* stream, int64_t n, float* r,
                                      float a, float beta);
/* Laplace about a with scale beta > 0. */
PEXQUO_API int32_t quodRngLaplace(int32_t method, QuoStream* stream, int64_t n, double* r, double a,
                                  double beta);
PEXQUO_API int32_t quosRngLaplace(int32_t method, QuoStream* stream, int64_t n, float* r, float a,
                                  float beta);
/* Weibull beyond a with shape alpha > 0 and scale beta > 0. */
PEXQUO_API int32_t quodRngWeibull(int32_t method, QuoStream* stream, int64_t n, double* r,
                                  double alpha, double a, double beta);
PEXQUO_API int32_t quosRngWeibull(int32_t method, QuoStream* stream, int64_t n, float* r,
                                  float alpha, float a, float beta);
/* Cauchy about a with scale beta > 0. */
PEXQUO_API int32_t quodRngCauchy(int32_t method, QuoStream* stream, int64_t n, double* r, double a,
                                 double beta);
PEXQUO_API int32_t quosRngCauchy(int32_t method, QuoStream* stream, int64_t n, float* r, float a,
                                 float beta);
/* Rayleigh beyond a with scale beta > 0. */
PEXQUO_API int32_t quodRngRayleigh(int32_t method, QuoStream* stream, int64_t n, double* r,
                                   double a, double beta);
PEXQUO_API int32_t quosRngRayleigh(int32_t method, QuoStream* stream, int64_t n, float* r, float a,
                                   float beta);
/* Lognormal: b + beta e^z, z normal with mean a and deviation sigma > 0; beta > 0. */
PEXQUO_API int32_t quodRngLognormal(int32_t method, QuoStream* stream, int64_t n, double* r,
                                    double a, double sigma, double b, double beta);
PEXQUO_API int32_t quosRngLognormal(int32_t method, QuoStream* stream, int64_t n, float* r, float a,
                                    float sigma, float b, float beta);
/* Gumbel of least values with mode a and scale beta > 0. */
PEXQUO_API int32_t quodRngGumbel(int32_t method, QuoStream* stream, int64_t n, double* r, double a,
                                 double beta);
PEXQUO_API int32_t quosRngGumbel(int32_t method, QuoStream* stream, int64_t n, float* r, float a,
                                 float beta);
/* 1 with probability p, 0 <= p <= 1, else 0. */
PEXQUO_API int32_t quoiRngBernoulli(int32_t method, QuoStream* stream, int64_t n, int32_t* r,
                                    double p);
/* Failures before the first success of probability p, 0 < p <= 1 and 1 - p below 1. */
PEXQUO_API int32_t quoiRngGeometric(int32_t method, QuoStream* stream, int64_t n, int32_t* r,
                                    double p);

/* Gamma beyond a with shape alpha > 0 and scale beta > 0. */
PEXQUO_API int32_t quodRngGamma(int32_t method, QuoStream* stream, int64_t n, double* r,
                                double alpha, double a, double beta);
PEXQUO_API int32_t quosRngGamma(int32_t method, QuoStream* stream, int64_t n, float* r, float alpha,
                                float a, float beta);
/* Beta on [a, a + beta] with shapes p > 0, q > 0 and scale beta > 0. */
PEXQUO_API int32_t quodRngBeta(int32_t method, QuoStream* stream, int64_t n, double* r, double p,
                               double q, double a, double beta);
PEXQUO_API int32_t quosRngBeta(int32_t method, QuoStream* stream, int64_t n, float* r, float p,
                               float q, float a, float beta);
/* Successes of ntrial >= 0 trials of probability p, 0 <= p <= 1. */
PEXQUO_API int32_t quoiRngBinomial(int32_t method, QuoStream* stream, int64_t n, int32_t* r,
                                   int32_t ntrial, double p);
/* Marked ones of a sample of s from l, of which m are marked; 0 <= s, m <= l. */
PEXQUO_API int32_t quoiRngHypergeometric(int32_t method, QuoStream* stream, int64_t n, int32_t* r,
                                         int32_t l, int32_t s, int32_t m);
/* Poisson with mean lambda, 0 < lambda <= 2^31 - 1, by QUO_METHOD_POISSON_...; and with a mean of
 * its own for each, lambda[i] for r[i] (method 0). Counts end at 2^31 - 1. */
PEXQUO_API int32_t quoiRngPoisson(int32_t method, QuoStream* stream, int64_t n, int32_t* r,
                                  double lambda);
PEXQUO_API int32_t quoiRngPoissonV(int32_t method, QuoStream* stream, int64_t n, int32_t* r,
                                   const double* lambda);
/* Failures before the a-th success of probability p; a > 0 need not be an integer, 0 < p <= 1. */
PEXQUO_API int32_t quoiRngNegbinomial(int32_t method, QuoStream* stream, int64_t n, int32_t* r,
                                      double a, double p);

#ifdef __cplusplus
}
#endif
#endif /* PEXQUO_PEXQUO_H_ */
