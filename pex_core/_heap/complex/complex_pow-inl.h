// Complex powers a^b = e^(b ln a). What the logarithm is off by, b times as much, is the relative
// error of the result: elements with a large b, or whose |b ln a| may exceed a limit, go to the
// scalar routine, whose logarithm has 78 bits and more where b asks for them.

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_exp-inl.h"
#include "pex_core/_heap/complex/complex_log-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_POW_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_POW_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_POW_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_POW_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// floor(log2 x) of a normal x > 0.
template <class D, class V = VecOf<D>>
HWY_INLINE V ExponentOf(D d, V x) {
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    // 2^52 + 1023 + e, made by the bits.
    const auto biased = hn::Or(hn::ShiftRight<52>(Bits(d, x)), SetBits(d, 0x4330000000000000));
    return hn::Sub(FromBits(d, biased), hn::Set(d, 0x1p52 + 1023));
  } else {
    return hn::Sub(hn::ConvertTo(d, hn::ShiftRight<23>(Bits(d, x))), hn::Set(d, 127.0f));
  }
}

// Which lanes are common, and the scalar routine for the others.
template <typename Element>
struct PowKernel : ComplexKernel<Element, double> {
  using T = Element;
  using BaseRange = PartRange<-120, 120>;
  using ExponentPartRange = PartRange<-60, 60>;
  static constexpr T kLimit = sizeof(T) == 8 ? T(500) : T(300);
  // The most of |Re b| + |Im b|: ln a is off by up to 2^-58 in double precision, by 2^-50 of itself
  // in single.
  static constexpr T kMostExponent = sizeof(T) == 8 ? T(20) : T(300);

  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a, Complex<V> b) {
    const auto outside = hn::Or(
        hn::Or(BaseRange::LanesOutside(d, a.re), BaseRange::LanesOutside(d, a.im)),
        hn::Or(ExponentPartRange::LanesOutside(d, b.re), ExponentPartRange::LanesOutside(d, b.im)));
    const auto rare = hn::Or(outside, hn::Or(IsPoint(d, a, 0), IsPoint(d, b, 0)));
    const V one = hn::Set(d, T(1));
    const V size = hn::Max(Selected(hn::IfThenElse(rare, one, hn::Abs(a.re))),
                           Selected(hn::IfThenElse(rare, one, hn::Abs(a.im))));
    const V b_re = Selected(hn::IfThenZeroElse(rare, hn::Abs(b.re)));
    const V b_im = Selected(hn::IfThenZeroElse(rare, hn::Abs(b.im)));
    const V exponent = hn::Add(b_re, b_im);
    // |ln a| <= (|e| + 3/2) ln 2 + pi.
    const V log =
        hn::Add(hn::Mul(hn::Abs(ExponentOf(d, size)), hn::Set(d, T(0.7))), hn::Set(d, T(4.25)));
    const V product = hn::Mul(exponent, log);
    const auto beyond =
        hn::Or(hn::Gt(product, hn::Set(d, kLimit)), hn::Gt(exponent, hn::Set(d, kMostExponent)));
    if constexpr (sizeof(T) == 4) {
      // What turns by whole quarters of the circle has a part that is 0, not what the rounding of
      // pi leaves of it, times a modulus that may be infinite.
      const auto less = hn::Min(Bits(d, hn::Abs(a.re)), Bits(d, hn::Abs(a.im)));
      const auto turned = hn::Eq(hn::Max(less, Bits(d, a.re)), SetBits(d, 0));
      const auto infinite = hn::And(hn::RebindMask(d, turned), hn::Gt(product, hn::Set(d, T(88))));
      return hn::Or(hn::Or(rare, beyond), infinite);
    }
    return hn::Or(rare, beyond);
  }

  static Complex<T> Rare(Complex<T> a, Complex<T> b) {
    return RoundedScalar<T, _pexcpow_scalar, double, double, double, double>(a.re, a.im, b.re,
                                                                             b.im);
  }
};

// In plain doubles.
struct SinglePow : PowKernel<float> {
  template <class D, class V>
  static HWY_INLINE void Main(D d, Complex<V> a, Complex<V> b, Complex<V>& r) {
    const hn::Rebind<double, D> wide;
    r = Narrow(d, Compute(wide, Widen(d, a), Widen(d, b)));
  }

 private:
  template <class D, class V>
  static HWY_INLINE Complex<V> Compute(D d, Complex<V> a, Complex<V> b) {
    const V size = LogModulusOf<V>(d, a.re, a.im);
    const V angle = WithFlippedSign(d, AngleOf(d, hn::Abs(a.im), hn::Abs(a.re), a.re), a.im);
    const V re = Difference(d, Times(d, size, b.re), Times(d, angle, b.im));
    // A term of zero must not change the sign of the other, which may be zero too.
    const auto real = hn::Eq(b.im, hn::Zero(d));
    const V across = Select(d, real, hn::Set(d, -0.0), Times(d, size, b.im));
    const V e = ExpOf(d, re);
    const auto v = SinCosOf(d, Plus(d, Times(d, angle, b.re), across));
    return {Product(d, e, v.cos), Product(d, e, v.sin)};
  }
};

// In pairs, the product b ln a formed of normalised ones. Largest error seen 0.80 ulp of the
// modulus, for the largest b; 0.71 for typical ones.
struct DoublePow : PowKernel<double> {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&a)[K], const Complex<V> (&b)[K],
                                   Complex<V> (&r)[K]) {
    Pair<V> size[K], angle[K], re[K], im[K];
    V zero[K];
    ComplexLogPairs<true, true>(d, a, size, angle);
    for (size_t k = 0; k < K; ++k) {
      // `size` is twice the logarithm of the modulus.
      const V half_re = hn::Mul(b[k].re, hn::Set(d, 0.5));
      const V half_im = hn::Mul(b[k].im, hn::Set(d, 0.5));
      const Pair<V> log = Normalized(d, size[k]);
      const Pair<V> turn = WithFlippedSign(d, Normalized(d, angle[k]), a[k].im);
      re[k] = Difference(d, Times(d, log, half_re), Times(d, turn, b[k].im));
      // A term of zero must not change the sign of the other, which may be zero too.
      const auto real = hn::Eq(b[k].im, hn::Zero(d));
      const Pair<V> across =
          Select(d, real, From<Pair<V>>(d, hn::Set(d, -0.0)), Times(d, log, half_im));
      const Pair<V> sum = Plus(d, Times(d, turn, b[k].re), across);
      im[k] = Normalized(d, sum);
      zero[k] = hn::And(sum.hi, hn::SignBit(d));
    }
    PolarExp(d, re, im, r);
    for (size_t k = 0; k < K; ++k) {
      r[k].im = hn::IfThenElse(hn::Eq(im[k].hi, hn::Zero(d)), zero[k], r[k].im);
    }
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_POW_INL_H_
