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
// Whole rows by lane, then a transposition: cheaper than a gather for each column. The rows begin
// at these bytes of the table.
template <class Base, class D>
HWY_INLINE LogRow<VecOf<D>> LogRowsAt(D, uint64_t b0, uint64_t b1, uint64_t b2, uint64_t b3) {
  using V = VecOf<D>;
  const auto row = [](uint64_t bytes) HWY_ATTR {
    return _mm256_load_pd(
        reinterpret_cast<const double*>(reinterpret_cast<const char*>(Base::kRows.row) + bytes));
  };
  const __m256d r0 = row(b0), r1 = row(b1), r2 = row(b2), r3 = row(b3);
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
  static_assert(sizeof(Base::kRows.row[0]) == 32);
  const auto offset = hn::And(hn::ShiftLeft<5>(i), SetBits(d, 15 * 32));
  const __m128i lower = _mm256_castsi256_si128(offset.raw);
  const __m128i upper = _mm256_extracti128_si256(offset.raw, 1);
  return LogRowsAt<Base>(d, static_cast<uint64_t>(_mm_cvtsi128_si64(lower)),
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

// x = 2^e m, 25/32 <= m < 25/16, for positive normal x; the table row of the sixteenth next to m.
template <class D>
struct LogReduced {
  VecOf<D> e, m;
  BitsOf<D> exponent_bits;  // e << 52, less a constant
  LogRow<VecOf<D>> row;
};

inline constexpr int64_t kLeastM = 0x3FE9000000000000;
// Keeps biased exponents positive; with 0.75 it makes the sum of LogShortReduce the key of
// LogShortRarity.
inline constexpr uint64_t kBiasOfE = 3069, kBias = kBiasOfE << 52;

template <class Base, class D, class V, size_t K>
HWY_INLINE void LogReduce(D d, const V (&x)[K], LogReduced<D> (&r)[K]) {
  const hn::RebindToUnsigned<D> du;
  for (size_t k = 0; k < K; ++k) {
    const auto above = hn::Add(Bits(d, x[k]), SetBits(d, kBias - static_cast<uint64_t>(kLeastM)));
    // 2^52 + kBiasOfE + e, made by the bits.
    const auto biased =
        hn::Or(hn::ShiftRight<52>(hn::BitCast(du, above)), hn::Set(du, 0x4330000000000000));
    r[k].e = hn::Sub(hn::BitCast(d, biased), hn::Set(d, 0x1p52 + kBiasOfE));
    r[k].exponent_bits = hn::And(above, SetBits(d, 0xFFF0000000000000));
    r[k].m = FromBits(d, hn::Add(hn::And(above, SetBits(d, 0x000FFFFFFFFFFFFF)),
                                 SetBits(d, static_cast<uint64_t>(kLeastM))));
  }
  for (size_t k = 0; k < K; ++k) {
    // The sum ends in the number of sixteenths.
    r[k].row = LogLookUp<Base>(d, Bits(d, hn::Add(r[k].m, hn::Set(d, 0x1.8p48))));
  }
}

template <class Base, class D, class V>
HWY_INLINE LogReduced<D> LogReduce(D d, V x) {
  const V in[1] = {x};
  LogReduced<D> r[1];
  LogReduce<Base>(d, in, r);
  return r[0];
}

// 2^-e, for what LogReduce found.
template <class D>
HWY_INLINE VecOf<D> InversePower(D d, const LogReduced<D>& u) {
  const auto one = SetBits(d, static_cast<uint64_t>(BitsOfNumber(1.0)) + kBias);
  return FromBits(d, hn::Sub(one, u.exponent_bits));
}

// e log(2) + log(a) + log(1 + (m - a)/a) in full, p + p_rest standing for the polynomial's
// argument, as a sum of two: within 2^-57 of itself.
template <class Base, class D, class V, size_t K>
HWY_INLINE void LogPair(D d, const LogReduced<D> (&x)[K], const Pair<V> (&p)[K], Pair<V> (&r)[K]) {
  V arg[K], square[K], q[K];
  for (size_t k = 0; k < K; ++k) {
    arg[k] = p[k].hi;
    square[k] = hn::Mul(arg[k], arg[k]);
  }
  EvenOdd(d, arg, square, Base::kPolynomial, q);
  for (size_t k = 0; k < K; ++k) {
    const V head = AddExactProduct(x[k].e, hn::Set(d, Base::kLog2Hi), x[k].row.log);  // exact
    const Pair<V> s = FastTwoSum(head, arg[k]);
    const V tail = hn::Add(hn::Mul(square[k], q[k]), hn::Mul(x[k].e, hn::Set(d, Base::kLog2Lo)));
    r[k] = {s.hi, hn::Add(s.lo, hn::Add(p[k].lo, tail))};
  }
}

// head + p + p^2 q(p).
template <class D, class V, size_t K, size_t N>
HWY_INLINE void LogPlainSum(D d, const V (&head)[K], const V (&p)[K], const double (&c)[N],
                            V (&r)[K]) {
  V square[K], q[K];
  for (size_t k = 0; k < K; ++k) square[k] = hn::Mul(p[k], p[k]);
  EvenOdd(d, p, square, c, q);
  for (size_t k = 0; k < K; ++k) {
    r[k] = hn::Add(head[k], hn::Add(p[k], hn::Mul(square[k], q[k])));
  }
}

// head + log(1 + p) on a division instead of a long polynomial: log(1 + p) = p - s (p - s^2 R(s^2))
// for s = p/(2 + p). `low` is what p lacks.
template <class Base, class D, class V, size_t K>
HWY_INLINE void LogDivisionSum(D d, const V (&head)[K], const V (&p)[K], const V (&s)[K], V (&r)[K],
                               const V* low = nullptr) {
  for (size_t k = 0; k < K; ++k) {
    const V s2 = hn::Mul(s[k], s[k]);
    const V rest = hn::Sub(p[k], hn::Mul(s2, Horner(d, s2, Base::kLA)));
    V tail = hn::Mul(s[k], rest);
    if (low != nullptr) tail = hn::Sub(tail, low[k]);
    r[k] = hn::Add(head[k], hn::Sub(p[k], tail));
  }
}

// The same for the row of a point a: s = t/(m + a). `low` is what t lacks, of weight next to a = 1
// alone.
template <class Base, class D, class V, size_t K>
HWY_INLINE void LogByDivision(D d, const LogReduced<D> (&x)[K], const V (&t)[K], V (&r)[K],
                              const V* low = nullptr) {
  V s[K], p[K], head[K];
  for (size_t k = 0; k < K; ++k) s[k] = hn::Div(t[k], hn::Add(x[k].m, x[k].row.a));
  for (size_t k = 0; k < K; ++k) {
    p[k] = hn::Mul(t[k], x[k].row.factor);
    head[k] = hn::Add(hn::Mul(x[k].e, hn::Set(d, Base::kLog2Hi + Base::kLog2Lo)), x[k].row.log);
  }
  LogDivisionSum<Base>(d, head, p, s, r, low);
}

// Rare: x + kPlus as Outside has it. On AVX-512 keys are tested, and for kJoined joined, by their
// high words alone, for the 64-bit maximum is two operations on some processors.
template <class Outside, int kPlus, bool kJoined>
struct LogRarity : Outside {
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
    return Outside::Key(d, kPlus == 0 ? x : hn::Add(x, hn::Set(d, double{kPlus})));
  }
#if HWY_TARGET == HWY_AVX3
  template <class D>
  requires kJoined static HWY_INLINE BitsOf<D> Joined(D d, BitsOf<D> key, VecOf<D> x) {
    return BitsOf<D>{_mm512_max_epi32(key.raw, Key(d, x).raw)};
  }
  template <class D>
  static HWY_INLINE bool Any(D, BitsOf<D> key) {
    const __m512i limit = _mm512_set1_epi32(static_cast<int32_t>(Outside::kLimit >> 32));
    return _mm512_mask_cmpgt_epi32_mask(0xAAAA, key.raw, limit) != 0;
  }
#endif
};

// Rare: x + kPlus not from 1.5 * 2^-1022 to what has the high word kHigh. Below AVX-512 the key is
// the sum that the reduction starts from.
template <int32_t kHigh, int kPlus = 0>
struct LogShortRarity : LogRarity<RareOutside<double, 0x00180000, kHigh>, kPlus, kPlus != 0> {};
template <int32_t kHigh>
struct OfHighWords<LogShortRarity<kHigh>> : OfHighWords<RareOutside<double, 0x00180000, kHigh>> {};

// Reduction by a factor: x = 2^e m, 3/4 <= m < 3/2, for positive normal x, a factor c of the table
// next to 1/m, and -log(c). kNumber: e as a number alone, for x below 1.5 * 2^1023.
template <class D, bool kNumber = false>
struct LogShort {
  VecOf<D> e, m, c, log;    // e in units of kUnit
  BitsOf<D> exponent_bits;  // e << 52
  static constexpr double kUnit = HWY_TARGET == HWY_AVX3 && !kNumber ? 0x1p-52 : 1;
};

inline constexpr double kExponentUnit = LogShort<hn::ScalableTag<double>>::kUnit;

template <class Table, class D, class V>
HWY_INLINE void LogFactorAt(D d, V sixteenths, V& c, V& log) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  const __m512i i = _mm512_castpd_si512(sixteenths.raw);
  const auto column = [i](const double* t) HWY_ATTR {
    return V{_mm512_permutex2var_pd(_mm512_load_pd(t), i, _mm512_load_pd(t + 8))};
  };
  c = column(Table::kColumns.factor);
  log = column(Table::kColumns.log);
#elif HWY_TARGET == HWY_AVX2
  // Rows by lane. Extractions cost vector operations; loads of what has just been stored wait for
  // one another.
  const __m256i i = hn::ShiftLeft<4>(Bits(d, sixteenths)).raw;
  const auto row = [](uint32_t bytes) HWY_ATTR {
    return _mm_load_pd(reinterpret_cast<const double*>(
        reinterpret_cast<const char*>(Table::kSixteenths.row) + bytes));
  };
  const __m128i low = _mm256_castsi256_si128(i), high = _mm256_extracti128_si256(i, 1);
  const auto i0 = static_cast<uint32_t>(_mm_cvtsi128_si32(low));
  const auto i2 = static_cast<uint32_t>(_mm_cvtsi128_si32(high));
  uint32_t i1, i3;
  if constexpr (Table::kHalfByMemory) {
    alignas(32) uint32_t half[8];
    _mm256_store_si256(reinterpret_cast<__m256i*>(half), i);
    asm("" : "+m"(half));  // else the compiler extracts
    i1 = half[2];
    i3 = half[6];
  } else {
    i1 = static_cast<uint32_t>(_mm_extract_epi32(low, 2));
    i3 = static_cast<uint32_t>(_mm_extract_epi32(high, 2));
  }
  const __m256d even = _mm256_insertf128_pd(_mm256_castpd128_pd256(row(i0)), row(i2), 1);
  const __m256d odd = _mm256_insertf128_pd(_mm256_castpd128_pd256(row(i1)), row(i3), 1);
  c = V{_mm256_unpacklo_pd(even, odd)};
  log = V{_mm256_unpackhi_pd(even, odd)};
#else
  // Byte offsets of rows, and rows by lane.
  const auto i = hn::And(hn::ShiftLeft<4>(Bits(d, sixteenths)), SetBits(d, 15 * 16)).raw;
  const auto row = [](int64_t bytes) HWY_ATTR {
    return reinterpret_cast<const double*>(reinterpret_cast<const char*>(Table::kRows.row) + bytes);
  };
  const __m128d r0 = _mm_load_pd(row(_mm_cvtsi128_si64(i)));
  const __m128d r1 = _mm_load_pd(row(_mm_extract_epi64(i, 1)));
  c = V{_mm_unpacklo_pd(r0, r1)};
  log = V{_mm_unpackhi_pd(r0, r1)};
#endif
}

