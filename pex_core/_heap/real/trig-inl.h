// What the double-precision trigonometric kernels share: the loop with its two ways, and the parts
// of the formulas.
//
// Most arguments have usual exponents: one test of a group's joined exponent bits says so, and the
// formula is computed without further ado. Groups with a tiny, large or special argument go through
// Wide, vector by vector: tiny arguments have their limit as result, large ones are reduced
// exactly, and the lanes are blended, so that no lane's result depends on its neighbours.

#include <cstdint>
#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/trig_polynomials.h"
#include "pex_core/_heap/real/trig_rare.h"
#include "pex_core/_heap/real/trig_reduce-inl.h"
#include "pex_core/_heap/real/trig_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_TRIG_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_TRIG_INL_H_
#undef PEX_CORE__HEAP_REAL_TRIG_INL_H_
#else
#define PEX_CORE__HEAP_REAL_TRIG_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

enum class Wave { kSine, kCosine };

inline constexpr double kShifter = 0x1.8p52;  // leaves the rounded integer in the low bits

// Magnitudes from 2^kFirst below 2^(kFirst + 2^kLog2Count): their exponents less the first have
// only the lowest bits, whatever the sign.
template <int kFirst, int kLog2Count>
struct UsualExponents {
  static constexpr uint32_t kMask = (0x7FFu << (20 + kLog2Count)) & 0x7FFFFFFF;
  static constexpr uint32_t kOffset = uint32_t{1023 + kFirst} << 20;
  static constexpr double kLimit =
      __builtin_bit_cast(double, (uint64_t{kOffset} << 32) + (uint64_t{1} << (52 + kLog2Count)));
  template <class D, size_t K>
  static HWY_INLINE bool All(D d, const VecOf<D> (&x)[K]) {
    const hn::Repartition<float, D> d32;
    const auto above = [&](size_t k) HWY_ATTR {
      const auto high = HighWords(d, x[k], x[k + 1 < K ? k + 1 : k]);
      return hn::Sub(Bits(d32, high), SetBits(d32, kOffset));
    };
    auto joined = above(0);
    for (size_t k = 2; k < K; k += 2) joined = hn::Or(joined, above(k));
    return !HasAnyBit(joined, SetBits(d32, kMask));
  }
};

// A trigonometric kernel F has
//   Usual                      its usual exponents;
//   Group(d, x, r...)          results of usual lanes for arrays of vectors;
//   Wide(d, x, r...)           results of any finite lanes;
//   kUnroll, kRestUnroll       vectors of its groups, and optional: of those for what these leave.
template <class F>
struct dTrigWide : Kernel<double> {
  using Rarity = RareAbove<double, 0x7FEFFFFF>;  // infinities and NaN
  static constexpr int kResults = F::kResults;
  template <class... R>
  static HWY_INLINE int Rare(double x, R... r) {
    return TrigRare(x, r...);
  }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V in[1] = {x};
    V r[1];
    F::Wide(d, in, r);
    return r[0];
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, V x, V& r1, V& r2) {
    const V in[1] = {x};
    V out1[1], out2[1];
    F::Wide(d, in, out1, out2);
    r1 = out1[0];
    r2 = out2[0];
  }
};

// Elements i to end: some vectors at a time, rare lanes and the last elements vector by vector.
template <class F, class C>
HWY_NOINLINE void RunWide(C call, size_t i, size_t end) {
  using K = dTrigWide<F>;
  const hn::ScalableTag<double> d;
  using V = VecOf<decltype(d)>;
  constexpr size_t kVectors = HWY_TARGET == HWY_AVX3 ? 4 : 2;
  const size_t lanes = hn::Lanes(d);
  while (i < end) {
    if (i + kVectors * lanes <= end) {
      V x[kVectors], r[kVectors];
      for (size_t k = 0; k < kVectors; ++k) x[k] = call.a.Load(d, i + k * lanes);
      if (!AnyRare<K, kVectors>(d, x, x)) [[likely]] {
        if constexpr (F::kResults == 2) {
          V r2[kVectors];
          F::Wide(d, x, r, r2);
          for (size_t k = 0; k < kVectors; ++k) hn::StoreU(r2[k], d, call.r2 + i + k * lanes);
        } else {
          F::Wide(d, x, r);
        }
        for (size_t k = 0; k < kVectors; ++k) hn::StoreU(r[k], d, call.r1 + i + k * lanes);
        i += kVectors * lanes;
        continue;
      }
    }
    const size_t count = HWY_MIN(lanes, end - i);
    CarefulVector<K>(call, i, count);
    i += lanes;
  }
}

// The results in place of the arguments; false, with arguments of no more use, when they are not
// all usual.
template <class F, class D, class V, size_t kVectors>
HWY_INLINE bool TryUsual(D d, V (&x)[kVectors], V (&y)[kVectors]) {
  if (!F::Usual::All(d, x)) [[unlikely]]
    return false;
  const auto group = [&]() HWY_ATTR {
    if constexpr (F::kResults == 2) {
      return F::Group(d, x, x, y);
    } else {
      return F::Group(d, x, x);
    }
  };
  if constexpr (std::is_void_v<decltype(group())>) {
    group();
    return true;
  } else {
    return group();
  }
}

