// Cube roots in double precision without division and without table: an estimate of 1/cbrt(|x|) by
// an integer division of the bit pattern by 3, refined once to 14 bits and cut short, so that its
// square is exact; the rest by a short polynomial of how far x z^3 is from 1.

#include "hwy/highway.h"
#include "pex_core/_heap/real/cbrt_polynomials.h"
#include "pex_core/_heap/real/cbrt_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_
#undef PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// A third of the high word of positive numbers, with the fraction below.
template <class D>
HWY_INLINE BitsOf<D> ThirdOfBits(D, hn::Vec<D> x) {
  const hn::RebindToUnsigned<D> du;
  const hn::Repartition<uint32_t, D> d32;
  const auto high = hn::ShiftRight<32>(hn::BitCast(du, x));
  const auto third = hn::MulEven(hn::BitCast(d32, high), hn::Set(d32, 0x55555556));
  return hn::BitCast(hn::RebindToSigned<D>(), third);
}

// 1/cbrt(x) within 3.6 percent, from a third of x's bits.
template <class D>
HWY_INLINE VecOf<D> EstimateInvCbrt(D d, BitsOf<D> third) {
  return FromBits(d, hn::Sub(SetBits(d, kInvCbrtMagic), third));
}

// The estimate refined to 14 bits.
template <class D, class V>
HWY_INLINE V RefineInvCbrt(D d, V x, BitsOf<D> third) {
  const V z = EstimateInvCbrt(d, third);
  const V w = hn::Mul(hn::Mul(x, hn::Mul(z, z)), z);
  return hn::Mul(z, Horner(d, w, kCbrtStart));
}

// Its first 18 bits.
template <class D, class V>
HWY_INLINE V Cut(D d, V z) {
  return FromBits(d, hn::And(Bits(d, z), SetBits(d, 0xFFFFFFF800000000)));
}

// What cube root, reciprocal cube root and 2/3 power make of x and of z near 1/cbrt(x): a
// power x^i z^j near the result, the polynomials of the factor that is missing, as a function of
// x z^3, and the result's correction by the exact residual.
struct CbrtForm {
  static constexpr bool kOdd = true;
  static constexpr bool kRefineEP = true;  // EP's polynomial then is linear, else of degree 5
  static constexpr auto& kLA = pex::kCbrtLA;
  static constexpr auto& kEP = pex::kCbrtEP;
  // x z^2 and x z^3
  template <class V>
  static HWY_INLINE void Power(V x, V z, V& a, V& w) {
    a = hn::Mul(x, hn::Mul(z, z));
    w = hn::Mul(a, z);
  }
  // y + (m - y^3) z^2/3
  template <class D, class V>
  static HWY_INLINE V Correct(D d, V m, V z, V y) {
    const Pair<V> square = TwoProduct(d, y, y);
    const Pair<V> cube = TwoProduct(d, square.hi, y);
    const V rest = hn::Add(cube.lo, hn::Mul(square.lo, y));
    const V residual = hn::Sub(hn::Sub(m, cube.hi), rest);
    return hn::Add(y, hn::Mul(residual, hn::Mul(hn::Mul(z, z), hn::Set(d, 1.0 / 3))));
  }
  // The result's exponent, from a third of the argument's.
  template <class V>
  static HWY_INLINE V ScaleBits(V y, V third) {
    return hn::Add(y, third);
  }
};

struct InvCbrtForm {
  static constexpr bool kRefineEP = false;
  static constexpr bool kOdd = true;
  static constexpr auto& kLA = pex::kInvCbrtLA;
  static constexpr auto& kEP = pex::kInvCbrtEP;
  // z and x z^3
  template <class V>
  static HWY_INLINE void Power(V x, V z, V& a, V& w) {
    a = z;
    w = hn::Mul(hn::Mul(x, hn::Mul(z, z)), z);
  }
  // y + (1 - m y^3) y/3
  template <class D, class V>
  static HWY_INLINE V Correct(D d, V m, V, V y) {
    const Pair<V> square = TwoProduct(d, y, y);
    const Pair<V> u = TwoProduct(d, m, square.hi);
    const Pair<V> v = TwoProduct(d, u.hi, y);
    const V rest = hn::Mul(hn::Add(u.lo, hn::Mul(m, square.lo)), y);
    const V residual = hn::Sub(hn::Sub(hn::Set(d, 1.0), v.hi), hn::Add(v.lo, rest));
    return hn::Add(y, hn::Mul(residual, hn::Mul(y, hn::Set(d, 1.0 / 3))));
  }
  template <class V>
  static HWY_INLINE V ScaleBits(V y, V third) {
    return hn::Sub(y, third);
  }
};

