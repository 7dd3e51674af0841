// atan2 in double precision by the ratio of the smaller magnitude to the larger: with a breakpoint
// c = 0 or c near 0.56, atan(low/high) = atan(c) + atan(q), q = (low - c high)/(high + c low),
// |q| < 0.2829, and the other octants by reflection.

#include <iterator>

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

// The angle is base + atan(q), atan(q) with the sign bit of `turn` flipped, and where steep the
// rest of pi/2.
template <class V>
struct AtanOctant {
  V q, base, turn;
  MaskOf<hn::DFromV<V>> steep;
};

// Where c is 0.
template <class D, class V>
HWY_INLINE MaskOf<D> AtanOctantFlat(D d, V low, V high) {
  return hn::Lt(low, hn::Mul(high, hn::Set(d, 0.2828)));
}

// The multiple of pi/2 next to the octant: half of pi where steep, else 0 or, for x < 0, pi.
template <class D, class V>
HWY_INLINE V AtanOctantCorner(D d, V x, MaskOf<D> steep) {
  const V half_pi = hn::Set(d, 0x1.921fb54442d18p+0);
#if HWY_TARGET == HWY_AVX2
  // Without selections, which Golden Cove makes of three operations: half of pi less 0 or half of
  // pi with the sign of x.
  const V signed_half = hn::Or(hn::And(x, hn::SignBit(d)), half_pi);
  return hn::Sub(half_pi, hn::IfThenZeroElse(steep, signed_half));
#else
  const V pi = hn::IfNegativeThenElse(x, hn::Set(d, 0x1.921fb54442d18p+1), hn::Zero(d));
  return hn::IfThenElse(steep, half_pi, pi);
#endif
}

// The sign bit of what is to be added to it.
template <class D, class V>
HWY_INLINE V AtanOctantTurn(D d, V x, MaskOf<D> steep) {
  return hn::And(hn::Xor(x, hn::VecFromMask(d, steep)), hn::SignBit(d));
}

// What LA and HA begin with: the magnitudes, c, and the base without its rest.
template <class D, class V = VecOf<D>>
struct AtanOctantParts {
  V high, low, c, base, turn;
  MaskOf<D> steep, flat;
};
template <class D, class V>
HWY_INLINE AtanOctantParts<D> AtanOctantPartsOf(D d, V y, V x) {
  const V ay = hn::Abs(y), ax = hn::Abs(x);
  AtanOctantParts<D> r;
  r.high = hn::Max(ax, ay);
  r.low = hn::Min(ax, ay);
  r.steep = hn::Gt(ay, ax);
  r.flat = AtanOctantFlat(d, r.low, r.high);
  r.c = hn::IfThenZeroElse(r.flat, hn::Set(d, kAtanOctantMiddle));
  const V middle = hn::IfThenZeroElse(r.flat, hn::Set(d, kAtanOctantMiddleAngle));
  r.turn = AtanOctantTurn(d, x, r.steep);
  r.base = hn::Add(AtanOctantCorner(d, x, r.steep), hn::Xor(middle, r.turn));  // exact
  return r;
}

// For |x| and |y| in [2^-450, 2^450]; one of them may be 0.
template <class D, class V>
HWY_INLINE AtanOctant<V> AtanOctantOf(D d, V y, V x) {
  const auto u = AtanOctantPartsOf(d, y, x);
  // The difference is rounded once: c high is 0 or, rounded, within a factor of 2 of low.
#if HWY_TARGET == HWY_SSE4  // the halves of a constant cost nothing
  const V middle = hn::Set(d, kAtanOctantMiddle);
  const V n = hn::IfThenElse(u.flat, u.low, Remainder(d, u.low, middle, u.high));
#else
  const V n = Remainder(d, u.low, u.c, u.high);
#endif
  return {hn::Div(n, hn::Add(u.high, hn::Mul(u.c, u.low))), u.base, u.turn, u.steep};
}

// atan(q) - q. kTiny: x and y may be outside [2^-64, 2^64) or 0. Of a q below 2^-250, which other
// arguments do not have, it is 0: products that count for nothing shall not underflow.
template <bool kTiny, class D, class V, size_t K, size_t N>
HWY_INLINE void AtanOctantTail(D d, const V (&q)[K], const double (&c)[N], V (&r)[K]) {
  V z[K], z2[K], p[K];
  for (size_t k = 0; k < K; ++k) {
    V u = q[k];
    if constexpr (kTiny) u = Selected(hn::IfThenZeroElse(MagnitudeBelow(d, u, 0x1p-250), u));
    z[k] = hn::Mul(u, u);
  }
  if constexpr (N > 4) {
    for (size_t k = 0; k < K; ++k) z2[k] = hn::Mul(z[k], z[k]);
    EvenOdd(d, z, z2, c, p);
  } else {
    Horner(d, z, c, p);
  }
  for (size_t k = 0; k < K; ++k) r[k] = hn::Mul(q[k], hn::Mul(z[k], p[k]));
}

// x and, where steep, the rest of pi/2, which is up to 0.55 ulp of an angle below 1.
template <class D, class V>
HWY_INLINE V AddHalfPiRest(D d, MaskOf<D> steep, V x) {
  const V rest = hn::Set(d, 0x1.1a62633145c07p-54);
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(V) == 64) return MergedAdd(x, steep, x, rest);
#endif
  return hn::Add(x, hn::IfThenElseZero(steep, rest));
}