// kVectors vectors from the element i on, the last of `count` elements and, so that it ends with
// the arrays, so many `back`; false, with nothing done, when they are not all usual.
template <class F, size_t kVectors, class C>
HWY_INLINE bool UsualVectors(const C& call, size_t i, size_t count, size_t back = 0) {
  using K = dTrigWide<F>;
  const typename K::Tag d;
  const size_t lanes = hn::Lanes(d);
  VecOf<typename K::Tag> x[kVectors], y[kVectors];
  const auto at = [=](size_t k) HWY_ATTR { return i + k * lanes - (k + 1 < kVectors ? 0 : back); };
  for (size_t k = 0; k < kVectors; ++k) {
    x[k] = LoadAtEnd<K>(call.a, at(k), k + 1 < kVectors ? lanes : count);
  }
  if (!TryUsual<F>(d, x, y)) [[unlikely]]
    return false;
  for (size_t k = 0; k < kVectors; ++k) {
    StoreResults<K>(d, call, at(k), k + 1 < kVectors ? lanes : count, x[k],
                    F::kResults == 2 ? y[k] : x[k]);
  }
  return true;
}

// The parts of a call, as those of the drivers: functions that end with calls of one another.
template <class F>
struct TrigRun {
  using K = dTrigWide<F>;
  static constexpr size_t LeastGroup() {
    if constexpr (requires { F::kRestUnroll; }) {
      return F::kRestUnroll;
    } else {
      return F::kUnroll;
    }
  }
  static constexpr size_t kLeast = LeastGroup();
  static HWY_INLINE size_t Lanes() { return hn::Lanes(typename K::Tag()); }

  using OfKernel = K;
  static constexpr size_t kLanes = hn::MaxLanes(typename K::Tag());
  template <class D, class V, size_t kVectors>
  static HWY_INLINE bool Try(D d, V (&x)[kVectors], V (&y)[kVectors]) {
    return TryUsual<F>(d, x, y);
  }

  static HWY_NOINLINE int Uncommon(size_t end, const double* a, double* r1, double* r2, size_t i,
                                   const char* name) {
    RunWide<F>(CallOn<K>(name, a, r1, r2), i, end);
    return 0;
  }

  // The last vector, from i on.
  static HWY_NOINLINE int One(size_t end, const double* a, double* r1, double* r2, size_t i,
                              const char* name) {
    const size_t count = end - i;
    if (count - 1 >= Lanes()) __builtin_unreachable();
    if (!UsualVectors<F, 1>(CallOn<K>(name, a, r1, r2), i, count)) [[unlikely]]
      return Uncommon(end, a, r1, r2, i, name);
    return 0;
  }

  // More than a vector, in pairs and three at the end: whole ones, the last of which ends where the
  // arrays end and computes elements of the one before it once more.
  static HWY_NOINLINE int Few(size_t end, const double* a, double* r1, double* r2, size_t i,
                              const char* name) {
    const auto call = CallOn<K>(name, a, r1, r2);
    const size_t lanes = Lanes(), last = end - lanes;
    if (i >= last) __builtin_unreachable();
    do {
      const size_t next = i + lanes;
      if (next < last && last <= next + lanes) {
        if (!UsualVectors<F, 3>(call, i, lanes, next + lanes - last)) [[unlikely]]
          return Uncommon(end, a, r1, r2, i, name);
        return 0;
      }
      if (!UsualVectors<F, 2>(call, i, lanes, next - HWY_MIN(next, last))) [[unlikely]]
        return Uncommon(end, a, r1, r2, i, name);
      i = next + lanes;
    } while (i < last);
    return 0;
  }

  static HWY_NOINLINE int Many(size_t end, const double* a, double* r1, double* r2,
                               const char* name) {
    const auto call = CallOn<K>(name, a, r1, r2);
    const size_t lanes = Lanes(), group = F::kUnroll * lanes;
    size_t i = 0;
    for (; i + group <= end; i += group) {
      if (!UsualVectors<F, F::kUnroll>(call, i, lanes)) [[unlikely]]
        RunWide<F>(call, i, i + group);
    }
    if constexpr (kLeast != F::kUnroll) {
      for (const size_t rest = kLeast * lanes; i + rest <= end; i += rest) {
        if (!UsualVectors<F, kLeast>(call, i, lanes)) [[unlikely]]
          RunWide<F>(call, i, i + rest);
      }
    }
    if (i == end) return 0;
    return end - i > lanes ? Few(end, a, r1, r2, i, name) : One(end, a, r1, r2, i, name);
  }
};

