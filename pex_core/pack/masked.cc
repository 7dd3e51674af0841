// PackM and UnpackM: copies of the elements whose mask word is not zero.
//
// AVX-512 compresses and expands registers, and loads and stores the exact number of elements. The
// other levels list the positions of 256 mask words, eight at a time from a table, and then move
// the listed elements one by one in order: no branch depends on a mask word, and no element beyond
// the selected ones is touched.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/pack/masked.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <bit>
#include <cstring>

#include "hwy/highway.h"
#include "pex_core/pack/pack.h"
#include "pex_core/pack/positions.h"
#include "pexquo/pex.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX3

// Lanes of `d` whose mask word is not zero, of the first `count` words; reads no further.
template <class D, typename Index, typename T = hn::TFromD<D>>
HWY_INLINE hn::Mask<D> Selected(D d, const Index* words, size_t count) {
  if constexpr (sizeof(Index) == sizeof(T)) {
    const hn::RebindToSigned<D> di;
    return hn::RebindMask(d,
                          hn::Ne(hn::MaskedLoad(hn::FirstN(di, count), di, words), hn::Zero(di)));
  } else if constexpr (sizeof(Index) < sizeof(T)) {
    const hn::Rebind<int32_t, D> dw;
    const hn::RebindToSigned<D> di;
    const auto narrow = hn::MaskedLoad(hn::FirstN(dw, count), dw, words);
    return hn::RebindMask(d, hn::Ne(hn::PromoteTo(di, narrow), hn::Zero(di)));
  } else {
    const hn::Repartition<int64_t, D> dw;
    const hn::RebindToSigned<D> di;
    const size_t half = hn::Lanes(dw);
    const auto low = hn::MaskedLoad(hn::FirstN(dw, HWY_MIN(count, half)), dw, words);
    const auto high = count > half ? hn::MaskedLoad(hn::FirstN(dw, count - half), dw, words + half)
                                   : hn::Zero(dw);
    const auto a = hn::BitCast(di, low), b = hn::BitCast(di, high);
    const auto any = hn::Or(hn::ConcatEven(di, b, a), hn::ConcatOdd(di, b, a));
    return hn::RebindMask(d, hn::Ne(any, hn::Zero(di)));
  }
}

HWY_INLINE hn::Vec512<double> Compress(hn::Vec512<double> v, hn::Mask512<double> mask) {
  return hn::Vec512<double>{_mm512_maskz_compress_pd(mask.raw, v.raw)};
}
HWY_INLINE hn::Vec512<float> Compress(hn::Vec512<float> v, hn::Mask512<float> mask) {
  return hn::Vec512<float>{_mm512_maskz_compress_ps(mask.raw, v.raw)};
}
HWY_INLINE hn::Vec512<double> Expand(hn::Vec512<double> v, hn::Mask512<double> mask) {
  return hn::Vec512<double>{_mm512_maskz_expand_pd(mask.raw, v.raw)};
}
HWY_INLINE hn::Vec512<float> Expand(hn::Vec512<float> v, hn::Mask512<float> mask) {
  return hn::Vec512<float>{_mm512_maskz_expand_ps(mask.raw, v.raw)};
}

template <typename T, typename Index>
void PackMasked(int64_t n, const T* a, const Index* mask, T* y) {
  const hn::ScalableTag<T> d;
  const size_t end = static_cast<size_t>(n), lanes = hn::Lanes(d);
  if (Overlap(mask, end, y, end) || (y > a && y < a + n)) return PackMaskedLoop(n, a, mask, y);
  for (size_t i = 0; i < end; i += lanes) {
    const size_t count = HWY_MIN(lanes, end - i);
    const auto selected = Selected(d, mask + i, count);
    const auto v = hn::MaskedLoad(selected, d, a + i);
    const size_t found = hn::CountTrue(d, selected);
    hn::BlendedStore(Compress(v, selected), hn::FirstN(d, found), d, y);
    y += found;
  }
}

template <typename T, typename Index>
void UnpackMasked(int64_t n, const T* a, T* y, const Index* mask) {
  const hn::ScalableTag<T> d;
  const size_t end = static_cast<size_t>(n), lanes = hn::Lanes(d);
  if (Overlap(mask, end, y, end) || Overlap(a, end, y, end)) {
    return UnpackMaskedLoop(n, a, y, mask);
  }
  for (size_t i = 0; i < end; i += lanes) {
    const size_t count = HWY_MIN(lanes, end - i);
    const auto selected = Selected(d, mask + i, count);
    const size_t found = hn::CountTrue(d, selected);
    const auto v = hn::MaskedLoad(hn::FirstN(d, found), d, a);
    hn::BlendedStore(Expand(v, selected), selected, d, y + i);
    a += found;
  }
}

#else

constexpr size_t kListed = 256;  // positions are bytes

// One bit for each of the next eight mask words.
template <typename Index>
HWY_INLINE uint32_t SelectedBits(const Index* words) {
  const hn::CappedTag<Index, 8> d;
  constexpr size_t kLanes = hn::MaxLanes(hn::CappedTag<Index, 8>());
  uint32_t bits = 0;
  for (size_t k = 0; k < 8; k += kLanes) {
    uint8_t part[8] = {};
    hn::StoreMaskBits(d, hn::Ne(hn::LoadU(d, words + k), hn::Zero(d)), part);
    bits |= static_cast<uint32_t>(part[0]) << k;
  }
  return bits;
}

