// The tangent in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tan/dtan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_quarter-inl.h"
#include "pex_core/_heap/real/trig_sine-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdTan";

// tan(y) as a quotient, turned over in odd quadrants.
template <class Formula>
struct dTanQuarter {
  static constexpr int kResults = 1;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 6 : 4;
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
    V above[K], below[K];
    Formula::Quotient(d, u, above, below);
    for (size_t k = 0; k < K; ++k) {
      const auto odd = OddLanes(d, u.quadrant[k]);
      const V q = hn::Div(hn::IfThenElse(odd, below[k], above[k]),
                          hn::IfThenElse(odd, above[k], below[k]));
      r[k] = FlipSign<0>(d, q, u.quadrant[k]);
    }
  }
};

struct dTanFormulaEP {
  using Quarter = QuarterEP;
  template <class D, class V, size_t K>
  static HWY_INLINE void Quotient(D d, const Quarters<D, K>& u, V (&above)[K], V (&below)[K]) {
    const V one = hn::Set(d, 1.0);
    V y2[K];
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u.y[k], u.y[k]);
    Horner(d, y2, kTanEPNumerator, above);
    Horner(d, y2, kTanEPDenominator, below);
    for (size_t k = 0; k < K; ++k) {
      above[k] = hn::Mul(u.y[k], hn::Add(hn::Mul(y2[k], above[k]), one));
      below[k] = hn::Add(hn::Mul(y2[k], below[k]), one);
    }
  }
};

struct dTanFormulaLA {
  using Quarter = QuarterLA;
  template <class D, class V, size_t K>
  static HWY_INLINE void Quotient(D d, const Quarters<D, K>& u, V (&above)[K], V (&below)[K]) {
    V y2[K];
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u.y[k], u.y[k]);
    Horner(d, y2, kTanLANumerator, above);
    Horner(d, y2, kTanLADenominator, below);
    for (size_t k = 0; k < K; ++k) {
      const V y3 = hn::Mul(u.y[k], y2[k]);
      above[k] = hn::Add(u.y[k], hn::Add(hn::Mul(y3, above[k]), u.rest[k]));
      below[k] = hn::Add(hn::Set(d, 1.0), hn::Mul(y2[k], below[k]));
    }
  }
};

struct dTanEP : dTanQuarter<dTanFormulaEP> {};
struct dTanLA : dTanQuarter<dTanFormulaLA> {};

// The quotient of the unevaluated sums for sine and cosine, corrected by its remainder.
struct dTanHA {
  static constexpr int kResults = 1;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 4 : 2;
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
      const V rest = hn::Sub(hn::Sub(hn::Sub(s.hi, p.hi), p.lo),
                             hn::Sub(hn::Mul(q, c.lo), s.lo));
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
