// e^x in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/exp/dexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/exp_log_polynomials.h"
#include "pex_core/_heap/real/exp_rows.h"
#include "pex_core/_heap/real/exp_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/hardware-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/exp/exp_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdExp";

// k = round(x steps/ln2).
template <class D>
struct ExpReduced {
  BitsOf<D> k;  // in the low bits of each lane; other bits are of no use
  VecOf<D> n;   // k times the unit
};

// Silent products need no more; on the other levels x has 2^-300 added where there is a product
// that may underflow, which changes no x above 2^-246, and the result of no smaller one.
template <class D, class V>
HWY_INLINE V AboveUnderflow(D d, V x) {
  if constexpr (kHasSilentMul<V>) return x;
  return hn::Add(x, hn::Set(d, 0x1p-300));
}

template <class D, class V>
HWY_INLINE ExpReduced<D> ExpReduce(D d, V x, double steps_over_ln2, double unit) {
  const V shifter = hn::Set(d, 0x1.8p52 * unit);  // leaves the rounded integer in the low bits
  const V kf = hn::Add(SilentMul(x, hn::Set(d, steps_over_ln2 * unit)), shifter);
  return {Bits(d, kf), hn::Sub(kf, shifter)};
}

// y 2^(k >> kSteps) for y from 1/2 to 4, exact, and no product with a tiny power of two ever
// underflows on the way. By the hardware, whose unit is 2^-kSteps, or by an addition to the
// exponent.
template <int kSteps, class D, class V>
HWY_INLINE V ScaleByPower(D d, V y, const ExpReduced<D>& u) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  return V{_mm512_scalef_pd(y.raw, u.n.raw)};
#else
  const auto n = hn::And(hn::ShiftLeft<52 - kSteps>(u.k), SetBits(d, 0xFFF0000000000000));
  return FromBits(d, hn::Add(Bits(d, y), n));
#endif
}

// table[i] by lane. Loads one by one are faster than AVX2's gather; their addresses go through
// memory, as the units that take numbers from vector registers are busier than those that load.
// kSpread: by loads into all lanes and blends, where units that shuffle are busy.
template <bool kSpread = false, class D>
HWY_INLINE VecOf<D> LoadEach(D d, const double* table, BitsOf<D> i) {
#if HWY_TARGET == HWY_AVX2
  (void)d;
  __m256i at;
  asm("vmovdqa %1, %0" : "=m"(at) : "x"(i.raw));
  const int64_t* const j = reinterpret_cast<const int64_t*>(&at);
  if constexpr (kSpread) {
    const auto all = [&](int k) HWY_ATTR { return _mm256_broadcast_sd(table + j[k]); };
    const __m256d lower = _mm256_blend_pd(all(0), all(1), 2);
    const __m256d upper = _mm256_blend_pd(all(2), all(3), 8);
    return VecOf<D>{_mm256_blend_pd(lower, upper, 12)};
  }
  const auto pair = [&](int k) HWY_ATTR {
    return _mm_loadh_pd(_mm_load_sd(table + j[k]), table + j[k + 1]);
  };
  return VecOf<D>{_mm256_insertf128_pd(_mm256_castpd128_pd256(pair(0)), pair(2), 1)};
#else
  return Gather(d, table, i);
#endif
}

// ln2 = L1 + L2, k L1 exact for k of 21 bits.
constexpr double kL1 = 0x1.62e42fecp-1, kL2 = 0x1.d1cf79abc9e3bp-32;

// |x| >= 708.39599609375.
using ExpLAOutside = RareAbove<double, 0x4086232A>;

// 2^(k/1024) from a table, times a cubic in |r| <= ln2/2048.
template <class D, class V>
HWY_INLINE V ExpLARemainder(D d, V x, const ExpReduced<D>& u) {
  return hn::Sub(SubExactProduct(u.n, hn::Set(d, kL1), x), hn::Mul(u.n, hn::Set(d, kL2)));
}
template <class D, class V>
HWY_INLINE V ExpLAPolynomial(D d, V r) {
  const V c =
      hn::Add(SilentMul(hn::Set(d, 0x1.5555555555556p-3), r), hn::Set(d, 0x1.0000001ebfbep-1));
  return hn::Add(SilentMul(SilentMul(c, r), r), r);
}

