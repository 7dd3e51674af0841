// atan2 in double precision, HA: the ratio of the smaller magnitude to the larger by breakpoints c,
// atan(low/high) = atan(c) + atan(t), t = (low - c high)/(high + c low), and the other octants by
// reflection. The breakpoints are so near to each other that t is at most 1/64 of the ratio, and
// the roundings of its numerator and denominator count for little.

#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan_polynomials.h"
#include "pex_core/_heap/real/atan_tables.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_
#undef PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// In four parts, for |x| and |y| in [2^-64, 2^64), or with kTiny in [2^-450, 2^450], of which one
// may be 0: below 0.55 ulp (0.5371 seen). With kTiny, of a t below 2^-250, which others do not
// have, the tail is 0, for products that count for nothing shall not underflow.
template <bool kTiny, class D>
struct FullAtan2Part {
  using V = VecOf<D>;
  // The row below 2^-7 is the first one.
  static constexpr double kFirst = 0x1.f8p-8;
  static constexpr size_t kFirstByte = static_cast<size_t>(BitsOfNumber(kFirst) >> 43);
  using Row = RowOffsets<16, D, kFirstByte>;
  V t[1], inverse, n, m, angle;

  HWY_INLINE Pair<V> HighLow(V y, V x) const {
#if HWY_TARGET == HWY_AVX3
    // Operands 10 and 11: the one of the smaller and of the larger magnitude, without sign.
    return {V{_mm512_range_pd(x.raw, y.raw, 11)}, V{_mm512_range_pd(x.raw, y.raw, 10)}};
#else
    const V ay = hn::Abs(y), ax = hn::Abs(x);
    return {hn::Max(ax, ay), hn::Min(ax, ay)};
#endif
  }
  // 1/high by its bits, within 5.2 %, and a step of Newton's, within 0.14 %.
  HWY_INLINE void Find(V y, V x, Row& row) {
    const D d;
    const Pair<V> u = HighLow(y, x);
    const V near = FromBits(d, hn::Sub(SetBits(d, 0x7FDE666666666666), Bits(d, u.hi)));
    inverse = hn::Mul(near, hn::Sub(hn::Set(d, 2.00125), hn::Mul(near, u.hi)));
    const V ratio = hn::Max(hn::Mul(u.lo, inverse), hn::Set(d, kFirst));
    row.SetBytes(hn::And(ShiftBitsRight<43>(d, ratio), SetBits(d, ~uint64_t{15})));
  }
  HWY_INLINE void Reduce(V y, V x, const Row& row) {
    const D d;
    const Pair<V> u = HighLow(y, x);
    const Row2<V> c = LoadRows2(d, kAtanFineOctantRows[0], row);
    n = ShortNegMulAdd(d, u.hi, c.a, u.lo);
    m = hn::Add(u.hi, hn::Mul(c.a, u.lo));
    t[0] = hn::Div(n, m);
    angle = c.b;
    EndPart(t);
  }
  // What the quotient lacks counts where c is 0 and m the larger magnitude.
  HWY_INLINE void Evaluate() {
    const D d;
    const V q = t[0], rest = hn::Mul(Remainder(d, n, q, m), inverse);
    V v = q;
    if constexpr (kTiny) v = Selected(hn::IfThenZeroElse(MagnitudeBelow(d, v, 0x1p-250), v));
    V z[1] = {hn::Mul(v, v)}, p[1];
    HornerInSteps(d, z, kAtanFineHA, p);
    t[0] = hn::Add(q, hn::Add(rest, hn::Mul(hn::Mul(q, z[0]), p[0])));
    EndPart(t);
  }
  HWY_INLINE V Result(V y, V x) const {
    const D d;
    const auto flat = hn::Eq(HighLow(y, x).lo, hn::Abs(y));
    const V half_pi = hn::Set(d, 0x1.921fb54442d18p+0);
    // 0 or pi, or half of pi.
    const V corner = SubWhere(d, flat, half_pi, hn::CopySignToAbs(half_pi, x));
    const V turn = TurnOf(d, x, flat);
    const V base = hn::Add(corner, hn::Xor(angle, turn));  // exact
    // What pi has beyond its double, and its half, are the same fraction of them.
    const V corner_rest = hn::Mul(corner, hn::Set(d, 0x1.1a62633145c07p-53 / 0x1.921fb54442d18p+1));
    return hn::CopySignToAbs(hn::Add(base, hn::Add(hn::Xor(t[0], turn), corner_rest)), y);
  }
  // The sign of x, changed where not flat.
  static HWY_INLINE V TurnOf(D d, V x, MaskOf<D> flat) {
    const V ones = hn::VecFromMask(d, flat);
#if HWY_TARGET == HWY_AVX3
    if constexpr (sizeof(V) == 64) {
      const auto sign = SetBits(d, uint64_t{1} << 63);
      return FromBits(d, BitsOf<D>{_mm512_ternarylogic_epi64(Bits(d, x).raw, Bits(d, ones).raw,
                                                             sign.raw, 0x82)});
    }
#endif
    return hn::AndNot(hn::Xor(x, ones), hn::SignBit(d));
  }
};

// The parts of several vectors in turn, the later ones of earlier vectors: most of a scheduler's
// places would wait for a row or a quotient otherwise.
template <size_t kStep = 0, class P, class V, size_t K>
HWY_INLINE void FullAtan2InTurn(P (&parts)[K], typename P::Row (&rows)[K], const V (&y)[K],
                                const V (&x)[K], V (&r)[K]) {
  constexpr size_t kReduce = kStep - 2, kEvaluate = kStep - 4, kResult = kStep - 5;
  if constexpr (kStep < K) parts[kStep].Find(y[kStep], x[kStep], rows[kStep]);
  if constexpr (kReduce < K) parts[kReduce].Reduce(y[kReduce], x[kReduce], rows[kReduce]);
  if constexpr (kEvaluate < K) parts[kEvaluate].Evaluate();
  if constexpr (kResult < K) r[kResult] = parts[kResult].Result(y[kResult], x[kResult]);
  if constexpr (kStep + 1 < K + 5) FullAtan2InTurn<kStep + 1>(parts, rows, y, x, r);
}

template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void FullAtan2(D, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
  FullAtan2Part<kTiny, D> parts[K];
  typename FullAtan2Part<kTiny, D>::Row rows[K];
  FullAtan2InTurn(parts, rows, y, x, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_
