// e^x in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/exp/sexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_heap/real/short_sum-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/exp/exp_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsExp";

template <typename Compute = float>
struct sExpCommon : Kernel<float, Compute> {
  using Rarity = RareAbove<float, 0x42AE0000>;  // |x| > 87
  static HWY_INLINE int Rare(float x, float* r) { return sExpScalar(x, r); }
};

// Silent products need no more; on the other levels x has 2^-100 added where there is a product
// that may underflow, which changes no result.
template <class D, class V>
HWY_INLINE V AboveUnderflow(D d, V x) {
  if constexpr (kHasSilentMul<V>) return x;
  return hn::Add(x, hn::Set(d, 0x1p-100f));
}

// n - 0x1.8p19 - 23/32, rounded once: seven times a number.
template <class D, class V>
HWY_INLINE V LessShifterAndVertex(D d, V n) {
#if HWY_TARGET == HWY_SSE4
  return hn::Sub(hn::Sub(n, hn::Set(d, 0x1.8p19f)), hn::Set(d, 0.71875f));
#else
  constexpr float kSeventh = 0x1.b6db88p16f;
  static_assert(7 * double{kSeventh} == 0x1.8p19 + 0.71875);
  return SubExactProduct(hn::Set(d, 7.0f), hn::Set(d, kSeventh), n);
#endif
}

// 2^(k/8) from a table, times 2^(f/8) as (f/16 + 23/32)^2 + c, over its value for f = 0, |f| <=
// 1/2. 16.59 correct bits (-0x1.5b2754p+6).
struct sExpEP : sExpCommon<> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V y = SilentMul(AboveUnderflow(d, x), hn::Set(d, 0x1.715476p-1f));  // 1/(2 ln2)
    const V kf = hn::Add(y, hn::Set(d, 0x1.8p19f));  // leaves the rounded integer in the low bits
    const auto k = Bits(d, kf);
    const V g = hn::Sub(y, LessShifterAndVertex(d, kf));
    const V s = LookupEighth(d, reinterpret_cast<const float*>(sExpShiftedEighthsEP), k);
    const V power = FromBits(d, hn::Add(Bits(d, s), hn::ShiftLeft<20>(k)));
    return hn::Mul(power, hn::Add(hn::Mul(g, g), hn::Set(d, 0x1.0a4p-1f)));
  }
};

// y 2^(k >> 3) for kd = k/8, without an underflow.
template <class D, class V>
HWY_INLINE V ScaleByEighths(D d, V y, [[maybe_unused]] V kd, [[maybe_unused]] BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  return V{_mm512_scalef_ps(y.raw, kd.raw)};
#else
  const auto n = hn::And(hn::ShiftLeft<20>(k), SetBits(d, 0xFF800000));
  return FromBits(d, hn::Add(Bits(d, y), n));
#endif
}

// 2^(j/8) from a table, times a cubic in |r| <= ln2/16, times 2^n. Adding 2^-36 changes no result
// but ties; it keeps the products of tiny numbers from underflow. Largest error 1.16 ulp
// (0x1.e05b36p+1).
struct sExpLA : sExpCommon<> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V shifter = hn::Set(d, 0x1.8p20f);  // leaves the rounded integer in the low bits
    const V y = hn::Add(x, hn::Set(d, 0x1p-36f));
    const V kf = hn::Add(hn::Mul(y, hn::Set(d, 0x1.715476p+0f)), shifter);  // 1/ln2
    const V kd = hn::Sub(kf, shifter);
    const auto k = Bits(d, kf);
    // ln2 = 0x1.62ep-1 + 0x1.0bfbe8p-15, the product of k and the first part exact.
    const V r = hn::Sub(SubExactProduct(kd, hn::Set(d, 0x1.62ep-1f), y),
                        hn::Mul(kd, hn::Set(d, 0x1.0bfbe8p-15f)));
    const V t = LookupEighth(d, sExpEighths, k);
    const V c =
        hn::Add(hn::Mul(hn::Set(d, sExpLAPolynomial[1]), r), hn::Set(d, sExpLAPolynomial[0]));
    const V p = hn::Add(hn::Mul(hn::Mul(c, r), r), r);
    return ScaleByEighths(d, hn::Add(hn::Mul(t, p), t), kd, k);
  }
};

// In double precision, correctly rounded for all floats.
template <class D, class V>
HWY_INLINE V sExpWide(D d, V x) {
  const hn::Rebind<double, D> wide;
  const auto [s, p] = ExpReduceWide(wide, hn::PromoteTo(wide, x));
  return hn::DemoteTo(d, hn::Add(hn::Mul(s, p), s));
}

