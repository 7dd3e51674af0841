// e^x - 1 in single precision: (s - 1) + s (e^r - 1), s a power of 2^(1/8) or 2^(1/16).
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/expm1/sexpm1.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <type_traits>

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

// k + kBias in the low bits, k = round(x 8/ln2), and 2^24 k. The factor of 2^24 keeps the product
// of a tiny argument from underflow: the result is the argument itself, without a flag.
template <class D>
struct Eighths {
  BitsOf<D> k;
  VecOf<D> kd;
};

template <int kBias, class D, class V>
HWY_INLINE Eighths<D> NearestEighth(D d, V x) {
  const V shifter = hn::Set(d, 0x1p24f * (0x1.8p23f + kBias));
  const V kf = hn::Add(hn::Mul(x, hn::Set(d, 0x1.715476p+27f)), shifter);
  return {Bits(d, kf), hn::Sub(kf, shifter)};
}

#if HWY_TARGET == HWY_SSE4
using sExpm1LARarity = sExpm1Rarity;
#else
using sExpm1LARarity = RareAbove<float, 0x42B00000>;  // |x| > 88: no product with s underflows
#endif
// Products with s underflow in EP, but silently.
using sExpm1EPRarity =
    std::conditional_t<HWY_TARGET == HWY_AVX3, RareAbove<float, 0x42B00000>, sExpm1Rarity>;

// (s - 1) + s (e^r - 1) as a difference, for it keeps the sign of zero; e^r - 1 as r (1 + r/2), |r|
// <= ln2/16. 11.56 bits (0x1.62e5b4p-5).
struct sExpm1EP : sExpm1Common<float, sExpm1EPRarity> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto [k, kd] = NearestEighth<0>(d, x);
    const V r = hn::Sub(x, hn::Mul(kd, hn::Set(d, 0x1.62e43p-28f)));
    const auto table = reinterpret_cast<const float*>(sExpShiftedEighths);
    const auto s = hn::Add(Bits(d, LookupEighth(d, table, k)), hn::ShiftLeft<20>(k));
    const V less = hn::Sub(hn::Set(d, 1.0f), FromBits(d, s));
#if HWY_TARGET == HWY_SSE4  // r/2 would underflow
    const V p = hn::Mul(hn::Add(r, hn::Set(d, 2.0f)), r);
    const V factor = FromBits(d, hn::Sub(s, SetBits(d, 1 << 23)));
#else
    const V p = SilentMul(AddExactProduct(r, hn::Set(d, 0.5f), hn::Set(d, 1.0f)), r);
    const V factor = FromBits(d, s);
#endif
    return hn::Sub(SilentMul(factor, p), less);
  }
};

// The bits of k, moved to the exponent, are those of c = 2^n (1 + j/8), k = 8 n + j, and s - 1 =
// (c - 1) + c t, t = 2^(j/8)/(1 + j/8) - 1 from a table, the same rounded once or twice for every
// k. e^r - 1 as a quartic, |r| <= ln2/16. Largest error 1.75 ulp (0x1.b6488cp-5).
struct sExpm1LA : sExpm1Common<float, sExpm1LARarity> {
  static constexpr int kUnroll = 8;
#if HWY_TARGET == HWY_AVX2  // registers are few
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V in[1] = {x};
    V out[1];
    Steps(d, in, out);
    return out[0];
  }
#else
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    Steps(d, x, out);
  }
#endif

 private:
  template <class D, class V, size_t K>
  static HWY_INLINE void Steps(D d, const V (&x)[K], V (&out)[K]) {
    const V one = hn::Set(d, 1.0f);
    Eighths<D> u[K];
    V r[K], y[K], y2[K], less[K], p[K];
    for (size_t k = 0; k < K; ++k) u[k] = NearestEighth<8 * 127>(d, x[k]);
    for (size_t k = 0; k < K; ++k) r[k] = Rest(d, x[k], u[k].kd);
    EndStep(r);
    for (size_t k = 0; k < K; ++k) {
      // What is squared: without silent products nothing tiny, which is its own result.
      y[k] = r[k];
      if constexpr (!kHasSilentMul<V>) {
        y[k] = hn::IfThenZeroElse(MagnitudeBelow(d, r[k], 0x1p-30f), r[k]);
      }
      y2[k] = SilentMul(y[k], y[k]);
      const V c = FromBits(d, hn::ShiftLeft<20>(u[k].k));
      const V t = LookupEighth(d, sExpEighthsOverChord, u[k].k);
      less[k] = HiddenNegMulAdd(c, t, hn::Sub(one, c));  // 1 - s
    }
    EndStep(y2);
    EndStep(less);
    for (size_t k = 0; k < K; ++k) {
      const V w = AddExactProduct(hn::Set(d, 4.0f), y[k], y2[k]);
      p[k] = hn::Sub(hn::Set(d, -sExpm1LAPolynomial[0]),
                     SilentMul(hn::Set(d, sExpm1LAPolynomial[1]), w));
    }
    EndStep(p);
    for (size_t k = 0; k < K; ++k) {
      // Differences such that zeros keep their sign.
      p[k] = hn::Sub(SilentMul(y2[k], p[k]), r[k]);  // 1 - e^r
      out[k] = hn::Sub(SilentMul(hn::Sub(less[k], one), p[k]), less[k]);
    }
  }

  // x - k ln2/8, ln2/8 = 0x1.62ep-4 + 0x1.0bfcp-18: exact differences, but for the last.
  template <class D, class V>
  static HWY_INLINE V Rest(D d, V x, V kd) {
    const V r = SubExactProduct(kd, hn::Set(d, 0x1.62ep-28f), x);
#if HWY_TARGET == HWY_SSE4
    const V lower = hn::Sub(r, hn::Mul(kd, hn::Set(d, 0x1.0cp-42f)));
    const V less = hn::Sub(hn::Zero(d), kd);  // +0 for 0
    return hn::Sub(lower, hn::Mul(less, hn::Set(d, 0x1p-56f)));
#else
    return HiddenNegMulAdd(kd, hn::Set(d, 0x1.0bfcp-42f), r);
#endif
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
