// e^x - 1 in double precision: s (e^r - 1) + (s - 1), s a power of 2^(1/16) or, in EP, 2^(1/8).
// For s = 1 the second term is exactly 0 and r exactly x, so small results keep their relative
// accuracy.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/expm1/dexpm1.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/exp_log_polynomials.h"
#include "pex_core/_heap/real/exp_single_tables.h"
#include "pex_core/_heap/real/exp_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/hardware-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/expm1/expm1_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdExpm1";

constexpr double kLeast = -60;  // below it the result is -1 to nearest

template <class Groups>
struct dExpm1Common : Groups {
  using Rarity = RareAbove<double, 0x4086232A>;  // |x| >= 708.39599609375
  static HWY_INLINE int Rare(double x, double* r) { return Expm1Rare(x, r, dExpScalar); }
};

// k = round(x 2^kLog/ln2). On the levels without silent products it comes in units of 2^60, which
// keep the product with a tiny argument from underflow.
template <class D>
struct Expm1Steps {
  VecOf<D> x, k;
  BitsOf<D> bits;  // k + kBias in the low bits
};

template <class V>
inline constexpr double kStepUnit = kHasSilentMul<V> ? 1 : 0x1p60;

// kProducts: products with small powers are formed on their own, and would underflow below kLeast.
template <int kLog, int kBias, bool kProducts, class D, class V>
HWY_INLINE Expm1Steps<D> Expm1Reduce(D d, V x) {
  constexpr double kUnit = kStepUnit<V>;
  if constexpr (kProducts) x = hn::Max(x, hn::Set(d, kLeast));
  const V shifter = hn::Set(d, (0x1.8p52 + kBias) * kUnit);
  const V over_ln2 = hn::Set(d, 0x1.71547652b82fep+0 * (1 << kLog) * kUnit);
  const V kf = hn::Add(SilentMul(x, over_ln2), shifter);
  return {x, hn::Sub(kf, shifter), Bits(d, kf)};
}

// Bits of 2^(j/8) less j << 49, to which k << 49 is added; as they are, and in halves.
struct ShiftedEighths {
  alignas(64) int64_t entry[8];
  alignas(32) int32_t low[8], high[8];
};
constexpr ShiftedEighths MakeShiftedEighths() {
  ShiftedEighths t = {};
  for (int j = 0; j < 8; ++j) {
    t.entry[j] = sExpShiftedSixteenthsHA[2 * j];
    t.low[j] = static_cast<int32_t>(t.entry[j]);
    t.high[j] = static_cast<int32_t>(t.entry[j] >> 32);
  }
  return t;
}
inline constexpr ShiftedEighths kShiftedEighths = MakeShiftedEighths();

// Entry k & 7.
template <class D>
HWY_INLINE BitsOf<D> ShiftedEighth([[maybe_unused]] D d, BitsOf<D> k) {
  constexpr auto& t = kShiftedEighths;
#if HWY_TARGET == HWY_AVX3
  return BitsOf<D>{_mm512_permutexvar_epi64(k.raw, _mm512_load_si512(t.entry))};
#elif HWY_TARGET == HWY_AVX2
  const auto half = [k](const int32_t* from) HWY_ATTR {
    const __m256i all = _mm256_load_si256(reinterpret_cast<const __m256i*>(from));
    return _mm256_permutevar8x32_epi32(all, k.raw);
  };
  return BitsOf<D>{_mm256_blend_epi32(half(t.low), _mm256_slli_epi64(half(t.high), 32), 0xAA)};
#else
  return hn::GatherIndex(hn::RebindToSigned<D>(), t.entry, hn::And(k, SetBits(d, 7)));
#endif
}

