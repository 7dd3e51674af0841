// The square root of complex numbers. LA and EP in single precision are one kernel that rounds
// every step; all else is HA's, in sums of two numbers: at most 0.54 ulp of each part in double,
// 0.501 in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/csqrt/csqrt.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_vector-inl.h"
#include "pex_core/_heap/real/root_square-inl.h"
#include "pex_core/cmul/exact_products-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// The formula of ComplexSqrt rounded step by step: |z| is off by 2 units of 2^-24, the parts by at
// most 3.5.
struct SingleSqrtLA : ComplexKernel<float> {
  using Range = PartRange<-60, 60>;
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&z)[K]) {
    return Range::AnyOfGroup(d, z);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
    return hn::Or(IsPoint(d, z, 0),
                  hn::Or(Range::LanesOutside(d, z.re), Range::LanesOutside(d, z.im)));
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, Complex<V> z, Complex<V>& r) {
    const V ax = hn::Abs(z.re), ay = hn::Abs(z.im), half = hn::Set(d, 0.5f);
    const V modulus = hn::Sqrt(hn::Add(hn::Mul(ax, ax), hn::Mul(ay, ay)));
    const V major = hn::Sqrt(hn::Mul(hn::Add(modulus, ax), half));
    const V minor = hn::Div(hn::Mul(ay, half), major);
    r = {hn::IfNegativeThenElse(z.re, minor, major),
         hn::CopySignToAbs(hn::IfNegativeThenElse(z.re, major, minor), z.im)};
  }
  static Complex<float> Rare(Complex<float> z) {
    return RoundedScalar<float, _pexcsqrt_scalar, double, double>(z.re, z.im);
  }
};

// 1/2s within 2^-11; for doubles, where it serves what changes the roots by half a unit, 5.1
// percent by the bits alone.
template <class D, class V>
HWY_INLINE V HalfInverse(D d, V s) {
  using C = RootConstants<hn::TFromD<D>>;
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    return FromBits(d, hn::Sub(SetBits(d, 0x7FCE620000000000), Bits(d, s)));
  } else {
    const V y = FromBits(d, hn::Sub(SetBits(d, C::kInverse), Bits(d, s)));
    return hn::Mul(y, hn::Sub(hn::Set(d, C::kInverseSum), hn::Mul(s, y)));
  }
}

// {major, minor} in the order of the real and the imaginary part: by the sign of x alone.
template <class D, class V>
HWY_INLINE Complex<V> InOrder(D d, V x, V major, V minor) {
#if HWY_TARGET == HWY_AVX2  // exchanged, for a selection costs as much as the four operations
  const hn::RebindToSigned<D> di;
  const V left = hn::BitCast(d, hn::BroadcastSignBit(hn::BitCast(di, x)));
  const V differing = hn::And(hn::Xor(major, minor), left);
  return {hn::Xor(major, differing), hn::Xor(minor, differing)};
#else
  const auto left = hn::MaskFromVec(x);
  (void)d;
  return {hn::IfThenElse(left, minor, major), hn::IfThenElse(left, major, minor)};
#endif
}

// A part below this share of the other one has no square that counts.
template <typename T>
inline constexpr T kNothing = sizeof(T) == 8 ? T(0x1p-60) : T(0x1p-30);

// m = sqrt((|x| + |z|)/2) and |y|/2m are the parts of the root without signs. |z|/2 comes from its
// square in two parts and is itself in two parts, and so is m; m and |y|/2m are rounded once. Each
// of the three steps ends with the square root that the next one waits for, or with the results.
template <class V, size_t K>
struct SteppedRoots {
  Complex<V> half[K];  // z/2
  Pair<V> square[K];   // |z|^2/4, then m^2
  V root[K];           // of the leading part
  V inverse[K];        // of m
};

// s near sqrt(t) and its inverse. One unit of the processor does a square root at a time and
// divides too: of the second root of doubles 29 bits are computed without it, and so is its
// inverse. What they lack their remainders give.
template <class D, class V, size_t K>
HWY_INLINE void RootAndInverse(D d, const V (&t)[K], V (&s)[K], V (&inverse)[K]) {
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    using C = RootConstants<double>;
    RootStart<true>(d, t, C::kStepStart, inverse, s);
    V step[K];
    for (size_t k = 0; k < K; ++k) {
      step[k] = hn::Sub(hn::Set(d, C::kStep), hn::Mul(s[k], inverse[k]));
    }
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(s[k], step[k]);
    for (size_t k = 0; k < K; ++k) inverse[k] = hn::Mul(inverse[k], step[k]);
  } else {
    for (size_t k = 0; k < K; ++k) s[k] = hn::Sqrt(t[k]);
    for (size_t k = 0; k < K; ++k) inverse[k] = hn::Div(hn::Set(d, 1.0f), s[k]);
  }
}

// kFar: a part whose square counts for nothing is left out, for products of that square underflow.
template <bool kFar, class D, class V, size_t K>
HWY_INLINE SteppedRoots<V, K> BeginRoots(D d, const Complex<V> (&z)[K]) {
  using T = hn::TFromD<D>;
  const V half = hn::Set(d, T(0.5));
  SteppedRoots<V, K> begun;
  for (size_t k = 0; k < K; ++k) {
    begun.half[k] = {hn::Mul(z[k].re, half), hn::Mul(z[k].im, half)};
    Complex<V> parts = begun.half[k];
    if constexpr (kFar) {
      const V x = hn::Abs(parts.re), y = hn::Abs(parts.im);
      const V more = hn::Max(x, y), less = hn::Min(x, y);
      const auto nothing = hn::Lt(less, hn::Mul(more, hn::Set(d, kNothing<T>)));
      parts = {more, Selected(hn::IfThenZeroElse(nothing, less))};
    }
    begun.square[k] = SumOfSquares(d, parts);
    begun.root[k] = hn::Sqrt(begun.square[k].hi);
  }
  return begun;
}

