// Logarithms of complex numbers in single precision, computed in double.

#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_log-inl.h"
#include "pex_core/_heap/complex/complex_single-inl.h"
#include "pex_core/_heap/real/slog-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_SINGLE_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// ln of what is reduced to 1 + t by u, to 2^-34.
template <class D, class W, size_t K>
HWY_INLINE void LogNearOne(D d, const W (&t)[K], const LogShort<D> (&u)[K], W (&log)[K]) {
  W square[K], p[K];
  for (size_t i = 0; i < K; ++i) square[i] = hn::Mul(t[i], t[i]);
  EvenOdd(d, t, square, kLnSingleComplexHA, p);
  for (size_t i = 0; i < K; ++i) p[i] = hn::Add(hn::Mul(p[i], square[i]), t[i]);
  for (size_t i = 0; i < K; ++i) {
    const W log2 = hn::Set(d, 0x1.62e42fefa39efp-1 * kExponentUnit);
    const W head = hn::Add(hn::Mul(u[i].e, log2), u[i].log);
    log[i] = hn::Add(head, p[i]);
  }
}

// atan(t)/t for |t| <= 1, to 2^-31.
template <class D, class W, size_t K>
HWY_INLINE void AngleFactor(D d, const W (&t)[K], W (&p)[K]) {
  W square[K];
  for (size_t i = 0; i < K; ++i) square[i] = hn::Mul(t[i], t[i]);
  HornerInSteps(d, square, kAtanUnitHA, p);
  for (size_t i = 0; i < K; ++i) p[i] = hn::Add(hn::Mul(p[i], square[i]), hn::Set(d, 1.0));
}

// The magnitudes of the parts by size.
template <class V>
struct BySize {
  V more, less;
};
template <class D, class V>
HWY_INLINE BySize<V> SortedBySize(D d, Complex<V> z) {
  const auto x = Bits(d, hn::Abs(z.re)), y = Bits(d, hn::Abs(z.im));  // integers: quiet
  return {FromBits(d, hn::Max(x, y)), FromBits(d, hn::Min(x, y))};
}

// |arg z| = quarters pi/2 + the angle of less/more, that with the sign.
template <class V>
struct AngleTurn {
  V quarters, sign;
};
template <class D, class V>
HWY_INLINE AngleTurn<V> TurnOf(D d, Complex<V> z) {
  const auto steep = hn::RebindMask(d, hn::Gt(Bits(d, hn::Abs(z.im)), Bits(d, hn::Abs(z.re))));
  const V left = hn::IfNegativeThenElse(z.re, hn::Set(d, 2.0f), hn::Zero(d));
  return {hn::IfThenElse(steep, hn::Set(d, 1.0f), left),
          hn::And(hn::Xor(z.re, hn::IfThenElseZero(steep, hn::SignBit(d))), hn::SignBit(d))};
}

