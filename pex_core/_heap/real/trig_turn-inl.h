// Back from quarter turns, in single and double precision: what y stands for in quadrant k, the low
// bits of which count.

#include "hwy/highway.h"
#include "pex_core/_heap/real/quotient_correct-inl.h"
#include "pex_core/_kernel/bits-inl.h"

#if defined(PEX_CORE__HEAP_REAL_TRIG_TURN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_TRIG_TURN_INL_H_
#undef PEX_CORE__HEAP_REAL_TRIG_TURN_INL_H_
#else
#define PEX_CORE__HEAP_REAL_TRIG_TURN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// y/c or, where the lowest bit of k is set, -c/y. c is positive.
template <class D, class V>
HWY_INLINE V TangentQuotient(D d, BitsOf<D> k, V y, V c) {
#if HWY_TARGET == HWY_AVX3
  const auto odd = hn::RebindMask(d, hn::TestBit(k, SetBits(d, 1)));
  return hn::Div(hn::IfThenElse(odd, c, y), MergedSub(c, odd, hn::Zero(d), y));
#else
  const V sign = FromBits(d, hn::ShiftLeft<sizeof(hn::TFromD<D>) * 8 - 1>(k));
#if HWY_TARGET == HWY_SSE4
  const auto odd = hn::MaskFromVec(sign);  // blends look at the sign alone
  const V above = hn::IfThenElse(odd, c, y), below = hn::IfThenElse(odd, y, c);
#else  // selections are dear on some machines, an exchange is not
  const V odd = FromBits(d, hn::BroadcastSignBit(Bits(d, sign)));
  const V change = hn::And(odd, hn::Xor(y, c));
  const V above = hn::Xor(y, change), below = hn::Xor(c, change);
#endif
  return hn::Xor(hn::Div(above, below), sign);
#endif
}

// The same of several vectors, by Quotients.
template <class D, class V, size_t K>
HWY_INLINE void TangentQuotients(D d, const BitsOf<D> (&k)[K], const V (&y)[K], const V (&c)[K],
                                 V (&r)[K]) {
#if HWY_TARGET == HWY_AVX3
  V below[K];
  for (size_t i = 0; i < K; ++i) {
    const auto odd = hn::RebindMask(d, hn::TestBit(k[i], SetBits(d, 1)));
    r[i] = hn::IfThenElse(odd, c[i], y[i]);
    below[i] = MergedSub(c[i], odd, hn::Zero(d), y[i]);
  }
  Quotients(d, r, below);
#else
  for (size_t i = 0; i < K; ++i) r[i] = TangentQuotient(d, k[i], y[i], c[i]);
#endif
}

// The sine and the cosine of k pi/2 + y from those of y.
template <class D, class V>
HWY_INLINE void TurnBack(D d, BitsOf<D> k, V sin_y, V cos_y, V& sine, V& cosine) {
  constexpr int kTop = sizeof(hn::TFromD<D>) * 8 - 1;
  const auto half_turn = hn::ShiftLeft<kTop - 1>(k);  // at the sign
  const auto sign = SetBits(d, uint64_t{1} << kTop);
#if HWY_TARGET == HWY_AVX3
  const auto odd = hn::RebindMask(d, hn::TestBit(k, SetBits(d, 1)));
  const V sine_but_sign = hn::IfThenElse(odd, cos_y, sin_y);
  const V cosine_but_sign = MergedSub(cos_y, odd, hn::Zero(d), sin_y);
  const auto flipped = [&](V x) HWY_ATTR {
    return FromBits(d, BitsOf<D>{_mm512_ternarylogic_epi64(Bits(d, x).raw, half_turn.raw, sign.raw,
                                                           0x78)});  // x ^ (bits & sign)
  };
  sine = flipped(sine_but_sign);
  cosine = flipped(cosine_but_sign);
#else
  const V flip = FromBits(d, hn::And(half_turn, sign));
  const V odd_sign = FromBits(d, hn::ShiftLeft<kTop>(k));
#if HWY_TARGET == HWY_SSE4
  const auto odd = hn::MaskFromVec(odd_sign);  // blends look at the sign alone
  sine = hn::Xor(hn::IfThenElse(odd, cos_y, sin_y), flip);
  cosine = hn::Xor(hn::IfThenElse(odd, sin_y, cos_y), hn::Xor(flip, odd_sign));
#else  // an exchange
  const V odd = FromBits(d, hn::BroadcastSignBit(Bits(d, odd_sign)));
  const V change = hn::Xor(hn::And(odd, hn::Xor(sin_y, cos_y)), flip);
  sine = hn::Xor(sin_y, change);
  cosine = hn::Xor(cos_y, hn::Xor(change, odd_sign));
#endif
#endif
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_TURN_INL_H_
