// The drivers of elementwise functions: groups of vectors with one test for rare lanes, rare lanes
// one by one in order, tails by masks, results over arguments, error reports.
//
// A kernel is a struct derived from Kernel<T, Compute> with
//   Rarity                 a test of bits-inl.h for the lanes that Main does not handle, or instead
//   IsRare(d, x...)        their mask; beside a Rarity it has the last word on a vector.
//                          Comparisons with NaN would raise invalid, so NaNs are found in the bits
//                          or by Eq;
//   MayBeRare(d, x, y)     optional: a cheaper mask that covers IsRare and decides for a group; its
//                          masks are tested together and not used by lane;
//   AnyMayBeRare(d, x)     optional, for one argument: the same of an array of vectors, at once;
//   AnyOutside(d, x, y)    optional, the same for two arguments;
//   Main(d, x...)          the result of common lanes; (d, x, r1, r2) where there are two results;
//   or MainGroup(d, x..., r)  the same for arrays of several vectors, step by step for all of them:
//                          long chains of dependent operations then overlap; r may be an x. Besides
//                          whole groups it gets one, two or three of them;
//   or TryGroup(d, x, y, r)   the same for two arguments, with a test of its own: false, with
//                          results of no use, when IsRare would name some lane. For kernels that
//                          know their rare lanes by what they compute;
//   Rare(x..., T* r...)    a scalar routine: the result of one rare element; returns its status
//                          code.
// A kernel whose Main covers a part of the domain that is left often has a second one, K::Wide, for
// the whole domain but rare lanes: the vectors of a group with a lane beyond Main's part go through
// it. It gives the lanes of Main's part the same bits.
// In HWY_NAMESPACE a kernel K gets its entry's body by PEX_UNARY(double, dExp_50, dExpLA) and so
// on.

#include <cstdint>
#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/export.h"
#include "pex_core/errors/pex_errors.h"

#if defined(PEX_CORE__KERNEL_ELEMENTWISE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__KERNEL_ELEMENTWISE_INL_H_
#undef PEX_CORE__KERNEL_ELEMENTWISE_INL_H_
#else
#define PEX_CORE__KERNEL_ELEMENTWISE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// On AVX-512, which elements go into a vector of AVX2's size, where they fit it: none, those of a
// call, or also those that a call has beyond one whole vector. The units that divide, take roots
// and gather need half the time for it; but some formulas of AVX-512 are the shorter ones, and two
// vectors in steps often take less than one after the other.
enum class HalfVectors { kNever, kAlone, kAtEnd };

// What a kernel says of itself. Compute is the type that a vector register holds while it computes:
// a single-precision kernel that computes in double works on as many elements as there are doubles.
template <typename Element, typename Compute = Element>
struct Kernel {
  using T = Element;
  using Tag = hn::Rebind<Element, hn::ScalableTag<Compute>>;
  static constexpr int kArguments = 1;
  static constexpr int kResults = 1;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 6 : 4;  // vectors per group
  static constexpr T kHarmless = T(1);                            // stands in for rare lanes
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAlone;
};

// For long chains of operations with a division at their end: groups large enough to hide the ends,
// and smaller ones (kRestUnroll, optional in a kernel) for what is left and for short calls.
template <typename Element, typename Compute = Element>
struct LargeGroups : Kernel<Element, Compute> {
  static constexpr int kUnroll = 8;
  static constexpr int kRestUnroll = HWY_TARGET == HWY_AVX3 ? 2 : 4;
};

// The mask of the first `count` lanes, 0 < count < Lanes(d).
template <class D>
HWY_INLINE MaskOf<D> FirstLanes(D d, size_t count) {
#if HWY_TARGET == HWY_AVX2
  alignas(64) static constexpr int32_t kOnesBeforeZeros[16] = {-1, -1, -1, -1, -1, -1, -1, -1};
  const hn::Repartition<int32_t, D> d32;
  const size_t words = count * (sizeof(hn::TFromD<D>) / sizeof(int32_t));
  return hn::MaskFromVec(hn::BitCast(d, hn::LoadU(d32, kOnesBeforeZeros + 8 - words)));
#else
  return hn::FirstN(d, count);
#endif
}

