// The cosine in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cos/dcos.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_fine-inl.h"
#include "pex_core/_heap/real/trig_sine-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdCos";

struct dCosEP : HalfTurnWave<Wave::kCosine, SineEP> {};
struct dCosLA : HalfTurnWave<Wave::kCosine, SineLA> {};
struct dCosHA : WaveHA<Wave::kCosine> {};

PEX_TRIG(dCos_26, dCosEP)
PEX_TRIG(dCos_50, dCosLA)
PEX_TRIG(dCos_HA, dCosHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dCos_26)
PEX_EXPORT_UNARY(double, dCos_50)
PEX_EXPORT_UNARY(double, dCos_HA)
}  // namespace pex
#endif
