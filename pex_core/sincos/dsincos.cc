// Sine and cosine together in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sincos/dsincos.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_quarter-inl.h"
#include "pex_core/_heap/real/trig_sincos-inl.h"
#include "pex_core/_heap/real/trig_turn-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdSinCos";

// One reduction by pi/2 and two polynomials.
template <class Formula>
struct dSinCosQuarter {
  static constexpr int kResults = 2;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : HWY_TARGET == HWY_AVX2 ? 4 : 3;
  using Usual = UsualExponents<-20, 5>;

  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const V (&x)[K], V (&sin)[K], V (&cos)[K]) {
    Quarters<D, K> u;
    Formula::Quarter::Reduce(d, x, u);
    Finish(d, u, sin, cos);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&sin)[K], V (&cos)[K]) {
    const auto lanes = SortLanes(d, x, 0x1p-27, Usual::kLimit);
    Quarters<D, K> u;
    ReduceQuarters<typename Formula::Quarter>(d, lanes, x, u);
    Finish(d, u, sin, cos);
    SetTinyLanes(d, lanes, x, sin, cos);
  }

 private:
  template <class D, class V, size_t K>
  static HWY_INLINE void Finish(D d, const Quarters<D, K>& u, V (&sin)[K], V (&cos)[K]) {
    V s[K], c[K];
    Formula::SineCosine(d, u, s, c);
    for (size_t k = 0; k < K; ++k) TurnBack(d, u.quadrant[k], s[k], c[k], sin[k], cos[k]);
  }
};

struct dSinCosFormulaLA {
  using Quarter = QuarterLA;
  template <class D, class V, size_t K>
  static HWY_INLINE void SineCosine(D d, const Quarters<D, K>& u, V (&s)[K], V (&c)[K]) {
    V y2[K];
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u.y[k], u.y[k]);
    Horner(d, y2, kSinQuarter, s);
    Horner(d, y2, kCosQuarter, c);
    for (size_t k = 0; k < K; ++k) {
      const V y3 = hn::Mul(u.y[k], y2[k]);
      s[k] = hn::Add(u.y[k], hn::Add(hn::Mul(y3, s[k]), u.rest[k]));
      c[k] = hn::Add(hn::Set(d, 1.0), hn::Mul(y2[k], c[k]));
    }
  }
};

struct dSinCosFormulaEP {
  using Quarter = QuarterEP;
  template <class D, class V, size_t K>
  static HWY_INLINE void SineCosine(D d, const Quarters<D, K>& u, V (&s)[K], V (&c)[K]) {
    V y2[K];
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u.y[k], u.y[k]);
    Horner(d, y2, kSinQuarterEP, s);
    Horner(d, y2, kCosQuarterEP, c);
    for (size_t k = 0; k < K; ++k) {
      s[k] = hn::Mul(u.y[k], s[k]);
      c[k] = hn::Add(hn::Set(d, 1.0), hn::Mul(y2[k], c[k]));
    }
  }
};

struct dSinCosEP : dSinCosQuarter<dSinCosFormulaEP> {};
struct dSinCosLA : dSinCosQuarter<dSinCosFormulaLA> {};

PEX_TRIG_TWO(dSinCos_26, dSinCosEP)
PEX_TRIG_TWO(dSinCos_50, dSinCosLA)
PEX_TRIG_TWO(dSinCos_HA, SineCosineHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY_TWO(double, dSinCos_26)
PEX_EXPORT_UNARY_TWO(double, dSinCos_50)
PEX_EXPORT_UNARY_TWO(double, dSinCos_HA)
}  // namespace pex
#endif
