// The sine in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sin/dsin.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_fine-inl.h"
#include "pex_core/_heap/real/trig_sine-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdSin";

struct dSinEP : HalfTurnWave<Wave::kSine, SineEP> {};
struct dSinLA : HalfTurnWave<Wave::kSine, SineLA> {};
struct dSinHA : WaveHA<Wave::kSine> {};

PEX_TRIG(dSin_26, dSinEP)
PEX_TRIG(dSin_50, dSinLA)
PEX_TRIG(dSin_HA, dSinHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dSin_26)
PEX_EXPORT_UNARY(double, dSin_50)
PEX_EXPORT_UNARY(double, dSin_HA)
}  // namespace pex
#endif
