// Inverse sine and cosine: asin(x) = x (1 + u P(u)) with u = 4 x^2 for |x| up to about 1/2, and for
// larger ones acos(|x|) = s (1 + u P(u)) with u = 2 (1 - |x|), s = sqrt(u).

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "hwy/highway.h"
#include "pex_core/_heap/real/asin_polynomials.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ASIN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ASIN_INL_H_
#undef PEX_CORE__HEAP_REAL_ASIN_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ASIN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Rare: |x| > 1 or NaN. The levels that compare high words of doubles have 1 moved below its
// octave.
template <typename T>
struct AboveOne : RareAbove<T, (sizeof(T) == 8 ? 0x3FEFFFFF : 0x3F800000)> {
  static constexpr bool kWhole = sizeof(T) == 4 || HWY_TARGET == HWY_AVX3;
  static constexpr int64_t kLimit = kWhole ? BitsOfNumber(T(1)) : RareAbove<T, 0x3FEFFFFF>::kLimit;
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
    const auto bits = Bits(d, hn::Abs(x));
    if constexpr (kWhole) return bits;
    return hn::Sub(bits, SetBits(d, 1));
  }
};

// |x| beyond which it counts as large. Single precision has it where the arc cosine is just below
// 1, so that the sums are rounded to the finer half, and pi/2 needs no second part.
template <typename T>
inline constexpr T kAsinSplit = sizeof(T) == 8 ? T(0.5) : T(0x1.14p-1);
inline constexpr double kPi = 0x1.921fb54442d18p+1, kPiRest = 0x1.1a62633145c07p-53;

// What both functions are made of: |x|, the root s, u, and whether |x| is large. Where |x| is tiny
// u is 0, so that no product underflows.
template <class D>
struct AsinParts {
  VecOf<D> magnitude, root, u;
  MaskOf<D> large;
};

template <class D, class V>
HWY_INLINE AsinParts<D> AsinReduce(D d, V x) {
  using T = hn::TFromD<D>;
  constexpr T kTiny = sizeof(T) == 8 ? T(0x1p-30) : T(0x1p-14);
  const V a = hn::Abs(x), twice = hn::Add(a, a);
  const V rest = hn::Sub(hn::Set(d, T(2)), twice);  // exact where it is used
  const auto large = hn::Gt(a, hn::Set(d, kAsinSplit<T>));
  const V square = SquareWhere(d, hn::Ge(a, hn::Set(d, kTiny)), twice);
  // In double precision both are equal at the split, and either serves near it.
  const V u = sizeof(T) == 8 ? hn::Min(rest, square) : hn::IfThenElse(large, rest, square);
  return {a, hn::Sqrt(rest), u, large};
}

// Coefficients as whole registers in memory: on AVX-512 a broadcast takes a place of the
// arithmetic, a load takes none.
template <typename T, size_t N>
struct Spread {
  alignas(64) T c[N][64 / sizeof(T)];
};
template <typename T, size_t N>
constexpr Spread<T, N> SpreadOf(const T (&c)[N]) {
  Spread<T, N> s = {};
  for (size_t i = 0; i < N; ++i)
    for (T& x : s.c[i]) x = c[i];
  return s;
}

// EvenOdd with them. The compiler must not see what it loads, or it makes broadcasts of it again.
template <auto& kC, class D, class V, size_t K>
HWY_INLINE void SpreadEvenOdd(D d, const V (&x)[K], const V (&x2)[K], V (&p)[K]) {
  static constexpr auto kSpread = SpreadOf(kC);
  constexpr size_t N = std::size(kC);
  constexpr size_t kTop = (N - 1) / 2 * 2;
  auto* s = kSpread.c;
  asm("" : "+r"(s));
  const auto pair = [&](size_t i, size_t k) HWY_ATTR {
    const V low = hn::Load(d, s[i]);
    return i + 1 < N ? hn::Add(hn::Mul(hn::Load(d, s[i + 1]), x[k]), low) : low;
  };
  for (size_t k = 0; k < K; ++k) p[k] = pair(kTop, k);
  for (size_t i = kTop; i >= 2; i -= 2) {
    for (size_t k = 0; k < K; ++k) p[k] = hn::Add(hn::Mul(p[k], x2[k]), pair(i - 2, k));
  }
}

