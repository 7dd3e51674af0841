// Sine and cosine about a table of accurate points near the multiples of pi/16 (S. Gal, 1986), for
// the HA kernels: the points' sines and cosines are doubles to within 2^-64, so that one word of
// each is enough.

#include "hwy/highway.h"
#include "pex_core/_heap/real/trig-inl.h"
#include "pex_core/_heap/real/trig_rows.h"

#if defined(PEX_CORE__HEAP_REAL_TRIG_SIXTEENTH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_TRIG_SIXTEENTH_INL_H_
#undef PEX_CORE__HEAP_REAL_TRIG_SIXTEENTH_INL_H_
#else
#define PEX_CORE__HEAP_REAL_TRIG_SIXTEENTH_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// x = a + y + rest, |y| < 0.0983, for a next to a multiple of pi/16; its number plus 8 stands in
// the low bits of `index`. sin and cos are those of a but for the sign of bit 4 of `index`.
template <class D>
struct Sixteenth {
  VecOf<D> y, rest, sin, cos;
  BitsOf<D> index;
};

#if HWY_TARGET == HWY_AVX2
// The even, or the odd, doubles of two vectors' halves. GCC would make an unpacking of it, for
// which Golden Cove has one pipe where this has two.
template <int kOdd>
HWY_INLINE __m256d EveryOther(__m256d a, __m256d b) {
  __m256d r;
  asm("vshufpd %3, %2, %1, %0" : "=x"(r) : "x"(a), "x"(b), "i"(15 * kOdd));
  return r;
}

// Rows of kWidth doubles by lane. In each lane's first byte sixteen times the row, of sixteen.
template <size_t kWidth, size_t K>
struct RowPlaces {
  HWY_ALIGN uint8_t row[K][32];
  template <class I>
  HWY_INLINE explicit RowPlaces(const I (&index)[K]) {
    const hn::ScalableTag<uint8_t> d8;
    for (size_t k = 0; k < K; ++k) {
      hn::Store(hn::BitCast(d8, hn::ShiftLeft<4>(index[k])), d8, row[k]);
    }
    asm volatile("" : "+m"(row));  // else GCC takes the lanes out one by one
  }
  // A column of the table and the one after it, transposed.
  template <class V>
  HWY_INLINE void Columns(const double* column, size_t k, V& even, V& odd) const {
    const auto half = [&](int lane) HWY_ATTR {
      const auto* first = reinterpret_cast<const char*>(column);
      return _mm_load_pd(
          reinterpret_cast<const double*>(first + kWidth / 2 * size_t{row[k][8 * lane]}));
    };
    const auto halves = [&](int lane) HWY_ATTR {
      return _mm256_insertf128_pd(_mm256_castpd128_pd256(half(lane)), half(lane + 2), 1);
    };
    const __m256d lanes02 = halves(0), lanes13 = halves(1);
    even = V{EveryOther<0>(lanes02, lanes13)};
    odd = V{EveryOther<1>(lanes02, lanes13)};
  }
  // The columns of tables of rows for the lanes of both halves: whole rows, in half the loads.
  template <class V>
  HWY_INLINE void Columns(const double* lower, const double* upper, size_t k, V& first, V& second,
                          V& third) const {
    const auto at = [&](const double* table, int lane) HWY_ATTR {
      const auto* rows = reinterpret_cast<const char*>(table);
      return _mm256_load_pd(
          reinterpret_cast<const double*>(rows + kWidth / 2 * size_t{row[k][8 * lane]}));
    };
    const __m256d r0 = at(lower, 0), r1 = at(lower, 1), r2 = at(upper, 2), r3 = at(upper, 3);
    const __m256d even01 = EveryOther<0>(r0, r1), odd01 = EveryOther<1>(r0, r1);
    const __m256d even23 = EveryOther<0>(r2, r3), odd23 = EveryOther<1>(r2, r3);
    first = V{_mm256_blend_pd(even01, even23, 12)};
    second = V{_mm256_blend_pd(odd01, odd23, 12)};
    third = V{_mm256_permute2f128_pd(even01, even23, 0x21)};
  }
};
#endif

