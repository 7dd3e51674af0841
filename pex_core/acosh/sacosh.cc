// acosh(x) = ln(x + sqrt(x^2 - 1)) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/acosh/sacosh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/inverse_hyperbolic-inl.h"
#include "pex_core/_heap/real/inverse_hyperbolic_short-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/acosh/acosh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAcosh";

template <typename Compute = float>
struct sAcoshCommon : Kernel<float, Compute> {
  using Rarity = RareOutside<float, 0x3F800000, 0x7F7FFFFF>;  // below 1, infinite, NaN
  static HWY_INLINE int Rare(float x, float* r) { return AcoshRare(x, r); }
};

template <bool kWide>
struct sAcoshAnyEP : sAcoshCommon<> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return InverseSingleEP<AcoshSum, kWide>(d, x);
  }
};

template <bool kWide>
struct sAcoshAnyLA : sAcoshCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    InverseSingleLA<SingleAcosh, kWide>(d, x, r);
  }
};

using RareOrLarge = RareOutside<float, 0x3F800000, BitsOfNumber(kLargeArgument<float>)>;

struct sAcoshEP : sAcoshAnyEP<false> {
  using Rarity = RareOrLarge;
  using Wide = sAcoshAnyEP<true>;
};

struct sAcoshLA : sAcoshAnyLA<false> {
  using Rarity = RareOrLarge;
  using Wide = sAcoshAnyLA<true>;
};

// Correctly rounded for all floats.
struct sAcoshSums {
  // In double precision.
  template <class D, class V>
  static HWY_INLINE V InFull(D d, V x) {
    const hn::Rebind<double, D> wide;
    return LogOfSumSingle<AcoshSum>(d, hn::PromoteTo(wide, x));
  }
#if HWY_TARGET != HWY_SSE4
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    const auto s = sLnOfRootShort<true>(d, x);
    return sLogRounded<sNaturalLog>(d, s, doubt);
  }
#endif
};

using sAcoshHA = ShortSumKernel<sAcoshSums, sAcoshCommon<ShortSumCompute>>;

PEX_UNARY(float, sAcosh_11, sAcoshEP)
PEX_UNARY(float, sAcosh_21, sAcoshLA)
PEX_UNARY(float, sAcosh_HA, sAcoshHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sAcosh_11)
PEX_EXPORT_UNARY(float, sAcosh_21)
PEX_EXPORT_UNARY(float, sAcosh_HA)
}  // namespace pex
#endif