// The parts and u P(u) for all of a group.
template <auto& c, class D, class V, size_t K>
HWY_INLINE void AsinReduce(D d, const V (&x)[K], AsinParts<D> (&r)[K], V (&up)[K]) {
  V u[K];
  for (size_t k = 0; k < K; ++k) {
    r[k] = AsinReduce(d, x[k]);
    u[k] = r[k].u;
  }
  V u2[K];
  for (size_t k = 0; k < K; ++k) u2[k] = hn::Mul(u[k], u[k]);
#if HWY_TARGET == HWY_AVX3
  SpreadEvenOdd<c>(d, u, u2, up);
#else
  EvenOdd(d, u, u2, c, up);
#endif
  for (size_t k = 0; k < K; ++k) up[k] = hn::Mul(u[k], up[k]);
}

// By plain sums: below 2 ulp with the coefficients of LA (1.74 seen, single 1.90).
template <auto& c, class D, class V, size_t K>
HWY_INLINE void PlainAsin(D d, const V (&x)[K], V (&r)[K]) {
  using T = hn::TFromD<D>;
  constexpr T kHalfPi = T(kPi / 2);
  AsinParts<D> v[K];
  V up[K];
  AsinReduce<c>(d, x, v, up);
  for (size_t k = 0; k < K; ++k) {
    const auto large = v[k].large;
    const V lead = hn::IfThenElse(large, v[k].root, v[k].magnitude);
    V tail = hn::Mul(lead, up[k]);
    if constexpr (sizeof(T) == 8) {
      tail = hn::IfThenElse(large, hn::Sub(tail, hn::Set(d, kPiRest / 2)), tail);
    }
    const V sum = hn::Add(lead, tail);
    const V turned = hn::Sub(hn::Set(d, kHalfPi), sum);
    r[k] = hn::CopySignToAbs(hn::IfThenElse(large, turned, sum), x[k]);
  }
}

template <auto& c, class D, class V, size_t K>
HWY_INLINE void PlainAcos(D d, const V (&x)[K], V (&r)[K],
                          hn::TFromD<D> half_pi = hn::TFromD<D>(kPi / 2)) {
  using T = hn::TFromD<D>;
  AsinParts<D> v[K];
  V up[K];
  AsinReduce<c>(d, x, v, up);
  for (size_t k = 0; k < K; ++k) {
    const V lead = hn::IfThenElse(v[k].large, v[k].root, v[k].magnitude);
    const V sum = hn::Add(lead, hn::Mul(lead, up[k]));
    const V turned = hn::Xor(sum, hn::And(x[k], hn::SignBit(d)));
    const V left = hn::IfNegativeThenElse(x[k], hn::Set(d, T(kPi)), hn::Zero(d));
    r[k] = hn::IfThenElse(v[k].large, hn::Add(left, turned), hn::Sub(hn::Set(d, half_pi), turned));
  }
}

// pi/2 - x ..., s ... or pi - s ...: what the leading term is added to, a quarter of pi at a time.
template <class D, class V>
HWY_INLINE V AcosBase(D d, MaskOf<D> large, V x, hn::TFromD<D> pi) {
  using T = hn::TFromD<D>;
  const V left = hn::IfNegativeThenElse(x, hn::Set(d, pi), hn::Zero(d));
  return hn::IfThenElse(large, left, hn::Set(d, pi * T(0.5)));
}

// The leading term `part`, large or not, with its sign.
template <class D, class V>
HWY_INLINE V AcosLead(D d, MaskOf<D> large, V part_large, V part_small, V x) {
  const V part = hn::IfThenElse(large, part_large, hn::Neg(part_small));
  return hn::Xor(part, hn::And(x, hn::SignBit(d)));
}

// What the root lacks of sqrt(2 (1 - a)): its exact remainder over twice the root, by a division of
// floats, both scaled by 2^60 so that none underflows.
template <class D, class V>
HWY_INLINE V RootRest(D d, V a, V root) {
  const hn::Rebind<float, D> df;
  const V rest = hn::Sub(hn::Set(d, 1.0), a);
  const Pair<V> square = TwoProduct(d, root, root);
  const V remainder = hn::Sub(hn::Sub(hn::Add(rest, rest), square.hi), square.lo);
  const auto n = hn::DemoteTo(df, hn::Mul(remainder, hn::Set(d, 0x1p60)));
  // The lower bound is for a root of 0, and for the lanes of the register beyond the vector.
  const auto m = hn::Max(hn::DemoteTo(df, hn::Mul(root, hn::Set(d, 0x1p61))), hn::Set(df, 1.0f));
  return hn::PromoteTo(d, hn::Div(n, m));
}

