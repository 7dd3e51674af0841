// atanh(x) = sign(x) ln((1 + |x|)/(1 - |x|))/2 in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atanh/satanh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/inverse_hyperbolic-inl.h"
#include "pex_core/_heap/real/slog_short-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/atanh/atanh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAtanh";

template <class Groups = LargeGroups<float>>
struct sAtanhCommon : Groups {
  using Rarity = RareAbove<float, 0x3F7FFFFF>;  // 1 and beyond, NaN
  static constexpr float kHarmless = 0;
  static HWY_INLINE int Rare(float x, float* r) { return AtanhRare(x, r); }
};

// For P = 2^e next to (1 + a)/(1 - a), v = (1 - a)/2 and h = P v - v
//   atanh(a) = e ln(2)/2 + atanh(s), s = (a - h)/(1 + h),
// a itself for e = 0. e is by how much the exponent of a + kFirst is above that of v: 1 from a =
// 0.18 on. s is from -0.242 to 0.18.
struct sAtanhEP : sAtanhCommon<> {
  static constexpr float kFirst = 0.64f;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    const V one = hn::Set(d, 1.0f);
    V s[K], s2[K], head[K];
    for (size_t k = 0; k < K; ++k) {
      const V a = hn::Abs(x[k]);
#if HWY_TARGET == HWY_SSE4
      const V v = FromBits(d, hn::Sub(Bits(d, hn::Sub(one, a)), SetBits(d, 1 << 23)));
#else
      const V v = SubExactProduct(a, hn::Set(d, 0.5f), hn::Set(d, 0.5f));
#endif
      const auto above = hn::Sub(Bits(d, hn::Add(a, hn::Set(d, kFirst))), Bits(d, v));
      const auto power = hn::And(above, SetBits(d, 0xFF800000));  // e << 23
      const V h = hn::Sub(FromBits(d, hn::Add(Bits(d, v), power)), v);
      s[k] = hn::Div(hn::Sub(a, h), hn::Add(h, one));
      head[k] = hn::Mul(hn::ConvertTo(d, power), hn::Set(d, 0x1.62e430p-25f));
      // The square of tiny numbers counts as 0.
      V counting = s[k];
      if constexpr (!kHasSilentMul<V>) {
        const auto tiny = hn::RebindMask(d, hn::Lt(Bits(d, a), SetBits(d, BitsOfNumber(0x1p-13f))));
        counting = Selected(hn::IfThenZeroElse(tiny, s[k]));
      }
      s2[k] = SilentMul(counting, counting);
    }
    for (size_t k = 0; k < K; ++k) {
      const V rest = SilentMul(s[k], SilentMul(s2[k], hn::Set(d, sAtanhEPPolynomial[0])));
      r[k] = hn::CopySignToAbs(hn::Add(head[k], hn::Add(s[k], rest)), x[k]);
    }
  }
};

struct sAtanhLA : sAtanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    AtanhByHalves(d, x, 0.245f, sAtanhLAPolynomial, r);
  }
};

// A tiny x is its own result.
inline constexpr float kTiny = 0x1p-13f;

// Correctly rounded for all floats.
struct sAtanhSums {
  // In double precision.
  template <class D, class V>
  static HWY_INLINE V InFull(D d, V x) {
    const hn::Rebind<double, D> wide;
    const V a = MagnitudeUnlessTiny(d, x, kTiny);
    const V y = LogOfSumSingle<AtanhSum>(d, hn::PromoteTo(wide, a));
    return SignedUnlessTiny(d, x, y, kTiny);
  }
#if HWY_TARGET != HWY_SSE4
  // By floats: half of ln(1 + 2a/(1 - a)), the quotient with its rest by the exact remainder. Where
  // x is its own result the quotient gives way to 0.
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    const V one = hn::Set(d, 1.0f), half = hn::Set(d, 0.5f);
    const V a = hn::Abs(x);
#if HWY_TARGET == HWY_AVX3
    const auto whole = hn::RebindMask(d, hn::Gt(Bits(d, a), SetBits(d, BitsOfNumber(kTiny) - 1)));
    const V twice = MergedAdd(hn::Zero(d), whole, a, a);
#else
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const V twice = hn::IfThenZeroElse(tiny, hn::Add(a, a));
#endif
    const V less = hn::Sub(one, a), less_rest = hn::Sub(hn::Sub(one, less), a);
    const V inverse = hn::Div(one, less);
    const V quotient = hn::Mul(twice, inverse);
    const V remainder =
        HiddenNegMulAdd(quotient, less_rest, HiddenNegMulAdd(quotient, less, twice));
    const V u = hn::Add(quotient, one);
    const V t = HiddenMulAdd(remainder, inverse, hn::Sub(quotient, hn::Sub(u, one)));
    const auto s = sLnOfSumShort(d, u, t);
    const V least = sLogRounded<sNaturalLog>(d, s, doubt);
#if HWY_TARGET == HWY_AVX3
    return hn::IfVecThenElse(hn::SignBit(d), x, MergedMul(x, whole, least, half));
#else
    const V from_x = hn::Or(hn::SignBit(d), hn::VecFromMask(d, tiny));
    return hn::Or(hn::Mul(least, half), hn::And(x, from_x));
#endif
  }
#endif
};

using sAtanhHA = ShortSumKernel<sAtanhSums, sAtanhCommon<Kernel<float, ShortSumCompute>>>;

PEX_UNARY(float, sAtanh_11, sAtanhEP)
PEX_UNARY(float, sAtanh_21, sAtanhLA)
PEX_UNARY(float, sAtanh_HA, sAtanhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sAtanh_11)
PEX_EXPORT_UNARY(float, sAtanh_21)
PEX_EXPORT_UNARY(float, sAtanh_HA)
}  // namespace pex
#endif
