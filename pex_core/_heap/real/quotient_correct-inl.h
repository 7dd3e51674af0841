// Correctly rounded quotients of floats by fused operations: beside a divider that is busy.

#include "hwy/highway.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_
#undef PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_
#else
#define PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX3
// n/m, m > 0, where 1/m, n m and a last place of the quotient times m's are usual numbers.
//
// A pattern less that of m is y = w/m with w in [0.95, 1.05125]; the quadratic polynomial that
// takes w (0.75 (b^2 - h^2) + (1.5 b - w)^2) nearest to 1, by Chebyshev's cubic polynomial over [b
// - h, b + h], makes y = 1/m to within 2^-14.9. A step of Newton's leaves 2^-28.6 and a rounding,
// and the remainder of the quotient by this y corrects it (Markstein 1990). That is the rounded
// quotient unless y has been rounded to the other side of 1/m's nearest number; so the arguments of
// each kernel are tried in full.
template <class D, class V>
HWY_INLINE V QuotientBySteps(D d, V n, V m) {
  constexpr double kCenter = 1.000625, kHalf = 0.050625;
  constexpr float kShift = static_cast<float>(1.5 * kCenter);
  constexpr float kLift = static_cast<float>(0.75 * (kCenter * kCenter - kHalf * kHalf));
  V y = FromBits(d, hn::Sub(SetBits(d, 0x7EF33333), Bits(d, m)));
  const V w = HiddenNegMulAdd(m, y, hn::Set(d, kShift));
  y = hn::Mul(y, HiddenMulAdd(w, w, hn::Set(d, kLift)));
  y = HiddenMulAdd(y, HiddenNegMulAdd(m, y, hn::Set(d, 1.0f)), y);
  const V q = hn::Mul(n, y);
  return HiddenMulAdd(HiddenNegMulAdd(m, q, n), y, q);
}
#else
template <class D, class V>
HWY_INLINE V QuotientBySteps(D, V n, V m) {
  return hn::Div(n, m);
}
#endif

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_
