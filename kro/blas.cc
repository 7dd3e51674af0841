// The triangular products: the system's BLAS, and for the product that multivariate random numbers
// of few dimensions take, a loop with the same bits on every processor.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kro/blas.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "kro/columns-inl.h"
#include "pexquo/kro.h"

HWY_BEFORE_NAMESPACE();
namespace kro::HWY_NAMESPACE {

void MultiplyDouble(const Columns<double>& t, size_t count, double* x) {
  MultiplyColumnsInPlace(t, count, x);
}
void MultiplySingle(const Columns<float>& t, size_t count, float* x) {
  MultiplyColumnsInPlace(t, count, x);
}

}  // namespace kro::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
extern "C" {
void dtrmm_(const char*, const char*, const char*, const char*, const int32_t*, const int32_t*,
            const double*, const double*, const int32_t*, double*, const int32_t*);
void strmm_(const char*, const char*, const char*, const char*, const int32_t*, const int32_t*,
            const float*, const float*, const int32_t*, float*, const int32_t*);
}

namespace kro {

HWY_EXPORT(MultiplyDouble);
HWY_EXPORT(MultiplySingle);

namespace {

bool Is(const char* option, char upper) { return *option == upper || *option == (upper | 0x20); }

// Columns without gaps times the transpose of an upper triangular matrix.
template <typename T>
bool IsOwn(const char* side, const char* uplo, const char* transa, const char* diag, int32_t m,
           int32_t n, T alpha, int32_t ldb) {
  return Is(side, 'L') && Is(uplo, 'U') && (Is(transa, 'T') || Is(transa, 'C')) && Is(diag, 'N') &&
         alpha == 1 && m >= 1 && m <= 10 && n >= 1 && ldb == m;
}

// Element i of a column becomes A[i][i] b[i] + A[0][i] b[0] + ... + A[i - 1][i] b[i - 1].
template <typename T>
Columns<T> ColumnsOf(int32_t m, const T* a, int32_t lda) {
  return {static_cast<size_t>(m), true, nullptr, [&](size_t i, size_t j) {
            T x;
            std::memcpy(&x, a + j + i * static_cast<size_t>(lda), sizeof(T));
            return x;
          }};
}

}  // namespace

#define KRO_TRMM_PARAMETERS(T)                                                                 \
  (const char* side, const char* uplo, const char* transa, const char* diag, const int32_t* m, \
   const int32_t* n, const T* alpha, const T* a, const int32_t* lda, T* b, const int32_t* ldb)
#define KRO_TRMM_ARGUMENTS (side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb)

#define KRO_TRMM(entry, few, T, multiply, routine)                                     \
  extern "C" KRO_API void entry KRO_TRMM_PARAMETERS(T) { routine KRO_TRMM_ARGUMENTS; } \
  extern "C" KRO_API void few KRO_TRMM_PARAMETERS(T) {                                 \
    if (!IsOwn(side, uplo, transa, diag, *m, *n, *alpha, *ldb)) {                      \
      routine KRO_TRMM_ARGUMENTS;                                                      \
      return;                                                                          \
    }                                                                                  \
    const size_t count = static_cast<size_t>(*m) * static_cast<size_t>(*n);            \
    HWY_DYNAMIC_DISPATCH(multiply)(ColumnsOf(*m, a, *lda), count, b);                  \
  }

KRO_TRMM(kro_blas4pex_dtrmm, kro_blas_xdtrmm_4pex, double, MultiplyDouble, dtrmm_)
KRO_TRMM(kro_blas4pex_strmm, kro_blas_xstrmm_4pex, float, MultiplySingle, strmm_)

}  // namespace kro
#endif