#if HWY_TARGET == HWY_AVX3
struct dExpLA : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  using Rarity = ExpLAOutside;
  static constexpr int kUnroll = 8;
  static HWY_INLINE int Rare(double x, double* r) { return dExpLAScalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = ExpReduce(d, x, 0x1.71547652b82fep+10, 0x1p-10);
    const V t = LoadEach(d, dExp_HA_Table, hn::And(u.k, SetBits(d, 1023)));
    const V p = ExpLAPolynomial(d, ExpLARemainder(d, x, u));
    const V power = ScaleByPower<10>(d, t, u);
    return SilentAdd(SilentMul(power, p), power);
  }
};
#else
// The bits of 2^(j/1024) without what k = j adds to the exponent.
struct ExpLATable {
  alignas(64) double row[1024];
};
constexpr ExpLATable kExpLATable = [] {
  ExpLATable table{};
  for (int64_t j = 0; j < 1024; ++j) {
    table.row[j] = __builtin_bit_cast(double, BitsOfNumber(dExp_HA_Table[j]) - (j << 42));
  }
  return table;
}();

// The product with the power may be subnormal in the last octaves above the subnormal numbers,
// where its rounding may show in the sum, and it is not silent: such arguments are rare. The sum of
// the exponents of r and the power tells them before that product is made; to put aside all
// arguments of those octaves would send every eighth group of uniform arguments another way.
struct dExpFewLA : Kernel<double> {
  static constexpr int kUnroll = 2;
  static HWY_INLINE int Rare(double x, double* r) { return dExpLAScalar(x, r); }

  template <class V>
  struct Factors {
    V power, r;
  };
  template <class D, class V>
  static HWY_INLINE Factors<V> FactorsOf(D d, V x) {
#if HWY_TARGET == HWY_AVX2
    // The unit keeps the product with a tiny x from underflow. What is added to r instead of x goes
    // with k L2, which it changes for k = 0 alone: no other k L2 is half way between two numbers,
    // as L2's last bit is set and 3 L2 has two bits too many.
    constexpr double kUnit = 0x1p60;
    const auto u = ExpReduce(d, x, 0x1.71547652b82fep+10, kUnit);
    const V upper = SubExactProduct(u.n, hn::Set(d, kL1 / (1024 * kUnit)), x);
    const V lower = HiddenMulSub(u.n, hn::Set(d, kL2 / (1024 * kUnit)), hn::Set(d, 0x1p-300));
    const V r = hn::Sub(upper, lower);
#else
    x = AboveUnderflow(d, x);
    const auto u = ExpReduce(d, x, 0x1.71547652b82fep+10, 0x1p-10);
    const V r = ExpLARemainder(d, x, u);
#endif
    const V row = LoadEach<true>(d, kExpLATable.row, hn::And(u.k, SetBits(d, 1023)));
    return {FromBits(d, hn::Add(Bits(d, row), hn::ShiftLeft<42>(u.k))), r};
  }

