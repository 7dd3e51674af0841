// Correctly rounded logarithms in single precision by floats.

#include "hwy/highway.h"
#include "pex_core/_heap/real/short_sum-inl.h"
#include "pex_core/_heap/real/slog-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/hardware-inl.h"

#if defined(PEX_CORE__HEAP_REAL_SLOG_SHORT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_SLOG_SHORT_INL_H_
#undef PEX_CORE__HEAP_REAL_SLOG_SHORT_INL_H_
#else
#define PEX_CORE__HEAP_REAL_SLOG_SHORT_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SSE4
using sLogHABase = sLogWideKernel;
#else
using sLogHABase = sLogKernel;

// The rows next to m, a polynomial for half a step, and how much the sum may err in relation to
// itself (ln's by 2^-34.3 on AVX-512) or, beside 2^-37 of that, to r^2 (2^-27.4 on AVX2). Where the
// former is all, table and constants make the sum that much smaller, so that it is the bound toward
// 0.
#if HWY_TARGET == HWY_AVX3
struct sLogSteps {
  static constexpr float kShifter = 0x1.8p18f;  // the sum ends in the number of steps
  static constexpr float kError = 0x1.4p-34f, kErrorOfSquare = 0, kLess = kError;
  static constexpr auto kTable = [] {
    auto t = kLogExactThirtySeconds;
    for (size_t i = 0; i < 32; ++i) t.lo[i] -= kLess * (t.hi[i] + t.lo[i]);
    return t;
  }();
  static constexpr auto& kPolynomial = kLogExactThirtySecondHA;
  template <class D>
  static HWY_INLINE VecOf<D> LookUp(D, const float* table, BitsOf<D> i) {
    return VecOf<D>{
        _mm512_permutex2var_ps(_mm512_load_ps(table), i.raw, _mm512_load_ps(table + 16))};
  }
};
#else
struct sLogSteps {
  static constexpr float kShifter = 0x1.8p20f;
  static constexpr float kError = 0x1p-37f, kErrorOfSquare = 0x1.9p-28f, kLess = 0;
  static constexpr auto& kTable = kLogExactEighths;
  static constexpr auto& kPolynomial = kLogExactEighthHA;
  template <class D>
  static HWY_INLINE VecOf<D> LookUp(D, const float* table, BitsOf<D> i) {
    return VecOf<D>{_mm256_permutevar8x32_ps(_mm256_load_ps(table), i.raw)};
  }
};
#endif

template <class D>
struct sLogExactRow {
  VecOf<D> factor, hi, lo;
};

template <class D, class V>
HWY_INLINE sLogExactRow<D> sLogRowNext(D d, V m) {
  const auto i = Bits(d, hn::Add(m, hn::Set(d, sLogSteps::kShifter)));
  return {sLogSteps::LookUp(d, sLogSteps::kTable.factor, i),
          sLogSteps::LookUp(d, sLogSteps::kTable.hi, i),
          sLogSteps::LookUp(d, sLogSteps::kTable.lo, i)};
}

// A logarithm from high + low on, where the error in relation to it is not left out.
template <class V>
struct sLogShort {
  V high, low, r2;
};

// e ln(2) - ln(factor) + ln(1 + r), and `more` in its lower part; scaled = 2^23 e.
template <class D, class V, class... More>
HWY_INLINE sLogShort<V> sLnShort(D d, V scaled, const sLogExactRow<D>& row, V r, More... more) {
  using S = sLogSteps;
  // 2^-23 ln 2 in two parts, the first a multiple of 2^-39.
  constexpr float kLn2Hi = kSingleLn2Hi;
  constexpr float kLn2Lo =
      static_cast<float>(0x1.62e42fefa39efp-24 * (1 - double{S::kLess}) - kLn2Hi);
  const V head = AddExactProduct(scaled, hn::Set(d, kLn2Hi), row.hi);
  V rest = HiddenMulAdd(scaled, hn::Set(d, kLn2Lo), row.lo);
  ((rest = hn::Add(rest, more)), ...);
  const V half = hn::Mul(r, hn::Set(d, -0.5f));
  // r - r^2/2 to a float is enough for the sum with the head, as what that leaves is exact.
  const V high = hn::Add(head, HiddenMulAdd(half, r, r));
  const V left = HiddenMulAdd(half, r, hn::Sub(r, hn::Sub(high, head)));
  const V q = HiddenHorner(d, r, S::kPolynomial);
  V r2, cubic;
  if constexpr (S::kLess != 0) {
    r2 = HiddenMulAdd(r, r, hn::Set(d, -3 * S::kLess));
    cubic = HiddenMulAdd(SilentMul(r2, r), q, rest);  // tiny for tiny r
  } else {
    r2 = hn::Mul(r, r);
    cubic = HiddenMulAdd(r2, HiddenMulSub(q, r, hn::Set(d, S::kErrorOfSquare)), rest);
  }
  return {high, hn::Add(left, cubic), r2};
}

