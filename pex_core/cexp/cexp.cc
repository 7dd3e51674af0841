// e^z of complex numbers in single precision. LA and EP are one kernel in float arithmetic.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cexp/cexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_single-inl.h"
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_heap/real/pow-inl.h"
#include "pex_core/_heap/real/trig_single-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// |re| <= kRe and |im| < kIm, of positive floats given by their bits.
template <int32_t kRe, int32_t kIm>
struct ExpRange {
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> z) {
    return KeyAbove(d, Key(d, z), kRe);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
    return LanesAbove(d, Key(d, z), kRe);
  }

 private:
  // The larger of the bits of |x| and those of |y| less what the limits differ by.
  template <class D, class V>
  static HWY_INLINE BitsOf<D> Key(D d, Complex<V> z) {
    const auto above = SetBits(d, static_cast<uint64_t>(kIm - 1 - kRe));
    return hn::Max(Bits(d, hn::Abs(z.re)), hn::Sub(Bits(d, hn::Abs(z.im)), above));
  }
};

// The number of quarter turns next to y, in the low bits of a float. A tiny number is added, or the
// product raises no flag: that of a tiny y would underflow. The sum with the rounder is the same, a
// number of 13 bits more than 2^23 and 2^22, whole turns among them.
inline constexpr float kTurnRounder = 0x1.8p23f + 4096;
template <class D, class V>
HWY_INLINE V Turns(D d, V y) {
  const V rounder = hn::Set(d, kTurnRounder);
  if constexpr (kHasSilentMul<V>) return hn::Add(SilentMul(y, hn::Set(d, 0x1.45f306p-1f)), rounder);
  const V quiet = hn::Add(y, hn::Set(d, 0x1p-40f));
  return hn::Add(hn::Mul(quiet, hn::Set(d, 0x1.45f306p-1f)), rounder);
}

// (cos, sin) of k pi/2 + y, times what both are multiplied by, from those of y.
template <class D, class V>
HWY_INLINE Complex<V> TurnBack(D d, BitsOf<D> k, V sine, V cosine) {
  const auto turn = hn::ShiftLeft<30>(k), next = hn::Add(turn, SetBits(d, 1 << 30));
#if HWY_TARGET == HWY_AVX2  // exchanged, for a selection costs three operations
  const auto odd = hn::BroadcastSignBit(hn::Add(turn, turn));
  const V differing = hn::And(hn::Xor(sine, cosine), FromBits(d, odd));
  return {FlipSign(d, hn::Xor(cosine, differing), next),
          FlipSign(d, hn::Xor(sine, differing), turn)};
#else
  const auto odd = OddQuarter(d, k);
  return {FlipSign(d, hn::IfThenElse(odd, sine, cosine), next),
          FlipSign(d, hn::IfThenElse(odd, cosine, sine), turn)};
#endif
}

// Powers of 2^(1/16) without the exponents' own share of the steps, as often as a byte counts.
constexpr auto kShiftedPowers = [] {
  struct {
    alignas(64) double power[256];
  } t{};
  for (int64_t i = 0; i < 256; ++i) {
    t.power[i] = __builtin_bit_cast(double, BitsOfNumber(kPowPowers16.hi[i % 16]) - (i % 16 << 48));
  }
  return t;
}();

// 2^(n/16), n in the low bits.
template <class D, size_t K, class V = VecOf<D>>
HWY_INLINE void SixteenthPowers(D d, const BitsOf<D> (&n)[K], V (&r)[K]) {
  const double* const power = kShiftedPowers.power;
#if HWY_TARGET == HWY_AVX2
  const hn::ScalableTag<uint8_t> d8;
  HWY_ALIGN uint8_t row[K][32];
  for (size_t i = 0; i < K; ++i) hn::Store(hn::BitCast(d8, n[i]), d8, row[i]);
  asm volatile("" : "+m"(row));  // else GCC takes the lanes out one by one
  for (size_t i = 0; i < K; ++i) {
    const auto half = [&](size_t lane) HWY_ATTR {
      return _mm_loadh_pd(_mm_load_sd(power + row[i][8 * lane]), power + row[i][8 * lane + 8]);
    };
    r[i] = V{_mm256_insertf128_pd(_mm256_castpd128_pd256(half(0)), half(2), 1)};
  }
#elif HWY_TARGET == HWY_AVX3
  for (size_t i = 0; i < K; ++i) r[i] = V{PowColumn<16>(power, n[i].raw)};
#else
  for (size_t i = 0; i < K; ++i) {
    const auto row = [](int bits) { return static_cast<uint8_t>(bits); };
    r[i] = V{_mm_loadh_pd(_mm_load_sd(power + row(_mm_cvtsi128_si32(n[i].raw))),
                          power + row(_mm_extract_epi16(n[i].raw, 4)))};
  }
#endif
  for (size_t i = 0; i < K; ++i) {
    r[i] = FromBits(d, hn::Add(Bits(d, r[i]), hn::ShiftLeft<48>(n[i])));
  }
}