  // The high words of |x|, or of |r| and the power, of one vector or two.
  template <class D>
  using Word = hn::Repartition<uint32_t, D>;
  template <class D>
  using Words = decltype(hn::Zero(Word<D>()));
  template <class D, class V>
  static HWY_INLINE Words<D> Magnitudes(D d, V x, V y) {
    return hn::BitCast(Word<D>(), hn::Abs(HighWords(d, x, y)));
  }
  template <class D, class F>
  static HWY_INLINE Words<D> Exponents(D d, const F& f, const F& g) {
    return hn::Add(Magnitudes(d, f.r, g.r), hn::BitCast(Word<D>(), HighWords(d, f.power, g.power)));
  }
  // Whether |x| < 708.39599609375.
  template <class D>
  static HWY_INLINE bool AllInside(D, Words<D> most) {
    const hn::Repartition<int32_t, D> d32;
    constexpr int32_t kMost = ExpLAOutside::kLimit >> 32;
    return hn::AllFalse(d32, hn::Gt(hn::BitCast(d32, most), hn::Set(d32, kMost)));
  }
  // Whether the products are normal: the words' sum is never above that of the logarithms, which is
  // 1024 times 2^20 for the least normal product of r, and |p| is at least (1 - 2^-11) |r|.
  template <class D>
  static HWY_INLINE bool AllNormal(D, Words<D> least) {
    const Word<D> d32;
    const hn::Repartition<float, D> df;
    return hn::AllFalse(df,
                        hn::MaskFromVec(hn::BitCast(df, hn::Sub(least, hn::Set(d32, 0x40000800)))));
  }

  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    const auto outside = LanesAbove(d, ExpLAOutside::Key(d, x), ExpLAOutside::kLimit);
    const auto f = FactorsOf(d, Selected(hn::IfThenElse(outside, hn::Set(d, kHarmless), x)));
    const hn::RebindToSigned<D> di;
    const auto exponents = hn::Add(Bits(d, hn::Abs(f.r)), Bits(d, f.power));
    const auto below = hn::Sub(exponents, hn::Set(di, int64_t{0x40000800} << 32));
    return hn::Or(outside, hn::RebindMask(d, hn::Lt(below, hn::Zero(di))));
  }
  template <class D, class V, size_t kVectors>
  static HWY_INLINE bool TryGroup(D d, const V (&x)[kVectors], const V (&)[kVectors],
                                  V (&y)[kVectors]) {
    constexpr size_t kNext = kVectors > 1 ? 1 : 0;
    static_assert(kVectors % 2 == 0 || kVectors == 1);
    auto most = Magnitudes(d, x[0], x[kNext]);
    for (size_t k = 2; k < kVectors; k += 2) {
      most = hn::Max(most, Magnitudes(d, x[k], x[k + 1]));
    }
    if (!AllInside(d, most)) [[unlikely]]
      return false;
    Factors<V> f[kVectors];
    for (size_t k = 0; k < kVectors; ++k) f[k] = FactorsOf(d, x[k]);
    auto least = Exponents(d, f[0], f[kNext]);
    for (size_t k = 2; k < kVectors; k += 2) {
      least = hn::Min(least, Exponents(d, f[k], f[k + 1]));
    }
    if (!AllNormal(d, least)) [[unlikely]]
      return false;
    for (size_t k = 0; k < kVectors; ++k) {
      y[k] = hn::Add(hn::Mul(f[k].power, ExpLAPolynomial(d, f[k].r)), f[k].power);
    }
    return true;
  }
};

struct dExpLA : dExpFewLA {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 8, kRestUnroll = 4;
  using Wide = dExpFewLA;  // of groups with a rare argument
};
#endif

// 2^(j/128)/2, j = k & 127.
template <class D>
HWY_INLINE VecOf<D> HalfPower(D d, BitsOf<D> k) {
#if HWY_TARGET == HWY_AVX3
  // Permutations of registers are faster than a gather: j = 16 a + b, and the factors are such that
  // this gives the rounded power for every j.
  const auto a = hn::ShiftRight<4>(k);
  const __m512d coarse = _mm512_permutexvar_pd(a.raw, _mm512_load_pd(dExpCoarse));
  const __m512d fine =
      _mm512_permutex2var_pd(_mm512_load_pd(dExpFine), k.raw, _mm512_load_pd(dExpFine + 8));
  return VecOf<D>{_mm512_fmadd_pd(coarse, fine, coarse)};
#else
  return LoadEach<true>(d, dExp_EP_Table, hn::And(k, SetBits(d, 127)));
#endif
}

