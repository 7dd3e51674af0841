// Rayleigh: max(a, x beta + a), x = sqrt(-log(u)), u uniform on [0, 1): the square of x is
// exponential, so beta is the square root of 2 times the scale of the usual form. log(0) is the
// logarithm of the smallest positive number.
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/vector_math.h"

namespace quo {
namespace {

constexpr double _quodRayleighTab[] = {kLnSmallest, 1.0};
constexpr float _quosRayleighTab[] = {kLnSmallestSingle, 1.0f};

template <const auto& kTab, typename T>
int32_t Rayleigh(StreamState* stream, int32_t n, T* r, T a, T beta) {
  const VectorMath borrowed(ReplacePoles<kTab>);
  const int32_t status = Generate(stream, n, r, T(0), kTab[1]);
  if (status < 0) return status;
  InBlocks(n, r, [=](int32_t m, T* x) {
    Ln(m, x);
    Negate(m, x);
    Sqrt(m, x);
    DisplaceUp(m, x, a, beta);
  });
  return status;
}

}  // namespace

extern "C" QUO_API int32_t _quodRngRayleigh(uint32_t, StreamState* stream, int32_t n, double* r,
                                            double a, double beta) {
  return Rayleigh<_quodRayleighTab>(stream, n, r, a, beta);
}

extern "C" QUO_API int32_t _quosRngRayleigh(uint32_t, StreamState* stream, int32_t n, float* r,
                                            float a, float beta) {
  return Rayleigh<_quosRayleighTab>(stream, n, r, a, beta);
}

}  // namespace quo
