// What e^x and e^x - 1 in single precision share: argument reduction and powers of two from
// registers.

#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_heap/real/exp_single_polynomials.h"
#include "pex_core/_heap/real/exp_single_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_EXP_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_EXP_SINGLE_INL_H_
#undef PEX_CORE__HEAP_REAL_EXP_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_EXP_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Entry k & 7 of a table of 8 numbers that stands twice in memory. Here as below, the other bits of
// k are of no concern.
template <class D>
HWY_INLINE VecOf<D> LookupEighth(D d, const float* table, BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  return VecOf<D>{_mm512_permutexvar_ps(k.raw, _mm512_load_ps(table))};
#elif HWY_TARGET == HWY_AVX2
  (void)d;
  return VecOf<D>{_mm256_permutevar8x32_ps(_mm256_load_ps(table), k.raw)};
#else
  return hn::GatherIndex(d, table, hn::And(k, SetBits(d, 7)));
#endif
}

// Has lookups by k wait for p: GCC does all lookups of a loop first, and runs out of registers.
template <class I, class V>
HWY_INLINE void LookUpAfter(V p, I& k) {
#if HWY_TARGET == HWY_AVX3
  asm("" : "+v"(k.raw) : "v"(p.raw));
#else
  asm("" : "+x"(k.raw) : "x"(p.raw));
#endif
}

// Entry k & 15 of a table of 16 integers.
template <class D>
HWY_INLINE BitsOf<D> LookupSixteenth(D d, const int32_t* table, BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  return BitsOf<D>{_mm512_permutexvar_epi32(k.raw, _mm512_load_si512(table))};
#elif HWY_TARGET == HWY_AVX2
  const auto half = reinterpret_cast<const __m256i*>(table);
  const __m256 low =
      _mm256_castsi256_ps(_mm256_permutevar8x32_epi32(_mm256_load_si256(half), k.raw));
  const __m256 high =
      _mm256_castsi256_ps(_mm256_permutevar8x32_epi32(_mm256_load_si256(half + 1), k.raw));
  const __m256 upper = _mm256_castsi256_ps(hn::ShiftLeft<28>(k).raw);  // bit 3 to the sign
  return Bits(d, VecOf<D>{_mm256_blendv_ps(low, high, upper)});
#else
  return hn::GatherIndex(hn::RebindToSigned<D>(), table, hn::And(k, SetBits(d, 15)));
#endif
}

// Entry k & 15 of a table of 16 64-bit integers.
template <class D>
HWY_INLINE BitsOf<D> LookupWideSixteenth(D d, const int64_t* table, BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  return BitsOf<D>{
      _mm512_permutex2var_epi64(_mm512_load_si512(table), k.raw, _mm512_load_si512(table + 8))};
#else
  return hn::GatherIndex(hn::RebindToSigned<D>(), table, hn::And(k, SetBits(d, 15)));
#endif
}

// e^x = s + s p, s a power of 2^(1/16), in double precision for x that were single. The relative
// error is a few 2^-53, the coefficients such that e^x and e^x - 1 come out rightly rounded for
// every float.
template <class D>
struct ExpWide {
  VecOf<D> s, p;
};

template <class D, class V>
HWY_INLINE ExpWide<D> ExpReduceWide(D d, V x) {
  // 16/ln2 = 0x1.7154765p+4 + 0x1.5c17f0bbbe88p-27: the product of x and the first part is exact,
  // so f = x 16/ln2 - k bears a relative error near 2^-53.
  const V y = hn::Mul(x, hn::Set(d, 0x1.7154765p+4));
  const V kf = hn::Add(y, hn::Set(d, 0x1.8p52));  // leaves the rounded integer in the low bits
  const V rest = hn::Mul(x, hn::Set(d, 0x1.5c17f0bbbe88p-27));
  const V f = hn::Add(hn::Sub(y, hn::Round(y)), rest);
  const auto k = Bits(d, kf);
  const auto s = hn::Add(LookupWideSixteenth(d, sExpShiftedSixteenthsHA, k), hn::ShiftLeft<48>(k));
  const V f2 = hn::Mul(f, f);
  const V q = EvenOdd(d, f, f2, sExpHAPolynomial);
  const V linear = hn::Mul(f, hn::Set(d, 0x1.62e42fefa39fp-5));  // ln2/16 + 2^-57
  return {FromBits(d, s), hn::Add(hn::Mul(q, f2), linear)};
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_EXP_SINGLE_INL_H_
