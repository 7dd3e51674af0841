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

// x with its sign changed where y is negative.
template <class D, class V>
HWY_INLINE V FlipWith(D d, V x, V y) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(V) == 64) {
    const auto sign = SetBits(d, 1ull << 31);
    return FromBits(d, BitsOf<D>{_mm512_ternarylogic_epi32(Bits(d, x).raw, Bits(d, y).raw, sign.raw,
                                                           0x78)});  // x ^ (y & sign)
  }
#endif
  return hn::Xor(x, hn::And(y, hn::SignBit(d)));
}

// Angles of the first eighth moved to where the point is, by one sum: steep for |y| > |x|.
template <class D, class V>
HWY_INLINE V AngleInPlane(D d, V angle, MaskOf<D> steep, V y, V x) {
  const V half_pi = hn::Set(d, 0x1.921fb6p+0f);
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(V) == 64) {
    const V turned = FlipWith(d, angle, x);
    const V flat = MergedAdd(turned, hn::MaskFromVec(x), turned, hn::Set(d, 0x1.921fb6p+1f));
    return hn::CopySignToAbs(MergedSub(flat, steep, half_pi, turned), y);
  }
#endif
  // Without selections, which Golden Cove makes of three operations. The corner is half of pi less
  // 0 or half of pi with the sign of x.
  const V sign = hn::SignBit(d), over = hn::VecFromMask(d, steep), x_sign = hn::And(x, sign);
  const V corner = hn::Sub(half_pi, hn::AndNot(over, hn::Or(x_sign, half_pi)));
  const V turn = hn::Xor(x_sign, hn::And(over, sign));
  return hn::CopySignToAbs(hn::Add(corner, hn::Xor(angle, turn)), y);
}

// atan2(y, x) of one vector in three parts, by the ratio t: for |x| and |y| in [2^-32, 2^32];
// kTiny: in [2^-60, 2^60], and one of them may be 0. kFree: c[0] is the factor of t, not of t^3.
template <auto& kC, bool kFree, bool kTiny, class D>
struct UnitAtan2Part {
  using V = VecOf<D>;
  V t[1], angle[1];

  HWY_INLINE void Reduce(V y, V x) {
    const D d;
#if HWY_TARGET == HWY_AVX3
    if constexpr (sizeof(V) == 64) {
      // Operands 10 and 11: the one of the smaller and of the larger magnitude, without sign.
      // Minima and maxima of integers would go to the unit that divides.
      (void)d;
      const V less = {_mm512_range_round_ps(y.raw, x.raw, 10, _MM_FROUND_NO_EXC)};
      const V more = {_mm512_range_round_ps(y.raw, x.raw, 11, _MM_FROUND_NO_EXC)};
      t[0] = hn::Div(less, more);
      EndPart(t);
      return;
    }
#endif
    const auto ay = Bits(d, hn::Abs(y)), ax = Bits(d, hn::Abs(x));
    t[0] = hn::Div(FromBits(d, hn::Min(ay, ax)), FromBits(d, hn::Max(ay, ax)));
    EndPart(t);
  }
  // No product of tiny t shall underflow where it counts for nothing.
  HWY_INLINE void Evaluate() {
    const D d;
    V z[1], z2[1], p[1];
    if constexpr (kTiny && !kFree) {
      z[0] = SquareWhere(d, hn::Ge(t[0], hn::Set(d, 0x1p-20f)), t[0]);
    } else {
      const V u = hn::Max(t[0], hn::Set(d, kFree ? 0x1p-30f : 0x1p-20f));
      z[0] = hn::Mul(u, u);
    }
    z2[0] = hn::Mul(z[0], z[0]);
    EvenOdd(d, z, z2, kC, p);
    const V tail = hn::Mul(t[0], kFree ? p[0] : hn::Mul(z[0], p[0]));
    angle[0] = kFree ? tail : hn::Add(t[0], tail);
    EndPart(angle);
  }
  HWY_INLINE V Result(V y, V x) const {
    return AngleInPlane(D(), angle[0], hn::Gt(hn::Abs(y), hn::Abs(x)), y, x);
  }
};

template <auto& kC, bool kFree, bool kTiny, class D, class V, size_t K>
HWY_INLINE void UnitAtan2(D, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
  UnitAtan2Part<kC, kFree, kTiny, D> parts[K];
  InTurn(parts, r, y, x);
}

// The same in double precision, for |x| and |y| in [2^-450, 2^450]. kTiny: they may be outside
// [2^-64, 2^64) or 0.
template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void OctantAtan2LA(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
  AtanOctant<V> octant[K];
  for (size_t k = 0; k < K; ++k) octant[k] = AtanOctantOf(d, y[k], x[k]);
  AtanOctantSum<kTiny>(d, octant, y, kAtanOctantLA, r);
}

// One vector of it in three parts, without the care for the numerator's last bits. kTiny: x and y
// may be outside [2^-128, 2^128).
template <bool kTiny, class D>
struct OctantAtan2PartEP {
  using V = VecOf<D>;
  V t[1], middle, corner, turn;

  HWY_INLINE void Reduce(V y, V x) {
    const D d;
    const V ay = hn::Abs(y), ax = hn::Abs(x);
    const V high = hn::Max(ax, ay), low = hn::Min(ax, ay);
    const auto flat = AtanOctantFlat(d, low, high);
    const V c = hn::IfThenZeroElse(flat, hn::Set(d, kAtanOctantMiddle));
    const V n = hn::Sub(low, hn::Mul(c, high));
    t[0] = hn::Div(n, hn::Add(high, hn::Mul(c, low)));
    const auto steep = hn::Gt(ay, ax);
    corner = AtanOctantCorner(d, x, steep);
    turn = AtanOctantTurn(d, x, steep);
    middle = hn::IfThenZeroElse(flat, hn::Set(d, kAtanOctantMiddleAngle));
    EndPart(t);
  }
  HWY_INLINE void Evaluate() {
    const D d;
    V u = t[0], p[1];
    if constexpr (kTiny) u = hn::Max(hn::Abs(u), hn::Set(d, 0x1p-250));  // no square underflows
    const V z[1] = {hn::Mul(u, u)};
    HornerInSteps(d, z, kAtan2EP, p);
    t[0] = hn::Add(hn::Mul(t[0], p[0]), middle);
    EndPart(t);
  }
  HWY_INLINE V Result(V y, V) const {
    return hn::CopySignToAbs(hn::Add(corner, hn::Xor(t[0], turn)), y);
  }
};

template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void OctantAtan2EP(D, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
  OctantAtan2PartEP<kTiny, D> parts[K];
  InTurn<HWY_TARGET == HWY_SSE4 ? K : 2>(parts, r, y, x);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN2_PLAIN_INL_H_
