// Logarithms in single precision, LA and EP: reduction and sums. Base is sNaturalLog or
// sDecimalLog.

#include "hwy/highway.h"
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_heap/real/log_single.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/fused_single-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_SLOG_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_SLOG_INL_H_
#undef PEX_CORE__HEAP_REAL_SLOG_INL_H_
#else
#define PEX_CORE__HEAP_REAL_SLOG_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Rare: not positive, normal and finite.
struct sLogKernel : Kernel<float> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
#if HWY_TARGET == HWY_AVX3
  static constexpr int kUnroll = 1;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D, V x) {
    return MaskOf<D>{_mm512_fpclass_ps_mask(x.raw, 0xFF)};
  }
#else
  static constexpr int kUnroll = 6;
  using Rarity = RareOutside<float, 0x00800000, 0x7F7FFFFF>;
#endif
};

// x = 2^e m, 3/4 <= m < 3/2, for positive normal x; `scaled` is 2^23 e.
template <class D>
struct sLogReduced {
  VecOf<D> scaled, m;
  BitsOf<D> exponent_bits;  // e << 23
};

template <class D, class V>
HWY_INLINE sLogReduced<D> sLogReduce(D d, V x) {
  sLogReduced<D> r;
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(x.raw) == 64) {
    r.m = V{_mm512_getmant_ps(x.raw, _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_zero)};
  } else {
    r.m = V{_mm256_getmant_ps(x.raw, _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_zero)};
  }
  r.exponent_bits = hn::Sub(Bits(d, x), Bits(d, r.m));
#else
  const auto above = hn::Sub(Bits(d, x), SetBits(d, BitsOfNumber(0.75f)));
  r.exponent_bits = hn::And(above, SetBits(d, 0xFF800000));
  r.m = FromBits(d, hn::Sub(Bits(d, x), r.exponent_bits));
#endif
  r.scaled = hn::ConvertTo(d, r.exponent_bits);
  return r;
}

// Entries `i & 15` of tables.
template <class D>
struct sLogIndex {
  HWY_INLINE sLogIndex(D, BitsOf<D> i) : i_(i) {}
  HWY_INLINE VecOf<D> LookUp(const float (&table)[16]) const {
#if HWY_TARGET == HWY_AVX3
    return VecOf<D>{_mm512_permutexvar_ps(i_.raw, _mm512_load_ps(table))};
#elif HWY_TARGET == HWY_AVX2
    const __m256 lower = _mm256_permutevar8x32_ps(_mm256_load_ps(table), i_.raw);
    const __m256 upper = _mm256_permutevar8x32_ps(_mm256_load_ps(table + 8), i_.raw);
    return VecOf<D>{
        _mm256_blendv_ps(lower, upper, _mm256_castsi256_ps(_mm256_slli_epi32(i_.raw, 28)))};
#else
    return hn::GatherIndex(D(), table, hn::And(i_, SetBits(D(), 15)));
#endif
  }
  BitsOf<D> i_;
};

// The sixteenth a next to m, and its row.
template <class D>
struct sLogPoint {
  VecOf<D> a;
  sLogIndex<D> row;
};

template <class D, class V>
HWY_INLINE sLogPoint<D> sLogNextPoint(D d, V m) {
  const V shifter = hn::Set(d, 0x1.8p19f);  // the sum ends in the number of sixteenths
  const V shifted = hn::Add(m, shifter);
  return {hn::Sub(shifted, shifter), sLogIndex<D>(d, Bits(d, shifted))};
}

// e log(2) + log(a) + log(1 + t/a).
template <class Base, class D, class V>
HWY_INLINE V sLogLASum(D d, V scaled, V t, sLogIndex<D> row) {
  const V p = hn::Mul(t, row.LookUp(Base::kTable.factor));
  const V p2 = hn::Mul(p, p);
  const V s = hn::Add(p, hn::Mul(p2, EvenOdd(d, p, p2, kLnSingleLA)));
  return hn::Add(hn::Mul(scaled, hn::Set(d, Base::kLog2)),
                 hn::Add(row.LookUp(Base::kTable.log), s));
}

// The number of eighths next to m, in the low bits.
template <class D, class V>
HWY_INLINE BitsOf<D> sLogEighths(D d, V m) {
  return Bits(d, hn::Add(m, hn::Set(d, 0x1.8p20f)));
}