#if HWY_TARGET != HWY_SSE4
// 2^(j/2^kLog) as a float, what it lacks in relation to it, and a polynomial for half a step.
#if HWY_TARGET == HWY_AVX3
struct sExpSteps {
  static constexpr int kLog = 5;
  static constexpr float kError = 0x1.4p-36f;
  static constexpr auto& kPower = sExpThirtySeconds;
  static constexpr auto& kRest = sExpThirtySecondsRest;
  static constexpr auto& kPolynomial = sExpThirtySecondPolynomial;
  template <class D>
  static HWY_INLINE VecOf<D> LookUp(D, const float* table, BitsOf<D> k) {
    return VecOf<D>{
        _mm512_permutex2var_ps(_mm512_load_ps(table), k.raw, _mm512_load_ps(table + 16))};
  }
};
#else
struct sExpSteps {
  static constexpr int kLog = 4;
  static constexpr float kError = 0x1.4p-34f;
  static constexpr auto& kPower = sExpSixteenths;
  static constexpr auto& kRest = sExpSixteenthsRest;
  static constexpr auto& kPolynomial = sExpSixteenthPolynomial;
  template <class D>
  static HWY_INLINE VecOf<D> LookUp(D, const float* table, BitsOf<D> k) {
    const __m256 lower = _mm256_permutevar8x32_ps(_mm256_load_ps(table), k.raw);
    const __m256 upper = _mm256_permutevar8x32_ps(_mm256_load_ps(table + 8), k.raw);
    const __m256 bit = _mm256_castsi256_ps(_mm256_slli_epi32(k.raw, 28));
    return VecOf<D>{_mm256_blendv_ps(lower, upper, bit)};
  }
};
#endif
#endif

// Correctly rounded for all floats. The power of the table t (1 + rest) times 1 + r + q, q standing
// for e^r - 1 - r and the rests, as a sum of two floats that errs by less than t kError.
struct sExpSums {
  template <class D, class V>
  static HWY_INLINE V InFull(D d, V x) {
    return sExpWide(d, x);
  }
#if HWY_TARGET != HWY_SSE4
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    using S = sExpSteps;
    constexpr float kStep = 1.0f / (1 << S::kLog);
    const V shifter = hn::Set(d, 0x1.8p23f * kStep);
    const V kf = HiddenMulAdd(x, hn::Set(d, 0x1.715476p+0f), shifter);  // 1/ln2
    const V kd = hn::Sub(kf, shifter);
    const auto k = Bits(d, kf);
    const V r0 = SubExactProduct(kd, hn::Set(d, 0x1.62e43p-1f), x);  // ln2
    const V rest = HiddenNegMulAdd(kd, hn::Set(d, -0x1.05c61p-29f), S::LookUp(d, S::kRest, k));
    const V r = hn::Add(r0, rest);
    // The lower bound of the sum; no tiny square.
    const V r2 = HiddenMulAdd(r, r, hn::Set(d, -2 * S::kError));
    const auto c = [&](int i) HWY_ATTR { return hn::Set(d, S::kPolynomial[i]); };
    const V q = HiddenMulAdd(r2, HiddenMulAdd(HiddenMulAdd(c(2), r, c(1)), r, c(0)), rest);
    const V t = S::LookUp(d, S::kPower, k);
    // t r0 cut at 2^-23, so that its sum with t is exact.
    const V cut = hn::Set(d, 1.5f);
    const V upper = hn::Sub(HiddenMulAdd(t, r0, cut), cut);
    const V low = HiddenMulAdd(t, q, HiddenMulSub(t, r0, upper));
    const V high = hn::Add(t, upper);
    const auto least = Bits(d, hn::Add(high, low));
    const auto most = Bits(d, hn::Add(high, HiddenMulAdd(t, hn::Set(d, 2 * S::kError), low)));
    doubt = hn::Xor(least, most);
    const auto n = hn::And(hn::ShiftLeft<23 - S::kLog>(k), SetBits(d, 0xFF800000));
    return FromBits(d, hn::Add(least, n));
  }
#endif
};

struct sExpHA : ShortSumKernel<sExpSums, sExpCommon<ShortSumCompute>> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 8 : HWY_TARGET == HWY_AVX2 ? 3 : 4;
};

PEX_UNARY(float, sExp_11, sExpEP)
PEX_UNARY(float, sExp_21, sExpLA)
PEX_UNARY(float, sExp_HA, sExpHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sExp_11)
PEX_EXPORT_UNARY(float, sExp_21)
PEX_EXPORT_UNARY(float, sExp_HA)
}  // namespace pex
#endif
