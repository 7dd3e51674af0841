// Integers from a to b - 1: the floor of the double uniform on [a, b), one generator output each.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/uniform/iuniform.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <cstring>

#include "hwy/highway.h"
#include "pex_core/_kernel/control.h"
#include "quo_kernel/_kernel/generate.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The floor as an integer. A generator of the user's may leave the range: beyond it the nearest end
// results, for NaN the upper one.
template <class D, class DI = hn::Rebind<int32_t, D>>
HWY_INLINE hn::Vec<DI> FloorToInt(D d, const double* x) {
  return hn::DemoteTo(DI(), hn::Floor(hn::LoadU(d, x)));
}

// The same for kStep elements, stored at any address.
constexpr hn::ScalableTag<double> kWide{};
#if HWY_TARGET == HWY_AVX3
constexpr size_t kStep = hn::MaxLanes(kWide);
HWY_INLINE void StoreStep(const double* x, int32_t* r) {  // rounds and converts in one operation
  const auto v = hn::Min(hn::LoadU(kWide, x), hn::Set(kWide, 2147483647.0));
  const auto floors = _mm512_cvt_roundpd_epi32(v.raw, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(r), floors);
}
#else
constexpr size_t kStep = 2 * hn::MaxLanes(kWide);
HWY_INLINE void StoreStep(const double* x, int32_t* r) {
  const hn::Repartition<int32_t, decltype(kWide)> di;
  const auto low = FloorToInt(kWide, x), high = FloorToInt(kWide, x + kStep / 2);
  hn::StoreU(hn::Combine(di, high, low), di, r);
}
#endif

void StoreFloors(size_t n, const double* x, int32_t* r) {
  const hn::CappedTag<double, 1> one;
  size_t i = 0;
  for (; i + kStep <= n; i += kStep) StoreStep(x + i, r + i);
  for (; i < n; ++i) {
    const int32_t last = hn::GetLane(FloorToInt(one, x + i));
    std::memcpy(r + i, &last, sizeof last);
  }
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(StoreFloors);

namespace {

int32_t Unguarded(StreamState* stream, int32_t n, int32_t* r, int32_t a, int32_t b) {
  constexpr int32_t kBlock = 1024;
  alignas(64) double block[kBlock];
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0;) {
    const int32_t count = std::min(left, kBlock);
    status = Generate(stream, count, block, a, b);
    if (status < 0) return status;
    HWY_DYNAMIC_DISPATCH(StoreFloors)(static_cast<size_t>(count), block, r);
    r += count;
    left -= count;
  }
  return status;
}

}  // namespace

// The floors of uniforms leave no trace, whatever the control word.
extern "C" QUO_API int32_t _quoiRngUniform(uint32_t, StreamState* stream, int32_t n, int32_t* r,
                                           int32_t a, int32_t b) {
  if (n < 1) return QUO_OK;
  if (GuardsItself(stream)) return Unguarded(stream, n, r, a, b);
  const pex::QuietGuard guard;
  return Unguarded(stream, n, r, a, b);
}

}  // namespace quo
#endif
