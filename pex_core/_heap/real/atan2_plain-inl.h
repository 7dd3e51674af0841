// atan2 for LA and EP, by the ratio of the smaller magnitude to the larger.

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan_octant-inl.h"
#include "pex_core/_heap/real/atan_polynomials.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ATAN2_PLAIN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ATAN2_PLAIN_INL_H_
#undef PEX_CORE__HEAP_REAL_ATAN2_PLAIN_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ATAN2_PLAIN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Angles of the first eighth moved to where the point is: steep for |y| > |x|.
template <class D, class V>
HWY_INLINE V AngleInPlane(D d, V angle, MaskOf<D> steep, V y, V x) {
  const V half_pi = hn::Set(d, 0x1.921fb6p+0f), pi = hn::Set(d, 0x1.921fb6p+1f);
  const V right = hn::IfThenElse(steep, hn::Sub(half_pi, angle), angle);
  return hn::CopySignToAbs(hn::IfNegativeThenElse(x, hn::Sub(pi, right), right), y);
}

// atan2(y, x) for |x| and |y| in [2^-60, 2^60]; one of them may be 0. kFree: c[0] is the factor of
// t, not of t^3.
template <bool kFree, class D, class V, size_t K, size_t N>
HWY_INLINE void UnitAtan2(D d, const V (&y)[K], const V (&x)[K], const float (&c)[N], V (&r)[K]) {
  V t[K], z[K], p[K];
  for (size_t k = 0; k < K; ++k) {
    const auto ay = Bits(d, hn::Abs(y[k])), ax = Bits(d, hn::Abs(x[k]));
    t[k] = hn::Div(FromBits(d, hn::Min(ay, ax)), FromBits(d, hn::Max(ay, ax)));
  }
  // No product of tiny t shall underflow where it counts for nothing.
  for (size_t k = 0; k < K; ++k) {
    if constexpr (kFree) {
      const V u = hn::Max(t[k], hn::Set(d, 0x1p-30f));
      z[k] = hn::Mul(u, u);
    } else {
      z[k] = SquareWhere(d, hn::Ge(t[k], hn::Set(d, 0x1p-20f)), t[k]);
    }
  }
  HornerInSteps(d, z, c, p);
  for (size_t k = 0; k < K; ++k) {
    const V tail = hn::Mul(t[k], kFree ? p[k] : hn::Mul(z[k], p[k]));
    const V angle = kFree ? tail : hn::Add(t[k], tail);
    const auto steep = hn::Gt(hn::Abs(y[k]), hn::Abs(x[k]));
    r[k] = AngleInPlane(d, angle, steep, y[k], x[k]);
  }
}

// The same in double precision, for |x| and |y| in [2^-450, 2^450]. kTiny: they may be outside
// [2^-64, 2^64) or 0.
template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void OctantAtan2LA(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
  AtanOctant<V> octant[K];
  for (size_t k = 0; k < K; ++k) octant[k] = AtanOctantOf(d, y[k], x[k]);
  AtanOctantSum<kTiny>(d, octant, y, kAtanOctantLA, r);
}

// Without the care for the numerator's last bits. kTiny: x and y may be outside [2^-250, 2^250].
template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void OctantAtan2EP(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
  V q[K], z[K], p[K], base[K], turn[K];
  for (size_t k = 0; k < K; ++k) {
    const auto u = AtanOctantPartsOf(d, y[k], x[k]);
    const V n = hn::Sub(u.low, hn::Mul(u.c, u.high));
    q[k] = hn::Div(n, hn::Add(u.high, hn::Mul(u.c, u.low)));
    base[k] = u.base;
    turn[k] = u.turn;
  }
  for (size_t k = 0; k < K; ++k) {
    V u = q[k];
    if constexpr (kTiny) u = hn::Max(hn::Abs(u), hn::Set(d, 0x1p-250));  // no square underflows
    z[k] = hn::Mul(u, u);
  }
  HornerInSteps(d, z, kAtan2EP, p);
  for (size_t k = 0; k < K; ++k) {
    const V turned = hn::Xor(hn::Mul(q[k], p[k]), turn[k]);
    r[k] = hn::CopySignToAbs(hn::Add(base[k], turned), y[k]);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN2_PLAIN_INL_H_