template <class D, class V, size_t K>
HWY_INLINE SteppedRoots<V, K> ContinueRoots(D d, const SteppedRoots<V, K>& begun) {
  SteppedRoots<V, K> continued;
  V leading[K];
  for (size_t k = 0; k < K; ++k) {
    const V s = begun.root[k];
    const Pair<V> square = begun.square[k];
    const V rest = hn::Mul(hn::Add(Remainder(d, square.hi, s, s), square.lo), HalfInverse(d, s));
    const Pair<V> t = FastTwoSum(s, hn::Abs(begun.half[k].re));
    continued.half[k] = begun.half[k];
    continued.square[k] = {t.hi, hn::Add(t.lo, rest)};
    leading[k] = t.hi;
  }
  RootAndInverse(d, leading, continued.root, continued.inverse);
  return continued;
}

template <class D, class V, size_t K>
HWY_INLINE void EndRoots(D d, const SteppedRoots<V, K>& continued, Complex<V> (&r)[K]) {
  using T = hn::TFromD<D>;
  for (size_t k = 0; k < K; ++k) {
    const Complex<V> half = continued.half[k];
    const Pair<V> square = continued.square[k];
    const V s = continued.root[k], y = hn::Abs(half.im);
    const V inverse = continued.inverse[k];
    const V rest = hn::Mul(hn::Add(Remainder(d, square.hi, s, s), square.lo),
                           hn::Mul(inverse, hn::Set(d, T(0.5))));
    const V q = hn::Mul(y, inverse);
    const V q_rest = hn::Sub(Remainder(d, y, q, s), hn::Mul(q, rest));
    const V major = hn::Add(s, rest), minor = hn::Add(q, hn::Mul(q_rest, inverse));
    const Complex<V> parts = InOrder(d, half.re, major, minor);
    r[k] = {parts.re, hn::CopySignToAbs(parts.im, half.im)};
  }
}

template <typename T, int kLow, int kHigh>
struct SqrtInPairs : ComplexKernel<T> {
  using Range = PartRange<kLow, kHigh>;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&z)[K]) {
    return Range::AnyOfGroup(d, z);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
    return hn::Or(IsPoint(d, z, 0),
                  hn::Or(Range::LanesOutside(d, z.re), Range::LanesOutside(d, z.im)));
  }
  static Complex<T> Rare(Complex<T> z) {
    return RoundedScalar<T, _pexcsqrt_scalar, double, double>(z.re, z.im);
  }
};

template <typename T, int kLow, int kHigh, bool kFar = true>
struct SqrtInSteps : SqrtInPairs<T, kLow, kHigh> {
  template <class D, class V, size_t K>
  static HWY_INLINE SteppedRoots<V, K> Begin(D d, const Complex<V> (&z)[K]) {
    return BeginRoots<kFar>(d, z);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE SteppedRoots<V, K> Continue(D d, const SteppedRoots<V, K>& begun) {
    return ContinueRoots(d, begun);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void End(D d, const SteppedRoots<V, K>& continued, Complex<V> (&r)[K]) {
    EndRoots(d, continued, r);
  }
};

// Of parts within these magnitudes all products are normal.
struct DoubleSqrt : SqrtInSteps<double, -180, 180, false> {
  using Wide = SqrtInSteps<double, -400, 400>;
  using Outside = PartsOutside<(1023 - 180) << 20, ((1023 + 180) << 20) - 1, 8>;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&z)[K]) {
    return Outside::AnyOfGroup(d, z);
  }
};

// Common lanes have exact squares; the others are computed in double precision.
using SingleSqrtCommon = SqrtInSteps<float, -48, 60>;
struct SingleSqrtWide : SqrtInPairs<float, -150, 128> {
  template <class D>
  static HWY_INLINE Complex<VecOf<D>> InDouble(D d, Complex<VecOf<D>> z) {
    const hn::Rebind<double, D> wide;
    return Narrow(d, ComplexSqrt::Compute<VecOf<decltype(wide)>>(wide, Widen(d, z)));
  }
  template <class D, class V>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[1], Complex<V> (&r)[1]) {
    const auto beyond = SingleSqrtCommon::IsRare(d, z[0]);
    const Complex<V> in[1] = {Replace(d, beyond, z[0], 1)};
    EndRoots(d, ContinueRoots(d, BeginRoots<true>(d, in)), r);
    const hn::Half<D> half;
    const auto low = InDouble(half, {hn::LowerHalf(half, z[0].re), hn::LowerHalf(half, z[0].im)});
    const auto high = InDouble(half, {hn::UpperHalf(half, z[0].re), hn::UpperHalf(half, z[0].im)});
    r[0].re = hn::IfThenElse(beyond, hn::Combine(d, high.re, low.re), r[0].re);
    r[0].im = hn::IfThenElse(beyond, hn::Combine(d, high.im, low.im), r[0].im);
  }
};
struct SingleSqrtHA : SingleSqrtCommon {
  using Wide = SingleSqrtWide;
};

int zSqrt(int32_t n, const PexComplex16* a, PexComplex16* r) {
  return MapComplex<DoubleSqrt>(n, a, r);
}
int cSqrt(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleSqrtHA>(n, a, r);
}
int cSqrt_21(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleSqrtLA>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cSqrt);
HWY_EXPORT(cSqrt_21);
HWY_EXPORT(zSqrt);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cSqrt_21, cSqrt_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cSqrt_21, cSqrt_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cSqrt, cSqrt_HA)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zSqrt, zSqrt_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zSqrt, zSqrt_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zSqrt, zSqrt_HA)
}  // namespace pex
#endif
