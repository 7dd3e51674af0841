// Powers x^y in double precision for vectors: e^(y ln|x|), the logarithm and its product in two
// doubles each (HA, LA), or 2^(y log2|x|) in one (EP).
//
// |x| = 2^e m, m next to a point 1/f of a table: ln|x| = e ln2 - ln(f) + ln(1 + z), z = m f - 1
// exactly, as two doubles. The logarithm's relative error is below 2^-66.5 in HA and 2^-62 in LA,
// as it must be when the product reaches 700. Largest errors seen: HA 0.53 ulp, LA 1.2 ulp (0.7
// where the product is below 50), EP 2^-28.6.

#include "hwy/highway.h"
#include "pex_core/_heap/real/pow_constants.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_POW_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_POW_INL_H_
#undef PEX_CORE__HEAP_REAL_POW_INL_H_
#else
#define PEX_CORE__HEAP_REAL_POW_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX3
// c[i % kRows], or c[(i + kRows/2) % kRows]
template <int kRows, bool kFromMiddle = false>
HWY_INLINE __m512d PowColumn(const double* c, __m512i i) {
  if constexpr (kRows == 16) {
    return _mm512_permutex2var_pd(_mm512_load_pd(c), i, _mm512_load_pd(c + 8));
  } else {
    const __mmask8 upper = _mm512_test_epi64_mask(i, _mm512_set1_epi64(kRows / 2));
    constexpr int kLower = kFromMiddle ? kRows / 2 : 0;
    return _mm512_mask_blend_pd(upper, PowColumn<kRows / 2>(c + kLower, i),
                                PowColumn<kRows / 2>(c + kRows / 2 - kLower, i));
  }
}
#endif

#if HWY_TARGET != HWY_AVX3
// Rows of two columns side by side, by their offsets in bytes.
template <int kRows, class D>
HWY_INLINE Pair<VecOf<D>> PowRowsAt(D, const PowPairs<kRows>& pairs, BitsOf<D> offset) {
  using V = VecOf<D>;
  const auto row = [&pairs](int64_t bytes) HWY_ATTR {
    return _mm_load_pd(
        reinterpret_cast<const double*>(reinterpret_cast<const char*>(pairs.row) + bytes));
  };
#if HWY_TARGET == HWY_AVX2
  const __m128i lower = _mm256_castsi256_si128(offset.raw);
  const __m128i upper = _mm256_extracti128_si256(offset.raw, 1);
  const __m256d even = _mm256_insertf128_pd(_mm256_castpd128_pd256(row(_mm_cvtsi128_si64(lower))),
                                            row(_mm_cvtsi128_si64(upper)), 1);
  const __m256d odd = _mm256_insertf128_pd(_mm256_castpd128_pd256(row(_mm_extract_epi64(lower, 1))),
                                           row(_mm_extract_epi64(upper, 1)), 1);
  return {V{_mm256_unpacklo_pd(even, odd)}, V{_mm256_unpackhi_pd(even, odd)}};
#else
  const __m128d even = row(_mm_cvtsi128_si64(offset.raw));
  const __m128d odd = row(_mm_extract_epi64(offset.raw, 1));
  return {V{_mm_unpacklo_pd(even, odd)}, V{_mm_unpackhi_pd(even, odd)}};
#endif
}
#endif

// Row i % kRows of two columns, which also stand side by side.
template <int kRows, class D>
HWY_INLINE Pair<VecOf<D>> PowLookUp(D d, const double* first, const double* second,
                                    const PowPairs<kRows>& pairs, BitsOf<D> i) {
#if HWY_TARGET == HWY_AVX3
  using V = VecOf<D>;
  (void)d, (void)pairs;
  return {V{PowColumn<kRows>(first, i.raw)}, V{PowColumn<kRows>(second, i.raw)}};
#else
  (void)first, (void)second;
  return PowRowsAt<kRows>(d, pairs, hn::And(hn::ShiftLeft<4>(i), SetBits(d, (kRows - 1) * 16)));
#endif
}

// 2^((k % 16)/16)
template <class D>
HWY_INLINE VecOf<D> PowSixteenth(D d, BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  return VecOf<D>{PowColumn<16>(kPowPowers16.hi, k.raw)};
#else
  return hn::GatherIndex(d, kPowPowers16.hi, hn::And(k, SetBits(d, 15)));
#endif
}

