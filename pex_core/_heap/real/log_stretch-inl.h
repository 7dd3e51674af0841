// Reduction of logarithms in double precision by the bits of the argument alone: x = 2^e m for m
// from 0x1.784p-1 to 0x1.784p0, a factor c of the table next to 1/m for each of the sixteen
// stretches of 2^48 units in the last place that m may lie in, and log(c). The stretch of 1, with
// the factor 1, is that from about 1 - 2^-6 to 1 + 2^-5.

#include "hwy/highway.h"
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_heap/real/log_stretches.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_LOG_STRETCH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_LOG_STRETCH_INL_H_
#undef PEX_CORE__HEAP_REAL_LOG_STRETCH_INL_H_
#else
#define PEX_CORE__HEAP_REAL_LOG_STRETCH_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// What a level makes of e, m and c with the fewest operations. Where the exponent keeps its bias, m
// is -2^-1021 times the true one and c -2^1021 times, and e is larger by kExcess, which the table's
// logarithm makes good.
template <class Table>
struct LogStretchForm {
#if HWY_TARGET == HWY_AVX3
  static constexpr bool kBiased = Table::kShort;
  static constexpr double kUnit = 0x1p-52;
  static constexpr double kExcess = kBiased ? -1027 : 0;
#elif HWY_TARGET == HWY_AVX2
  static constexpr bool kBiased = true;
  static constexpr double kUnit = 1;
  static constexpr double kExcess = Table::kShort ? kLogStretchBias : 0;
#else
  static constexpr bool kBiased = false;
  static constexpr double kUnit = 1, kExcess = 0;
#endif
  static constexpr LogFactors kFactors =
      ShiftedFactors(Table::kFactors, kBiased ? -0x1p1021 : 1, kExcess* Table::kLog2);
  static constexpr double kLog2 = Table::kLog2 * kUnit;
};

template <class D>
struct LogStretch {
  VecOf<D> e, m, c, log;    // e in units of LogStretchForm::kUnit, with its kExcess; log(c)
  BitsOf<D> exponent_bits;  // e << 52, with the bias that c has
};

template <class Table, class D, class V>
HWY_INLINE void LogStretchRow([[maybe_unused]] D d, BitsOf<D> above, V& c, V& log) {
  using Form = LogStretchForm<Table>;
#if HWY_TARGET == HWY_AVX3
  static constexpr LogFactorColumns kColumns = ByColumns(Form::kFactors);
  const __m512i i = _mm512_srli_epi64(above.raw, 48);
  const auto column = [i](const double* t) HWY_ATTR {
    return V{_mm512_permutex2var_pd(_mm512_load_pd(t), i, _mm512_load_pd(t + 8))};
  };
  c = column(kColumns.factor);
  log = column(kColumns.log);
#else
  // By way of memory and with the exponent's last four bits, the number of a row takes no vector
  // operation.
  static constexpr LogStretchRows kRows = ByStretches(Form::kFactors);
  constexpr size_t kLanes = HWY_TARGET == HWY_AVX2 ? 4 : 2;
  alignas(32) uint8_t bytes[8 * kLanes];
  hn::Store(above, hn::RebindToSigned<D>(), reinterpret_cast<int64_t*>(bytes));
  asm("" : "+m"(bytes));  // else the compiler extracts
  const auto row = [&bytes](size_t lane)
                       HWY_ATTR { return _mm_load_pd(kRows.row[bytes[8 * lane + 6]]); };
#if HWY_TARGET == HWY_AVX2
  const __m256d even = _mm256_insertf128_pd(_mm256_castpd128_pd256(row(0)), row(2), 1);
  const __m256d odd = _mm256_insertf128_pd(_mm256_castpd128_pd256(row(1)), row(3), 1);
  c = V{_mm256_unpacklo_pd(even, odd)};
  log = V{_mm256_unpackhi_pd(even, odd)};
#else
  const __m128d even = row(0), odd = row(1);
  c = V{_mm_unpacklo_pd(even, odd)};
  log = V{_mm_unpackhi_pd(even, odd)};
#endif
#endif
}