// 2^(k/128) from a table, times 1 + r + r^2/2 = ((1 + r)^2 + 1)/2, |r| <= ln2/256.
struct dExpEP : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  using Rarity = RareAbove<double, 0x4086232A>;  // |x| >= 708.39599609375
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : 4;
  // The second keeps the only product with a tiny x from underflow.
  static constexpr double kUnit = HWY_TARGET == HWY_AVX3 ? 0x1p-7 : 0x1p60;
  static HWY_INLINE int Rare(double x, double* r) { return dExpScalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = ExpReduce(d, x, 184.6649652337873, kUnit);
    const V r = hn::Sub(x, hn::Mul(u.n, hn::Set(d, 0.0054152123481245725 / kUnit)));
    const V one = hn::Set(d, 1.0);
    const V r1 = hn::Add(r, one);
    const V y = hn::Mul(HalfPower(d, u.k), hn::Add(hn::Mul(r1, r1), one));
    return ScaleByPower<7>(d, y, u);
  }
};

// 2^(k/256) as a number t, and ln(t) - ln2 k/256.
template <class D>
struct ExpPoint {
  VecOf<D> t, log;
};
template <class D>
HWY_INLINE ExpPoint<D> ExpPointAt(D, BitsOf<D> k) {
  using V = VecOf<D>;
#if HWY_TARGET == HWY_AVX3
  // The factors' product and the sum of their logarithms are exact.
  const auto at = [](BitsOf<D> i, const double* c) HWY_ATTR {
    return V{_mm512_permutex2var_pd(_mm512_load_pd(c), i.raw, _mm512_load_pd(c + 8))};
  };
  const auto a = hn::ShiftRight<4>(k);
  return {hn::Mul(at(a, kExpFactors.coarse), at(k, kExpFactors.fine)),
          hn::Add(at(a, kExpFactors.coarse_log), at(k, kExpFactors.fine_log))};
#elif HWY_TARGET == HWY_AVX2
  HWY_ALIGN uint8_t j[32];  // in each lane's first byte the row
  hn::Store(k, hn::RebindToSigned<D>(), reinterpret_cast<int64_t*>(j));
  asm volatile("" : "+m"(j));  // else GCC takes the lanes out one by one
  const auto halves = [&](int lane) HWY_ATTR {
    const __m256d lower = _mm256_castpd128_pd256(_mm_load_pd(kExpRows.row[j[8 * lane]]));
    return _mm256_insertf128_pd(lower, _mm_load_pd(kExpRows.row[j[8 * lane + 16]]), 1);
  };
  const __m256d even = halves(0), odd = halves(1);
  return {V{_mm256_unpacklo_pd(even, odd)}, V{_mm256_unpackhi_pd(even, odd)}};
#else
  const auto row = [](uint64_t i)
                       HWY_ATTR { return _mm_load_pd(kExpRows.row[static_cast<uint8_t>(i)]); };
  const __m128d r0 = row(static_cast<uint64_t>(_mm_cvtsi128_si64(k.raw)));
  const __m128d r1 = row(static_cast<uint64_t>(_mm_extract_epi64(k.raw, 1)));
  return {V{_mm_unpacklo_pd(r0, r1)}, V{_mm_unpackhi_pd(r0, r1)}};
#endif
}

// t, a number next to 2^(k/256), times e^r by a quartic in |r| <= ln2/512. k times both parts of
// ln2 is exact. Largest error seen: 0.5264 ulp (-0x1.61dbe42263cfcp+9).
struct dExpHA : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  using Rarity = RareAbove<double, 0x4086232A>;  // |x| >= 708.39599609375
  static HWY_INLINE int Rare(double x, double* r) { return dExpScalar(x, r); }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    x = AboveUnderflow(d, x);
    const auto u = ExpReduce(d, x, 0x1.71547652b82fep+8, 0x1p-8);
    const ExpPoint<D> point = ExpPointAt(d, u.k);
    const V low = AddExactProduct(u.n, hn::Set(d, 0x1.1cf79abc8p-36), point.log);
    const V r = hn::Sub(SubExactProduct(u.n, hn::Set(d, 0x1.62e42fef8p-1), x), low);
    const V p = SilentMul(SilentHorner(d, r, kExpHA), r);
    return ScaleByPower<8>(d, hn::Add(hn::Mul(point.t, p), point.t), u);
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