#if HWY_TARGET == HWY_AVX3
// The lanes of a mask from memory, the others from v.
HWY_INLINE hn::Vec512<double> LoadOver(hn::Vec512<double> v, hn::Mask512<double> mask,
                                       const double* from) {
  return {_mm512_mask_loadu_pd(v.raw, mask.raw, from)};
}
HWY_INLINE hn::Vec512<float> LoadOver(hn::Vec512<float> v, hn::Mask512<float> mask,
                                      const float* from) {
  return {_mm512_mask_loadu_ps(v.raw, mask.raw, from)};
}
HWY_INLINE hn::Vec256<float> LoadOver(hn::Vec256<float> v, hn::Mask256<float> mask,
                                      const float* from) {
  return {_mm256_mask_loadu_ps(v.raw, mask.raw, from)};
}
#endif

// The first `count` elements, 0 < count < Lanes(d), and `fill` in the other lanes. Reads no
// further.
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE VecOf<D> LoadFirst(D d, const T* HWY_RESTRICT from, size_t count, T fill) {
#if HWY_TARGET == HWY_SSE4  // its masked load reads the whole vector
  (void)d;
  // The array may be at any address.
  const auto at = [from](size_t i) HWY_ATTR {
    T x;
    hwy::CopyBytes<sizeof(T)>(from + i, &x);
    return x;
  };
  if constexpr (sizeof(T) == 8) {
    return VecOf<D>{_mm_set_pd(fill, at(0))};
  } else {
    return VecOf<D>{_mm_set_ps(fill, count > 2 ? at(2) : fill, count > 1 ? at(1) : fill, at(0))};
  }
#else
  const auto mask = FirstLanes(d, count);
#if HWY_TARGET == HWY_AVX2
  return hn::Or(hn::MaskedLoad(mask, d, from), hn::IfThenZeroElse(mask, hn::Set(d, fill)));
#else
  return LoadOver(hn::Set(d, fill), mask, from);
#endif
#endif
}

// The same with the first element in the other lanes. A number the same for all kernels would be
// rare for one of them, or beyond its Main's part, and its short calls would all take the long way.
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE VecOf<D> LoadFirst(D d, const T* HWY_RESTRICT from, size_t count) {
  T first;
  hwy::CopyBytes<sizeof(T)>(from, &first);  // the array may be at any address
  return LoadFirst(d, from, count, first);
}

// An argument or result array; a scalar argument is the same in every lane.
template <typename T>
struct ArraySource {
  const T* p;
  template <class D>
  HWY_INLINE VecOf<D> Load(D d, size_t i) const {
    return hn::LoadU(d, p + i);
  }
  template <class D>
  HWY_INLINE VecOf<D> LoadTail(D d, size_t i, size_t count) const {
    return LoadFirst(d, p + i, count);
  }
};

template <typename T>
struct ScalarSource {
  T value;
  template <class D>
  HWY_INLINE VecOf<D> Load(D d, size_t) const {
    return hn::Set(d, value);
  }
  template <class D>
  HWY_INLINE VecOf<D> LoadTail(D d, size_t, size_t) const {
    return hn::Set(d, value);
  }
};

// One call: where the arguments come from and the results go. One-argument kernels have the same
// source twice, one-result kernels the same array twice.
template <class K, class A, class B>
struct Call {
  using T = typename K::T;
  A a;
  B b;
  const T* args;  // first argument array, for error records
  T* r1;
  T* r2;
  const char* name;
};

template <class K, class D>
inline constexpr bool HasMainGroup = requires(D d, VecOf<D> (&v)[1]) {
  K::MainGroup(d, v, v);
};
template <class K, class D>
inline constexpr bool HasMainGroup2 = requires(D d, VecOf<D> (&v)[1]) {
  K::MainGroup(d, v, v, v);
};
template <class K, class D>
inline constexpr bool HasTryGroup = requires(D d, VecOf<D> (&v)[1]) {
  K::TryGroup(d, v, v, v);
};
// Whether several vectors are computed step by step, so that they take less than one by one.
template <class K, class D>
inline constexpr bool InSteps = HasMainGroup<K, D> || HasMainGroup2<K, D> || HasTryGroup<K, D>;
template <class K>
inline constexpr bool HasRarity = requires {
  typename K::Rarity;
};
template <class K, class D>
inline constexpr bool HasIsRare = requires(D d, VecOf<D> x) {
  K::IsRare(d, x);
};