// The coefficients of HA from c[1].
struct AsinHARest {
  double c[std::size(kAsinHA) - 1];
};
inline constexpr AsinHARest kAsinHARest = [] {
  AsinHARest rest = {};
  for (size_t i = 1; i < std::size(kAsinHA); ++i) rest.c[i - 1] = kAsinHA[i];
  return rest;
}();

// The parts and u P(u) as a pair: the product with c[0] exact, for it is up to a tenth of the
// result.
template <class D, class V, size_t K>
HWY_INLINE void FullAsinReduce(D d, const V (&x)[K], AsinParts<D> (&r)[K], Pair<V> (&up)[K]) {
  V u[K], u2[K], p[K];
  for (size_t k = 0; k < K; ++k) {
    r[k] = AsinReduce(d, x[k]);
    u[k] = r[k].u;
  }
  for (size_t k = 0; k < K; ++k) u2[k] = hn::Mul(u[k], u[k]);
  EvenOdd(d, u, u2, kAsinHARest.c, p);
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> first = TwoProduct(d, u[k], hn::Set(d, kAsinHA[0]));
    up[k] = FastTwoSum(first.hi, hn::Mul(u2[k], p[k]));
    up[k].lo = hn::Add(up[k].lo, first.lo);
  }
}

// base + lead (1 + up) for |base.hi| >= |lead.hi| or base = 0.
template <class D, class V = VecOf<D>>
HWY_INLINE V AsinSum(D d, Pair<VecOf<D>> base, Pair<VecOf<D>> lead, Pair<VecOf<D>> up) {
  const Pair<V> s = FastTwoSum(base.hi, lead.hi);
  const Pair<V> p = TwoProduct(d, lead.hi, up.hi);
  const Pair<V> q = FastTwoSum(s.hi, p.hi);
  const V cross = hn::Add(hn::Mul(lead.hi, up.lo), hn::Mul(lead.lo, up.hi));
  const V low = hn::Add(hn::Add(p.lo, cross), hn::Add(lead.lo, base.lo));
  return hn::Add(q.hi, hn::Add(q.lo, hn::Add(s.lo, low)));
}

template <class D, class V, size_t K>
HWY_INLINE void FullAsin(D d, const V (&x)[K], V (&r)[K]) {
  AsinParts<D> v[K];
  Pair<V> up[K];
  FullAsinReduce(d, x, v, up);
  for (size_t k = 0; k < K; ++k) {
    const auto& [magnitude, root, u, large] = v[k];
    const V zero = hn::Zero(d), root_rest = RootRest(d, magnitude, root);
    const Pair<V> lead = {hn::IfThenElse(large, hn::Sub(zero, root), magnitude),
                          hn::IfThenElseZero(large, hn::Sub(zero, root_rest))};
    const Pair<V> base = {hn::IfThenElseZero(large, hn::Set(d, kPi / 2)),
                          hn::IfThenElseZero(large, hn::Set(d, kPiRest / 2))};
    r[k] = hn::CopySignToAbs(AsinSum(d, base, lead, up[k]), x[k]);
  }
}

template <class D, class V, size_t K>
HWY_INLINE void FullAcos(D d, const V (&x)[K], V (&r)[K]) {
  AsinParts<D> v[K];
  Pair<V> up[K];
  FullAsinReduce(d, x, v, up);
  for (size_t k = 0; k < K; ++k) {
    const auto& [magnitude, root, u, large] = v[k];
    const V root_rest = RootRest(d, magnitude, root);
    const Pair<V> lead = {AcosLead(d, large, root, magnitude, x[k]),
                          AcosLead(d, large, root_rest, hn::Zero(d), x[k])};
    const Pair<V> base = {AcosBase(d, large, x[k], kPi), AcosBase(d, large, x[k], kPiRest)};
    r[k] = AsinSum(d, base, lead, up[k]);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ASIN_INL_H_
