// |x|^y in single precision as 2^(y log2 |x|). log2 of 2^e a (1 + t), a the sixteenth next to the
// mantissa, is e + log2(a) + a polynomial in t; 2^(k/16 + f) is a power from a table times one.

#include "hwy/highway.h"
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_heap/real/pow_point_tables.h"
#include "pex_core/_heap/real/pow_single_tables.h"
#include "pex_core/_heap/real/rows.h"
#include "pex_core/_heap/real/slog-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_POW_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_POW_SINGLE_INL_H_
#undef PEX_CORE__HEAP_REAL_POW_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_POW_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

inline constexpr auto kPowWideRows = ByRows(kPowWideTable.factor, kPowWideTable.log);

// Positive normal x = 2^e m, m = a + t, 3/4 <= m < 3/2; the sixteenth a is the row `i & 15` of the
// tables.
template <class D>
struct sPowReduced {
  BitsOf<D> e, i;
  VecOf<D> m, t;
};

template <class D, class V>
HWY_INLINE sPowReduced<D> sPowReduce(D d, V x) {
  sPowReduced<D> r;
  const auto above = hn::Sub(Bits(d, x), SetBits(d, BitsOfNumber(0.75f)));
  r.m = FromBits(d, hn::Sub(Bits(d, x), hn::And(above, SetBits(d, 0xFF800000))));
  r.e = hn::ShiftRight<23>(above);
  const V shifter = hn::Set(d, 0x1.8p19f);  // the sum ends in the number of sixteenths
  const V shifted = hn::Add(r.m, shifter);
  r.i = Bits(d, shifted);
  r.t = hn::Sub(r.m, hn::Sub(shifted, shifter));
  return r;
}

// Entries `i & 15` of two columns of doubles, for indexes in the lanes of floats.
template <class D>
HWY_INLINE void PowWideLookUp(D, hn::Vec<hn::Rebind<int32_t, D>> i, hn::Vec<D>& factor,
                              hn::Vec<D>& log) {
#if HWY_TARGET == HWY_AVX3
  const __m512i wide = _mm512_cvtepi32_epi64(i.raw);
  const auto column = [wide](const double* c) HWY_ATTR {
    return hn::Vec<D>{_mm512_permutex2var_pd(_mm512_load_pd(c), wide, _mm512_load_pd(c + 8))};
  };
  factor = column(kPowWideTable.factor);
  log = column(kPowWideTable.log);
#elif HWY_TARGET == HWY_AVX2
  // Whole rows by lane: cheaper than gathers.
  const __m128i offset = _mm_slli_epi32(_mm_and_si128(i.raw, _mm_set1_epi32(15)), 4);
  const uint64_t lower = static_cast<uint64_t>(_mm_cvtsi128_si64(offset));
  const uint64_t upper = static_cast<uint64_t>(_mm_extract_epi64(offset, 1));
  const auto row = [](uint64_t bytes) HWY_ATTR {
    return _mm_load_pd(
        reinterpret_cast<const double*>(reinterpret_cast<const char*>(kPowWideRows.row) + bytes));
  };
  const __m256d even =
      _mm256_set_m128d(row(static_cast<uint32_t>(upper)), row(static_cast<uint32_t>(lower)));
  const __m256d odd = _mm256_set_m128d(row(upper >> 32), row(lower >> 32));
  factor.raw = _mm256_unpacklo_pd(even, odd);
  log.raw = _mm256_unpackhi_pd(even, odd);
#else
  const hn::RebindToSigned<D> di;
  const auto wide = hn::And(hn::PromoteTo(di, i), hn::Set(di, 15));
  factor = hn::GatherIndex(D(), kPowWideTable.factor, wide);
  log = hn::GatherIndex(D(), kPowWideTable.log, wide);
#endif
}