// e and m, with its bits. kLess: -e, +0 for 0, and its bits instead of e.
template <bool kLess = false, class D, class V, bool kNumber, size_t K>
HWY_INLINE void LogScale(D d, const V (&x)[K], LogShort<D, kNumber> (&r)[K]) {
  for (size_t k = 0; k < K; ++k) {
    const auto bits = Bits(d, x[k]);
#if HWY_TARGET == HWY_AVX3
    r[k].m = V{_mm512_getmant_round_pd(x[k].raw, _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_src,
                                       _MM_FROUND_NO_EXC)};
    if constexpr (kNumber) {
      // From 1.5 on the mantissa carries.
      const auto carried = hn::Add(bits, SetBits(d, BitsOfNumber(1.5) - BitsOfNumber(1.0)));
      r[k].e = V{_mm512_getexp_round_pd(FromBits(d, carried).raw, _MM_FROUND_NO_EXC)};
    } else {
      const auto scaled = Bits(d, r[k].m);
      r[k].exponent_bits = kLess ? hn::Sub(scaled, bits) : hn::Sub(bits, scaled);
      r[k].e = hn::ConvertTo(d, r[k].exponent_bits);
    }
#else
    const hn::RebindToUnsigned<D> du;
    const auto above = hn::Add(bits, SetBits(d, kBias - static_cast<uint64_t>(BitsOfNumber(0.75))));
    const auto biased =
        hn::Or(hn::ShiftRight<52>(hn::BitCast(du, above)), hn::Set(du, 0x4330000000000000));
    const V number = hn::BitCast(d, biased), zero = hn::Set(d, 0x1p52 + kBiasOfE);
    r[k].e = kLess ? hn::Sub(zero, number) : hn::Sub(number, zero);
    const auto scaled =
        hn::Add(hn::And(above, SetBits(d, 0x000FFFFFFFFFFFFF)), SetBits(d, BitsOfNumber(0.75)));
    r[k].m = FromBits(d, scaled);
    r[k].exponent_bits = kLess ? hn::Sub(scaled, bits) : hn::Sub(bits, scaled);
#endif
  }
}

