// atan(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atan/datan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/atan/atan_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAtan";

struct dAtanCommon : Kernel<double> {
  using Rarity = RareAbove<double, 0x783FFFFF>;  // |x| >= 2^900, where 1/x nears underflow
  static HWY_INLINE int Rare(double x, double* r) { return dAtanRare(x, r); }
};

template <class D, class V, size_t K, size_t N>
HWY_INLINE void SignedAtan(D d, const V (&x)[K], const double (&c)[N], V (&r)[K]) {
  AtanThird<V> third[K];
  V v[K];
  for (size_t k = 0; k < K; ++k) {
    third[k] = AtanThirdOf(d, hn::Abs(x[k]));
  }
  PlainAtan<false>(d, third, c, v);
  for (size_t k = 0; k < K; ++k) r[k] = hn::CopySignToAbs(v[k], x[k]);
}

struct dAtanEP : dAtanCommon {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    SignedAtan(d, x, kAtanEP, r);
  }
};

struct dAtanLA : dAtanCommon {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    SignedAtan(d, x, kAtanLA, r);
  }
};

struct dAtanHA : dAtanCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V a[K], v[K];
    for (size_t k = 0; k < K; ++k) a[k] = hn::Abs(x[k]);
    FullAtan(d, a, kAtanHA, v);
    for (size_t k = 0; k < K; ++k) r[k] = hn::CopySignToAbs(v[k], x[k]);
  }
};

PEX_UNARY(double, dAtan_26, dAtanEP)
PEX_UNARY(double, dAtan_50, dAtanLA)
PEX_UNARY(double, dAtan_HA, dAtanHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dAtan_26)
PEX_EXPORT_UNARY(double, dAtan_50)
PEX_EXPORT_UNARY(double, dAtan_HA)
}  // namespace pex
#endif
