// The tangent in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tan/dtan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_quarter-inl.h"
#include "pex_core/_heap/real/trig_sixteenth-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdTan";

// tan(y) = base + above/below, |y| <= pi/4, or in odd quadrants -cot(y), with the sign to come.
template <class Formula>
struct dTanQuarter {
  static constexpr int kResults = 1;
  static constexpr size_t kUnroll = Formula::kUnroll;
  using Usual = UsualExponents<-20, 5>;

  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const V (&x)[K], V (&r)[K]) {
    Quarters<D, K> u;
    Formula::Quarter::Reduce(d, x, u);
    Finish(d, u, r);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&r)[K]) {
    const auto lanes = SortLanes(d, x, 0x1p-27, Usual::kLimit);
    Quarters<D, K> u;
    ReduceQuarters<typename Formula::Quarter>(d, lanes, x, u);
    Finish(d, u, r);
    for (size_t k = 0; k < K; ++k) r[k] = hn::IfThenElse(lanes.tiny[k], x[k], r[k]);
  }

 private:
  template <class D, class V, size_t K>
  static HWY_INLINE void Finish(D d, const Quarters<D, K>& u, V (&r)[K]) {
    Formula::Tangent(d, u, r);
    for (size_t k = 0; k < K; ++k) r[k] = FlipSign<0>(d, r[k], u.quadrant[k]);
  }
};

// y N/D, turned over in odd quadrants.
struct dTanFormulaEP {
  using Quarter = QuarterEP;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void Tangent(D d, const Quarters<D, K>& u, V (&r)[K]) {
    const V one = hn::Set(d, 1.0);
    V y2[K], above[K], below[K];
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u.y[k], u.y[k]);
    Horner(d, y2, kTanEPNumerator, above);
    Horner(d, y2, kTanEPDenominator, below);
    for (size_t k = 0; k < K; ++k) {
      above[k] = hn::Mul(u.y[k], hn::Add(hn::Mul(y2[k], above[k]), one));
      below[k] = hn::Add(hn::Mul(y2[k], below[k]), one);
    }
    for (size_t k = 0; k < K; ++k) {
      const auto odd = OddLanes(d, u.quadrant[k]);
      r[k] =
          hn::Div(hn::IfThenElse(odd, below[k], above[k]), hn::IfThenElse(odd, above[k], below[k]));
    }
  }
};

// In even quadrants y + y^3 (N - D)/D', D' = 1 + y^2 D: the quotient is small beside y. In odd ones
// q = D'/W, W = y + y^3 N; what W loses in rounding, `excess`, returns to first order as q^2 excess
// (D' near 1). Largest errors seen: 1.97 ulp in even quadrants, |y| in [0.6, pi/4], of 3.8 10^7
// arguments; 1.91 in odd ones, |y| near 0.52, of 3 10^7.
struct dTanFormulaLA {
  using Quarter = QuarterLA;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : 6;
  template <class D, class V, size_t K>
  static HWY_INLINE void Tangent(D d, const Quarters<D, K>& u, V (&r)[K]) {
    const V one = hn::Set(d, 1.0);
    V y2[K], above[K], below[K], first[K];
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u.y[k], u.y[k]);
    Horner(d, y2, kTanLANumerator, above);
    Horner(d, y2, kTanLADenominator, below);
    for (size_t k = 0; k < K; ++k)
      above[k] = hn::Add(hn::Mul(hn::Mul(u.y[k], y2[k]), above[k]), u.rest[k]);
    for (size_t k = 0; k < K; ++k) below[k] = hn::Mul(y2[k], below[k]);
    for (size_t k = 0; k < K; ++k) {
      const auto odd = OddLanes(d, u.quadrant[k]);
      const V small = hn::Sub(above[k], hn::Mul(u.y[k], below[k]));
      const V whole = hn::Add(u.y[k], above[k]);
      const V excess = hn::Sub(hn::Sub(whole, u.y[k]), above[k]);
      const V under = hn::Add(one, below[k]);
      first[k] = hn::IfThenElse(odd, excess, u.y[k]);
      r[k] = hn::Div(hn::IfThenElse(odd, under, small), hn::IfThenElse(odd, whole, under));
    }
    for (size_t k = 0; k < K; ++k) {
      const auto odd = OddLanes(d, u.quadrant[k]);
      const V square = hn::Mul(r[k], r[k]);
      r[k] = hn::Add(hn::IfThenElse(odd, hn::Mul(first[k], square), first[k]), r[k]);
    }
  }
};

struct dTanEP : dTanQuarter<dTanFormulaEP> {};
struct dTanLA : dTanQuarter<dTanFormulaLA> {};

// The quotient of the unevaluated sums for sine and cosine, corrected by its remainder.
struct dTanHA {
  static constexpr int kResults = 1;
  static constexpr size_t kUnroll = 4;
  using Usual = UsualExponents<-20, 5>;

  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const V (&x)[K], V (&r)[K]) {
    Sixteenth<D> u[K];
    ReduceToSixteenth(d, x, u);
    Finish(d, u, r);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&r)[K]) {
    const auto lanes = SortLanes(d, x, 0x1p-27, Usual::kLimit);
    Sixteenth<D> u[K];
    ReduceWide(d, lanes, x, u);
    Finish(d, u, r);
    for (size_t k = 0; k < K; ++k) r[k] = hn::IfThenElse(lanes.tiny[k], x[k], r[k]);
  }

 private:
  template <class D, class V, size_t K>
  static HWY_INLINE void Finish(D d, const Sixteenth<D> (&u)[K], V (&r)[K]) {
    V small_sin[K], small_cos[K];
    SmallSineCosine(d, u, small_sin, small_cos);
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> s = SumOfAngles<Wave::kSine>(d, u[k], small_sin[k], small_cos[k]);
      const Pair<V> c = SumOfAngles<Wave::kCosine>(d, u[k], small_sin[k], small_cos[k]);
      const V inverse = hn::Div(hn::Set(d, 1.0), hn::Add(c.hi, c.lo));
      const V q = hn::Mul(hn::Add(s.hi, s.lo), inverse);
      // s.hi - q c.hi exactly, and the small terms.
      const Pair<V> p = TwoProduct(d, q, c.hi);
      const V rest = hn::Sub(hn::Sub(hn::Sub(s.hi, p.hi), p.lo), hn::Sub(hn::Mul(q, c.lo), s.lo));
      r[k] = hn::Add(q, hn::Mul(rest, inverse));
    }
  }
};

PEX_TRIG(dTan_26, dTanEP)
PEX_TRIG(dTan_50, dTanLA)
PEX_TRIG(dTan_HA, dTanHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dTan_26)
PEX_EXPORT_UNARY(double, dTan_50)
PEX_EXPORT_UNARY(double, dTan_HA)
}  // namespace pex
#endif
