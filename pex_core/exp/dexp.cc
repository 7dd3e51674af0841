// e^x in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/exp/dexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/exp_log_polynomials.h"
#include "pex_core/_heap/real/exp_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/exp/exp_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdExp";

// x = k ln2/2^kSteps + r, |r| <= ln2/2^(kSteps+1).
template <class D>
struct ExpReduced {
  BitsOf<D> k;  // in the low bits of each lane; other bits are of no use
  VecOf<D> kd, x;
};

// Adding 2^-300 changes no x above 2^-246, and the result of no smaller one; it keeps the products
// of tiny numbers from underflow.
template <class D, class V>
HWY_INLINE ExpReduced<D> ExpReduce(D d, V x, double steps_over_ln2) {
  const V shifter = hn::Set(d, 0x1.8p52);  // leaves the rounded integer in the low bits
  x = hn::Add(x, hn::Set(d, 0x1p-300));
  const V kf = hn::Add(hn::Mul(x, hn::Set(d, steps_over_ln2)), shifter);
  return {Bits(d, kf), hn::Sub(kf, shifter), x};
}

// y 2^(k >> kSteps) for y from 1/2 to 4, by an addition to the exponent: exact, and no product with
// a tiny power of two ever underflows on the way.
template <int kSteps, class D, class V>
HWY_INLINE V ScaleByPower(D d, V y, BitsOf<D> k) {
  const auto n = hn::And(hn::ShiftLeft<52 - kSteps>(k), SetBits(d, 0xFFF0000000000000));
  return FromBits(d, hn::Add(Bits(d, y), n));
}

// table[i] by lane. Four loads are faster than AVX2's gather.
template <class D>
HWY_INLINE VecOf<D> LoadEach(D d, const double* table, BitsOf<D> i) {
#if HWY_TARGET == HWY_AVX2
  (void)d;
  const auto pair = [table](__m128i j) HWY_ATTR {
    return _mm_loadh_pd(_mm_load_sd(table + _mm_cvtsi128_si64(j)), table + _mm_extract_epi64(j, 1));
  };
  const __m128d low = pair(_mm256_castsi256_si128(i.raw));
  const __m128d high = pair(_mm256_extracti128_si256(i.raw, 1));
  return VecOf<D>{_mm256_insertf128_pd(_mm256_castpd128_pd256(low), high, 1)};
#else
  return hn::GatherIndex(d, table, i);
#endif
}

// ln2/1024 = L1 + L2, k L1 exact.
constexpr double kL1 = 0x1.62e42fecp-11, kL2 = 0x1.d1cf79abc9e3bp-42;

// 2^(k/1024) from a table, times a cubic in |r| <= ln2/2048. The last octaves above the subnormal
// numbers belong to the rare routine, whose product with the power rounds there.
struct dExpLA : Kernel<double> {
  using Rarity = RareAbove<double, 0x4085DFFF>;  // |x| >= 700
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : HWY_TARGET == HWY_AVX2 ? 6 : 4;
  static HWY_INLINE int Rare(double x, double* r) { return dExpLAScalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto [k, kd, x1] = ExpReduce(d, x, 0x1.71547652b82fep+10);
    const V t = LoadEach(d, dExp_HA_Table, hn::And(k, SetBits(d, 1023)));
    const V r = hn::Sub(hn::Sub(x1, hn::Mul(kd, hn::Set(d, kL1))), hn::Mul(kd, hn::Set(d, kL2)));
    const V c =
        hn::Add(hn::Mul(hn::Set(d, 0x1.5555555555556p-3), r), hn::Set(d, 0x1.0000001ebfbep-1));
    const V p = hn::Add(hn::Mul(hn::Mul(c, r), r), r);
    return ScaleByPower<10>(d, hn::Add(hn::Mul(t, p), t), k);
  }
};

