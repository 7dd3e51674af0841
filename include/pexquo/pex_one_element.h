/* Sine, cosine and tangent of one element of an array. Included by pexquo/pex.h.
 *
 * Element i alone is computed, from a[i] to r[i] (to rsin[i] and rcos[i]), i of any sign; r may be
 * a. The last argument of the one-result entries is not used. The variants A11, LA and HA of a
 * function give the same result and differ in the name that they report: an infinity gives NaN and
 * status code 1 under "sSin_A11", "sSin_LA", "sSin_HA" and so on. A NaN passes, arguments of any
 * finite size are reduced exactly, a tiny number is its own sine and tangent and has cosine 1. The
 * caller's control word changes nothing. All return 0. */
#ifndef PEXQUO_PEX_ONE_ELEMENT_H_
#define PEXQUO_PEX_ONE_ELEMENT_H_

/* Single precision: within 0.5000001 ulp. */
PEXQUO_API int _pexsSin_SC_A11(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsSin_SC_LA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsSin_SC_HA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsCos_SC_A11(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsCos_SC_LA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsCos_SC_HA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsTan_SC_A11(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsTan_SC_LA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsTan_SC_HA(int32_t i, const float* a, float* r, void* unused);
PEXQUO_API int _pexsSinCos_SC_A11(int32_t i, const float* a, float* rsin, float* rcos);
PEXQUO_API int _pexsSinCos_SC_LA(int32_t i, const float* a, float* rsin, float* rcos);
PEXQUO_API int _pexsSinCos_SC_HA(int32_t i, const float* a, float* rsin, float* rcos);

#endif /* PEXQUO_PEX_ONE_ELEMENT_H_ */