// The angle, with the sign of y; of EP's precision with a c of few coefficients.
template <bool kTiny, class D, class V, size_t K, size_t N>
HWY_INLINE void AtanOctantSum(D d, const AtanOctant<V> (&x)[K], const V (&y)[K],
                              const double (&c)[N], V (&r)[K]) {
  V q[K], tail[K];
  for (size_t k = 0; k < K; ++k) q[k] = x[k].q;
  AtanOctantTail<kTiny>(d, q, c, tail);
  for (size_t k = 0; k < K; ++k) {
    V turned = hn::Xor(hn::Add(q[k], tail[k]), x[k].turn);
    if constexpr (N > 4) turned = AddHalfPiRest(d, x[k].steep, turned);
    r[k] = hn::CopySignToAbs(hn::Add(x[k].base, turned), y[k]);
  }
}

// The quotient and the base in two parts.
template <class V>
struct FullAtanOctant {
  Pair<V> q, base;
  V turn;
};

template <class D, class V>
HWY_INLINE FullAtanOctant<V> FullAtanOctantOf(D d, V y, V x) {
  const auto u = AtanOctantPartsOf(d, y, x);
  const Pair<V> ch = TwoProduct(d, u.c, u.high), cl = TwoProduct(d, u.c, u.low);
  const V n = hn::Sub(u.low, ch.hi);  // exact
  const Pair<V> m = FastTwoSum(u.high, cl.hi);
  const V inverse = hn::Div(hn::Set(d, 1.0), m.hi);
  const V q = hn::Mul(n, inverse);
  const V low = hn::Add(ch.lo, hn::Mul(q, hn::Add(m.lo, cl.lo)));
  const V rest = hn::Sub(Remainder(d, n, q, m.hi), low);
  const V pi = hn::IfNegativeThenElse(x, hn::Set(d, 0x1.1a62633145c07p-53), hn::Zero(d));
  const V base_rest = hn::IfThenElse(u.steep, hn::Set(d, 0x1.1a62633145c07p-54), pi);
  return {{q, hn::Mul(rest, inverse)}, {u.base, base_rest}, u.turn};
}

// Without a sign, within 2^-56 of itself, worst next to 1/4, where the
// tail is a fiftieth of the quotient.
template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void FullAtanOctantSum(D d, const FullAtanOctant<V> (&x)[K], Pair<V> (&r)[K]) {
  V q[K], tail[K];
  for (size_t k = 0; k < K; ++k) q[k] = x[k].q.hi;
  AtanOctantTail<kTiny>(d, q, kAtanOctantHA, tail);
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> s = FastTwoSum(x[k].base.hi, hn::Xor(q[k], x[k].turn));
    const V low = hn::Xor(hn::Add(x[k].q.lo, tail[k]), x[k].turn);
    r[k] = {s.hi, hn::Add(s.lo, hn::Add(x[k].base.lo, low))};
  }
}

// The tail's polynomial without its first coefficient.
struct AtanOctantFurther {
  double c[std::size(kAtanOctantHA) - 1];
};
inline constexpr AtanOctantFurther kAtanOctantFurther = [] {
  AtanOctantFurther r{};
  for (size_t i = 0; i < std::size(r.c); ++i) r.c[i] = kAtanOctantHA[i + 1];
  return r;
}();

// The same angle off by less than 2^-59 (2^-59.4 seen), with the cube in full: in
// FullAtanOctantSum, off by up to 2^-58, it is the tail's roundings that count.
template <class D, class V, size_t K>
HWY_INLINE void ExactAtanOctantSum(D d, const FullAtanOctant<V> (&x)[K], Pair<V> (&r)[K]) {
  V q[K], z2[K], p[K], z[K];
  Pair<V> square[K];
  for (size_t k = 0; k < K; ++k) {
    q[k] = Selected(hn::IfThenZeroElse(MagnitudeBelow(d, x[k].q.hi, 0x1p-250), x[k].q.hi));
    square[k] = TwoProduct(d, q[k], q[k]);
    z[k] = square[k].hi;
    z2[k] = hn::Mul(z[k], z[k]);
  }
  EvenOdd(d, z, z2, kAtanOctantFurther.c, p);
  const V third = hn::Set(d, kAtanOctantHA[0]);
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> s = FastTwoSum(x[k].base.hi, hn::Xor(x[k].q.hi, x[k].turn));
    const Pair<V> cube = TwoProduct(d, q[k], z[k]);
    const V cube_lo = hn::Add(cube.lo, hn::Mul(q[k], square[k].lo));
    const V small = hn::Add(hn::Mul(hn::Mul(cube.hi, z[k]), p[k]), hn::Mul(cube_lo, third));
    // Their sum with the tail's first term is rounded once.
    const V low = hn::Xor(hn::Add(x[k].q.lo, small), x[k].turn);
    const V first = hn::Xor(hn::Mul(cube.hi, third), x[k].turn);
    r[k] = {s.hi, hn::Add(first, hn::Add(s.lo, hn::Add(x[k].base.lo, low)))};
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN_OCTANT_INL_H_
