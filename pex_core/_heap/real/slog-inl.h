// Logarithms in single precision, LA and EP: reduction and sums. Base is sNaturalLog or sDecimalLog.

#include "hwy/highway.h"
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

static const uint32_t kHeld[3] = {0x3F400000, 0xFF800000, 0x3f3504f3};
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
  r.m = V{_mm512_getmant_ps(x.raw, _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_zero)};
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

template <class Base, class D, class V>
HWY_INLINE V sLog2Times(D d, V scaled) {
  if constexpr (Base::kLog2Multiple != 1) scaled = hn::Mul(scaled, hn::Set(d, Base::kLog2Multiple));
  return hn::Mul(scaled, hn::Set(d, Base::kLog2Part));
}

// e log(2) + log(a) + log(1 + (m - a)/a), a the sixteenth next to m.
template <class Base, class D, class V>
HWY_INLINE V sLogLA(D d, V x) {
  const auto u = sLogReduce(d, x);
  const V shifter = hn::Set(d, 0x1.8p19f);  // the sum ends in the number of sixteenths
  const V shifted = hn::Add(u.m, shifter);
  const sLogIndex<D> i(d, Bits(d, shifted));
  const V p = hn::Mul(hn::Sub(u.m, hn::Sub(shifted, shifter)), i.LookUp(Base::kTable.factor));
  const V p2 = hn::Mul(p, p);
  const V s = hn::Add(p, hn::Mul(p2, EvenOdd(d, p, p2, Base::kLA)));
  return hn::Add(sLog2Times<Base>(d, u.scaled), hn::Add(i.LookUp(Base::kTable.log), s));
}

// The same with a = 1 and a cubic.
template <class Base, class D, class V>
HWY_INLINE V sLogEP(D d, V x) {
  const auto u = sLogReduce(d, x);
  const V t = hn::Sub(u.m, hn::Set(d, 1.0f));
  const V s = hn::Mul(t, EvenOdd(d, t, hn::Mul(t, t), Base::kEP));
  return hn::Add(hn::Mul(u.scaled, hn::Set(d, Base::kLog2)), s);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_SLOG_INL_H_
