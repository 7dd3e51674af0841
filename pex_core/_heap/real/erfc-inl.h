// The complementary error function from the nearest point c = j/128 of a table, for z >= 0:
//   erfc(z) = erfc(c) - s d T,  d = z - c,  s = 2/sqrt(pi) e^(-c^2),
//   T = mean of e^(-w t + v t (1 - t)) over t from 0 to 1,  w = d (d + 2 c),  v = d^2
//     = F(w) (1 + v R(w^2) + v^2 (1/60 - w^2/2520) + ...),
// F(w) = (1 - e^-w)/w, |w| < 0.2155, and R the mean of t (1 - t) e^(-w t) in relation to F, an even
// function of w. The argument may be a sum z + rest: a quotient by sqrt(2), say. The
// table is scaled by 2^300, so that nothing underflows on the way.

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

// How far a computation goes: here LA and HA; kShort's results are within 2^-40, in the range of
// single precision.
enum class ErfcTier { kEP, kShort, kLA, kHA };

template <class D>
struct ErfcReduced {
  VecOf<D> value, slope, d, w, v;
  VecOf<D> value_rest, slope_rest, w_rest;  // HA
};

// For z from 2^-200 to 27.25: to add 2^-200 keeps the products of tiny numbers from underflow and
// changes nothing else. kSum: the argument is z + rest, not for HA.
template <ErfcTier kTier, bool kSum, class D, class V, size_t K>
HWY_INLINE void ErfcReduce(D d, const V (&z)[K], const V (&rest)[K], ErfcReduced<D> (&u)[K]) {
  static_assert(!(kSum && kTier == ErfcTier::kHA));
  constexpr size_t kRow = sizeof(ErfcRow);
  using Offsets = RowOffsets<kRow, D>;
  V c[K];
  Offsets at[K];
  for (size_t k = 0; k < K; ++k) {
    const V shifter = hn::Set(d, 0x1.8p45);  // the sum ends in the number of 128ths
    const V sum = hn::Add(z[k], shifter);
    if constexpr (kTier == ErfcTier::kHA && HWY_TARGET != HWY_AVX3) {
      at[k] = Offsets(d, Bits(d, sum));  // the copies take less time here than waiting for stores
    } else {
      at[k].Set(d, Bits(d, sum));
    }
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
    u[k].d = kSum ? hn::Add(exact, rest[k]) : exact;
    if constexpr (kTier == ErfcTier::kHA) {
      const Pair<V> sum = FastTwoSum(hn::Add(c[k], c[k]), u[k].d);
      const Pair<V> w = TwoProduct(d, u[k].d, sum.hi);
      u[k].w = w.hi;
      u[k].w_rest = hn::Add(w.lo, hn::Mul(u[k].d, sum.lo));
    } else {
      u[k].w = hn::Mul(u[k].d, hn::Add(z[k], c[k]));
    }
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
  for (size_t k = 0; k < K; ++k) {
    const V high = hn::Add(hn::Mul(w2[k], hn::Set(d, -1.0 / 2520)), hn::Set(d, 1.0 / 60));
    const V low =
        kTier == ErfcTier::kHA ? Horner(d, w2[k], kErfcRatioHA) : Horner(d, w2[k], kErfcRatio);
    r[k] = hn::Mul(hn::Add(hn::Mul(high, u[k].v), low), u[k].v);
  }
  if constexpr (kTier == ErfcTier::kHA) {
    EvenOdd(d, w, w2, kErfcMeanHA, t);
  } else {
    EvenOdd(d, w, w2, kErfcMean, t);
  }
  for (size_t k = 0; k < K; ++k) {
    const V one = hn::Set(d, 1.0);
    if constexpr (kTier == ErfcTier::kHA) {
      const V half_w = hn::Mul(w[k], hn::Set(d, 0.5)), rest = hn::Mul(w2[k], t[k]);
      const V mean = hn::Add(one, hn::Sub(rest, half_w));
      const V half_rest = hn::Mul(u[k].w_rest, hn::Set(d, 0.5));
      t[k] = hn::Sub(hn::Add(rest, hn::Sub(hn::Mul(mean, r[k]), half_rest)), half_w);
    } else {
      const V mean = hn::Add(one, hn::Mul(w[k], t[k]));
      t[k] = hn::Add(mean, hn::Mul(mean, r[k]));
    }
  }
}

// erfc(z) 2^300. The rest is HA's.
template <ErfcTier kTier, class D, class V, size_t K>
HWY_INLINE void ErfcScaled(D d, const ErfcReduced<D> (&u)[K], Pair<V> (&e)[K]) {
  V t[K];
  ErfcMean<kTier>(d, u, t);
  for (size_t k = 0; k < K; ++k) {
    if constexpr (kTier == ErfcTier::kHA) {
      Pair<V> p = TwoProduct(d, u[k].slope, u[k].d);
      p.lo = hn::Add(p.lo, hn::Mul(u[k].slope_rest, u[k].d));
      const Pair<V> head = FastTwoSum(u[k].value, hn::Neg(p.hi));
      const V rest = hn::Sub(hn::Sub(u[k].value_rest, p.lo), hn::Mul(p.hi, t[k]));
      e[k] = {head.hi, hn::Add(head.lo, rest)};
    } else {
      e[k].hi = hn::Sub(u[k].value, hn::Mul(hn::Mul(u[k].slope, u[k].d), t[k]));
    }
  }
}

// Where x has its sign bit, limit 2^300 - erfc(z) 2^300, elsewhere erfc(z) 2^300, or the other way
// round.
template <ErfcTier kTier, bool kNegative, class D, class V>
HWY_INLINE V ErfcOrRest(D d, V x, Pair<V> e, double limit) {
  const V most = hn::Set(d, limit * 0x1p300);
  V tail = e.hi, rest;
  if constexpr (kTier == ErfcTier::kHA) {
    tail = hn::Add(e.hi, e.lo);
    const Pair<V> less = FastTwoSum(most, hn::Neg(e.hi));
    rest = hn::Add(less.hi, hn::Sub(less.lo, e.lo));
  } else {
    rest = hn::Sub(most, e.hi);
  }
  return kNegative ? hn::IfNegativeThenElse(x, rest, tail) : hn::IfNegativeThenElse(x, tail, rest);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFC_INL_H_
