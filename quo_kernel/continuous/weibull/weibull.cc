// Weibull: max(a, x beta + a), x = (-log(u))^(1/alpha), u uniform on [0, 1). log(0) is the
// logarithm of the smallest positive number.
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/vector_math.h"

namespace quo {
namespace {

constexpr double _quodWeibullTab[] = {kLnSmallest, 1.0};
constexpr float _quosWeibullTab[] = {kLnSmallestSingle, 1.0f};

template <const auto& kTab, typename T>
int32_t Weibull(StreamState* stream, int32_t n, T* r, T alpha, T a, T beta) {
  const VectorMath borrowed(ReplacePoles<kTab>);
  const int32_t status = Generate(stream, n, r, T(0), kTab[1]);
  if (status < 0) return status;
  const T power = kTab[1] / AfterControl(alpha);
  InBlocks(n, r, [=](int32_t m, T* x) {
    Ln(m, x);
    Negate(m, x);
    Powx(m, x, power);
    DisplaceUp(m, x, a, beta);
  });
  return status;
}

}  // namespace

extern "C" QUO_API int32_t _quodRngWeibull(uint32_t, StreamState* stream, int32_t n, double* r,
                                           double alpha, double a, double beta) {
  return Weibull<_quodWeibullTab>(stream, n, r, alpha, a, beta);
}

extern "C" QUO_API int32_t _quosRngWeibull(uint32_t, StreamState* stream, int32_t n, float* r,
                                           float alpha, float a, float beta) {
  return Weibull<_quosWeibullTab>(stream, n, r, alpha, a, beta);
}

}  // namespace quo
