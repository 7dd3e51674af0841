// The vector kernels of the complex elementary functions. Single-precision functions compute in
// double, double-precision ones in unevaluated sums of two doubles; elements with a part that is
// very large, very small, infinite or NaN go to the routines of complex_scalar.h. Those are off by
// less than 0.51 ulp of each part, and so is Compute. Exp, Ln, Log10, Atan and Atanh have kernels
// of their own for common parts and take their ranges from here.
//
// A function F has Re and Im, the ranges of common parts; Scalar, the routine for one element;
// Compute<N>(d, z), the result of common lanes in numbers N; where there is one, IsSingular, a mask
// of one more rare argument, which has a part of zero; and perhaps Parts<N, D>, the computation in
// three parts, for several vectors in turn (polynomial-inl.h).

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_entries.h"
#include "pex_core/_heap/complex/complex_real-inl.h"
#include "pex_core/_heap/complex/complex_scalar.h"
#include "pex_core/_kernel/complex-inl.h"
#include "pex_core/_kernel/control.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_VECTOR_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_VECTOR_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_VECTOR_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_VECTOR_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Magnitudes from 2^kLow below 2^kHigh, and 0. Every float but infinities is at least 2^-149 and
// below 2^128.
template <int kLow, int kHigh>
struct PartRange {
  template <typename T>
  static constexpr int32_t Pattern(int exponent) {
    if (sizeof(T) == 8) return (1023 + exponent) << 20;
    return exponent < -126 ? 1 : exponent >= 128 ? 0x7F800000 : (127 + exponent) << 23;
  }
  template <typename T>
  using Outside = RareOutside<T, Pattern<T>(kLow), Pattern<T>(kHigh) - 1>;

  // A mask that is right where it is all false; zeros are in it.
  template <class D>
  static HWY_INLINE MaskOf<D> AnyOutside(D d, VecOf<D> x) {
    using Range = Outside<hn::TFromD<D>>;
    return KeyAbove(d, Range::Key(d, hn::Abs(x)), Range::kLimit);
  }
  // Whether any of both parts of several numbers may be.
  template <class D, size_t K>
  static HWY_INLINE bool AnyOfGroup(D d, const Complex<VecOf<D>> (&z)[K]) {
    using Range = Outside<hn::TFromD<D>>;
    auto key = Range::Key(d, hn::Abs(z[0].re));
    for (size_t k = 0; k < K; ++k) {
      if (k > 0) key = JoinKeys(d, key, Range::Key(d, hn::Abs(z[k].re)));
      key = JoinKeys(d, key, Range::Key(d, hn::Abs(z[k].im)));
    }
    return !hn::AllFalse(d, KeyAbove(d, key, Range::kLimit));
  }
  template <class D>
  static HWY_INLINE MaskOf<D> LanesOutside(D d, VecOf<D> x) {
    constexpr int kShift = sizeof(hn::TFromD<D>) == 8 ? 32 : 0;
    constexpr uint64_t kTop = sizeof(hn::TFromD<D>) == 8 ? uint64_t{1} << 63 : 0x80000000;
    constexpr auto kLeast = static_cast<uint64_t>(Pattern<hn::TFromD<D>>(kLow)) << kShift;
    constexpr auto kMost = static_cast<uint64_t>(Pattern<hn::TFromD<D>>(kHigh)) << kShift;
    const auto bits = Bits(d, hn::Abs(x));
    const auto above = hn::Gt(bits, SetBits(d, kMost - 1));
    // Below the smallest and not 0: 0 becomes the largest integer.
    const auto below = hn::Lt(hn::Add(bits, SetBits(d, kTop - 1)), SetBits(d, kTop + kLeast - 1));
    return hn::RebindMask(d, hn::Or(above, below));
  }
};

// |x| = point and y = 0.
template <class D>
HWY_INLINE MaskOf<D> IsPoint(D d, Complex<VecOf<D>> z, hn::TFromD<D> point) {
  const auto apart = hn::Xor(Bits(d, hn::Abs(z.re)), Bits(d, hn::Set(d, point)));
  const auto bits = hn::Or(apart, Bits(d, hn::Abs(z.im)));
  return hn::RebindMask(d, hn::Eq(bits, SetBits(d, 0)));
}