template <class K, class D>
inline constexpr bool HasMayBeRare = requires(D d, VecOf<D> v) {
  K::MayBeRare(d, v, v);
};

template <class K, class D, size_t N>
inline constexpr bool HasAnyMayBeRare1 = requires(D d, VecOf<D> (&v)[N]) {
  K::AnyMayBeRare(d, v);
};

template <class K, class D, size_t N>
inline constexpr bool HasAnyOutside = requires(D d, VecOf<D> (&v)[N]) {
  K::AnyOutside(d, v, v);
};

// A Rarity may tell its lanes, and join keys, its own way: Lanes(d, x); Joined(d, key, x), Any(d,
// key).
template <class K, class D>
inline constexpr bool HasOwnLanes = requires(D d, VecOf<D> x) {
  K::Rarity::Lanes(d, x);
};
template <class K, class D>
inline constexpr bool HasOwnJoin = requires(D d, VecOf<D> x) {
  K::Rarity::Any(d, K::Rarity::Joined(d, K::Rarity::Key(d, x), x));
};

template <class K, class D, class V>
HWY_INLINE MaskOf<D> RareLanes(D d, V x, V y) {
  if constexpr (K::kArguments == 2) {
    return K::IsRare(d, x, y);
  } else if constexpr (HasOwnLanes<K, D> && !HasIsRare<K, D>) {
    return K::Rarity::Lanes(d, x);
  } else if constexpr (HasRarity<K> && !HasIsRare<K, D>) {
    return LanesAbove(d, K::Rarity::Key(d, x), K::Rarity::kLimit);
  } else {
    return K::IsRare(d, x);
  }
}

template <class K>
inline constexpr bool HasWide = requires {
  typename K::Wide;
};

template <class K>
inline constexpr bool HasRestUnroll = requires {
  K::kRestUnroll;
};

// On AVX-512 alone: the units of AVX2 that shuffle are busy, and its maximum is of 32 bits anyway.
template <class K, class D>
inline constexpr bool HasWordRarity = false;
#if HWY_TARGET == HWY_AVX3
template <class K, class D>
requires(HasRarity<K> && sizeof(hn::TFromD<D>) == 8) inline constexpr bool HasWordRarity<K, D> =
    !std::is_void_v<typename OfHighWords<typename K::Rarity>::Type>;
#endif

// Whether a group of vectors has a rare lane.
template <class K, int kVectors, class D, class V>
HWY_INLINE bool AnyRare(D d, const V* x, const V* y) {
  if constexpr (HasAnyMayBeRare1<K, D, kVectors>) {
    return K::AnyMayBeRare(d, *reinterpret_cast<const V(*)[kVectors]>(x));
  } else if constexpr (HasAnyOutside<K, D, kVectors>) {
    return K::AnyOutside(d, *reinterpret_cast<const V(*)[kVectors]>(x),
                         *reinterpret_cast<const V(*)[kVectors]>(y));
  } else if constexpr (HasOwnJoin<K, D>) {
    auto key = K::Rarity::Key(d, x[0]);
    for (int k = 1; k < kVectors; ++k) key = K::Rarity::Joined(d, key, x[k]);
    return K::Rarity::Any(d, key);
  } else if constexpr (kVectors % 2 == 0 && HasWordRarity<K, D>) {
    // Doubles in pairs of vectors.
    using Rarity = typename OfHighWords<typename K::Rarity>::Type;
    const hn::Repartition<float, D> d32;
    auto key = Rarity::Key(d32, HighWords(d, x[0], x[1]));
    for (int k = 2; k < kVectors; k += 2) {
      key = JoinKeys(d32, key, Rarity::Key(d32, HighWords(d, x[k], x[k + 1])));
    }
    return !hn::AllFalse(d32, KeyAbove(d32, key, Rarity::kLimit));
  } else if constexpr (HasRarity<K>) {
    auto key = K::Rarity::Key(d, x[0]);
    for (int k = 1; k < kVectors; ++k) key = JoinKeys(d, key, K::Rarity::Key(d, x[k]));
    return !hn::AllFalse(d, KeyAbove(d, key, K::Rarity::kLimit));
  } else if constexpr (HasMayBeRare<K, D>) {
    auto rare = K::MayBeRare(d, x[0], y[0]);
    for (int k = 1; k < kVectors; ++k) rare = hn::Or(rare, K::MayBeRare(d, x[k], y[k]));
    return !hn::AllFalse(d, rare);
  } else {
    auto rare = RareLanes<K>(d, x[0], y[0]);
    for (int k = 1; k < kVectors; ++k) rare = hn::Or(rare, RareLanes<K>(d, x[k], y[k]));
    return !hn::AllFalse(d, rare);
  }
}

