// The kernels of sine and cosine in double precision.

#include "hwy/highway.h"
#include "pex_core/_heap/real/trig-inl.h"

#if defined(PEX_CORE__HEAP_REAL_TRIG_SINE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_TRIG_SINE_INL_H_
#undef PEX_CORE__HEAP_REAL_TRIG_SINE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_TRIG_SINE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

inline constexpr double kPiOver2 = 0x1.921fb54442d18p0;

// n - kShifter - 1/2, a number: kShifter + 1/2 has a bit too many, but is seven times a number.
template <class D, class V>
HWY_INLINE V LessShifterAndHalf(D d, V n) {
#if HWY_TARGET == HWY_SSE4
  return hn::Sub(hn::Sub(n, hn::Set(d, kShifter)), hn::Set(d, 0.5));
#else
  constexpr int64_t kTwoSevenths = 1930114126015927;
  static_assert(7 * kTwoSevenths == 2 * static_cast<int64_t>(kShifter) + 1);
  constexpr double kSeventh = kTwoSevenths * 0.5;
  return Remainder(d, n, hn::Set(d, 7.0), hn::Set(d, kSeventh));
#endif
}

// x or x + pi/2 in half turns: the nearest integer k in the low bits of `sign`, and n, which is k
// or k - 1/2, so that x = n pi + y.
template <Wave kWave, class D, class V, size_t K>
HWY_INLINE void NearestHalfTurn(D d, const V (&x)[K], BitsOf<D> (&sign)[K], V (&n)[K]) {
  const V shifter = hn::Set(d, kShifter);
  const V turns = ConstantOf<K>(hn::Set(d, 0x1.45f306dc9c883p-2));
  if constexpr (kWave == Wave::kSine) {
    for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(x[k], turns);
  } else {
    const V quarter_turn = ConstantOf<K>(hn::Set(d, kPiOver2));
    for (size_t k = 0; k < K; ++k) n[k] = hn::Add(x[k], quarter_turn);
    EndStep(n);
    for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(n[k], turns);
  }
  EndStep(n);
  for (size_t k = 0; k < K; ++k) n[k] = hn::Add(n[k], shifter);
  EndStep(n);
  for (size_t k = 0; k < K; ++k) sign[k] = Bits(d, n[k]);
  for (size_t k = 0; k < K; ++k) {
    n[k] = kWave == Wave::kSine ? hn::Sub(n[k], shifter) : LessShifterAndHalf(d, n[k]);
  }
  EndStep(n);
}

// Kernels of one odd polynomial in |y| <= pi/2. Formula has kLimitExponent (arguments
// below 2^kLimitExponent are its own), kBrief, kUnroll, kRestUnroll, Reduce and Polynomial.
template <Wave kWave, class Formula>
struct HalfTurnWave {
  static constexpr int kResults = 1;
  static constexpr size_t kUnroll = Formula::kUnroll, kRestUnroll = Formula::kRestUnroll;
  static constexpr double kTiny = 0x1p-27;  // sin x = x and cos x = 1 below
  using Usual = UsualExponents<Formula::kLimitExponent - 32, 5>;

  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const V (&x)[K], V (&r)[K]) {
    V y[K];
    BitsOf<D> sign[K];
    Formula::template Reduce<kWave>(d, x, sign, y);
    Formula::Polynomial(d, y, r);
    for (size_t k = 0; k < K; ++k) r[k] = FlipSign<0>(d, r[k], sign[k]);
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&r)[K]) {
    const auto lanes = SortLanes(d, x, kTiny, Usual::kLimit, kWave == Wave::kSine ? 0 : kPiOver2);
    V y[K];
    BitsOf<D> sign[K];
    Formula::template Reduce<kWave>(d, lanes.x, sign, y);
    if (lanes.any_large) {
      for (size_t k = 0; k < K; ++k) {
        const auto u = ReduceLargeLanes<Formula::kBrief>(d, lanes.large[k], x[k]);
        const auto turn = SineOfQuadrant(
            d, u, kWave == Wave::kSine ? u.quadrant : hn::Add(u.quadrant, SetBits(d, 1)));
        y[k] = hn::IfThenElse(lanes.large[k], turn.y, y[k]);
        sign[k] =
            Bits(d, hn::IfThenElse(lanes.large[k], FromBits(d, turn.sign), FromBits(d, sign[k])));
      }
    }
    Formula::Polynomial(d, y, r);
    for (size_t k = 0; k < K; ++k) {
      const V limit = kWave == Wave::kSine ? x[k] : hn::Set(d, 1.0);
      r[k] = hn::IfThenElse(lanes.tiny[k], limit, FlipSign<0>(d, r[k], sign[k]));
    }
  }
};

