// Numbers on [c, d) mapped onto [a, b): (u - c) scale + a with scale = (b - a) / (d - c), every
// step rounded by itself. The arrays may stand at any address.

#include <cstddef>
#include <cstring>

#include "hwy/highway.h"

#if defined(QUO_SUB_KERNEL__MATH_MAP_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_SUB_KERNEL__MATH_MAP_INL_H_
#undef QUO_SUB_KERNEL__MATH_MAP_INL_H_
#else
#define QUO_SUB_KERNEL__MATH_MAP_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <typename T>
HWY_INLINE void Map(const T* from, size_t n, T* r, T c, T d, T a, T b) {
  const T scale = (b - a) / (d - c);
  const hn::ScalableTag<T> tag;
  constexpr size_t kLanes = hn::MaxLanes(tag);
  const auto vc = hn::Set(tag, c), vscale = hn::Set(tag, scale), va = hn::Set(tag, a);
  size_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    const auto u = hn::LoadU(tag, from + i);
    hn::StoreU(hn::Add(hn::Mul(hn::Sub(u, vc), vscale), va), tag, r + i);
  }
  for (; i < n; ++i) {
    T u;
    std::memcpy(&u, from + i, sizeof(T));
    u = (u - c) * scale + a;
    std::memcpy(r + i, &u, sizeof(T));
  }
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // QUO_SUB_KERNEL__MATH_MAP_INL_H_
