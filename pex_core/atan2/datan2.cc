// atan2(y, x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atan2/datan2.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan2_domain-inl.h"
#include "pex_core/_heap/real/atan2_full-inl.h"
#include "pex_core/_heap/real/atan2_plain-inl.h"
#include "pex_core/_heap/real/atan_scalar.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAtan2";

struct dAtan2Common : Kernel<double>, Atan2Domain {
  static constexpr int kArguments = 2;
  static HWY_INLINE int Rare(double y, double x, double* r) { return dAtan2Scalar(y, x, r); }
};

struct dAtan2WideEP : dAtan2Common {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    OctantAtan2EP<true>(d, y, x, r);
  }
};

struct dAtan2EP : Kernel<double>, Atan2NarrowDomain {
  static constexpr int kArguments = 2;
  static constexpr int kUnroll = 8;
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  using Wide = dAtan2WideEP;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    OctantAtan2EP<false>(d, y, x, r);
  }
};

struct dAtan2WideLA : dAtan2Common {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    OctantAtan2LA<true>(d, y, x, r);
  }
};

struct dAtan2LA : Kernel<double>, Atan2ModestDomain {
  static constexpr int kArguments = 2;
  static constexpr int kUnroll = 8;
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  using Wide = dAtan2WideLA;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    OctantAtan2LA<false>(d, y, x, r);
  }
};

struct dAtan2WideHA : dAtan2Common {
  static constexpr int kUnroll = 2;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    FullAtan2<true>(d, y, x, r);
  }
};

struct dAtan2HA : Kernel<double>, Atan2ModestDomain {
  static constexpr int kArguments = 2;
  static constexpr int kUnroll = 8;
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  using Wide = dAtan2WideHA;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    FullAtan2<false>(d, y, x, r);
  }
};

PEX_BINARY(double, dAtan2_26, dAtan2EP)
PEX_BINARY(double, dAtan2_50, dAtan2LA)
PEX_BINARY(double, dAtan2_HA, dAtan2HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(double, dAtan2_26)
PEX_EXPORT_BINARY(double, dAtan2_50)
PEX_EXPORT_BINARY(double, dAtan2_HA)
}  // namespace pex
#endif
