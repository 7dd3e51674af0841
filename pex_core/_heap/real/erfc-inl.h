// The complementary error function from the nearest point c = j/128 of a table, for z >= 0:
//   erfc(z) = erfc(c) - s d T,  d = z - c,  s = 2/sqrt(pi) e^(-c^2),
//   T = mean of e^(-w t + v t (1 - t)) over t from 0 to 1,  w = d (d + 2 c),  v = d^2
//     = F(w) (1 + v R(w^2) + v^2 (1/60 - w^2/2520) + ...),
// F(w) = (1 - e^-w)/w, |w| < 0.2155, and R the mean of t (1 - t) e^(-w t) in relation to F, an even
// function of w. The argument may be a sum z + rest: a quotient by sqrt(2), say. From z = 16 on the
// table is scaled by 2^512, so that nothing underflows on the way.

#include "hwy/highway.h"
#include "pex_core/_heap/real/erf_polynomials.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/erf_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERFC_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERFC_INL_H_
#undef PEX_CORE__HEAP_REAL_ERFC_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERFC_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// How far the computation goes.
enum class ErfcTier { kEP, kLA, kHA };

template <class D>
struct ErfcReduced {
  BitsOf<D> j;  // in the low bits
  VecOf<D> value, slope, d, w, v;
  VecOf<D> value_rest, slope_rest, d_rest;  // HA
};

// For z from 0 to 27.25. Adding 2^-300 to d keeps the products of tiny numbers from underflow
// and changes nothing else. kSum: z = z + rest.
template <ErfcTier kTier, bool kSum, class D, class V, size_t K>
HWY_INLINE void ErfcReduce(D d, const V (&z)[K], const V (&rest)[K], ErfcReduced<D> (&u)[K]) {
  using Offsets = RowOffsets<sizeof(ErfcRow), D>;
  V c[K];
  Offsets at[K];
  for (size_t k = 0; k < K; ++k) {
    const V shifter = hn::Set(d, 0x1.8p45);  // the sum ends in the number of 128ths
    const V sum = hn::Add(z[k], shifter);
    u[k].j = Bits(d, sum);
    at[k] = Offsets(d, u[k].j);
    c[k] = hn::Sub(sum, shifter);
  }
  for (size_t k = 0; k < K; ++k) {
    const auto row = LoadRows2(d, &kErfcRows[0].value, at[k]);
    u[k].value = row.a;
    u[k].slope = row.b;
    if constexpr (kTier == ErfcTier::kHA) {
      const auto word = LoadWords(d, kErfcRests, at[k]);
      u[k].value_rest = FromBits(d, word);  // bits of the other below the upper half: no matter
      u[k].slope_rest = FromBits(d, hn::ShiftLeft<32>(word));
    }
  }
  for (size_t k = 0; k < K; ++k) {
    const V exact = hn::Sub(z[k], c[k]);
    u[k].d = hn::Add(exact, kSum ? rest[k] : hn::Set(d, 0x1p-300));
    if constexpr (kTier == ErfcTier::kHA && kSum) {
      u[k].d_rest = hn::Sub(rest[k], hn::Sub(u[k].d, exact));
    }
    u[k].w = hn::Mul(u[k].d, hn::Add(u[k].d, hn::Add(c[k], c[k])));
    u[k].v = hn::Mul(u[k].d, u[k].d);
  }
}

// T - 1 in HA, T otherwise.
template <ErfcTier kTier, class D, class V, size_t K>
HWY_INLINE void ErfcMean(D d, const ErfcReduced<D> (&u)[K], V (&t)[K]) {
  V w[K], w2[K], r[K];
  for (size_t k = 0; k < K; ++k) {
    w[k] = u[k].w;
    w2[k] = hn::Mul(w[k], w[k]);
  }
  if constexpr (kTier == ErfcTier::kEP) {
    EvenOdd(d, w, w2, kErfcMeanEP, t);
    for (size_t k = 0; k < K; ++k) {
      const V mean = hn::Add(hn::Set(d, 1.0), hn::Mul(w[k], t[k]));
      t[k] = hn::Add(mean, hn::Mul(mean, hn::Mul(u[k].v, hn::Set(d, 1.0 / 6))));
    }
    return;
  }
  for (size_t k = 0; k < K; ++k) {
    const V high = hn::Add(hn::Mul(w2[k], hn::Set(d, -1.0 / 2520)), hn::Set(d, 1.0 / 60));
    r[k] = hn::Add(hn::Mul(Horner(d, w2[k], kErfcRatio), u[k].v),
                   hn::Mul(high, hn::Mul(u[k].v, u[k].v)));
  }
  EvenOdd(d, w, w2, kErfcMean, t);
  for (size_t k = 0; k < K; ++k) {
    const V less_one = hn::Mul(w[k], t[k]);
    const V mean = hn::Add(hn::Set(d, 1.0), less_one);
    t[k] = hn::Add(kTier == ErfcTier::kHA ? less_one : mean, hn::Mul(mean, r[k]));
  }
}

// erfc(z), scaled from z = 16 on. The rest is HA's.
template <ErfcTier kTier, bool kSum, class D, class V, size_t K>
HWY_INLINE void ErfcScaled(D d, const ErfcReduced<D> (&u)[K], Pair<V> (&e)[K]) {
  V t[K];
  ErfcMean<kTier>(d, u, t);
  for (size_t k = 0; k < K; ++k) {
    if constexpr (kTier == ErfcTier::kHA) {
      Pair<V> p = TwoProduct(d, u[k].slope, u[k].d);
      p.lo = hn::Add(p.lo, hn::Mul(u[k].slope_rest, u[k].d));
      if constexpr (kSum) p.lo = hn::Add(p.lo, hn::Mul(u[k].slope, u[k].d_rest));
      const Pair<V> head = FastTwoSum(u[k].value, hn::Neg(p.hi));
      const V rest = hn::Sub(hn::Sub(u[k].value_rest, p.lo), hn::Mul(p.hi, t[k]));
      e[k] = {head.hi, hn::Add(head.lo, rest)};
    } else {
      e[k].hi = hn::Sub(u[k].value, hn::Mul(hn::Mul(u[k].slope, u[k].d), t[k]));
    }
  }
}

// y without the scale, times 2^kPower, for normal results.
template <int kPower, class D, class V>
HWY_INLINE V Unscaled(D d, V y, BitsOf<D> j) {
  static_assert(kErfcScaledRow == 2048);
  auto less = hn::ShiftLeft<52 + 9 - 11>(hn::And(j, SetBits(d, 2048)));
  if constexpr (kPower != 0) less = hn::Add(less, SetBits(d, uint64_t{-kPower} << 52));
  return FromBits(d, hn::Sub(Bits(d, y), less));
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFC_INL_H_
