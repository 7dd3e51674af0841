// The driver of elementwise kernels without rare lanes: groups of vectors, tails without a byte
// read or written outside the arrays, results that overlap arguments in any way.
//
// A kernel is a struct derived from PlainKernel with Main as in elementwise-inl.h. It must raise no
// exception on zero, nor on its own kBeyond, which stand in the lanes beyond the end. With two
// arguments it may also have MainGroup(d, x, y, r) for arrays of several vectors, or MainFrom(d, a,
// b), the result of one whole vector that it loads itself from these addresses.

#include <cstdint>
#include <cstring>

#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/hardware-inl.h"

#if defined(PEX_CORE__KERNEL_PLAIN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__KERNEL_PLAIN_INL_H_
#undef PEX_CORE__KERNEL_PLAIN_INL_H_
#else
#define PEX_CORE__KERNEL_PLAIN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <typename Element, int kArgs = 1, int kRes = 1>
struct PlainKernel {
  using T = Element;
  static constexpr int kArguments = kArgs;
  static constexpr int kResults = kRes;
  static constexpr T kBeyond = T(0);           // stands in the lanes beyond the end
  static constexpr bool kMemoryBound = false;  // whether to ask WholeVectors
  static constexpr size_t kTogether = 1;       // numbers that stay in lanes side by side
  // On AVX-512, half a register for last elements that fit: for what divides and takes roots.
  static constexpr bool kHalfTail = false;
};

// Whether to load and store whole vectors where memory is the limit. Most processors move one of 64
// bytes as fast as one of 32. Zen 4 stores 32 bytes a cycle, in one piece or two, and loads of 64
// bytes wait for stores to other addresses that are alike in their lower bits, which costs up to
// the double time where arrays lie so.
HWY_INLINE bool WholeVectors() { return HWY_MAX_BYTES <= 32 || !__builtin_cpu_is("amdfam19h"); }
inline constexpr size_t kLessBytes = HWY_MIN(HWY_MAX_BYTES, 32);  // else per vector

template <class K, class D>
inline constexpr bool HasPairGroup = requires(D d, VecOf<D> (&v)[1]) {
  K::MainGroup(d, v, v, v);
};

template <class K, class D>
inline constexpr bool HasMainFrom = requires(D d, const typename K::T* from) {
  K::MainFrom(d, from, from);
};

// Vectors per group. Two of 64 bytes where memory is the limit of two arguments, or they are loaded
// by the kernel: three arrays that just fill the first cache pass through it faster so.
template <class K, class D>
inline constexpr bool kInPairs = hn::MaxLanes(D()) * sizeof(typename K::T) == 64 &&
                                 (HasMainFrom<K, D> || (K::kMemoryBound && K::kArguments == 2));
template <class K, class D>
inline constexpr int kPlainUnroll = kInPairs<K, D> ? 2 : 4;

// Whether `second` begins inside the `bytes` that follow the first byte of `first`.
HWY_INLINE bool StartsWithin(const void* first, const void* second, size_t bytes) {
  return reinterpret_cast<uintptr_t>(second) - reinterpret_cast<uintptr_t>(first) - 1 < bytes - 1;
}

// The arrays of a call; one-argument kernels have the same argument twice, one-result kernels the
// same result.
template <class K>
struct PlainArrays {
  using T = typename K::T;
  const T* a;
  const T* b;
  T* r1;
  T* r2;

  // Goes on to a later element. Compilers keep the addresses apart: with an index in common,
  // operands from memory would cost an operation of their own.
  HWY_INLINE void Advance(size_t elements) {
    a += elements, b += elements, r1 += elements, r2 += elements;
    __asm__("" : "+r"(a), "+r"(b), "+r"(r1));
  }

  // Whether a block of that many bytes may load all its arguments before it stores its results: no
  // result of the block is an argument of a later element of the block, and of two results in one
  // place the later one stays.
  HWY_INLINE bool Independent(size_t bytes) const {
    bool clash = StartsWithin(a, r1, bytes);
    if constexpr (K::kArguments == 2) clash = clash || StartsWithin(b, r1, bytes);
    if constexpr (K::kResults == 2) {
      clash = clash || StartsWithin(a, r2, bytes) || StartsWithin(r1, r2, bytes);
    }
    return !clash;
  }
};

// Loads and stores at any address: pairs of floats pass as doubles, and single lanes would go
// through a pointer that has to be aligned. Beside a single lane stands kBeyond: some operations
// take the whole register and some leave the rest of it.
template <class K, class D, typename T>
HWY_INLINE VecOf<D> LoadAnywhere(D d, const T* from) {
  if constexpr (hn::MaxLanes(D()) == 1) {
    T x;
    std::memcpy(&x, from, sizeof(T));
    if constexpr (sizeof(T) == 8) {
      return VecOf<D>{_mm_set_pd(K::kBeyond, x)};
    } else {
      return VecOf<D>{_mm_set_ps(K::kBeyond, K::kBeyond, K::kBeyond, x)};
    }
  } else {
    return hn::LoadU(d, from);
  }
}
template <class D, class V, typename T>
HWY_INLINE void StoreAnywhere(V v, D d, T* to) {
  if constexpr (hn::MaxLanes(D()) == 1) {
    const T x = hn::GetLane(v);
    std::memcpy(to, &x, sizeof(T));
  } else {
    hn::StoreU(v, d, to);
  }
}

