/* pexquo: elementwise mathematical functions over arrays, with the same bits on every processor.
 *
 * Every function takes the number of elements first, then the argument arrays in mathematical
 * order, then the result arrays; results may overwrite arguments. A count of 0 or less does
 * nothing. Special elements are reported one by one through the calling thread's mode, status and
 * callback. The functions themselves are declared in pexquo/pex_functions.h, which this header
 * includes. */
#ifndef PEXQUO_PEX_H_
#define PEXQUO_PEX_H_

#include <stdint.h>

#if defined(__GNUC__)
#define PEXQUO_API __attribute__((visibility("default")))
#else
#define PEXQUO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Complex numbers: real part first, no padding. ---- */

typedef struct PexComplex8 {
  float re, im;
} PexComplex8;

typedef struct PexComplex16 {
  double re, im;
} PexComplex16;

/* ---- The mode word of a thread: accuracy, error mode and a field of the calling layer. ---- */

#define PEX_MODE_DEFAULT 0x1A02u
#define PEX_MODE_ACCURACY 0xFu       /* mask: what the calling layer selects, 2 at first */
#define PEX_MODE_ERRORS 0xFF00u      /* mask: how an element error is reported */
#define PEX_MODE_THIRD 0x30000u      /* mask: stored and returned only */
#define PEX_ERRMODE_IGNORE 0x100u    /* alone: record the status, do nothing else */
#define PEX_ERRMODE_ERRNO 0x200u     /* set errno */
#define PEX_ERRMODE_STDERR 0x400u    /* print a message */
#define PEX_ERRMODE_EXCEPT 0x800u    /* raise the floating-point exception flag of the error */
#define PEX_ERRMODE_CALLBACK 0x1000u /* call the callback */

/* ---- Status codes of vector math. ---- */

#define PEX_STATUS_OK 0
#define PEX_STATUS_DOMAIN 1      /* argument outside the domain; errno EDOM, flag invalid */
#define PEX_STATUS_SINGULARITY 2 /* pole; errno ERANGE, flag divide-by-zero */
#define PEX_STATUS_OVERFLOW 3    /* errno ERANGE, no flag from the error mode */
#define PEX_STATUS_UNDERFLOW 4   /* errno ERANGE, flag underflow */
#define PEX_STATUS_BAD_SIZE (-1) /* errno EINVAL */
#define PEX_STATUS_BAD_MEM (-2)  /* errno EACCES */

/* What a callback is shown of one special element. Single-precision values are widened. The results
 * may be changed: they are written back to the arrays unless the callback returns non-zero. The
 * record is gone when the callback returns. For codes -1 and -2 the four values are unset. */
typedef struct PexErrorContext {
  int32_t code;          /* status code */
  int32_t index;         /* index of the element, in the whole vector where its base is known */
  double arg1;           /* first argument */
  double arg2;           /* second argument; equals arg1 where there is one */
  double res1;           /* first result */
  double res2;           /* second result; equals res1 where there is one */
  char func_name[64];    /* public name; ends with NUL unless it has 64 characters */
  int32_t func_name_len; /* characters in func_name, 0 to 64 */
} PexErrorContext;

/* Non-zero: the element is dealt with; no standard handling and no write-back follow. Rounding mode
 * and other control bits that the callback changes are put back when it returns. It may also leave
 * by a C++ exception: the call ends at this element, and the caller has its control bits back; not
 * by longjmp, which would leave those of the call in force. */
typedef int (*PexErrorCallBack)(PexErrorContext* record);

/* ---- Mode, status and callback of the calling thread. ---- */

/* The mode word; PEX_MODE_DEFAULT at first. */
PEXQUO_API uint32_t _pexGetMode(void);
/* Replaces each of the three fields that has a bit set in `mode`; returns the previous word. */
PEXQUO_API uint32_t _pexSetMode(uint32_t mode);
/* The code of the last special element, until it is cleared. */
PEXQUO_API int32_t _pexGetErrStatus(void);
/* Stores any code; returns the previous one. */
PEXQUO_API int32_t _pexSetErrStatus(int32_t status);
/* Stores 0; returns the previous code. */
PEXQUO_API int32_t _pexClearErrStatus(void);
PEXQUO_API PexErrorCallBack _pexGetErrorCallBack(void);
/* Stores the callback and switches PEX_ERRMODE_CALLBACK on, or off for a null pointer (it stays on
 * where it is the only bit of the error mode); returns the previous callback. */
