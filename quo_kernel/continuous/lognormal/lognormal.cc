// Lognormal: max(b, x beta + b), x = exp(z), z normal with mean a and deviation sigma by the form
// of Box and Muller that gives both numbers of a pair. An overflow stays infinite. No callback of
// its own stands behind the exponential: what overflows or underflows is reported as the caller has
// set.
#include "pexquo/quo.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/vector_math.h"

namespace quo {
namespace {

constexpr uint32_t kBoxMuller2 = 1;

int32_t Gaussian(StreamState* stream, int32_t n, double* r, double a, double sigma) {
  return _quodRngGaussian(kBoxMuller2, stream, n, r, a, sigma);
}
int32_t Gaussian(StreamState* stream, int32_t n, float* r, float a, float sigma) {
  return _quosRngGaussian(kBoxMuller2, stream, n, r, a, sigma);
}

template <typename T>
int32_t Lognormal(StreamState* stream, int32_t n, T* r, T a, T sigma, T b, T beta) {
  const int32_t status = Gaussian(stream, n, r, a, sigma);
  if (status < 0 || n < 1) return status;
  ExpAsSet(n, r);
  const QuietCall quiet;
  DisplaceUp(n, r, b, beta);
  return status;
}

}  // namespace

extern "C" QUO_API int32_t _quodRngLognormal(uint32_t, StreamState* stream, int32_t n, double* r,
                                             double a, double sigma, double b, double beta) {
  return Lognormal(stream, n, r, a, sigma, b, beta);
}

extern "C" QUO_API int32_t _quosRngLognormal(uint32_t, StreamState* stream, int32_t n, float* r,
                                             float a, float sigma, float b, float beta) {
  return Lognormal(stream, n, r, a, sigma, b, beta);
}

}  // namespace quo
