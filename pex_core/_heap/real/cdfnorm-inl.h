// The normal distribution function in HA from a point c of a table of it and of its density s:
//   CdfNorm(x) = CdfNorm(c) + s d T,  d = x - c,
// T that of erfc-inl.h for w = d (c + d/2) and v = d^2/2. The polynomials are for 2 w, the ratios
// for 2 v. The table is scaled by 2^300, so that nothing underflows on the way; the function is
// next to a double at its points, which lie closer together the larger |x| is, so that the
// correction s d T is at most a twentieth of the value.

#include "hwy/highway.h"
#include "pex_core/_heap/real/cdfnorm_tables.h"
#include "pex_core/_heap/real/erf_polynomials.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/erf_tables.h"
#include "pex_core/_heap/real/erfc-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_CDFNORM_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_CDFNORM_INL_H_
#undef PEX_CORE__HEAP_REAL_CDFNORM_INL_H_
#else
#define PEX_CORE__HEAP_REAL_CDFNORM_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// x/sqrt(2) in two parts, x >= 0. To add 2^-200 keeps the products of tiny numbers from underflow
// and changes nothing else, here and below.
template <class D, class V>
HWY_INLINE Pair<V> OverRootTwo(D d, V x) {
  const V safe = hn::Add(x, hn::Set(d, 0x1p-200));
  const Pair<V> p = TwoProduct(d, safe, hn::Set(d, 0x1.6a09e667f3bcdp-1));
  return {p.hi, hn::Sub(p.lo, hn::Mul(safe, hn::Set(d, 0x1.bdd3413b26456p-55)))};
}

template <class D>
using CdfNormOffsets = RowOffsets<sizeof(CdfNormPoint), D>;

// CdfNorm(x) from its rows; T - 1 is w t + (1 + w t) v r. The roundings of s d and of s d T and
// what r lacks weigh a twentieth of an ulp each: the error is below 0.65 ulp. No c is so close to
// 0, and so no d so small, that squares underflow.
template <class D, class V, size_t K>
HWY_INLINE void CdfNormFromRows(D d, const V (&x)[K], const CdfNormOffsets<D>* at, V* y) {
  V value[K], p[K], w[K], w2[K], v[K], t[K];
  for (size_t k = 0; k < K; ++k) {
    const auto row = LoadRows4(d, &kCdfNormPoints[0].c, at[k]);
    const V dx = hn::Sub(x[k], row.a);
    value[k] = row.b;
    w[k] = hn::Mul(dx, hn::Add(x[k], row.a));
    p[k] = hn::Mul(row.c, dx);
    v[k] = hn::Mul(dx, dx);
  }
  for (size_t k = 0; k < K; ++k) w2[k] = hn::Mul(w[k], w[k]);
  EvenOdd(d, w, w2, kCdfNormMeanHA, t);
  for (size_t k = 0; k < K; ++k) w[k] = hn::Mul(w[k], t[k]);
  for (size_t k = 0; k < K; ++k) {
    const V even =
        hn::Add(hn::Mul(w2[k], hn::Set(d, kCdfNormRatioHA[1])), hn::Set(d, kCdfNormRatioHA[0]));
    const V ratio = hn::Add(even, hn::Mul(v[k], hn::Set(d, kCdfNormRatioHA[2])));
    v[k] = hn::Mul(v[k], ratio);
  }
  for (size_t k = 0; k < K; ++k) {
    t[k] = hn::Add(w[k], hn::Mul(hn::Add(hn::Set(d, 1.0), w[k]), v[k]));
  }
  for (size_t k = 0; k < K; ++k) p[k] = hn::Add(p[k], hn::Mul(p[k], t[k]));
  for (size_t k = 0; k < K; ++k) {
    // No result, so scaled, is near the subnormal numbers.
    const auto scale = SetBits(d, uint64_t{kCdfNormScale} << 52);
    y[k] = FromBits(d, hn::Sub(Bits(d, hn::Add(value[k], p[k])), scale));
  }
}

// CdfNorm(x) in HA for x from -37.512 to 8.99 or, with kBeyond, to any number. The rows of all
// vectors are found first: they arrive while others' results are computed.
template <bool kBeyond, class D, class V, size_t K>
HWY_INLINE void CdfNormHA(D d, const V (&x)[K], V (&y)[K]) {
  constexpr size_t kBlock = K < 4 ? K : 4;
  static_assert(K % kBlock == 0);
  V inner[K / kBlock][kBlock];
  CdfNormOffsets<D> at[K];
  for (size_t k = 0; k < K; ++k) {
    // From 8.5 on the result is 1.
    const V safe = kBeyond ? hn::Min(x[k], hn::Set(d, 8.5)) : x[k];
    const V from = hn::Sub(hn::Set(d, kCdfNormVertex), safe);
    // The sum ends in 128 times the square; four times that is the row.
    const V sum = hn::Add(hn::Mul(from, from), hn::Set(d, 0x1.8p45));
    at[k].SetBytes(hn::And(Bits(d, sum), SetBits(d, 0x3FFF * sizeof(CdfNormPoint))));
    inner[k / kBlock][k % kBlock] = safe;
  }
  for (size_t b = 0; b < K / kBlock; ++b) {
    CdfNormFromRows(d, inner[b], at + b * kBlock, y + b * kBlock);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_CDFNORM_INL_H_