// s p - (1 - s), |r| <= ln2/16: a difference, for it keeps the sign of zero. The product of k and
// ln2/8 in 39 bits is exact, and what those lack is of no weight here. Without silent products a
// factor in the polynomial keeps products of tiny arguments from underflow: their result is the
// argument itself, without a flag.
struct dExpm1EP : dExpm1Common<LargeGroups<double>> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    constexpr int kScale = kHasSilentMul<V> ? 0 : 60;
    constexpr double kOne = kScale == 0 ? 1 : 0x1p60;
    const auto u = Expm1Reduce<3, 0, !kHasSilentMul<V>>(d, x);
    const V r = SubExactProduct(u.k, hn::Set(d, 0x1.62e42fefa4p-4 / kStepUnit<V>), u.x);
    const auto c = [&](int i) HWY_ATTR { return hn::Set(d, kOne * kExpm1EP[i]); };
    const V q = hn::Add(SilentMul(hn::Add(SilentMul(c(2), r), c(1)), r), c(0));
    const V p = SilentMul(hn::Add(SilentMul(q, r), hn::Set(d, kOne)), r);
    const auto s = hn::Add(ShiftedEighth(d, u.bits), hn::ShiftLeft<49>(u.bits));
    const auto scaled = kScale == 0 ? s : hn::Sub(s, SetBits(d, uint64_t{kScale} << 52));
    const V less = hn::Sub(hn::Set(d, 1.0), FromBits(d, s));
    return hn::Sub(SilentMul(FromBits(d, scaled), p), less);
  }
};

// Entry k & 15.
template <class D>
HWY_INLINE VecOf<D> PowerOverChord(D d, BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  const double* const t = dExpOverChord;
  return VecOf<D>{_mm512_permutex2var_pd(_mm512_load_pd(t), k.raw, _mm512_load_pd(t + 8))};
#else
  return Gather(d, dExpOverChord, hn::And(k, SetBits(d, 15)));
#endif
}

// Where tiny numbers must not be multiplied: 0 for them, others up to 1 as they are, or nearly so
// where their squares count for nothing.
template <class D, class V>
HWY_INLINE V WithoutTiny([[maybe_unused]] D d, V r) {
  if constexpr (kHasSilentMul<V>) return r;
  const V least = hn::Set(d, 0x1p-400);
  return hn::Sub(hn::Add(r, least), least);
}

// |r| <= ln2/32. The bits of k, moved to the exponent, are those of c = 2^n (1 + j/16), k = 16 n +
// j, and s - 1 = (c - 1) + c t, t = 2^(j/16)/(1 + j/16) - 1 from a table, the same rounded once or
// twice for every k. The sum begins with the small terms of s p = (s - 1) p + p; the rounding of r
// would tell next to zero, so r0 goes its own way.
struct dExpm1LA : dExpm1Common<LargeGroups<double>> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    constexpr double kUnit = kStepUnit<V>;
    const V low = hn::Set(d, 0x1.cf79abc9e4p-44 / kUnit);
    Expm1Steps<D> u[K];
    V r0[K], r[K], y[K], y2[K], q[K], less[K];
    for (size_t k = 0; k < K; ++k) {
      u[k] = Expm1Reduce<4, 16 * 1023, HWY_TARGET == HWY_SSE4>(d, x[k]);
    }
    for (size_t k = 0; k < K; ++k) {
      // ln2/16 in 37 bits and 39 more, both products exact, and the first difference, too.
      r0[k] = SubExactProduct(u[k].k, hn::Set(d, 0x1.62e42fefap-5 / kUnit), u[k].x);
      r[k] = SubExactProduct(u[k].k, low, r0[k]);
      y[k] = WithoutTiny(d, r[k]);
      y2[k] = SilentMul(y[k], y[k]);
    }
    for (size_t k = 0; k < K; ++k) {
      const V c = FromBits(d, hn::ShiftLeft<48>(u[k].bits));
      const V t = PowerOverChord(d, u[k].bits);
      less[k] = HiddenNegMulAdd(c, t, hn::Sub(hn::Set(d, 1.0), c));  // 1 - s
    }
    SilentEvenOdd(d, y, y2, kExpm1, q);
    for (size_t k = 0; k < K; ++k) {
      const V e = SilentMul(y2[k], q[k]);  // e^r - 1 - r
      // Differences such that zeros keep their sign.
      const V rest = hn::Sub(SilentMul(less[k], hn::Add(e, r[k])), SubExactProduct(u[k].k, low, e));
      out[k] = hn::Sub(hn::Sub(r0[k], rest), less[k]);
    }
  }
};

// The table by rows, for the levels that read whole rows.
struct ExpShortPowerRows {
  alignas(64) double row[16][2];
};
inline constexpr ExpShortPowerRows kExpShortPowerRows = [] {
  ExpShortPowerRows rows = {};
  for (int j = 0; j < 16; ++j) {
    rows.row[j][0] = __builtin_bit_cast(double, kExpShortPowers.bits[j]);
    rows.row[j][1] = kExpShortPowers.rest[j];
  }
  return rows;
}();

