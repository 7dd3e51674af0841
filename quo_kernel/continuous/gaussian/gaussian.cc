// Normal numbers with mean a and deviation sigma, double and single, by three methods: the sines of
// Box-Muller pairs, both values of Box-Muller pairs, inversion of the distribution function.
//
// G. E. P. Box, M. E. Muller, "A note on the generation of random normal deviates", Annals of
// Mathematical Statistics 29 (1958): of uniforms u1, u2 on [0, 1) come the independent normal
// numbers R sin(2 pi u2) and R cos(2 pi u2), R = sqrt(-2 ln u1).
//
// Each block of 1024 uniforms or results goes through a few passes in the first-level cache: the
// uniforms, their pairs taken apart into radii and angles, the sine and cosine of vector math, the
// results put together and scaled. The order of the pairs between the passes is whatever is
// cheapest; functions go element by element.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/continuous/gaussian/gaussian.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "hwy/highway.h"
#include "pex_core/_heap/real/erfinv_kernels-inl.h"
#include "pex_core/_heap/real/erfinv_single-inl.h"
#include "pex_core/_heap/real/log_stretch-inl.h"
#include "pex_core/_heap/real/slog-inl.h"
#include "pex_core/erfinv/erfinv_special.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/_kernel/chunk.h"
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/unaligned.h"
#include "quo_kernel/_kernel/vector_math.h"

#ifndef QUO_KERNEL_CONTINUOUS_GAUSSIAN_GAUSSIAN_CC_  // once, not once per vector level
#define QUO_KERNEL_CONTINUOUS_GAUSSIAN_GAUSSIAN_CC_
namespace quo {
namespace {

template <typename T>
constexpr T kTwoPi = T(6.283185307179586);

// An entry of vector math.
template <typename T>
using Function = int(int32_t n, const T* a, T* r);

// The passes of one vector level. Buffers are aligned to 64 bytes; a number of pairs is a whole
// number of kWhole<T> where the results go to a buffer. Results r may stand at any address.
template <typename T>
struct Passes {
  // w = sqrt(-2 ln u1), by `ln` and `sqrt` for what is rare; angle = 2 pi u2.
  void (*take_apart)(size_t pairs, const T* u, T* w, T* angle, Function<T>* ln, Function<T>* sqrt);
  void (*join_pairs)(size_t pairs, const T* w, const T* sine, const T* cosine, T* r, T sigma, T a);
  void (*join_sines)(size_t pairs, const T* w, const T* sine, T* r, T sigma, T a);
  void (*scale)(size_t n, const T* x, T* r, T factor, T a);
  // erfinv(x) factor + a, `erfinv` for what is rare; r may be x.
  void (*invert)(size_t n, const T* x, T* r, T factor, T a, Function<T>* erfinv);
};

// Pairs in a group of two vectors of the widest level.
template <typename T>
constexpr size_t kWhole = 64 / sizeof(T);

}  // namespace
}  // namespace quo
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
namespace level = pex::HWY_NAMESPACE;  // kernels of vector math

// Exchanges the odd lanes of v0 for the even lanes of v1, pairwise: a1 b1 a2 b2 and A1 B1 A2 B2
// become a1 A1 a2 A2 and b1 B1 b2 B2 or, for doubles on wide vectors, the same within each half of
// four lanes. Its own inverse.
template <class D, class V>
HWY_INLINE void Exchange(D d, V& v0, V& v1) {
  const V x = v0, y = v1;
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    v0 = hn::InterleaveLower(d, x, y);
    v1 = hn::InterleaveUpper(d, x, y);
  } else {
    v0 = hn::OddEven(hn::DupEven(y), x);
    v1 = hn::OddEven(y, hn::DupOdd(x));
  }
}

// The kernels of _pexdLn_26 and _pexsLn_21 for normal numbers between 0 and 1. The square root that
// follows takes its time in a unit of its own while they compute.
template <typename T>
struct LnBelowOne;
template <>
struct LnBelowOne<double> : level::Kernel<double> {
  using Rarity = level::LogStretchRarity<0x3FEFFFFF>;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    level::LogStretchEP<pex::NaturalLog>(d, x, r);
  }
};
template <>
struct LnBelowOne<float> : level::Kernel<float> {
  using Rarity = level::RareOutside<float, 0x00800000, 0x3F7FFFFF>;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    for (size_t k = 0; k < K; ++k) r[k] = level::sLogLA<pex::sNaturalLog>(d, x[k]);
  }
};

