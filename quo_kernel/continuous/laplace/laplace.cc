// Laplace, from pairs (u1, u2) uniform on [0, 1): a - beta log(u1) if u2 <= 1/2, else
// a + beta log(u1). log(0) is the logarithm of the smallest positive number.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/continuous/laplace/laplace.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/unaligned.h"
#include "quo_kernel/_kernel/vector_math.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// u1[i] = the first of pair i
template <typename T>
HWY_INLINE void TakeFirsts(size_t n, const T* pairs, T* u1) {
  const hn::ScalableTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  size_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    const auto lower = hn::Load(d, pairs + 2 * i), upper = hn::Load(d, pairs + 2 * i + kLanes);
    hn::Store(hn::ConcatEven(d, upper, lower), d, u1 + i);
  }
  for (; i < n; ++i) u1[i] = pairs[2 * i];
}

// r[i] = r[i] (-beta) + a if the second of pair i is at most 1/2, else r[i] beta + a
template <typename T>
HWY_INLINE void Combine(size_t n, const T* pairs, T* r, T a, T beta) {
  const hn::ScalableTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  const auto shift = hn::Set(d, a), lower_scale = hn::Set(d, beta), upper_scale = hn::Set(d, -beta);
  const auto half = hn::Set(d, T(0.5));
  size_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    const auto lower = hn::Load(d, pairs + 2 * i), upper = hn::Load(d, pairs + 2 * i + kLanes);
    const auto above = hn::Le(hn::ConcatOdd(d, upper, lower), half);
    const auto scale = hn::IfThenElse(above, upper_scale, lower_scale);
    hn::StoreU(hn::Add(hn::Mul(hn::LoadU(d, r + i), scale), shift), d, r + i);
  }
  for (; i < n; ++i) Put(r + i, Get(r + i) * (pairs[2 * i + 1] <= T(0.5) ? -beta : beta) + a);
}

#define QUO_LAPLACE_PASSES(T, t)                                                    \
  void t##TakeFirsts(size_t n, const T* pairs, T* u1) { TakeFirsts(n, pairs, u1); } \
  void t##Combine(size_t n, const T* pairs, T* r, T a, T beta) { Combine(n, pairs, r, a, beta); }
QUO_LAPLACE_PASSES(double, d)
QUO_LAPLACE_PASSES(float, s)
#undef QUO_LAPLACE_PASSES

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

#define QUO_LAPLACE_PASSES(T, t)                                     \
  HWY_EXPORT(t##TakeFirsts);                                         \
  HWY_EXPORT(t##Combine);                                            \
  static void TakeFirsts(size_t n, const T* pairs, T* u1) {          \
    HWY_DYNAMIC_DISPATCH(t##TakeFirsts)(n, pairs, u1);               \
  }                                                                  \
  static void Combine(size_t n, const T* pairs, T* r, T a, T beta) { \
    HWY_DYNAMIC_DISPATCH(t##Combine)(n, pairs, r, a, beta);          \
  }
QUO_LAPLACE_PASSES(double, d)
QUO_LAPLACE_PASSES(float, s)
#undef QUO_LAPLACE_PASSES

namespace {

constexpr double _quodLaplaceTab[] = {kLnSmallest, 1.0};
constexpr float _quosLaplaceTab[] = {kLnSmallestSingle, 1.0f};

template <const auto& kTab, typename T>
int32_t Laplace(StreamState* stream, int32_t n, T* r, T a, T beta) {
  constexpr int32_t kBlock = 1024;
  const VectorMath borrowed(ReplaceAll<kTab>);
  alignas(64) T pairs[2 * kBlock], u1[kBlock];
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0; left -= kBlock, r += kBlock) {
    const int32_t m = std::min(left, kBlock);
    status = Generate(stream, 2 * m, pairs, T(0), kTab[1]);
    if (status < 0) break;
    TakeFirsts(static_cast<size_t>(m), pairs, u1);
    Ln(m, u1, r);
    Combine(static_cast<size_t>(m), pairs, r, a, beta);
  }
  return status;
}

}  // namespace

extern "C" QUO_API int32_t _quodRngLaplace(uint32_t, StreamState* stream, int32_t n, double* r,
                                           double a, double beta) {
  return Laplace<_quodLaplaceTab>(stream, n, r, a, beta);
}

extern "C" QUO_API int32_t _quosRngLaplace(uint32_t, StreamState* stream, int32_t n, float* r,
                                           float a, float beta) {
  return Laplace<_quosLaplaceTab>(stream, n, r, a, beta);
}

}  // namespace quo
#endif
