/* kro: the service library beneath pexquo. Another library with these entries may replace it. */
#ifndef PEXQUO_KRO_H_
#define PEXQUO_KRO_H_

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define KRO_API __attribute__((visibility("default")))
#else
#define KRO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* `size` bytes whose address is a multiple of `alignment` (a power of two; 0 and 1 leave it to the
 * system); NULL when there is no memory. Goes back through kro_serv_kro_free. */
KRO_API void* kro_serv_kro_malloc(size_t size, int32_t alignment);
/* Takes what kro_serv_kro_malloc gave, or NULL. */
KRO_API void kro_serv_kro_free(void* p);

/* Prints a message of the catalogue with a newline to standard error. `kind` is 1. The message ids
 * and their arguments: 735 (name, index); 736 to 741 (name); 742 to 753 (index, double). Returns
 * the number of characters printed, or -1 for an unknown message or a wrong number of arguments. */
KRO_API int kro_serv_kro_print(int32_t kind, int32_t message_id, int32_t nargs, ...);

/* B := alpha op(A) B or alpha B op(A), A triangular: the Level 3 BLAS operations DTRMM and STRMM,
 * by their usual arguments, column-major, all by reference. The 4pex entries are the system's BLAS,
 * whose last bits may depend on the processor. So are the x entries, but for the product of
 * multivariate random numbers: side "L", uplo "U", transa "T", diag "N", alpha 1, m from 1 to 10,
 * ldb = m. There element i of a column b becomes A[i][i] b[i] + A[0][i] b[0] + ... + A[i-1][i]
 * b[i-1], each product and sum rounded, with the same bits on every processor. */
KRO_API void kro_blas4pex_dtrmm(const char* side, const char* uplo, const char* transa,
                                const char* diag, const int32_t* m, const int32_t* n,
                                const double* alpha, const double* a, const int32_t* lda, double* b,
                                const int32_t* ldb);
KRO_API void kro_blas_xdtrmm_4pex(const char* side, const char* uplo, const char* transa,
                                  const char* diag, const int32_t* m, const int32_t* n,
                                  const double* alpha, const double* a, const int32_t* lda,
                                  double* b, const int32_t* ldb);
KRO_API void kro_blas4pex_strmm(const char* side, const char* uplo, const char* transa,
                                const char* diag, const int32_t* m, const int32_t* n,
                                const float* alpha, const float* a, const int32_t* lda, float* b,
                                const int32_t* ldb);
KRO_API void kro_blas_xstrmm_4pex(const char* side, const char* uplo, const char* transa,
                                  const char* diag, const int32_t* m, const int32_t* n,
                                  const float* alpha, const float* a, const int32_t* lda, float* b,
                                  const int32_t* ldb);

#ifdef __cplusplus
}
#endif
#endif /* PEXQUO_KRO_H_ */
