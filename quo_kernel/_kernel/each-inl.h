// Loops over arrays at any address: whole vectors, then the rest one element at a time by the same
// formula.
#if defined(QUO_KERNEL__KERNEL_EACH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL__KERNEL_EACH_INL_H_
#undef QUO_KERNEL__KERNEL_EACH_INL_H_
#else
#define QUO_KERNEL__KERNEL_EACH_INL_H_
#endif

#include <cstddef>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/unaligned.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// r[i] = f(d, x[i]), for f of vectors of any length; r and x may be the same array.
template <typename T, typename R, class F>
HWY_INLINE void Each(size_t n, const T* x, R* r, F f) {
  const hn::ScalableTag<T> d;
  const hn::Rebind<R, decltype(d)> dr;
  constexpr size_t kLanes = hn::MaxLanes(d), kVectors = 4;
  size_t i = 0;
  for (; i + kVectors * kLanes <= n; i += kVectors * kLanes) {
    for (size_t k = i; k < i + kVectors * kLanes; k += kLanes) {
      hn::StoreU(f(d, hn::LoadU(d, x + k)), dr, r + k);
    }
  }
  for (; i + kLanes <= n; i += kLanes) hn::StoreU(f(d, hn::LoadU(d, x + i)), dr, r + i);
  const hn::CappedTag<T, 1> one;
  for (; i < n; ++i) Put(r + i, hn::GetLane(f(one, hn::Set(one, Get(x + i)))));
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