// 2^(j/128)/2, j = k & 127.
template <class D>
HWY_INLINE VecOf<D> HalfPower(D d, BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX3
  // Permutations of registers are faster than a gather: 2^(j/128) is the product of an eighth and a
  // hundred-and-twenty-eighth power, j = 16 a + b, and how far its rounding falls short is read
  // from 4 bits of a word for each a.
  const auto a = hn::ShiftRight<4>(k);
  const __m512d coarse = _mm512_permutexvar_pd(a.raw, _mm512_load_pd(dExpEighths));
  const __m512d fine =
      _mm512_permutex2var_pd(_mm512_load_pd(dExpFine), k.raw, _mm512_load_pd(dExpFine + 8));
  const __m512i shortfall = _mm512_permutexvar_epi64(a.raw, _mm512_load_epi64(dExpShortfall));
  const auto position = hn::And(hn::ShiftLeft<2>(k), SetBits(d, 60));
  const auto ulps = hn::And(BitsOf<D>{_mm512_srlv_epi64(shortfall, position.raw)}, SetBits(d, 15));
  return FromBits(d, hn::Add(Bits(d, VecOf<D>{_mm512_mul_pd(coarse, fine)}), ulps));
#else
  return LoadEach(d, dExp_EP_Table, hn::And(k, SetBits(d, 127)));
#endif
}

// 2^(k/128) from a table, times 1 + r + r^2/2 = ((1 + r)^2 + 1)/2, |r| <= ln2/256.
struct dExpEP : Kernel<double> {
  using Rarity = RareAbove<double, 0x4086232A>;  // |x| >= 708.39599609375
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : HWY_TARGET == HWY_AVX2 ? 6 : 4;
  static HWY_INLINE int Rare(double x, double* r) { return dExpScalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto [k, kd, x1] = ExpReduce(d, x, 184.6649652337873);
    const V r = hn::Sub(x1, hn::Mul(kd, hn::Set(d, 0.0054152123481245725)));
    const V one = hn::Set(d, 1.0);
    const V u = hn::Add(r, one);
    const V y = hn::Mul(HalfPower(d, k), hn::Add(hn::Mul(u, u), one));
    return ScaleByPower<7>(d, y, k);
  }
};

// 2^(k/1024) from a table with 12 bits below the double, times a quartic in |r| <= ln2/2048. A
// table word holds the significand of the power in its low 52 bits, and above them how far the
// power is from that double, in 2^-64 of it, plus 2048.
struct dExpHA : Kernel<double> {
  using Rarity = RareAbove<double, 0x4086232A>;  // |x| >= 708.39599609375
  static HWY_INLINE int Rare(double x, double* r) { return dExpScalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const hn::RebindToUnsigned<D> du;
    const auto [k, kd, x1] = ExpReduce(d, x, 0x1.71547652b82fep+10);
    const auto word = hn::GatherIndex(du, dExpPackedTable, hn::And(k, SetBits(d, 1023)));
    // 2^52 + rest + 2048, made by the bits.
    const auto rest = hn::Or(hn::ShiftRight<52>(word), hn::Set(du, 0x4330000000000000));
    const V delta =
        hn::Mul(hn::Sub(hn::BitCast(d, rest), hn::Set(d, 0x1p52 + 2048)), hn::Set(d, 0x1p-64));
    const V t = hn::BitCast(
        d, hn::Or(hn::And(word, hn::Set(du, 0x000FFFFFFFFFFFFF)), hn::Set(du, 0x3FF0000000000000)));
    const V r = hn::Sub(hn::Sub(x1, hn::Mul(kd, hn::Set(d, kL1))), hn::Mul(kd, hn::Set(d, kL2)));
    const V q = Horner(d, r, kExpHA);
    const V p = hn::Add(hn::Add(hn::Mul(q, hn::Mul(r, r)), delta), r);
    return ScaleByPower<10>(d, hn::Add(hn::Mul(t, p), t), k);
  }
};

PEX_UNARY(double, dExp_26, dExpEP)
PEX_UNARY(double, dExp_50, dExpLA)
PEX_UNARY(double, dExp_HA, dExpHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dExp_26)
PEX_EXPORT_UNARY(double, dExp_50)
PEX_EXPORT_UNARY(double, dExp_HA)
}  // namespace pex
#endif
