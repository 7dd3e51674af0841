// The inverse of the error function and its relations: of x = erf(y) and q = 1 - |x|, from a table
// of polynomials G in q >= 2^-20, by intervals whose length goes with q:
//   y = x G(q).
// Below, with v = sqrt(-ln q),
//   y = +-v (1 - D(1/v)),
// the logarithm that of log-inl.h, D by a table of polynomials too.

#include <bit>
#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/erfinv_single_tables.h"
#include "pex_core/_heap/real/erfinv_tables.h"
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERFINV_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERFINV_INL_H_
#undef PEX_CORE__HEAP_REAL_ERFINV_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERFINV_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

enum class ErfInvTier { kShort, kLA, kHA };

inline constexpr double kErfInvLeast = 0x1p-20;

template <class V>
struct ErfInvArgument {
  V x, q;
};

// For G: x and q, rounded, and what x lacks.
template <class V>
struct ErfInvPoint {
  V x, q, rest;
};

// The functions: x and q from their arguments, the rare arguments (poles, beyond them, subnormal
// results or double arguments), those beyond kErfInvFine, the factor of y in the result.
struct InverseOfErf {
  static constexpr const auto& kRows = kErfcInvRows;
  static constexpr auto& kSingleLA = kErfcInvSingleLA;
  static constexpr auto& kSingleEP = kErfcInvSingleEP;
  static constexpr bool kSingleTail = false;  // q is 2^-24 at least
  static constexpr double kFactor = 1;
  template <typename T>  // |x| outside of [2^-35, 1), in single precision [2^-100, 1)
  using Rarity = RareByMagnitude<RareOutside<T, sizeof(T) == 8 ? 0x3DC00000 : 0x0D800000,
                                             sizeof(T) == 8 ? 0x3FEFFFFF : 0x3F7FFFFF>>;
  // |x| in [2^-100, 1 - 2^-15]
  using FineRarity = RareByMagnitude<RareOutside<float, 0x0D800000, 0x3F7FFE00>>;
  // q from 2^-20 on, |x| in [2^-35, 1 - 2^-20)
  using NearRarity = RareByMagnitude<RareOutside<double, 0x3DC00000, 0x3FEFFFFD>>;
  static constexpr bool kRest = false;
  static constexpr double kUnit = 1;  // of Point
  template <class D, class V>
  static HWY_INLINE ErfInvArgument<V> Split(D d, V a) {
    return {a, hn::Sub(hn::Set(d, 1.0), hn::Abs(a))};
  }
  template <class D, class V>
  static HWY_INLINE ErfInvPoint<V> Point(D d, V a) {
    return {a, hn::Sub(hn::Set(d, 1.0), hn::Abs(a)), a};
  }
  // q - middle: exact, but for small |x|, where G is flat.
  template <class D, class V>
  static HWY_INLINE V Distance(D d, const ErfInvPoint<V>& u, V middle) {
    return hn::Sub(hn::Sub(hn::Set(d, 1.0), middle), hn::Abs(u.x));
  }
  template <class D, class V>
  static HWY_INLINE ErfInvArgument<V> SplitFine(D d, V a) {
    return Split(d, a);
  }
};

struct InverseOfErfc {
  static constexpr const auto& kRows = kErfcInvRows;
  static constexpr auto& kSingleLA = kErfcInvSingleLA;
  static constexpr auto& kSingleEP = kErfcInvSingleEP;
  static constexpr bool kSingleTail = true;
  static constexpr double kFactor = 1;
  template <typename T>  // outside of [2^-1022, 2), in single precision (0, 2)
  struct Rarity
      : RareOutside<T, sizeof(T) == 8 ? 0x00100000 : 1, sizeof(T) == 8 ? 0x3FFFFFFF : 0x3FFFFFFF> {
  };
  using FineRarity = RareOutside<float, 0x38000000, 0x3FFFFF00>;   // x in [2^-15, 2 - 2^-15]
  using NearRarity = RareOutside<double, 0x3EB00000, 0x3FFFFFFE>;  // x in [2^-20, 2 - 2^-20)
  static constexpr bool kRest = true;
  static constexpr double kUnit = 1;
  template <class D, class V>
  static HWY_INLINE ErfInvArgument<V> Split(D d, V a) {
    return {hn::Sub(hn::Set(d, 1.0), a), hn::Min(a, hn::Sub(hn::Set(d, 2.0), a))};
  }
  template <class D, class V>
  static HWY_INLINE ErfInvPoint<V> Point(D d, V a) {
    const V one = hn::Set(d, 1.0), x = hn::Sub(one, a);
    return {x, hn::Min(a, hn::Sub(hn::Set(d, 2.0), a)), hn::Sub(hn::Sub(one, x), a)};
  }
  template <class D, class V>
  static HWY_INLINE V Distance(D, const ErfInvPoint<V>& u, V middle) {
    return hn::Sub(u.q, middle);
  }
  template <class D, class V>
  static HWY_INLINE ErfInvArgument<V> SplitFine(D d, V a) {
    return Split(d, a);
  }
};

