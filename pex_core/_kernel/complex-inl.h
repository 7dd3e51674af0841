// The driver of elementwise functions of complex numbers: groups of vectors of real and imaginary
// parts, one test for rare lanes, rare lanes one by one, tails without a byte read or written
// outside the arrays. Results may lie exactly over an argument, also where they are of another
// width: (cos x, sin x) over x, or |a| over a.
//
// A kernel is a struct derived from ComplexKernel<T, Compute>. Its arguments and results are
// Complex<V> of vectors, or V itself where it says kRealArgument or kRealResult. It has
//   Main(d, a, r) or Main(d, a, b, r)   the result of common lanes;
//   or MainGroup, the same for arrays of several vectors, step by step for all of them. The
//                          arguments are copies; r may not be one of them;
//   or Begin(d, a) or Begin(d, a, b), and End(d, begun, r), which makes the results of what Begin
//                          returns, for arrays of several vectors: a long computation in two parts,
//                          the first of which is done a group ahead; or in three, Begin two groups
//                          ahead and End(d, Continue(d, begun), r). Not for results wider than
//                          their argument;
// and, where it has rare lanes,
//   IsRare(d, a) or IsRare(d, a, b)     their mask, found without raising a flag;
//   MayBeRare, alike                    optional: a cheaper mask that covers IsRare and decides
//                          for a group; its masks are tested together and not used by lane;
//   AnyMayBeRare(d, a) or AnyMayBeRare(d, a, b)   or instead: whether a whole group, an array of
//                          vectors, may have a rare lane;
//   Rare(a) or Rare(a, b)  a scalar routine for one rare element: from Complex<T> or T to that.
// What the groups leave goes vector by vector, or, where a kernel without Begin has a kRestUnroll,
// in groups of so many vectors first.
// A kernel may have a second one, K::Wide, for all lanes but rare ones, as in elementwise-inl.h;
// its common lanes are then those that neither IsRare nor MayBeRare names. Lanes come in an order
// of the driver's own, the same for all operands: no kernel may depend on it.
//
// In HWY_NAMESPACE a body is `return MapComplex<K>(n, a, r);` or `MapComplex<K>(n, a, b, r)`, where
// b may be one number for all elements.

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_kernel/complex_lanes-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/plain-inl.h"
#include "pexquo/pex.h"

#if defined(PEX_CORE__KERNEL_COMPLEX_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__KERNEL_COMPLEX_INL_H_
#undef PEX_CORE__KERNEL_COMPLEX_INL_H_
#else
#define PEX_CORE__KERNEL_COMPLEX_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Compute is the type that a vector register holds while it computes, as in Kernel. Where kWidened,
// for floats, operands and results are vectors of doubles: the floats are converted as they lie in
// memory, which takes no shuffle. Not for kernels with rare lanes.
template <typename Element, typename Compute = Element, bool kWide = false>
struct ComplexKernel {
  static constexpr bool kWidened = kWide;
  using T = Element;
  using Tag = hn::Rebind<Element, hn::ScalableTag<Compute>>;
  static constexpr bool kRealArgument = false;
  static constexpr bool kRealResult = false;
  static constexpr int kUnroll = 2;     // vectors of each part per group
  static constexpr T kHarmless = T(1);  // both parts of what stands in for rare lanes and beyond
};

// ---- Operands. ----

// The first `count` numbers, which may be none or more than fill the vector, and `fill` in the
// other lanes. Nothing else is read, or written.
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE VecOf<D> LoadAtMost(D d, const T* from, size_t count, T fill) {
  if (count >= hn::Lanes(d)) return hn::LoadU(d, from);
  if (count == 0) return hn::Set(d, fill);
#if HWY_TARGET == HWY_SSE4  // its masked load reads the whole vector
  HWY_ALIGN T lanes[hn::MaxLanes(D())];
  hn::Store(hn::Set(d, fill), d, lanes);
  std::memcpy(lanes, from, count * sizeof(T));
  return hn::Load(d, lanes);
#else
  return LoadFirst(d, from, count, fill);
#endif
}

