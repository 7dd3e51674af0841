// The sine and the cosine of one element in single precision.
#include "pex_core/_heap/real/trig_single_element.h"

#define PEX_SINGLE_PAIR(variant)                                                             \
  extern "C" PEXQUO_API int _pexsSinCos_SC_##variant(int32_t i, const float* a, float* rsin, \
                                                     float* rcos) {                          \
    const pex::ControlGuard guard;                                                           \
    pex::ComputeElement(i, a, rsin, rcos, "sSinCos_" #variant);                              \
    return 0;                                                                                \
  }

PEX_SINGLE_PAIR(A11)
PEX_SINGLE_PAIR(LA)
PEX_SINGLE_PAIR(HA)
