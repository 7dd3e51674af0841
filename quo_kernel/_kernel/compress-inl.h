// The chosen lanes of a vector of doubles, stored densely. Highway's own Compress builds its table
// on the stack at every call, and its CompressStore on AVX-512 is an instruction that some
// processors execute in microcode.

#include <cstddef>
#include <cstdint>

#include "hwy/highway.h"

#if defined(QUO_KERNEL__KERNEL_COMPRESS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL__KERNEL_COMPRESS_INL_H_
#undef QUO_KERNEL__KERNEL_COMPRESS_INL_H_
#else
#define QUO_KERNEL__KERNEL_COMPRESS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX2
// The 32-bit halves of the lanes of each mask, in order.
alignas(32) inline constexpr uint32_t kLanesOfMask[16][8] = {{},
                                                             {0, 1},
                                                             {2, 3},
                                                             {0, 1, 2, 3},
                                                             {4, 5},
                                                             {0, 1, 4, 5},
                                                             {2, 3, 4, 5},
                                                             {0, 1, 2, 3, 4, 5},
                                                             {6, 7},
                                                             {0, 1, 6, 7},
                                                             {2, 3, 6, 7},
                                                             {0, 1, 2, 3, 6, 7},
                                                             {4, 5, 6, 7},
                                                             {0, 1, 4, 5, 6, 7},
                                                             {2, 3, 4, 5, 6, 7},
                                                             {0, 1, 2, 3, 4, 5, 6, 7}};
#endif

// The lanes of v in `chosen`, in order, at r, which has room for a whole vector whatever their
// number. That number.
template <class D, class V, class M>
HWY_INLINE size_t StoreChosen(D, V v, M chosen, double* r) {
#if HWY_TARGET == HWY_AVX3
  _mm512_storeu_pd(r, _mm512_maskz_compress_pd(chosen.raw, v.raw));
  return static_cast<size_t>(_mm_popcnt_u32(chosen.raw));
#elif HWY_TARGET == HWY_AVX2
  const auto bits = static_cast<uint32_t>(_mm256_movemask_pd(chosen.raw));
  const auto* lanes = reinterpret_cast<const __m256i*>(kLanesOfMask[bits]);
  const __m256 dense = _mm256_permutevar8x32_ps(_mm256_castpd_ps(v.raw), _mm256_load_si256(lanes));
  _mm256_storeu_pd(r, _mm256_castps_pd(dense));
  return static_cast<size_t>(_mm_popcnt_u32(bits));
#else
  const auto bits = static_cast<uint32_t>(_mm_movemask_pd(chosen.raw));
  _mm_storel_pd(r, v.raw);
  _mm_storeh_pd(r + (bits & 1), v.raw);
  return (bits & 1) + (bits >> 1);
#endif
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