struct InverseOfCdfNorm {
  static constexpr const auto& kRows = kNormInvRows;
  static constexpr auto& kSingleLA = kNormInvSingleLA;
  static constexpr auto& kSingleEP = kNormInvSingleEP;
  static constexpr bool kSingleTail = true;
  static constexpr double kFactor = 0x1.6a09e667f3bcdp+0;  // sqrt(2)
  static constexpr double kFactorRest = -0x1.bdd3413b26456p-54;
  template <typename T>  // outside of [2^-1022, 1), in single precision (0, 1)
  struct Rarity
      : RareOutside<T, sizeof(T) == 8 ? 0x00100000 : 1, sizeof(T) == 8 ? 0x3FEFFFFF : 0x3F7FFFFF> {
  };
  using FineRarity = RareOutside<float, 0x37800000, 0x3F7FFF00>;   // x in [2^-16, 1 - 2^-16]
  using NearRarity = RareOutside<double, 0x3EA00000, 0x3FEFFFFE>;  // x in [2^-21, 1 - 2^-21)
  static constexpr bool kRest = true;
  static constexpr double kUnit = 0.5;
  template <class D, class V>
  static HWY_INLINE ErfInvArgument<V> Split(D d, V a) {
    const V x = hn::Sub(a, hn::Set(d, 0.5)), q = hn::Min(a, hn::Sub(hn::Set(d, 1.0), a));
    return {hn::Add(x, x), hn::Add(q, q)};
  }
  // Their halves.
  template <class D, class V>
  static HWY_INLINE ErfInvPoint<V> Point(D d, V a) {
    const V half = hn::Set(d, 0.5), x = hn::Sub(a, half);
    return {x, hn::Min(a, hn::Sub(hn::Set(d, 1.0), a)), hn::Sub(a, hn::Add(x, half))};
  }
  template <class D, class V>
  static HWY_INLINE V Distance(D, const ErfInvPoint<V>& u, V middle) {
    return hn::Sub(u.q, middle);
  }
  // The same of floats that FineRarity leaves: exact.
  template <class D, class V>
  static HWY_INLINE ErfInvArgument<V> SplitFine(D d, V a) {
    const V one = hn::Set(d, 1.0), x = ExactProductLess(a, hn::Set(d, 2.0), one);
    return {x, hn::Sub(one, hn::Abs(x))};
  }
};

// By cubics in q - (the beginning of its interval): `table` has kOctaves octaves of 2^kBits rows
// and one for q = 1. x = 1 - q may be rounded. kHidden: for results that are tried for
// a rounding in doubt.
template <class Function, int kOctaves, int kBits, bool kHidden = false, class D, class V, size_t K>
HWY_INLINE void ErfInvCubic(D d, const double (*table)[4], const ErfInvArgument<V> (&u)[K],
                            V (&y)[K]) {
  constexpr uint64_t kRowBytes = sizeof(table[0]);
  constexpr uint64_t kOctave = kRowBytes << kBits;  // the lowest bit of the exponent
  using Offsets = RowOffsets<kRowBytes, D, (1023 - kOctaves) * kOctave>;
  Offsets at[K];
  V begin[K];
#pragma GCC unroll 8
  for (size_t k = 0; k < K; ++k) {
    constexpr int kShift = 53 - std::bit_width(kOctave);
    begin[k] = FromBits(d, hn::And(Bits(d, u[k].q), SetBits(d, -(uint64_t{1} << (52 - kBits)))));
    at[k].SetBytes(ShiftBitsRight<kShift>(d, begin[k]));
  }
#pragma GCC unroll 8
  for (size_t k = 0; k < K; ++k) {
    const auto row = LoadRows4(d, &table[0][0], at[k]);
    const V t = hn::Sub(u[k].q, begin[k]);
    const auto step = [t](V low, V g) HWY_ATTR {
      return kHidden ? HiddenMulAdd(t, g, low) : hn::Add(low, hn::Mul(t, g));
    };
    const V g = step(row.a, step(row.b, step(row.c, row.d)));
    const V m = Function::kFactor == 1 ? u[k].x : hn::Mul(u[k].x, hn::Set(d, Function::kFactor));
    y[k] = hn::Mul(m, g);
  }
}