#if HWY_TARGET == HWY_SSE4
// Where the rows `i & 15` of a table are.
template <class Rows, class D>
HWY_INLINE void sLogRows(D d, const Rows& rows, BitsOf<D> i, const char* (&at)[4]) {
  constexpr int kShift = sizeof(rows.row[0]) == 16 ? 4 : 3;
  const auto offset = hn::ShiftLeft<kShift>(hn::And(i, SetBits(d, 15))).raw;
  const auto lower = static_cast<uint64_t>(_mm_cvtsi128_si64(offset));
  const auto upper = static_cast<uint64_t>(_mm_extract_epi64(offset, 1));
  const char* const table = reinterpret_cast<const char*>(rows.row);
  at[0] = table + static_cast<uint32_t>(lower);
  at[1] = table + (lower >> 32);
  at[2] = table + static_cast<uint32_t>(upper);
  at[3] = table + (upper >> 32);
}
#endif

#if HWY_TARGET != HWY_SSE4
// Factor and logarithm of eighth i, of a table for either level.
template <class D, class Eight, class Eighths, class V>
HWY_INLINE void sLogEighthAt([[maybe_unused]] D d, BitsOf<D> i, [[maybe_unused]] const Eight& eight,
                             [[maybe_unused]] const Eighths& eighths, V& c, V& log) {
#if HWY_TARGET == HWY_AVX2
  c = V{_mm256_permutevar8x32_ps(_mm256_load_ps(eight.factor), i.raw)};
  log = V{_mm256_permutevar8x32_ps(_mm256_load_ps(eight.log), i.raw)};
#else
  const sLogIndex<D> row(d, i);
  c = row.LookUp(eighths.factor);
  log = row.LookUp(eighths.log);
#endif
}
#endif

// A factor c of 12 bits next to 1/m, and -ln(c), for the eighth next to m.
template <class D, class V>
HWY_INLINE void sLnFactorAt(D d, V m, V& c, V& log) {
  const auto i = sLogEighths(d, m);
#if HWY_TARGET == HWY_SSE4
  const char* at[4];
  sLogRows(d, kLnSingleRows, i, at);
  const auto row = [&at](int k) HWY_ATTR { return reinterpret_cast<const __m64*>(at[k]); };
  const __m128 none = _mm_setzero_ps();
  const __m128 r0 = _mm_loadh_pi(_mm_loadl_pi(none, row(0)), row(1));
  const __m128 r1 = _mm_loadh_pi(_mm_loadl_pi(none, row(2)), row(3));
  c = V{_mm_shuffle_ps(r0, r1, 0x88)};
  log = V{_mm_shuffle_ps(r0, r1, 0xDD)};
#else
  sLogEighthAt(d, i, kLnSingleEight, kLnSingleEighths, c, log);
#endif
}

// ln(2^e m), m next to 1/c: the products are exact or separate.
template <class D, class V>
HWY_INLINE V sLnSumLA(D d, V scaled, V m) {
  V c, log;
  sLnFactorAt(d, m, c, log);
  const V p = ShortMulAdd(d, m, c, hn::Set(d, -1.0f));
  const V p2 = hn::Mul(p, p);
  const V s = hn::Add(p, hn::Mul(p2, EvenOdd(d, p, p2, kLnSingleEighthLA)));
  return hn::Add(hn::Add(hn::Mul(scaled, hn::Set(d, sNaturalLog::kLog2)), log), s);
}

// c m - log10(e) rounded once for a float c next to log10(e)/m, and -log10(c/log10(e)), for the
// eighth next to m.
template <class D, class V>
HWY_INLINE void sLog10Argument(D d, V m, V& p, V& log) {
  const auto i = sLogEighths(d, m);
#if HWY_TARGET == HWY_SSE4  // in double the products are exact
  const char* at[4];
  sLogRows(d, kLog10SingleRows, i, at);
  const auto row = [&at](int k)
                       HWY_ATTR { return _mm_load_pd(reinterpret_cast<const double*>(at[k])); };
  const __m128d r0 = row(0), r1 = row(1), r2 = row(2), r3 = row(3);
  const __m128d log_e = _mm_set1_pd(double{sDecimalLog::kLogE});
  const WideHalves halves = InHalves(m);
  const __m128d p0 = _mm_sub_pd(_mm_mul_pd(halves.lower.raw, _mm_unpacklo_pd(r0, r1)), log_e);
  const __m128d p1 = _mm_sub_pd(_mm_mul_pd(halves.upper.raw, _mm_unpacklo_pd(r2, r3)), log_e);
  p = V{_mm_movelh_ps(_mm_cvtpd_ps(p0), _mm_cvtpd_ps(p1))};
  const __m128 log0 = _mm_castpd_ps(_mm_unpackhi_pd(r0, r1));
  const __m128 log1 = _mm_castpd_ps(_mm_unpackhi_pd(r2, r3));
  log = V{_mm_shuffle_ps(log0, log1, 0x88)};
#else
  V c;
  sLogEighthAt(d, i, kLog10SingleEight, kLog10SingleEighths, c, log);
  p = ShortMulSub(d, m, c, hn::Set(d, sDecimalLog::kLogE));
#endif
}

