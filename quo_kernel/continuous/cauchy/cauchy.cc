// Cauchy: tan(u) beta + a, u uniform on [-pi/2, pi/2). The tangent of a floating-point number is
// always finite.
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/vector_math.h"

namespace quo {
namespace {

constexpr double _quodCauchyTab[] = {1.5707963267948966, -1.5707963267948966};
constexpr float _quosCauchyTab[] = {1.57079637f, -1.57079637f};

template <const auto& kTab, typename T>
int32_t Cauchy(StreamState* stream, int32_t n, T* r, T a, T beta) {
  const VectorMath borrowed(KeepResults);
  const int32_t status = Generate(stream, n, r, kTab[1], kTab[0]);
  if (status < 0) return status;
  InBlocks(n, r, [=](int32_t m, T* x) {
    Tan(m, x);
    Displace(m, x, a, beta);
  });
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
