// Rows of tables by lane: loads of whole rows and a transposition, which take less time than a
// gather for each column.

#include <bit>
#include <cstddef>
#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_kernel/bits-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERF_ROWS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERF_ROWS_INL_H_
#undef PEX_CORE__HEAP_REAL_ERF_ROWS_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERF_ROWS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// What single lanes are loaded from, each soon after: of 512 bits the halves one by one, for loads
// from a store of all of them wait longer on some processors.
template <class D, class V, typename T>
HWY_INLINE void StoreForLanes(D d, V v, T* to) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(v.raw) == 64) {
    (void)d;
    const auto at = reinterpret_cast<__m256i*>(to);
    _mm256_store_si256(at, _mm512_castsi512_si256(v.raw));
    _mm256_store_si256(at + 1, _mm512_extracti64x4_epi64(v.raw, 1));
    return;
  }
#endif
  hn::Store(v, d, to);
}

// Rows of kBytes begin at these bytes, less kFirst, of a table, from row numbers in the low half
// of each lane, whose upper half counts for nothing. They go by memory: the loads that fetch them
// leave the vector units to the arithmetic.
template <size_t kBytes, class D, size_t kFirst = 0>
class RowOffsets {
 public:
  RowOffsets() = default;
  HWY_INLINE RowOffsets(D d, BitsOf<D> j) { Set(d, j); }
  // For an array of offsets: GCC moves what it assigns through registers, number by number.
  HWY_INLINE void Set(D d, BitsOf<D> j) {
    (void)d;
    SetBytes(hn::ShiftLeft<std::countr_zero(kBytes)>(j));
  }
  HWY_INLINE void SetBytes(BitsOf<D> offset) {
    StoreForLanes(hn::RebindToSigned<D>(), offset, at_);
    asm("" : "+m"(at_));
  }
  HWY_INLINE size_t Byte(size_t lane) const {
    return size_t{static_cast<uint32_t>(at_[lane])} - kFirst;
  }
  HWY_INLINE const double* Of(const double* table, size_t lane) const {
    return reinterpret_cast<const double*>(reinterpret_cast<const char*>(table) + Byte(lane));
  }

 private:
  HWY_ALIGN int64_t at_[hn::MaxLanes(D())];
};

// Rows of two numbers.
template <class V>
struct Row2 {
  V a, b;
};

template <class D, class Offsets>
HWY_INLINE Row2<VecOf<D>> LoadRows2(D, const double* rows, const Offsets& j) {
  using V = VecOf<D>;
  const auto row = [&](size_t lane) HWY_ATTR { return _mm_load_pd(j.Of(rows, lane)); };
#if HWY_TARGET == HWY_AVX3
  // Every other row: 128 bits each, in order.
  const auto four = [&](size_t lane) HWY_ATTR {
    const __m256d low = _mm256_insertf128_pd(_mm256_castpd128_pd256(row(lane)), row(lane + 2), 1);
    const __m256d high =
        _mm256_insertf128_pd(_mm256_castpd128_pd256(row(lane + 4)), row(lane + 6), 1);
    return _mm512_insertf64x4(_mm512_castpd256_pd512(low), high, 1);
  };
  const __m512d even = four(0), odd = four(1);
  return {V{_mm512_unpacklo_pd(even, odd)}, V{_mm512_unpackhi_pd(even, odd)}};
#elif HWY_TARGET == HWY_AVX2
  const __m256d even = _mm256_insertf128_pd(_mm256_castpd128_pd256(row(0)), row(2), 1);
  const __m256d odd = _mm256_insertf128_pd(_mm256_castpd128_pd256(row(1)), row(3), 1);
  return {V{_mm256_unpacklo_pd(even, odd)}, V{_mm256_unpackhi_pd(even, odd)}};
#else
  return {V{_mm_unpacklo_pd(row(0), row(1))}, V{_mm_unpackhi_pd(row(0), row(1))}};
#endif
}

