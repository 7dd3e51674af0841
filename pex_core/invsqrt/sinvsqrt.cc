// 1/sqrt(x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/invsqrt/sinvsqrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_scalar.h"
#include "pex_core/_heap/real/root_square-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsInvSqrt";

struct sInvSqrtCommon : Kernel<float> {
  using Rarity = RareOutside<float, 0x00800000, 0x7F7FFFFF>;  // not positive, normal and finite
  static HWY_INLINE int Rare(float x, float* r) { return InvSqrtScalar(x, r); }
};

struct sInvSqrtEP : sInvSqrtCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    InverseRootEP(d, x, r);
  }
};

struct sInvSqrtLA : sInvSqrtCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    InverseRootLA(d, x, r);
  }
};

// One more step from the LA result, its square and the product with x as exact pairs. Correctly
// rounded for all floats.
struct sInvSqrtHA : sInvSqrtCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V m[K], y[K];
    BitsOf<D> exponent[K];
    for (size_t k = 0; k < K; ++k) {
      const RootReduced<D> reduced = RootReduce(d, x[k]);
      m[k] = reduced.m;
      exponent[k] = reduced.exponent;
    }
    InverseRootLA(d, m, y);
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> square = TwoProduct(d, y[k], y[k]);
      const Pair<V> p = TwoProduct(d, m[k], square.hi);
      const V e = hn::Sub(hn::Sub(hn::Sub(hn::Set(d, 1), p.hi), p.lo), hn::Mul(m[k], square.lo));
      // y (1 - e)^(-1/2): the square counts where e is largest.
      const V half = hn::Mul(hn::Set(d, 0.5f), y[k]);
      const V step = hn::Add(e, hn::Mul(hn::Mul(hn::Set(d, 0.75f), e), e));
      r[k] = InverseRootScale(d, hn::Add(y[k], hn::Mul(half, step)), exponent[k]);
    }
  }
};

PEX_UNARY(float, sInvSqrt_11, sInvSqrtEP)
PEX_UNARY(float, sInvSqrt_21, sInvSqrtLA)
PEX_UNARY(float, sInvSqrt_HA, sInvSqrtHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sInvSqrt_11)
PEX_EXPORT_UNARY(float, sInvSqrt_21)
PEX_EXPORT_UNARY(float, sInvSqrt_HA)
}  // namespace pex
#endif