template <class K, class D, class V>
HWY_INLINE void Compute(D d, V x, V y, V& r1, V& r2) {
  if constexpr (HasMainGroup<K, D>) {
    V in[1] = {x}, out[1];
    K::MainGroup(d, in, out);
    r1 = out[0];
  } else if constexpr (HasMainGroup2<K, D>) {
    V in1[1] = {x}, in2[1] = {y}, out[1];
    K::MainGroup(d, in1, in2, out);
    r1 = out[0];
  } else if constexpr (HasTryGroup<K, D>) {
    V in1[1] = {x}, in2[1] = {y}, out[1] = {r1};
    K::TryGroup(d, in1, in2, out);
    r1 = out[0];
  } else if constexpr (K::kResults == 2) {
    K::Main(d, x, r1, r2);
  } else if constexpr (K::kArguments == 2) {
    r1 = K::Main(d, x, y);
  } else {
    r1 = K::Main(d, x);
  }
}

template <class K, typename T>
HWY_INLINE int RareElement(T x, T y, T* r1, T* r2) {
  if constexpr (K::kResults == 2) {
    return K::Rare(x, r1, r2);
  } else if constexpr (K::kArguments == 2) {
    return K::Rare(x, y, r1);
  } else {
    return K::Rare(x, r1);
  }
}

// A vector of an argument, of `count` elements.
template <class K, class Source>
HWY_INLINE VecOf<typename K::Tag> LoadAtEnd(const Source& from, size_t i, size_t count) {
  const typename K::Tag d;
  return count == hn::Lanes(d) ? from.Load(d, i) : from.LoadTail(d, i, count);
}

template <class K, class D, class C, class V>
HWY_INLINE void StoreResults(D d, const C& call, size_t i, size_t count, V v1, V v2) {
  if (count == hn::Lanes(d)) {
    hn::StoreU(v1, d, call.r1 + i);
    if constexpr (K::kResults == 2) hn::StoreU(v2, d, call.r2 + i);
  } else {
    const auto mask = FirstLanes(d, count);
    hn::BlendedStore(v1, mask, d, call.r1 + i);
    if constexpr (K::kResults == 2) hn::BlendedStore(v2, mask, d, call.r2 + i);
  }
}

// One vector that may have rare lanes, or be the last, of `count` elements. Its arguments are kept,
// for its results may overwrite them.
template <class K, class C>
HWY_NOINLINE void CarefulVector(C call, size_t i, size_t count) {
  using T = typename K::T;
  const typename K::Tag d;
  auto x = LoadAtEnd<K>(call.a, i, count);
  auto y = x;
  if constexpr (K::kArguments == 2) y = LoadAtEnd<K>(call.b, i, count);
  // What fills the lanes beyond the end can be rare, and is disarmed too.
  const auto rare = RareLanes<K>(d, x, y);
  const bool any = !hn::AllFalse(d, rare);

  HWY_ALIGN T xs[hn::MaxLanes(typename K::Tag())];
  HWY_ALIGN T ys[hn::MaxLanes(typename K::Tag())];
  if (any) {
    const auto harmless = hn::Set(d, K::kHarmless);
    hn::Store(x, d, xs);
    x = Selected(hn::IfThenElse(rare, harmless, x));
    if constexpr (K::kArguments == 2) {
      hn::Store(y, d, ys);
      y = Selected(hn::IfThenElse(rare, harmless, y));
    }
  }
  auto v1 = x, v2 = x;
  Compute<K>(d, x, y, v1, v2);
  StoreResults<K>(d, call, i, count, v1, v2);
  if (!any) return;

  uint8_t bits[8] = {};
  hn::StoreMaskBits(d, rare, bits);
  for (size_t lane = 0; lane < count; ++lane) {
    if (!(bits[lane / 8] >> (lane % 8) & 1)) continue;
    const T arg1 = Single(xs[lane]);
    const T arg2 = K::kArguments == 2 ? Single(ys[lane]) : arg1;
    T* const r1 = call.r1 + i + lane;
    T* const r2 = call.r2 + i + lane;
    if (const int code = RareElement<K>(arg1, arg2, r1, r2)) {
      ReportError<T>(code, static_cast<int32_t>(i + lane), call.args, {arg1, arg2, r1, r2},
                     call.name);
    }
  }
}

