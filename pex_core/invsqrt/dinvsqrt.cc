// 1/sqrt(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/invsqrt/dinvsqrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_scalar.h"
#include "pex_core/_heap/real/root_square-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdInvSqrt";

struct dInvSqrtCommon : Kernel<double> {
  using Rarity = RareOutside<double, 0x00100000, 0x7FEFFFFF>;  // not positive, normal and finite
  static HWY_INLINE int Rare(double x, double* r) { return InvSqrtScalar(x, r); }
};

struct dInvSqrtEP : dInvSqrtCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    InverseRootEP(d, x, r);
  }
};

struct dInvSqrtLA : dInvSqrtCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    InverseRootLA(d, x, r);
  }
};

// In full from 20 correct bits on: their square is exact, and so is its product with x as a pair.
struct dInvSqrtHA : dInvSqrtCommon {
  using Rarity = RareOutside<double, 0x02100000, 0x7E0FFFFF>;  // 2^-990 to 2^993, for TwoProduct
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V y[K], e[K];
    RootStart<false>(d, x, dRootStart, y, y);
    for (size_t k = 0; k < K; ++k) {
      y[k] = FromBits(d, hn::And(Bits(d, y[k]), SetBits(d, 0xFFFFFFFF00000000)));
      const Pair<V> p = TwoProduct(d, x[k], hn::Mul(y[k], y[k]));
      e[k] = hn::Sub(hn::Sub(hn::Set(d, 1), p.hi), p.lo);
    }
    RootCorrect(d, e, y);
    for (size_t k = 0; k < K; ++k) r[k] = y[k];
  }
};

PEX_UNARY(double, dInvSqrt_26, dInvSqrtEP)
PEX_UNARY(double, dInvSqrt_50, dInvSqrtLA)
PEX_UNARY(double, dInvSqrt_HA, dInvSqrtHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dInvSqrt_26)
PEX_EXPORT_UNARY(double, dInvSqrt_50)
PEX_EXPORT_UNARY(double, dInvSqrt_HA)
}  // namespace pex
#endif
