// Logarithms in single precision, LA and EP: reduction and sums. Base is sNaturalLog or sDecimalLog.

#include "hwy/highway.h"
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_heap/real/log_single.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
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
#if HWY_TARGET == HWY_AVX3
  static constexpr int kUnroll = 1;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D, V x) {
    return MaskOf<D>{_mm512_fpclass_ps_mask(x.raw, 0xFF)};
  }
#else
  static constexpr int kUnroll = 8;
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
    return VecOf<D>{_mm256_blendv_ps(lower, upper, _mm256_castsi256_ps(_mm256_slli_epi32(i_.raw, 28)))};
#else
    return hn::GatherIndex(D(), table, hn::And(i_, SetBits(D(), 15)));
#endif
  }
  BitsOf<D> i_;
};

// e log(2); for log10(2), which lies far from a float, by two factors, the first product exact.
template <class Base, class D, class V>
HWY_INLINE V sLog2Times(D d, V scaled) {
  if constexpr (Base::kLog2Multiple != 1) scaled = hn::Mul(scaled, hn::Set(d, Base::kLog2Multiple));
  return hn::Mul(scaled, hn::Set(d, Base::kLog2Part));
}

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
  const V s = hn::Add(p, hn::Mul(p2, EvenOdd(d, p, p2, Base::kLA)));
  return hn::Add(sLog2Times<Base>(d, scaled), hn::Add(row.LookUp(Base::kTable.log), s));
}

template <class Base, class D, class V>
HWY_INLINE V sLogLA(D d, V x) {
  const auto u = sLogReduce(d, x);
  const auto point = sLogNextPoint(d, u.m);
  return sLogLASum<Base>(d, u.scaled, hn::Sub(u.m, point.a), point.row);
}

// e log(2) + log(1 + t), -1/4 <= t <= 1/2.
template <class Base, class D, class V>
HWY_INLINE V sLogEPSum(D d, V scaled, V t) {
  const V s = hn::Mul(t, EvenOdd(d, t, hn::Mul(t, t), Base::kEP));
  return hn::Add(hn::Mul(scaled, hn::Set(d, Base::kLog2)), s);
}

template <class Base, class D, class V>
HWY_INLINE V sLogEP(D d, V x) {
  const auto u = sLogReduce(d, x);
  return sLogEPSum<Base>(d, u.scaled, hn::Sub(u.m, hn::Set(d, 1.0f)));
}

// HA computes in double, with the table of the double logarithms. The exponent and the row come from
// the float; all of it but the last two sums is exact or small, so that the double's error stays below
// one ulp.
struct sLogWideKernel : Kernel<float, double> {
  using Rarity = RareOutside<float, 0x00800000, 0x7F7FFFFF>;
};

// Rows `i & 15`.
template <class Base, class D>
HWY_INLINE LogRow<VecOf<hn::Rebind<double, D>>> sLogLookUp(D, BitsOf<D> i) {
  const hn::Rebind<double, D> wide;
#if HWY_TARGET == HWY_AVX2
  const auto offset = hn::And(hn::ShiftLeft<5>(i), SetBits(D(), 15 * 32));
  const uint64_t lower = static_cast<uint64_t>(_mm_cvtsi128_si64(offset.raw));
  const uint64_t upper = static_cast<uint64_t>(_mm_extract_epi64(offset.raw, 1));
  return LogRowsAt<Base>(wide, static_cast<uint32_t>(lower), lower >> 32,
                         static_cast<uint32_t>(upper), upper >> 32);
#else
  return LogLookUp<Base>(wide, hn::PromoteTo(hn::RebindToSigned<decltype(wide)>(), i));
#endif
}

// log(2^e m), for e and m to float's accuracy in u.
template <class Base, class Single, class D, class V>
HWY_INLINE VecOf<D> sLogWide(D d, const sLogReduced<D>& u, V m) {
  const hn::Rebind<double, D> wide;
  const auto row = sLogLookUp<Base>(d, Bits(d, hn::Add(u.m, hn::Set(d, 0x1.8p19f))));
  const V scaled = hn::PromoteTo(wide, u.exponent_bits);  // 2^23 e
  const V p = hn::Mul(hn::Sub(m, row.a), row.factor);
  const V p2 = hn::Mul(p, p);
  const V head = hn::Add(hn::Mul(scaled, hn::Set(wide, Base::kLog2Hi * 0x1p-23)), row.log);  // exact
  const V tail = hn::Mul(scaled, hn::Set(wide, Base::kLog2Lo * 0x1p-23));
  const V s = hn::Add(p, hn::Add(hn::Mul(p2, Estrin(wide, p, p2, Single::kHA)), tail));
  return hn::DemoteTo(d, hn::Add(head, s));
}

template <class Base, class Single, class D, class V>
HWY_INLINE V sLogHA(D d, V x) {
  const auto u = sLogReduce(d, x);
  return sLogWide<Base, Single>(d, u, hn::PromoteTo(hn::Rebind<double, D>(), u.m));
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_SLOG_INL_H_