template <class Table = LnExtractedFactors, bool kLess = false, bool kNumber = false, class D,
          class V, size_t K>
HWY_INLINE void LogShortReduce(D d, const V (&x)[K], LogShort<D, kNumber> (&r)[K]) {
  LogScale<kLess>(d, x, r);
  for (size_t k = 0; k < K; ++k) {
    // The sum ends in the number of sixteenths.
    LogFactorAt<Table>(d, hn::Add(r[k].m, hn::Set(d, 0x1.8p48)), r[k].c, r[k].log);
  }
}

// m c - 1 rounded once, for c of 26 bits next to 1/m.
template <class D, class V>
HWY_INLINE V ShortProductLessOne(D d, V m, V c) {
  return ShortMulAdd(d, m, c, hn::Set(d, -1.0));
}

// e log(2) - log(c).
template <class Base, class D, class V, size_t K, bool kNumber>
HWY_INLINE void LogHead(D d, const LogShort<D, kNumber> (&u)[K], V (&head)[K]) {
  for (size_t k = 0; k < K; ++k) {
    constexpr double kLog2 = (Base::kLog2Hi + Base::kLog2Lo) * LogShort<D, kNumber>::kUnit;
    head[k] = hn::Add(hn::Mul(u[k].e, hn::Set(d, kLog2)), u[k].log);
  }
}

