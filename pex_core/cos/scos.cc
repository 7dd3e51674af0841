// The cosine in single precision. EP has 12.5 correct bits, LA errs by less than 1.95 ulp, HA
// is rounded correctly for all floats.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cos/scos.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsCos";

struct sCosEP {
  static constexpr Turn kTurn = Turn::kCosine;
  static constexpr Care kCare = Care::kRough;
  static constexpr auto& kPolynomial = sCosEPPolynomial;
};

struct sCosLA {
  static constexpr Turn kTurn = Turn::kCosine;
  static constexpr Care kCare = Care::kRounded;
  static constexpr auto& kPolynomial = sSinLAPolynomial;
};

using sCosHA = TrigWide<sSineHA<Turn::kCosine, sSettleCosine>>;

PEX_UNARY(float, sCos_11, TrigNarrow<sSineNarrow<sCosEP>>)
PEX_UNARY(float, sCos_21, TrigNarrow<sSineNarrow<sCosLA>>)
PEX_UNARY(float, sCos_HA, sCosHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sCos_11)
PEX_EXPORT_UNARY(float, sCos_21)
PEX_EXPORT_UNARY(float, sCos_HA)
}  // namespace pex
#endif
