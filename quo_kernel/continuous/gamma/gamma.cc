// Gamma: max(a, x beta + a), x of shape alpha: candidates of G. Marsaglia and W. W. Tsang's method
// (candidates-inl.h), for shape 1 -log(1 - u). Single precision is the double result rounded.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/continuous/gamma/gamma.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/_kernel/chunk.h"
#include "quo_kernel/_kernel/compress-inl.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/rejection.h"
#include "quo_kernel/continuous/gamma/candidates-inl.h"
#include "quo_kernel/continuous/gamma/displaced-inl.h"
#include "quo_kernel/continuous/gamma/sieve-inl.h"

#ifndef QUO_KERNEL_CONTINUOUS_GAMMA_GAMMA_CC_  // once, not once per vector level
#define QUO_KERNEL_CONTINUOUS_GAMMA_GAMMA_CC_
namespace quo {
namespace {

constexpr int32_t kBlock = 512;

// A sieve of kBlock candidates at most, in the sense of Reject.
template <typename T>
using GammaSieve = int32_t (*)(const GammaShape* shape, int32_t m, double* u, T* r, double a,
                               double beta);

}  // namespace
}  // namespace quo
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

// A group of vectors of candidates; the accepted numbers go to x, which has room for all. Their
// count.
template <int kUniforms, size_t kVectors>
HWY_INLINE size_t SieveGroup(const GammaShape* shape, const double* HWY_RESTRICT u,
                             double* HWY_RESTRICT x) {
  const hn::ScalableTag<double> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  using V = hn::Vec<decltype(d)>;
  V u_normal[1][kVectors], u_accept[kVectors], u_power[kVectors], cube[1][kVectors];
  hn::Mask<decltype(d)> accepted[kVectors];
  for (size_t k = 0; k < kVectors; ++k) {
    const double* first = u + kUniforms * kLanes * k;
    if constexpr (kUniforms == 2) {
      hn::LoadInterleaved2(d, first, u_normal[0][k], u_accept[k]);
    } else {
      hn::LoadInterleaved3(d, first, u_normal[0][k], u_accept[k], u_power[k]);
    }
  }
  GammaCandidates(d, shape, u_normal, u_accept, cube, accepted);
  V(&r)[kVectors] = cube[0];
  for (size_t k = 0; k < kVectors; ++k) r[k] = hn::Mul(r[k], hn::Set(d, shape->d));
  if constexpr (kUniforms == 3) {
    V t[kVectors];
    LogPowers(d, shape->power, u_power, t);
    TimesExp(d, t, r);
  }
  size_t count = 0;
  for (size_t k = 0; k < kVectors; ++k) {
    count += StoreChosen(d, r[k], accepted[k], x + count);
  }
  return count;
}

template <int kUniforms, typename T>
int32_t Sieve(const GammaShape* shape, int32_t m, double* u, T* r, double a, double beta) {
  return SieveBlock<kUniforms, 4, kBlock>(
      m, u,
      [&](auto vectors, const double* first, double* x)
          HWY_ATTR { return SieveGroup<kUniforms, vectors>(shape, first, x); },
      [&](size_t count, const double* x) HWY_ATTR { StoreDisplaced(count, x, r, a, beta); });
}

template <typename T>
GammaSieve<T> SieveOf(const GammaShape* shape) {
  return shape->Uniforms() == 2 ? Sieve<2, T> : Sieve<3, T>;
}

GammaSieve<double> DoubleSieve(const GammaShape* shape) { return SieveOf<double>(shape); }
GammaSieve<float> SingleSieve(const GammaShape* shape) { return SieveOf<float>(shape); }

// r = max(a, a - beta log(1 - u))
template <typename T>
HWY_INLINE void StoreExponentials(size_t n, double* HWY_RESTRICT u, T* r, double a, double beta) {
  const hn::ScalableTag<double> d;
  constexpr size_t kLanes = hn::MaxLanes(d), kVectors = 4;
  static_assert(kBlock % (kLanes * kVectors) == 0);
  std::fill(u + n, u + (n + kLanes * kVectors - 1) / (kLanes * kVectors) * (kLanes * kVectors),
            0.25);
  for (size_t i = 0; i < n; i += kLanes * kVectors) {
    hn::Vec<decltype(d)> x[kVectors], log[kVectors];
    for (size_t k = 0; k < kVectors; ++k) {
      const auto rest = hn::Sub(hn::Set(d, 1.0), hn::Load(d, u + i + k * kLanes));
      x[k] = hn::Max(rest, hn::Set(d, 0x1p-53));
    }
    level::LogEP<pex::NaturalLog>(d, x, log);
    for (size_t k = 0; k < kVectors; ++k) hn::Store(hn::Neg(log[k]), d, u + i + k * kLanes);
  }
  StoreDisplaced(n, u, r, a, beta);
}