template <class Base, class D, class V, size_t K>
HWY_INLINE void LogEP(D d, const V (&x)[K], V (&r)[K]) {
  LogShort<D> u[K];
  V t[K], head[K];
  LogShortReduce<typename Base::Factors>(d, x, u);
  for (size_t k = 0; k < K; ++k) t[k] = ShortProductLessOne(d, u[k].m, u[k].c);
  LogHead<Base>(d, u, head);
  LogPlainSum(d, head, t, Base::kEP, r);
}

// The decimal logarithm for LA is free of divisions, whose unit is what limits AVX-512 on some
// processors. Its argument: c m - log10(e) rounded once, for a c of 26 bits next to log10(e)/m, and
// for log10(e) itself next to m = 1.
template <class D, class V>
HWY_INLINE V Log10Argument(D d, V m, V c) {
  const V log_e = hn::Set(d, DecimalLog::kLogE);
  const V argument = ShortMulSub(d, m, c, log_e);
#if HWY_TARGET == HWY_SSE4  // log10(e) is not short
  const V next_to_one = hn::Mul(hn::Sub(m, hn::Set(d, 1.0)), log_e);
  return hn::IfThenElse(hn::Eq(c, log_e), next_to_one, argument);
#else
  return argument;
#endif
}

// A part of a group. At most 1.81 ulp, seen where the logarithm lies just below a power of two and
// the rounded argument just above.
template <class D, size_t K>
struct Log10Part {
  using V = VecOf<D>;
  static constexpr size_t kSize = K;
  V head[K], p[K], q[K];

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    V in[K];
    LogShort<D, true> u[K];
    for (size_t k = 0; k < K; ++k) in[k] = x[k];
    LogShortReduce<Log10Factors>(d, in, u);
    for (size_t k = 0; k < K; ++k) p[k] = Log10Argument(d, u[k].m, u[k].c);
    EndStep(p);
    for (size_t k = 0; k < K; ++k) {
      constexpr double kLog2 = DecimalLog::kLog2Hi + DecimalLog::kLog2Lo;
      head[k] = hn::Add(hn::Mul(u[k].e, hn::Set(d, kLog2)), u[k].log);
    }
  }
  HWY_INLINE void Evaluate() {
    AdaptedSextic(D(), p, kLog10LASextic, q);
    EndStep(q);
  }
  HWY_INLINE void Result(const V*, V* r) {
    const D d;
    V s[K];
    for (size_t k = 0; k < K; ++k) q[k] = hn::Mul(q[k], p[k]);
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(p[k], p[k]);
    EndStep(q);
    for (size_t k = 0; k < K; ++k) q[k] = hn::Add(q[k], hn::Set(d, kLog10Square));
    EndStep(q);
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(s[k], q[k]);
    EndStep(s);
    for (size_t k = 0; k < K; ++k) s[k] = hn::Add(s[k], p[k]);
    EndStep(s);
    for (size_t k = 0; k < K; ++k) r[k] = hn::Add(head[k], s[k]);
  }
};