// 2^(k/16) in double; only the low bits of k count.
template <class D>
HWY_INLINE VecOf<D> PowWideSixteenth(D d, BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX2
  const __m256i index = _mm256_and_si256(k.raw, _mm256_set1_epi64x(15));
  const __m128i lower = _mm256_castsi256_si128(index);
  const __m128i upper = _mm256_extracti128_si256(index, 1);
  const auto entry = [](int64_t j)
                         HWY_ATTR { return _mm_cvtsi64_si128(sExpShiftedSixteenthsHA[j]); };
  const __m128i t01 =
      _mm_unpacklo_epi64(entry(_mm_cvtsi128_si64(lower)), entry(_mm_extract_epi64(lower, 1)));
  const __m128i t23 =
      _mm_unpacklo_epi64(entry(_mm_cvtsi128_si64(upper)), entry(_mm_extract_epi64(upper, 1)));
  const BitsOf<D> t{_mm256_set_m128i(t23, t01)};
#else
  const auto t = LookupWideSixteenth(d, sExpShiftedSixteenthsHA, k);
#endif
  return FromBits(d, hn::Add(t, hn::ShiftLeft<48>(k)));
}

// log2 of positive normal x in double, to 2^-41.
template <class D, class V>
HWY_INLINE hn::Vec<hn::Rebind<double, D>> PowWideLog2(D d, V x) {
  const hn::Rebind<double, D> wide;
  const auto u = sPowReduce(d, x);
  hn::Vec<decltype(wide)> factor, log;
  PowWideLookUp(wide, u.i, factor, log);
  const auto p = hn::Mul(hn::PromoteTo(wide, u.t), factor);
  const auto p2 = hn::Mul(p, p);
  return hn::Add(hn::Add(hn::PromoteTo(wide, u.e), log),
                 hn::Add(p, hn::Mul(p2, EvenOdd(wide, p, p2, kPowLog2HA))));
}

// 2^z, to 2^-38, rounded once to single. Beyond 2^-300 and 2^300 the float is 0 or infinite
// anyway.
template <class D, class W>
HWY_INLINE VecOf<D> PowWideExp2(D d, W z) {
  const hn::Rebind<double, D> wide;
  z = hn::Min(hn::Max(z, hn::Set(wide, -300.0)), hn::Set(wide, 300.0));
  const W shifter = hn::Set(wide, 0x1.8p48);  // the sum ends in the number of sixteenths
  const W shifted = hn::Add(z, shifter);
  const W f = hn::Sub(z, hn::Sub(shifted, shifter));
  const W s = PowWideSixteenth(wide, Bits(wide, shifted));
  return hn::DemoteTo(d, hn::Add(s, hn::Mul(s, hn::Mul(f, Horner(wide, f, kPowExp2HA)))));
}

// 2^(high + low) = power + power p, |low| below 2^-8 |high|, c the polynomial: the bits of power
// are those of `table` and of k << 19 added up.
template <class D>
struct sPowExp2Parts {
  VecOf<D> p;
  BitsOf<D> table, k;
};

// With what the table's powers of 2^(1/16) lack, or without.
template <bool kFull, class D, class V, size_t K, size_t N>
HWY_INLINE void sPowExp2Reduce(D d, const V (&high)[K], const V (&low)[K], const float (&c)[N],
                               sPowExp2Parts<D> (&r)[K]) {
  const V shifter = hn::Set(d, 0x1.8p19f);  // the sum ends in the number of sixteenths
  V shifted[K], f[K], p[K];
  for (size_t k = 0; k < K; ++k) shifted[k] = hn::Add(hn::Add(high[k], low[k]), shifter);
  EndStep(shifted);
  for (size_t k = 0; k < K; ++k) {
    f[k] = hn::Add(hn::Sub(high[k], hn::Sub(shifted[k], shifter)), low[k]);
  }
  EndStep(f);
  Horner(d, f, c, p);
  for (size_t k = 0; k < K; ++k) {
    r[k].k = Bits(d, shifted[k]);
    r[k].p = hn::Mul(f[k], p[k]);
    if constexpr (kFull) {
      r[k].p = hn::Add(r[k].p, sLogIndex<D>(d, r[k].k).LookUp(kPowSixteenthRest));
    }
    r[k].table = LookupSixteenth(d, sExpShiftedSixteenths, r[k].k);
  }
}

// Whether |x| > limit.
template <class D, class V>
HWY_INLINE hn::Mask<hn::RebindToSigned<D>> sPowBeyond(D d, V x, float limit) {
  return hn::Gt(Bits(d, hn::Abs(x)), SetBits(d, BitsOfNumber(limit)));
}

