// Cube roots in single precision: the estimate of double precision's kernels, and one polynomial.
// HA refines it in float and goes on in double.

#include "hwy/highway.h"
#include "pex_core/_heap/real/cbrt_double-inl.h"
#include "pex_core/_heap/real/cbrt_polynomials.h"
#include "pex_core/_heap/real/cbrt_tables.h"
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_CBRT_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_CBRT_SINGLE_INL_H_
#undef PEX_CORE__HEAP_REAL_CBRT_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_CBRT_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class Form>
struct sRootPolynomials {
  static constexpr auto& kEP = pex::kInvCbrtSingleEP;
  static constexpr auto& kLA = pex::kInvCbrtSingleLA;
  static constexpr auto& kHA = pex::kInvCbrtSingleHA;
};
template <>
struct sRootPolynomials<CbrtForm> {
  static constexpr auto& kEP = pex::kCbrtSingleEP;
  static constexpr auto& kLA = pex::kCbrtSingleLA;
  static constexpr auto& kHA = pex::kCbrtSingleHA;
};

// A third of the upper half of the bit pattern, with no remainder.
template <class D, class V>
HWY_INLINE BitsOf<D> sThirdOfBits(D d, V x) {
  const hn::Repartition<uint16_t, D> d16;
  const auto thirds = hn::BitCast(d16, SetBits(d, 0x55550000));
  return hn::BitCast(hn::RebindToSigned<D>(), hn::MulHigh(hn::BitCast(d16, x), thirds));
}

// 1/cbrt(x) within 3.8 percent, in 8 bits, so that its square is exact.
template <class D, class V>
HWY_INLINE V sEstimateInvCbrt(D d, V x) {
  return FromBits(d, hn::Sub(SetBits(d, kInvCbrtSingleMagic), sThirdOfBits(d, x)));
}

// 1/cbrt(x) within 1.4 percent, in 12 bits.
template <class D, class V>
HWY_INLINE V sBetterInvCbrt(D d, V x) {
  const auto third = sThirdOfBits(d, x);
  const auto magic = LookupSixteenth(d, kInvCbrtMagics, hn::ShiftRight<19>(third));
  return FromBits(d, hn::Sub(magic, third));
}

// Rounded to 12 bits, so that most roots of so few bits come out exact. Cbrt 11.31 correct bits,
// InvCbrt 11.75, Pow2o3 11.70.
template <class Form, class D, class V>
HWY_INLINE V sRootEP(D d, V x) {
  const V magnitude = hn::Abs(x);
  V a, w;
  Form::Power(magnitude, sEstimateInvCbrt(d, magnitude), a, w);
  const auto root = Bits(d, hn::Mul(a, Horner(d, w, sRootPolynomials<Form>::kEP)));
  const auto rounded = hn::And(hn::Add(root, SetBits(d, 0x800)), SetBits(d, 0xFFFFF000));
  return RootSign<Form>(FromBits(d, rounded), x);
}

// Largest errors: Cbrt 1.36 ulp, InvCbrt 1.14, Pow2o3 1.47.
template <class Form, class D, class V>
HWY_INLINE V sRootLA(D d, V x) {
  const V magnitude = hn::Abs(x);
  V a, w;
  Form::Power(magnitude, sBetterInvCbrt(d, magnitude), a, w);
  const V e = hn::Sub(w, hn::Set(d, 1.0f));
  const V q = Horner(d, e, sRootPolynomials<Form>::kLA);
  return RootSign<Form>(hn::Add(a, hn::Mul(a, hn::Mul(e, q))), x);
}

// Correctly rounded for all floats.
template <class Form, class D, class V>
HWY_INLINE V sRootHA(D d, V x) {
  const hn::Rebind<double, D> wide;
  const V magnitude = hn::Abs(x);
  const V estimate = sEstimateInvCbrt(d, magnitude);
  const V near = hn::Mul(hn::Mul(magnitude, hn::Mul(estimate, estimate)), estimate);
  const V refined = hn::Mul(estimate, Horner(d, near, kInvCbrtSingleEP));
  hn::Vec<decltype(wide)> a, w;
  Form::Power(hn::PromoteTo(wide, magnitude), hn::PromoteTo(wide, refined), a, w);
  const auto e = hn::Sub(w, hn::Set(wide, 1.0));
  const auto q = Horner(wide, e, sRootPolynomials<Form>::kHA);
  return RootSign<Form>(hn::DemoteTo(d, hn::Add(a, hn::Mul(a, hn::Mul(e, q)))), x);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_CBRT_SINGLE_INL_H_