template <class D, class V, size_t K>
HWY_INLINE void Log10LA(D, const V (&x)[K], V (&r)[K]) {
  constexpr size_t kEach = K % 4 == 0 ? 4 : K;
  Log10Part<D, kEach> parts[K / kEach];
  SomeInTurn(parts, x, r);
}

// The natural logarithm below 1 ulp, without a full sum.
// By a division instead of a long polynomial: log(1 + t) = t - s (t - s^2 R(s^2))
// for s = t/(2 + t), t standing for m c - 1. e log(2) - log(c) is exact but for a small part, of
// which the product is exact, too.
inline constexpr double kLn2Rest = 0x1.ef35793c76p-45;  // 41 bits of NaturalLog::kLog2Lo

// x without lanes whose square would underflow, and counts for nothing.
template <class D, class V>
HWY_INLINE V ToBeSquared(D d, V x) {
  return Selected(hn::IfThenZeroElse(MagnitudeBelow(d, x, 0x1p-300), x));
}

// kTiny: t may be below 2^-300. In steps of all vectors or in the compiler's order.
template <bool kTiny = false, bool kInSteps = false, class D, class V, size_t K>
HWY_INLINE void LogShortSum(D d, const LogShort<D> (&x)[K], const V (&t)[K], V (&r)[K]) {
  const auto end_step = [](V(&v)[K]) HWY_ATTR {
    if constexpr (kInSteps) EndStep(v);
  };
  V s[K], s2[K], rest[K];
  for (size_t k = 0; k < K; ++k) s[k] = hn::Div(t[k], hn::Add(t[k], hn::Set(d, 2.0)));
  end_step(s);
  for (size_t k = 0; k < K; ++k) {
    if constexpr (kTiny) s[k] = ToBeSquared(d, s[k]);
    s2[k] = hn::Mul(s[k], s[k]);
  }
  end_step(s2);
  if constexpr (kInSteps) {
    HornerInSteps(d, s2, kLnShort, rest);
  } else {
    for (size_t k = 0; k < K; ++k) rest[k] = Horner(d, s2[k], kLnShort);
  }
  for (size_t k = 0; k < K; ++k) rest[k] = hn::Mul(s2[k], rest[k]);
  end_step(rest);
  for (size_t k = 0; k < K; ++k) rest[k] = hn::Sub(t[k], rest[k]);
  end_step(rest);
  for (size_t k = 0; k < K; ++k) rest[k] = hn::Mul(s[k], rest[k]);
  end_step(rest);
  for (size_t k = 0; k < K; ++k) {
    const V head =
        AddExactProduct(x[k].e, hn::Set(d, NaturalLog::kLog2Hi * kExponentUnit), x[k].log);
    const V log = hn::Sub(t[k], rest[k]);
    r[k] = hn::Add(head, AddExactProduct(x[k].e, hn::Set(d, kLn2Rest * kExponentUnit), log));
  }
}

