// atan2(y, x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atan2/satan2.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan2_domain-inl.h"
#include "pex_core/_heap/real/atan2_plain-inl.h"
#include "pex_core/_heap/real/atan_scalar.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAtan2";

struct sAtan2Rare {
  static HWY_INLINE int Rare(float y, float x, float* r) {
    *r = _pexsatan2_scalar(y, x);
    return PEX_STATUS_OK;
  }
};

template <auto& kC, bool kFree, bool kTiny, class Domain, int kVectors>
struct sAtan2Unit : Kernel<float>, Domain, sAtan2Rare {
  static constexpr int kArguments = 2;
  static constexpr int kUnroll = kVectors;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    UnitAtan2<kC, kFree, kTiny>(d, y, x, r);
  }
};

template <auto& kC, bool kFree>
struct sAtan2Plain : sAtan2Unit<kC, kFree, false, sAtan2ModestDomain, 8> {
  using Wide = sAtan2Unit<kC, kFree, true, sAtan2Domain, 4>;
};
using sAtan2EP = sAtan2Plain<kAtanUnitSingleEP, true>;
using sAtan2LA = sAtan2Plain<kAtan2SingleLA, false>;

// In double precision, for all numbers from 2^-125 on: below 0.5094 ulp.
struct sAtan2HA : Kernel<float>, sAtan2WideDomain, sAtan2Rare {
  static constexpr int kArguments = 2;
  static constexpr int kUnroll = 8;
  static constexpr int kRestUnroll = 2;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    SingleAtan2HA(d, y, x, r);
  }
};

PEX_BINARY(float, sAtan2_11, sAtan2EP)
PEX_BINARY(float, sAtan2_21, sAtan2LA)
PEX_BINARY(float, sAtan2_HA, sAtan2HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(float, sAtan2_11)
PEX_EXPORT_BINARY(float, sAtan2_21)
PEX_EXPORT_BINARY(float, sAtan2_HA)
}  // namespace pex
#endif
