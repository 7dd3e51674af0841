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

struct sAtan2Common : Kernel<float>, sAtan2Domain, sAtan2Rare {
  static constexpr int kArguments = 2;
};

struct sAtan2EP : sAtan2Common {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    UnitAtan2<true>(d, y, x, kAtanUnitSingleEP, r);
  }
};

struct sAtan2LA : sAtan2Common {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    UnitAtan2<false>(d, y, x, kAtan2SingleLA, r);
  }
};

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