// The same in two parts, t likewise: within 2^-59.5, or 2^-57 of itself.
template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void LogShortPair(D d, const LogShort<D> (&x)[K], const Pair<V> (&t)[K],
                             Pair<V> (&r)[K]) {
  V s[K], s2[K], rest[K];
  for (size_t k = 0; k < K; ++k) s[k] = hn::Div(t[k].hi, hn::Add(t[k].hi, hn::Set(d, 2.0)));
  for (size_t k = 0; k < K; ++k) {
    if constexpr (kTiny) s[k] = ToBeSquared(d, s[k]);
    s2[k] = hn::Mul(s[k], s[k]);
  }
  Horner(d, s2, kLnShortHA, rest);
  for (size_t k = 0; k < K; ++k) rest[k] = hn::Sub(t[k].hi, hn::Mul(s2[k], rest[k]));
  for (size_t k = 0; k < K; ++k) {
    const V tail = hn::Mul(s[k], rest[k]);
    const V head =
        AddExactProduct(x[k].e, hn::Set(d, NaturalLog::kLog2Hi * kExponentUnit), x[k].log);
    const V low = hn::Mul(x[k].e, hn::Set(d, NaturalLog::kLog2Lo * kExponentUnit));
    const Pair<V> sum = FastTwoSum(head, t[k].hi);
    r[k] = {sum.hi, hn::Add(sum.lo, hn::Add(hn::Sub(t[k].lo, tail), low))};
  }
}

// A row of a finer table in each lane.
template <class V>
struct LogPoint {
  V a, factor, log;
};

// That of the sixteenth next to m.
template <class Base, class D, class V>
HWY_INLINE LogPoint<V> LogPointAt(D d, V m) {
  const auto i = Bits(d, hn::Add(m, hn::Set(d, 0x1.8p48)));  // ends in the number of sixteenths
#if HWY_TARGET == HWY_AVX3
  const auto column = [i](const double* c) HWY_ATTR {
    return V{_mm512_permutex2var_pd(_mm512_load_pd(c), i.raw, _mm512_load_pd(c + 8))};
  };
  return {column(Base::kTable.a), column(Base::kTable.factor), column(Base::kTable.log)};
#else
  // Rows by lane, in halves.
  static_assert(sizeof(Base::kRows.row[0]) == 32);
  const auto half = [](uint32_t bytes) HWY_ATTR {
    return _mm_load_pd(
        reinterpret_cast<const double*>(reinterpret_cast<const char*>(Base::kRows.row) + bytes));
  };
  const auto bytes = hn::ShiftLeft<5>(i).raw;
#if HWY_TARGET == HWY_AVX2
  const __m128i low = _mm256_castsi256_si128(bytes), high = _mm256_extracti128_si256(bytes, 1);
  const auto i0 = static_cast<uint32_t>(_mm_cvtsi128_si32(low));
  const auto i2 = static_cast<uint32_t>(_mm_cvtsi128_si32(high));
  alignas(32) uint32_t memory[8];
  _mm256_store_si256(reinterpret_cast<__m256i*>(memory), bytes);
  asm("" : "+m"(memory));  // else the compiler extracts
  const uint32_t i1 = memory[2], i3 = memory[6];
  const auto halves = [half](uint32_t at0, uint32_t at2) HWY_ATTR {
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(half(at0)), half(at2), 1);
  };
  const __m256d even = halves(i0, i2), odd = halves(i1, i3);
  return {V{_mm256_unpacklo_pd(even, odd)}, V{_mm256_unpackhi_pd(even, odd)},
          V{_mm256_unpacklo_pd(halves(i0 + 16, i2 + 16), halves(i1 + 16, i3 + 16))}};
