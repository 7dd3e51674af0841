// x^(3/2) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/pow3o2/spow3o2.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_scalar.h"
#include "pex_core/_heap/real/root_square-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsPow3o2";

struct sPow3o2Common : Kernel<float> {
  using Rarity = RareOutside<float, 0x16000000, 0x6A214000>;  // results below 2^-124 or next to overflow
  static HWY_INLINE int Rare(float x, float* r) { return Pow3o2Scalar(x, r); }
};

struct sPow3o2EP : sPow3o2Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return hn::Mul(x, RootEP(d, x));
  }
};

struct sPow3o2LA : sPow3o2Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return hn::Mul(x, RootLA(d, x));
  }
};

// x s + s (x - s^2)/2 for the rounded root s: products and remainder exact. Correctly rounded for all
// floats.
struct sPow3o2HA : sPow3o2Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto [m, exponent] = RootReduce(d, x);
    const V s = hn::Sqrt(m);
    const Pair<V> square = TwoProduct(d, s, s);
    const V rest = hn::Sub(hn::Sub(m, square.hi), square.lo);
    const Pair<V> p = TwoProduct(d, m, s);
    const V tail = hn::Add(p.lo, hn::Mul(hn::Mul(hn::Set(d, 0.5f), s), rest));
    return CubedRootScale(d, hn::Add(p.hi, tail), exponent);
  }
};

PEX_UNARY(float, sPow3o2_11, sPow3o2EP)
PEX_UNARY(float, sPow3o2_21, sPow3o2LA)
PEX_UNARY(float, sPow3o2_HA, sPow3o2HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sPow3o2_11)
PEX_EXPORT_UNARY(float, sPow3o2_21)
PEX_EXPORT_UNARY(float, sPow3o2_HA)
}  // namespace pex
#endif
