// The normal distributions as they are defined: uniform by uniform, on vector functions called for
// one element at a time, with the replacements of special elements written out.
#ifndef TESTS_GAUSSIAN_GAUSSIAN_REFERENCE_H_
#define TESTS_GAUSSIAN_GAUSSIAN_REFERENCE_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "pexquo/pex.h"
#include "pexquo/quo.h"

namespace reference {

inline int32_t Uniform(StreamState* s, int32_t n, double* r, double a, double b) {
  return _quodRngUniform(0, s, n, r, a, b);
}
inline int32_t Uniform(StreamState* s, int32_t n, float* r, float a, float b) {
  return _quosRngUniform(0, s, n, r, a, b);
}
inline int32_t Gaussian(uint32_t method, StreamState* s, int32_t n, double* r, double a,
                        double sigma) {
  return _quodRngGaussian(method, s, n, r, a, sigma);
}
inline int32_t Gaussian(uint32_t method, StreamState* s, int32_t n, float* r, float a,
                        float sigma) {
  return _quosRngGaussian(method, s, n, r, a, sigma);
}
inline int32_t GaussianMV(uint32_t method, StreamState* s, int32_t n, double* r, int32_t m,
                          int32_t storage, const double* a, const double* t) {
  return _quodRngGaussianMV(method, s, n, r, m, storage, a, t);
}
inline int32_t GaussianMV(uint32_t method, StreamState* s, int32_t n, float* r, int32_t m,
                          int32_t storage, const float* a, const float* t) {
  return _quosRngGaussianMV(method, s, n, r, m, storage, a, t);
}

struct Double {
  using T = double;
  static constexpr auto Ln = _pexdLn_26;
  static constexpr auto Sin = _pexdSin_26;
  static constexpr auto SinCos = _pexdSinCos_26;
  static constexpr auto Sqrt = _pexdSqrt_26;
  static constexpr auto ErfInv = _pexdErfInv_26;
  static constexpr T kTwoPi = 6.283185307179586, kSqrt2 = 1.4142135623730951;
  static constexpr T kZero = -744.4400719213812, kNegative = -0.7670519064056041,
                     kPositive = 5.8635847487551676;
  static constexpr uint32_t kKey = 2;
};
struct Single {
  using T = float;
  static constexpr auto Ln = _pexsLn_21;
  static constexpr auto Sin = _pexsSin_21;
  static constexpr auto SinCos = _pexsSinCos_21;
  static constexpr auto Sqrt = _pexsSqrt_21;
  static constexpr auto ErfInv = _pexsErfInv_21;
  static constexpr T kTwoPi = 6.2831855f, kSqrt2 = 1.4142135f;
  static constexpr T kZero = -103.27893f, kNegative = -1.0837466f, kPositive = 3.8325069f;
  static constexpr uint32_t kKey = 1;
};

// A function of one element; special elements, which have a status code, replaced.
template <class P, class F>
typename P::T Of(F* function, typename P::T x) {
  typename P::T r;
  const int32_t before = _pexClearErrStatus();
  function(1, &x, &r);
  const int32_t code = _pexSetErrStatus(before);
  if (code == PEX_STATUS_SINGULARITY && x == 0) return P::kZero;
  if (code == PEX_STATUS_SINGULARITY || code == PEX_STATUS_DOMAIN) {
    return x < 0 ? P::kNegative : P::kPositive;
  }
  return r;
}

template <class P>
typename P::T Radius(typename P::T u1) {
  const typename P::T w = Of<P>(P::Ln, u1);
  return Of<P>(P::Sqrt, 0 - (w + w));
}

// n values from the stream's uniforms, none pending before.
template <class P>
std::vector<typename P::T> Values(uint32_t method, StreamState* stream, int32_t n, typename P::T a,
                                  typename P::T sigma) {
  using T = typename P::T;
  const auto count = static_cast<size_t>(n);
  const int32_t uniforms = method == 0 ? 2 * n : method == 1 ? n + n % 2 : n;
  std::vector<T> u(static_cast<size_t>(uniforms)), r(count);
  Uniform(stream, uniforms, u.data(), T(method == 2 ? -1 : 0), T(1));
  for (size_t i = 0; i < count; ++i) {
    if (method == 0) {
      r[i] = (Radius<P>(u[2 * i]) * Of<P>(P::Sin, u[2 * i + 1] * P::kTwoPi)) * sigma + a;
    } else if (method == 1) {
      const T angle = u[i / 2 * 2 + 1] * P::kTwoPi;
      T sine, cosine;
      P::SinCos(1, &angle, &sine, &cosine);
      const T x = Radius<P>(u[i / 2 * 2]) * (i % 2 == 0 ? sine : cosine);
      r[i] = x * sigma + a;
    } else {
      r[i] = Of<P>(P::ErfInv, u[i]) * (sigma * P::kSqrt2) + a;
    }
  }
  return r;
}

template <typename T>
std::vector<unsigned char> Bytes(const T* p, size_t n) {
  std::vector<unsigned char> bytes(n * sizeof(T));
  if (n > 0) std::memcpy(bytes.data(), p, bytes.size());
  return bytes;
}
template <typename T>
std::vector<unsigned char> Bytes(const std::vector<T>& v) {
  return Bytes(v.data(), v.size());
}

// The index of the first element that differs, or -1.
template <typename T>
int64_t FirstDifference(const T* x, const std::vector<T>& want) {
  for (size_t i = 0; i < want.size(); ++i) {
    if (std::memcmp(x + i, &want[i], sizeof(T)) != 0) return static_cast<int64_t>(i);
  }
  return -1;
}

inline StreamState* NewStream(int32_t id, uint32_t seed) {
  StreamState* stream = nullptr;
  __quoNewStreamEx(&stream, id, 1, &seed);
  return stream;
}

}  // namespace reference

#endif  // TESTS_GAUSSIAN_GAUSSIAN_REFERENCE_H_
