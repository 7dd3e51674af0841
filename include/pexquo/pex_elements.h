/* Entries that compute one element. Included by pexquo/pex.h. */
#ifndef PEXQUO_PEX_ELEMENTS_H_
#define PEXQUO_PEX_ELEMENTS_H_

/* ---- Trigonometric functions of the one element i, in single precision. ----
 *
 * r[i] = the function of a[i]; nothing else is read or written, and r may be a. Any finite argument
 * is reduced exactly. The three entries of a function give the same value, within 0.5000001 ulp,
 * whatever their tier; they differ in the name that the error record shows: "sSin_A11", "sSin_LA",
 * "sSin_HA" and so on. An infinity gives NaN, raises invalid and is reported with code 1; a NaN
 * gives itself, quiet. The last argument of the entries of one result is not used. All return 0. */
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
