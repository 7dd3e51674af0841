/* Entries that compute one element. Included by pexquo/pex.h. */
#ifndef PEXQUO_PEX_ELEMENTS_H_
#define PEXQUO_PEX_ELEMENTS_H_

/* ---- Trigonometric functions of the one element i. ----
 *
 * r[i] = the function of a[i]; nothing else is read or written, and r may be a. Any finite argument
 * is reduced exactly. The three entries of a function give the same value, within 1 ulp, whatever
 * their tier; they differ in the name that the error record shows: "dSin_A11", "dSin_LA", "dSin_HA"
 * and so on. An infinity gives NaN, raises invalid and is reported with code 1; a NaN gives itself,
 * quiet. The last argument of the entries of one result is not used. All return 0. */
PEXQUO_API int _pexdSin_SC_A11(int32_t i, const double* a, double* r, void* unused);
PEXQUO_API int _pexdSin_SC_LA(int32_t i, const double* a, double* r, void* unused);
PEXQUO_API int _pexdSin_SC_HA(int32_t i, const double* a, double* r, void* unused);
PEXQUO_API int _pexdCos_SC_A11(int32_t i, const double* a, double* r, void* unused);
PEXQUO_API int _pexdCos_SC_LA(int32_t i, const double* a, double* r, void* unused);
PEXQUO_API int _pexdCos_SC_HA(int32_t i, const double* a, double* r, void* unused);
PEXQUO_API int _pexdTan_SC_A11(int32_t i, const double* a, double* r, void* unused);
PEXQUO_API int _pexdTan_SC_LA(int32_t i, const double* a, double* r, void* unused);
PEXQUO_API int _pexdTan_SC_HA(int32_t i, const double* a, double* r, void* unused);
/* rsin[i] and rcos[i] = sine and cosine of a[i]. */
PEXQUO_API int _pexdSinCos_SC_A11(int32_t i, const double* a, double* rsin, double* rcos);
PEXQUO_API int _pexdSinCos_SC_LA(int32_t i, const double* a, double* rsin, double* rcos);
PEXQUO_API int _pexdSinCos_SC_HA(int32_t i, const double* a, double* rsin, double* rcos);

/* The same in single precision, within 0.5000001 ulp, under the names "sSin_A11" and so on. */
PEXQUO_API int _pexsSin_SC_A11(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsSin_SC_LA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsSin_SC_HA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsCos_SC_A11(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsCos_SC_LA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsCos_SC_HA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsTan_SC_A11(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsTan_SC_LA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsTan_SC_HA(int32_t i, const float* a, float* r, void* unused);
/* rsin[i] and rcos[i] = sine and cosine of a[i]. */
PEXQUO_API int _pexsSinCos_SC_A11(int32_t i, const float* a, float* rsin, float* rcos);
PEXQUO_API int _pexsSinCos_SC_LA(int32_t i, const float* a, float* rsin, float* rcos);
PEXQUO_API int _pexsSinCos_SC_HA(int32_t i, const float* a, float* rsin, float* rcos);

#endif /* PEXQUO_PEX_ELEMENTS_H_ */
