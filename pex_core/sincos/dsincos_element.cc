// Sine and cosine of one element in double precision.
#include "pex_core/_heap/real/trig_element.h"
#include "pexquo/pex.h"

namespace pex {

extern "C" PEXQUO_API int _pexdSinCos_SC_A11(int32_t i, const double* a, double* rsin,
                                             double* rcos) {
  return _pexdSinCos_SC(i, a, rsin, rcos, "dSinCos_A11");
}

extern "C" PEXQUO_API int _pexdSinCos_SC_LA(int32_t i, const double* a, double* rsin,
                                            double* rcos) {
  return _pexdSinCos_SC(i, a, rsin, rcos, "dSinCos_LA");
}

extern "C" PEXQUO_API int _pexdSinCos_SC_HA(int32_t i, const double* a, double* rsin,
                                            double* rcos) {
  return _pexdSinCos_SC(i, a, rsin, rcos, "dSinCos_HA");
}

}  // namespace pex
