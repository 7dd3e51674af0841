// asinh(x) = sign(x) ln(|x| + sqrt(1 + x^2)) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/asinh/sasinh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/inverse_hyperbolic-inl.h"
#include "pex_core/_heap/real/inverse_hyperbolic_short-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/asinh/asinh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAsinh";

template <typename Compute = float>
struct sAsinhCommon : Kernel<float, Compute> {
  using Rarity = RareAbove<float, 0x7F7FFFFF>;  // infinities, NaN
  static HWY_INLINE int Rare(float x, float* r) { return AsinhRare(x, r); }
};

// A tiny x is its own result to the tier's accuracy.
inline constexpr float kTiny = 0x1p-13f, kTinyEP = 0x1p-6f;

template <bool kWide>
struct sAsinhAnyEP : sAsinhCommon<> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V y = InverseSingleEP<AsinhSum, kWide>(d, MagnitudeUnlessTiny(d, x, kTinyEP));
    return SignedUnlessTiny(d, x, y, kTinyEP);
  }
};

template <bool kWide>
struct sAsinhAnyLA : sAsinhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V a[K], y[K];
    for (size_t k = 0; k < K; ++k) a[k] = MagnitudeUnlessTiny(d, x[k], kTiny);
    InverseSingleLA<SingleAsinh, kWide>(d, a, y);
    for (size_t k = 0; k < K; ++k) r[k] = SignedUnlessTiny(d, x[k], y[k], kTiny);
  }
};

using RareOrLarge = RareAbove<float, BitsOfNumber(kLargeArgument<float>)>;

struct sAsinhEP : sAsinhAnyEP<false> {
  using Rarity = RareOrLarge;
  using Wide = sAsinhAnyEP<true>;
};

struct sAsinhLA : sAsinhAnyLA<false> {
  using Rarity = RareOrLarge;
  using Wide = sAsinhAnyLA<true>;
};

// Correctly rounded for all floats.
struct sAsinhSums {
  // In double precision.
  template <class D, class V>
  static HWY_INLINE V InFull(D d, V x) {
    const hn::Rebind<double, D> wide;
    const V a = MagnitudeUnlessTiny(d, x, kTiny);
    const V y = LogOfSumSingle<AsinhSum>(d, hn::PromoteTo(wide, a));
    return SignedUnlessTiny(d, x, y, kTiny);
  }
#if HWY_TARGET != HWY_SSE4
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    const auto s = sLnOfRootShort<false>(d, MagnitudeUnlessTiny(d, x, kTiny));
    const V least = sLogRounded<sNaturalLog>(d, s, doubt);
    return SignedUnlessTiny(d, x, least, kTiny);
  }
#endif
};

using sAsinhHA = ShortSumKernel<sAsinhSums, sAsinhCommon<ShortSumCompute>>;

PEX_UNARY(float, sAsinh_11, sAsinhEP)
PEX_UNARY(float, sAsinh_21, sAsinhLA)
PEX_UNARY(float, sAsinh_HA, sAsinhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sAsinh_11)
PEX_EXPORT_UNARY(float, sAsinh_21)
PEX_EXPORT_UNARY(float, sAsinh_HA)
}  // namespace pex
#endif
