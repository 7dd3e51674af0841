// log10(x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/log10/slog10.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/slog_short-inl.h"
#include "pex_core/ln/ln_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsLog10";

struct sLog10EP : sLogKernel {
  static HWY_INLINE int Rare(float x, float* r) { return sLog10Scalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return sLogEP<sDecimalLog>(d, x);
  }
};

struct sLog10LA : sLogKernel {
  static HWY_INLINE int Rare(float x, float* r) { return sLog10Scalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return sLogLA<sDecimalLog>(d, x);
  }
};

struct sLog10HA : sLogHAKernel<DecimalLog, sDecimalLog> {
  static HWY_INLINE int Rare(float x, float* r) { return sLog10Scalar(x, r); }
};

PEX_UNARY(float, sLog10_11, sLog10EP)
PEX_UNARY(float, sLog10_21, sLog10LA)
PEX_UNARY(float, sLog10_HA, sLog10HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sLog10_11)
PEX_EXPORT_UNARY(float, sLog10_21)
PEX_EXPORT_UNARY(float, sLog10_HA)
}  // namespace pex
#endif