template <class D, typename T = hn::TFromD<D>>
HWY_INLINE void StoreAtMost(D d, VecOf<D> v, size_t count, T* to) {
  if (count >= hn::Lanes(d)) {
    hn::StoreU(v, d, to);
  } else if (count > 0) {
#if HWY_TARGET == HWY_SSE4
    HWY_ALIGN T lanes[hn::MaxLanes(D())];
    hn::Store(v, d, lanes);
    std::memcpy(to, lanes, count * sizeof(T));
#else
    hn::BlendedStore(v, hn::FirstN(d, count), d, to);
#endif
  }
}

// The lanes of functions of real numbers are in the order of memory where that costs nothing.
template <class K>
inline constexpr bool kInMemoryOrder =
    K::kRealArgument ? kShufflesRegisters<typename K::Tag> : false;

// The numbers' parts, in Compute.
template <typename T, typename Compute = T>
struct ComplexSource {
  const T* p;
  template <class D>
  using Operand = Complex<VecOf<hn::Rebind<Compute, D>>>;
  using Number = Complex<T>;
  template <class D>
  HWY_INLINE Operand<D> Load(D d, size_t i) const {
    return Parts(d, hn::LoadU(d, p + 2 * i), hn::LoadU(d, p + 2 * i + hn::Lanes(d)));
  }
  template <class D>
  HWY_INLINE Operand<D> LoadTail(D d, size_t i, size_t count, T fill) const {
    const size_t lanes = hn::Lanes(d), numbers = 2 * count;
    return Parts(d, LoadAtMost(d, p + 2 * i, numbers, fill),
                 numbers <= lanes ? hn::Set(d, fill)
                                  : LoadAtMost(d, p + 2 * i + lanes, numbers - lanes, fill));
  }
  HWY_INLINE void Copy(size_t i, size_t count, Number* to) const {
    std::memcpy(to, p + 2 * i, count * sizeof(Number));
  }

 private:
  template <class D>
  static HWY_INLINE Operand<D> Parts(D d, VecOf<D> a, VecOf<D> b) {
    if constexpr (std::is_same_v<T, Compute>) {
      return Unzip(d, a, b);
    } else {
      const hn::Rebind<Compute, D> wide;
      return Unzip(wide, hn::PromoteTo(wide, a), hn::PromoteTo(wide, b));
    }
  }
};

// Floats as doubles, for kWidened.
template <class D>
using WideOf = hn::Rebind<double, D>;
using WidenedSource = ComplexSource<float, double>;

template <typename T>
struct RealSource {
  const T* p;
  template <class D>
  using Operand = VecOf<D>;
  using Number = T;
  template <class D>
  HWY_INLINE Operand<D> Load(D d, size_t i) const {
    if constexpr (kShufflesRegisters<D>) return hn::LoadU(d, p + i);
    return LoadFromMemoryOrder(d, p + i);
  }
  template <class D>
  HWY_INLINE Operand<D> LoadTail(D d, size_t i, size_t count, T fill) const {
    return LaneOrder(d, LoadAtMost(d, p + i, count, fill));
  }
  template <class D>
  static HWY_INLINE VecOf<D> LaneOrder(D d, VecOf<D> v) {
    if constexpr (kShufflesRegisters<D>) return v;
    return FromMemoryOrder(d, v);
  }
  HWY_INLINE void Copy(size_t i, size_t count, Number* to) const {
    std::memcpy(to, p + i, count * sizeof(Number));
  }
};

// One complex number for all elements.
template <typename T>
struct ComplexScalarSource {
  Complex<T> value;
  template <class D>
  using Operand = Complex<VecOf<D>>;
  using Number = Complex<T>;
  template <class D>
  HWY_INLINE Operand<D> Load(D d, size_t) const {
    return {hn::Set(d, value.re), hn::Set(d, value.im)};
  }
  template <class D>
  HWY_INLINE Operand<D> LoadTail(D d, size_t, size_t, T) const {
    return Load(d, 0);
  }
  HWY_INLINE void Copy(size_t, size_t count, Number* to) const {
    for (size_t k = 0; k < count; ++k) to[k] = value;
  }
};

