// ln(x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/ln/sln.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/slog_short-inl.h"
#include "pex_core/ln/ln_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsLn";

struct sLnEP : sLogKernel {
  static HWY_INLINE int Rare(float x, float* r) { return sLnScalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return sLogEP<sNaturalLog>(d, x);
  }
};

struct sLnLA : sLogKernel {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 8 : sLogKernel::kUnroll;
  static HWY_INLINE int Rare(float x, float* r) { return sLnScalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return sLogLA<sNaturalLog>(d, x);
  }
};

struct sLnHA : sLogHAKernel<NaturalLog, sNaturalLog> {
  static HWY_INLINE int Rare(float x, float* r) { return sLnScalar(x, r); }
};

PEX_UNARY(float, sLn_11, sLnEP)
PEX_UNARY(float, sLn_21, sLnLA)
PEX_UNARY(float, sLn_HA, sLnHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sLn_11)
PEX_EXPORT_UNARY(float, sLn_21)
PEX_EXPORT_UNARY(float, sLn_HA)
}  // namespace pex
#endif
