// atan(x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atan/satan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan-inl.h"
#include "pex_core/atan/atan_plain-inl.h"
#include "pex_core/atan/atan_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAtan";

template <class D, size_t kVectors>
using sAtanPartEP = AtanRatioPart<kAtanRatioSingle, D, kVectors>;
using sAtanEP = AtanPlain<float, sAtanPartEP, AtanRatioRange>;

template <class D, size_t kVectors>
using sAtanPartLA = AtanHiddenPart<kAtanPlainSingleLA, D, kVectors>;
using sAtanLA = AtanPlain<float, sAtanPartLA>;

// kAtanHA, the first coefficient raised. The arctangent of 0x1.1ad646p-4 lies 0.13 ulp of double
// above the middle of two floats, and its nearest double is that middle: this adds 0.43 ulp there,
// and sends no other float to the wrong side.
inline constexpr double kAtanForSingle[] = {
    kAtanHA[0] + 0x1.4p-46, kAtanHA[1], kAtanHA[2], kAtanHA[3], kAtanHA[4], kAtanHA[5]};

// In double precision. Correctly rounded for all floats.
struct sAtanHA : Kernel<float, double> {
  static constexpr int kUnroll = 4;
  using Rarity = RareAbove<float, 0x7F7FFFFF>;  // infinity or NaN
  static HWY_INLINE int Rare(float x, float* r) { return sAtanRare(x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    const hn::Rebind<double, D> wide;
    VecOf<decltype(wide)> a[K], v[K];
    for (size_t k = 0; k < K; ++k) a[k] = hn::PromoteTo(wide, hn::Abs(x[k]));
    FullAtan(wide, a, kAtanForSingle, v);
    for (size_t k = 0; k < K; ++k) r[k] = hn::CopySignToAbs(hn::DemoteTo(d, v[k]), x[k]);
  }
};

PEX_UNARY(float, sAtan_11, sAtanEP)
PEX_UNARY(float, sAtan_21, sAtanLA)
PEX_UNARY(float, sAtan_HA, sAtanHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sAtan_11)
PEX_EXPORT_UNARY(float, sAtan_21)
PEX_EXPORT_UNARY(float, sAtan_HA)
}  // namespace pex
#endif