// `kVectors` vectors at element i.
template <class K, int kVectors, class D>
HWY_INLINE void PlainGroup(D d, const PlainArrays<K>& p, size_t i) {
  using V = VecOf<D>;
  const size_t lanes = hn::Lanes(d);
  V x[kVectors], y[kVectors];
  if constexpr (HasMainFrom<K, D> && kVectors > 1) {
    for (int k = 0; k < kVectors; ++k) {
      x[k] = K::MainFrom(d, p.a + i + k * lanes, p.b + i + k * lanes);
    }
    for (int k = 0; k < kVectors; ++k) StoreAnywhere(x[k], d, p.r1 + i + k * lanes);
    return;
  }
  for (int k = 0; k < kVectors; ++k) {
    x[k] = LoadAnywhere<K>(d, p.a + i + k * lanes);
    y[k] = K::kArguments == 2 ? LoadAnywhere<K>(d, p.b + i + k * lanes) : x[k];
  }
  if constexpr (HasPairGroup<K, D>) {
    K::MainGroup(d, x, y, x);
    for (int k = 0; k < kVectors; ++k) StoreAnywhere(x[k], d, p.r1 + i + k * lanes);
  } else {
    for (int k = 0; k < kVectors; ++k) {
      V v1 = x[k], v2 = x[k];
      Compute<K>(d, x[k], y[k], v1, v2);
      StoreAnywhere(v1, d, p.r1 + i + k * lanes);
      if constexpr (K::kResults == 2) StoreAnywhere(v2, d, p.r2 + i + k * lanes);
    }
  }
}

// The last elements, fewer than kLanes: by masks where they are cheap, else by halves.
template <class K, size_t kLanes>
HWY_INLINE void PlainTail(const PlainArrays<K>& p, size_t i, size_t end) {
  using T = typename K::T;
#if HWY_TARGET == HWY_AVX3
  if (i == end) return;
  if constexpr (K::kHalfTail && kLanes * sizeof(T) == 64) {
    if (end - i <= kLanes / 2) return PlainTail<K, kLanes / 2>(p, i, end);
  }
  const hn::CappedTag<T, kLanes> d;
  const auto mask = hn::FirstN(d, end - i);
  const auto load = [&](const T* from) HWY_ATTR {
    const auto x = hn::MaskedLoad(mask, d, from);
    return K::kBeyond == 0 ? x : hn::IfThenElse(mask, x, hn::Set(d, K::kBeyond));
  };
  const auto x = load(p.a + i);
  auto y = x;
  if constexpr (K::kArguments == 2) y = load(p.b + i);
  auto v1 = x, v2 = x;
  Compute<K>(d, x, y, v1, v2);
  hn::BlendedStore(v1, mask, d, p.r1 + i);
  if constexpr (K::kResults == 2) hn::BlendedStore(v2, mask, d, p.r2 + i);
#else
  if constexpr (kLanes > 1) {
    const hn::CappedTag<T, kLanes / 2> d;
    if (end - i >= kLanes / 2) {
      PlainGroup<K, 1>(d, p, i);
      i += kLanes / 2;
    }
    PlainTail<K, kLanes / 2>(p, i, end);
  }
#endif
}

// By vectors of so many bytes.
template <class K, size_t kBytes>
HWY_INLINE int RunPlainBy(int64_t n, const PlainArrays<K>& p) {
  using T = typename K::T;
  using D = hn::CappedTag<T, kBytes / sizeof(T)>;
  const D d;
  constexpr size_t kLanes = hn::MaxLanes(D());
  constexpr int kUnroll = kPlainUnroll<K, D>;
  constexpr size_t kGroup = kUnroll * kLanes;
  constexpr size_t kPeel = 32 * kLanes;  // from here on it pays to align the stores
  if (n <= 0) return 0;
  const size_t end = static_cast<size_t>(n);
  size_t i = 0;
  if (HWY_UNLIKELY(!p.Independent(HWY_MIN(kGroup, end) * sizeof(T)))) {
    constexpr size_t kStep = K::kTogether;
    for (; i < end; i += kStep) PlainGroup<K, 1>(hn::CappedTag<T, kStep>(), p, i);
    return 0;
  }
  const size_t past = reinterpret_cast<uintptr_t>(p.r1) % (kLanes * sizeof(T)) / sizeof(T);
  if (past % K::kTogether == 0 && past != 0 && end >= kPeel) {
    PlainTail<K, kLanes>(p, 0, kLanes - past);
    i = kLanes - past;
  }
  if constexpr (HasMainFrom<K, D>) {
    PlainArrays<K> group = p;
    group.Advance(i);
    for (; i + kGroup <= end; i += kGroup, group.Advance(kGroup)) {
      PlainGroup<K, kUnroll>(d, group, 0);
    }
  } else {
    for (; i + kGroup <= end; i += kGroup) PlainGroup<K, kUnroll>(d, p, i);
  }
  for (; i + kLanes <= end; i += kLanes) PlainGroup<K, 1>(d, p, i);
  PlainTail<K, kLanes>(p, i, end);
  return 0;
}

template <class K>
HWY_INLINE int RunPlain(int64_t n, const PlainArrays<K>& p) {
  if constexpr (K::kMemoryBound) {
    if (!WholeVectors()) return RunPlainBy<K, kLessBytes>(n, p);
  }
  return RunPlainBy<K, HWY_MAX_BYTES>(n, p);
}

// The bodies that PEX_EXPORT_* and PEX_EXPORT_HARDWARE_* dispatch to.
#define PEX_PLAIN_UNARY(T, body, K) \
  int body(int32_t n, const T* a, T* r) { return RunPlain<K>(n, {a, a, r, r}); }
#define PEX_PLAIN_BINARY(T, body, K) \
  int body(int32_t n, const T* a, const T* b, T* r) { return RunPlain<K>(n, {a, b, r, r}); }
#define PEX_PLAIN_UNARY_TWO(T, body, K) \
  int body(int32_t n, const T* a, T* r1, T* r2) { return RunPlain<K>(n, {a, a, r1, r2}); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__KERNEL_PLAIN_INL_H_
