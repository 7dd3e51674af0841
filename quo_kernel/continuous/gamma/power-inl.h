// x e^t for t <= 0 down to an underflow to 0, for which the exponential alone would be too coarse.

#include "hwy/highway.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(QUO_KERNEL_CONTINUOUS_GAMMA_POWER_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL_CONTINUOUS_GAMMA_POWER_INL_H_
#undef QUO_KERNEL_CONTINUOUS_GAMMA_POWER_INL_H_
#else
#define QUO_KERNEL_CONTINUOUS_GAMMA_POWER_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
namespace level = pex::HWY_NAMESPACE;  // kernels of vector math

// 1/k!: the rest of the series is below 10^-11 for |r| <= log(2)/2.
inline constexpr double kExpSeries[] = {
    1, 1, 1 / 2.0, 1 / 6.0, 1 / 24.0, 1 / 120.0, 1 / 720.0, 1 / 5040.0, 1 / 40320.0, 1 / 362880.0};

// The power of 2 in two factors, each a normal number, and one rounding at the last of them.
template <class D, class V, size_t K>
HWY_INLINE void TimesExp(D d, const V (&t)[K], V (&x)[K]) {
  const hn::RebindToSigned<D> di;
  const hn::RebindToUnsigned<D> du;
  V r[K], r2[K], p[K];
  hn::Vec<decltype(di)> n[K];
  for (size_t k = 0; k < K; ++k) {
    const V shifter = hn::Set(d, 0x1.8p52);  // leaves the rounded integer in the low bits
    const V s = hn::Max(t[k], hn::Set(d, -1400.0));
    const V sum = hn::Add(hn::Mul(s, hn::Set(d, 0x1.71547652b82fep+0)), shifter);
    const V whole = hn::Sub(sum, shifter);
    r[k] = hn::Sub(s, hn::Mul(whole, hn::Set(d, 0x1.62e42fefa3800p-1)));
    r[k] = hn::Sub(r[k], hn::Mul(whole, hn::Set(d, 0x1.ef35793c76730p-45)));
    r2[k] = hn::Mul(r[k], r[k]);
    n[k] = hn::Sub(hn::BitCast(di, sum), hn::BitCast(di, shifter));
  }
  level::EvenOdd(d, r, r2, kExpSeries, p);
  const auto power = [d, di](auto e) HWY_ATTR {
    return hn::BitCast(d, hn::ShiftLeft<52>(hn::Add(e, hn::Set(di, 1023))));
  };
  for (size_t k = 0; k < K; ++k) {
    const auto size = hn::BitCast(du, hn::Neg(n[k]));
    const auto lower = hn::Neg(hn::BitCast(di, hn::ShiftRight<1>(size)));
    const auto upper = hn::Sub(n[k], lower);
    x[k] = hn::Mul(hn::Mul(hn::Mul(x[k], p[k]), power(lower)), power(upper));
  }
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
