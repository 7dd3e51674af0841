// Uniform, normal, the distributions by inversion, Bernoulli and geometric, with their conditions.
#include <cstdint>
#include <limits>

#include "front/draw.h"
#include "pexquo/pexquo.h"
#include "quo_kernel/discrete/_kernel/ends.h"

namespace pexquo_front {
namespace {

constexpr int32_t kGaussianMethods = QUO_METHOD_GAUSSIAN_ICDF + 1;

// The standard method and the accurate one, whose number is not the next.
template <typename Kernel, typename T>
int32_t DrawUniform(Kernel kernel, int32_t method, QuoStream* stream, int64_t n, T* r, T a, T b) {
  constexpr auto kAccurate = static_cast<int32_t>(QUO_METHOD_ACCURATE);
  const Request<T> request{method == kAccurate ? 0 : method, 1, stream, n, r};
  const auto draw = [kernel, method](uint32_t, QuoStream* from, int32_t count, T* part, T least,
                                     T most) {
    return kernel(static_cast<uint32_t>(method), from, count, part, least, most);
  };
  return Draw(draw, request, Range(a, b), a, b);
}

// How many numbers a factor of a dimension has.
int64_t FactorSize(int64_t dimension, int32_t storage) {
  switch (storage) {
    case QUO_STORAGE_FULL:
      return dimension * dimension;
    case QUO_STORAGE_PACKED:
      return dimension * (dimension + 1) / 2;
    default:
      return dimension;
  }
}

// Of a full factor, what stands above the diagonal is not read.
template <typename T>
int32_t FiniteFactor(const T* t, int64_t dimension, int32_t storage) {
  if (storage != QUO_STORAGE_FULL) {
    return AllFinite(std::span<const T>(t, static_cast<size_t>(FactorSize(dimension, storage))));
  }
  for (int64_t i = 0; i < dimension; ++i) {
    const std::span<const T> row(t + i * dimension, static_cast<size_t>(i + 1));
    if (const int32_t refused = AllFinite(row)) return refused;
  }
  return QUO_OK;
}

template <typename Kernel, typename T>
int32_t DrawGaussianMV(Kernel kernel, const Request<T>& request, int32_t dimension, int32_t storage,
                       const T* a, const T* t) {
  const bool fits = dimension >= 1 && request.n <= std::numeric_limits<int64_t>::max() / dimension;
  if (const int32_t refused = First(
          {Refusal(request), Unless(fits, QUO_BAD_DIMENSION),
           Unless(storage >= QUO_STORAGE_FULL && storage <= QUO_STORAGE_DIAGONAL, QUO_BAD_STORAGE),
           Unless(a != nullptr && t != nullptr, QUO_NULL_ARRAY)})) {
    return refused;
  }
  if (const int32_t refused =
          First({AllFinite(std::span<const T>(a, static_cast<size_t>(dimension))),
                 FiniteFactor(t, dimension, storage)})) {
    return refused;
  }
  return InPieces(request.n, request.r, dimension, [&](int32_t n, T* r) {
    return kernel(static_cast<uint32_t>(request.method), request.stream, n, r, dimension, storage,
                  a, t);
  });
}

}  // namespace
}  // namespace pexquo_front

using pexquo_front::Draw;
using pexquo_front::DrawGaussianMV;
using pexquo_front::DrawUniform;
using pexquo_front::First;
using pexquo_front::kGaussianMethods;
using pexquo_front::Probability;
using pexquo_front::ProbabilityOfSuccess;
using pexquo_front::Request;
using pexquo_front::Scaled;
using pexquo_front::Shapes;
using pexquo_front::Unless;

extern "C" {

int32_t quodRngUniform(int32_t method, QuoStream* stream, int64_t n, double* r, double a,
                       double b) {
  return DrawUniform(_quodRngUniform, method, stream, n, r, a, b);
}
int32_t quosRngUniform(int32_t method, QuoStream* stream, int64_t n, float* r, float a, float b) {
  return DrawUniform(_quosRngUniform, method, stream, n, r, a, b);
}
int32_t quoiRngUniform(int32_t method, QuoStream* stream, int64_t n, int32_t* r, int32_t a,
                       int32_t b) {
  const Request<int32_t> request{method, 1, stream, n, r};
  return Draw(quo::DrawIntegers, request, Unless(a < b, QUO_EMPTY_RANGE), a, b);
}

int32_t quoiRngUniformBits(int32_t method, QuoStream* stream, int64_t n, uint32_t* r) {
  const Request<uint32_t> request{method, 1, stream, n, r};
  if (const int32_t status = pexquo_front::Refusal(request)) return status;
  BrngProperties properties;
  if (const int32_t status = __quoGetBrngProperties(stream->id, &properties)) return status;
  return pexquo_front::InPieces(n, r, properties.WordBytes / 4, [&](int32_t count, uint32_t* part) {
    return _quoiRngUniformBits(static_cast<uint32_t>(method), stream, count, part);
  });
}

#define FRONT_A_SIGMA(T) T a, T sigma
#define FRONT_A_BETA(T) T a, T beta
#define FRONT_ALPHA_A_BETA(T) T alpha, T a, T beta
#define FRONT_A_SIGMA_B_BETA(T) T a, T sigma, T b, T beta

FRONT_REAL(Gaussian, kGaussianMethods, FRONT_A_SIGMA, (a, sigma), Scaled(a, sigma))
FRONT_REAL(Exponential, 1, FRONT_A_BETA, (a, beta), Scaled(a, beta))
FRONT_REAL(Laplace, 1, FRONT_A_BETA, (a, beta), Scaled(a, beta))
FRONT_REAL(Weibull, 1, FRONT_ALPHA_A_BETA, (alpha, a, beta),
           First({Shapes(alpha), Scaled(a, beta)}))
FRONT_REAL(Cauchy, 1, FRONT_A_BETA, (a, beta), Scaled(a, beta))
FRONT_REAL(Rayleigh, 1, FRONT_A_BETA, (a, beta), Scaled(a, beta))
FRONT_REAL(Lognormal, 1, FRONT_A_SIGMA_B_BETA, (a, sigma, b, beta),
           First({Scaled(a, sigma), Scaled(b, beta)}))
FRONT_REAL(Gumbel, 1, FRONT_A_BETA, (a, beta), Scaled(a, beta))

int32_t quodRngGaussianMV(int32_t method, QuoStream* stream, int64_t n, double* r, int32_t dimen,
                          int32_t mstorage, const double* a, const double* t) {
  const Request<double> request{method, kGaussianMethods, stream, n, r};
  return DrawGaussianMV(_quodRngGaussianMV, request, dimen, mstorage, a, t);
}
int32_t quosRngGaussianMV(int32_t method, QuoStream* stream, int64_t n, float* r, int32_t dimen,
                          int32_t mstorage, const float* a, const float* t) {
  const Request<float> request{method, kGaussianMethods, stream, n, r};
  return DrawGaussianMV(_quosRngGaussianMV, request, dimen, mstorage, a, t);
}

int32_t quoiRngBernoulli(int32_t method, QuoStream* stream, int64_t n, int32_t* r, double p) {
  const Request<int32_t> request{method, 1, stream, n, r};
  return Draw(quo::DrawBernoulli, request, Probability(p), p);
}
int32_t quoiRngGeometric(int32_t method, QuoStream* stream, int64_t n, int32_t* r, double p) {
  const Request<int32_t> request{method, 1, stream, n, r};
  return Draw(_quoiRngGeometric, request, ProbabilityOfSuccess(p), p);
}
}