// y 2^(k >> log2(kSteps)), normal, for y from 1/2 to 4.
template <int kSteps, class D, class V>
HWY_INLINE V PowScale(D d, V y, BitsOf<D> k) {
  constexpr int kShift = kSteps == 16 ? 48 : 47;
  return FromBits(
      d, hn::Add(Bits(d, y), hn::And(hn::ShiftLeft<kShift>(k), SetBits(d, 0xFFF0000000000000))));
}

// kUnit: what e counts in, the bits of an exponent where integers of 64 bits become doubles.
template <class D>
struct PowReduced {
  VecOf<D> e, m, factor, log;
  static constexpr double kUnit = HWY_TARGET == HWY_AVX3 ? 0x1p-52 : 1;
};
inline constexpr double kPowUnit = PowReduced<hn::ScalableTag<double>>::kUnit;

// For positive normal x. The exponent passes to the next one half a step before 3/2, where the
// table does; the rows begin there.
template <class Tier, class D, class V, size_t K>
HWY_INLINE void PowReduce(D d, const V (&x)[K], PowReduced<D> (&r)[K]) {
  constexpr int kRowShift = Tier::kRows == 64 ? 46 : 47;
  constexpr uint64_t kLeastM = 0x3FE8000000000000 - (uint64_t{1} << (kRowShift - 1));
  for (size_t k = 0; k < K; ++k) {
    const auto bits = Bits(d, x[k]);
#if HWY_TARGET == HWY_AVX3
    const auto above = hn::Sub(bits, SetBits(d, kLeastM));
    const auto exponent_bits = hn::And(above, SetBits(d, 0xFFF0000000000000));  // e << 52
    r[k].e = hn::ConvertTo(d, exponent_bits);
    r[k].m = FromBits(d, hn::Sub(bits, exponent_bits));
    const auto row = ShiftBitsRight<kRowShift>(d, FromBits(d, above));
    r[k].factor = V{PowColumn<Tier::kRows, true>(Tier::kFactor, row.raw)};
    r[k].log = V{PowColumn<Tier::kRows, true>(Tier::kLog, row.raw)};
#else
    const hn::RebindToUnsigned<D> du;
    constexpr uint64_t kBias = uint64_t{1024} << 52;  // keeps biased exponents positive
    const auto above = hn::Add(bits, SetBits(d, kBias - kLeastM));
    // 2^52 + 1024 + e, made by the bits.
    const auto biased =
        hn::Or(hn::ShiftRight<52>(hn::BitCast(du, above)), hn::Set(du, 0x4330000000000000));
    r[k].e = hn::Sub(hn::BitCast(d, biased), hn::Set(d, 0x1p52 + 1024));
    r[k].m =
        FromBits(d, hn::Add(hn::And(above, SetBits(d, 0x000FFFFFFFFFFFFF)), SetBits(d, kLeastM)));
    const auto offset = hn::And(ShiftBitsRight<kRowShift - 4>(d, FromBits(d, above)),
                                SetBits(d, (Tier::kRows - 1) * 16));
    const Pair<V> entry = PowRowsAt<Tier::kRows>(d, Tier::kLogPairs, offset);
    r[k].factor = entry.hi;
    r[k].log = entry.lo;
#endif
  }
}

// ln(x) as two doubles, the second at most 2^-12 of the first, in two parts.
template <class D, size_t K>
struct PowLog {
  using V = VecOf<D>;
  PowReduced<D> u[K];
  V z[K], z_rest[K], square[K], square_rest[K];

