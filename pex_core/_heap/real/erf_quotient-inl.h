// T of erfc-inl.h as a quotient of sums with one polynomial: as y coth(y/2) = 2 + y^2 R(y^2),
//   F(w) = (1 - e^-w)/w = 2/(w + w coth(w/2)) = 1/(1 + w/2 + w^2 R/2),
//   T = (kWhole + u (R + kFourth u))/(kWhole + w + w^2 R), u = kWhole v,
// in w = d (x + c) and v = d^2, for the normal distribution in their halves.

#include "hwy/highway.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERF_QUOTIENT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERF_QUOTIENT_INL_H_
#undef PEX_CORE__HEAP_REAL_ERF_QUOTIENT_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERF_QUOTIENT_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// What is added to kWhole in the divisor, in place of w, and in the numerator, in place of u.
// Function has the coefficients kRatio of R, and kFourth.
template <class Function, class D, class V, size_t K>
HWY_INLINE void AddendsOfQuotient(D d, V (&w)[K], V (&u)[K]) {
  V w2[K], r[K];
  for (size_t k = 0; k < K; ++k) w2[k] = hn::Mul(w[k], w[k]);
  EndStep(w2);
  HornerInSteps(d, w2, Function::kRatio, r);
  for (size_t k = 0; k < K; ++k) {
    w[k] = hn::Add(hn::Mul(w2[k], r[k]), w[k]);
    u[k] = hn::Mul(u[k], hn::Add(r[k], hn::Mul(u[k], hn::Set(d, Function::kFourth))));
  }
  EndStep(w);
  EndStep(u);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERF_QUOTIENT_INL_H_