// Where there is no second argument.
struct NoSource {
  template <class D>
  struct Operand {};
  struct Number {};
  template <class D>
  HWY_INLINE Operand<D> Load(D, size_t) const {
    return {};
  }
  template <class D, typename T>
  HWY_INLINE Operand<D> LoadTail(D, size_t, size_t, T) const {
    return {};
  }
  HWY_INLINE void Copy(size_t, size_t, Number*) const {}
};

template <class K, class D, class W, class V = VecOf<D>, typename T = hn::TFromD<D>>
HWY_INLINE void StoreNumbers(D d, Complex<W> v, T* r, size_t i, size_t count) {
  const size_t lanes = hn::Lanes(d);
  V a, b;
  if constexpr (K::kWidened) {
    W wide_a, wide_b;
    Zip(WideOf<D>(), v, wide_a, wide_b);
    a = hn::DemoteTo(d, wide_a);
    b = hn::DemoteTo(d, wide_b);
  } else if constexpr (kInMemoryOrder<K>) {
    ZipInOrder(d, v, a, b);
  } else if constexpr (K::kRealArgument) {  // cosines and sines, from tables' rows
    ZipBesideShuffles(d, v, a, b);
  } else {
    Zip(d, v, a, b);
  }
  if (count == lanes) {
    hn::StoreU(a, d, r + 2 * i);
    hn::StoreU(b, d, r + 2 * i + lanes);
  } else {
    StoreAtMost(d, a, 2 * count, r + 2 * i);
    if (2 * count > lanes) StoreAtMost(d, b, 2 * count - lanes, r + 2 * i + lanes);
  }
}

template <class K, class D, class V = VecOf<D>, typename T = hn::TFromD<D>>
HWY_INLINE void StoreNumbers(D d, V v, T* r, size_t i, size_t count) {
  StoreAtMost(d, ToMemoryOrder(d, v), count, r + i);
}

template <class D, class V = VecOf<D>>
HWY_INLINE Complex<V> Replace(D d, MaskOf<D> mask, Complex<V> x, hn::TFromD<D> value) {
  const V v = hn::Set(d, value);
  return {Selected(hn::IfThenElse(mask, v, x.re)), Selected(hn::IfThenElse(mask, v, x.im))};
}
template <class D, class V = VecOf<D>>
HWY_INLINE V Replace(D d, MaskOf<D> mask, V x, hn::TFromD<D> value) {
  return Selected(hn::IfThenElse(mask, hn::Set(d, value), x));
}
template <class D>
HWY_INLINE NoSource::Operand<D> Replace(D, MaskOf<D>, NoSource::Operand<D> x, hn::TFromD<D>) {
  return x;
}

// ---- Kernels. ----

template <class K, class A, class B>
struct ComplexCall {
  using T = typename K::T;
  using D = typename K::Tag;
  using ResultTag = std::conditional_t<K::kWidened, WideOf<D>, D>;
  using Result = std::conditional_t<K::kRealResult, VecOf<D>, Complex<VecOf<ResultTag>>>;
  using OperandA = typename A::template Operand<D>;
  using OperandB = typename B::template Operand<D>;
  static constexpr bool kBinary = !std::is_same_v<B, NoSource>;
  A a;
  B b;
  T* r;
};

// The kernel's functions, whatever the number of arguments.
template <class K, class C>
inline constexpr bool HasComplexRare = requires(typename C::OperandA a, typename C::OperandB b) {
  K::IsRare(typename C::D(), a, b);
}
|| requires(typename C::OperandA a) { K::IsRare(typename C::D(), a); };
template <class K, class C>
inline constexpr bool HasComplexMayBeRare = requires(typename C::OperandA a,
                                                     typename C::OperandB b) {
  K::MayBeRare(typename C::D(), a, b);
}
|| requires(typename C::OperandA a) { K::MayBeRare(typename C::D(), a); };
template <class K, class C>
inline constexpr bool HasComplexGroup = requires(typename C::OperandA (&a)[1],
                                                 typename C::OperandB (&b)[1],
                                                 typename C::Result (&r)[1]) {
  K::MainGroup(typename C::D(), a, b, r);
}
|| requires(typename C::OperandA (&a)[1], typename C::Result (&r)[1]) {
  K::MainGroup(typename C::D(), a, r);
};

