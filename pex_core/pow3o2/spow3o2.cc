// x^(3/2) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/pow3o2/spow3o2.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_hardware-inl.h"
#include "pex_core/_heap/real/root_square-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsPow3o2";

struct sPow3o2Common : Kernel<float> {
  using Rarity =
      RareOutside<float, 0x16000000, 0x6A214000>;  // results below 2^-124 or next to overflow
  static HWY_INLINE int Rare(float x, float* r) { return Pow3o2Scalar(x, r); }
};

struct sPow3o2EP : sPow3o2Common {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V s[K];
    RootEP(d, x, s);
    for (size_t k = 0; k < K; ++k) r[k] = hn::Mul(x[k], s[k]);
  }
};

// The product with the processor's root: below 1.5 ulp.
struct sPow3o2LA : Kernel<float> {
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return IsNegative(d, x);
  }
  template <class D, class V>
  static HWY_INLINE V Main(D, V x) {
    return hn::Mul(x, hn::Sqrt(x));
  }
  static HWY_INLINE int Rare(float x, float* r) { return Pow3o2Scalar(x, r); }
};

// x s + s (x - s^2)/2 for the rounded root s: products and remainder exact. Correctly rounded for
// all floats; with 1/2 itself, the one just below 4 and its like would be lost to a tie.
struct sPow3o2HA : sPow3o2Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto [m, exponent] = RootReduce(d, x);
    const V s = hn::Sqrt(m);
    const Pair<V> square = TwoProduct(d, s, s);
    const V rest = hn::Sub(hn::Sub(m, square.hi), square.lo);
    const Pair<V> p = TwoProduct(d, m, s);
    const V tail = hn::Add(p.lo, hn::Mul(hn::Mul(s, rest), hn::Set(d, 0x1.000002p-1f)));
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