// The results of common lanes in place of the arguments; false, with arguments of no more use, when
// some lane is rare.
template <class K, class D, class V, size_t kVectors>
HWY_INLINE bool TryVectors(D d, V (&x)[kVectors], V (&y)[kVectors]) {
  if constexpr (HasTryGroup<K, D>) {
    if (!K::TryGroup(d, x, y, x)) [[unlikely]]
      return false;
  } else if (AnyRare<K, kVectors>(d, x, y)) [[unlikely]] {
    return false;
  } else if constexpr (HasMainGroup<K, D>) {
    K::MainGroup(d, x, x);
  } else if constexpr (HasMainGroup2<K, D>) {
    K::MainGroup(d, x, y, x);
  } else {
    for (size_t k = 0; k < kVectors; ++k) {
      V v1 = x[k], v2 = x[k];
      Compute<K>(d, x[k], y[k], v1, v2);
      x[k] = v1;
      y[k] = v2;
    }
  }
  return true;
}

// One group of vectors; false, with nothing done, when some lane is rare.
template <class K, int kVectors, class C>
HWY_INLINE bool CommonGroup(const C& call, size_t i) {
  const typename K::Tag d;
  using V = VecOf<typename K::Tag>;
  const size_t lanes = hn::Lanes(d);
  V x[kVectors], y[kVectors];
  for (int k = 0; k < kVectors; ++k) {
    x[k] = call.a.Load(d, i + k * lanes);
    y[k] = K::kArguments == 2 ? call.b.Load(d, i + k * lanes) : x[k];
  }
  if (!TryVectors<K>(d, x, y)) [[unlikely]]
    return false;
  for (int k = 0; k < kVectors; ++k) {
    hn::StoreU(x[k], d, call.r1 + i + k * lanes);
    if constexpr (K::kResults == 2) hn::StoreU(y[k], d, call.r2 + i + k * lanes);
  }
  return true;
}

// One vector of `count` elements without rare lanes; false, with nothing done, when some lane is
// rare.
template <class K, class C>
HWY_INLINE bool CommonVector(const C& call, size_t i, size_t count) {
  const typename K::Tag d;
  VecOf<typename K::Tag> x[1] = {LoadAtEnd<K>(call.a, i, count)}, y[1] = {x[0]};
  if constexpr (K::kArguments == 2) y[0] = LoadAtEnd<K>(call.b, i, count);
  if (!TryVectors<K>(d, x, y)) [[unlikely]]
    return false;
  StoreResults<K>(d, call, i, count, x[0], y[0]);
  return true;
}

// The same for a whole vector whose arguments are taken already.
template <class K, class C, class V>
HWY_INLINE bool CommonVector(const C& call, size_t i, V x, V y) {
  const typename K::Tag d;
  V xs[1] = {x}, ys[1] = {y};
  if (!TryVectors<K>(d, xs, ys)) [[unlikely]]
    return false;
  StoreResults<K>(d, call, i, hn::Lanes(d), xs[0], ys[0]);
  return true;
}

// One vector of `count` elements that CommonVector has not taken.
template <class K, class C>
HWY_NOINLINE void UncommonVector(C call, size_t i, size_t count) {
  if constexpr (HasWide<K>) {
    if (!CommonVector<typename K::Wide>(call, i, count)) [[unlikely]]
      CarefulVector<typename K::Wide>(call, i, count);
  } else {
    CarefulVector<K>(call, i, count);
  }
}