// The upper 26 bits of a number.
constexpr double Upper26(double x) {
  return __builtin_bit_cast(double, BitsOfNumber(x) & ~int64_t{0} << 27);
}

// In double, |x| <= 512 and |y| < 4096: less than 0.505 ulp of each part. Quarter turns are counted
// in floats.
struct SingleExpHA : ComplexKernel<float>, ExpRange<BitsOfNumber(512.0f), BitsOfNumber(4096.0f)> {
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 4 : 8;
  static Complex<float> Rare(Complex<float> z) {
    return ElementaryKernel<ComplexExp, float>::Rare(z);
  }
#if HWY_TARGET == HWY_AVX3
  // Of x by sums that carry into the sign where the magnitude is 512 or more; of y by the turns,
  // which have 13 bits above those of the rounder.
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&z)[K]) {
    const auto to_end = SetBits(d, 0x80000000 - BitsOfNumber(512.0f));
    const auto zero_turns = SetBits(d, BitsOfNumber(kTurnRounder) - 4096);
    __m512i large = _mm512_setzero_si512(), many = _mm512_setzero_si512();
    const auto join_differing = [](__m512i joined, BitsOf<D> a, BitsOf<D> b) HWY_ATTR {
      return _mm512_ternarylogic_epi32(joined, a.raw, b.raw, 0xF6);  // joined | a ^ b
    };
    for (size_t k = 0; k < K; ++k) {
      const auto x = Bits(d, z[k].re);
      large = join_differing(large, x, hn::Add(x, to_end));
      many = join_differing(many, Bits(d, Turns(d, z[k].im)), zero_turns);
    }
    const auto beyond = _mm512_test_epi32_mask(many, _mm512_set1_epi32(~0x1FFF));
    return (_mm512_movepi32_mask(large) | beyond) != 0;
  }
