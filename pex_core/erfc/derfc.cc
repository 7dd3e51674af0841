// The complementary error function in double precision: 2 - erfc(-x) for negative x.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erfc/derfc.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf_fine-inl.h"
#include "pex_core/_heap/real/erfc_points-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/erfc/erfc_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdErfc";

using dErfcHA = CurveKernel<ErfcCurve, dErfcRare>;
using dErfcEP = FineKernel<ErfcFine, ErfcTier::kEP, dErfcRare>;
using dErfcLA = FineKernel<ErfcFine, ErfcTier::kLA, dErfcRare>;

PEX_UNARY(double, dErfc_26, dErfcEP)
PEX_UNARY(double, dErfc_50, dErfcLA)
PEX_UNARY(double, dErfc_HA, dErfcHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dErfc_26)
PEX_EXPORT_UNARY(double, dErfc_50)
PEX_EXPORT_UNARY(double, dErfc_HA)
}  // namespace pex
#endif