template <class K, class C>
inline constexpr bool HasComplexBegin = requires(typename C::OperandA (&a)[1],
                                                 typename C::OperandB (&b)[1]) {
  K::Begin(typename C::D(), a, b);
}
|| requires(typename C::OperandA (&a)[1]) { K::Begin(typename C::D(), a); };

template <class K, class C, size_t N>
inline constexpr bool HasAnyMayBeRare = requires(typename C::OperandA (&a)[N],
                                                 typename C::OperandB (&b)[N]) {
  K::AnyMayBeRare(typename C::D(), a, b);
}
|| requires(typename C::OperandA (&a)[N]) { K::AnyMayBeRare(typename C::D(), a); };

template <class K, class C>
HWY_INLINE MaskOf<typename C::D> ComplexRareLanes(const typename C::OperandA& a,
                                                  const typename C::OperandB& b) {
  if constexpr (C::kBinary) {
    return K::IsRare(typename C::D(), a, b);
  } else {
    return K::IsRare(typename C::D(), a);
  }
}

template <class K, class C>
HWY_INLINE MaskOf<typename C::D> ComplexMayBeRare(const typename C::OperandA& a,
                                                  const typename C::OperandB& b) {
  if constexpr (!HasComplexMayBeRare<K, C>) {
    return ComplexRareLanes<K, C>(a, b);
  } else if constexpr (C::kBinary) {
    return K::MayBeRare(typename C::D(), a, b);
  } else {
    return K::MayBeRare(typename C::D(), a);
  }
}

template <class K, class C, size_t N>
HWY_INLINE auto ComplexBegin(const typename C::OperandA (&a)[N],
                             const typename C::OperandB (&b)[N]) {
  if constexpr (C::kBinary) {
    return K::Begin(typename C::D(), a, b);
  } else {
    return K::Begin(typename C::D(), a);
  }
}

template <class K, class C>
inline constexpr bool HasComplexContinue = requires(typename C::OperandA (&a)[1],
                                                    typename C::OperandB (&b)[1]) {
  K::Continue(typename C::D(), ComplexBegin<K, C>(a, b));
};

template <class K, class C, size_t N>
HWY_INLINE void ComplexCompute(const typename C::OperandA (&a)[N],
                               const typename C::OperandB (&b)[N], typename C::Result (&r)[N]) {
  const typename C::D d;
  if constexpr (HasComplexBegin<K, C>) {
    if constexpr (HasComplexContinue<K, C>) {
      K::End(d, K::Continue(d, ComplexBegin<K, C>(a, b)), r);
    } else {
      K::End(d, ComplexBegin<K, C>(a, b), r);
    }
  } else if constexpr (HasComplexGroup<K, C>) {
    if constexpr (C::kBinary) {
      K::MainGroup(d, a, b, r);
    } else {
      K::MainGroup(d, a, r);
    }
  } else {
    for (size_t k = 0; k < N; ++k) {
      if constexpr (C::kBinary) {
        K::Main(d, a[k], b[k], r[k]);
      } else {
        K::Main(d, a[k], r[k]);
      }
    }
  }
}