#endif
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    Parts<D> parts[K];
    for (size_t k = 0; k < K; ++k) parts[k].Count(z[k]);
    InTurn(parts, r, z);
  }

 private:
  // The results of one vector in three parts.
  template <class D>
  struct Parts {
    using V = VecOf<D>;
    using Wide = hn::Rebind<double, hn::Half<D>>;
    using W = VecOf<Wide>;
    V turns;
    StoredHalves<D> count, re, im;
    W x[2], y[2], e[2], sine[2], cosine[2];

    HWY_INLINE void Count(Complex<V> z) {
      const D d;
      turns = Turns(d, z.im);
      count.Store(hn::Sub(turns, hn::Set(d, kTurnRounder)));
      re.Store(z.re);
      im.Store(z.im);
    }
    // Of pi/2 there are parts of 37 and 41 bits, of ln2/16 39, and of 16/ln2 29: their products
    // with counts and with floats are exact.
    HWY_INLINE void Reduce(Complex<V>) {
      const Wide d;
      const W shifter = hn::Set(d, 0x1.8p52);  // leaves the rounded integer in the low bits
      W n[2];
      BitsOf<Wide> steps[2];
      count.Widen(n);
      re.Widen(x);
      im.Widen(y);
      for (size_t i = 0; i < 2; ++i) {
        const W high = SubExactProduct(n[i], hn::Set(d, 0x1.921fb5444p+0), y[i]);
        y[i] = SubExactProduct(n[i], hn::Set(d, 0x1.68c234c4c6p-39), high);
      }
      for (size_t i = 0; i < 2; ++i) {
        n[i] = AddExactProduct(x[i], hn::Set(d, 0x1.7154765p+4), shifter);
        steps[i] = Bits(d, n[i]);
        n[i] = hn::Sub(n[i], shifter);
        x[i] = SubExactProduct(n[i], hn::Set(d, 0x1.62e42fefa4p-5), x[i]);
      }
      SixteenthPowers(d, steps, e);
    }
    HWY_INLINE void Evaluate() {
      const Wide d;
      const W one = hn::Set(d, 1.0);
      W p[2], y2[2];
      Horner(d, x, sExpComplexHAPolynomial, p);
      for (size_t i = 0; i < 2; ++i) p[i] = hn::Add(hn::Mul(p[i], x[i]), one);
      for (size_t i = 0; i < 2; ++i) p[i] = hn::Add(hn::Mul(p[i], x[i]), one);
      for (size_t i = 0; i < 2; ++i) e[i] = hn::Mul(e[i], p[i]);

      for (size_t i = 0; i < 2; ++i) y2[i] = hn::Mul(y[i], y[i]);
      // The first products are exact: of the square 26 bits.
      for (size_t i = 0; i < 2; ++i) {
        const auto& s = sQuarterSinComplexHAPolynomial;
        const auto& c = sQuarterCosComplexHAPolynomial;
        const W w = FromBits(d, hn::And(Bits(d, y2[i]), SetBits(d, ~uint64_t{0} << 27)));
        sine[i] = AddExactProduct(w, hn::Set(d, Upper26(s[3])), hn::Set(d, s[2]));
        cosine[i] = AddExactProduct(w, hn::Set(d, Upper26(c[3])), hn::Set(d, c[2]));
      }
      Rest(d, y2, sQuarterSinComplexHAPolynomial, sine);
      for (size_t i = 0; i < 2; ++i) sine[i] = hn::Mul(sine[i], y[i]);
      Rest(d, y2, sQuarterCosComplexHAPolynomial, cosine);
    }
    HWY_INLINE Complex<V> Result(Complex<V>) const {
      const D d;
      const auto times_e = [&](const W(&v)[2]) HWY_ATTR {
        return NarrowHalves(d, hn::Mul(e[0], v[0]), hn::Mul(e[1], v[1]));
      };
      return TurnBack(d, Bits(d, turns), times_e(sine), times_e(cosine));
    }

   private:
    // What follows the first step of Horner's scheme for 1 + x (c[0] + x (c[1] + ...)).
    static HWY_INLINE void Rest(Wide d, const W (&x)[2], const double (&c)[4], W (&p)[2]) {
      for (const double next : {c[1], c[0], 1.0}) {
        for (size_t i = 0; i < 2; ++i) p[i] = hn::Mul(p[i], x[i]);
        for (size_t i = 0; i < 2; ++i) p[i] = hn::Add(p[i], hn::Set(d, next));
      }
    }
  };
};

// The product without a flag where that costs nothing: on AVX-512.
template <class D, class V>
HWY_INLINE V QuietMul(D, V a, V b) {
#if HWY_TARGET == HWY_AVX3
  return V{_mm512_mul_round_ps(a.raw, b.raw, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)};
#else
  return hn::Mul(a, b);
#endif
}

// A reduced argument whose powers raise no underflow. The other levels put 0 in place of tiny
// numbers, and the terms that are added to them vanish as they would anyway: they are -0, where the
// first coefficient is negative.
template <class D, class V>
HWY_INLINE V Tame(D d, V y) {
  return HWY_TARGET == HWY_AVX3 ? y
                                : Selected(hn::IfThenZeroElse(MagnitudeBelow(d, y, 0x1p-40f), y));
}

// e^x by the table and the cubic of the real function's LA, with what the table's floats are off;
// sine and cosine by one reduction, of which the third part of pi/2, N low < 2^-28, counts for the
// sine alone. Each factor is off by less than 1.7 units of 2^-24 but for the roundings that end it:
// below 3.6 ulp in all, 3.11 seen.
struct SingleExpLA : ExpRange<BitsOfNumber(87.0f), BitsOfNumber(1608.0f)> {
  static constexpr int kUnroll = 4;
  using Reduce = Reduction<Turn::kQuarter>;

