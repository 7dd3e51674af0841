// ln(1 + x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/log1p/slog1p.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/slog_short-inl.h"
#include "pex_core/log1p/log1p_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsLog1p";

// Rare: 1 + x is not positive and finite, or is so small or large that sLog1pLA could not scale by
// its exponent: x < 2^-20 - 1, x >= 2^126, NaN. 1 + x rounded will do for all of them.
template <uint32_t kLast>
struct sLog1pRareAbove : RareOutside<float, 0x35800000, kLast> {
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
    return sLog1pRareAbove::RareOutside::Key(d, hn::Add(x, hn::Set(d, 1.0f)));
  }
};

using sLog1pRarity = sLog1pRareAbove<0x7E7FFFFF>;

inline int sLog1pRare(float x, float* r) { return Log1pRare(x, r, sLnScalar); }

struct sLog1pKernel : Kernel<float> {
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 6 : 8;
  using Rarity = sLog1pRarity;
  static HWY_INLINE int Rare(float x, float* r) { return sLog1pRare(x, r); }
};

// 1 + x = 2^e m, 3/4 <= m < 3/2: -e << 23, and its value, which is +0 for 0.
template <class D>
struct sLog1pReduced {
  VecOf<D> m, scaled;
  BitsOf<D> exponent_bits;
};

template <class D, class V>
HWY_INLINE sLog1pReduced<D> sLog1pReduce(D d, V u) {
  sLog1pReduced<D> r;
#if HWY_TARGET == HWY_AVX3
  r.m = V{_mm512_getmant_ps(u.raw, _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_zero)};
  r.exponent_bits = hn::Sub(Bits(d, r.m), Bits(d, u));
#else
  const auto below = hn::Sub(SetBits(d, BitsOfNumber(0.75f) + 0x007FFFFF), Bits(d, u));
  r.exponent_bits = hn::And(below, SetBits(d, 0xFF800000));
  r.m = FromBits(d, hn::Add(Bits(d, u), r.exponent_bits));
#endif
  r.scaled = hn::ConvertTo(d, r.exponent_bits);
  return r;
}

// ln(1 + p) less `head`, which is +0 where the sign of zero matters. Given is 2^27 p, and the
// powers of 2^27 go with the polynomial p (1 + c[0] p + ...) to its end: no product of a tiny
// number underflows, its result is the number itself, without a flag.
template <class D, class V>
HWY_INLINE V sLog1pSum(D d, V p, const float (&c)[3], V head) {
  V h = hn::Add(hn::Mul(p, hn::Set(d, c[2])), hn::Set(d, c[1] * kLog1pScale));
  h = hn::Add(hn::Mul(h, p), hn::Set(d, c[0] * (kLog1pScale * kLog1pScale)));
  h = hn::Add(hn::Mul(h, p), hn::Set(d, kLog1pScale * kLog1pScale * kLog1pScale));
  return ExactProductLess(hn::Mul(h, p), hn::Set(d, 0x1p-108f), head);
}

// p = 2^-e x - (1 - 2^-e).
struct sLog1pEP : sLog1pKernel {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = sLog1pReduce(d, hn::Add(x, hn::Set(d, 1.0f)));
    const V scale = hn::Set(d, kLog1pScale);
    const V factor = FromBits(d, hn::Add(Bits(d, scale), u.exponent_bits));
    const V p = ExactProductLess(x, factor, hn::Sub(scale, factor));
    const V head = hn::Mul(u.scaled, hn::Set(d, sNaturalLog::kLog2));
    return sLog1pSum(d, p, kLog1pSingleEP, head);
  }
};

// ln(1 + t) = t + s (t - s^2 R(s^2)) for s = -t/(2 + t): t itself is 2^-e x - (1 - 2^-e), free of
// the rounding of 1 + x, which s may well bear, and s is 0 where x is its own result. No step
// changes a zero's sign or comes near underflow.
struct sLog1pLA : sLog1pKernel {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 8 : 6;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V one = hn::Set(d, 1.0f);
    const auto u = sLog1pReduce(d, hn::Add(x, one));
    const V factor = FromBits(d, hn::Add(Bits(d, one), u.exponent_bits));
    const V t = ExactProductLess(x, factor, hn::Sub(one, factor));
    const V s = hn::Div(hn::Sub(one, u.m), hn::Add(u.m, one));
    const V s2 = hn::Mul(s, s);
    const V rest = hn::Sub(t, hn::Mul(s2, Horner(d, s2, kLog1pSingleLA)));
    const V log = hn::Add(t, hn::Mul(s, rest));
    return SubExactProduct(u.scaled, hn::Set(d, kSingleLn2Hi),
                           SubExactProduct(u.scaled, hn::Set(d, kSingleLn2Lo), log));
  }
};

