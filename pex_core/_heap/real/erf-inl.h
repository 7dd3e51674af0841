// erf(x) = erf(c) + d s (1 + g): c the point of a table next to |x|, d = |x| - c, |d| <= 1/256,
// s = 2/sqrt(pi) e^(-c^2) and g = sum of b_n d^n, b_n = (-1)^n H_n(c)/(n + 1)! by the Hermite
// polynomials H_n. With q = b_2 = (2 c^2 - 1)/3 they are b_1 = -c, b_3 = c (1/3 - q/2),
// b_4 = (3 q^2 - 4 q - 2/3)/10, b_5 = -(c b_4 + 4/5 b_3)/3.

#include <limits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/erf_tables.h"
#include "pex_core/_kernel/bits-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERF_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERF_INL_H_
#undef PEX_CORE__HEAP_REAL_ERF_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERF_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Subnormal numbers, whose results would be inexact and subnormal, infinities, NaN.
template <class D, class V>
HWY_INLINE MaskOf<D> NotOrdinary(D d, V x) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  constexpr int kClasses = 0x01 | 0x08 | 0x10 | 0x20 | 0x80;
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    return MaskOf<D>{_mm512_fpclass_pd_mask(x.raw, kClasses)};
  } else if constexpr (sizeof(x.raw) == 64) {
    return MaskOf<D>{_mm512_fpclass_ps_mask(x.raw, kClasses)};
  } else {
    return MaskOf<D>{_mm256_fpclass_ps_mask(x.raw, kClasses)};
  }
#else
  using T = hn::TFromD<D>;
  const auto magnitude = Bits(d, hn::Abs(x));
  const auto least = SetBits(d, BitsOfNumber(std::numeric_limits<T>::min()));
  const auto most = SetBits(d, BitsOfNumber(std::numeric_limits<T>::max()));
  const auto low = hn::AndNot(hn::Eq(magnitude, SetBits(d, 0)), hn::Lt(magnitude, least));
  return hn::RebindMask(d, hn::Or(low, hn::Gt(magnitude, most)));
#endif
}

// The same and zeros, in one comparison.
template <typename T>
using NotOrdinaryOrZero = RareByMagnitude<RareOutside<T, sizeof(T) == 8 ? 0x00100000 : 0x00800000,
                                                      sizeof(T) == 8 ? 0x7FEFFFFF : 0x7F7FFFFF>>;

template <class D>
struct ErfReduced {
  VecOf<D> c, value, slope, q;
  VecOf<D> d;
  VecOf<D> safe;  // d, but no less than 2^-300 near zero, so that its powers do not underflow
};

// For any x but infinities and NaN.
template <class D, class V, size_t K>
HWY_INLINE void ErfReduce(D d, const V (&x)[K], ErfReduced<D> (&u)[K]) {
  using Offsets = RowOffsets<sizeof(ErfRow), D>;
  V ax[K];
  Offsets at[K];
  for (size_t k = 0; k < K; ++k) {
    ax[k] = hn::Min(hn::Abs(x[k]), hn::Set(d, (kErfRowCount - 1) / 128.0));
    // The sum ends in the number of 128ths.
    at[k].Set(d, Bits(d, hn::Add(ax[k], hn::Set(d, 0x1.8p45))));
  }
  for (size_t k = 0; k < K; ++k) {
    const auto row = LoadRows4(d, &kErfRows[0].c, at[k]);
    const V dx = hn::Sub(ax[k], row.a);
    u[k] = {row.a, row.b, row.c, row.d, dx, hn::Add(dx, hn::Set(d, 0x1p-300))};
  }
}

// Coefficients of g in q: b_3/c and b_4, which has a part of the missing b_6.
inline constexpr double kErfB3[] = {1.0 / 3, -0.5}, kErfB4[] = {-1.0 / 15 - 4e-7, -0.4, 0.3};

// g to within 2^-57 of the result.
template <class D, class V, size_t K>
HWY_INLINE void ErfSum(D d, const ErfReduced<D> (&u)[K], V (&g)[K]) {
  const auto s = [d](double x) HWY_ATTR { return hn::Set(d, x); };
  V v[K], b3[K], b4[K];
  for (size_t k = 0; k < K; ++k) v[k] = hn::Mul(u[k].safe, u[k].safe);
  for (size_t k = 0; k < K; ++k) b4[k] = hn::Add(hn::Mul(u[k].q, s(kErfB4[2])), s(kErfB4[1]));
  for (size_t k = 0; k < K; ++k) b3[k] = hn::Add(hn::Mul(u[k].q, s(kErfB3[1])), s(kErfB3[0]));
  for (size_t k = 0; k < K; ++k) b4[k] = hn::Add(hn::Mul(b4[k], u[k].q), s(kErfB4[0]));
  for (size_t k = 0; k < K; ++k) {
    const V b5 = hn::Mul(hn::Add(b4[k], hn::Mul(b3[k], s(0.8))), s(-1.0 / 3));
    b3[k] = hn::Add(b3[k], hn::Mul(v[k], b5));
  }
  for (size_t k = 0; k < K; ++k) {
    b3[k] = hn::Add(hn::Mul(b3[k], v[k]), s(-1));
    b4[k] = hn::Mul(hn::Add(hn::Mul(b4[k], v[k]), u[k].q), u[k].safe);
  }
  for (size_t k = 0; k < K; ++k) {
    g[k] = hn::Mul(hn::Add(hn::Mul(b3[k], u[k].c), b4[k]), u[k].safe);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERF_INL_H_
