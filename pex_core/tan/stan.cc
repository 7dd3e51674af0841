// The tangent in single precision: y/(y cot y) in even quarter turns, -(y cot y)/y in odd ones.
// EP has 15 correct bits, LA errs by less than 1.97 ulp, HA is rounded correctly for all floats.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tan/stan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_single-inl.h"
#include "pex_core/_heap/real/trig_turn-inl.h"
#include "pex_core/_kernel/fused_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsTan";

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
    for (size_t k = 0; k < K; ++k) r[k] = TangentQuotient(d, u[k].k, u[k].y, q[k]);
  }
};

// y's excess e makes y cot y too small by (y/sin y)^2 e/y; for that over e a rough value does,
// within 9 % by the bits of 1/y.
struct sTanLA {
  static constexpr uint32_t kSlope = 0x7F0CCCCD;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 8, kResults = 1;
  static constexpr Turn kTurn = Turn::kQuarter;
  static constexpr Care kCare = Care::kFull;
  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const Reduced<D> (&u)[K], V (&r)[K]) {
    V s[K], c[K];
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(u[k].y, u[k].y);
    EndStep(s);
    for (size_t k = 0; k < K; ++k) {
      c[k] = hn::Mul(u[k].excess, FromBits(d, hn::Sub(SetBits(d, kSlope), Bits(d, u[k].y))));
    }
    EndStep(c);
    FusedCubic(d, s, sTanLAPolynomial, s, c, c);
    EndStep(c);
    for (size_t k = 0; k < K; ++k) c[k] = hn::Add(c[k], hn::Set(d, 1.0f));
    EndStep(c);
    for (size_t k = 0; k < K; ++k) r[k] = TangentQuotient(d, u[k].k, u[k].y, c[k]);
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
    return TangentQuotient(d, u.k, u.y, hn::Add(c, hn::Set(d, 1.0)));
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
