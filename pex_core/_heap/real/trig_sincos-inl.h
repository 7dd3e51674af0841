// Sine and cosine together in double precision, HA.

#include "hwy/highway.h"
#include "pex_core/_heap/real/trig_sixteenth-inl.h"

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

// Both sums of the table's sine and cosine.
struct SineCosineHA {
  static constexpr int kResults = 2;
  static constexpr size_t kUnroll = 4;
  using Usual = UsualExponents<-20, 5>;

  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const V (&x)[K], V (&sin)[K], V (&cos)[K]) {
    Sixteenth<D> u[K];
    ReduceToSixteenth(d, x, u);
    Finish(d, u, sin, cos);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&sin)[K], V (&cos)[K]) {
    const auto lanes = SortLanes(d, x, 0x1p-27, Usual::kLimit);
    Sixteenth<D> u[K];
    ReduceWide(d, lanes, x, u);
    Finish(d, u, sin, cos);
    SetTinyLanes(d, lanes, x, sin, cos);
  }

 private:
  template <class D, class V, size_t K>
  static HWY_INLINE void Finish(D d, const Sixteenth<D> (&u)[K], V (&sin)[K], V (&cos)[K]) {
    V s[K], c[K];
    SmallSineCosine(d, u, s, c);
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> sine = SumOfAngles<Wave::kSine>(d, u[k], s[k], c[k]);
      const Pair<V> cosine = SumOfAngles<Wave::kCosine>(d, u[k], s[k], c[k]);
      sin[k] = FlipSign<4>(d, hn::Add(sine.hi, sine.lo), u[k].index);
      cos[k] = FlipSign<4>(d, hn::Add(cosine.hi, cosine.lo), u[k].index);
    }
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_SINCOS_INL_H_
