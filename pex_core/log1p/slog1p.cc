// ln(1 + x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/log1p/slog1p.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/slog-inl.h"
#include "pex_core/log1p/log1p_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsLog1p";

// Rare: 1 + x is not positive and finite: x <= -1, +inf, NaN.
struct sLog1pRarity : RareOutside<float, 0x00800000, 0x7F7FFFFF> {
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
    return RareOutside::Key(d, hn::Add(x, hn::Set(d, 1.0f)));
  }
};

struct sLog1pKernel : Kernel<float> {
  using Rarity = sLog1pRarity;
  static HWY_INLINE int Rare(float x, float* r) { return Log1pRare(x, r, sLnScalar); }
};

// A tiny x is its own result: to nearest down to 2^-25 below it, signed zeros and subnormals without
// a flag.
inline constexpr float kTiny = 0x1p-25f;

// Where 1 + x keeps the exponent 0, x itself is the argument of the polynomial; elsewhere the rounding
// error of 1 + x does not matter to EP.
struct sLog1pEP : sLog1pKernel {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V one = hn::Set(d, 1.0f);
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const V y = hn::IfThenZeroElse(tiny, x);
    const auto u = sLogReduce(d, hn::Add(y, one));
    const auto near = hn::RebindMask(d, hn::Eq(u.exponent_bits, SetBits(d, 0)));
    const V t = hn::IfThenElse(near, y, hn::Sub(u.m, one));
    return hn::IfThenElse(tiny, x, sLogEPSum<sNaturalLog>(d, u.scaled, t));
  }
};

// LA adds the rounding error of u = 1 + x to the reduced argument. For x above 1 the difference below is itself off by
// at most half an ulp of u.
struct sLog1pLA : sLog1pKernel {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V one = hn::Set(d, 1.0f);
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const V y = hn::IfThenZeroElse(tiny, x);
    const V sum = hn::Add(y, one);
    const V sum_rest = hn::Sub(y, hn::Sub(sum, one));
    const auto u = sLogReduce(d, sum);
    // 2^-e; 0 from e = 127 on, where the rest is 0 too.
    const auto most = SetBits(d, BitsOfNumber(1.0f));
    const V scale = FromBits(d, hn::Sub(most, hn::Min(u.exponent_bits, most)));
    const auto near = sLogNextSixteenth(d, u.m);
    const V t = hn::Add(near.t, hn::Mul(sum_rest, scale));
    return hn::IfThenElse(tiny, x, sLogLASum<sNaturalLog>(d, u.scaled, t, near.row));
  }
};

// 1 + x is exact in double, up to 2^53.
struct sLog1pHA : Kernel<float, double> {
  using Rarity = sLog1pRarity;
  static HWY_INLINE int Rare(float x, float* r) { return Log1pRare(x, r, sLnScalar); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const hn::Rebind<double, D> wide;
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const auto y = hn::PromoteTo(wide, hn::IfThenZeroElse(tiny, x));
    const auto r = sLogWide<NaturalLog, sNaturalLog>(wide, hn::Add(y, hn::Set(wide, 1.0)));
    return hn::IfThenElse(tiny, x, hn::DemoteTo(d, r));
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