// A group that CommonGroup has not taken.
template <class K, size_t kGroup, class C>
HWY_NOINLINE void UncommonGroup(C call, size_t i) {
  const size_t lanes = hn::Lanes(typename K::Tag());
  size_t k = 0;
  if constexpr (HasWide<K>) {
    constexpr size_t kVectors = HWY_MIN(kGroup, K::Wide::kUnroll);
    static_assert(kGroup % kVectors == 0);
    for (; k < kGroup; k += kVectors) {
      if (CommonGroup<typename K::Wide, kVectors>(call, i + k * lanes)) [[likely]]
        continue;
      for (size_t m = k; m < k + kVectors; ++m) {
        CarefulVector<typename K::Wide>(call, i + m * lanes, lanes);
      }
    }
  } else {
    for (; k < kGroup; ++k) CarefulVector<K>(call, i + k * lanes, lanes);
  }
}

// As CommonGroup: whole vectors, the last one from the element `last` on.
template <class K, size_t kVectors, class C>
HWY_INLINE bool CommonLast(const C& call, size_t i, size_t last) {
  const typename K::Tag d;
  const size_t lanes = hn::Lanes(d);
  VecOf<typename K::Tag> x[kVectors], y[kVectors];
  for (size_t k = 0; k < kVectors; ++k) {
    const size_t at = k + 1 < kVectors ? i + k * lanes : last;
    x[k] = call.a.Load(d, at);
    y[k] = K::kArguments == 2 ? call.b.Load(d, at) : x[k];
  }
  if (!TryVectors<K>(d, x, y)) [[unlikely]]
    return false;
  for (size_t k = 0; k < kVectors; ++k) {
    StoreResults<K>(d, call, k + 1 < kVectors ? i + k * lanes : last, lanes, x[k], y[k]);
  }
  return true;
}

// All whole groups from the element i on; where they end.
template <class K, int kGroup, class C>
HWY_INLINE size_t RunGroups(const C& call, size_t i, size_t end) {
  const size_t group = kGroup * hn::Lanes(typename K::Tag());
  for (; i + group <= end; i += group) {
    if (CommonGroup<K, kGroup>(call, i)) [[likely]]
      continue;
    UncommonGroup<K, kGroup>(call, i);
  }
  return i;
}

// The call for a body's operands.
template <class K, typename T>
using ArrayCall = Call<K, ArraySource<T>, ArraySource<T>>;
template <class K, typename T>
HWY_INLINE ArrayCall<K, T> CallOn(const char* name, const T* a, T* r) {
  return {{a}, {a}, a, r, r, name};
}
template <class K, typename T>
HWY_INLINE ArrayCall<K, T> CallOn(const char* name, const T* a, const T* b, T* r) {
  return {{a}, {b}, a, r, r, name};
}
template <class K, typename T>
HWY_INLINE Call<K, ArraySource<T>, ScalarSource<T>> CallOn(const char* name, const T* a, T b,
                                                           T* r) {
  return {{a}, {b}, a, r, r, name};
}
template <class K, typename T>
HWY_INLINE ArrayCall<K, T> CallOn(const char* name, const T* a, T* r1, T* r2) {
  return {{a}, {a}, a, r1, r2, name};
}

// Vectors of half the size, for a last one that fits: half as long in the units that divide, take
// roots and gather, and no slower in the others. The formula is the one that AVX2 has, between
// loads and stores under the masks of this level. Parts: a Run of AVX2.
template <class Parts, typename... Operands>
struct HalfRun;

#if HWY_TARGET == HWY_AVX3
template <class Parts, typename... Operands>
struct HalfRun {
  using K = typename Parts::OfKernel;
  using T = typename K::T;
  using V = N_AVX2::VecOf<typename K::Tag>;

  // The last vector, from i on.
  static HWY_NOINLINE int One(size_t end, Operands... operands, size_t i, const char* name) {
    const auto call = N_AVX2::CallOn<K>(name, operands...);
    const auto mask = static_cast<__mmask8>(_bzhi_u32(0xFF, static_cast<uint32_t>(end - i)));
    V x[1] = {Load(mask, call.a, i)}, y[1] = {x[0]};
    if constexpr (K::kArguments == 2) y[0] = Load(mask, call.b, i);
    if (!Parts::Try(typename K::Tag(), x, y)) [[unlikely]]
      return Parts::Uncommon(end, operands..., i, name);
    Store(mask, x[0].raw, call.r1 + i);
    if constexpr (K::kResults == 2) Store(mask, y[0].raw, call.r2 + i);
    return 0;
  }

