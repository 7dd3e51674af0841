// What the correctly rounded functions in single precision share that compute by floats: a sum of
// two floats whose error is known, and double precision for what stands between its bounds and half
// way of two floats. As the result is the float next to the function's value, operations may be
// fused in it though their bits are not those of two.

#include <cstddef>

#include "hwy/highway.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_REAL_SHORT_SUM_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_SHORT_SUM_INL_H_
#undef PEX_CORE__HEAP_REAL_SHORT_SUM_INL_H_
#else
#define PEX_CORE__HEAP_REAL_SHORT_SUM_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SSE4

// On SSE4, where no operation is fused, double precision is all there is: Sums::InFull.
using ShortSumCompute = double;
template <class Sums, class Base>
struct ShortSumKernel : Base {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return Sums::InFull(d, x);
  }
};

#else

// c[0] + x (c[1] + x (c[2] + ...)).
template <class D, class V, size_t N>
HWY_INLINE V HiddenHorner(D d, V x, const float (&c)[N]) {
  V p = hn::Set(d, c[N - 1]);
  for (size_t i = N - 1; i-- > 0;) p = HiddenMulAdd(p, x, hn::Set(d, c[i]));
  return p;
}

// K::Short gives the floats next to the lower bounds of one vector's sums, and by bits of `doubt`
// whether those next to the upper ones are others: then K::InFull computes half a vector in double.
template <class K, class D, class V>
HWY_NOINLINE V ShortInFull(D d, V x) {
  const hn::Half<D> half;
  const auto lower = K::InFull(half, hn::LowerHalf(half, x));
  return hn::Combine(d, K::InFull(half, hn::UpperHalf(half, x)), lower);
}

template <class K, class D, class V, size_t N>
HWY_INLINE void ShortGroup(D d, const V (&x)[N], V (&r)[N]) {
  const hn::RebindToSigned<D> di;
  V y[N];
  BitsOf<D> doubt[N];
  for (size_t k = 0; k < N; ++k) y[k] = K::Short(d, x[k], doubt[k]);
  auto any = doubt[0];
  for (size_t k = 1; k < N; ++k) any = hn::Or(any, doubt[k]);
  if (!hn::AllTrue(di, hn::Eq(any, hn::Zero(di)))) [[unlikely]] {
    for (size_t k = 0; k < N; ++k) {
      if (!hn::AllTrue(di, hn::Eq(doubt[k], hn::Zero(di)))) y[k] = ShortInFull<K>(d, x[k]);
    }
  }
  for (size_t k = 0; k < N; ++k) r[k] = y[k];
}

// The kernel of Sums::Short and Sums::InFull. The base, with the domain, computes in
// ShortSumCompute.
using ShortSumCompute = float;
template <class Sums, class Base>
struct ShortSumKernel : Base {
  static constexpr int kUnroll = 2;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    ShortGroup<Sums>(d, x, r);
  }
};

#endif

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_SHORT_SUM_INL_H_
