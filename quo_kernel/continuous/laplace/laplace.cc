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

// beta with the sign that u2 gives the logarithm.
template <class D, class V>
HWY_INLINE V Signed(D d, V u2, V beta) {
  return hn::IfThenElse(hn::Le(u2, hn::Set(d, hn::TFromD<D>(0.5))), hn::Neg(beta), beta);
}

// Of pairs, u1 to the front and beta signed to `factor`.
template <typename T>
HWY_INLINE void Split(size_t n, T* pairs, T* factor, T beta) {
  const hn::ScalableTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  const auto scale = hn::Set(d, beta);
  size_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    const auto lower = hn::Load(d, pairs + 2 * i), upper = hn::Load(d, pairs + 2 * i + kLanes);
    hn::Store(hn::ConcatEven(d, upper, lower), d, pairs + i);
    hn::Store(Signed(d, hn::ConcatOdd(d, upper, lower), scale), d, factor + i);
  }
  for (; i < n; ++i) {
    factor[i] = pairs[2 * i + 1] <= T(0.5) ? -beta : beta;
    pairs[i] = pairs[2 * i];
  }
}

// r[i] = r[i] factor[i] + a
template <typename T>
HWY_INLINE void Combine(size_t n, const T* factor, T* r, T a) {
  const hn::ScalableTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  const auto shift = hn::Set(d, a);
  size_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    const auto product = hn::Mul(hn::LoadU(d, r + i), hn::LoadU(d, factor + i));
    hn::StoreU(hn::Add(product, shift), d, r + i);
  }
  for (; i < n; ++i) Put(r + i, Get(r + i) * factor[i] + a);
}

void dSplit(size_t n, double* pairs, double* factor, double beta) { Split(n, pairs, factor, beta); }
void sSplit(size_t n, float* pairs, float* factor, float beta) { Split(n, pairs, factor, beta); }
void dCombine(size_t n, const double* factor, double* r, double a) { Combine(n, factor, r, a); }
void sCombine(size_t n, const float* factor, float* r, float a) { Combine(n, factor, r, a); }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(dSplit);
HWY_EXPORT(sSplit);
HWY_EXPORT(dCombine);
HWY_EXPORT(sCombine);

namespace {

constexpr double _quodLaplaceTab[] = {kLnSmallest, 1.0};
constexpr float _quosLaplaceTab[] = {kLnSmallestSingle, 1.0f};

void Split(size_t n, double* pairs, double* factor, double beta) {
  HWY_DYNAMIC_DISPATCH(dSplit)(n, pairs, factor, beta);
}
void Split(size_t n, float* pairs, float* factor, float beta) {
  HWY_DYNAMIC_DISPATCH(sSplit)(n, pairs, factor, beta);
}
void Combine(size_t n, const double* factor, double* r, double a) {
  HWY_DYNAMIC_DISPATCH(dCombine)(n, factor, r, a);
}
void Combine(size_t n, const float* factor, float* r, float a) {
  HWY_DYNAMIC_DISPATCH(sCombine)(n, factor, r, a);
}

template <const auto& kTab, typename T>
int32_t Laplace(StreamState* stream, int32_t n, T* r, T a, T beta) {
  constexpr int32_t kBlock = 1024;
  const VectorMath borrowed(ReplaceAll<kTab>);
  alignas(64) T pairs[2 * kBlock], factor[kBlock];
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0; left -= kBlock, r += kBlock) {
    const int32_t m = std::min(left, kBlock);
    status = Generate(stream, 2 * m, pairs, T(0), kTab[1]);
    if (status < 0) break;
    Split(static_cast<size_t>(m), pairs, factor, beta);
    Ln(m, pairs, r);
    Combine(static_cast<size_t>(m), factor, r, a);
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
