// The triangular products, handed to the system's BLAS.
#include "pexquo/kro.h"

extern "C" {
void dtrmm_(const char*, const char*, const char*, const char*, const int32_t*, const int32_t*,
            const double*, const double*, const int32_t*, double*, const int32_t*);
void strmm_(const char*, const char*, const char*, const char*, const int32_t*, const int32_t*,
            const float*, const float*, const int32_t*, float*, const int32_t*);
}

#define KRO_TRMM(entry, T, routine)                                                               \
  extern "C" void entry(const char* side, const char* uplo, const char* transa, const char* diag, \
                        const int32_t* m, const int32_t* n, const T* alpha, const T* a,           \
                        const int32_t* lda, T* b, const int32_t* ldb) {                           \
    routine(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);                               \
  }

KRO_TRMM(kro_blas4pex_dtrmm, double, dtrmm_)
KRO_TRMM(kro_blas_xdtrmm_4pex, double, dtrmm_)
KRO_TRMM(kro_blas4pex_strmm, float, strmm_)
KRO_TRMM(kro_blas_xstrmm_4pex, float, strmm_)
