// Integers from a to b - 1: the floor of the double uniform on [a, b), one generator output each.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/uniform/iuniform.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <cstring>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/call_guard.h"
#include "quo_kernel/_kernel/generate.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The floor as an integer. A generator of the user's may leave the range: beyond it the nearest end
// results, for NaN the upper one.
template <class D, class DI = hn::Rebind<int32_t, D>>
HWY_INLINE hn::Vec<DI> FloorToInt(D d, const double* x) {
  return hn::DemoteTo(DI(), hn::Floor(hn::Load(d, x)));
}

constexpr int32_t kBlock = 1024;  // uniforms generated at a time
constexpr int32_t kGroup = 16;    // two vectors of the widest level: so many are read at once
static_assert(2 * hn::MaxLanes(hn::ScalableTag<double>()) <= kGroup && kBlock % kGroup == 0);

// The block is aligned and filled up to a whole group; of r exactly n elements are written.
void StoreFloors(size_t n, const double* block, int32_t* r) {
  const hn::ScalableTag<double> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  const hn::Repartition<int32_t, decltype(d)> di;  // twice the lanes
  size_t i = 0;
  for (; i + 2 * kLanes <= n; i += 2 * kLanes) {
    const auto low = FloorToInt(d, block + i);
    const auto high = FloorToInt(d, block + i + kLanes);
    hn::StoreU(hn::Combine(di, high, low), di, r + i);
  }
  if (i < n) {
    HWY_ALIGN int32_t rest[2 * kLanes];
    hn::Store(hn::Combine(di, FloorToInt(d, block + i + kLanes), FloorToInt(d, block + i)), di,
              rest);
    std::memcpy(r + i, rest, (n - i) * sizeof(int32_t));
  }
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

using HWY_NAMESPACE::kBlock;
using HWY_NAMESPACE::kGroup;

HWY_EXPORT(StoreFloors);

extern "C" QUO_API int32_t _quoiRngUniform(uint32_t, StreamState* stream, int32_t n, int32_t* r,
                                           int32_t a, int32_t b) {
  if (n < 1) return QUO_OK;
  const CallGuard guard;
  alignas(64) double block[kBlock];
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0;) {
    const int32_t count = std::min(left, kBlock);
    status = Generate(stream, count, block, a, b);
    if (status < 0) return status;
    if (count % kGroup != 0) std::fill_n(block + count, kGroup - count % kGroup, 0.0);
    HWY_DYNAMIC_DISPATCH(StoreFloors)(static_cast<size_t>(count), block, r);
    r += count;
    left -= count;
  }
  return status;
}

}  // namespace quo
#endif
