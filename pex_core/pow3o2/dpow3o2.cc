// x^(3/2) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/pow3o2/dpow3o2.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_hardware-inl.h"
#include "pex_core/_heap/real/root_square-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdPow3o2";

struct dPow3o2Common : Kernel<double> {
  using Rarity =
      RareOutside<double, 0x15600000, 0x6A995FFF>;  // results below 2^-1021 or next to overflow
  static HWY_INLINE int Rare(double x, double* r) { return Pow3o2Scalar(x, r); }
};

struct dPow3o2EP : dPow3o2Common {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V s[K];
    RootEP(d, x, s);
    for (size_t k = 0; k < K; ++k) r[k] = hn::Mul(x[k], s[k]);
  }
};

// The product with the processor's root: below 1.5 ulp.
struct dPow3o2LA : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return IsNegative(d, x);
  }
  template <class D, class V>
  static HWY_INLINE V Main(D, V x) {
    return hn::Mul(x, hn::Sqrt(x));
  }
  static HWY_INLINE int Rare(double x, double* r) { return Pow3o2Scalar(x, r); }
};

// x s + s (x - s^2)/2 for the rounded root s: products and remainder exact.
struct dPow3o2HA : dPow3o2Common {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto [m, exponent] = RootReduce(d, x);
    const V s = hn::Sqrt(m);
    const Pair<V> square = TwoProduct(d, s, s);
    const V rest = hn::Sub(hn::Sub(m, square.hi), square.lo);
    const Pair<V> p = TwoProduct(d, m, s);
    const V tail = hn::Add(p.lo, hn::Mul(hn::Mul(hn::Set(d, 0.5), s), rest));
    return CubedRootScale(d, hn::Add(p.hi, tail), exponent);
  }
};

PEX_UNARY(double, dPow3o2_26, dPow3o2EP)
PEX_UNARY(double, dPow3o2_50, dPow3o2LA)
PEX_UNARY(double, dPow3o2_HA, dPow3o2HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dPow3o2_26)
PEX_EXPORT_UNARY(double, dPow3o2_50)
PEX_EXPORT_UNARY(double, dPow3o2_HA)
}  // namespace pex
#endif