 private:
  static HWY_INLINE V Load(__mmask8, N_AVX2::ScalarSource<T> from, size_t) {
    return from.Load(typename K::Tag(), 0);
  }
  // As LoadFirst.
  static HWY_INLINE V Load(__mmask8 mask, N_AVX2::ArraySource<T> from, size_t i) {
    T first;
    hwy::CopyBytes<sizeof(T)>(from.p + i, &first);
    if constexpr (sizeof(T) == 8) {
      return V{_mm256_mask_loadu_pd(_mm256_set1_pd(first), mask, from.p + i)};
    } else if constexpr (sizeof(V) == 32) {
      return V{_mm256_mask_loadu_ps(_mm256_set1_ps(first), mask, from.p + i)};
    } else {
      return V{_mm_mask_loadu_ps(_mm_set1_ps(first), mask, from.p + i)};
    }
  }
  static HWY_INLINE void Store(__mmask8 mask, __m256d v, double* to) {
    _mm256_mask_storeu_pd(to, mask, v);
  }
  static HWY_INLINE void Store(__mmask8 mask, __m256 v, float* to) {
    _mm256_mask_storeu_ps(to, mask, v);
  }
  static HWY_INLINE void Store(__mmask8 mask, __m128 v, float* to) {
    _mm_mask_storeu_ps(to, mask, v);
  }
};
#endif

// The parts of a call, functions of their own that end with calls of one another: short calls then
// save no register. The operands stay where the body has them.
template <class K, typename... Operands>
struct Run {
  using OfKernel = K;
  static constexpr size_t kLanes = hn::MaxLanes(typename K::Tag());

  template <class D, class V, size_t kVectors>
  static HWY_INLINE bool Try(D d, V (&x)[kVectors], V (&y)[kVectors]) {
    return TryVectors<K>(d, x, y);
  }

  // Less than a group, from its first vector on that may have a rare lane.
  static HWY_NOINLINE int Uncommon(size_t end, Operands... operands, size_t i, const char* name) {
    const auto call = CallOn<K>(name, operands...);
    const size_t lanes = hn::Lanes(typename K::Tag());
    for (; i < end; i += lanes) UncommonVector<K>(call, i, HWY_MIN(lanes, end - i));
    return 0;
  }

  // The last vector, from i on.
  static HWY_NOINLINE int One(size_t end, Operands... operands, size_t i, const char* name) {
    const size_t count = end - i;
    if (count - 1 >= hn::Lanes(typename K::Tag())) __builtin_unreachable();
    if (!CommonVector<K>(CallOn<K>(name, operands...), i, count)) [[unlikely]]
      return Uncommon(end, operands..., i, name);
    return 0;
  }

  // More than a vector; in pairs, or with three at the end, where several take less together. The
  // last vector ends where the arrays end and computes elements of the one before it once more:
  // that takes less than masks.
  static HWY_NOINLINE int Few(size_t end, Operands... operands, size_t i, const char* name) {
    const typename K::Tag d;
    const auto call = CallOn<K>(name, operands...);
    const size_t lanes = hn::Lanes(d), last = end - lanes;
    if (i >= last) __builtin_unreachable();
    if constexpr (kTriples) {
      for (size_t next; i < last; i = next + lanes) {
        next = i + lanes;
        if (next < last && last <= next + lanes) {
          if (!CommonLast<K, 3>(call, i, last)) [[unlikely]]
            return Uncommon(end, operands..., i, name);
          return 0;
        }
        if (!CommonLast<K, 2>(call, i, HWY_MIN(next, last))) [[unlikely]]
          return Uncommon(end, operands..., i, name);
      }
    } else {
      // Taken before results may overwrite them.
      auto x = call.a.Load(d, last), y = x;
      if constexpr (K::kArguments == 2) y = call.b.Load(d, last);
      for (; i < last; i += lanes) {
        if constexpr (kPairs) {
          const size_t next = i + lanes;
          if (!CommonLast<K, 2>(call, i, HWY_MIN(next, last))) [[unlikely]]
            return Uncommon(end, operands..., i, name);
          if (next >= last) return 0;
          i = next;
        } else if (!CommonVector<K>(call, i, lanes)) [[unlikely]] {
          return Uncommon(end, operands..., i, name);
        }
      }
      if (!CommonVector<K>(call, last, x, y)) [[unlikely]]
        return Uncommon(end, operands..., i, name);
    }
    return 0;
  }

