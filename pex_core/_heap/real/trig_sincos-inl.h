// Sine and cosine together in double precision, HA.

#include "hwy/highway.h"
#include "pex_core/_heap/real/trig_fine-inl.h"

#if defined(PEX_CORE__HEAP_REAL_TRIG_SINCOS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_TRIG_SINCOS_INL_H_
#undef PEX_CORE__HEAP_REAL_TRIG_SINCOS_INL_H_
#else
#define PEX_CORE__HEAP_REAL_TRIG_SINCOS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// In tiny lanes sin x = x and cos x = 1.
template <class D, class V, size_t K>
HWY_INLINE void SetTinyLanes(D d, const TrigLanes<D, K>& lanes, const V (&x)[K], V (&sin)[K],
                             V (&cos)[K]) {
  for (size_t k = 0; k < K; ++k) {
    sin[k] = hn::IfThenElse(lanes.tiny[k], x[k], sin[k]);
    cos[k] = hn::IfThenElse(lanes.tiny[k], hn::Set(d, 1.0), cos[k]);
  }
}

// Both waves.
struct SineCosineHA {
  static constexpr int kResults = 2;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 6 : 4;
  using Usual = FineUsual;

  template <class D, class V, size_t K>
  static HWY_INLINE bool Group(D d, const V (&x)[K], V (&sin)[K], V (&cos)[K]) {
    FineAngles<D, K> u;
    V y2[K];
    if (!ReduceFine(d, x, u, y2)) [[unlikely]]
      return false;
    Finish(d, u, y2, sin, cos);
    return true;
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&sin)[K], V (&cos)[K]) {
    const auto lanes = SortLanes(d, x, 0x1p-27, kFineLimit);
    FineAngles<D, K> u;
    V y2[K];
    ReduceFineWide(d, lanes, x, u, y2);
    Finish(d, u, y2, sin, cos);
    SetTinyLanes(d, lanes, x, sin, cos);
  }

 private:
  template <class D, class V, size_t K>
  static HWY_INLINE void Finish(D d, const FineAngles<D, K>& u, const V (&y2)[K], V (&sin)[K],
                                V (&cos)[K]) {
    V s[K], c[K];
    FinePolynomials(d, y2, s, c);
    for (size_t k = 0; k < K; ++k) {
      c[k] = hn::Mul(c[k], y2[k]);
      s[k] = hn::Sub(hn::Mul(hn::Mul(u.y[k], y2[k]), s[k]), u.low[k]);
    }
    EndStep(s);
    EndStep(c);
    for (size_t k = 0; k < K; ++k) {
      const V rise = hn::Mul(u.cos[k], u.y[k]), fall = hn::Mul(u.sin[k], u.y[k]);
      const V sine = hn::Add(u.sin[k], rise), cosine = hn::Sub(u.cos[k], fall);
      const V less = Remainder(d, hn::Sub(sine, u.sin[k]), u.cos[k], u.high[k]);
      const V more = Remainder(d, hn::Sub(u.cos[k], cosine), u.sin[k], u.high[k]);
      const V small_sine = hn::Add(hn::Mul(u.sin[k], c[k]), hn::Mul(u.cos[k], s[k]));
      const V small_cosine = hn::Sub(hn::Mul(u.cos[k], c[k]), hn::Mul(u.sin[k], s[k]));
      sin[k] = FlipSign<4>(d, hn::Add(sine, hn::Sub(small_sine, less)), u.index[k]);
      cos[k] = FlipSign<4>(d, hn::Add(cosine, hn::Add(small_cosine, more)), u.index[k]);
    }
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_SINCOS_INL_H_
