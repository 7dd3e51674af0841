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

// The sine and the cosine of a + y.
template <class D, class V, size_t K>
HWY_INLINE void FineWaves(D d, const FineAngles<D, K>& u, const V (&y2)[K], V (&s)[K], V (&c)[K],
                          V (&sin)[K], V (&cos)[K]) {
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

// Both waves of usual arguments in parts, as WaveFinePart; the cosines go where `cosine` points.
template <class D>
struct SineCosineFinePart {
  static constexpr size_t kSize = 1;
  using V = VecOf<D>;
  FineAngles<D, 1> u;
  V y2[1], s[1], c[1];
  V* cosine;

  HWY_INLINE void Reduce(const V* x) { ReduceFinePart(D(), x, u, y2); }
  HWY_INLINE void Evaluate() {
    const D d;
    FinePolynomials(d, y2, s, c);
    EndPart(s);
    EndPart(c);
  }
  HWY_INLINE void Result(const V*, V* r) {
    V sin[1], cos[1];
    FineWaves(D(), u, y2, s, c, sin, cos);
    EndPart(sin);
    EndPart(cos);
    r[0] = sin[0];
    *cosine = cos[0];
  }
};

// Both waves.
struct SineCosineHA {
  static constexpr int kResults = 2;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 6 : HWY_TARGET == HWY_AVX2 ? 8 : 4;
  static constexpr size_t kRestUnroll = HWY_TARGET == HWY_AVX3 ? 6 : 4;
  using Usual = FineUsual;

  template <class D, class V, size_t K>
  static HWY_INLINE bool Group(D d, const V (&x)[K], V (&sin)[K], V (&cos)[K]) {
    V y2[K];
    if constexpr (HWY_TARGET == HWY_AVX2 && K > 4) {
      SineCosineFinePart<D> parts[K];
      for (size_t k = 0; k < K; ++k) parts[k].cosine = cos + k;
      SomeInTurn<K>(parts, x, sin);
      for (size_t k = 0; k < K; ++k) y2[k] = parts[k].y2[0];
      return !AnyNear(d, y2);
    } else {
      FineAngles<D, K> u;
      if (!ReduceFine(d, x, u, y2)) [[unlikely]]
        return false;
      Finish(d, u, y2, sin, cos);
      return true;
    }
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
    FineWaves(d, u, y2, s, c, sin, cos);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_SINCOS_INL_H_