// log10(2^e m), scaled = 2^23 e. The products of e and the parts of log10(2), which lies far from a
// float, are exact.
template <class D, class V>
HWY_INLINE V sLog10SumLA(D d, V scaled, V m) {
  V p[1], log, s[1];
  sLog10Argument(d, m, p[0], log);
  const V p2[1] = {hn::Mul(p[0], p[0])};
  FusedCubic(d, p, kLog10SingleEighthLA, p2, p, s);
  return hn::Add(AddExactProduct(scaled, hn::Set(d, sDecimalLog::kLog2Hi), log),
                 AddExactProduct(scaled, hn::Set(d, sDecimalLog::kLog2Lo), s[0]));
}

template <class Base, class D, class V>
HWY_INLINE V sLogLA(D d, V x) {
  const auto u = sLogReduce(d, x);
  if constexpr (Base::kLogE == 1) {
    return sLnSumLA(d, u.scaled, u.m);
  } else {
    return sLog10SumLA(d, u.scaled, u.m);
  }
}

// e log(2) + log(1 + t), -1/4 <= t <= 1/2.
template <class Base, class D, class V>
HWY_INLINE V sLogEPSum(D d, V scaled, V t) {
  const V s = hn::Mul(t, EvenOdd(d, t, hn::Mul(t, t), Base::kEP));
  return hn::Add(hn::Mul(scaled, hn::Set(d, Base::kLog2)), s);
}

// The same by the fewest operations: the products with log(2) in 16 bits are exact.
template <class Base, class D, class V>
HWY_INLINE V sLogEP(D d, V x) {
  const auto u = sLogReduce(d, x);
  const V t = hn::Sub(u.m, hn::Set(d, 1.0f));
  const V s = hn::Mul(t, Horner(d, t, Base::kEP));
  return AddExactProduct(u.scaled, hn::Set(d, Base::kLog2Hi), s);
}

// HA computes in double, with the table of the double logarithms. The exponent and the row come
// from the float; all of it but the last two sums is exact or small, so that the double's error
// stays below one ulp.
struct sLogWideKernel : Kernel<float, double> {
  using Rarity = RareOutside<float, 0x00800000, 0x7F7FFFFF>;
};

// Rows `i & 15`.
template <class Base, class D>
HWY_INLINE LogRow<VecOf<hn::Rebind<double, D>>> sLogLookUp(D, BitsOf<D> i) {
#if HWY_TARGET == HWY_AVX2
  const auto offset = hn::And(hn::ShiftLeft<5>(i), SetBits(D(), 15 * 32));
  const uint64_t lower = static_cast<uint64_t>(_mm_cvtsi128_si64(offset.raw));
  const uint64_t upper = static_cast<uint64_t>(_mm_extract_epi64(offset.raw, 1));
  // Rows by lane, in halves.
  using V = VecOf<hn::Rebind<double, D>>;
  const auto halves = [](uint64_t at0, uint64_t at1) HWY_ATTR {
    const auto half = [](uint64_t bytes) HWY_ATTR {
      return _mm_load_pd(
          reinterpret_cast<const double*>(reinterpret_cast<const char*>(Base::kRows.row) + bytes));
    };
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(half(at0)), half(at1), 1);
  };
  const uint64_t b0 = static_cast<uint32_t>(lower), b1 = lower >> 32;
  const uint64_t b2 = static_cast<uint32_t>(upper), b3 = upper >> 32;
  const __m256d even = halves(b0, b2), odd = halves(b1, b3);
  const __m256d even_log = halves(b0 + 16, b2 + 16), odd_log = halves(b1 + 16, b3 + 16);
  return {V{_mm256_unpacklo_pd(even, odd)}, V{_mm256_unpackhi_pd(even, odd)},
          V{_mm256_unpacklo_pd(even_log, odd_log)}, V{_mm256_unpackhi_pd(even_log, odd_log)}};
