// Exponentials within 10^-11 of themselves, of t <= 0 down to an underflow to 0.

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

// t = n log(2) + r, |r| <= log(2)/2, for |t| <= 1400.
template <class D, class V, class I, size_t K>
HWY_INLINE void ReduceByLog2(D d, const V (&t)[K], I (&n)[K], V (&r)[K]) {
  const hn::RebindToSigned<D> di;
  const V shifter = hn::Set(d, 0x1.8p52);  // leaves the rounded integer in the low bits
  for (size_t k = 0; k < K; ++k) {
    const V sum = hn::Add(hn::Mul(t[k], hn::Set(d, 0x1.71547652b82fep+0)), shifter);
    const V whole = hn::Sub(sum, shifter);
    const V head = hn::Sub(t[k], hn::Mul(whole, hn::Set(d, 0x1.62e42fefa3800p-1)));
    r[k] = hn::Sub(head, hn::Mul(whole, hn::Set(d, 0x1.ef35793c76730p-45)));
    n[k] = hn::Sub(hn::BitCast(di, sum), hn::BitCast(di, shifter));
  }
}

// 2^n, a normal number.
template <class D, class I>
HWY_INLINE hn::Vec<D> PowerOfTwo(D d, I n) {
  const hn::RebindToSigned<D> di;
  return hn::BitCast(d, hn::ShiftLeft<52>(hn::Add(n, hn::Set(di, 1023))));
}

// x = x e^t. The power of 2 comes in two factors, each a normal number, so that the last of them
// alone may underflow.
template <class D, class V, size_t K>
HWY_INLINE void TimesExp(D d, const V (&t)[K], V (&x)[K]) {
  const hn::RebindToSigned<D> di;
  const hn::RebindToUnsigned<D> du;
  V s[K], r[K], r2[K], p[K];
  hn::Vec<decltype(di)> n[K];
  for (size_t k = 0; k < K; ++k) s[k] = hn::Max(t[k], hn::Set(d, -1400.0));
  ReduceByLog2(d, s, n, r);
  for (size_t k = 0; k < K; ++k) r2[k] = hn::Mul(r[k], r[k]);
  level::EvenOdd(d, r, r2, kExpSeries, p);
  for (size_t k = 0; k < K; ++k) {
    const auto lower = hn::Neg(hn::BitCast(di, hn::ShiftRight<1>(hn::BitCast(du, hn::Neg(n[k])))));
    const V first = PowerOfTwo(d, lower), second = PowerOfTwo(d, hn::Sub(n[k], lower));
    x[k] = hn::Mul(hn::Mul(hn::Mul(x[k], p[k]), first), second);
  }
}

// x = e^t, |t| < 700.
template <class D, class V, size_t K>
HWY_INLINE void ModerateExp(D d, const V (&t)[K], V (&x)[K]) {
  V r[K], r2[K], p[K];
  hn::Vec<hn::RebindToSigned<D>> n[K];
  ReduceByLog2(d, t, n, r);
  for (size_t k = 0; k < K; ++k) r2[k] = hn::Mul(r[k], r[k]);
  level::EvenOdd(d, r, r2, kExpSeries, p);
  for (size_t k = 0; k < K; ++k) x[k] = hn::Mul(p[k], PowerOfTwo(d, n[k]));
}

// (e^r - 1 - r)/r^2, by the same series.
inline constexpr double kExpRest[] = {1 / 2.0,   1 / 6.0,    1 / 24.0,    1 / 120.0,
                                      1 / 720.0, 1 / 5040.0, 1 / 40320.0, 1 / 362880.0};

// x = 1 - e^t, of a tiny t too: (1 - 2^n) - 2^n (e^r - 1).
template <class D, class V, size_t K>
HWY_INLINE void OneMinusExp(D d, const V (&t)[K], V (&x)[K]) {
  const hn::RebindToSigned<D> di;
  V s[K], r[K], r2[K], p[K];
  hn::Vec<decltype(di)> n[K];
  for (size_t k = 0; k < K; ++k) s[k] = hn::Max(t[k], hn::Set(d, -700.0));
  ReduceByLog2(d, s, n, r);
  for (size_t k = 0; k < K; ++k) r2[k] = hn::Mul(r[k], r[k]);
  level::EvenOdd(d, r, r2, kExpRest, p);
  for (size_t k = 0; k < K; ++k) {
    const V power = PowerOfTwo(d, n[k]), less_one = hn::Add(r[k], hn::Mul(r2[k], p[k]));
    x[k] = hn::Sub(hn::Sub(hn::Set(d, 1.0), power), hn::Mul(power, less_one));
  }
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