// For every high, one vector.
template <bool kFull, class D, class V, size_t N>
HWY_NOINLINE V sPowExp2Far(D d, V high, V low, const float (&c)[N]) {
  low = Selected(hn::IfThenZeroElse(hn::RebindMask(d, sPowBeyond(d, high, 200.0f)), low));
  high = hn::Min(hn::Max(high, hn::Set(d, -200.0f)), hn::Set(d, 200.0f));
  const V highs[1] = {high}, lows[1] = {low};
  sPowExp2Parts<D> parts[1];
  sPowExp2Reduce<kFull>(d, highs, lows, c, parts);
  const auto [p, table, k] = parts[0];
  // Half of the exponent after the sum: what is not far comes out the same.
  const auto halves = hn::And(hn::ShiftRight<1>(k), SetBits(d, 0xFFFFFFF0));
  const V power = FromBits(d, hn::Add(table, hn::ShiftLeft<19>(hn::Sub(k, halves))));
  const V rest = FromBits(d, hn::Add(SetBits(d, BitsOfNumber(1.0f)), hn::ShiftLeft<19>(halves)));
  const V near = hn::Mul(hn::Add(power, hn::Mul(power, p)), rest);
  const auto tiny = hn::Lt(Bits(d, near), SetBits(d, BitsOfNumber(0x1p-125f)));
  if (hn::AllFalse(hn::RebindToSigned<D>(), tiny)) return near;
  // Subnormal numbers are rounded once, from double.
  const hn::Half<D> half;
  const hn::Rebind<double, decltype(half)> wide;
  const auto once = [half, wide](auto p_half, auto power_half, auto rest_half) HWY_ATTR {
    const auto factor = hn::Add(hn::PromoteTo(wide, p_half), hn::Set(wide, 1.0));
    const auto scale = hn::Mul(hn::PromoteTo(wide, power_half), hn::PromoteTo(wide, rest_half));
    return hn::DemoteTo(half, hn::Mul(factor, scale));
  };
  const V rounded = hn::Combine(
      d, once(hn::UpperHalf(half, p), hn::UpperHalf(half, power), hn::UpperHalf(half, rest)),
      once(hn::LowerHalf(half, p), hn::LowerHalf(half, power), hn::LowerHalf(half, rest)));
  return hn::IfThenElse(hn::RebindMask(d, tiny), rounded, near);
}

template <bool kFull, class D, class V, size_t K, size_t N>
HWY_INLINE void sPowExp2(D d, const V (&high)[K], const V (&low)[K], const float (&c)[N],
                         V (&r)[K]) {
  auto far = sPowBeyond(d, high[0], 64.0f);  // below, no product is subnormal
  for (size_t k = 1; k < K; ++k) far = hn::Or(far, sPowBeyond(d, high[k], 64.0f));
  if (!hn::AllFalse(hn::RebindToSigned<D>(), far)) [[unlikely]] {
    for (size_t k = 0; k < K; ++k) r[k] = sPowExp2Far<kFull>(d, high[k], low[k], c);
    return;
  }
  sPowExp2Parts<D> parts[K];
  sPowExp2Reduce<kFull>(d, high, low, c, parts);
  for (size_t k = 0; k < K; ++k) {
    const V power = FromBits(d, hn::Add(parts[k].table, hn::ShiftLeft<19>(parts[k].k)));
    r[k] = hn::Add(power, hn::Mul(power, parts[k].p));
  }
}

// x^y for finite y, by double: y log2(x) to 2^-34, its power to 2^-38.
template <class D, class V>
HWY_INLINE V PowWide(D d, V x, V y) {
  const hn::Rebind<double, D> wide;
  const auto z = hn::Mul(hn::PromoteTo(wide, y), PowWideLog2(d, x));
  return PowWideExp2(d, z);
}