#else
  const hn::Rebind<double, D> wide;
  return LogLookUp<Base>(wide, hn::PromoteTo(hn::RebindToSigned<decltype(wide)>(), i));
#endif
}

// hi + lo rounded once to a float, |lo| at most half an ulp of hi: where hi is half way between two
// floats, it moves an ulp toward lo.
template <class D, class W, class V>
HWY_INLINE VecOf<D> RoundPair(D d, W wide, V hi, V lo) {
  const auto bits = Bits(wide, hi);
  const auto half_way = hn::Eq(hn::And(bits, SetBits(wide, 0x1FFFFFFF)), SetBits(wide, 0x10000000));
  const auto inward = hn::BroadcastSignBit(hn::Xor(bits, Bits(wide, lo)));  // -1: lo is against hi
  const auto step = hn::IfThenElseZero(half_way, hn::Or(inward, SetBits(wide, 1)));
  return hn::DemoteTo(d, FromBits(wide, hn::Add(bits, step)));
}

// log(2^e m) correctly rounded, scaled = 2^23 e: the sum in full errs by less than 2^-57 of itself,
// and on all floats it says on which side of the middle of two floats the logarithm lies.
template <class Base, class D, class V>
HWY_NOINLINE VecOf<D> sLogInFull(D d, V m, V scaled, const LogRow<V>& row) {
  const hn::Rebind<double, D> wide;
  const V t = hn::Sub(m, row.a);  // exact
  const Pair<V> p = TwoProduct(wide, t, row.factor);
  V p_rest = p.lo;
  if constexpr (Base::kHasRest) p_rest = hn::Add(p_rest, hn::Mul(t, row.rest));
  const V p2 = hn::Mul(p.hi, p.hi);
  const V q = hn::Mul(p2, Estrin(wide, p.hi, p2, Base::kPolynomial));
  const V head =
      hn::Add(hn::Mul(scaled, hn::Set(wide, Base::kLog2Hi * 0x1p-23)), row.log);  // exact
  const Pair<V> s = FastTwoSum(head, p.hi);
  const V tail = hn::Add(q, hn::Mul(scaled, hn::Set(wide, Base::kLog2Lo * 0x1p-23)));
  const Pair<V> sum = FastTwoSum(s.hi, hn::Add(s.lo, hn::Add(p_rest, tail)));
  return RoundPair(d, wide, sum.hi, sum.lo);
}

// log(2^e m) for e and m to float's accuracy in u, correctly rounded. The short sum errs by less
// than 2^-47 of itself; where that leaves the rounding in doubt, one vector in about 2^17, the full
// one decides.
template <class Base, class Single, class D, class V>
HWY_INLINE VecOf<D> sLogWide(D d, const sLogReduced<D>& u, V m) {
  const hn::Rebind<double, D> wide;
  const auto row = sLogLookUp<Base>(d, Bits(d, hn::Add(u.m, hn::Set(d, 0x1.8p19f))));
  const V scaled = hn::PromoteTo(wide, u.exponent_bits);  // 2^23 e
  const V p = hn::Mul(hn::Sub(m, row.a), row.factor);
  const V p2 = hn::Mul(p, p);
  const V head =
      hn::Add(hn::Mul(scaled, hn::Set(wide, (Base::kLog2Hi + Base::kLog2Lo) * 0x1p-23)), row.log);
  const V s = hn::Add(p, hn::Mul(p2, Estrin(wide, p, p2, Single::kHA)));
  const V sum = hn::Add(head, s);
  // In units of the double's last place the middle of two floats is at 2^28 of 2^29.
  constexpr uint64_t kDoubt = 1024;
  const auto place = hn::And(hn::Add(Bits(wide, sum), SetBits(wide, kDoubt - 0x10000000)),
                             SetBits(wide, 0x1FFFFFFF));
  if (!hn::AllFalse(wide, hn::RebindMask(wide, hn::Lt(place, SetBits(wide, 2 * kDoubt)))))
      [[unlikely]] {
    return sLogInFull<Base>(d, m, scaled, row);
  }
  return hn::DemoteTo(d, sum);
}

template <class Base, class Single, class D, class V>
HWY_INLINE V sLogHA(D d, V x) {
  const auto u = sLogReduce(d, x);
  return sLogWide<Base, Single>(d, u, hn::PromoteTo(hn::Rebind<double, D>(), u.m));
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_SLOG_INL_H_