template <class D, class V>
HWY_INLINE void TrigRowsAt(D d, BitsOf<D> index, V& offset, V& sin, V& cos) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  const auto column = [index](const double* c) HWY_ATTR {
    return V{_mm512_permutex2var_pd(_mm512_load_pd(c), index.raw, _mm512_load_pd(c + 8))};
  };
  offset = column(kTrigTable.offset);
  sin = column(kTrigTable.sin);
  cos = column(kTrigTable.cos);
#elif HWY_TARGET == HWY_AVX2
  const auto bytes = hn::And(hn::ShiftLeft<5>(index), SetBits(d, 15 * 32));
  const __m128i lower = _mm256_castsi256_si128(bytes.raw);
  const __m128i upper = _mm256_extracti128_si256(bytes.raw, 1);
  const auto row = [](int64_t at) HWY_ATTR {
    return _mm256_load_pd(
        reinterpret_cast<const double*>(reinterpret_cast<const char*>(kTrigPointRows.row) + at));
  };
  const __m256d r0 = row(_mm_cvtsi128_si64(lower)), r1 = row(_mm_extract_epi64(lower, 1));
  const __m256d r2 = row(_mm_cvtsi128_si64(upper)), r3 = row(_mm_extract_epi64(upper, 1));
  const __m256d even01 = _mm256_unpacklo_pd(r0, r1), odd01 = _mm256_unpackhi_pd(r0, r1);
  const __m256d even23 = _mm256_unpacklo_pd(r2, r3), odd23 = _mm256_unpackhi_pd(r2, r3);
  offset = V{_mm256_permute2f128_pd(even01, even23, 0x20)};
  sin = V{_mm256_permute2f128_pd(even01, even23, 0x31)};
  cos = V{_mm256_permute2f128_pd(odd01, odd23, 0x31)};
#else
  const auto i = hn::And(index, SetBits(d, 15));
  const double* r0 = kTrigPointRows.row[_mm_cvtsi128_si64(i.raw)];
  const double* r1 = kTrigPointRows.row[_mm_extract_epi64(i.raw, 1)];
  const __m128d high0 = _mm_load_pd(r0 + 2), high1 = _mm_load_pd(r1 + 2);
  offset = V{_mm_unpacklo_pd(_mm_load_pd(r0), _mm_load_pd(r1))};
  sin = V{_mm_unpacklo_pd(high0, high1)};
  cos = V{_mm_unpackhi_pd(high0, high1)};
#endif
}

// The rows of some vectors.
template <class D, class V, size_t K>
HWY_INLINE void TrigRowsAt(D d, const BitsOf<D> (&index)[K], V (&offset)[K], V (&sin)[K],
                           V (&cos)[K]) {
#if HWY_TARGET == HWY_AVX2
  (void)d;
  RowPlaces<4, K> places(index);
  for (size_t k = 0; k < K; ++k) {
    places.Columns(kTrigPointLowerRows.row[0], kTrigPointUpperRows.row[0], k, offset[k], sin[k],
                   cos[k]);
  }
#else
  for (size_t k = 0; k < K; ++k) TrigRowsAt(d, index[k], offset[k], sin[k], cos[k]);
#endif
}

// For |x| < 2^12: the steps of pi/16, rounded, with a second reading as numbers.
template <class D, class V, size_t K>
HWY_INLINE void NearestSixteenth(D d, const V (&x)[K], Sixteenth<D> (&u)[K], V (&n)[K]) {
  const V shifter = hn::Set(d, kShifter + 8);  // rows begin at -8
  for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(x[k], hn::Set(d, 0x1.45f306dc9c883p+2));
  for (size_t k = 0; k < K; ++k) n[k] = hn::Add(n[k], shifter);
  for (size_t k = 0; k < K; ++k) {
    u[k].index = Bits(d, n[k]);
    n[k] = hn::Sub(n[k], shifter);
  }
}

