// The standard normal distribution function in double precision, from tables of its own.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cdfnorm/dcdfnorm.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf_fine-inl.h"
#include "pex_core/_heap/real/erfc_points-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/erfc/erfc_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdCdfNorm";

using dCdfNormHA = CurveKernel<CdfNormCurve, dCdfNormRare>;
using dCdfNormEP = FineKernel<CdfNormFine, ErfcTier::kEP, dCdfNormRare>;
using dCdfNormLA = FineKernel<CdfNormFine, ErfcTier::kLA, dCdfNormRare>;

PEX_UNARY(double, dCdfNorm_26, dCdfNormEP)
PEX_UNARY(double, dCdfNorm_50, dCdfNormLA)
PEX_UNARY(double, dCdfNorm_HA, dCdfNormHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dCdfNorm_26)
PEX_EXPORT_UNARY(double, dCdfNorm_50)
PEX_EXPORT_UNARY(double, dCdfNorm_HA)
}  // namespace pex
#endif
