// Integers from a to b - 1: the floor of the double uniform on [a, b), one generator output each.
//
// The generators of 32-bit words w make the uniform w (b - a) 2^-32 + a. Where that is a double for
// every w, its floor is a and the upper half of the product w (b - a): no number need be made of
// it.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/uniform/iuniform.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <cstring>

#include "hwy/highway.h"
#include "pex_core/_kernel/control.h"
#include "quo_kernel/_kernel/each-inl.h"
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

// a + the upper half of w range, in place of w.
void ScaleWords(size_t n, uint32_t* r, uint32_t range, uint32_t a) {
  Each(n, r, r, [=](auto d, auto w) HWY_ATTR {
    const auto factor = hn::Set(d, range);
    if constexpr (hn::MaxLanes(d) == 1) {
      const uint64_t product = uint64_t{hn::GetLane(w)} * range;
      return hn::Set(d, static_cast<uint32_t>(product >> 32) + a);
    } else {
      const hn::RepartitionToWide<decltype(d)> wide;
      const auto odd_words = hn::BitCast(d, hn::ShiftRight<32>(hn::BitCast(wide, w)));
      const auto even = hn::ShiftRight<32>(hn::MulEven(w, factor));
      const auto odd = hn::MulEven(odd_words, factor);
      const auto upper = hn::OddEven(hn::BitCast(d, odd), hn::BitCast(d, even));
      return hn::Add(upper, hn::Set(d, a));
    }
  });
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(StoreFloors);
HWY_EXPORT(ScaleWords);

namespace {

using Words = decltype(BrngProperties::iBRng);

// The generator's words where they determine the integers: products and sums are of 53 bits at
// most.
Words WordsBehind(const BrngProperties& brng, int64_t a, int64_t b) {
  constexpr int64_t kMost = int64_t{1} << 21;
  if (brng.BitCount != 32 || a > b || a < -kMost || b > kMost || b - a > kMost) return nullptr;
  const auto uniforms = brng.dBRng;
  if (uniforms == __quodBRngMT19937) return __quoiBRngMT19937;
  if (uniforms == __quodBRngMT2203) return __quoiBRngMT2203;
  if (uniforms == __quodBRngR250) return __quoiBRngR250;
  if (uniforms == __quodBRngSobol) return __quoiBRngSobol;
  if (uniforms == __quodBRngNiederr) return __quoiBRngNiederr;
  return nullptr;
}

// Not inlined: calls of other generators would save registers for it.
[[gnu::noinline]] int32_t FromWords(Words words, StreamState* stream, int32_t n, int32_t* integers,
                                    int32_t a, int32_t b) {
  constexpr int32_t kBlock = 4096;  // in the first-level cache
  uint32_t* r = reinterpret_cast<uint32_t*>(integers);
  const uint32_t range = static_cast<uint32_t>(b - a);
  for (int32_t left = n; left > 0; left -= kBlock, r += kBlock) {
    const int32_t count = std::min(left, kBlock);
    const int32_t status = words(stream, count, r);
    if (status < 0) return status;
    HWY_DYNAMIC_DISPATCH(ScaleWords)
    (static_cast<size_t>(count), r, range, static_cast<uint32_t>(a));
  }
  return QUO_OK;
}

int32_t Unguarded(StreamState* stream, int32_t n, int32_t* r, int32_t a, int32_t b) {
  const BrngProperties* const brng = FindBrng(stream->id);
  if (brng == nullptr) return QUO_INVALID_BRNG;
  if (const Words words = WordsBehind(*brng, a, b)) return FromWords(words, stream, n, r, a, b);
  constexpr int32_t kBlock = 1024;
  alignas(64) double block[kBlock];
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0;) {
    const int32_t count = std::min(left, kBlock);
    status = brng->dBRng(stream, count, block, a, b);
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