  // A step at a time for all vectors.
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    V e[K], sine[K], cosine[K];
    BitsOf<D> k[K];
    Exp(d, z, e);
    SineCosine(d, z, k, sine, cosine);
    for (size_t i = 0; i < K; ++i) {
      r[i] = TurnBack(d, k[i], hn::Mul(e[i], sine[i]), hn::Mul(e[i], cosine[i]));
    }
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void Exp(D d, const Complex<V> (&z)[K], V (&e)[K]) {
    const V shifter = hn::Set(d, 0x1.8p23f);  // leaves the rounded integer in the low bits
    V y[K], kf[K], r[K], p[K];
    for (size_t i = 0; i < K; ++i) y[i] = hn::Add(z[i].re, hn::Set(d, 0x1p-36f));
    for (size_t i = 0; i < K; ++i) kf[i] = hn::Mul(y[i], hn::Set(d, 0x1.715476p+3f));  // 8/ln2
    for (size_t i = 0; i < K; ++i) kf[i] = hn::Add(kf[i], shifter);
    // ln2/8 = 0x1.62ep-4 + 0x1.0bfbe8p-18, the product of k and the first part exact.
    for (size_t i = 0; i < K; ++i) {
      const V kd = hn::Sub(kf[i], shifter);
      r[i] = hn::Sub(SubExactProduct(kd, hn::Set(d, 0x1.62ep-4f), y[i]),
                     hn::Mul(kd, hn::Set(d, 0x1.0bfbe8p-18f)));
    }
    Horner(d, r, sExpLAPolynomial, p);
    for (size_t i = 0; i < K; ++i) p[i] = hn::Mul(p[i], r[i]);
    for (size_t i = 0; i < K; ++i) p[i] = hn::Mul(p[i], r[i]);
    for (size_t i = 0; i < K; ++i) {
      const auto k = Bits(d, kf[i]);
      p[i] = hn::Add(hn::Add(p[i], LookupEighth(d, sExpEighthsRest, k)), r[i]);
      const V t = LookupEighth(d, sExpEighths, k);
      const auto n = hn::And(hn::ShiftLeft<20>(k), SetBits(d, 0xFF800000));
      // Multiplied by 2^n before the sum, the product could underflow.
      e[i] = FromBits(d, hn::Add(Bits(d, hn::Add(hn::Mul(t, p[i]), t)), n));
    }
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void SineCosine(D d, const Complex<V> (&z)[K], BitsOf<D> (&k)[K], V (&sine)[K],
                                    V (&cosine)[K]) {
    V y[K], low[K], s[K], cube[K], p[K];
    for (size_t i = 0; i < K; ++i) {
      const V turns = Turns(d, z[i].im);
      k[i] = Bits(d, turns);
      low[i] = hn::Sub(turns, hn::Set(d, kTurnRounder));
    }
    for (size_t i = 0; i < K; ++i)
      y[i] = Remainder(d, z[i].im, low[i], hn::Set(d, kPiHigh * Reduce::kUnit));
    for (size_t i = 0; i < K; ++i) {
      y[i] = SubExactProduct(low[i], hn::Set(d, kPiMiddle * Reduce::kUnit), y[i]);
      low[i] = hn::Mul(low[i], hn::Set(d, kPiLow * Reduce::kUnit));
    }
    for (size_t i = 0; i < K; ++i) {
      const V tame = Tame(d, y[i]);
      s[i] = QuietMul(d, tame, tame);
      cube[i] = QuietMul(d, tame, s[i]);
    }
    QuietHorner(d, s, sQuarterSinLAPolynomial, p);
    for (size_t i = 0; i < K; ++i) p[i] = QuietMul(d, cube[i], p[i]);
    for (size_t i = 0; i < K; ++i) p[i] = hn::Sub(low[i], p[i]);
    for (size_t i = 0; i < K; ++i) sine[i] = hn::Sub(y[i], p[i]);  // in this order -0 gives -0
    QuietHorner(d, s, sQuarterCosProductPolynomial, p);
    for (size_t i = 0; i < K; ++i) p[i] = QuietMul(d, s[i], p[i]);
    for (size_t i = 0; i < K; ++i) cosine[i] = hn::Add(p[i], hn::Set(d, 1.0f));
  }
  template <class D, class V, size_t K, size_t N>
  static HWY_INLINE void QuietHorner(D d, const V (&x)[K], const float (&c)[N], V (&p)[K]) {
    for (size_t i = 0; i < K; ++i) p[i] = hn::Set(d, c[N - 1]);
    for (size_t n = N - 1; n-- > 0;) {
      for (size_t i = 0; i < K; ++i) p[i] = QuietMul(d, p[i], x[i]);
      for (size_t i = 0; i < K; ++i) p[i] = hn::Add(p[i], hn::Set(d, c[n]));
    }
  }
};

int cExp_HA(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleExpHA>(n, a, r);
}
int cExp_21(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleKernel<SingleExpHA, SingleExpLA>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cExp_21);
HWY_EXPORT(cExp_HA);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp_21, cExp_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp_21, cExp_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cExp_HA, cExp_HA)
}  // namespace pex
#endif