// -i f(iz), and i z.
template <class D>
HWY_INLINE Complex<VecOf<D>> TimesI(D, Complex<VecOf<D>> z) {
  return {hn::Neg(z.im), z.re};
}
template <class D>
HWY_INLINE Complex<VecOf<D>> OverI(D, Complex<VecOf<D>> z) {
  return {z.im, hn::Neg(z.re)};
}

// A scalar routine with the x87 control word that it wants, rounded once.
template <typename T, auto Routine, typename... X>
HWY_NOINLINE Complex<T> RoundedScalar(X... parts) {
  const X87Guard guard;
  const ComplexExtended r = Routine(parts...);
  Complex<T> rounded = {static_cast<T>(r.re), static_cast<T>(r.im)};
  __asm__ volatile("" : "+m"(rounded));
  return rounded;
}

template <class F>
concept HasParts = requires {
  typename F::template Parts<double, hn::ScalableTag<double>>;
};

template <class F, typename Element>
struct ElementaryKernel : ComplexKernel<Element, double> {
  using T = Element;
  static constexpr bool kInTurn = sizeof(T) == 8 && HasParts<F>;
  static constexpr int kUnroll = kInTurn ? 4 : 3;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> z) {
    return hn::Or(F::Re::AnyOutside(d, z.re), F::Im::AnyOutside(d, z.im));
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
    const auto rare = hn::Or(F::Re::LanesOutside(d, z.re), F::Im::LanesOutside(d, z.im));
    if constexpr (requires { F::IsSingular(d, z); }) {
      return hn::Or(rare, F::IsSingular(d, z));
    } else {
      return rare;
    }
  }
  template <class D, class V, size_t K>
  requires kInTurn static HWY_INLINE void MainGroup(D, const Complex<V> (&z)[K],
                                                    Complex<V> (&r)[K]) {
    typename F::template Parts<Pair<V>, D> parts[K];
    InTurn(parts, r, z);
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, Complex<V> z, Complex<V>& r) {
    if constexpr (sizeof(T) == 8) {
      r = F::template Compute<Pair<V>>(d, z);
    } else {
      const hn::Rebind<double, D> wide;
      r = Narrow(d, F::template Compute<VecOf<decltype(wide)>>(wide, Widen(d, z)));
    }
  }
  static Complex<T> Rare(Complex<T> z) {
    return RoundedScalar<T, F::Scalar, double, double>(z.re, z.im);
  }
};

// ---- Exponential, hyperbolic and trigonometric functions. ----

// For e^x: no product of it and of a common sine leaves the normal doubles.
using ExponentRange = PartRange<-100, 9>;
using AngleRange = PartRange<-100, 12>;

// The ranges and routines of e^z, as of ln z below; their kernels compute by sums of their own.
struct ComplexExp {
  using Re = PartRange<-119, 9>;
  using Im = PartRange<-119, 12>;
  static constexpr auto Scalar = _pexcexpl_scalar;
};

// Functions of sinh and cosh of x, sin and cos of y: F::Joined takes them together.
template <class F>
struct Hyperbolic {
  using Im = AngleRange;
  template <class N, class D>
  struct Parts {
    using V = VecOf<D>;
    V im;
    SinhCosh<N> h;
    SineCosine<N> w;
    HWY_INLINE void Reduce(Complex<V> z) {
      im = z.im;
      h = SinhCoshOf<N>(D(), z.re);
    }
    HWY_INLINE void Evaluate() { w = SinCosOf(D(), From<N>(D(), im)); }
    HWY_INLINE Complex<V> Result(Complex<V> z) const { return F::template Joined<N>(D(), z, h, w); }
  };
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Compute(D, Complex<V> z) {
    Parts<N, D> parts;
    parts.Reduce(z);
    parts.Evaluate();
    return parts.Result(z);
  }
};

struct ComplexCosh : Hyperbolic<ComplexCosh> {
  using Re = ExponentRange;
  static constexpr auto Scalar = _pexccosh_scalar;
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Joined(D d, Complex<V>, const SinhCosh<N>& h,
                                      const SineCosine<N>& w) {
    return {Product(d, h.cosh, w.cos), Product(d, h.sinh, w.sin)};
  }
};

struct ComplexSinh : Hyperbolic<ComplexSinh> {
  using Re = ExponentRange;
  static constexpr auto Scalar = _pexcsinh_scalar;
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Joined(D d, Complex<V>, const SinhCosh<N>& h,
                                      const SineCosine<N>& w) {
    return {Product(d, h.sinh, w.cos), Product(d, h.cosh, w.sin)};
  }
};

