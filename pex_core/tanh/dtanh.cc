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

template <class Groups = LargeGroups<double>>
struct dTanhCommon : Groups {
  using Rarity = RareAbove<double, 0x7FEFFFFF>;  // infinities and NaN
  static HWY_INLINE int Rare(double x, double* r) { return TanhRare(x, r); }
};

// Points and h in one part: the offsets of the points are below 2^-34.
struct dTanhEP : dTanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V half_power[K], h[K];
    for (size_t k = 0; k < K; ++k) {
      const V m = TanhMagnitude(d, x[k]);
      const auto [step, number] = ToNearestStep(d, m, 0x1.71547652b82fep+4);
      const auto power = EighthLookup<D>(step).template Pattern<dHyperbolicTangentGrow>();
      half_power[k] = FromBits(d, hn::Add(power, hn::ShiftLeft<49>(step)));
      h[k] = hn::Sub(m, hn::Mul(number, hn::Set(d, 0x1.62e42fefa39efp-5)));
    }
    for (size_t k = 0; k < K; ++k) {
      const V half = hn::Set(d, 0.5), cubic = hn::Set(d, dTanhEPPolynomial[0]);
      const V t = hn::Add(hn::Mul(h[k], hn::Mul(hn::Mul(h[k], h[k]), cubic)), h[k]);
      const V a = hn::Sub(half_power[k], half), b = hn::Add(half_power[k], half);
      const V y = hn::Div(hn::Add(a, hn::Mul(b, t)), hn::Add(b, hn::Mul(a, t)));
      out[k] = TanhResult(y, x[k]);
    }
  }
};

struct dTanhLA : dTanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V m[K], y[K];
    for (size_t k = 0; k < K; ++k) m[k] = TanhMagnitude(d, x[k]);
    TanhOfMagnitudeLA(d, m, y);
    for (size_t k = 0; k < K; ++k) out[k] = TanhResult(y[k], x[k]);
  }
};

// Both sides of the quotient as pairs.
struct dTanhHA : dTanhCommon<Kernel<double>> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    TanhSplit<V> u[K];
    V low[K];
    for (size_t k = 0; k < K; ++k) u[k] = SplitForTanh(d, TanhMagnitude(d, x[k]));
    for (size_t k = 0; k < K; ++k) {
      const V h2 = hn::Mul(u[k].h, u[k].h);  // tanh h - h
      const V cubic = hn::Mul(hn::Mul(u[k].h, h2), Horner(d, h2, dTanhPolynomial));
      low[k] = hn::Add(cubic, u[k].h_rest);
    }
    for (size_t k = 0; k < K; ++k) {
      const V half = hn::Set(d, 0.5), h = u[k].h;
      const Pair<V> a = FastTwoSum(u[k].half_power, hn::Neg(half));
      const Pair<V> b = FastTwoSum(u[k].half_power, half);
      const Pair<V> bh = TwoProduct(d, b.hi, h), ah = TwoProduct(d, a.hi, h);
      const Pair<V> above = FastTwoSum(a.hi, bh.hi), wide = FastTwoSum(b.hi, ah.hi);
      const V above_rest =
          hn::Add(hn::Add(hn::Add(above.lo, bh.lo), hn::Add(a.lo, hn::Mul(b.lo, h))),
                  hn::Mul(b.hi, low[k]));
      const V wide_rest = hn::Add(hn::Add(hn::Add(wide.lo, ah.lo), hn::Add(b.lo, hn::Mul(a.lo, h))),
                                  hn::Mul(a.hi, low[k]));
      const Pair<V> below = FastTwoSum(wide.hi, wide_rest);
      // The difference of the quotient from q, a 2^-11th of it, by its remainder.
      const V inverse = hn::Div(hn::Set(d, 1.0), below.hi);
      const V q = hn::Mul(above.hi, inverse);
      const Pair<V> p = TwoProduct(d, q, below.hi);
      const V remainder = hn::Add(hn::Sub(hn::Sub(above.hi, p.hi), p.lo),
                                  hn::Sub(above_rest, hn::Mul(q, below.lo)));
      out[k] = TanhResult(hn::Add(q, hn::Mul(remainder, inverse)), x[k]);
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
