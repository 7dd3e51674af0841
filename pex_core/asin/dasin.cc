// asin(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/asin/dasin.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/asin-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/asin/asin_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAsin";

struct dAsinCommon : Kernel<double> {
  using Rarity = AboveOne<double>;
  static HWY_INLINE int Rare(double x, double* r) { return AsinRare(x, r); }
};

struct dAsinEP : dAsinCommon {
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 3 : 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainAsin<kAsinEP>(d, x, r);
  }
};

struct dAsinLA : dAsinCommon {
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 3 : 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainAsin<kAsinLA>(d, x, r);
  }
};

struct dAsinHA : dAsinCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    FullAsin(d, x, r);
  }
};

PEX_UNARY(double, dAsin_26, dAsinEP)
PEX_UNARY(double, dAsin_50, dAsinLA)
PEX_UNARY(double, dAsin_HA, dAsinHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dAsin_26)
PEX_EXPORT_UNARY(double, dAsin_50)
PEX_EXPORT_UNARY(double, dAsin_HA)
}  // namespace pex
#endif
