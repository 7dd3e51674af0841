// Two registers of complex numbers as their real and imaginary parts, and back.
//
// Shuffles within blocks of 128 bits are the cheapest; the lanes are then in an order of their own,
// which one more shuffle of the whole register turns into that of memory, and back.

#include "hwy/highway.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/complex.h"
#include "pex_core/_kernel/hardware-inl.h"

#if defined(PEX_CORE__KERNEL_COMPLEX_LANES_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__KERNEL_COMPLEX_LANES_INL_H_
#undef PEX_CORE__KERNEL_COMPLEX_LANES_INL_H_
#else
#define PEX_CORE__KERNEL_COMPLEX_LANES_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SSE4
HWY_INLINE Complex<Floats<2>> UnzipFloats(Floats<2> a, Floats<2> b) {
  const __m128 both = _mm_unpacklo_ps(a.raw, b.raw);
  return {{both}, {_mm_movehl_ps(both, both)}};
}
#endif
HWY_INLINE Complex<Floats<4>> UnzipFloats(Floats<4> a, Floats<4> b) {
  return {{_mm_shuffle_ps(a.raw, b.raw, 0x88)}, {_mm_shuffle_ps(a.raw, b.raw, 0xDD)}};
}
#if HWY_TARGET != HWY_SSE4
using Floats8 = hn::Vec256<float>;
HWY_INLINE Complex<Floats8> UnzipFloats(Floats8 a, Floats8 b) {
  return {{_mm256_shuffle_ps(a.raw, b.raw, 0x88)}, {_mm256_shuffle_ps(a.raw, b.raw, 0xDD)}};
}
#endif
#if HWY_TARGET == HWY_AVX3
using Floats16 = hn::Vec512<float>;
HWY_INLINE Complex<Floats16> UnzipFloats(Floats16 a, Floats16 b) {
  // As memory operands of the shuffles they would be loaded twice.
  __asm__("" : "+v"(a.raw), "+v"(b.raw));
  return {{_mm512_shuffle_ps(a.raw, b.raw, 0x88)}, {_mm512_shuffle_ps(a.raw, b.raw, 0xDD)}};
}
#endif

#if HWY_TARGET == HWY_AVX2
// The numbers in even lanes of two vectors side by side, and those in odd lanes, by the shuffles of
// integers: Golden Cove has two units for them and one for those of doubles.
HWY_INLINE hn::Vec256<double> EvenPairs(hn::Vec256<double> a, hn::Vec256<double> b) {
  return {_mm256_castsi256_pd(
      _mm256_unpacklo_epi64(_mm256_castpd_si256(a.raw), _mm256_castpd_si256(b.raw)))};
}
HWY_INLINE hn::Vec256<double> OddPairs(hn::Vec256<double> a, hn::Vec256<double> b) {
  return {_mm256_castsi256_pd(
      _mm256_unpackhi_epi64(_mm256_castpd_si256(a.raw), _mm256_castpd_si256(b.raw)))};
}
#endif

template <class D, class V = VecOf<D>>
HWY_INLINE Complex<V> Unzip(D d, V a, V b) {
  if constexpr (sizeof(hn::TFromD<D>) == 4) {
    (void)d;
    return UnzipFloats(a, b);
#if HWY_TARGET == HWY_AVX2
  } else if constexpr (sizeof(V) == 32) {
    (void)d;
    return {EvenPairs(a, b), OddPairs(a, b)};
#endif
  } else {
    return {hn::InterleaveLower(d, a, b), hn::InterleaveUpper(d, a, b)};
  }
}

template <class D, class V = VecOf<D>>
HWY_INLINE void Zip(D d, Complex<V> c, V& a, V& b) {
#if HWY_TARGET == HWY_AVX2
  if constexpr (sizeof(hn::TFromD<D>) == 4 && sizeof(V) == 32) {
    const hn::RebindToSigned<D> di;  // the shuffles of integers, as in EvenPairs
    a = hn::BitCast(d, hn::InterleaveLower(di, Bits(d, c.re), Bits(d, c.im)));
    b = hn::BitCast(d, hn::InterleaveUpper(di, Bits(d, c.re), Bits(d, c.im)));
    return;
  }
#endif
  a = hn::InterleaveLower(d, c.re, c.im);
  b = hn::InterleaveUpper(d, c.re, c.im);
}

// The same for kernels whose other shuffles keep the one unit busy that Golden Cove has for those
// of doubles: on AVX2 by the shuffles of integers, which would take multiplications' place
// elsewhere.
template <class D, class V = VecOf<D>>
HWY_INLINE void ZipBesideShuffles(D d, Complex<V> c, V& a, V& b) {
#if HWY_TARGET == HWY_AVX2
  if constexpr (sizeof(hn::TFromD<D>) == 8 && sizeof(V) == 32) {
    a = EvenPairs(c.re, c.im);
    b = OddPairs(c.re, c.im);
    return;
  }
#endif
  Zip(d, c, a, b);
}

