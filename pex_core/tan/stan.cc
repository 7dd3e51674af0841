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
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 8, kResults = 1;
  static constexpr Turn kTurn = Turn::kQuarter;
  static constexpr Care kCare = Care::kRough;
  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const Reduced<D> (&u)[K], V (&r)[K]) {
    V s[K], q[K];
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(u[k].y, u[k].y);
    EndStep(s);
    HornerInSteps(d, s, sTanEPPolynomial, q);
    for (size_t k = 0; k < K; ++k) q[k] = hn::Mul(s[k], q[k]);
    EndStep(q);
    for (size_t k = 0; k < K; ++k) q[k] = hn::Add(q[k], hn::Set(d, 1.0f));
    EndStep(q);
    for (size_t k = 0; k < K; ++k) r[k] = Quotient(d, u[k].k, u[k].y, q[k]);
  }
};

// The first of two vectors in lanes with an odd k, the second in the others.
template <class D, class V>
HWY_INLINE V OddElseEven(D d, BitsOf<D> k, V odd, V even) {
#if HWY_TARGET == HWY_AVX3
  return hn::IfThenElse(OddQuarter(d, k), odd, even);
#else  // blends look at the sign alone
  return hn::IfNegativeThenElse(FromBits(d, hn::ShiftLeft<31>(k)), odd, even);
#endif
}

// y cot y = 1 + q, and in even quarter turns the quotient is y - y q/(1 + q), so that its rounding
// errors are those of a small correction. y's excess e takes e tan' y more; for the slope tan' y a
// rough value does: 1.5 in even quarter turns (of 1 to 2), in odd ones 1/sin^2 y within 15 % by the
// bits of 1/y^2.
struct sTanLA {
  static constexpr uint32_t kSlope = 0x7F02C000;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 8, kResults = 1;
  static constexpr Turn kTurn = Turn::kQuarter;
  static constexpr Care kCare = Care::kFull;
  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const Reduced<D> (&u)[K], V (&r)[K]) {
    V s[K], q[K], c[K];
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(u[k].y, u[k].y);
    EndStep(s);
    HornerInSteps(d, s, sTanLAPolynomial, q);
    for (size_t k = 0; k < K; ++k) q[k] = hn::Mul(s[k], q[k]);
    EndStep(q);
    for (size_t k = 0; k < K; ++k) c[k] = hn::Add(q[k], hn::Set(d, 1.0f));
    for (size_t k = 0; k < K; ++k) q[k] = hn::Mul(u[k].y, q[k]);
    EndStep(c);
    EndStep(q);
    for (size_t k = 0; k < K; ++k) {
      q[k] = hn::Div(OddElseEven(d, u[k].k, c[k], q[k]), OddElseEven(d, u[k].k, u[k].y, c[k]));
    }
    EndStep(q);
    for (size_t k = 0; k < K; ++k) {
      const V odd = FromBits(d, hn::Sub(SetBits(d, kSlope), Bits(d, s[k])));
      c[k] = hn::Mul(u[k].excess, OddElseEven(d, u[k].k, odd, hn::Set(d, 1.5f)));
    }
    EndStep(c);
    for (size_t k = 0; k < K; ++k) q[k] = hn::Add(q[k], c[k]);
    EndStep(q);
    for (size_t k = 0; k < K; ++k) {
      r[k] = hn::Sub(OddElseEven(d, u[k].k, hn::Zero(d), u[k].y), q[k]);
    }
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
