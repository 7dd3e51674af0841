// The tangent in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tan/dtan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_quarter-inl.h"
#include "pex_core/_heap/real/trig_sixteenth-inl.h"
#include "pex_core/_heap/real/trig_turn-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdTan";

// tan(y), |y| <= pi/4, or in odd quadrants -cot(y).
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
  }
};

// y N/D, turned over in odd quadrants.
struct dTanFormulaEP {
  using Quarter = QuarterEP;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 6 : 4;
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
      r[k] = TangentQuotient(d, u.quadrant[k], above[k], below[k]);
    }
  }
};

// Two quadratic polynomials in steps.
template <class D, class V, size_t K>
HWY_INLINE void TwoQuadratics(D d, const V (&x)[K], const double (&a)[3], const double (&b)[3],
                              V (&p)[K], V (&q)[K]) {
  for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(hn::Set(d, a[2]), x[k]);
  for (size_t k = 0; k < K; ++k) q[k] = hn::Mul(hn::Set(d, b[2]), x[k]);
  EndStep(q);
  EndStep(p);
  for (size_t k = 0; k < K; ++k) p[k] = hn::Add(p[k], hn::Set(d, a[1]));
  EndStep(p);
  for (size_t k = 0; k < K; ++k) q[k] = hn::Add(q[k], hn::Set(d, b[1]));
  EndStep(q);
  for (size_t k = 0; k < K; ++k) q[k] = hn::Mul(q[k], x[k]);
  for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(p[k], x[k]);
  EndStep(q);
  EndStep(p);
  for (size_t k = 0; k < K; ++k) p[k] = hn::Add(p[k], hn::Set(d, a[0]));
  EndStep(p);
  for (size_t k = 0; k < K; ++k) q[k] = hn::Add(q[k], hn::Set(d, b[0]));
  EndStep(q);
}

// tan(y) = y - y^3 N/D', D' = 1 - y^2 D. In even quadrants the quotient is small beside y, in odd
// ones it is D'/W, W = y - y^3 (N + D); what W loses in rounding returns to first order, for a
// slope of 1/y^2 within 12 % by its bits. The signs of both are the tangent's own. Largest error
// seen: 1.88 ulp.
struct dTanFormulaLA {
  using Quarter = QuarterLA;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 6;
  static constexpr uint64_t kSlope = 0x7FDC580000000000;
  template <class D, class V, size_t K>
  static HWY_INLINE void Tangent(D d, const Quarters<D, K>& u, V (&r)[K]) {
    V y2[K], above[K], below[K];
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u.y[k], u.y[k]);
    EndStep(y2);
    TwoQuadratics(d, y2, kTanLANumerator, kTanLADenominator, above, below);
    for (size_t k = 0; k < K; ++k) {
      above[k] = hn::Add(above[k], OddElseEven(d, u.quadrant[k], below[k], hn::Zero(d)));
    }
    for (size_t k = 0; k < K; ++k) below[k] = hn::Mul(y2[k], below[k]);
    for (size_t k = 0; k < K; ++k) r[k] = hn::Mul(u.y[k], y2[k]);
    EndStep(above);
    EndStep(below);
    EndStep(r);
    for (size_t k = 0; k < K; ++k) above[k] = hn::Mul(r[k], above[k]);
    EndStep(above);
    for (size_t k = 0; k < K; ++k) above[k] = hn::Sub(above[k], u.rest[k]);
    for (size_t k = 0; k < K; ++k) below[k] = hn::Sub(hn::Set(d, 1.0), below[k]);
    EndStep(above);
    EndStep(below);
    for (size_t k = 0; k < K; ++k) {
      const V whole = hn::Sub(u.y[k], above[k]);
      const V lost = hn::Sub(hn::Sub(u.y[k], whole), above[k]);
      const V slope = FromBits(d, hn::Sub(SetBits(d, kSlope), Bits(d, y2[k])));
      r[k] = hn::Div(OddElseEven(d, u.quadrant[k], below[k], above[k]),
                     OddElseEven(d, u.quadrant[k], whole, below[k]));
      y2[k] = OddElseEven(d, u.quadrant[k], hn::Mul(lost, slope), u.y[k]);
    }
    EndStep(r);
    for (size_t k = 0; k < K; ++k) r[k] = hn::Sub(y2[k], r[k]);
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