// The product of x and a row's constant, HA in full, and then all else, which weighs little: in the
// parts of InTurn.
template <class Function, ErfInvTier kTier, class D, class Offsets>
struct ErfInvProduct {
  using V = VecOf<D>;
  const Offsets* at;
  V t, c0, c0_rest, p01, p23, p45;  // p01: then all that is added to c0

  HWY_INLINE void Reduce(const ErfInvPoint<V>&) {
    const D d;
    const auto low = LoadRows4(d, &Function::kRows[0][0], *at);
    const auto high = LoadRows4(d, &Function::kRows[0][4], *at);
    const auto pair = [&](V c, V more) HWY_ATTR { return hn::Add(c, hn::Mul(more, t)); };
    c0 = low.a, c0_rest = high.d;
    p45 = pair(high.b, high.c);
    p23 = pair(low.d, high.a);
    p01 = pair(low.b, low.c);
    V end[] = {p01, p23, p45};
    EndPart(end);
    p01 = end[0], p23 = end[1], p45 = end[2];
  }

  HWY_INLINE void Evaluate() {
    const V t2 = hn::Mul(t, t);
    V p = hn::Add(p23, hn::Mul(t2, p45));
    p = hn::Add(p01, hn::Mul(t2, p));
    V end[] = {hn::Add(c0_rest, hn::Mul(p, t))};
    EndPart(end);
    p01 = end[0];
  }

  HWY_INLINE Pair<V> Result(const ErfInvPoint<V>& u) const {
    V rest = hn::Mul(u.x, p01);
    if constexpr (Function::kRest) rest = hn::Add(rest, hn::Mul(u.rest, c0));
    if constexpr (kTier == ErfInvTier::kHA) {
      const Pair<V> y = TwoProduct(D(), u.x, c0);
      return {y.hi, hn::Add(y.lo, rest)};
    } else {
      return {hn::Mul(u.x, c0), rest};
    }
  }
};

template <class Function, ErfInvTier kTier, class D, class V, size_t K>
HWY_INLINE void ErfInvFine(D d, const ErfInvPoint<V> (&u)[K], Pair<V> (&y)[K]) {
  constexpr uint64_t kRowBytes = sizeof(Function::kRows[0]);
  constexpr uint64_t kOctave = kRowBytes << kErfInvBits;  // the lowest bit of the exponent
  constexpr int kShift = 53 - std::bit_width(kOctave);
  constexpr uint64_t kHalf = uint64_t{1} << (51 - kErfInvBits);  // of an interval
  constexpr uint64_t kExponent = 1023 - kErfInvOctaves - (Function::kUnit < 1);
  using Offsets = RowOffsets<kRowBytes, D, kExponent * kOctave + (kHalf >> kShift)>;
  Offsets at[K];
  ErfInvProduct<Function, kTier, D, Offsets> parts[K];
#pragma GCC unroll 8
  for (size_t k = 0; k < K; ++k) {
    const auto middle = hn::OrAnd(SetBits(d, kHalf), Bits(d, u[k].q), SetBits(d, -2 * kHalf));
    at[k].SetBytes(ShiftBitsRight<kShift>(d, FromBits(d, middle)));
    parts[k].at = &at[k];
    parts[k].t = Function::Distance(d, u[k], FromBits(d, middle));
  }
  if constexpr (HWY_TARGET == HWY_SSE4) {  // the processor finds what is independent by itself
    for (size_t k = 0; k < K; ++k) {
      parts[k].Reduce(u[k]);
      parts[k].Evaluate();
      y[k] = parts[k].Result(u[k]);
    }
  } else {
    InTurn(parts, y, u);
  }
}

