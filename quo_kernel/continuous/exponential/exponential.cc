// Exponential: max(a, a - beta log(u)), u uniform on [0, 1). The maximum keeps rounding from going
// below a; log(0) is the logarithm of the smallest positive number.
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/vector_math.h"

namespace quo {
namespace {

constexpr double _quodExponentialTab[] = {kLnSmallest, 1.0};
constexpr float _quosExponentialTab[] = {kLnSmallestSingle, 1.0f};

template <const auto& kTab, typename T>
int32_t Exponential(StreamState* stream, int32_t n, T* r, T a, T beta) {
  const VectorMath borrowed(ReplaceAll<kTab>);
  const int32_t status = Generate(stream, n, r, T(0), kTab[1]);
  if (status < 0) return status;
  InBlocks(n, r, [=](int32_t m, T* x) {
    Ln(m, x);
    DisplaceDown(m, x, a, beta);
  });
  return status;
}

}  // namespace

extern "C" QUO_API int32_t _quodRngExponential(uint32_t, StreamState* stream, int32_t n, double* r,
                                               double a, double beta) {
  return Exponential<_quodExponentialTab>(stream, n, r, a, beta);
}

extern "C" QUO_API int32_t _quosRngExponential(uint32_t, StreamState* stream, int32_t n, float* r,
                                               float a, float beta) {
  return Exponential<_quosExponentialTab>(stream, n, r, a, beta);
}

}  // namespace quo