// (sinh x cosh x + i sin y cos y)/(sinh^2 x + cos^2 y).
struct ComplexTanh : Hyperbolic<ComplexTanh> {
  using Re = PartRange<-100, 7>;
  static constexpr auto Scalar = _pexctanh_scalar;
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Joined(D d, Complex<V> z, const SinhCosh<N>& h,
                                      const SineCosine<N>& w) {
    const SineCosine<N> v = {Normalized(d, w.sin), Normalized(d, w.cos)};
    const N square = Plus(d, Times(d, h.sinh, h.sinh), Times(d, v.cos, v.cos));
    const V inverse = InverseHead(d, square);
    const N re = OverWith(d, Times(d, h.sinh, h.cosh), square, inverse);
    const N im = OverWith(d, Times(d, v.sin, v.cos), square, inverse);
    // The signs of zeros are lost on the way.
    const V im_sign = hn::Xor(Head(d, w.sin), Head(d, w.cos));
    return {hn::CopySign(Value(d, re), z.re), hn::CopySign(Value(d, im), im_sign)};
  }
};

// The functions of iz.
template <class F, ComplexExtended (*kScalar)(double, double), bool kTurnBack>
struct Rotated {
  using Re = typename F::Im;
  using Im = typename F::Re;
  template <class D, class V = VecOf<D>>
  requires requires(D d, Complex<V> z) { F::IsSingular(d, z); }
  static HWY_INLINE MaskOf<D> IsSingular(D d, Complex<V> z) {
    return F::IsSingular(d, TimesI(d, z));
  }
  static constexpr auto Scalar = kScalar;
  template <class N, class D>
  requires HasParts<F>
  struct Parts : F::template Parts<N, D> {
    using Base = typename F::template Parts<N, D>;
    using V = VecOf<D>;
    HWY_INLINE void Reduce(Complex<V> z) { Base::Reduce(TimesI(D(), z)); }
    HWY_INLINE Complex<V> Result(Complex<V> z) const {
      const Complex<V> r = Base::Result(TimesI(D(), z));
      return kTurnBack ? OverI(D(), r) : r;
    }
  };
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Compute(D d, Complex<V> z) {
    const Complex<V> r = F::template Compute<N>(d, TimesI(d, z));
    return kTurnBack ? OverI(d, r) : r;
  }
};
using ComplexCos = Rotated<ComplexCosh, _pexccos_scalar, false>;
using ComplexSin = Rotated<ComplexSinh, _pexcsin_scalar, true>;
using ComplexTan = Rotated<ComplexTanh, _pexctan_scalar, true>;

// ---- Logarithms and powers. ----

using ModulusRange = PartRange<-400, 400>;

struct ComplexLn {
  using Re = ModulusRange;
  using Im = ModulusRange;
  template <class D, class V = VecOf<D>>
  static HWY_INLINE MaskOf<D> IsSingular(D d, Complex<V> z) {
    return IsPoint(d, z, 0);
  }
  static constexpr auto Scalar = _pexclog_scalar;
};

struct ComplexLog10 : ComplexLn {
  static constexpr auto Scalar = _pexclog10_scalar;
};

// The parts are sqrt((|x| + |z|)/2) and |y| over twice that.
struct ComplexSqrt {
  using Re = ModulusRange;
  using Im = ModulusRange;
  template <class D, class V = VecOf<D>>
  static HWY_INLINE MaskOf<D> IsSingular(D d, Complex<V> z) {
    return IsPoint(d, z, 0);
  }
  static constexpr auto Scalar = _pexcsqrt_scalar;
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Compute(D d, Complex<V> z) {
    const V ax = hn::Abs(z.re), ay = hn::Abs(z.im);
    const N modulus = Root(d, Plus(d, SquareOf<N>(d, ax), SquareOf<N>(d, ay)));
    const N t = Root(d, Scaled(d, Plus(d, modulus, From<N>(d, ax)), 0.5));
    const V major = Value(d, t);
    const V minor = Value(d, Over(d, From<N>(d, hn::Mul(ay, hn::Set(d, 0.5))), t));
    return {hn::IfNegativeThenElse(z.re, minor, major),
            hn::CopySignToAbs(hn::IfNegativeThenElse(z.re, major, minor), z.im)};
  }
};