template <size_t kVectors, typename T>
HWY_INLINE void TakeGroupApart(const T* HWY_RESTRICT u, T* HWY_RESTRICT w, T* HWY_RESTRICT angle,
                               Function<T>* ln, Function<T>* sqrt) {
  using K = LnBelowOne<T>;
  const typename K::Tag d;
  constexpr size_t kLanes = hn::MaxLanes(d), kCount = kVectors * kLanes;
  const auto turn = hn::Set(d, kTwoPi<T>);
  hn::Vec<decltype(d)> x[kVectors];
  for (size_t k = 0; k < kVectors; ++k) {
    x[k] = hn::Load(d, u + 2 * k * kLanes);
    auto second = hn::Load(d, u + (2 * k + 1) * kLanes);
    Exchange(d, x[k], second);
    hn::Store(hn::Mul(second, turn), d, angle + k * kLanes);
  }
  if (!level::AnyRare<K, kVectors>(d, x, x)) [[likely]] {
    K::MainGroup(d, x, x);
    for (size_t k = 0; k < kVectors; ++k) {
      const auto square = hn::Sub(hn::Zero(d), hn::Add(x[k], x[k]));
      hn::Store(hn::Sqrt(square), d, w + k * kLanes);
    }
  } else {
    for (size_t k = 0; k < kVectors; ++k) hn::Store(x[k], d, w + k * kLanes);
    ln(kCount, w, w);
    for (size_t i = 0; i < kCount; ++i) w[i] = 0 - (w[i] + w[i]);
    sqrt(kCount, w, w);
  }
}

// `pairs` pairs of uniforms, in groups of two vectors.
template <typename T>
void TakeApart(size_t pairs, const T* u, T* w, T* angle, Function<T>* ln, Function<T>* sqrt) {
  constexpr size_t kLanes = hn::MaxLanes(hn::ScalableTag<T>()), kVectors = 4;
  size_t i = 0;
  for (; i + kVectors * kLanes <= pairs; i += kVectors * kLanes) {
    TakeGroupApart<kVectors>(u + 2 * i, w + i, angle + i, ln, sqrt);
  }
  for (; i < pairs; i += kLanes) TakeGroupApart<1>(u + 2 * i, w + i, angle + i, ln, sqrt);
}

template <class D, class V>
HWY_INLINE void StoreFirst(D d, V v, hn::TFromD<D>* r, size_t count) {
  HWY_ALIGN hn::TFromD<D> elements[hn::MaxLanes(d)];
  hn::Store(v, d, elements);
  std::memcpy(r, elements, count * sizeof(elements[0]));
}

// The first `count` elements of v at r, none for a count of 0.
template <class D, class V>
HWY_INLINE void StoreUpTo(D d, V v, hn::TFromD<D>* r, size_t count) {
  if (count >= hn::Lanes(d)) {
    hn::StoreU(v, d, r);
  } else {
    StoreFirst(d, v, r, count);
  }
}

// R sine, R cosine of each pair, times sigma plus a, in the order of the pairs.
template <typename T>
void JoinPairs(size_t pairs, const T* HWY_RESTRICT w, const T* HWY_RESTRICT sine,
               const T* HWY_RESTRICT cosine, T* HWY_RESTRICT r, T sigma, T a) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d);
  const auto vsigma = hn::Set(d, sigma), va = hn::Set(d, a);
  const auto scaled = [&](auto x) HWY_ATTR { return hn::Add(hn::Mul(x, vsigma), va); };
  for (size_t i = 0; i < pairs; i += lanes, r += 2 * lanes) {
    const auto radius = hn::Load(d, w + i);
    auto x = scaled(hn::Mul(radius, hn::Load(d, sine + i)));
    auto y = scaled(hn::Mul(radius, hn::Load(d, cosine + i)));
    Exchange(d, x, y);
    if (const size_t left = 2 * (pairs - i); left >= 2 * lanes) [[likely]] {
      hn::StoreU(x, d, r);
      hn::StoreU(y, d, r + lanes);
    } else {
      StoreUpTo(d, x, r, left);
      StoreUpTo(d, y, r + lanes, left > lanes ? left - lanes : 0);
    }
  }
}