// What remains of x for the rows u.index. The products with the first two parts of pi/16 are exact;
// of the sum, one rounding goes to the rest.
template <class D, class V, size_t K>
HWY_INLINE void SubtractSixteenths(D d, const V (&x)[K], const V (&n)[K], Sixteenth<D> (&u)[K]) {
  const V part2 = hn::Set(d, 0x1.68c234c4c0000p-42);
  V high[K], offset[K], sin[K], cos[K];
  BitsOf<D> index[K];
  SubExactProducts(x, n, hn::Set(d, 0x1.921fb54440000p-3), high);
  for (size_t k = 0; k < K; ++k) index[k] = u[k].index;
  TrigRowsAt(d, index, offset, sin, cos);
  for (size_t k = 0; k < K; ++k) {
    u[k].sin = sin[k];
    u[k].cos = cos[k];
  }
  for (size_t k = 0; k < K; ++k) high[k] = hn::Sub(high[k], offset[k]);
  for (size_t k = 0; k < K; ++k) u[k].y = SubExactProduct(n[k], part2, high[k]);
  for (size_t k = 0; k < K; ++k) high[k] = hn::Sub(high[k], u[k].y);
  SubExactProducts(high, n, part2, high);
  for (size_t k = 0; k < K; ++k) {
    u[k].rest = hn::Sub(high[k], hn::Mul(n[k], hn::Set(d, 0x1.98a2e03707345p-80)));
  }
}

template <class D, class V, size_t K>
HWY_INLINE void ReduceToSixteenth(D d, const V (&x)[K], Sixteenth<D> (&u)[K]) {
  V n[K];
  NearestSixteenth(d, x, u, n);
  SubtractSixteenths(d, x, n, u);
}

// sin(y) - y + rest and cos(y) - 1.
template <class D, class V, size_t K>
HWY_INLINE void SmallSineCosine(D d, const Sixteenth<D> (&u)[K], V (&sin)[K], V (&cos)[K]) {
  V y2[K];
  for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u[k].y, u[k].y);
  // The first products are exact: of the square 26 bits.
  for (size_t k = 0; k < K; ++k) {
    const V w = FromBits(d, hn::And(Bits(d, y2[k]), SetBits(d, ~uint64_t{0} << 27)));
    sin[k] = AddExactProduct(w, hn::Set(d, kSinFine[3]), hn::Set(d, kSinFine[2]));
    cos[k] = AddExactProduct(w, hn::Set(d, kCosFine[3]), hn::Set(d, kCosFine[2]));
  }
  for (size_t i = 2; i-- > 0;) {
    for (size_t k = 0; k < K; ++k)
      sin[k] = hn::Add(hn::Mul(sin[k], y2[k]), hn::Set(d, kSinFine[i]));
    for (size_t k = 0; k < K; ++k)
      cos[k] = hn::Add(hn::Mul(cos[k], y2[k]), hn::Set(d, kCosFine[i]));
  }
  for (size_t k = 0; k < K; ++k) cos[k] = hn::Mul(y2[k], cos[k]);
  for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u[k].y, y2[k]);
  for (size_t k = 0; k < K; ++k) sin[k] = hn::Add(hn::Mul(y2[k], sin[k]), u[k].rest);
}

// The sine or cosine of a + y but for the sign, as an unevaluated sum: hi is the rounded value of
// sin(a) + cos(a) y or cos(a) - sin(a) y. What hi leaves of the table's number and the rounded
// product is a number.
template <Wave kWave, class D, class V>
HWY_INLINE Pair<V> SumOfAngles(D d, const Sixteenth<D>& u, V small_sin, V small_cos) {
  if constexpr (kWave == Wave::kSine) {
    const V hi = hn::Add(u.sin, hn::Mul(u.cos, u.y));
    const V less = Remainder(d, hn::Sub(hi, u.sin), u.cos, u.y);
    const V tail = hn::Add(hn::Mul(u.sin, small_cos), hn::Mul(u.cos, small_sin));
    return {hi, hn::Sub(tail, less)};
  } else {
    const V hi = hn::Sub(u.cos, hn::Mul(u.sin, u.y));
    const V more = Remainder(d, hn::Sub(u.cos, hi), u.sin, u.y);
    const V tail = hn::Sub(hn::Mul(u.cos, small_cos), hn::Mul(u.sin, small_sin));
    return {hi, hn::Add(more, tail)};
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_SIXTEENTH_INL_H_
