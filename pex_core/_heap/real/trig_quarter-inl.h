// Formulas on |y| <= pi/4, for the kernels that need sine and cosine or their quotient.

#include "hwy/highway.h"
#include "pex_core/_heap/real/trig-inl.h"

#if defined(PEX_CORE__HEAP_REAL_TRIG_QUARTER_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_TRIG_QUARTER_INL_H_
#undef PEX_CORE__HEAP_REAL_TRIG_QUARTER_INL_H_
#else
#define PEX_CORE__HEAP_REAL_TRIG_QUARTER_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// x = quadrant pi/2 + y + rest, for the low two bits of `quadrant`.
template <class D, size_t K>
struct Quarters {
  VecOf<D> y[K], rest[K];
  BitsOf<D> quadrant[K];
};

// The nearest multiple n of pi/2.
template <class D, class V, size_t K>
HWY_INLINE void NearestQuadrant(D d, const V (&x)[K], Quarters<D, K>& u, V (&n)[K]) {
  const V shifter = hn::Set(d, kShifter);
  for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(x[k], hn::Set(d, 0x1.45f306dc9c883p-1));
  EndStep(n);
  for (size_t k = 0; k < K; ++k) n[k] = hn::Add(n[k], shifter);
  EndStep(n);
  for (size_t k = 0; k < K; ++k) u.quadrant[k] = Bits(d, n[k]);
  for (size_t k = 0; k < K; ++k) n[k] = hn::Sub(n[k], shifter);
  EndStep(n);
}

// pi/2 in two parts, for |x| < 2^12: what the first leaves is exact, a multiple of 2^-53 below 1,
// and n times the second is exact. Good to 2^-28 of y.
struct QuarterEP {
  static constexpr bool kBrief = true;
  template <class D, class V, size_t K>
  static HWY_INLINE void Reduce(D d, const V (&x)[K], Quarters<D, K>& u) {
    V n[K];
    NearestQuadrant(d, x, u, n);
    SubExactProducts(x, n, hn::Set(d, 0x1.921fb54442p+0), u.y);
    for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(n[k], hn::Set(d, 0x1.a308d313198a3p-41));
    for (size_t k = 0; k < K; ++k) u.y[k] = hn::Sub(u.y[k], n[k]);
  }
};

// The same with a longer first part. What it leaves is a multiple of 2^-52 below 1, for |x| < 2^12,
// and n times the second is exact too. Good to 2^-30.6 of y: all multiples have been tried.
struct QuarterTanEP {
  static constexpr bool kBrief = true;
  template <class D, class V, size_t K>
  static HWY_INLINE void Reduce(D d, const V (&x)[K], Quarters<D, K>& u) {
    V n[K];
    NearestQuadrant(d, x, u, n);
    SubProductsExactly(d, x, n, 0x1.921fb54442d18p+0, 0x1.921fb54442p+0, u.y);
    SubExactProducts(u.y, n, hn::Set(d, 0x1.1a62633146p-54), u.y);
  }
};

// In three parts, of which n times the first two is exact. The rounding of the sum stays in the
// rest.
struct QuarterLA {
  static constexpr bool kBrief = false;
  template <class D, class V, size_t K>
  static HWY_INLINE void Reduce(D d, const V (&x)[K], Quarters<D, K>& u) {
    const V part2 = hn::Set(d, 0x1.a308d31318p-41);
    V n[K], high[K];
    NearestQuadrant(d, x, u, n);
    SubExactProducts(x, n, hn::Set(d, 0x1.921fb54442p+0), high);
    SubExactProducts(high, n, part2, u.y);
    for (size_t k = 0; k < K; ++k) high[k] = hn::Sub(high[k], u.y[k]);
    EndStep(high);
    SubExactProducts(high, n, part2, high);
    for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(n[k], hn::Set(d, 0x1.8a2e03707344ap-81));
    EndStep(n);
    for (size_t k = 0; k < K; ++k) u.rest[k] = hn::Sub(high[k], n[k]);
    EndStep(u.rest);
  }
};

// Lanes of every kind, reduced.
template <class Quarter, class D, class V, size_t K>
HWY_INLINE void ReduceQuarters(D d, const TrigLanes<D, K>& lanes, const V (&x)[K],
                               Quarters<D, K>& u) {
  Quarter::Reduce(d, lanes.x, u);
  if (!lanes.any_large) return;
  for (size_t k = 0; k < K; ++k) {
    const auto mask = lanes.large[k];
    const auto large = ReduceLargeLanes<Quarter::kBrief>(d, mask, x[k]);
    u.y[k] = hn::IfThenElse(mask, large.r.hi, u.y[k]);
    u.rest[k] = hn::IfThenElse(mask, large.r.lo, u.rest[k]);
    u.quadrant[k] =
        Bits(d, hn::IfThenElse(mask, FromBits(d, large.quadrant), FromBits(d, u.quadrant[k])));
  }
}

// Lanes whose quadrant is odd.
template <class D>
HWY_INLINE MaskOf<D> OddLanes(D d, BitsOf<D> quadrant) {
#if HWY_TARGET == HWY_AVX3
  return hn::RebindMask(d, hn::TestBit(quadrant, SetBits(d, 1)));
#else
  return hn::MaskFromVec(
      FromBits(d, hn::ShiftLeft<63>(quadrant)));  // blends look at the sign alone
#endif
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_QUARTER_INL_H_