// One vector of `count` elements that may have rare lanes. Its arguments are kept where there are,
// for its results may overwrite them.
template <class K, class A, class B>
HWY_NOINLINE void CarefulNumbers(const ComplexCall<K, A, B>& call, size_t i, size_t count) {
  using T = typename K::T;
  using C = ComplexCall<K, A, B>;
  using Number = std::conditional_t<K::kRealResult, T, Complex<T>>;
  const typename K::Tag d;
  constexpr size_t kLanes = hn::MaxLanes(typename K::Tag());
  const bool whole = count == kLanes;
  typename C::OperandA a[1] = {whole ? call.a.Load(d, i)
                                     : call.a.LoadTail(d, i, count, K::kHarmless)};
  typename C::OperandB b[1] = {whole ? call.b.Load(d, i)
                                     : call.b.LoadTail(d, i, count, K::kHarmless)};
  typename C::Result r[1];
  const auto rare = ComplexRareLanes<K, C>(a[0], b[0]);
  if (hn::AllFalse(d, rare)) {
    ComplexCompute<K, C>(a, b, r);
    StoreNumbers<K>(d, r[0], call.r, i, count);
    return;
  }
  typename A::Number as[kLanes];
  typename B::Number bs[kLanes];
  call.a.Copy(i, count, as);
  call.b.Copy(i, count, bs);
  a[0] = Replace(d, rare, a[0], K::kHarmless);
  b[0] = Replace(d, rare, b[0], K::kHarmless);
  ComplexCompute<K, C>(a, b, r);
  StoreNumbers<K>(d, r[0], call.r, i, count);

  uint8_t bits[8] = {};
  auto flagged = hn::VecFromMask(d, rare);
  if constexpr (!kInMemoryOrder<K>) flagged = ToMemoryOrder(d, flagged);
  hn::StoreMaskBits(d, hn::MaskFromVec(flagged), bits);
  for (size_t lane = 0; lane < count; ++lane) {
    if (!(bits[lane / 8] >> (lane % 8) & 1)) continue;
    Number result;
    if constexpr (C::kBinary) {
      result = K::Rare(as[lane], bs[lane]);
    } else {
      result = K::Rare(as[lane]);
    }
    std::memcpy(call.r + (i + lane) * (sizeof(Number) / sizeof(T)), &result, sizeof(Number));
  }
}

// Whether some lane of these vectors may be rare.
template <class K, class C, size_t N>
HWY_INLINE bool AnyNumberMayBeRare(const typename C::OperandA (&a)[N],
                                   const typename C::OperandB (&b)[N]) {
  const typename C::D d;
  if constexpr (HasAnyMayBeRare<K, C, N> && C::kBinary) {
    return K::AnyMayBeRare(d, a, b);
  } else if constexpr (HasAnyMayBeRare<K, C, N>) {
    return K::AnyMayBeRare(d, a);
  } else if constexpr (HasComplexRare<K, C>) {
    auto rare = ComplexMayBeRare<K, C>(a[0], b[0]);
    for (size_t k = 1; k < N; ++k) rare = hn::Or(rare, ComplexMayBeRare<K, C>(a[k], b[k]));
    return !hn::AllFalse(d, rare);
  } else {
    return false;
  }
}

// N vectors of `count` elements in all, fewer than fill them only where N is 1; false, with nothing
// done, when some lane may be rare.
template <class K, size_t N, class C>
HWY_INLINE bool CommonNumbers(const C& call, size_t i, size_t count) {
  const typename K::Tag d;
  const size_t lanes = hn::Lanes(d);
  typename C::OperandA a[N];
  typename C::OperandB b[N];
  typename C::Result r[N];
  if (N > 1 || count == lanes) {
    for (size_t k = 0; k < N; ++k) {
      a[k] = call.a.Load(d, i + k * lanes);
      b[k] = call.b.Load(d, i + k * lanes);
    }
  } else {
    a[0] = call.a.LoadTail(d, i, count, K::kHarmless);
    b[0] = call.b.LoadTail(d, i, count, K::kHarmless);
  }
  if (AnyNumberMayBeRare<K, C>(a, b)) [[unlikely]]
    return false;
  ComplexCompute<K, C>(a, b, r);
  for (size_t k = 0; k < N; ++k) {
    StoreNumbers<K>(d, r[k], call.r, i + k * lanes, N > 1 ? lanes : count);
  }
  return true;
}

// One vector that CommonNumbers has not taken.
template <class K, class A, class B>
HWY_NOINLINE void UncommonNumbers(const ComplexCall<K, A, B>& call, size_t i, size_t count) {
  if constexpr (HasWide<K>) {
    const ComplexCall<typename K::Wide, A, B> wide{call.a, call.b, call.r};
    if (!CommonNumbers<typename K::Wide, 1>(wide, i, count)) [[unlikely]]
      CarefulNumbers(wide, i, count);
  } else {
    CarefulNumbers(call, i, count);
  }
}

