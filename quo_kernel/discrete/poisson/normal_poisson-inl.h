// The quantile of a Poisson distribution by that of the normal: the Cornish-Fisher expansion with
// the correction for a lattice, to the terms of order 1/lambda. With z the normal quantile,
//   lambda + sqrt(lambda) z + z^2/6 + 1/3 - (z/36 + z^3/72)/sqrt(lambda)
//     + (-8/405 + 7 z^2/810 + z^4/270)/lambda,
// and its floor is the count. M. B. Giles, "Algorithm 955: approximation of the inverse Poisson
// cumulative distribution function", ACM Transactions on Mathematical Software 42 (2016).
#if defined(QUO_KERNEL_DISCRETE_POISSON_NORMAL_POISSON_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL_DISCRETE_POISSON_NORMAL_POISSON_INL_H_
#undef QUO_KERNEL_DISCRETE_POISSON_NORMAL_POISSON_INL_H_
#else
#define QUO_KERNEL_DISCRETE_POISSON_NORMAL_POISSON_INL_H_
#endif

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The expansion for e = z/sqrt(2), which is the inverse error function of 2 u - 1; root is the
// square root of lambda.
template <class D, class V>
HWY_INLINE V NormalPoisson(D d, V e, V lambda, V root) {
  const auto set = [d](double x) HWY_ATTR { return hn::Set(d, x); };
  constexpr double kSqrt2 = 0x1.6a09e667f3bcdp+0;
  const V e2 = hn::Mul(e, e), inverse = hn::Div(set(1.0), root);
  // By powers of 1/sqrt(lambda), from the last.
  const V c2 =
      hn::Add(hn::Mul(hn::Add(hn::Mul(e2, set(2.0 / 135)), set(7.0 / 405)), e2), set(-8.0 / 405));
  const V c1 = hn::Mul(hn::Add(e2, set(1.0)), hn::Mul(e, set(-kSqrt2 / 36)));
  const V c0 = hn::Mul(hn::Add(e2, set(1.0)), set(1.0 / 3));
  const V small = hn::Add(hn::Mul(hn::Add(hn::Mul(c2, inverse), c1), inverse), c0);
  return hn::Add(hn::Add(hn::Mul(hn::Mul(root, set(kSqrt2)), e), small), lambda);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
