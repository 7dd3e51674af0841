// log10(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/log10/dlog10.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_heap/real/log_stretch-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/ln/ln_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdLog10";

struct dLog10Common : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  using Rarity = RareOutside<double, 0x00100000, 0x7FEFFFFF>;  // not positive, normal and finite
  static HWY_INLINE int Rare(double x, double* r) { return dLog10Scalar(x, r); }
};

// Numbers from 1.5 * 2^1023 on are rare too: the exponent next to them has no room above it.
struct dLog10EP : dLog10Common {
  using Rarity = LogStretchRarity<0x7FE783FF>;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 2 : 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    LogStretchEP<DecimalLog>(d, x, r);
  }
};

struct dLog10LA : dLog10Common {
  using Rarity = LogShortRarity<0x7FE7FFFF>;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : HWY_TARGET == HWY_AVX2 ? 16 : 4;
  static constexpr int kRestUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    Log10LA(d, x, r);
  }
};

struct dLog10HA : dLog10Common {
  using Rarity = LogShortRarity<0x7FE7FFFF>;
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    FullLog<LongDecimalLog>(d, x, r);
  }
};

PEX_UNARY(double, dLog10_26, dLog10EP)
PEX_UNARY(double, dLog10_50, dLog10LA)
PEX_UNARY(double, dLog10_HA, dLog10HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dLog10_26)
PEX_EXPORT_UNARY(double, dLog10_50)
PEX_EXPORT_UNARY(double, dLog10_HA)
}  // namespace pex
#endif
