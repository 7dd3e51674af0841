// What is drawn in double precision on [0, infinity) or [0, 1], scaled and displaced into an array
// of double or single precision at any address.

#include <cstddef>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/unaligned.h"

#if defined(QUO_KERNEL_CONTINUOUS_GAMMA_DISPLACED_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL_CONTINUOUS_GAMMA_DISPLACED_INL_H_
#undef QUO_KERNEL_CONTINUOUS_GAMMA_DISPLACED_INL_H_
#else
#define QUO_KERNEL_CONTINUOUS_GAMMA_DISPLACED_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// r[i] = max(a, x[i] beta + a), of numbers up to 1 no more than a + beta, in double precision and
// rounded to that of r.
template <bool kUpToOne = false, typename T>
HWY_INLINE void StoreDisplaced(size_t n, const double* HWY_RESTRICT x, T* r, double a,
                               double beta) {
  const auto displaced = [=](auto d, auto v) HWY_ATTR {
    const auto least = hn::Set(d, a);
    v = hn::Max(least, hn::Add(hn::Mul(v, hn::Set(d, beta)), least));
    if constexpr (kUpToOne) v = hn::Min(hn::Set(d, a + beta), v);
    if constexpr (sizeof(T) == 4) {
      return hn::DemoteTo(hn::Rebind<float, decltype(d)>(), v);
    } else {
      return v;
    }
  };
  const hn::ScalableTag<double> d;
  const hn::Rebind<T, decltype(d)> dr;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    hn::StoreU(displaced(d, hn::LoadU(d, x + i)), dr, r + i);
  }
  const hn::CappedTag<double, 1> one;
  for (; i < n; ++i) Put(r + i, hn::GetLane(displaced(one, hn::Set(one, x[i]))));
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
