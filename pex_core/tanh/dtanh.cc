// The hyperbolic tangent in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tanh/dtanh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/tanh/tanh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdTanh";

struct dTanhCommon : Kernel<double> {
  using Rarity = RareAbove<double, 0x7FEFFFFF>;  // infinities and NaN
  static HWY_INLINE int Rare(double x, double* r) { return TanhRare(x, r); }
};

struct dTanhEP : dTanhCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V y[K];
    TanhOfMagnitude<Points::kRough>(d, x, y, dTanhEPPolynomial);
    for (size_t k = 0; k < K; ++k) out[k] = hn::CopySignToAbs(y[k], x[k]);
  }
};

struct dTanhLA : dTanhCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V y[K];
    TanhOfMagnitude<Points::kAccurate>(d, x, y, dTanhLAPolynomial);
    for (size_t k = 0; k < K; ++k) out[k] = hn::CopySignToAbs(y[k], x[k]);
  }
};

// Both sides of the quotient as pairs. Tiny arguments are their own results; products with them
// would underflow.
struct dTanhHA : dTanhCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    MaskOf<D> tiny[K];
    TanhSplit<V> u[K];
    V low[K];
    for (size_t k = 0; k < K; ++k) {
      tiny[k] = MagnitudeBelow(d, x[k], 0x1p-54);
      u[k] = SplitForTanh<Points::kAccurate>(d, hn::IfThenZeroElse(tiny[k], x[k]));
    }
    for (size_t k = 0; k < K; ++k) {
      const V h2 = hn::Mul(u[k].h, u[k].h);  // tanh h - h
      const V cubic = hn::Mul(hn::Mul(u[k].h, h2), Horner(d, h2, dTanhHAPolynomial));
      low[k] = hn::Add(cubic, u[k].h_rest);
    }
    for (size_t k = 0; k < K; ++k) {
      const V half = hn::Set(d, 0.5), h = u[k].h;
      const Pair<V> a = FastTwoSum(u[k].half_power, hn::Neg(half));
      const Pair<V> b = FastTwoSum(u[k].half_power, half);
      const Pair<V> bh = TwoProduct(d, b.hi, h), ah = TwoProduct(d, a.hi, h);
      const Pair<V> above = FastTwoSum(a.hi, bh.hi), below = FastTwoSum(b.hi, ah.hi);
      const V above_rest =
          hn::Add(hn::Add(hn::Add(above.lo, bh.lo), hn::Add(a.lo, hn::Mul(b.lo, h))),
                  hn::Mul(b.hi, low[k]));
      const V below_rest =
          hn::Add(hn::Add(hn::Add(below.lo, ah.lo), hn::Add(b.lo, hn::Mul(a.lo, h))),
                  hn::Mul(a.hi, low[k]));
      const V inverse = hn::Div(hn::Set(d, 1.0), below.hi);
      const V q = hn::Mul(above.hi, inverse);
      const Pair<V> p = TwoProduct(d, q, below.hi);
      const V remainder = hn::Add(hn::Sub(hn::Sub(above.hi, p.hi), p.lo),
                                  hn::Sub(above_rest, hn::Mul(q, below_rest)));
      const V y = hn::Add(q, hn::Mul(remainder, inverse));
      out[k] = hn::IfThenElse(tiny[k], x[k], hn::CopySignToAbs(y, x[k]));
    }
  }
};

PEX_UNARY(double, dTanh_26, dTanhEP)
PEX_UNARY(double, dTanh_50, dTanhLA)
PEX_UNARY(double, dTanh_HA, dTanhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dTanh_26)
PEX_EXPORT_UNARY(double, dTanh_50)
PEX_EXPORT_UNARY(double, dTanh_HA)
}  // namespace pex
#endif
