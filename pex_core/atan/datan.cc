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
  using Rarity = RareAbove<double, 0x7E6FFFFF>;  // |x| >= 2^1000, where 1/x nears underflow
  static HWY_INLINE int Rare(double x, double* r) { return dAtanRare(x, r); }
};

template <class D, class V, size_t K>
HWY_INLINE void Magnitudes(D, const V (&x)[K], V (&a)[K]) {
  for (size_t k = 0; k < K; ++k) a[k] = hn::Abs(x[k]);
}

template <class D, class V, size_t K>
HWY_INLINE void PutSigns(D, const V (&v)[K], const V (&x)[K], V (&r)[K]) {
  for (size_t k = 0; k < K; ++k) r[k] = hn::CopySignToAbs(v[k], x[k]);
}

struct dAtanEP : dAtanCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V a[K], v[K];
    Magnitudes(d, x, a);
    PlainAtan(d, a, kAtanEP, v);
    PutSigns(d, v, x, r);
  }
};

struct dAtanLA : dAtanCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V a[K], v[K];
    Magnitudes(d, x, a);
    PlainAtan(d, a, kAtanLA, v);
    PutSigns(d, v, x, r);
  }
};

struct dAtanHA : dAtanCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V a[K], v[K];
    Magnitudes(d, x, a);
    FullAtan(d, a, v);
    PutSigns(d, v, x, r);
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