struct Pow2o3Form {
  static constexpr bool kRefineEP = false;
  static constexpr bool kOdd = false;
  static constexpr auto& kLA = pex::kInvCbrtLA;
  static constexpr auto& kEP = pex::kInvCbrtEP;
  // x z and x z^3
  template <class V>
  static HWY_INLINE void Power(V x, V z, V& a, V& w) {
    a = hn::Mul(x, z);
    w = hn::Mul(a, hn::Mul(z, z));
  }
  // y + (m^2 - y^3) z^4/3
  template <class D, class V>
  static HWY_INLINE V Correct(D d, V m, V z, V y) {
    const Pair<V> goal = TwoProduct(d, m, m);
    const Pair<V> square = TwoProduct(d, y, y);
    const Pair<V> cube = TwoProduct(d, square.hi, y);
    const V rest = hn::Sub(goal.lo, hn::Add(cube.lo, hn::Mul(square.lo, y)));
    const V residual = hn::Add(hn::Sub(goal.hi, cube.hi), rest);
    const V z2 = hn::Mul(z, z);
    return hn::Add(y, hn::Mul(residual, hn::Mul(hn::Mul(z2, z2), hn::Set(d, 1.0 / 3))));
  }
  template <class V>
  static HWY_INLINE V ScaleBits(V y, V third) {
    return hn::Add(hn::Add(y, third), third);
  }
};

template <class Form, class V>
HWY_INLINE V RootSign(V root, V x) {
  return Form::kOdd ? hn::CopySignToAbs(root, x) : root;
}

// a (1 + e q(e)), e = x z^3 - 1.
template <class Form, class D, class V>
HWY_INLINE V PolynomialRoot(D d, V x, V z) {
  V a, w;
  Form::Power(x, z, a, w);
  const V e = hn::Sub(w, hn::Set(d, 1.0));
  return hn::Add(a, hn::Mul(a, hn::Mul(e, Horner(d, e, Form::kLA))));
}

// Largest errors: Cbrt 1.57 ulp, InvCbrt 1.23, Pow2o3 1.53.
template <class Form, class D, class V>
HWY_INLINE V RootLA(D d, V x) {
  const V magnitude = hn::Abs(x);
  const V z = Cut(d, RefineInvCbrt(d, magnitude, ThirdOfBits(d, magnitude)));
  return RootSign<Form>(PolynomialRoot<Form>(d, magnitude, z), x);
}

// Rounded to 27 bits, so that most roots of so few bits come out exact. Cbrt 26.19 correct bits,
// InvCbrt 26.45, Pow2o3 26.40.
template <class Form, class D, class V>
HWY_INLINE V RootEP(D d, V x) {
  const V magnitude = hn::Abs(x);
  const auto third = ThirdOfBits(d, magnitude);
  const V z = Form::kRefineEP ? RefineInvCbrt(d, magnitude, third) : EstimateInvCbrt(d, third);
  V a, w;
  Form::Power(magnitude, z, a, w);
  const auto root = Bits(d, hn::Mul(a, Horner(d, w, Form::kEP)));
  const auto rounded =
      hn::And(hn::Add(root, SetBits(d, 0x2000000)), SetBits(d, 0xFFFFFFFFFC000000));
  return RootSign<Form>(FromBits(d, rounded), x);
}

// x = 2^(3k) m, 1 <= m < 8, where no product of the residual leaves the range: the root of m
// corrected by its exact residual, then the exponent. At most 0.501 ulp.
template <class Form, class D, class V>
HWY_INLINE V RootHA(D d, V x) {
  const V magnitude = hn::Abs(x);
  const auto third = ThirdOfBits(d, magnitude);
  const auto k = hn::Sub(hn::And(third, SetBits(d, 0xFFF0000000000000)),
                         SetBits(d, uint64_t{341} << 52));  // k << 52
  const V m = FromBits(d, hn::Sub(hn::Sub(Bits(d, magnitude), k), hn::Add(k, k)));
  const V z = Cut(d, RefineInvCbrt(d, m, hn::Sub(third, k)));
  const V y = Form::Correct(d, m, z, PolynomialRoot<Form>(d, m, z));
  return RootSign<Form>(FromBits(d, Form::ScaleBits(Bits(d, y), k)), x);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_