// Entries k & 15.
template <class D>
HWY_INLINE Row2<VecOf<D>> ShortPower([[maybe_unused]] D d, BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX3
  const auto& t = kExpShortPowers;
  const __m512d bits =
      _mm512_permutex2var_pd(_mm512_load_pd(t.bits), k.raw, _mm512_load_pd(t.bits + 8));
  const __m512d rest =
      _mm512_permutex2var_pd(_mm512_load_pd(t.rest), k.raw, _mm512_load_pd(t.rest + 8));
  return {VecOf<D>{bits}, VecOf<D>{rest}};
#else
  return LoadRows2(d, &kExpShortPowerRows.row[0][0],
                   RowOffsets<16, D>(d, hn::And(k, SetBits(d, 15))));
#endif
}

// s is 2^(k/16) in 21 bits, and what these lack of it is in r = x - k ln2/16 + ln(2^(k/16)/s) =
// r0 + rest, |r| < ln2/32 + 2^-21; r0 leaves out the last bits of ln2. The sum (s - 1) + s r0 is
// kept with what its roundings leave, and the small terms, s (r^2 q + rest), join that.
//
// kExact: for |x| < 22, where s - 1 leaves nothing, and nothing is below kLeast. Its bits are those
// of the other.
template <bool kExact>
struct dExpm1HAPart : dExpm1Common<Kernel<double>> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    constexpr double kUnit = kStepUnit<V>;
    const V one = hn::Set(d, 1.0);
    V s[K], r0[K], rest[K], y[K], y2[K], q[K];
    for (size_t k = 0; k < K; ++k) {
      const auto u = Expm1Reduce<4, 0, !kExact>(d, x[k]);
      const auto row = ShortPower(d, u.bits);
      s[k] = FromBits(d, hn::Add(Bits(d, row.a), hn::ShiftLeft<48>(u.bits)));
      // ln2/16 in 37 bits and 39 more, both products exact, and the first difference, too.
      r0[k] = SubExactProduct(u.k, hn::Set(d, 0x1.62e42fefap-5 / kUnit), u.x);
      rest[k] = SubExactProduct(u.k, hn::Set(d, 0x1.cf79abc9e4p-44 / kUnit), row.b);
      y[k] = WithoutTiny(d, hn::Add(r0[k], rest[k]));
      y2[k] = SilentMul(y[k], y[k]);
    }
    // 1/2 comes last, so that one rounding alone is next to it.
    const auto c = [&](int i) HWY_ATTR { return hn::Set(d, kExpm1[i]); };
    for (size_t k = 0; k < K; ++k) {
      q[k] = hn::Add(SilentMul(hn::Add(SilentMul(c(5), y[k]), c(4)), y2[k]),
                     hn::Add(SilentMul(c(3), y[k]), c(2)));
    }
    for (size_t k = 0; k < K; ++k) {
      q[k] = hn::Add(hn::Add(SilentMul(q[k], y2[k]), SilentMul(c(1), y[k])), c(0));
    }
    for (size_t k = 0; k < K; ++k) {
      const V small = hn::Add(SilentMul(y2[k], q[k]), rest[k]);
      // Differences such that zeros keep their sign.
      const V less = hn::Sub(one, s[k]);
      // s - 1 is 0 or more than s r0, so that adding it again is exact.
      const V sum = hn::Sub(SilentMul(s[k], r0[k]), less);
      V over = ShortNegMulAdd(d, r0[k], s[k], hn::Add(sum, less));
      if constexpr (!kExact) {
        const V back = hn::Sub(less, one);
        const V error = hn::Sub(hn::Sub(one, hn::Sub(less, back)), hn::Add(s[k], back));
        over = hn::Add(over, error);
      }
      out[k] = hn::Sub(sum, hn::Sub(over, SilentMul(s[k], small)));
    }
  }
};

struct dExpm1HA : dExpm1HAPart<true> {
  using Rarity = RareAbove<double, 0x4035FFFF>;  // |x| >= 22
  using Wide = dExpm1HAPart<false>;
};

PEX_UNARY(double, dExpm1_26, dExpm1EP)
PEX_UNARY(double, dExpm1_50, dExpm1LA)
PEX_UNARY(double, dExpm1_HA, dExpm1HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dExpm1_26)
PEX_EXPORT_UNARY(double, dExpm1_50)
PEX_EXPORT_UNARY(double, dExpm1_HA)
}  // namespace pex
#endif