// Numbers in the order of Unzip's lanes, from that of memory, and the other way round: pairs of
// floats move like doubles.
template <class D, class V = VecOf<D>>
HWY_INLINE V FromMemoryOrder(D d, V v) {
  constexpr size_t kBytes = hn::MaxLanes(D()) * sizeof(hn::TFromD<D>);
  (void)d;
  if constexpr (kBytes <= 16) {
    return v;
  } else {
    const hn::Repartition<double, D> wide;
    using W = VecOf<decltype(wide)>;
    const W w = hn::BitCast(wide, v);
#if HWY_TARGET == HWY_AVX3
    if constexpr (kBytes == 64) {
      const __m512i from = _mm512_set_epi64(7, 3, 6, 2, 5, 1, 4, 0);
      return hn::BitCast(d, W{_mm512_permutexvar_pd(from, w.raw)});
    } else  // NOLINT
#endif
#if HWY_TARGET != HWY_SSE4
      return hn::BitCast(d, W{_mm256_permute4x64_pd(w.raw, 0xD8)});
#endif
  }
}

template <class D, class V = VecOf<D>>
HWY_INLINE V ToMemoryOrder(D d, V v) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (hn::MaxLanes(D()) * sizeof(hn::TFromD<D>) == 64) {
    const hn::Repartition<double, D> wide;
    const __m512i from = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);
    return hn::BitCast(
        d, VecOf<decltype(wide)>{_mm512_permutexvar_pd(from, hn::BitCast(wide, v).raw)});
  }
#endif
  return FromMemoryOrder(d, v);  // its own inverse
}

// A register of numbers from memory, in the order of Unzip's lanes. On AVX2 a half is loaded twice
// by the load units alone: what is left to do is a shuffle within the halves.
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE VecOf<D> LoadFromMemoryOrder(D d, const T* from) {
#if HWY_TARGET == HWY_AVX2
  if constexpr (sizeof(VecOf<D>) == 32) {
    const auto twice = [](const T* half) HWY_ATTR {
      return _mm256_broadcast_pd(reinterpret_cast<const __m128d*>(half));
    };
    const hn::Repartition<double, D> wide;
    const __m256d both = _mm256_shuffle_pd(twice(from), twice(from + hn::MaxLanes(D()) / 2), 12);
    return hn::BitCast(d, VecOf<decltype(wide)>{both});
  }
#endif
  return FromMemoryOrder(d, hn::LoadU(d, from));
}

// Whether two whole registers are shuffled into any order by single operations, as on AVX-512:
// lanes that real numbers are loaded to may then stay in the order of memory.
template <class D>
inline constexpr bool kShufflesRegisters = HWY_TARGET == HWY_AVX3 &&
                                           sizeof(VecOf<D>) >=
                                               (sizeof(hn::TFromD<D>) == 4 ? 32 : 64);

// Zip of lanes in the order of memory, where kShufflesRegisters.
template <class D, class V = VecOf<D>>
HWY_INLINE void ZipInOrder([[maybe_unused]] D d, Complex<V> c, V& a, V& b) {
#if HWY_TARGET == HWY_AVX3
  using T = hn::TFromD<D>;
  if constexpr (sizeof(T) == 8) {
    const __m512i lower = _mm512_set_epi64(11, 3, 10, 2, 9, 1, 8, 0);
    const __m512i upper = _mm512_set_epi64(15, 7, 14, 6, 13, 5, 12, 4);
    a.raw = _mm512_permutex2var_pd(c.re.raw, lower, c.im.raw);
    b.raw = _mm512_permutex2var_pd(c.re.raw, upper, c.im.raw);
  } else if constexpr (sizeof(V) == 64) {
    const __m512i lower = _mm512_set_epi32(23, 7, 22, 6, 21, 5, 20, 4, 19, 3, 18, 2, 17, 1, 16, 0);
    const __m512i upper =
        _mm512_set_epi32(31, 15, 30, 14, 29, 13, 28, 12, 27, 11, 26, 10, 25, 9, 24, 8);
    a.raw = _mm512_permutex2var_ps(c.re.raw, lower, c.im.raw);
    b.raw = _mm512_permutex2var_ps(c.re.raw, upper, c.im.raw);
  } else {
    const __m256i lower = _mm256_set_epi32(11, 3, 10, 2, 9, 1, 8, 0);
    const __m256i upper = _mm256_set_epi32(15, 7, 14, 6, 13, 5, 12, 4);
    a.raw = _mm256_permutex2var_ps(c.re.raw, lower, c.im.raw);
    b.raw = _mm256_permutex2var_ps(c.re.raw, upper, c.im.raw);
  }
#else
  Zip(d, c, a, b);
#endif
}

// A vector of floats as doubles, part by part, and back.
template <class D, class V = VecOf<D>, class Wide = hn::Rebind<double, D>>
HWY_INLINE Complex<VecOf<Wide>> Widen(D, Complex<V> x) {
  return {hn::PromoteTo(Wide(), x.re), hn::PromoteTo(Wide(), x.im)};
}
template <class D, class W = VecOf<hn::Rebind<double, D>>>
HWY_INLINE Complex<VecOf<D>> Narrow(D d, Complex<W> x) {
  return {hn::DemoteTo(d, x.re), hn::DemoteTo(d, x.im)};
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__KERNEL_COMPLEX_LANES_INL_H_
