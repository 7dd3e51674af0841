// ln(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/ln/dln.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_heap/real/log_stretch-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/ln/ln_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdLn";

struct dLnCommon : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  using Rarity = RareOutside<double, 0x00100000, 0x7FEFFFFF>;  // not positive, normal and finite
  static HWY_INLINE int Rare(double x, double* r) { return dLnScalar(x, r); }
};

// Numbers from 1.5 * 2^1023 on are rare too: the exponent next to them has no room above it.
struct dLnEP : dLnCommon {
  using Rarity = LogStretchRarity<0x7FE783FF>;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 2 : 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    LogStretchEP<NaturalLog>(d, x, r);
  }
};

struct dLnHA : dLnCommon {
  using Rarity = LogShortRarity<0x7FE7FFFF>;
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    FullLog<LongNaturalLog>(d, x, r);
  }
};

struct dLnLA : dLnCommon {
  using Rarity = LogStretchRarity<0x7FE783FF>;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 4 : 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D, const V (&x)[K], V (&r)[K]) {
    LnPart<D> parts[K];
    SomeInTurn<HWY_MIN(K, 2)>(parts, x, r);
  }
};

PEX_UNARY(double, dLn_26, dLnEP)
PEX_UNARY(double, dLn_50, dLnLA)
PEX_UNARY(double, dLn_HA, dLnHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dLn_26)
PEX_EXPORT_UNARY(double, dLn_50)
PEX_EXPORT_UNARY(double, dLn_HA)
}  // namespace pex
#endif
