// The tangent in single precision: y/(y cot y) in even quarter turns, -(y cot y)/y in odd ones.
// EP has 15 correct bits, LA errs by less than 1.7 ulp, HA is rounded correctly for all floats.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tan/stan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsTan";

// y/c or -c/y.
template <class D, class V>
HWY_INLINE V Quotient(D d, BitsOf<D> k, V y, V c) {
  constexpr int kTop = sizeof(hn::TFromD<D>) * 8 - 1;
  const auto odd = OddQuarter(d, k);
  const V quotient = hn::Div(hn::IfThenElse(odd, c, y), hn::IfThenElse(odd, y, c));
  return hn::Xor(quotient, FromBits(d, hn::ShiftLeft<kTop>(k)));
}

struct sTanEP {
  static constexpr int kUnroll = 8, kResults = 1;
  static constexpr Turn kTurn = Turn::kQuarter;
  static constexpr Care kCare = Care::kRough;
  template <class D>
  static HWY_INLINE VecOf<D> Of(D d, Reduced<D> u) {
    const auto y = Tame<kTurn>(d, u.y);
    const auto s = QuietMul(d, y, y);
    const auto q = QuietMul(d, s, QuietHorner(d, s, sTanEPPolynomial));
    return Quotient(d, u.k, u.y, hn::Add(q, hn::Set(d, 1.0f)));
  }
};

// y cot y = 1 + q, and in even quarter turns the quotient is y - y q/(1 + q), so that its rounding
// errors are those of a small correction.
struct sTanLA {
  static constexpr int kUnroll = 4, kResults = 1;
  static constexpr Turn kTurn = Turn::kQuarter;
  static constexpr Care kCare = Care::kBothRoundings;
  template <class D>
  static HWY_INLINE VecOf<D> Of(D d, Reduced<D> u) {
    const auto y = Tame<kTurn>(d, u.y);
    const auto s = QuietMul(d, y, y);
    const auto q = QuietMul(d, s, QuietHorner(d, s, sTanLAPolynomial));
    const auto c = hn::Add(q, hn::Set(d, 1.0f));
    const auto odd = OddQuarter(d, u.k);
    const auto quotient =
        hn::Div(hn::IfThenElse(odd, c, QuietMul(d, u.y, q)), hn::IfThenElse(odd, u.y, c));
    // The derivatives are 1 + tan^2 y, nearly 1 + y^2, and 1 + cot^2 y.
    const auto root = hn::IfThenElse(odd, quotient, y);
    const auto slope = hn::Add(QuietMul(d, root, root), hn::Set(d, 1.0f));
    return hn::Sub(hn::IfThenZeroElse(odd, u.y), hn::Add(quotient, QuietMul(d, slope, u.excess)));
  }
};

// In double precision.
struct sTanHA {
  static constexpr int kUnroll = 4, kResults = 1, kDoubt = 10;
  static constexpr sSettle kSettle = sSettleTangent;
  static constexpr Turn kTurn = Turn::kQuarter;
  template <class D>
  static HWY_INLINE VecOf<D> Of(D d, Reduced<D> u) {
    const auto s = hn::Mul(u.y, u.y);
    const auto c = hn::Mul(s, EvenOdd(d, s, hn::Mul(s, s), sTanHAPolynomial));
    return Quotient(d, u.k, u.y, hn::Add(c, hn::Set(d, 1.0)));
  }
};

PEX_UNARY(float, sTan_11, TrigNarrow<sTanEP>)
PEX_UNARY(float, sTan_21, TrigNarrow<sTanLA>)
PEX_UNARY(float, sTan_HA, TrigWide<sTanHA>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sTan_11)
PEX_EXPORT_UNARY(float, sTan_21)
PEX_EXPORT_UNARY(float, sTan_HA)
}  // namespace pex
#endif