// ln(u + t) for u that the sum rounds to, normal and below 0.75 2^126: m c - 1 + 2^-e t c is a sum
// of two floats, the upper one of which is what the sum exceeds 1 by where e is 0 and c 1. `shift`
// is 2^23 for each ln(2) to add. kWide: t/u may be below 2^-62, whose square would underflow; next
// to so large a logarithm a larger t does as well.
template <bool kWide = false, class D, class V, class... Shift>
HWY_INLINE sLogShort<V> sLnOfSumShort(D d, V u, V t, Shift... shift) {
  auto v = sLogReduce(d, u);
  const auto row = sLogRowNext(d, v.m);
  auto e = v.exponent_bits;
  if constexpr (kWide && HWY_TARGET == HWY_AVX2) e = hn::Min(e, SetBits(d, 60 << 23));
  const V scaled_factor = FromBits(d, hn::Sub(Bits(d, row.factor), e));
  const V most = ExactProductLess(v.m, row.factor, hn::Set(d, 1.0f));
  const V r = HiddenMulAdd(t, scaled_factor, most);
  const V rest = HiddenMulAdd(t, scaled_factor, hn::Sub(most, r));
  // rest/(1 + r)
  const V more = HiddenNegMulAdd(HiddenNegMulAdd(r, r, r), rest, rest);
  ((v.scaled = hn::Add(v.scaled, shift)), ...);
  return sLnShort(d, v.scaled, row, r, more);
}

// A logarithm times log10(e).
template <class D, class V>
HWY_INLINE sLogShort<V> sInDecimal(D d, const sLogShort<V>& s) {
  const V hi = hn::Set(d, sDecimalLog::kLogE), lo = hn::Set(d, sDecimalLog::kLogELo);
  const V high = hn::Mul(s.high, hi);
  const V left = HiddenMulAdd(s.high, lo, HiddenMulSub(s.high, hi, high));
  return {high, HiddenMulAdd(s.low, hi, left), s.r2};
}

// The lower parts of both bounds.
template <class Single, class D, class V>
HWY_INLINE Pair<V> sLogLowerParts(D d, const sLogShort<V>& s) {
  using S = sLogSteps;
  if constexpr (S::kLess != 0) {
    return {s.low, HiddenMulAdd(s.high, hn::Set(d, 2 * S::kError), s.low)};
  } else {
    const V size = hn::Abs(s.high), error = hn::Set(d, S::kError);
    return {HiddenNegMulAdd(size, error, s.low),
            HiddenMulAdd(s.r2, hn::Set(d, 2 * Single::kLogE * S::kErrorOfSquare),
                         HiddenMulAdd(size, error, s.low))};
  }
}

// The float next to the lower bound, and doubt where it is not next to the upper one.
template <class Single, class D, class V>
HWY_INLINE V sLogRounded(D d, const sLogShort<V>& s, BitsOf<D>& doubt) {
  const auto [below, above] = sLogLowerParts<Single>(d, s);
  const V least = hn::Add(s.high, below);
  doubt = hn::Xor(Bits(d, least), Bits(d, hn::Add(s.high, above)));
  return least;
}

#endif

template <class Base, class Single>
struct sLogSums {
  template <class D, class V>
  static HWY_INLINE V InFull(D d, V x) {
    return sLogHA<Base, Single>(d, x);
  }
#if HWY_TARGET != HWY_SSE4
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    const auto u = sLogReduce(d, x);
    const auto row = sLogRowNext(d, u.m);
    const V r = ExactProductLess(u.m, row.factor, hn::Set(d, 1.0f));
    auto s = sLnShort(d, u.scaled, row, r);
    if constexpr (Single::kLogE != 1) s = sInDecimal(d, s);
    return sLogRounded<Single>(d, s, doubt);
  }
#endif
};

template <class Base, class Single>
using sLogHAKernel = ShortSumKernel<sLogSums<Base, Single>, sLogHABase>;

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_SLOG_SHORT_INL_H_
