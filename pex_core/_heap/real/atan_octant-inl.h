// atan2 in double precision by the ratio of the smaller magnitude to the larger: with a breakpoint
// c = 0 or c near 0.56, atan(low/high) = atan(c) + atan(q), q = (low - c high)/(high + c low),
// |q| < 0.2829, and the other octants by reflection.

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ATAN_OCTANT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ATAN_OCTANT_INL_H_
#undef PEX_CORE__HEAP_REAL_ATAN_OCTANT_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ATAN_OCTANT_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The angle is base + atan(q), atan(q) with the sign bit of `turn` flipped.
template <class V>
struct AtanOctant {
  V q, base, turn;
};

// For |x| and |y| in [2^-450, 2^450]; one of them may be 0.
template <class D, class V>
HWY_INLINE AtanOctant<V> AtanOctantOf(D d, V y, V x) {
  const V ay = hn::Abs(y), ax = hn::Abs(x);
  const V high = hn::Max(ax, ay), low = hn::Min(ax, ay);
  const auto steep = hn::Gt(ay, ax);
  const auto flat = hn::Lt(low, hn::Mul(high, hn::Set(d, 0.2828)));
  const V c = hn::IfThenZeroElse(flat, hn::Set(d, kAtanOctantMiddle));
  AtanOctant<V> r;
  // The difference is rounded once: c high is 0 or, rounded, within a factor of 2 of low.
  r.q = hn::Div(Remainder(d, low, c, high), hn::Add(high, hn::Mul(c, low)));
  const V pi = hn::IfNegativeThenElse(x, hn::Set(d, 0x1.921fb54442d18p+1), hn::Zero(d));
  const V corner = hn::IfThenElse(steep, hn::Set(d, 0x1.921fb54442d18p+0), pi);
  const V middle = hn::IfThenZeroElse(flat, hn::Set(d, kAtanOctantMiddleAngle));
  r.turn = hn::And(hn::Xor(x, hn::VecFromMask(d, steep)), hn::SignBit(d));
  r.base = hn::Add(corner, hn::Xor(middle, r.turn));  // exact
  return r;
}

// The sum, with the sign of y. kTiny: x and y may be outside [2^-127, 2^127] or 0, and the tail of
// a tiny q then out of the range of normal numbers; its value counts for nothing there.
template <bool kTiny, class D, class V, size_t K, size_t N>
HWY_INLINE void AtanOctantSum(D d, const AtanOctant<V> (&x)[K], const V (&y)[K],
                              const double (&c)[N], V (&r)[K]) {
  V z[K], z2[K], p[K];
  for (size_t k = 0; k < K; ++k) {
    V q = x[k].q;
    if constexpr (kTiny) q = hn::IfThenZeroElse(MagnitudeBelow(d, q, 0x1p-30), q);
    z[k] = hn::Mul(q, q);
  }
  if constexpr (N > 4) {
    for (size_t k = 0; k < K; ++k) z2[k] = hn::Mul(z[k], z[k]);
    EvenOdd(d, z, z2, c, p);
  } else {
    Horner(d, z, c, p);
  }
  for (size_t k = 0; k < K; ++k) {
    const V tail = hn::Mul(x[k].q, hn::Mul(z[k], p[k]));
    const V turned = hn::Xor(hn::Add(x[k].q, tail), x[k].turn);
    r[k] = hn::CopySignToAbs(hn::Add(x[k].base, turned), y[k]);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN_OCTANT_INL_H_