// A tiny x is its own result: to nearest down to 2^-25 below it, signed zeros and subnormals
// without a flag.
inline constexpr float kTiny = 0x1p-25f;

// 1 + x is exact in double, up to 2^53.
template <class D, class V>
HWY_INLINE V sLog1pWide(D d, V x) {
  const hn::Rebind<double, D> wide;
  const auto one = hn::Set(d, 1.0f);
  const auto tiny = MagnitudeBelow(d, x, kTiny);
  const auto y = Selected(hn::IfThenZeroElse(tiny, x));
  const auto u = sLogReduce(d, hn::Add(x, one));
  const auto scale = hn::PromoteTo(wide, FromBits(d, hn::Sub(Bits(d, one), u.exponent_bits)));
  const auto sum = hn::Add(hn::PromoteTo(wide, y), hn::Set(wide, 1.0));
  const V r = sLogWide<NaturalLog, sNaturalLog>(d, u, hn::Mul(sum, scale));
#if HWY_TARGET == HWY_AVX2
  return hn::Or(r, hn::IfThenElseZero(tiny, x));  // r is +0 there
#else
  return hn::IfThenElse(tiny, x, r);
#endif
}

struct sLog1pHABase : Kernel<float, ShortSumCompute> {
#if HWY_TARGET == HWY_SSE4
  using Rarity = sLog1pRarity;
#else
  using Rarity = sLog1pRareAbove<0x7E3FFFFF>;  // 1 + x < 0.75 2^126, for sLnOfSumShort
#endif
  static HWY_INLINE int Rare(float x, float* r) { return sLog1pRare(x, r); }
};

struct sLog1pSums {
  template <class D, class V>
  static HWY_INLINE V InFull(D d, V x) {
    return sLog1pWide(d, x);
  }
#if HWY_TARGET != HWY_SSE4
  // Where x is its own result the sum gives way to 1.
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    const V one = hn::Set(d, 1.0f);
    const V larger = hn::Max(x, one), smaller = hn::Min(x, one);
    const V u = hn::Add(x, one);
    const V over = hn::Sub(u, larger);
#if HWY_TARGET == HWY_AVX3
    const auto whole =
        hn::RebindMask(d, hn::Gt(Bits(d, hn::Abs(x)), SetBits(d, BitsOfNumber(kTiny) - 1)));
    const V t = MergedSub(hn::Zero(d), whole, smaller, over);
#else
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const V t = hn::IfThenZeroElse(tiny, hn::Sub(smaller, over));
#endif
    const auto s = sLnOfSumShort<true>(d, u, t);
    const auto [below, above] = sLogLowerParts<sNaturalLog>(d, s);
#if HWY_TARGET == HWY_AVX3
    const V least = MergedAdd(x, whole, s.high, below);
    doubt = hn::Xor(Bits(d, least), Bits(d, MergedAdd(x, whole, s.high, above)));
    return least;
#else
    const V least = hn::Add(s.high, below);
    doubt = hn::Xor(Bits(d, least), Bits(d, hn::Add(s.high, above)));
    return hn::Or(least, hn::IfThenElseZero(tiny, x));
#endif
  }
#endif
};

using sLog1pHA = ShortSumKernel<sLog1pSums, sLog1pHABase>;

PEX_UNARY(float, sLog1p_11, sLog1pEP)
PEX_UNARY(float, sLog1p_21, sLog1pLA)
PEX_UNARY(float, sLog1p_HA, sLog1pHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sLog1p_11)
PEX_EXPORT_UNARY(float, sLog1p_21)
PEX_EXPORT_UNARY(float, sLog1p_HA)
}  // namespace pex
#endif
