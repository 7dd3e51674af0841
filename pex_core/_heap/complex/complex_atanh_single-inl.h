// The inverse hyperbolic tangent of complex numbers in single precision, and from it the inverse
// tangent, computed in double. For x, y >= 0 and D = (1 - x)^2 + y^2
//
//   atanh(x + iy) = ln((D + 4x)/D)/4 + i atan2(2y, 1 - x^2 - y^2)/2.
//
// For the factor c that brings the ratio next to 1, the argument of the logarithm's polynomial is
// ((c - 1) D + c 4x)/D: where that factor is 1, no 4x is too small to be kept; otherwise the
// logarithm is large beside what the sum loses. The difference 1 - x^2 - y^2 cancels next to the
// unit circle alone, where its error counts for little beside 2y. Less than 0.507 ulp of each part.

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_log_single-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_SINGLE_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class F, bool kRotated>
struct ArctangentInDouble : ElementaryKernel<F, float> {
  using Tag = typename ComplexKernel<float>::Tag;
  static constexpr int kUnroll = 2;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    const hn::Rebind<double, hn::Half<D>> wide;
    using W = VecOf<decltype(wide)>;
    const W one = hn::Set(wide, 1.0);
    W x[2 * K], y[2 * K], square[2 * K], across[2 * K], size[2 * K], turn[2 * K];
    for (size_t i = 0; i < K; ++i) {
      WidenHalves(d, hn::Abs(kRotated ? z[i].im : z[i].re), x[2 * i], x[2 * i + 1]);
      WidenHalves(d, hn::Abs(kRotated ? z[i].re : z[i].im), y[2 * i], y[2 * i + 1]);
    }
    for (size_t i = 0; i < 2 * K; ++i) {
      const W less = hn::Sub(one, x[i]), more = hn::Add(one, x[i]), y2 = hn::Mul(y[i], y[i]);
      square[i] = hn::Add(hn::Mul(less, less), y2);
      across[i] = hn::Sub(hn::Mul(less, more), y2);
      x[i] = hn::Mul(x[i], hn::Set(wide, 4.0));
    }
    LogOfRatio(wide, square, x, size);
    HalfAngle(wide, across, y, turn);
    for (size_t i = 0; i < 2 * K; ++i) size[i] = hn::Mul(size[i], hn::Set(wide, 0.25));
    for (size_t i = 0; i < K; ++i) {
      const V log = NarrowHalves(d, size[2 * i], size[2 * i + 1]);
      const V angle = NarrowHalves(d, turn[2 * i], turn[2 * i + 1]);
      r[i] = {hn::CopySignToAbs(kRotated ? angle : log, z[i].re),
              hn::CopySignToAbs(kRotated ? log : angle, z[i].im)};
    }
  }

 private:
  // ln((s + u)/s), u >= 0.
  template <class W, size_t K, class D>
  static HWY_INLINE void LogOfRatio(D d, const W (&s)[K], const W (&u)[K], W (&log)[K]) {
    const W one = hn::Set(d, 1.0);
    LogShort<D> v[K];
    W inverse[K], ratio[K], t[K];
    for (size_t i = 0; i < K; ++i) inverse[i] = hn::Div(one, s[i]);
    for (size_t i = 0; i < K; ++i) ratio[i] = hn::Mul(hn::Add(s[i], u[i]), inverse[i]);
    LogShortReduce(d, ratio, v);
    for (size_t i = 0; i < K; ++i) {
      const W c = FromBits(d, hn::Sub(Bits(d, v[i].c), v[i].exponent_bits));
      const W sum = hn::Add(hn::Mul(hn::Sub(c, one), s[i]), hn::Mul(c, u[i]));
      t[i] = hn::Mul(sum, inverse[i]);
    }
    LogNearOne(d, t, v, log);
  }

  // Half the angle of (x, 2y), y >= 0.
  template <class W, size_t K, class D>
  static HWY_INLINE void HalfAngle(D d, const W (&x)[K], const W (&y)[K], W (&half)[K]) {
    W t[K], p[K], base[K], sign[K];
    for (size_t i = 0; i < K; ++i) {
      const W up = hn::Add(y[i], y[i]), along = hn::Abs(x[i]);
      const auto steep = hn::Gt(up, along);
      const W left =
          hn::IfThenElseZero(hn::Lt(x[i], hn::Zero(d)), hn::Set(d, 0x1.921fb54442d18p+0));
      base[i] = hn::IfThenElse(steep, hn::Set(d, 0x1.921fb54442d18p-1), left);
      sign[i] = hn::And(hn::Xor(x[i], hn::IfThenElseZero(steep, hn::SignBit(d))), hn::SignBit(d));
      t[i] = hn::Div(hn::Min(up, along), hn::Max(up, along));
    }
    AngleFactor(d, t, p);
    for (size_t i = 0; i < K; ++i) {
      const W from = hn::Mul(hn::Mul(t[i], hn::Set(d, 0.5)), p[i]);
      half[i] = hn::Add(base[i], hn::Xor(from, sign[i]));
    }
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_ATANH_SINGLE_INL_H_
