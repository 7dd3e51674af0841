// Counts that are computed as doubles, to 32-bit integers.
#if defined(QUO_KERNEL__KERNEL_COUNTS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL__KERNEL_COUNTS_INL_H_
#undef QUO_KERNEL__KERNEL_COUNTS_INL_H_
#else
#define QUO_KERNEL__KERNEL_COUNTS_INL_H_
#endif

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// From 0 to 2^31 - 1: what is below becomes 0, what is above or not a number 2^31 - 1.
template <class D, class V>
HWY_INLINE V Saturated(D d, V x) {
  const V most = hn::Set(d, 2147483647.0);
  return hn::IfThenElse(hn::Lt(x, most), hn::Max(x, hn::Zero(d)), most);
}

// The floor of x, saturated.
template <class D, class V>
HWY_INLINE hn::Vec<hn::Rebind<int32_t, D>> SaturatedFloor(D d, V x) {
  return hn::DemoteTo(hn::Rebind<int32_t, D>(), Saturated(d, x));
}

#if HWY_TARGET == HWY_AVX2
// By mask, the selected ones of four lanes in order, each as its two halves.
struct HalvesOfSelected {
  uint8_t of[16][8] = {};
  constexpr HalvesOfSelected() {
    for (unsigned bits = 0; bits < 16; ++bits) {
      for (uint8_t lane = 0, n = 0; lane < 4; ++lane) {
        if ((bits >> lane) % 2 == 0) continue;
        of[bits][n++] = static_cast<uint8_t>(2 * lane);
        of[bits][n++] = static_cast<uint8_t>(2 * lane + 1);
      }
    }
  }
};
inline constexpr HalvesOfSelected kHalvesOfSelected;
#endif

// The lanes of doubles that a mask selects, for storing several vectors by one mask. (hn::Compress
// brings a table of its own to the stack each time.)
class Selection {
 public:
#if HWY_TARGET == HWY_AVX3
  template <class M>
  explicit HWY_INLINE Selection(M mask) : bits_(mask.raw) {}
  HWY_INLINE size_t Count() const { return static_cast<size_t>(__builtin_popcount(bits_)); }
  // Stores the selected lanes in order at p, and whatever behind them: a whole vector.
  template <class V>
  HWY_INLINE void Store(V v, double* p) const {
    _mm512_storeu_pd(p, _mm512_maskz_compress_pd(bits_, v.raw));
  }

 private:
  __mmask8 bits_;
#elif HWY_TARGET == HWY_AVX2
  template <class M>
  explicit HWY_INLINE Selection(M mask)
      : bits_(static_cast<unsigned>(_mm256_movemask_pd(mask.raw))),
        order_(_mm256_cvtepu8_epi32(
            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kHalvesOfSelected.of[bits_])))) {}
  HWY_INLINE size_t Count() const { return static_cast<size_t>(__builtin_popcount(bits_)); }
  template <class V>
  HWY_INLINE void Store(V v, double* p) const {
    _mm256_storeu_pd(p,
                     _mm256_castps_pd(_mm256_permutevar8x32_ps(_mm256_castpd_ps(v.raw), order_)));
  }

 private:
  unsigned bits_;
  __m256i order_;
#else
  template <class M>
  explicit HWY_INLINE Selection(M mask) : bits_(static_cast<unsigned>(_mm_movemask_pd(mask.raw))) {}
  HWY_INLINE size_t Count() const { return (bits_ & 1) + (bits_ >> 1); }
  template <class V>
  HWY_INLINE void Store(V v, double* p) const {
    _mm_storel_pd(p, v.raw);
    _mm_storeh_pd(p + (bits_ & 1), v.raw);
  }

 private:
  unsigned bits_;
#endif
};

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
