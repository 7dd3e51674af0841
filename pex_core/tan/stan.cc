// The tangent in single precision: y/(y cot y) in even quarter turns, -(y cot y)/y in odd ones.
// EP has 15 correct bits, LA errs by less than 1.9 ulp, HA is rounded correctly for all floats.
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
// errors are those of a small correction. With r the tangent, y's excess e takes e (1 + r^2) more.
struct sTanLA {
  static constexpr int kUnroll = 8, kResults = 1;
  static constexpr bool kGrouped = true;
  static constexpr Turn kTurn = Turn::kQuarter;
  static constexpr Care kCare = Care::kOneRounding;
  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const Reduced<D> (&u)[K], V (&r)[K]) {
    const auto coefficient = [d](int i) HWY_ATTR { return hn::Set(d, sTanLAPolynomial[i]); };
    V y[K], s[K], high[K], low[K], q[K], c[K];
    for (size_t k = 0; k < K; ++k) {
      y[k] = Tame<kTurn>(d, u[k].y, 0x1p-25f);  // its fourth power is a normal number
      s[k] = QuietMul(d, y[k], y[k]);
    }
    for (size_t k = 0; k < K; ++k) {
      high[k] = hn::Add(QuietMul(d, s[k], coefficient(3)), coefficient(2));
      low[k] = hn::Add(QuietMul(d, s[k], coefficient(1)), coefficient(0));
    }
    for (size_t k = 0; k < K; ++k) {
      q[k] = hn::Add(low[k], QuietMul(d, QuietMul(d, s[k], s[k]), high[k]));
    }
    for (size_t k = 0; k < K; ++k) q[k] = QuietMul(d, s[k], q[k]);
    for (size_t k = 0; k < K; ++k) c[k] = hn::Add(q[k], hn::Set(d, 1.0f));
    for (size_t k = 0; k < K; ++k) r[k] = LessQuotient(d, u[k], y[k], q[k], c[k]);
  }
  // y - y q/c or -c/y, less e (1 + r^2).
  template <class D, class V>
  static HWY_INLINE V LessQuotient(D d, const Reduced<D>& u, V tame, V q, V c) {
    const V product = QuietMul(d, u.y, q);
#if HWY_TARGET == HWY_AVX3
    const auto odd = OddQuarter(d, u.k);
    const V quotient = hn::Div(hn::IfThenElse(odd, c, product), hn::IfThenElse(odd, u.y, c));
    const V y = hn::IfThenZeroElse(odd, u.y),
            rough = hn::Sub(hn::IfThenZeroElse(odd, tame), quotient);
#else  // blends by the sign bit save a comparison
    const V odd = FromBits(d, hn::ShiftLeft<31>(u.k));
    const V quotient =
        hn::Div(hn::IfNegativeThenElse(odd, c, product), hn::IfNegativeThenElse(odd, u.y, c));
    const V y = hn::IfNegativeThenElse(odd, hn::Zero(d), u.y);
    const V rough = hn::Sub(hn::IfNegativeThenElse(odd, hn::Zero(d), tame), quotient);
#endif
    const V turn = QuietMul(d, QuietMul(d, rough, rough), u.excess);
    return hn::Sub(y, hn::Add(quotient, hn::Add(turn, u.excess)));
  }
  template <class D>
  static HWY_INLINE VecOf<D> Of(D d, Reduced<D> u) {
    const Reduced<D> in[1] = {u};
    VecOf<D> out[1];
    Group(d, in, out);
    return out[0];
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
