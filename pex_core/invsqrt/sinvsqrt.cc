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
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return InverseRootEP(d, x);
  }
};

struct sInvSqrtLA : sInvSqrtCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return InverseRootLA(d, x);
  }
};

// One more step from the LA result, its square and the product with x as exact pairs. Correctly
// rounded for all floats.
struct sInvSqrtHA : sInvSqrtCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto [m, exponent] = RootReduce(d, x);
    const V y = InverseRootLA(d, m);
    const Pair<V> square = TwoProduct(d, y, y);
    const Pair<V> p = TwoProduct(d, m, square.hi);
    const V e = hn::Sub(hn::Sub(hn::Sub(hn::Set(d, 1), p.hi), p.lo), hn::Mul(m, square.lo));
    const V half = hn::Mul(hn::Set(d, 0.5f), y);
    return InverseRootScale(d, hn::Add(y, hn::Mul(half, e)), exponent);
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