// Whether some q is too small for the table of G.
template <class D, class V, size_t K>
HWY_INLINE bool AnyTail(D d, const ErfInvArgument<V> (&u)[K]) {
  V least = u[0].q;
  for (size_t k = 1; k < K; ++k) least = hn::Min(least, u[k].q);
  return !hn::AllFalse(d, hn::Lt(least, hn::Set(d, kErfInvLeast)));
}

// y where q is less than the table of G serves, `y` as it is elsewhere.
template <class Function, class D, class V>
HWY_NOINLINE Pair<V> ErfInvTail(D d, ErfInvArgument<V> u, Pair<V> y) {
  const V one = hn::Set(d, 1.0);
  const auto serves = hn::Ge(u.q, hn::Set(d, kErfInvLeast));
  const V q[1] = {hn::Min(u.q, hn::Set(d, kErfInvLeast))};
  LogReduced<D> reduced[1];
  LogReduce<NaturalLog>(d, q, reduced);
  const Pair<V> p[1] = {
      TwoProduct(d, hn::Sub(reduced[0].m, reduced[0].row.a), reduced[0].row.factor)};
  Pair<V> sum[1];
  LogPair<NaturalLog>(d, reduced, p, sum);
  const Pair<V> log = FastTwoSum(hn::Neg(sum[0].hi), hn::Neg(sum[0].lo));

  const V v = hn::Sqrt(log.hi);
  const V v_rest = hn::Div(hn::Add(Remainder(d, log.hi, v, v), log.lo), hn::Add(v, v));
  const V s = hn::Div(one, v);
  const V s_rest = hn::Mul(hn::Sub(Remainder(d, one, s, v), hn::Mul(s, v_rest)), s);

  // The sum ends in the number of 128ths, rounded to nearest: that of the middle's left.
  const V half = hn::Set(d, 0.5 / 128), shifter = hn::Set(d, 0x1.8p45);
  const V shifted = hn::Add(hn::Sub(s, half), shifter);
  const V middle = hn::Add(hn::Sub(shifted, shifter), half);
  using Offsets = RowOffsets<sizeof(kErfInvTail[0][0]), D>;
  const Offsets at(d, hn::Sub(Bits(d, shifted), SetBits(d, kErfInvTailFirst)));
  const V t = hn::Add(hn::Sub(s, middle), s_rest), t2 = hn::Mul(t, t);
  const auto r0 = LoadRows4(d, &kErfInvTail[0][0][0], at);
  const auto r1 = LoadRows4(d, &kErfInvTail[1][0][0], at);
  const auto r2 = LoadRows4(d, &kErfInvTail[2][0][0], at);
  const auto r3 = LoadRows4(d, &kErfInvTail[3][0][0], at);
  const auto pair = [&](V low, V high) HWY_ATTR { return hn::Add(low, hn::Mul(high, t)); };
  V rest = pair(r3.a, r3.b);
  rest = hn::Add(pair(r2.c, r2.d), hn::Mul(t2, rest));
  rest = hn::Add(pair(r2.a, r2.b), hn::Mul(t2, rest));
  rest = hn::Add(pair(r1.c, r1.d), hn::Mul(t2, rest));
  rest = hn::Add(pair(r1.a, r1.b), hn::Mul(t2, rest));
  rest = hn::Add(r0.d, hn::Mul(t, rest));
  const Pair<V> linear = TwoProduct(d, r0.c, t);
  Pair<V> less = FastTwoSum(r0.a, linear.hi);
  less.lo = hn::Add(less.lo, hn::Add(hn::Add(r0.b, linear.lo), hn::Mul(t2, rest)));

  const Pair<V> product = TwoProduct(d, v, less.hi);
  const Pair<V> head = FastTwoSum(v, hn::Neg(product.hi));
  const V tail = hn::Sub(hn::Mul(v_rest, hn::Sub(one, less.hi)), hn::Mul(v, less.lo));
  Pair<V> r = {head.hi, hn::Add(head.lo, hn::Sub(tail, product.lo))};
  if constexpr (Function::kFactor != 1) {
    r = Mul(d, r, Pair<V>{hn::Set(d, Function::kFactor), hn::Set(d, Function::kFactorRest)});
  }
  r = FastTwoSum(r.hi, r.lo);
  const V sign = hn::And(u.x, hn::Set(d, -0.0));
  return {hn::IfThenElse(serves, y.hi, hn::Or(r.hi, sign)),
          hn::IfThenElse(serves, y.lo, hn::Xor(r.lo, sign))};
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFINV_INL_H_