// R sine of each pair, times sigma plus a, in the order of the pairs.
template <typename T>
void JoinSines(size_t pairs, const T* HWY_RESTRICT w, const T* HWY_RESTRICT sine, T* HWY_RESTRICT r,
               T sigma, T a) {
  const hn::ScalableTag<T> d;
  using Index = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;
  constexpr size_t kLanes = hn::MaxLanes(d);
  HWY_ALIGN Index order[kLanes];  // the even lanes, then the odd ones
  for (size_t k = 0; k < kLanes; ++k) order[k] = Index(k < kLanes / 2 ? 2 * k : 2 * k - kLanes + 1);
  const auto indices = hn::SetTableIndices(d, order);
  const auto vsigma = hn::Set(d, sigma), va = hn::Set(d, a);
  for (size_t i = 0; i < pairs; i += kLanes) {
    const auto radius = hn::Load(d, w + i);
    const auto x = hn::Mul(radius, hn::Load(d, sine + i));
    const auto y = hn::TableLookupLanes(hn::Add(hn::Mul(x, vsigma), va), indices);
    StoreUpTo(d, y, r + i, pairs - i);
  }
}

// r = x factor + a; r may be x.
template <typename T>
void Scale(size_t n, const T* x, T* r, T factor, T a) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d);
  const auto vfactor = hn::Set(d, factor), va = hn::Set(d, a);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    hn::StoreU(hn::Add(hn::Mul(hn::LoadU(d, x + i), vfactor), va), d, r + i);
  }
  for (; i < n; ++i) Put(r + i, Get(x + i) * factor + a);
}

// The kernels of _pexdErfInv_26 and _pexsErfInv_21, whose stores do not go through a buffer here.
template <typename T>
struct ErfInvOf
    : level::dErfInvKernel<level::InverseOfErf, level::ErfInvTier::kShort, pex::dErfInv_SC> {};
template <>
struct ErfInvOf<float> : level::sErfInvKernel<level::InverseOfErf, true, pex::sErfInv_SC> {};

// A group of kVectors vectors; false, with nothing done, when some lane is rare.
template <size_t kVectors, class D, typename T>
HWY_INLINE bool InvertGroup(D d, const T* x, T* r, hn::Vec<D> factor, hn::Vec<D> a) {
  using K = ErfInvOf<T>;
  constexpr size_t kLanes = hn::MaxLanes(d);
  hn::Vec<D> v[kVectors], y[kVectors];
  for (size_t k = 0; k < kVectors; ++k) v[k] = hn::LoadU(d, x + k * kLanes);
  if (level::AnyRare<K, kVectors>(d, v, v)) [[unlikely]]
    return false;
  K::MainGroup(d, v, y);
  for (size_t k = 0; k < kVectors; ++k) {
    hn::StoreU(hn::Add(hn::Mul(y[k], factor), a), d, r + k * kLanes);
  }
  return true;
}

template <typename T>
void Invert(size_t n, const T* x, T* r, T factor, T a, Function<T>* erfinv) {
  using K = ErfInvOf<T>;
  const typename K::Tag d;
  constexpr size_t kVectors = K::kUnroll, kLanes = hn::MaxLanes(d), kGroup = kVectors * kLanes;
  const auto vfactor = hn::Set(d, factor), va = hn::Set(d, a);
  for (size_t i = 0; i < n;) {
    const bool group = i + kGroup <= n, vector = i + kLanes <= n;
    const size_t count = group ? kGroup : vector ? kLanes : n - i;
    if (!(group    ? InvertGroup<kVectors>(d, x + i, r + i, vfactor, va)
          : vector ? InvertGroup<1>(d, x + i, r + i, vfactor, va)
                   : false)) {
      T y[kGroup];
      erfinv(static_cast<int32_t>(count), x + i, y);
      for (size_t k = 0; k < count; ++k) Put(r + i + k, y[k] * factor + a);
    }
    i += count;
  }
}

template <typename T>
constexpr Passes<T> kPasses = {TakeApart<T>, JoinPairs<T>, JoinSines<T>, Scale<T>, Invert<T>};

const Passes<double>* DoublePasses() { return &kPasses<double>; }
const Passes<float>* SinglePasses() { return &kPasses<float>; }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(DoublePasses);
HWY_EXPORT(SinglePasses);