// The logarithm F of all finite floats but 0, in double: less than 0.507 ulp of each part. Where
// x^2 + y^2 is next to 1, what it is more than 1 is formed of the exact squares.
template <class F>
struct LogInDouble : ElementaryKernel<F, float> {
  using Tag = typename ComplexKernel<float>::Tag;
  static constexpr bool kDecimal = std::is_same_v<F, ComplexLog10>;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 3 : 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    const hn::Rebind<double, hn::Half<D>> wide;
    using W = VecOf<decltype(wide)>;
    W more[2 * K], less[2 * K], size[2 * K], angle[2 * K];
    for (size_t i = 0; i < K; ++i) {
      const BySize<V> part = SortedBySize(d, z[i]);
      const AngleTurn<V> turn = TurnOf(d, z[i]);
      WidenHalves(d, part.more, more[2 * i], more[2 * i + 1]);
      WidenHalves(d, hn::Xor(part.less, turn.sign), less[2 * i], less[2 * i + 1]);
    }
    // The quotients first: while the unit of divisions is at them, the others compute logarithms.
    W t[2 * K];
    for (size_t i = 0; i < 2 * K; ++i) t[i] = hn::Div(less[i], more[i]);
    EndStep(t);
    LogSquare(wide, more, less, size);
    Angle(wide, t, angle);
    for (size_t i = 0; i < K; ++i) {
      W lower, upper;
      HalfTurns(d, z[i], lower, upper);
      lower = hn::Add(lower, angle[2 * i]);
      upper = hn::Add(upper, angle[2 * i + 1]);
      if constexpr (kDecimal) {
        const W per_e = hn::Set(wide, 0x1.bcb7b1526e50ep-2);  // 1/ln 10
        lower = hn::Mul(lower, per_e);
        upper = hn::Mul(upper, per_e);
      }
      // Of the square's logarithm the half, or that over ln 10, before it is rounded: next to the
      // unit circle the result may be subnormal.
      const W of_square = hn::Set(wide, kDecimal ? 0x1.bcb7b1526e50ep-3 : 0.5);
      size[2 * i] = hn::Mul(size[2 * i], of_square);
      size[2 * i + 1] = hn::Mul(size[2 * i + 1], of_square);
      const V log = NarrowHalves(d, size[2 * i], size[2 * i + 1]);
      const V turned = NarrowHalves(d, lower, upper);
      r[i] = {log, hn::CopySignToAbs(turned, z[i].im)};
    }
  }

 private:
  // The quarters times pi/2, of the lower half of the lanes and of the upper one.
  template <class D, class V, class W>
  static HWY_INLINE void HalfTurns(D d, Complex<V> z, W& lower, W& upper) {
    const hn::Rebind<double, hn::Half<D>> wide;
    const W half_pi = hn::Set(wide, 0x1.921fb54442d18p+0);
#if HWY_TARGET == HWY_AVX3
    if constexpr (sizeof(V) == 64) {
      const W pi = hn::Set(wide, 0x1.921fb54442d18p+1);
      const uint16_t left = hn::MaskFromVec(z.re).raw;
      const uint16_t steep = hn::Gt(Bits(d, hn::Abs(z.im)), Bits(d, hn::Abs(z.re))).raw;
      const auto turns = [&](uint16_t from_left, uint16_t from_top) HWY_ATTR {
        const W zero_or_pi{_mm512_maskz_mov_pd(static_cast<__mmask8>(from_left), pi.raw)};
        return W{_mm512_mask_mov_pd(zero_or_pi.raw, static_cast<__mmask8>(from_top), half_pi.raw)};
      };
      lower = turns(left, steep);
      upper = turns(left >> 8, steep >> 8);
      return;
    }
#endif
    WidenHalves(d, TurnOf(d, z).quarters, lower, upper);
    lower = hn::Mul(lower, half_pi);
    upper = hn::Mul(upper, half_pi);
  }

  template <class W, size_t K, class D>
  static HWY_INLINE void LogSquare(D d, const W (&more)[K], const W (&less)[K], W (&size)[K]) {
    W s[K];
    for (size_t i = 0; i < K; ++i) {
      // Squares of floats are exact in double.
      s[i] = AddExactProduct(more[i], more[i], hn::Mul(less[i], less[i]));
    }
    Log(d, s, size);
    if (AnyWithin<OffOne>(d, s)) [[unlikely]] {
      for (size_t i = 0; i < K; ++i) {
        const W t =
            hn::Add(hn::Sub(hn::Mul(more[i], more[i]), hn::Set(d, 1.0)), hn::Mul(less[i], less[i]));
        const W near = hn::Sub(t, hn::Mul(hn::Mul(t, t), hn::Set(d, 0.5)));
        size[i] = hn::IfThenElse(LanesBeyond<OffOne>(d, s[i]), size[i], near);
      }
    }
  }

  // ln s.
  template <class W, size_t K, class D>
  static HWY_INLINE void Log(D d, const W (&s)[K], W (&log)[K]) {
    LogShort<D> u[K];
    W t[K];
    LogShortReduce(d, s, u);
    for (size_t i = 0; i < K; ++i) t[i] = ProductLessOne(d, u[i].m, u[i].c);
    LogNearOne(d, t, u, log);
  }

  template <class W, size_t K, class D>
  static HWY_INLINE void Angle(D d, const W (&t)[K], W (&angle)[K]) {
    W p[K];
    AngleFactor(d, t, p);
    for (size_t i = 0; i < K; ++i) angle[i] = hn::Mul(t[i], p[i]);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_SINGLE_INL_H_