// Functions of an argument narrower than their result go from the last element to the first, so
// that what is overwritten has been read.
template <class K>
inline constexpr bool kBackward = K::kRealArgument && !K::kRealResult;

// The vector at element i, of `count` elements.
template <class K, class C>
HWY_INLINE void RunVector(const C& call, size_t i, size_t count) {
  if (CommonNumbers<K, 1>(call, i, count)) [[likely]]
    return;
  if constexpr (HasComplexRare<K, C>) UncommonNumbers(call, i, count);
}

// The group of whole vectors at element i that CommonNumbers has not taken, or would not take.
template <class K, size_t kVectors = K::kUnroll, class C>
HWY_INLINE void RunUncommonGroup([[maybe_unused]] const C& call, [[maybe_unused]] size_t i) {
  if constexpr (HasComplexRare<K, C>) {
    const size_t lanes = hn::Lanes(typename K::Tag());
    for (size_t k = 0; k < kVectors; ++k) {
      UncommonNumbers(call, i + (kBackward<K> ? kVectors - 1 - k : k) * lanes, lanes);
    }
  }
}

// The group of whole vectors at element i.
template <class K, size_t kVectors, class C>
HWY_INLINE void RunGroup(const C& call, size_t i) {
  const size_t lanes = hn::Lanes(typename K::Tag());
  if (CommonNumbers<K, kVectors>(call, i, kVectors * lanes)) [[likely]]
    return;
  RunUncommonGroup<K, kVectors>(call, i);
}

// Vectors per group of those that the groups of kUnroll leave.
template <class K>
constexpr size_t ComplexRestUnroll() {
  if constexpr (HasRestUnroll<K>) {
    return K::kRestUnroll;
  } else {
    return K::kUnroll;
  }
}

// The groups before element `end`, each begun before the one ahead of it is ended: what one waits
// for is covered by the other, though a processor does not look so far ahead by itself.
template <class K, class C>
HWY_INLINE void RunBegun(const C& call, size_t end) {
  static_assert(!kBackward<K>);
  const typename K::Tag d;
  constexpr size_t kVectors = K::kUnroll;
  const size_t lanes = hn::Lanes(d), group = kVectors * lanes;
  typename C::OperandA a[kVectors];
  typename C::OperandB b[kVectors];
  const auto common = [&](size_t i) HWY_ATTR {
    for (size_t k = 0; k < kVectors; ++k) {
      a[k] = call.a.Load(d, i + k * lanes);
      b[k] = call.b.Load(d, i + k * lanes);
    }
    return !AnyNumberMayBeRare<K, C, kVectors>(a, b);
  };
  const auto finish = [&](size_t i, const auto& begun) HWY_ATTR {
    typename C::Result r[kVectors];
    K::End(d, begun, r);
    for (size_t k = 0; k < kVectors; ++k) StoreNumbers<K>(d, r[k], call.r, i + k * lanes, lanes);
  };
  for (size_t i = 0; i < end;) {
    if (!common(i)) [[unlikely]] {
      RunUncommonGroup<K>(call, i);
      i += group;
      continue;
    }
    auto begun = ComplexBegin<K, C>(a, b);
    i += group;
    if constexpr (HasComplexContinue<K, C>) {
      if (i < end && common(i)) [[likely]] {
        auto continued = K::Continue(d, begun);
        begun = ComplexBegin<K, C>(a, b);
        for (i += group; i < end; i += group) {
          if (!common(i)) [[unlikely]]
            break;
          const auto next = ComplexBegin<K, C>(a, b);
          finish(i - 2 * group, continued);
          continued = K::Continue(d, begun);
          begun = next;
        }
        finish(i - 2 * group, continued);
      }
      finish(i - group, K::Continue(d, begun));
    } else {
      for (; i < end; i += group) {
        if (!common(i)) [[unlikely]]
          break;
        const auto next = ComplexBegin<K, C>(a, b);
        finish(i - group, begun);
        begun = next;
      }
      finish(i - group, begun);
    }
  }
}