#else
  const auto i0 = static_cast<uint32_t>(_mm_cvtsi128_si32(bytes));
  const auto i1 = static_cast<uint32_t>(_mm_extract_epi32(bytes, 2));
  const __m128d even = half(i0), odd = half(i1);
  return {V{_mm_unpacklo_pd(even, odd)}, V{_mm_unpackhi_pd(even, odd)},
          V{_mm_unpacklo_pd(half(i0 + 16), half(i1 + 16))}};
#endif
#endif
}

// (P(p) - P(0))/p for the polynomial P of the whole logarithm.
template <class Base, class D, class V, size_t K>
HWY_INLINE void LogFullPolynomial(D d, const V (&p)[K], V (&q)[K]) {
  AdaptedSextic(d, p, Base::kSextic, q);
  for (size_t k = 0; k < K; ++k) {
    q[k] = hn::Add(hn::Mul(q[k], p[k]), hn::Set(d, Base::kPolynomial[1]));
  }
  EndPart(q);
}

// The whole logarithm with one rounding that counts, in parts: e log(2) + log(a) is exact, its sum
// with the argument p = (m - a) factor leaves an error that is made good, as is what p's rounding
// leaves. At most 0.56 ulp.
template <class Base, class D, size_t K>
struct LogFullPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = K;
  V p[K], sum[K], low[K], q[K];

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    V in[K], t[K];
    LogShort<D> u[K];
    LogPoint<V> row[K];
    for (size_t k = 0; k < K; ++k) in[k] = x[k];
    LogScale(d, in, u);
    for (size_t k = 0; k < K; ++k) row[k] = LogPointAt<Base>(d, u[k].m);
    for (size_t k = 0; k < K; ++k) t[k] = hn::Sub(u[k].m, row[k].a);
    for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(t[k], row[k].factor);
    for (size_t k = 0; k < K; ++k) {
      const V head = AddExactProduct(u[k].e, hn::Set(d, Base::kLog2Hi * kExponentUnit), row[k].log);
      sum[k] = hn::Add(head, p[k]);
      const V rest = ProductLess(d, t[k], row[k].factor, hn::Sub(sum[k], head));
      low[k] = AddExactProduct(u[k].e, hn::Set(d, Base::kLog2Rest * kExponentUnit), rest);
    }
    EndPart(low);
  }
  HWY_INLINE void Evaluate() { LogFullPolynomial<Base>(D(), p, q); }
  HWY_INLINE void Result(const V*, V* r) const {
    const D d;
    for (size_t k = 0; k < K; ++k) {
      V tail = hn::Add(hn::Mul(q[k], p[k]), hn::Set(d, Base::kPolynomial[0]));
      if constexpr (Base::kExcess == 0) {
        tail = hn::Mul(hn::Mul(p[k], p[k]), tail);
      } else {
        tail = hn::Mul(hn::Add(hn::Mul(tail, p[k]), hn::Set(d, Base::kExcess)), p[k]);
      }
      r[k] = hn::Add(sum[k], hn::Add(low[k], tail));
    }
  }
};

template <class Base, class D, class V, size_t K>
HWY_INLINE void FullLog(D, const V (&x)[K], V (&r)[K]) {
  constexpr size_t kEach = K % 4 == 0 ? 4 : 1;
  LogFullPart<Base, D, kEach> parts[K / kEach];
  SomeInTurn(parts, x, r);
}

template <class D, class V, size_t K>
HWY_INLINE void LogBelowOne(D d, const V (&x)[K], V (&r)[K]) {
  LogShort<D> u[K];
  V t[K];
  LogShortReduce<LnExactFactors>(d, x, u);
  for (size_t k = 0; k < K; ++k) t[k] = ProductLessOne(d, u[k].m, u[k].c);
  LogShortSum<false, true>(d, u, t, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_LOG_INL_H_