PEXQUO_API PexErrorCallBack _pexSetErrorCallBack(PexErrorCallBack cb);
/* _pexSetErrorCallBack(NULL). */
PEXQUO_API PexErrorCallBack _pexClearErrorCallBack(void);
/* Where the caller's whole input vector begins, so that a call on a part of it reports indices in
 * the whole; NULL for none. Returns its argument. */
PEXQUO_API const void* _pexSetInterfInputVectorPointer(const void* base);
/* The processor generation of this build of the kernels: 3. */
PEXQUO_API int dll_cpu_version(void);

/* ---- Reporting one element. ---- */

/* Records the status, and by the thread's mode calls the callback, sets errno, prints, raises
 * flags; then writes the record's results back to r2[index] and r1[index]. One-argument functions
 * pass the same array twice, and so do one-result functions. The returned value has no meaning. */
PEXQUO_API int _pexdError(int32_t code, int32_t index, const double* a1, const double* a2,
                          double* r1, double* r2, const char* name);
PEXQUO_API int _pexsError(int32_t code, int32_t index, const float* a1, const float* a2, float* r1,
                          float* r2, const char* name);
/* The standard handling alone: errno, message and flags by the thread's mode. */
PEXQUO_API int _pexStdErrorHandler(PexErrorContext* record);
/* Copies `first`, then `second` with its terminator, to `dest`; returns the length of both. */
PEXQUO_API int kro_pex_service_strcat1(const char* first, const char* second, char* dest);
/* The number of characters before the terminator. */
PEXQUO_API int kro_pex_service_strlen1(const char* s);

/* ---- Copies of chosen elements, i = 0 .. n-1. ----
 *
 * d entries move doubles, s entries floats. `width` says how wide the integers are: 1 means that n
 * and the increment are 32-bit (the upper halves of their registers are ignored) and that index and
 * mask arrays hold int32_t; any other value means 64-bit throughout. A count of 0 or less does
 * nothing. Increments and indices may be negative or zero and are checked against no bound.
 *
 * Elements move one by one in ascending order of i as far as can be seen: arrays may overlap, and a
 * later element then sees what an earlier one wrote. Nothing but the elements named below is read
 * or written. No bit of a NaN changes and no exception flag is raised. All return 0. */

/* y[i] = a[i * inca] */
PEXQUO_API int _pexdPackI(int64_t n, const double* a, int64_t inca, double* y, int32_t width);
PEXQUO_API int _pexsPackI(int64_t n, const float* a, int64_t inca, float* y, int32_t width);
/* y[i] = a[ia[i]] */
PEXQUO_API int _pexdPackV(int64_t n, const double* a, const void* ia, double* y, int32_t width);
PEXQUO_API int _pexsPackV(int64_t n, const float* a, const void* ia, float* y, int32_t width);
/* The a[i] with ma[i] != 0, one after the other from y[0]. */
PEXQUO_API int _pexdPackM(int64_t n, const double* a, const void* ma, double* y, int32_t width);
PEXQUO_API int _pexsPackM(int64_t n, const float* a, const void* ma, float* y, int32_t width);
/* y[i * incy] = a[i] */
PEXQUO_API int _pexdUnpackI(int64_t n, const double* a, double* y, int64_t incy, int32_t width);
PEXQUO_API int _pexsUnpackI(int64_t n, const float* a, float* y, int64_t incy, int32_t width);
/* y[iy[i]] = a[i]; of equal indices the last one stays. */
PEXQUO_API int _pexdUnpackV(int64_t n, const double* a, double* y, const void* iy, int32_t width);
PEXQUO_API int _pexsUnpackV(int64_t n, const float* a, float* y, const void* iy, int32_t width);
/* The y[i] with my[i] != 0 become a[0], a[1] and so on; the other y[i] are left alone. */
PEXQUO_API int _pexdUnpackM(int64_t n, const double* a, double* y, const void* my, int32_t width);
PEXQUO_API int _pexsUnpackM(int64_t n, const float* a, float* y, const void* my, int32_t width);

#include "pexquo/pex_elements.h"
#include "pexquo/pex_functions.h"

#ifdef __cplusplus
}
#endif
#endif /* PEXQUO_PEX_H_ */
