// Sine, cosine and tangent of one element, by the table of multiples of pi/32: below 0.55 ulp, but
// for a few cosines next to 0. Of all doubles below 2^17 next to a multiple of pi/2 the worst is
// off by 0.602 ulp (0x1.65a1dd290660fp+16): pi/32 in three parts goes no further.
#ifndef PEX_CORE__HEAP_REAL_TRIG_ELEMENT_H_
#define PEX_CORE__HEAP_REAL_TRIG_ELEMENT_H_

#include <cstdint>

#include "pexquo/pex.h"

namespace pex {

// The function of a[i] goes to r[i]; an infinity gives NaN and is reported with code 1 under
// `name`.
int _pexdSin_SC(int32_t i, const double* a, double* r, const char* name);
int _pexdCos_SC(int32_t i, const double* a, double* r, const char* name);
int _pexdTan_SC(int32_t i, const double* a, double* r, const char* name);
int _pexdSinCos_SC(int32_t i, const double* a, double* rsin, double* rcos, const char* name);

// The three entries of a function: the same value, each under its own name.
#define PEX_EXPORT_ELEMENT(Name)                                                                 \
  extern "C" PEXQUO_API int _pexd##Name##_SC_A11(int32_t i, const double* a, double* r, void*) { \
    return _pexd##Name##_SC(i, a, r, "d" #Name "_A11");                                          \
  }                                                                                              \
  extern "C" PEXQUO_API int _pexd##Name##_SC_LA(int32_t i, const double* a, double* r, void*) {  \
    return _pexd##Name##_SC(i, a, r, "d" #Name "_LA");                                           \
  }                                                                                              \
  extern "C" PEXQUO_API int _pexd##Name##_SC_HA(int32_t i, const double* a, double* r, void*) {  \
    return _pexd##Name##_SC(i, a, r, "d" #Name "_HA");                                           \
  }

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_ELEMENT_H_
