// The sine and the cosine together in single precision: one reduction by pi/2, two polynomials. EP
// has 16 correct bits, LA errs by less than 1.9 ulp, HA is rounded correctly for all floats.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sincos/ssincos.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_single-inl.h"
#include "pex_core/_heap/real/trig_turn-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsSinCos";

template <class Tier>
struct sSinCosNarrow {
  static constexpr int kUnroll = Tier::kUnroll, kResults = 2;
  static constexpr Turn kTurn = Turn::kQuarter;
  static constexpr Care kCare = Tier::kCare;
  template <class D, class V>
  static HWY_INLINE void Of(D d, Reduced<D> u, V& sine, V& cosine) {
    const auto s = hn::Mul(u.y, u.y);
    auto p = hn::Mul(hn::Mul(u.y, s), Horner(d, s, Tier::kSine));
    if (kCare != Care::kRough) p = hn::Sub(p, u.excess);
    const auto q = hn::Mul(s, Horner(d, s, Tier::kCosine));
    TurnBack(d, u.k, hn::Add(u.y, p), hn::Add(q, hn::Set(d, 1.0f)), sine, cosine);
  }
};

struct sSinCosEP {
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 4 : 8;
  static constexpr Care kCare = Care::kRough;
  static constexpr auto& kSine = sQuarterSinEPPolynomial;
  static constexpr auto& kCosine = sQuarterCosEPPolynomial;
};

struct sSinCosLA {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : 4;
  static constexpr Care kCare = Care::kRounded;
  static constexpr auto& kSine = sQuarterSinLAPolynomial;
  static constexpr auto& kCosine = sQuarterCosLAPolynomial;
};

// In double precision.
struct sSinCosHA {
  static constexpr int kUnroll = 4, kResults = 2, kDoubt = 10;
  static constexpr Turn kTurn = Turn::kQuarter;
  template <class D, class V>
  static HWY_INLINE void Of(D d, Reduced<D> u, V& sine, V& cosine) {
    const auto s = hn::Mul(u.y, u.y);
    const auto s2 = hn::Mul(s, s);
    const auto p = EvenOdd(d, s, s2, sQuarterSinHAPolynomial);
    const auto q = EvenOdd(d, s, s2, sQuarterCosHAPolynomial);
    const auto sum = hn::Add(hn::Mul(hn::Mul(u.y, s), p), u.y);
    TurnBack(d, u.k, KeepSign(d, sum, u.y), hn::Add(hn::Mul(s, q), hn::Set(d, 1.0)), sine, cosine);
  }
};

PEX_UNARY_TWO(float, sSinCos_11, TrigNarrow<sSinCosNarrow<sSinCosEP>>)
PEX_UNARY_TWO(float, sSinCos_21, TrigNarrow<sSinCosNarrow<sSinCosLA>>)
PEX_UNARY_TWO(float, sSinCos_HA, TrigWide<sSinCosHA>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY_TWO(float, sSinCos_11)
PEX_EXPORT_UNARY_TWO(float, sSinCos_21)
PEX_EXPORT_UNARY_TWO(float, sSinCos_HA)
}  // namespace pex
#endif