namespace {

// ---- What vector math is borrowed, and what replaces its special elements. ----

template <typename T>
struct Math;

template <>
struct Math<double> {
  static constexpr auto Ln = math::dLn_26;
  static constexpr auto Sin = math::dSin_26;
  static constexpr auto SinCos = math::dSinCos_26;
  static constexpr auto Sqrt = math::dSqrt_26;
  static constexpr auto ErfInv = math::dErfInv_26;
  static const Passes<double>* Level() { return HWY_DYNAMIC_DISPATCH(DoublePasses)(); }
  static constexpr uint32_t kChunkKey = 2;
  static constexpr double kSqrt2 = 0x1.6a09e667f3bcdp+0;
  static constexpr double kLnOfZero = -0x1.74385446d71c3p+9;      // ln 2^-1074
  static constexpr double kNegative = -0x1.88bb0708b16b6p-1;      // -0.7670519064056041
  static constexpr double kLargestErfInv = 0x1.7744f8f74e94ap+2;  // erfinv(1 - 2^-53)
};

template <>
struct Math<float> {
  static constexpr auto Ln = math::sLn_21;
  static constexpr auto Sin = math::sSin_21;
  static constexpr auto SinCos = math::sSinCos_21;
  static constexpr auto Sqrt = math::sSqrt_21;
  static constexpr auto ErfInv = math::sErfInv_21;
  static const Passes<float>* Level() { return HWY_DYNAMIC_DISPATCH(SinglePasses)(); }
  static constexpr uint32_t kChunkKey = 1;
  static constexpr float kSqrt2 = 0x1.6a09e6p+0f;
  static constexpr float kLnOfZero = -0x1.9d1dap+6f;       // ln 2^-149
  static constexpr float kNegative = -0x1.15706ap+0f;      // -1.0837466
  static constexpr float kLargestErfInv = 0x1.ea8f96p+1f;  // erfinv(1 - 2^-24)
};

// The logarithm of 0 and the inverse error function at and beyond its poles stay finite, and so
// does whatever a user's generator outside [0, 1) asks for.
template <typename T>
int Replace(PexErrorContext* record) {
  const double x = record->arg1;
  if (record->code != PEX_STATUS_SINGULARITY && record->code != PEX_STATUS_DOMAIN) return 0;
  if (record->code == PEX_STATUS_SINGULARITY && x == 0) {
    return ReplaceBy(record, Math<T>::kLnOfZero);
  }
  return ReplaceBy(record, std::isless(x, 0.0) ? Math<T>::kNegative : Math<T>::kLargestErfInv);
}

// ---- Box-Muller. ----

constexpr size_t kBlock = 1024;

// The buffers of a block of pairs.
template <typename T, size_t kPairs>
struct Pairs {
  alignas(64) T u[2 * kPairs];
  alignas(64) T w[kPairs];      // the first of each pair, then the radius
  alignas(64) T angle[kPairs];  // then its sine
  const Passes<T>& passes = *Math<T>::Level();

