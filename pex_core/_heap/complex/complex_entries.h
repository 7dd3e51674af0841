// The bodies and names of complex elementary functions: one body for every accuracy of a type.
#ifndef PEX_CORE__HEAP_COMPLEX_COMPLEX_ENTRIES_H_
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_ENTRIES_H_

#include "pex_core/_kernel/export.h"

// cName and zName in HWY_NAMESPACE, for the function ComplexName of complex_vector-inl.h.
#define PEX_COMPLEX_BODIES(Name)                                         \
  int c##Name(int32_t n, const PexComplex8* a, PexComplex8* r) {         \
    return MapComplex<ElementaryKernel<Complex##Name, float>>(n, a, r);  \
  }                                                                      \
  int z##Name(int32_t n, const PexComplex16* a, PexComplex16* r) {       \
    return MapComplex<ElementaryKernel<Complex##Name, double>>(n, a, r); \
  }

// Their six entries, under HWY_ONCE in namespace pex.
#define PEX_EXPORT_COMPLEX_ELEMENTARY(Name)                                                 \
  HWY_EXPORT(c##Name);                                                                      \
  HWY_EXPORT(z##Name);                                                                      \
  PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, c##Name, c##Name##_11)   \
  PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, c##Name, c##Name##_21)   \
  PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, c##Name, c##Name##_HA)   \
  PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, z##Name, z##Name##_26) \
  PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, z##Name, z##Name##_50) \
  PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, z##Name, z##Name##_HA)

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_ENTRIES_H_