// ---- Inverse functions. ----

using ArcRange = PartRange<-200, 200>;

// asin(a + ib) = atan(a/root) + i log for a, b >= 0, as in complex_arc.cc. A number far below all
// others keeps a denominator from 0.
template <class N>
struct Arc {
  N root, log;
};

template <class N, class D, class V = VecOf<D>>
HWY_INLINE Arc<N> ArcOf(D d, V a, V b) {
  const V one = hn::Set(d, 1.0);
  const N b2 = SquareOf<N>(d, b);
  const N more = SumOf<N>(d, a, one);
  const N difference = SumOf<N>(d, a, hn::Neg(one));
  const N less = WithFlippedSign(d, difference, Head(d, difference));
  const auto below = hn::Lt(a, one);
  const N r = Root(d, Plus(d, Times(d, more, more), b2));
  const N s = Root(d, Plus(d, Times(d, less, less), b2));
  const N from_r = Over(d, b2, Plus(d, r, more));
  const N s_more = Plus(d, s, less);
  const N s_less = Over(d, b2, Plus(d, s_more, From<N>(d, hn::Set(d, 0x1p-500))));
  const N A = Scaled(d, Plus(d, r, s), 0.5);
  const N over_one = Scaled(d, Plus(d, from_r, Select(d, below, s_less, s_more)), 0.5);
  const N over_a = Scaled(d, Plus(d, from_r, Select(d, below, s_more, s_less)), 0.5);
  const N two = From<N>(d, hn::Set(d, 2.0));
  const N t = Plus(d, over_one, Root(d, Times(d, over_one, Plus(d, over_one, two))));
  return {Root(d, Times(d, over_a, Plus(d, A, From<N>(d, a)))), Log1pOf(d, t)};
}

struct ComplexAsinh {
  using Re = ArcRange;
  using Im = ArcRange;
  static constexpr auto Scalar = _pexcasinh_scalar;
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Compute(D d, Complex<V> z) {
    const V ay = hn::Abs(z.im);
    const Arc<N> arc = ArcOf<N>(d, ay, hn::Abs(z.re));
    const N angle = AngleOf(d, From<N>(d, ay), arc.root, hn::Zero(d));
    return {hn::CopySignToAbs(Value(d, arc.log), z.re), hn::CopySignToAbs(Value(d, angle), z.im)};
  }
};

struct ComplexAcos {
  using Re = ArcRange;
  using Im = ArcRange;
  static constexpr auto Scalar = _pexcacos_scalar;
  // The parts without signs.
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Parts(D d, Complex<V> z) {
    const V ax = hn::Abs(z.re);
    const Arc<N> arc = ArcOf<N>(d, ax, hn::Abs(z.im));
    return {hn::Abs(Value(d, AngleOf(d, arc.root, From<N>(d, ax), z.re))),
            hn::Abs(Value(d, arc.log))};
  }
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Compute(D d, Complex<V> z) {
    const Complex<V> r = Parts<N>(d, z);
    return {r.re, hn::CopySignToAbs(r.im, hn::Neg(z.im))};
  }
};

struct ComplexAcosh {
  using Re = ArcRange;
  using Im = ArcRange;
  static constexpr auto Scalar = _pexcacosh_scalar;
  template <class N, class D, class V = VecOf<D>>
  static HWY_INLINE Complex<V> Compute(D d, Complex<V> z) {
    const Complex<V> r = ComplexAcos::Parts<N>(d, z);
    return {r.im, hn::CopySignToAbs(r.re, z.im)};
  }
};

// ln(1 + 4x/((1 - x)^2 + y^2))/4 + i atan2(2y, (1 - x)(1 + x) - y^2)/2, x >= 0.
struct ComplexAtanh {
  using Re = ArcRange;
  using Im = ArcRange;
  template <class D, class V = VecOf<D>>
  static HWY_INLINE MaskOf<D> IsSingular(D d, Complex<V> z) {
    return IsPoint(d, z, 1);
  }
  static constexpr auto Scalar = _pexcatanh_scalar;
};

using ComplexAsin = Rotated<ComplexAsinh, _pexcasin_scalar, true>;
using ComplexAtan = Rotated<ComplexAtanh, _pexcatan_scalar, true>;

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_VECTOR_INL_H_