// The positions of the selected ones of `count` mask words; returns how many. Up to seven bytes
// behind the last position are overwritten.
template <typename Index>
HWY_INLINE size_t ListSelected(const Index* words, size_t count, uint8_t* positions) {
  size_t found = 0;
  for (size_t i = 0; i < count; i += 8) {
    uint32_t bits = 0;
    if (i + 8 <= count) {
      bits = SelectedBits(words + i);
    } else {
      for (size_t k = i; k < count; ++k) bits |= static_cast<uint32_t>(words[k] != 0) << (k - i);
    }
    const uint64_t listed = kPositions[bits] + i * 0x0101010101010101;
    std::memcpy(positions + found, &listed, sizeof(listed));
    found += static_cast<size_t>(std::popcount(bits));
  }
  return found;
}

#if HWY_TARGET == HWY_AVX2

// Moves the selected ones of kListed floats; returns how many.
template <typename Index>
HWY_INLINE size_t PackBlock(const float* a, const Index* words, float* y) {
  float chosen[kListed + 8];
  size_t found = 0;
  for (size_t i = 0; i < kListed; i += 8) {
    const uint32_t bits = SelectedBits(words + i);
    const __m256i order =
        _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(&kPositions[bits])));
    _mm256_storeu_ps(chosen + found, _mm256_permutevar8x32_ps(_mm256_loadu_ps(a + i), order));
    found += static_cast<size_t>(std::popcount(bits));
  }
  std::memcpy(y, chosen, found * sizeof(float));
  return found;
}

#endif

template <typename T, typename Index>
void PackMasked(int64_t n, const T* a, const Index* mask, T* y) {
  const size_t end = static_cast<size_t>(n);
  if (Overlap(mask, end, y, end)) return PackMaskedLoop(n, a, mask, y);
  uint8_t positions[kListed + 8];
  size_t i = 0;
#if HWY_TARGET == HWY_AVX2
  if constexpr (sizeof(T) == sizeof(float)) {
    const bool behind = y > a && y < a + n;  // a block would overwrite what it has yet to read
    for (; !behind && i + kListed <= end; i += kListed) y += PackBlock(a + i, mask + i, y);
  }
#endif
  for (; i < end; i += kListed) {
    const size_t found = ListSelected(mask + i, HWY_MIN(kListed, end - i), positions);
    for (size_t j = 0; j < found; ++j) y[j] = a[i + positions[j]];
    y += found;
  }
}

template <typename T, typename Index>
void UnpackMasked(int64_t n, const T* a, T* y, const Index* mask) {
  const size_t end = static_cast<size_t>(n);
  if (Overlap(mask, end, y, end)) return UnpackMaskedLoop(n, a, y, mask);
  uint8_t positions[kListed + 8];
  for (size_t i = 0; i < end; i += kListed) {
    const size_t found = ListSelected(mask + i, HWY_MIN(kListed, end - i), positions);
    for (size_t j = 0; j < found; ++j) y[i + positions[j]] = a[j];
    a += found;
  }
}

#endif  // HWY_TARGET == HWY_AVX3

template <typename T>
int PackAny(int64_t n, const T* a, const void* mask, T* y, int32_t width) {
  if (n <= 0) return 0;
  if (width == kWidth32) {
    PackMasked(n, a, static_cast<const int32_t*>(mask), y);
  } else {
    PackMasked(n, a, static_cast<const int64_t*>(mask), y);
  }
  return 0;
}

template <typename T>
int UnpackAny(int64_t n, const T* a, T* y, const void* mask, int32_t width) {
  if (n <= 0) return 0;
  if (width == kWidth32) {
    UnpackMasked(n, a, y, static_cast<const int32_t*>(mask));
  } else {
    UnpackMasked(n, a, y, static_cast<const int64_t*>(mask));
  }
  return 0;
}

int dPackM(int64_t n, const double* a, const void* mask, double* y, int32_t width) {
  return PackAny(n, a, mask, y, width);
}
int sPackM(int64_t n, const float* a, const void* mask, float* y, int32_t width) {
  return PackAny(n, a, mask, y, width);
}
int dUnpackM(int64_t n, const double* a, double* y, const void* mask, int32_t width) {
  return UnpackAny(n, a, y, mask, width);
}
int sUnpackM(int64_t n, const float* a, float* y, const void* mask, int32_t width) {
  return UnpackAny(n, a, y, mask, width);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {

HWY_EXPORT(dPackM);
HWY_EXPORT(sPackM);
HWY_EXPORT(dUnpackM);
HWY_EXPORT(sUnpackM);

extern "C" PEXQUO_API int _pexdPackM(int64_t n, const double* a, const void* ma, double* y,
                                     int32_t width) {
  return HWY_DYNAMIC_DISPATCH(dPackM)(Narrowed(n, width), a, ma, y, width);
}
extern "C" PEXQUO_API int _pexsPackM(int64_t n, const float* a, const void* ma, float* y,
                                     int32_t width) {
  return HWY_DYNAMIC_DISPATCH(sPackM)(Narrowed(n, width), a, ma, y, width);
}
extern "C" PEXQUO_API int _pexdUnpackM(int64_t n, const double* a, double* y, const void* my,
                                       int32_t width) {
  return HWY_DYNAMIC_DISPATCH(dUnpackM)(Narrowed(n, width), a, y, my, width);
}
extern "C" PEXQUO_API int _pexsUnpackM(int64_t n, const float* a, float* y, const void* my,
                                       int32_t width) {
  return HWY_DYNAMIC_DISPATCH(sUnpackM)(Narrowed(n, width), a, y, my, width);
}

}  // namespace pex
#endif