  static HWY_NOINLINE int Many(size_t end, Operands... operands, const char* name) {
    const auto call = CallOn<K>(name, operands...);
    const size_t lanes = hn::Lanes(typename K::Tag());
    size_t i = RunGroups<K, K::kUnroll>(call, 0, end);
    if constexpr (kLeast != K::kUnroll) i = RunGroups<K, kLeast>(call, i, end);
    if (i == end) return 0;
    return end - i > lanes ? Few(end, operands..., i, name) : One(end, operands..., i, name);
  }

  // A whole vector and a last one of Half.
  template <class Half>
  static HWY_NOINLINE int OneAndHalf(size_t end, Operands... operands, const char* name) {
    if (!CommonVector<K>(CallOn<K>(name, operands...), 0, kLanes)) [[unlikely]]
      return Uncommon(end, operands..., 0, name);
    return HalfRun<Half, Operands...>::One(end, operands..., kLanes, name);
  }

  // Half: void, or the parts of the same call for vectors of half the size, which are the faster
  // ones for a last vector that fits.
  template <class Half>
  static HWY_INLINE int All(int32_t n, Operands... operands, const char* name) {
    if (n <= 0) [[unlikely]]
      return 0;
    const size_t end = static_cast<uint32_t>(n);
    if constexpr (!std::is_void_v<Half> && K::kHalfVectors != HalfVectors::kNever) {
      if (end <= Half::kLanes) return HalfRun<Half, Operands...>::One(end, operands..., 0, name);
    }
    if (end <= kLanes) return One(end, operands..., 0, name);
    if constexpr (!std::is_void_v<Half> && K::kHalfVectors == HalfVectors::kAtEnd) {
      if (end <= kLanes + Half::kLanes) return OneAndHalf<Half>(end, operands..., name);
    }
    if (end < kLeast * kLanes) return Few(end, operands..., 0, name);
    return Many(end, operands..., name);
  }

 private:
  static constexpr bool kPairs = InSteps<K, typename K::Tag>;
  static constexpr bool kTriples = HasMainGroup<K, typename K::Tag>;
  static constexpr int LeastGroup() {
    if constexpr (HasRestUnroll<K>) {
      if (!kPairs || K::kRestUnroll > 2) return K::kRestUnroll;
    }
    return K::kUnroll;
  }
  static constexpr int kLeast = LeastGroup();  // vectors of the smallest group
};

template <class K, typename T = typename K::T>
HWY_INLINE int MapUnaryScalar(int32_t n, const T* a, T b, T* r, const char* name) {
  return Run<K, const T*, T, T*>::template All<void>(n, a, b, r, name);
}

// The parts of a body of AVX2, for the last vectors of the same body on AVX-512.
#undef PEX_HALF
#if HWY_TARGET == HWY_AVX3
#define PEX_HALF(body) N_AVX2::body##Run
#else
#define PEX_HALF(body) void
#endif

// The bodies that PEX_EXPORT_* dispatches to.
#define PEX_UNARY(T, body, K)                                           \
  using body##Run = Run<K, const T*, T*>;                               \
  int body(int32_t n, const T* a, T* r) {                               \
    return body##Run::All<PEX_HALF(body)>(n, a, r, _PEX_THISFUNC_NAME); \
  }
#define PEX_BINARY(T, body, K)                                             \
  using body##Run = Run<K, const T*, const T*, T*>;                        \
  int body(int32_t n, const T* a, const T* b, T* r) {                      \
    return body##Run::All<PEX_HALF(body)>(n, a, b, r, _PEX_THISFUNC_NAME); \
  }
#define PEX_UNARY_SCALAR(T, body, K)                                       \
  using body##Run = Run<K, const T*, T, T*>;                               \
  int body(int32_t n, const T* a, T b, T* r) {                             \
    return body##Run::All<PEX_HALF(body)>(n, a, b, r, _PEX_THISFUNC_NAME); \
  }
#define PEX_UNARY_TWO(T, body, K)                                            \
  using body##Run = Run<K, const T*, T*, T*>;                                \
  int body(int32_t n, const T* a, T* r1, T* r2) {                            \
    return body##Run::All<PEX_HALF(body)>(n, a, r1, r2, _PEX_THISFUNC_NAME); \
  }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__KERNEL_ELEMENTWISE_INL_H_
