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

// How far a computation goes.
enum class ErfcTier { kEP, kLA };

template <class D>
struct ErfcReduced {
  VecOf<D> value, slope, d, w, v;
};

// For z from 2^-200 to 27.25: to add 2^-200 keeps the products of tiny numbers from underflow and
// changes nothing else. kSum: the argument is z + rest.
template <bool kSum, class D, class V, size_t K>
HWY_INLINE void ErfcReduce(D d, const V (&z)[K], const V (&rest)[K], ErfcReduced<D> (&u)[K]) {
  V c[K];
  RowOffsets<sizeof(ErfcRow), D> at[K];
  for (size_t k = 0; k < K; ++k) {
    const V shifter = hn::Set(d, 0x1.8p45);  // the sum ends in the number of 128ths
    const V sum = hn::Add(z[k], shifter);
    at[k].Set(d, Bits(d, sum));
    c[k] = hn::Sub(sum, shifter);
  }
  for (size_t k = 0; k < K; ++k) {
    const auto row = LoadRows2(d, &kErfcRows[0].value, at[k]);
    u[k].value = row.a;
    u[k].slope = row.b;
  }
  for (size_t k = 0; k < K; ++k) {
    const V exact = hn::Sub(z[k], c[k]);
    u[k].d = kSum ? hn::Add(exact, rest[k]) : exact;
    u[k].w = hn::Mul(u[k].d, hn::Add(z[k], c[k]));
    u[k].v = hn::Mul(u[k].d, u[k].d);
  }
}

template <class D, class V, size_t K>
HWY_INLINE void ErfcMean(D d, const ErfcReduced<D> (&u)[K], V (&t)[K]) {
  V w[K], w2[K], r[K];
  for (size_t k = 0; k < K; ++k) {
    w[k] = u[k].w;
    w2[k] = hn::Mul(w[k], w[k]);
  }
  for (size_t k = 0; k < K; ++k) {
    const V high = hn::Add(hn::Mul(w2[k], hn::Set(d, -1.0 / 2520)), hn::Set(d, 1.0 / 60));
    r[k] = hn::Mul(hn::Add(hn::Mul(high, u[k].v), Horner(d, w2[k], kErfcRatio)), u[k].v);
  }
  EvenOdd(d, w, w2, kErfcMean, t);
  for (size_t k = 0; k < K; ++k) {
    const V mean = hn::Add(hn::Set(d, 1.0), hn::Mul(w[k], t[k]));
    t[k] = hn::Add(mean, hn::Mul(mean, r[k]));
  }
}

// erfc(z) 2^300.
template <class D, class V, size_t K>
HWY_INLINE void ErfcScaled(D d, const ErfcReduced<D> (&u)[K], V (&e)[K]) {
  V t[K];
  ErfcMean(d, u, t);
  for (size_t k = 0; k < K; ++k) {
    e[k] = hn::Sub(u[k].value, hn::Mul(hn::Mul(u[k].slope, u[k].d), t[k]));
  }
}

// Where x has its sign bit, limit 2^300 - e, elsewhere e, erfc(z) 2^300, or the other way round.
template <bool kNegative, class D, class V>
HWY_INLINE V ErfcOrRest(D d, V x, V e, double limit) {
  const V rest = hn::Sub(hn::Set(d, limit * 0x1p300), e);
  return kNegative ? hn::IfNegativeThenElse(x, rest, e) : hn::IfNegativeThenElse(x, e, rest);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFC_INL_H_
