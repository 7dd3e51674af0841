// e^x - 1 in single precision: (s - 1) + s (e^r - 1), s a power of 2^(1/8) or 2^(1/16).
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/expm1/sexpm1.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/hardware-inl.h"
#include "pex_core/expm1/expm1_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsExpm1";

// Common from -60 to 88: below, products with s would underflow.
struct sExpm1Rarity : RareAbove<float, 0x42940000> {  // |x - 14| > 74
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
    return Bits(d, hn::Abs(hn::Sub(x, hn::Set(d, 14.0f))));
  }
};

template <typename Compute = float, class Test = sExpm1Rarity>
struct sExpm1Common : Kernel<float, Compute> {
  using Rarity = Test;
  static HWY_INLINE int Rare(float x, float* r) { return Expm1Rare(x, r, sExpScalar); }
};

// k = round(x 8/ln2) in the low bits, and 2^24 k. Factors of 2^24 here and 2^28 in the polynomial
// keep the products of tiny arguments from underflow: their result is the argument itself, without
// a flag. Silent products need no factor in the polynomial.
template <class V>
inline constexpr int kPolynomialScale = kHasSilentMul<V> ? 0 : 28;

template <class D>
struct Eighths {
  BitsOf<D> k;
  VecOf<D> kd;
};

template <class D, class V>
HWY_INLINE Eighths<D> NearestEighth(D d, V x) {
  const V shifter = hn::Set(d, 0x1.8p47f);
  const V kf = hn::Add(hn::Mul(x, hn::Set(d, 0x1.715476p+27f)), shifter);
  return {Bits(d, kf), hn::Sub(kf, shifter)};
}

// (s - 1) + s p for s = 2^(k/8) and p given as p 2^kScale. A difference, for it keeps the sign of
// zero.
template <int kScale, class D, class V>
HWY_INLINE V Assemble(D d, BitsOf<D> k, V p) {
  const auto table = reinterpret_cast<const float*>(sExpShiftedEighths);
  const auto s = hn::Add(Bits(d, LookupEighth(d, table, k)), hn::ShiftLeft<20>(k));
  const V scaled = FromBits(d, kScale == 0 ? s : hn::Sub(s, SetBits(d, kScale << 23)));
  return hn::Sub(SilentMul(scaled, p), hn::Sub(hn::Set(d, 1.0f), FromBits(d, s)));
}

// 2 (e^r - 1) as r (2 + r), |r| <= ln2/16. EPBITS.
struct sExpm1EP : sExpm1Common<> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto [k, kd] = NearestEighth(d, x);
    const V r = hn::Sub(x, hn::Mul(kd, hn::Set(d, 0x1.62e43p-28f)));
    return Assemble<1>(d, k, hn::Mul(hn::Add(r, hn::Set(d, 2.0f)), r));
  }
};

#if HWY_TARGET == HWY_AVX3
using sExpm1LARarity = RareAbove<float, 0x42B00000>;  // |x| > 88: small products are silent
#else
using sExpm1LARarity = sExpm1Rarity;
#endif

// e^r - 1 as a quartic, |r| <= ln2/16. Near zero s - 1 asks for more bits of s than it has: what is
// missing, in relation to s, is added to r. Largest error LAULP.
struct sExpm1LA : sExpm1Common<float, sExpm1LARarity> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto [k, kd] = NearestEighth(d, x);
    // ln2/8 = 0x1.62ep-4 + 0x1.0bfbe8p-18, the product of k and the first part exact.
    const V rest =
        hn::Sub(hn::Mul(kd, hn::Set(d, 0x1.0bfbe8p-42f)), LookupEighth(d, sExpEighthsRest, k));
    const V r = hn::Sub(SubExactProduct(kd, hn::Set(d, 0x1.62ep-28f), x), rest);
    constexpr int kScale = kPolynomialScale<V>;
    constexpr float kOne = kScale == 0 ? 1.0f : 0x1p28f;
    const auto c = [&](int i) HWY_ATTR { return hn::Set(d, kOne * sExpm1LAPolynomial[i]); };
    const V q = hn::Add(SilentMul(hn::Add(SilentMul(c(2), r), c(1)), r), c(0));
    return Assemble<kScale>(d, k, SilentMul(hn::Add(SilentMul(q, r), hn::Set(d, kOne)), r));
  }
};

// In double precision, where nothing underflows; a tiny x is its own result, so that zeros keep
// their sign and subnormal results are exact in the end. Correctly rounded for all floats.
struct sExpm1HA : sExpm1Common<double> {
  static constexpr int kUnroll = 4;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const hn::Rebind<double, D> dd;
    const auto wide = hn::PromoteTo(dd, x);
    const auto [s, p] = ExpReduceWide(dd, wide);
    const auto y = hn::Add(hn::Mul(s, p), hn::Sub(s, hn::Set(dd, 1.0)));
    return hn::DemoteTo(d, hn::IfThenElse(MagnitudeBelow(dd, wide, 0x1p-60), wide, y));
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
