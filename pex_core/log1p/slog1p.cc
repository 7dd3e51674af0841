// ln(1 + x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/log1p/slog1p.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/slog-inl.h"
#include "pex_core/ln/ln_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsLog1p";

// Rare: 1 + x is not positive and finite, or is so small or large that sLog1pLA could not scale by
// its exponent: x < 2^-20 - 1, x >= 2^126, NaN. 1 + x rounded will do for all of them.
struct sLog1pRarity : RareOutside<float, 0x35800000, 0x7E7FFFFF> {
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
    return RareOutside::Key(d, hn::Add(x, hn::Set(d, 1.0f)));
  }
};

inline int sLog1pRare(float x, float* r) { return sLnScalar(x + 1.0f, r); }

struct sLog1pKernel : Kernel<float> {
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 6 : 8;
  using Rarity = sLog1pRarity;
  static HWY_INLINE int Rare(float x, float* r) { return sLog1pRare(x, r); }
};

// A tiny x is its own result: to nearest down to 2^-25 below it, signed zeros and subnormals
// without a flag.
inline constexpr float kTiny = 0x1p-25f;

// Where 1 + x keeps the exponent 0, x itself is the argument of the polynomial; elsewhere the
// rounding error of 1 + x does not matter to EP.
struct sLog1pEP : sLog1pKernel {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V one = hn::Set(d, 1.0f);
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const auto u = sLogReduce(d, hn::Add(x, one));
    const auto near = hn::RebindMask(d, hn::Eq(u.exponent_bits, SetBits(d, 0)));
    const V t = hn::IfThenZeroElse(tiny, hn::IfThenElse(near, x, hn::Sub(u.m, one)));
    return hn::IfThenElse(tiny, x, sLogEPSum<sNaturalLog>(d, u.scaled, t));
  }
};

// p = 2^-e c x + (2^-e c - 1), free of the rounding of 1 + x. x is its own result where 1 + x is 1.
struct sLog1pLA : sLog1pKernel {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V one = hn::Set(d, 1.0f);
    const V sum = hn::Add(x, one);
    const auto itself = hn::Eq(sum, one);
    const auto u = sLogReduce(d, sum);
    V c, log;
    sLnFactorAt(d, u.m, c, log);
    const V factor = FromBits(d, hn::Sub(Bits(d, c), u.exponent_bits));
    const V p = ShortMulAdd(d, x, factor, hn::Sub(factor, one));
    const V r = sLogFactorSum<sNaturalLog>(d, u.scaled, log, hn::IfThenZeroElse(itself, p));
    return hn::IfThenElse(itself, x, r);
  }
};

// 1 + x is exact in double, up to 2^53.
struct sLog1pHA : Kernel<float, double> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 6 : Kernel::kUnroll;
  using Rarity = sLog1pRarity;
  static HWY_INLINE int Rare(float x, float* r) { return sLog1pRare(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const hn::Rebind<double, D> wide;
    const auto one = hn::Set(d, 1.0f);
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const auto y = hn::IfThenZeroElse(tiny, x);
    const auto u = sLogReduce(d, hn::Add(x, one));
    const auto scale = hn::PromoteTo(wide, FromBits(d, hn::Sub(Bits(d, one), u.exponent_bits)));
    const auto sum = hn::Add(hn::PromoteTo(wide, y), hn::Set(wide, 1.0));
    const V r = sLogWide<NaturalLog, sNaturalLog>(d, u, hn::Mul(sum, scale));
    return hn::IfThenElse(tiny, x, r);
  }
};

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
