// e^x - 1 in single precision: (s - 1) + s (e^r - 1), s a power of 2^(1/8) or 2^(1/16).
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/expm1/sexpm1.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/expm1/expm1_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsExpm1";

template <typename Compute = float>
struct sExpm1Common : Kernel<float, Compute> {
  using Rarity = RareAbove<float, 0x42AE0000>;  // |x| > 87
  static HWY_INLINE int Rare(float x, float* r) { return sExpm1Rare(x, r); }
};

// A tiny x is its own result: signed zeros and subnormals without a flag.
inline constexpr float kTiny = 0x1p-30f;

// From below -24 on the result is -1; kept from there, s p does not underflow.
template <class D, class V>
HWY_INLINE V CommonArgument(D d, MaskOf<D> tiny, V x) {
  return hn::Max(hn::IfThenZeroElse(tiny, x), hn::Set(d, -24.0f));
}

// The bits of 2^(k/8).
template <class D>
HWY_INLINE VecOf<D> EighthPower(D d, BitsOf<D> k) {
  const auto table = reinterpret_cast<const float*>(sExpShiftedEighths);
  return FromBits(d, hn::Add(Bits(d, LookupEighth(d, table, k)), hn::ShiftLeft<20>(k)));
}

// e^r - 1 as r + r^2/2, |r| <= ln2/16.
struct sExpm1EP : sExpm1Common<> {
  static constexpr int kUnroll = 4;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const V shifter = hn::Set(d, 0x1.8p23f);
    const V y = CommonArgument(d, tiny, x);
    const V kf = hn::Add(hn::Mul(y, hn::Set(d, 0x1.715476p+3f)), shifter);
    const V r = hn::Sub(y, hn::Mul(hn::Sub(kf, shifter), hn::Set(d, 0x1.62e43p-4f)));
    const V p = hn::Add(hn::Mul(hn::Mul(r, hn::Set(d, 0.5f)), r), r);
    const V s = EighthPower(d, Bits(d, kf));
    return hn::IfThenElse(tiny, x, hn::Add(hn::Mul(s, p), hn::Sub(s, hn::Set(d, 1.0f))));
  }
};

// e^r - 1 as a quartic, |r| <= ln2/16. Near zero s - 1 asks for more bits of s than it has: what is
// missing, in relation to s, is added to e^r - 1.
struct sExpm1LA : sExpm1Common<> {
  static constexpr int kUnroll = 4;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const auto [k, r] = ExpReduceEighths(d, CommonArgument(d, tiny, x));
    const V q = hn::Mul(Horner(d, r, sExpm1LAPolynomial), r);
    const V p = hn::Add(hn::Add(hn::Mul(q, r), LookupEighth(d, sExpEighthsRest, k)), r);
    const V s = EighthPower(d, k);
    return hn::IfThenElse(tiny, x, hn::Add(hn::Mul(s, p), hn::Sub(s, hn::Set(d, 1.0f))));
  }
};

// In double precision, where nothing underflows; a zero's sign is put back.
struct sExpm1HA : sExpm1Common<double> {
  static constexpr int kUnroll = 4;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const hn::Rebind<double, D> dd;
    const auto [s, p] = ExpReduceWide(dd, hn::PromoteTo(dd, x));
    const auto y = hn::Add(hn::Mul(s, p), hn::Sub(s, hn::Set(dd, 1.0)));
    return hn::Or(hn::DemoteTo(d, y), hn::And(x, hn::Set(d, -0.0f)));
  }
};

PEX_UNARY(float, sExpm1_11, sExpm1EP)
PEX_UNARY(float, sExpm1_21, sExpm1LA)
PEX_UNARY(float, sExpm1_HA, sExpm1HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sExpm1_11)
PEX_EXPORT_UNARY(float, sExpm1_21)
PEX_EXPORT_UNARY(float, sExpm1_HA)
}  // namespace pex
#endif