  template <class Tier>
  HWY_INLINE void Begin(D d, const V (&x)[K]) {
    PowReduce<Tier>(d, x, u);
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> product = TwoProduct(d, u[k].m, u[k].factor);
      z[k] = hn::Sub(product.hi, hn::Set(d, 1.0));
      z_rest[k] = product.lo;
    }
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> product = TwoProduct(d, z[k], z[k]);
      square[k] = product.hi;
      square_rest[k] = product.lo;
    }
  }

  template <class Tier>
  HWY_INLINE void End(D d, Pair<V> (&r)[K]) const {
    const V half = hn::Set(d, 0.5);
    V q[K];
    EvenOdd(d, z, square, Tier::kLogPolynomial, q);
    for (size_t k = 0; k < K; ++k) {
      const V head = AddExactProduct(u[k].e, hn::Set(d, kPowLn2Hi * kPowUnit), u[k].log);  // exact
      // head + z - square/2 = hi + lo exactly: every difference is a number.
      const V hi = SubExactProduct(half, square[k], hn::Add(head, z[k]));
      const V lo = SubExactProduct(half, square[k], hn::Sub(z[k], hn::Sub(hi, head)));
      const V cubic = hn::Mul(square[k], hn::Mul(z[k], q[k]));
      // 1/(1 + z) times what z lacks.
      const V slope = hn::Sub(hn::Set(d, 1.0), hn::Sub(z[k], square[k]));
      const V rest = SubExactProduct(half, square_rest[k], hn::Mul(z_rest[k], slope));
      const V small = AddExactProduct(u[k].e, hn::Set(d, kPowLn2Rest * kPowUnit), rest);
      r[k] = {hi, hn::Add(hn::Add(lo, small), cubic)};
    }
  }
};

// e^p, normal. kExactSteps: by the short rest of a step.
template <class Tier, bool kExactSteps = false, class D, class V, size_t K>
HWY_INLINE void PowExp(D d, const Pair<V> (&p)[K], V (&r)[K]) {
  const V shifter = hn::Set(d, 0x1.8p52);  // leaves the rounded integer in the low bits
  BitsOf<D> steps[K];
  V x[K], square[K], q[K];
  for (size_t k = 0; k < K; ++k) {
    const V kf =
        hn::Add(hn::Mul(hn::Add(p[k].hi, p[k].lo), hn::Set(d, Tier::kSteps * 0x1.71547652b82fep+0)),
                shifter);
    const V kd = hn::Sub(kf, shifter);
    steps[k] = Bits(d, kf);
    V rest;
    if constexpr (kExactSteps) {
      rest = SubExactProduct(kd, hn::Set(d, Tier::kStepRest), p[k].lo);
    } else {
      rest = hn::Sub(p[k].lo, hn::Mul(kd, hn::Set(d, Tier::kStepLo)));
    }
    x[k] = hn::Add(SubExactProduct(kd, hn::Set(d, Tier::kStepHi), p[k].hi), rest);
    square[k] = hn::Mul(x[k], x[k]);
  }
  EvenOdd(d, x, square, Tier::kExpPolynomial, q);
  for (size_t k = 0; k < K; ++k) {
    const V above_one = hn::Add(x[k], hn::Mul(square[k], q[k]));
    const Pair<V> t =
        PowLookUp<Tier::kSteps>(d, Tier::kPower, Tier::kPowerRest, Tier::kPowerPairs, steps[k]);
    r[k] = hn::Add(t.hi, hn::Add(t.lo, hn::Mul(t.hi, above_one)));
    r[k] = PowScale<Tier::kSteps>(d, r[k], steps[k]);
  }
}

// Whether |p| of some lane exceeds the limit, where powers cease to be normal.
template <class D, class V, size_t K>
HWY_INLINE bool AnyBeyond(D d, const V (&p)[K], double limit) {
  V most = hn::Abs(p[0]);
  for (size_t k = 1; k < K; ++k) {
#if HWY_TARGET == HWY_AVX3
    most = V{_mm512_range_pd(most.raw, p[k].raw, 0xB)};  // the larger magnitude
#else
    most = hn::Max(most, hn::Abs(p[k]));
#endif
  }
  return !hn::AllFalse(d, hn::Gt(most, hn::Set(d, limit)));
}

// x^y of some vectors in parts. What is beyond the limit gives results of no use, and no flag.
template <class Tier, class D, size_t K>
struct PowPart {
  static constexpr size_t kSize = K;
  using V = VecOf<D>;
  const V* y;
  PowLog<D, K> log;
  Pair<V> p[K];

