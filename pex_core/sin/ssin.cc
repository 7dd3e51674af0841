// The sine in single precision. EP has 12.8 correct bits, LA errs by less than 2 ulp, HA is rounded
// correctly for all floats.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sin/ssin.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsSin";

struct sSinEP {
  static constexpr Turn kTurn = Turn::kSine;
  static constexpr Care kCare = Care::kRough;
  static constexpr auto& kPolynomial = sSinEPPolynomial;
};

struct sSinLA {
  static constexpr Turn kTurn = Turn::kSine;
  static constexpr Care kCare = Care::kRounded;
  static constexpr auto& kPolynomial = sSinLAPolynomial;
};

using sSinHA = TrigWide<sSineHA<Turn::kSine, sSettleSine>>;

PEX_UNARY(float, sSin_11, TrigNarrow<sSineNarrow<sSinEP>>)
PEX_UNARY(float, sSin_21, TrigNarrow<sSineNarrow<sSinLA>>)
PEX_UNARY(float, sSin_HA, sSinHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sSin_11)
PEX_EXPORT_UNARY(float, sSin_21)
PEX_EXPORT_UNARY(float, sSin_HA)
}  // namespace pex
#endif
