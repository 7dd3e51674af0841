// Stirling's series about the half: ln Gamma(z + 1/2) = z ln z - z + ln(2 pi)/2 - c(z). With
// z = k + 1/2 that is ln k!, and z is nowhere 0.
#if defined(QUO_KERNEL__KERNEL_STIRLING_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL__KERNEL_STIRLING_INL_H_
#undef QUO_KERNEL__KERNEL_STIRLING_INL_H_
#else
#define QUO_KERNEL__KERNEL_STIRLING_INL_H_
#endif

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// c(z) = 1/(24 z) - 7/(2880 z^3) + 31/(40320 z^5) - 127/(215040 z^7) + 511/(608256 z^9), its error
// below 10^-16 for z >= 16.
template <class D, class V>
HWY_INLINE V StirlingCorrection(D d, V z) {
  const V y = hn::Div(hn::Set(d, 1.0), z), y2 = hn::Mul(y, y);
  V c = hn::Set(d, 511.0 / 608256);
  for (const double next : {-127.0 / 215040, 31.0 / 40320, -7.0 / 2880, 1.0 / 24}) {
    c = hn::Add(hn::Mul(c, y2), hn::Set(d, next));
  }
  return hn::Mul(c, y);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
