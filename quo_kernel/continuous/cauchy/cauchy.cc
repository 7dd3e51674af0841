// Cauchy: tan(u) beta + a, u uniform on [-pi/2, pi/2). The tangent of a floating-point number is
// always finite, so no callback stands behind it: the generator and the tangent of what a user's
// generator gives outside the bounds meet the caller's settings.
#include "pexquo/quo.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/vector_math.h"

namespace quo {
namespace {

constexpr double _quodCauchyTab[] = {1.5707963267948966, -1.5707963267948966};
constexpr float _quosCauchyTab[] = {1.57079637f, -1.57079637f};

constexpr uint32_t kStandard = 0;

int32_t Uniform(StreamState* stream, int32_t n, double* r, double a, double b) {
  return _quodRngUniform(kStandard, stream, n, r, a, b);
}
int32_t Uniform(StreamState* stream, int32_t n, float* r, float a, float b) {
  return _quosRngUniform(kStandard, stream, n, r, a, b);
}

template <const auto& kTab, typename T>
int32_t Cauchy(StreamState* stream, int32_t n, T* r, T a, T beta) {
  const int32_t status = Uniform(stream, n, r, kTab[1], kTab[0]);
  if (status < 0 || n < 1) return status;
  TanAsSet(n, r);
  const QuietCall quiet;
  Displace(n, r, a, beta);
  return status;
}

}  // namespace

extern "C" QUO_API int32_t _quodRngCauchy(uint32_t, StreamState* stream, int32_t n, double* r,
                                          double a, double beta) {
  return Cauchy<_quodCauchyTab>(stream, n, r, a, beta);
}

extern "C" QUO_API int32_t _quosRngCauchy(uint32_t, StreamState* stream, int32_t n, float* r,
                                          float a, float beta) {
  return Cauchy<_quosCauchyTab>(stream, n, r, a, beta);
}

}  // namespace quo