template <class Table, class D, class V>
HWY_INLINE LogStretch<D> LogStretchReduce(D d, V x) {
  using Form = LogStretchForm<Table>;
  LogStretch<D> r;
  const auto bits = Bits(d, x);
  constexpr uint64_t kBiasBits = uint64_t{kLogStretchBias} << 52;
  constexpr bool kBiasedSum = HWY_TARGET != HWY_AVX3 || Form::kBiased;
  const auto above = hn::Add(bits, SetBits(d, (kBiasedSum ? kBiasBits : 0) - kLogStretchStart));
  LogStretchRow<Table>(d, above, r.c, r.log);
  r.exponent_bits = hn::And(above, SetBits(d, 0xFFF0000000000000));
#if HWY_TARGET == HWY_AVX3
  r.e = hn::ConvertTo(d, r.exponent_bits);
#elif HWY_TARGET == HWY_AVX2
  // Its exponent with the bias is from 2^11 to 2^12.
  const hn::RebindToUnsigned<D> du;
  const auto number = hn::ShiftRight<11>(hn::BitCast(du, r.exponent_bits));
  r.e = hn::BitCast(d, hn::Xor(number, hn::Set(du, uint64_t{0x40B} << 52)));
  if constexpr (Form::kExcess == 0) r.e = hn::Sub(r.e, hn::Set(d, kLogStretchBias));
#else
  const hn::RebindToUnsigned<D> du;
  const auto number =
      hn::Or(hn::ShiftRight<52>(hn::BitCast(du, above)), hn::Set(du, 0x4330000000000000));
  r.e = hn::Sub(hn::BitCast(d, number), hn::Set(d, 0x1p52 + kLogStretchBias));
  r.exponent_bits = hn::Sub(r.exponent_bits, SetBits(d, kBiasBits));
#endif
  r.m = FromBits(d, hn::Sub(bits, r.exponent_bits));
  return r;
}

inline constexpr int32_t kLogStretchLow =
    static_cast<int32_t>(0x80000000 + (kLogStretchStart >> 32) - (uint64_t{kLogStretchBias} << 20));
// Rare: x + kPlus not from 1.47 * 2^-1022 to what has the high word kHigh; the key is the sum that
// the reduction starts from.
template <int32_t kHigh, int kPlus = 0>
struct LogStretchRarity : LogRarity<RareOutside<double, kLogStretchLow, kHigh>, kPlus, true> {};

// p^2 q(p), q of the coefficients kLnStretchEP, for a p of 27 bits: products with short
// coefficients are exact.
template <class D, class V>
HWY_INLINE V LogStretchRest(D d, V p) {
  const auto term = [d](size_t i) HWY_ATTR { return hn::Set(d, kLnStretchEP[i]); };
  const V square = hn::Mul(p, p);
  const V low = AddExactProduct(p, term(1), term(0));
  const V high = AddExactProduct(p, term(3), term(2));
  return hn::Mul(square, hn::Add(low, hn::Mul(square, high)));
}

// The logarithm of base e, or by its factor log(e) of another base, for EP.
template <class Base, class D>
struct LogEPPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = 1;
  V less_head, t, rest;

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    const LogStretch<D> u = LogStretchReduce<LnShortStretches>(d, x[0]);
    less_head = SubExactProduct(u.e, hn::Set(d, LogStretchForm<LnShortStretches>::kLog2), u.log);
    t = ShortProductLessOne(d, u.m, u.c);
  }
  HWY_INLINE void Evaluate() {
    const D d;
    rest = LogStretchRest(d, hn::And(t, FromBits(d, SetBits(d, kUpperBits<uint64_t>))));
  }
  HWY_INLINE void Result(const V*, V* r) const {
    r[0] = hn::Sub(hn::Add(t, rest), less_head);
    if constexpr (Base::kLogE != 1) r[0] = hn::Mul(r[0], hn::Set(D(), Base::kLogE));
  }
};

template <class Base, class D, class V, size_t K>
HWY_INLINE void LogStretchEP(D, const V (&x)[K], V (&r)[K]) {
  LogEPPart<Base, D> parts[K];
  SomeInTurn<HWY_MIN(K, 2)>(parts, x, r);
}

// The natural logarithm in 0.80 ulp, without a full sum and by a division instead of a long
// polynomial: log(1 + t) = t - s (t - s^2 R(s^2)) for s = t/(2 + t), t = m c - 1. e log(2) - log(c)
// is exact but for a small part, of which the product is exact, too.
template <class D>
struct LnPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = 1;
  V e, log, t, s, s2, rest;

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    const LogStretch<D> u = LogStretchReduce<LnStretches>(d, x[0]);
    e = u.e;
    log = u.log;
    t = ProductLessOne(d, u.m, u.c);
    V quotient[1] = {hn::Div(t, hn::Add(t, hn::Set(d, 2.0)))};
    EndPart(quotient);
    s = quotient[0];
  }
  HWY_INLINE void Evaluate() {
    s2 = hn::Mul(s, s);
    rest = Horner(D(), s2, kLnStretchLA);
  }
  HWY_INLINE void Result(const V*, V* r) const {
    const D d;
    constexpr double kUnit = LogStretchForm<LnStretches>::kUnit;
    const V sum = hn::Sub(t, hn::Mul(s, hn::Sub(t, hn::Mul(s2, rest))));
    const V less_head = SubExactProduct(e, hn::Set(d, LogStretchForm<LnStretches>::kLog2), log);
    r[0] = hn::Sub(AddExactProduct(e, hn::Set(d, kLn2Rest * kUnit), sum), less_head);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_LOG_STRETCH_INL_H_
