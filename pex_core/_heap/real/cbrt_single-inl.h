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
template <class Form, class D, class V>
HWY_INLINE V sEstimateInvCbrt(D d, V x) {
  const auto third = sThirdOfBits(d, hn::Abs(x));
  return Signed<Form>(FromBits(d, hn::Sub(SetBits(d, kInvCbrtSingleMagic), third)), x);
}

// 1/cbrt(x) within 1.4 percent, in 12 bits.
template <class Form, class D, class V>
HWY_INLINE V sBetterInvCbrt(D d, V x) {
  const auto third = sThirdOfBits(d, hn::Abs(x));
  const auto magic = LookupSixteenth(d, kInvCbrtMagics, hn::ShiftRight<19>(third));
  return Signed<Form>(FromBits(d, hn::Sub(magic, third)), x);
}

// Rounded to 12 bits, so that most roots of so few bits come out exact. Cbrt 11.31 correct bits,
// InvCbrt 11.75, Pow2o3 11.70.
template <class Form, class D, class V, size_t K>
HWY_INLINE void sRootEP(D d, const V (&x)[K], V (&r)[K]) {
  V a[K], w[K], q[K];
  for (size_t k = 0; k < K; ++k) {
    Form::Power(Radicand<Form>(x[k]), sEstimateInvCbrt<Form>(d, x[k]), a[k], w[k]);
  }
  Horner(d, w, sRootPolynomials<Form>::kEP, q);
  for (size_t k = 0; k < K; ++k) {
    const auto root = Bits(d, hn::Mul(a[k], q[k]));
    const auto rounded = hn::And(hn::Add(root, SetBits(d, 0x800)), SetBits(d, 0xFFFFF000));
    r[k] = FromBits(d, rounded);
  }
}

// Largest errors: Cbrt 1.36 ulp, InvCbrt 1.14, Pow2o3 1.47.
template <class Form, class D, class V, size_t K>
HWY_INLINE void sRootLA(D d, const V (&x)[K], V (&r)[K]) {
  V a[K], e[K], q[K];
  for (size_t k = 0; k < K; ++k) {
    V w;
    Form::Power(Radicand<Form>(x[k]), sBetterInvCbrt<Form>(d, x[k]), a[k], w);
    e[k] = hn::Sub(w, hn::Set(d, 1.0f));
  }
  Horner(d, e, sRootPolynomials<Form>::kLA, q);
  for (size_t k = 0; k < K; ++k) {
    r[k] = hn::Add(a[k], hn::Mul(a[k], hn::Mul(e[k], q[k])));
  }
}

// Correctly rounded for all floats. The halves of a vector go on in double.
template <class Form, class D, class V, size_t K>
HWY_INLINE void sRootHA(D d, const V (&x)[K], V (&r)[K]) {
  const hn::Half<D> half;
  const hn::Rebind<double, decltype(half)> wide;
  using W = VecOf<decltype(wide)>;
  V z[K], near[K], refined[K];
  W a[2 * K], e[2 * K], q[2 * K];
  for (size_t k = 0; k < K; ++k) {
    const V m = Radicand<Form>(x[k]);
    z[k] = sEstimateInvCbrt<Form>(d, x[k]);
    near[k] = hn::Mul(hn::Mul(m, z[k]), hn::Mul(z[k], z[k]));
  }
  Horner(d, near, kInvCbrtSingleEP, refined);
  const auto power = [&](auto m, auto root, size_t k) HWY_ATTR {
    W w;
    Form::Power(hn::PromoteTo(wide, m), hn::PromoteTo(wide, root), a[k], w);
    e[k] = hn::Sub(w, hn::Set(wide, 1.0));
  };
  for (size_t k = 0; k < K; ++k) {
    const V m = Radicand<Form>(x[k]), root = hn::Mul(z[k], refined[k]);
    power(hn::LowerHalf(half, m), hn::LowerHalf(half, root), 2 * k);
    power(hn::UpperHalf(half, m), hn::UpperHalf(half, root), 2 * k + 1);
  }
  Horner(wide, e, sRootPolynomials<Form>::kHA, q);
  const auto rounded = [&](size_t k) HWY_ATTR {
    return hn::DemoteTo(half, hn::Add(a[k], hn::Mul(a[k], hn::Mul(e[k], q[k]))));
  };
  for (size_t k = 0; k < K; ++k) r[k] = hn::Combine(d, rounded(2 * k + 1), rounded(2 * k));
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_CBRT_SINGLE_INL_H_