void DoubleExponentials(size_t n, double* u, double* r, double a, double beta) {
  StoreExponentials(n, u, r, a, beta);
}
void SingleExponentials(size_t n, double* u, float* r, double a, double beta) {
  StoreExponentials(n, u, r, a, beta);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(DoubleSieve);
HWY_EXPORT(SingleSieve);
HWY_EXPORT(DoubleExponentials);
HWY_EXPORT(SingleExponentials);

namespace {

template <typename T>
struct Level;
template <>
struct Level<double> {
  static GammaSieve<double> SieveOf(const GammaShape* shape) {
    return HWY_DYNAMIC_DISPATCH(DoubleSieve)(shape);
  }
  static void Exponentials(int32_t n, double* u, double* r, double a, double beta) {
    HWY_DYNAMIC_DISPATCH(DoubleExponentials)(static_cast<size_t>(n), u, r, a, beta);
  }
};
template <>
struct Level<float> {
  static GammaSieve<float> SieveOf(const GammaShape* shape) {
    return HWY_DYNAMIC_DISPATCH(SingleSieve)(shape);
  }
  static void Exponentials(int32_t n, double* u, float* r, double a, double beta) {
    HWY_DYNAMIC_DISPATCH(SingleExponentials)(static_cast<size_t>(n), u, r, a, beta);
  }
};

// ---- The constants of the last shape, kept with the stream. ----

// The key: "GAM", and the bytes of a result.
template <typename T>
uint32_t Key() {
  uint32_t key = 0;
  for (const char c : {'G', 'A', 'M'}) key = key << 8 | static_cast<uint32_t>(c);
  return key << 8 | sizeof(T);
}

struct Constants {
  double alpha;
  GammaShape shape;
};

// The constants of alpha from the stream's chunk, which is added or brought up to date. A chunk of
// another size, as a file may bring, is passed over; one of another content is as of another shape.
template <typename T>
int32_t FindOrAddShape(StreamState* stream, double alpha, const GammaShape** shape) {
  auto* constants = FindChunk<Constants>(stream, Key<T>());
  const bool added = constants == nullptr;
  if (added && (constants = AddChunk<Constants>(stream, Key<T>())) == nullptr) return QUO_NO_MEMORY;
  if (added || constants->alpha != alpha || !constants->shape.Fits(alpha)) {
    *constants = {alpha, GammaShape(alpha)};
  }
  *shape = &constants->shape;
  return QUO_OK;
}

template <typename T>
int32_t Exponential(StreamState* stream, int32_t n, T* r, double a, double beta) {
  return GenerateInBlocks<kBlock>(stream, n, r, 0.0, 1.0, [=](int32_t m, double* u, T* x) {
    Level<T>::Exponentials(m, u, x, a, beta);
  });
}

template <typename T>
int32_t Gamma(StreamState* stream, int32_t n, T* r, T single_alpha, T single_a, T single_beta) {
  if (n < 1) return QUO_OK;
  const QuietCall quiet;
  const double alpha = AfterControl(single_alpha);
  const double a = AfterControl(single_a), beta = AfterControl(single_beta);
  if (alpha == 1) return Exponential(stream, n, r, a, beta);
  const GammaShape* shape;
  const int32_t status = FindOrAddShape<T>(stream, alpha, &shape);
  if (status < 0) return status;
  const auto sieve = [=, kept = Level<T>::SieveOf(shape)](int32_t m, double* u, T* x) {
    return kept(shape, m, u, x, a, beta);
  };
  return shape->Uniforms() == 2 ? Reject<2, kBlock>(stream, n, r, sieve)
                                : Reject<3, kBlock>(stream, n, r, sieve);
}

}  // namespace

extern "C" QUO_API int32_t _quodRngGamma(uint32_t, StreamState* stream, int32_t n, double* r,
                                         double alpha, double a, double beta) {
  return Gamma(stream, n, r, alpha, a, beta);
}

extern "C" QUO_API int32_t _quosRngGamma(uint32_t, StreamState* stream, int32_t n, float* r,
                                         float alpha, float a, float beta) {
  return Gamma(stream, n, r, alpha, a, beta);
}

}  // namespace quo
#endif