  // Draws some pairs and makes the radii and the angles. Returns the status of the draw; a negative
  // one ends it. `whole` becomes how many elements there are, the last of them for padding.
  int32_t Draw(StreamState* stream, size_t pairs, int32_t* whole) {
    const int32_t status = Generate(stream, static_cast<int32_t>(2 * pairs), u, T(0), T(1));
    if (status < 0) return status;
    const size_t padded = (pairs + kWhole<T> - 1) / kWhole<T> * kWhole<T>;
    std::fill(u + 2 * pairs, u + 2 * padded, T(0.5));
    *whole = static_cast<int32_t>(padded);
    passes.take_apart(padded, u, w, angle, Math<T>::Ln, Math<T>::Sqrt);
    return status;
  }
};

template <typename T>
int32_t BoxMuller(StreamState* stream, int32_t n, T* r, T a, T sigma) {
  static_assert(kBlock % kWhole<T> == 0);
  Pairs<T, kBlock> pairs;
  const size_t block = RequestsAreUnseen(stream) ? kBlock / 2 : kBlock;  // half fits the cache
  int32_t status = QUO_OK;
  for (size_t left = static_cast<size_t>(n); left > 0;) {
    const size_t m = std::min(left, block);
    int32_t whole;
    status = pairs.Draw(stream, m, &whole);
    if (status < 0) return status;
    Math<T>::Sin(whole, pairs.angle, pairs.angle);
    pairs.passes.join_sines(m, pairs.w, pairs.angle, r, sigma, a);
    r += m;
    left -= m;
  }
  return status;
}

// ---- Both values of Box-Muller pairs. ----

constexpr int kNonePending = -1;  // in place of the first uniform

// The uniforms of a pair whose second value is still to come, null where there is no memory for
// them.
template <typename T>
std::array<T, 2>* FindOrAddPending(StreamState* stream) {
  using Pending = std::array<T, 2>;
  auto* pending = FindChunk<Pending>(stream, Math<T>::kChunkKey);
  if (pending != nullptr) return pending;
  pending = AddChunk<Pending>(stream, Math<T>::kChunkKey);
  if (pending != nullptr) pending->fill(kNonePending);
  return pending;
}

// The two values of one pair, by the functions that blocks of pairs use.
template <typename T>
struct OnePair {
  T sine, cosine;
  explicit OnePair(const T (&u)[2]) {
    T w = u[0];
    const T angle = u[1] * kTwoPi<T>;
    Math<T>::Ln(1, &w, &w);
    w = 0 - (w + w);
    Math<T>::Sqrt(1, &w, &w);
    Math<T>::SinCos(1, &angle, &sine, &cosine);
    sine = w * sine;
    cosine = w * cosine;
  }
};

// Whatever the split into calls, the same sequence. Mean and deviation are applied when nothing can
// fail any more: at once where the generator cannot.
template <typename T>
int32_t BoxMuller2(StreamState* stream, int32_t n, T* r, T a, T sigma) {
  auto* const kept = FindOrAddPending<T>(stream);
  if (kept == nullptr) return QUO_NO_MEMORY;
  T* const pending = kept->data();
  int32_t status = QUO_OK;
  const bool at_once = RequestsAreUnseen(stream);
  const T factor = at_once ? sigma : T(1), shift = at_once ? a : T(-0.0);  // x 1 + -0 is x

  T* out = r;
  size_t left = static_cast<size_t>(n);
  if (pending[0] != kNonePending) {
    Put(out++, OnePair<T>({pending[0], pending[1]}).cosine * factor + shift);
    --left;
  }

  Pairs<T, kBlock / 2> pairs;
  alignas(64) T cosine[kBlock / 2];
  for (size_t pairs_left = left / 2; pairs_left > 0;) {
    const size_t m = std::min(pairs_left, kBlock / 2);
    int32_t whole;
    status = pairs.Draw(stream, m, &whole);
    if (status < 0) return status;
    Math<T>::SinCos(whole, pairs.angle, pairs.angle, cosine);
    pairs.passes.join_pairs(m, pairs.w, pairs.angle, cosine, out, factor, shift);
    out += 2 * m;
    pairs_left -= m;
  }

  T u[2] = {kNonePending, kNonePending};
  if (left % 2 != 0) {
    status = Generate(stream, 2, u, T(0), T(1));
    if (status < 0) return status;
    Put(out, OnePair<T>(u).sine * factor + shift);
  }
  pending[0] = u[0];
  pending[1] = u[1];
  if (!at_once) pairs.passes.scale(static_cast<size_t>(n), r, r, sigma, a);
  return status;
}

// ---- Inversion: erfinv of a uniform on [-1, 1), times sqrt 2. ----

template <typename T>
int32_t Inversion(StreamState* stream, int32_t n, T* r, T a, T sigma) {
  const Passes<T>& passes = *Math<T>::Level();
  const T factor = sigma * Math<T>::kSqrt2;
  const size_t block = RequestsAreUnseen(stream) ? kBlock : static_cast<size_t>(n);
  int32_t status = QUO_OK;
  for (size_t left = static_cast<size_t>(n); left > 0;) {
    const size_t m = std::min(left, block);
    status = Generate(stream, static_cast<int32_t>(m), r, T(-1), T(1));
    if (status < 0) return status;
    passes.invert(m, r, r, factor, a, Math<T>::ErfInv);
    r += m;
    left -= m;
  }
  return status;
}

template <typename T>
int32_t Gaussian(uint32_t method, StreamState* stream, int32_t n, T* r, T a, T sigma) {
  using Kernel = int32_t (*)(StreamState*, int32_t, T*, T, T);
  static constexpr Kernel kKernels[] = {BoxMuller<T>, BoxMuller2<T>, Inversion<T>};
  if (method >= std::size(kKernels)) return QUO_BAD_METHOD;
  if (n < 1) return QUO_OK;
  const VectorMath vector_math(Replace<T>);
  return kKernels[method](stream, n, r, a, sigma);
}

}  // namespace

extern "C" QUO_API int32_t _quodRngGaussian(uint32_t method, StreamState* stream, int32_t n,
                                            double* r, double a, double sigma) {
  return Gaussian(method, stream, n, r, a, sigma);
}

extern "C" QUO_API int32_t _quosRngGaussian(uint32_t method, StreamState* stream, int32_t n,
                                            float* r, float a, float sigma) {
  return Gaussian(method, stream, n, r, a, sigma);
}

}  // namespace quo
#endif