// Numbers of rows of two floats, in the low 16 bits of each lane; by memory too.
template <class D>
class SingleRows {
 public:
  HWY_INLINE void Set(D d, BitsOf<D> j) {
    (void)d;
    StoreForLanes(hn::RebindToSigned<D>(), j, at_);
    asm("" : "+m"(at_));
  }
  HWY_INLINE Row2<VecOf<D>> Load(const float* rows) const {
    using V = VecOf<D>;
    const auto row = [&](size_t k) HWY_ATTR {
      return reinterpret_cast<const double*>(rows + 2 * size_t{static_cast<uint16_t>(at_[k])});
    };
#if HWY_TARGET == HWY_SSE4
    const auto pair = [&](size_t lane) HWY_ATTR {
      return _mm_castpd_ps(_mm_loadh_pd(_mm_load_sd(row(lane)), row(lane + 1)));
    };
    const __m128 even = pair(0), odd = pair(2);
    return {V{_mm_shuffle_ps(even, odd, 0x88)}, V{_mm_shuffle_ps(even, odd, 0xDD)}};
#elif HWY_TARGET == HWY_AVX2
    // Loads that fill a register and blends: shuffles would wait for their ports.
    const auto four = [&](size_t lane) HWY_ATTR {
      const __m256d a = _mm256_broadcast_sd(row(lane)), b = _mm256_broadcast_sd(row(lane + 1));
      const __m256d c = _mm256_broadcast_sd(row(lane + 4)), e = _mm256_broadcast_sd(row(lane + 5));
      return _mm256_castpd_ps(
          _mm256_blend_pd(_mm256_blend_pd(a, b, 2), _mm256_blend_pd(c, e, 8), 12));
    };
    const __m256 even = four(0), odd = four(2);
    return {V{_mm256_shuffle_ps(even, odd, 0x88)}, V{_mm256_shuffle_ps(even, odd, 0xDD)}};
#else
    // Likewise, the blends by masks of the loads.
    const auto eight = [&](size_t lane) HWY_ATTR {
      __m512d v = _mm512_castpd128_pd512(_mm_load_sd(row(lane)));
      const auto put = [&](__mmask8 where, size_t k) HWY_ATTR {
        v = _mm512_mask_broadcastsd_pd(v, where, _mm_load_sd(row(lane + k)));
      };
      put(0x02, 1);
      put(0x04, 4);
      put(0x08, 5);
      put(0x10, 8);
      put(0x20, 9);
      put(0x40, 12);
      put(0x80, 13);
      return _mm512_castpd_ps(v);
    };
    const __m512 even = eight(0), odd = eight(2);
    return {V{_mm512_shuffle_ps(even, odd, 0x88)}, V{_mm512_shuffle_ps(even, odd, 0xDD)}};
#endif
  }

 private:
  HWY_ALIGN int32_t at_[hn::MaxLanes(D())];
};

// Rows of four numbers.
template <class V>
struct Row4 {
  V a, b, c, d;
};

template <size_t kBytes, class D, size_t kFirst>
HWY_INLINE Row4<VecOf<D>> LoadRows4(D, const double* rows, const RowOffsets<kBytes, D, kFirst>& j) {
  static_assert(kBytes % 32 == 0);
  using V = VecOf<D>;
#if HWY_TARGET == HWY_AVX3
  const auto row = [&](size_t lane) HWY_ATTR { return _mm256_load_pd(j.Of(rows, lane)); };
  const auto two = [&](size_t lane) HWY_ATTR {
    return _mm512_insertf64x4(_mm512_castpd256_pd512(row(lane)), row(lane + 2), 1);
  };
  const __m512d r02 = two(0), r13 = two(1), r46 = two(4), r57 = two(5);
  const __m512d even03 = _mm512_unpacklo_pd(r02, r13), odd03 = _mm512_unpackhi_pd(r02, r13);
  const __m512d even47 = _mm512_unpacklo_pd(r46, r57), odd47 = _mm512_unpackhi_pd(r46, r57);
  return {
      V{_mm512_shuffle_f64x2(even03, even47, 0x88)}, V{_mm512_shuffle_f64x2(odd03, odd47, 0x88)},
      V{_mm512_shuffle_f64x2(even03, even47, 0xDD)}, V{_mm512_shuffle_f64x2(odd03, odd47, 0xDD)}};
#elif HWY_TARGET == HWY_AVX2
  // Halves of rows put together by loads, which leave the shuffles' ports to the transposition.
  const auto two = [&](size_t lane, size_t half) HWY_ATTR {
    const __m128d low = _mm_load_pd(j.Of(rows, lane) + half);
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(low),
                                _mm_load_pd(j.Of(rows, lane + 2) + half), 1);
  };
  const __m256d low02 = two(0, 0), low13 = two(1, 0), high02 = two(0, 2), high13 = two(1, 2);
  return {V{_mm256_unpacklo_pd(low02, low13)}, V{_mm256_unpackhi_pd(low02, low13)},
          V{_mm256_unpacklo_pd(high02, high13)}, V{_mm256_unpackhi_pd(high02, high13)}};
#else
  const double* r0 = j.Of(rows, 0);
  const double* r1 = j.Of(rows, 1);
  const __m128d low0 = _mm_load_pd(r0), high0 = _mm_load_pd(r0 + 2);
  const __m128d low1 = _mm_load_pd(r1), high1 = _mm_load_pd(r1 + 2);
  return {V{_mm_unpacklo_pd(low0, low1)}, V{_mm_unpackhi_pd(low0, low1)},
          V{_mm_unpacklo_pd(high0, high1)}, V{_mm_unpackhi_pd(high0, high1)}};
#endif
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERF_ROWS_INL_H_