// x^y for 2^-40 <= |y| <= 2^33 or y = 0, so that no product leaves the range, with log2(x) and its
// product with y in pairs of floats. In steps of all vectors.
template <class D, class V, size_t K>
HWY_INLINE void sPowPairs(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
  constexpr float kLn2 = 0x1.62e43p-1f, kLn2Rest = -0x1.05c61p-29f;
  V p_hi[K], p_lo[K], second_hi[K], tail[K], head[K], high[K], low[K];
  BitsOf<D> i[K];
  for (size_t k = 0; k < K; ++k) {
    const auto u = sPowReduce(d, x[k]);
    const sLogIndex<D> row(d, u.i);
    i[k] = u.i;
    head[k] = hn::Add(hn::ConvertTo(d, u.e), row.LookUp(kPowPoints.log));  // exact
    // log2(m) = log2(a) + p - ln2/2 p^2 + p^3 ..., the first three in full.
    const V t = hn::Sub(u.m, row.LookUp(kPowPoints.a));  // exact
    const Pair<V> p = TwoProduct(d, t, row.LookUp(kPowPoints.factor));
    p_hi[k] = p.hi;
    p_lo[k] = p.lo;
  }
  EndStep(p_hi);
  V poly[K];
  Horner(d, p_hi, kPowLog2LA, poly);
  EndStep(poly);
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> square = TwoProduct(d, p_hi[k], p_hi[k]);
    const Pair<V> second = TwoProduct(d, square.hi, hn::Set(d, -kLn2 / 2));
    const V higher =
        hn::Mul(square.hi, hn::Add(hn::Mul(p_hi[k], poly[k]), hn::Set(d, -kLn2Rest / 2)));
    const V second_rest = hn::Add(second.lo, hn::Mul(square.lo, hn::Set(d, -kLn2 / 2)));
    const V slope = hn::Sub(hn::Set(d, 1.0f), hn::Mul(p_hi[k], hn::Set(d, kLn2)));
    const V first_rest = hn::Add(hn::Mul(p_lo[k], slope), hn::Mul(p_hi[k], hn::Set(d, kLog2ERest)));
    second_hi[k] = second.hi;
    tail[k] = hn::Add(hn::Add(first_rest, second_rest),
                      hn::Add(higher, sLogIndex<D>(d, i[k]).LookUp(kPowPoints.rest)));
  }
  EndStep(tail);
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> s = FastTwoSum(head[k], p_hi[k]);
    const Pair<V> log2 = FastTwoSum(s.hi, second_hi[k]);
    const V log2_lo = hn::Add(hn::Add(log2.lo, s.lo), tail[k]);
    const Pair<V> z = TwoProduct(d, y[k], log2.hi);
    high[k] = z.hi;
    low[k] = hn::Add(z.lo, hn::Mul(y[k], log2_lo));
  }
  EndStep(low);
  sPowExp2<true>(d, high, low, kPowExp2LA, r);
}

// The same in float, but for the powers next to the largest numbers, where an error would show as
// infinity: 15 bits.
template <class D, class V, size_t K>
HWY_INLINE void sPowShort(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
  const hn::RebindToSigned<D> di;
  V z[K], none[K];
  for (size_t k = 0; k < K; ++k) {
    const auto u = sPowReduce(d, x[k]);
    const sLogIndex<D> row(d, u.i);
    const V p = hn::Mul(u.t, row.LookUp(kPowSingleTable.factor));
    const V p2 = hn::Mul(p, p);
    const V head = hn::Add(hn::ConvertTo(d, u.e), row.LookUp(kPowSingleTable.log));
    const V log2 = hn::Add(head, hn::Add(p, hn::Mul(p2, EvenOdd(d, p, p2, kPowLog2EP))));
    z[k] = hn::Mul(y[k], log2);
    none[k] = hn::Zero(d);
  }
  EndStep(z);
  const auto at_edge = [d](V v) HWY_ATTR {  // and positive
    return hn::Gt(Bits(d, v), SetBits(d, BitsOfNumber(127.9f)));
  };
  auto any = at_edge(z[0]);
  for (size_t k = 1; k < K; ++k) any = hn::Or(any, at_edge(z[k]));
  if (hn::AllFalse(di, any)) [[likely]] {
    sPowExp2<false>(d, z, none, kPowExp2EP, r);
    return;
  }
  // There the short power could overflow though the power does not.
  const hn::Half<D> half;
  for (size_t k = 0; k < K; ++k) {
    const auto edge = hn::RebindMask(d, at_edge(z[k]));
    const V power =
        sPowExp2Far<false>(d, Selected(hn::IfThenZeroElse(edge, z[k])), none[k], kPowExp2EP);
    const V wide =
        hn::Combine(d, PowWide(half, hn::UpperHalf(half, x[k]), hn::UpperHalf(half, y[k])),
                    PowWide(half, hn::LowerHalf(half, x[k]), hn::LowerHalf(half, y[k])));
    r[k] = hn::IfThenElse(edge, wide, power);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_POW_SINGLE_INL_H_