// Half: as in Run::All.
template <class F, class Half>
HWY_INLINE int RunTrig(int32_t n, const double* a, double* r1, double* r2, const char* name) {
  using Run = TrigRun<F>;
  if (n <= 0) [[unlikely]]
    return 0;
  const size_t end = static_cast<uint32_t>(n), lanes = Run::Lanes();
  if constexpr (!std::is_void_v<Half>) {
    using Last = HalfRun<Half, const double*, double*, double*>;
    if (end <= Half::kLanes) return Last::One(end, a, r1, r2, 0, name);
  }
  if (end <= lanes) return Run::One(end, a, r1, r2, 0, name);
  if (end < Run::kLeast * lanes) return Run::Few(end, a, r1, r2, 0, name);
  return Run::Many(end, a, r1, r2, name);
}

#define PEX_TRIG(body, F)                                              \
  using body##Run = TrigRun<F>;                                        \
  int body(int32_t n, const double* a, double* r) {                    \
    return RunTrig<F, PEX_HALF(body)>(n, a, r, r, _PEX_THISFUNC_NAME); \
  }
#define PEX_TRIG_TWO(body, F)                                            \
  using body##Run = TrigRun<F>;                                          \
  int body(int32_t n, const double* a, double* r1, double* r2) {         \
    return RunTrig<F, PEX_HALF(body)>(n, a, r1, r2, _PEX_THISFUNC_NAME); \
  }

// x - n p where n p is exact.
template <class V, size_t K>
HWY_INLINE void SubExactProducts(const V (&x)[K], const V (&n)[K], V p, V (&r)[K]) {
  for (size_t k = 0; k < K; ++k) r[k] = SubExactProduct(n[k], p, x[k]);
}

// x - n p rounded once, if n p is not exact: n times `upper` is, and what that leaves of x, and n
// times the rest of p.
template <class D, class V, size_t K>
HWY_INLINE void SubProductsExactly(D d, const V (&x)[K], const V (&n)[K], double p,
                                   [[maybe_unused]] double upper, V (&r)[K]) {
#if HWY_TARGET == HWY_SSE4
  SubExactProducts(x, n, hn::Set(d, upper), r);
  SubExactProducts(r, n, hn::Set(d, p - upper), r);
#else
  SubExactProducts(x, n, hn::Set(d, p), r);
#endif
}

// The lanes of some vectors by magnitude, and the arguments of those in between, 0 in the others.
// Large are those of which neither x nor x + shift is below the limit.
template <class D, size_t K>
struct TrigLanes {
  MaskOf<D> tiny[K], large[K];
  VecOf<D> x[K];
  bool any_large;
};

template <class D, class V, size_t K>
HWY_INLINE TrigLanes<D, K> SortLanes(D d, const V (&x)[K], double least, double limit,
                                     double shift = 0) {
  TrigLanes<D, K> lanes;
  for (size_t k = 0; k < K; ++k) {
    lanes.tiny[k] = MagnitudeBelow(d, x[k], least);
    lanes.large[k] = hn::Not(MagnitudeBelow(d, x[k], limit));
    if (shift != 0) {
      const V shifted = hn::Add(x[k], hn::Set(d, shift));
      lanes.large[k] = hn::AndNot(MagnitudeBelow(d, shifted, limit), lanes.large[k]);
    }
    lanes.x[k] = Selected(hn::IfThenZeroElse(hn::Or(lanes.tiny[k], lanes.large[k]), x[k]));
  }
  auto any = lanes.large[0];
  for (size_t k = 1; k < K; ++k) any = hn::Or(any, lanes.large[k]);
  lanes.any_large = !hn::AllFalse(d, any);
  return lanes;
}

// The large lanes reduced; harmless arguments in the others.
template <bool kBrief = false, class D, class V>
HWY_INLINE ReducedByPiOver2<D> ReduceLargeLanes(D d, MaskOf<D> large, V x) {
  return ReduceLarge<kBrief>(d, Selected(hn::IfThenElse(large, x, hn::Set(d, 1.0))));
}

// x with its sign flipped where the bit `kBit` of `bits` is set.
template <int kBit, class D, class V>
HWY_INLINE V FlipSign(D d, V x, BitsOf<D> bits) {
  const auto sign = hn::ShiftLeft<63 - kBit>(bits);
  if constexpr (kBit == 0) {
    return FromBits(d, hn::Xor(Bits(d, x), sign));
  } else {
    return FromBits(d, hn::Xor(Bits(d, x), hn::And(sign, SetBits(d, uint64_t{1} << 63))));
  }
}

// For the kernels of one polynomial: the sine of y and a sign in the lowest bit stand for the sine
// of x, y for r or pi/2 - |r| as the quadrant is even or odd.
template <class D>
struct HalfTurn {
  VecOf<D> y;
  BitsOf<D> sign;
};

template <class D>
HWY_INLINE HalfTurn<D> SineOfQuadrant(D d, const ReducedByPiOver2<D>& u, BitsOf<D> quadrant) {
  const auto is_odd = hn::TestBit(quadrant, SetBits(d, 1));
  const VecOf<D> half = hn::Set(d, 0x1.921fb54442d18p0);
  const VecOf<D> other = hn::Sub(half, hn::Abs(hn::Add(u.r.hi, u.r.lo)));
  return {hn::IfThenElse(hn::RebindMask(d, is_odd), other, u.r.hi), hn::ShiftRight<1>(quadrant)};
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_INL_H_
