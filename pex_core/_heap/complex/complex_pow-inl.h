// Complex powers a^b = e^(b ln a), the logarithm and the product in numbers of complex_real-inl.h.
// The error of the product, about 2^-59 of |b ln a|, is that of the result: elements whose |b ln a|
// may exceed a limit go to the scalar routine, whose logarithm has 78 bits.

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_vector-inl.h"

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

template <typename Element>
struct PowKernelOf : ComplexKernel<Element, double> {
  using T = Element;
  using BaseRange = PartRange<-120, 120>;
  using ExponentPartRange = PartRange<-60, 60>;
  static constexpr T kLimit = sizeof(T) == 8 ? T(64) : T(300);

  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a, Complex<V> b) {
    const auto outside = hn::Or(
        hn::Or(BaseRange::LanesOutside(d, a.re), BaseRange::LanesOutside(d, a.im)),
        hn::Or(ExponentPartRange::LanesOutside(d, b.re), ExponentPartRange::LanesOutside(d, b.im)));
    const auto rare = hn::Or(outside, hn::Or(IsPoint(d, a, 0), IsPoint(d, b, 0)));
    const V one = hn::Set(d, T(1));
    const V size =
        hn::Max(hn::IfThenElse(rare, one, hn::Abs(a.re)), hn::IfThenElse(rare, one, hn::Abs(a.im)));
    const V b_re = hn::IfThenZeroElse(rare, hn::Abs(b.re));
    const V b_im = hn::IfThenZeroElse(rare, hn::Abs(b.im));
    // |ln a| <= (|e| + 3/2) ln 2 + pi.
    const V log =
        hn::Add(hn::Mul(hn::Abs(ExponentOf(d, size)), hn::Set(d, T(0.7))), hn::Set(d, T(4.25)));
    const V product = hn::Mul(hn::Add(b_re, b_im), log);
    return hn::Or(rare, hn::Gt(product, hn::Set(d, kLimit)));
  }

  template <class D, class V>
  static HWY_INLINE void Main(D d, Complex<V> a, Complex<V> b, Complex<V>& r) {
    if constexpr (sizeof(T) == 8) {
      r = Compute<Pair<V>>(d, a, b);
    } else {
      const hn::Rebind<double, D> wide;
      r = Narrow(d, Compute<VecOf<decltype(wide)>>(wide, Widen(d, a), Widen(d, b)));
    }
  }

  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Compute(D d, Complex<V> a, Complex<V> b) {
    const N size = Normalized(d, LogModulusOf<N>(d, a.re, a.im));
    const N angle = WithFlippedSign(
        d, Normalized(d, AngleOf(d, From<N>(d, hn::Abs(a.im)), From<N>(d, hn::Abs(a.re)), a.re)),
        a.im);
    const N re = Difference(d, Times(d, size, b.re), Times(d, angle, b.im));
    // A term of zero must not change the sign of the other, which may be zero too.
    const auto real = hn::Eq(b.im, hn::Zero(d));
    const N across = Select(d, real, From<N>(d, hn::Set(d, -0.0)), Times(d, size, b.im));
    const N sum = Plus(d, Times(d, angle, b.re), across);
    N im = Normalized(d, sum);
    if constexpr (kIsPair<N, D>) {
      const V signed_zero = hn::And(sum.hi, hn::SignBit(d));
      im.hi = hn::IfThenElse(hn::Eq(im.hi, hn::Zero(d)), signed_zero, im.hi);
    }
    const N e = ExpOf(d, re);
    const auto v = SinCosOf<true>(d, im);
    return {Product(d, e, v.cos), Product(d, e, v.sin)};
  }

  static Complex<T> Rare(Complex<T> a, Complex<T> b) {
    return RoundedScalar<T, _pexcpow_scalar, double, double, double, double>(a.re, a.im, b.re,
                                                                             b.im);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_POW_INL_H_