// pi in four parts, of which n times the first three is exact for |n| < 2^22, and a polynomial of
// degree 15.
struct SineLA {
  static constexpr int kLimitExponent = 23;
  static constexpr bool kBrief = false;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 12 : HWY_TARGET == HWY_AVX2 ? 5 : 6;
  static constexpr size_t kRestUnroll = HWY_MIN(kUnroll, 8);
  static constexpr double kCoefficients[] = {-0.16666666666666186,    0.008333333333285542,
                                             -0.00019841269825056256, 2.7557316600552628e-06,
                                             -2.505188027386288e-08,  1.6048095404959637e-10,
                                             -7.373344533110665e-13};
  static constexpr double kPart1 = 3.141592502593994, kPart2 = 1.5099578831723193e-7;

  template <Wave kWave, class D, class V, size_t K>
  static HWY_INLINE void Reduce(D d, const V (&x)[K], BitsOf<D> (&sign)[K], V (&y)[K]) {
    V n[K];
    NearestHalfTurn<kWave>(d, x, sign, n);
    // Two parts at once. What the first leaves is below 2, and a number where x has no bits below
    // 2^-52, so that the second's rounding is the only one. Else n is 0, or it is 1/2 or -1/2: what
    // is left is a number below 1, or a multiple of 2^-52 next to it, and the second part leaves a
    // multiple too; both halves are even ones, so that x alone says how to round.
    SubProductsExactly(d, x, n, kPart1 + kPart2, kPart1, y);
    EndStep(y);
    SubExactProducts(y, n, hn::Set(d, 1.078060505991553e-14), y);
    EndStep(y);
    for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(n[k], hn::Set(d, 6.564007085747001e-22));
    EndStep(n);
    for (size_t k = 0; k < K; ++k) y[k] = hn::Sub(y[k], n[k]);
    EndStep(y);
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void Polynomial(D d, const V (&y)[K], V (&p)[K]) {
    V s[K];
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(y[k], y[k]);
    HornerInSteps(d, s, kCoefficients, p);
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(y[k], s[k]);
    EndStep(s);
    for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(s[k], p[k]);
    EndStep(p);
    for (size_t k = 0; k < K; ++k) p[k] = hn::Add(y[k], p[k]);
    EndStep(p);
  }
};

// pi in two parts, of which n times the first is exact for the usual arguments.
struct SineEP {
  static constexpr int kLimitExponent = 12;
  static constexpr bool kBrief = true;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : HWY_TARGET == HWY_AVX2 ? 4 : 6;
  static constexpr size_t kRestUnroll = kUnroll;

  template <Wave kWave, class D, class V, size_t K>
  static HWY_INLINE void Reduce(D d, const V (&x)[K], BitsOf<D> (&sign)[K], V (&y)[K]) {
    V n[K];
    NearestHalfTurn<kWave>(d, x, sign, n);
    SubExactProducts(x, n, hn::Set(d, 0x1.921fb54442p+1), y);
    EndStep(y);
    for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(n[k], hn::Set(d, 0x1.a308d313198a3p-40));
    EndStep(n);
    for (size_t k = 0; k < K; ++k) y[k] = hn::Sub(y[k], n[k]);
    EndStep(y);
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void Polynomial(D d, const V (&y)[K], V (&p)[K]) {
    V s[K];
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(y[k], y[k]);
    HornerInSteps(d, s, kSinEP, p);
    for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(y[k], p[k]);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_SINE_INL_H_