  HWY_INLINE void Reduce(const V* from) {
    V x[K];
    for (size_t k = 0; k < K; ++k) x[k] = from[k];
    log.template Begin<Tier>(D(), x);
  }
  HWY_INLINE void Evaluate() {
    const D d;
    log.template End<Tier>(d, p);
    for (size_t k = 0; k < K; ++k) {
      const V log_rest = p[k].lo;
      p[k] = TwoProduct(d, y[k], p[k].hi);
      p[k].lo = hn::Add(p[k].lo, hn::Mul(y[k], log_rest));
    }
    // Left alone, GCC mixes this part with the next one.
    V hi[K];
    for (size_t k = 0; k < K; ++k) hi[k] = p[k].hi;
    EndPart(hi);
    for (size_t k = 0; k < K; ++k) p[k].hi = hi[k];
  }
  HWY_INLINE void Result(const V*, V* r) {
    V e[K];
    PowExp<Tier, true>(D(), p, e);
    EndPart(e);
    for (size_t k = 0; k < K; ++k) r[k] = e[k];
  }
};

// HA and LA: x^y for positive normal x and y = 0 or 2^-70 <= |y| < 2^63; false where some result
// may not be normal.
template <class Tier>
struct PowByPairs {
  static constexpr double kLimit = 708;  // less than the logarithms of the normal numbers' ends
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE bool Power(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
    constexpr size_t kSize = K % 4 == 0 ? 4 : 1;
    PowPart<Tier, D, kSize> parts[K / kSize];
    for (size_t k = 0; k < K / kSize; ++k) parts[k].y = y + k * kSize;
    V power[K], head[K];
    SomeInTurn(parts, x, power);
    for (size_t k = 0; k < K; ++k) head[k] = parts[k / kSize].p[k % kSize].hi;
    if (AnyBeyond(d, head, kLimit)) [[unlikely]]
      return false;
    for (size_t k = 0; k < K; ++k) r[k] = power[k];
    return true;
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> Beyond(D d, V x, V y) {
    PowPart<Tier, D, 1> part;
    part.y = &y;
    part.Reduce(&x);
    part.Evaluate();
    return hn::Gt(hn::Abs(part.p[0].hi), hn::Set(d, kLimit));
  }
};

// EP: the same in plain doubles of base 2; powers of 2 are exact.
struct PowPlain {
  static constexpr double kLimit = 1021.5;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 4 : 5;
  template <class D, class V, size_t K>
  static HWY_INLINE void Exponent(D d, const V (&x)[K], const V (&y)[K], V (&p)[K]) {
    PowReduced<D> u[K];
    V z[K], square[K], q[K];
    PowReduce<PowEP>(d, x, u);
    for (size_t k = 0; k < K; ++k) {
      z[k] = hn::Sub(hn::Mul(u[k].m, u[k].factor), hn::Set(d, 1.0));
      square[k] = hn::Mul(z[k], z[k]);
    }
    EvenOdd(d, z, square, PowEP::kLogPolynomial, q);
    for (size_t k = 0; k < K; ++k) {
      const V log =
          hn::Add(AddExactProduct(u[k].e, hn::Set(d, kPowUnit), u[k].log), hn::Mul(z[k], q[k]));
      p[k] = hn::Mul(y[k], log);
    }
  }
  template <class D, class V, size_t K>
  static HWY_INLINE bool Power(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
    V p[K];
    Exponent(d, x, y, p);
    if (AnyBeyond(d, p, kLimit)) [[unlikely]]
      return false;
    const V shifter = hn::Set(d, 0x1.8p48);  // leaves the number of sixteenths in the low bits
    for (size_t k = 0; k < K; ++k) {
      const V kf = hn::Add(p[k], shifter);
      const V rest = hn::Sub(p[k], hn::Sub(kf, shifter));
      const V t = PowSixteenth(d, Bits(d, kf));
      const V above_one = hn::Mul(rest, Horner(d, rest, PowEP::kExpPolynomial));
      r[k] = PowScale<16>(d, hn::Add(t, hn::Mul(t, above_one)), Bits(d, kf));
    }
    return true;
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> Beyond(D d, V x, V y) {
    const V in1[1] = {x}, in2[1] = {y};
    V p[1];
    Exponent(d, in1, in2, p);
    return hn::Gt(hn::Abs(p[0]), hn::Set(d, kLimit));
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_POW_INL_H_
