// Logarithms in double precision: reduction by a table of 16 accurate points, and the sums of the
// tiers. Base is NaturalLog or DecimalLog.

#include "hwy/highway.h"
#include "pex_core/_heap/real/log_constants.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_LOG_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_LOG_INL_H_
#undef PEX_CORE__HEAP_REAL_LOG_INL_H_
#else
#define PEX_CORE__HEAP_REAL_LOG_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// A table row in each lane.
template <class V>
struct LogRow {
  V a, factor, log, rest;
};

#if HWY_TARGET == HWY_AVX2
// Whole rows by lane, then a transposition: cheaper than a gather for each column.
template <class Base, class D>
HWY_INLINE LogRow<VecOf<D>> LogRowsOf(D, uint64_t i0, uint64_t i1, uint64_t i2, uint64_t i3) {
  using V = VecOf<D>;
  constexpr auto& rows = Base::kRows.row;
  const __m256d r0 = _mm256_load_pd(rows[i0]), r1 = _mm256_load_pd(rows[i1]);
  const __m256d r2 = _mm256_load_pd(rows[i2]), r3 = _mm256_load_pd(rows[i3]);
  const __m256d even01 = _mm256_unpacklo_pd(r0, r1), odd01 = _mm256_unpackhi_pd(r0, r1);
  const __m256d even23 = _mm256_unpacklo_pd(r2, r3), odd23 = _mm256_unpackhi_pd(r2, r3);
  return {V{_mm256_permute2f128_pd(even01, even23, 0x20)},
          V{_mm256_permute2f128_pd(odd01, odd23, 0x20)},
          V{_mm256_permute2f128_pd(even01, even23, 0x31)},
          V{_mm256_permute2f128_pd(odd01, odd23, 0x31)}};
}
#endif

// Rows `i & 15`.
template <class Base, class D>
HWY_INLINE LogRow<VecOf<D>> LogLookUp(D d, BitsOf<D> i) {
  using V = VecOf<D>;
#if HWY_TARGET == HWY_AVX3
  (void)d;
  const auto column = [i](const double* c) HWY_ATTR {
    return V{_mm512_permutex2var_pd(_mm512_load_pd(c), i.raw, _mm512_load_pd(c + 8))};
  };
  constexpr auto& t = Base::kTable;
  return {column(t.a), column(t.factor), column(t.log), column(t.rest)};
#elif HWY_TARGET == HWY_AVX2
  const auto offset = hn::And(i, SetBits(d, 15));
  const __m128i lower = _mm256_castsi256_si128(offset.raw);
  const __m128i upper = _mm256_extracti128_si256(offset.raw, 1);
  return LogRowsOf<Base>(d, static_cast<uint64_t>(_mm_cvtsi128_si64(lower)),
                         static_cast<uint64_t>(_mm_extract_epi64(lower, 1)),
                         static_cast<uint64_t>(_mm_cvtsi128_si64(upper)),
                         static_cast<uint64_t>(_mm_extract_epi64(upper, 1)));
#else
  const auto offset = hn::And(i, SetBits(d, 15));
  constexpr auto& rows = Base::kRows.row;
  const double* r0 = rows[_mm_cvtsi128_si64(offset.raw)];
  const double* r1 = rows[_mm_extract_epi64(offset.raw, 1)];
  const __m128d low0 = _mm_load_pd(r0), high0 = _mm_load_pd(r0 + 2);
  const __m128d low1 = _mm_load_pd(r1), high1 = _mm_load_pd(r1 + 2);
  return {V{_mm_unpacklo_pd(low0, low1)}, V{_mm_unpackhi_pd(low0, low1)},
          V{_mm_unpacklo_pd(high0, high1)}, V{_mm_unpackhi_pd(high0, high1)}};
#endif
}

// x = 2^e m, 3/4 <= m < 3/2, for positive normal x; the table row of the sixteenth next to m.
template <class D>
struct LogReduced {
  VecOf<D> e, m;
  BitsOf<D> exponent_bits;  // e << 52, less a constant
  LogRow<VecOf<D>> row;
};

inline constexpr int64_t kThreeQuarters = 0x3FE8000000000000;
inline constexpr int64_t kBias = int64_t{1024} << 52;  // keeps biased exponents positive

template <class Base, class D, class V>
HWY_INLINE LogReduced<D> LogReduce(D d, V x) {
  const hn::RebindToUnsigned<D> du;
  const auto above = hn::Add(Bits(d, x), SetBits(d, static_cast<uint64_t>(kBias - kThreeQuarters)));
  // 2^52 + 1024 + e, made by the bits.
  const auto biased = hn::Or(hn::ShiftRight<52>(hn::BitCast(du, above)),
                             hn::Set(du, 0x4330000000000000));
  LogReduced<D> r;
  r.e = hn::Sub(hn::BitCast(d, biased), hn::Set(d, 0x1p52 + 1024));
  r.exponent_bits = hn::And(above, SetBits(d, 0xFFF0000000000000));
  r.m = FromBits(d, hn::Add(hn::And(above, SetBits(d, 0x000FFFFFFFFFFFFF)),
                            SetBits(d, static_cast<uint64_t>(kThreeQuarters))));
  // The sum ends in the number of sixteenths.
  r.row = LogLookUp<Base>(d, Bits(d, hn::Add(r.m, hn::Set(d, 0x1.8p48))));
  return r;
}

template <class D, class V, size_t N>
HWY_INLINE V LogPolynomial(D d, V p, V p2, const double (&c)[N]) {
  if constexpr (N > 4) {
    return Estrin(d, p, p2, c);
  } else {
    return EvenOdd(d, p, p2, c);
  }
}

// e log(2) + log(a) + log(1 + (m - a)/a) in full, p + p_rest standing for the polynomial's argument:
// at most 0.53 ulp with the HA polynomial.
template <class Base, class D, class V, size_t N>
HWY_INLINE V LogSum(D d, const LogReduced<D>& x, V p, V p_rest, const double (&c)[N]) {
  const V p2 = hn::Mul(p, p);
  const V q = hn::Mul(p2, LogPolynomial(d, p, p2, c));
  const V head = hn::Add(hn::Mul(x.e, hn::Set(d, Base::kLog2Hi)), x.row.log);  // exact
  const Pair<V> s = FastTwoSum(head, p);
  const V tail = hn::Add(q, hn::Mul(x.e, hn::Set(d, Base::kLog2Lo)));
  return hn::Add(s.hi, hn::Add(s.lo, hn::Add(p_rest, tail)));
}

// The plain sum: a few roundings more, log(2) in one part.
template <class Base, class D, class V, size_t N>
HWY_INLINE V LogPlain(D d, const LogReduced<D>& x, V p, const double (&c)[N]) {
  const V p2 = hn::Mul(p, p);
  const V s = hn::Add(p, hn::Mul(p2, LogPolynomial(d, p, p2, c)));
  const V head = hn::Add(hn::Mul(x.e, hn::Set(d, Base::kLog2Hi + Base::kLog2Lo)), x.row.log);
  return hn::Add(head, s);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_LOG_INL_H_