template <class K, class C>
HWY_INLINE int RunComplex(int32_t n, const C& call) {
  const size_t lanes = hn::Lanes(typename K::Tag());
  const size_t group = K::kUnroll * lanes;
  const size_t end = n > 0 ? static_cast<size_t>(n) : 0;
  const size_t groups = end / group * group;  // elements in whole groups
  constexpr size_t kRest = ComplexRestUnroll<K>();
  const size_t rest = kRest * lanes;
  size_t grouped = groups;  // elements in any groups
  if constexpr (kRest != K::kUnroll) grouped += (end - groups) / rest * rest;
  if constexpr (kBackward<K>) {
    for (size_t i = grouped + (end - grouped + lanes - 1) / lanes * lanes; i > grouped;
         i -= lanes) {
      RunVector<K>(call, i - lanes, HWY_MIN(lanes, end - (i - lanes)));
    }
    for (size_t i = grouped; i > groups; i -= rest) RunGroup<K, kRest>(call, i - rest);
    for (size_t i = groups; i > 0; i -= group) RunGroup<K, K::kUnroll>(call, i - group);
  } else {
    if constexpr (HasComplexBegin<K, C>) {
      static_assert(kRest == K::kUnroll);
      RunBegun<K>(call, groups);
    } else {
      for (size_t i = 0; i < groups; i += group) RunGroup<K, K::kUnroll>(call, i);
      for (size_t i = groups; i < grouped; i += rest) RunGroup<K, kRest>(call, i);
    }
    for (size_t i = grouped; i < end; i += lanes) RunVector<K>(call, i, HWY_MIN(lanes, end - i));
  }
  return 0;
}

// The C types of operands.
HWY_INLINE ComplexSource<float> SourceOf(const PexComplex8* a) {
  return {reinterpret_cast<const float*>(a)};
}
HWY_INLINE ComplexSource<double> SourceOf(const PexComplex16* a) {
  return {reinterpret_cast<const double*>(a)};
}
HWY_INLINE ComplexScalarSource<float> SourceOf(PexComplex8 a) { return {{a.re, a.im}}; }
HWY_INLINE ComplexScalarSource<double> SourceOf(PexComplex16 a) { return {{a.re, a.im}}; }
HWY_INLINE RealSource<float> SourceOf(const float* a) { return {a}; }
HWY_INLINE RealSource<double> SourceOf(const double* a) { return {a}; }

template <class K, class A>
HWY_INLINE auto SourceFor(A a) {
  if constexpr (K::kWidened) {
    return WidenedSource{SourceOf(a).p};
  } else {
    return SourceOf(a);
  }
}

template <class K, class A, class R>
HWY_INLINE int MapComplex(int32_t n, const A* a, R* r) {
  using Source = decltype(SourceFor<K>(a));
  return RunComplex<K>(n, ComplexCall<K, Source, NoSource>{
                              SourceFor<K>(a), {}, reinterpret_cast<typename K::T*>(r)});
}

template <class K, class A, class B, class R>
HWY_INLINE int MapComplex(int32_t n, const A* a, B b, R* r) {
  using SourceA = decltype(SourceFor<K>(a));
  using SourceB = decltype(SourceFor<K>(b));
  return RunComplex<K>(n, ComplexCall<K, SourceA, SourceB>{SourceFor<K>(a), SourceFor<K>(b),
                                                           reinterpret_cast<typename K::T*>(r)});
}

// A kernel of plain-inl.h for real and imaginary parts alike.
template <class K, class C>
HWY_INLINE int MapParts(int64_t n, const C* a, const C* b, C* r) {
  using T = typename K::T;
  auto* const to = reinterpret_cast<T*>(r);
  return RunPlain<K>(2 * n, {reinterpret_cast<const T*>(a), reinterpret_cast<const T*>(b), to, to});
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__KERNEL_COMPLEX_INL_H_
