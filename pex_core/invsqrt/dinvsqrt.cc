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
  using Rarity = RareOutside<double, 0x00100000, 0x7E1FFFFF>;  // not positive, normal and below 2^993
  static HWY_INLINE int Rare(double x, double* r) { return InvSqrtScalar(x, r); }
};

struct dInvSqrtEP : dInvSqrtCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return InverseRootEP(d, x);
  }
};

struct dInvSqrtLA : dInvSqrtCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return InverseRootLA(d, x);
  }
};

// In full from 20 correct bits on: their square is exact, and so is its product with x as a pair.
struct dInvSqrtHA : dInvSqrtCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V start = RootStart(d, x, dRootStart).inverse;
    const V y = FromBits(d, hn::And(Bits(d, start), SetBits(d, 0xFFFFFFFF00000000)));
    const Pair<V> p = TwoProduct(d, x, hn::Mul(y, y));
    const V e = hn::Sub(hn::Sub(hn::Set(d, 1), p.hi), p.lo);
    return hn::Add(y, hn::Mul(hn::Mul(y, e), Horner(d, e, dRootRest)));
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
