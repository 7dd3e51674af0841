// Gumbel: log(e) beta + a, e exponential with displacement 0 and scale 1. The logarithm of 0 is
// that of the smallest positive number, both times.
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/vector_math.h"

namespace quo {
namespace {

constexpr double _quodGumbelTab[] = {kLnSmallest, 1.0};
constexpr float _quosGumbelTab[] = {kLnSmallestSingle, 1.0f};

// The exponential numbers are those of _quodRngExponential, made here so that a block stays in the
// first cache.
template <const auto& kTab, typename T>
int32_t Gumbel(StreamState* stream, int32_t n, T* r, T a, T beta) {
  const VectorMath borrowed(ReplaceAll<kTab>);
  const int32_t status = Generate(stream, n, r, T(0), kTab[1]);
  if (status < 0) return status;
  InBlocks(n, r, [=](int32_t m, T* x) {
    Ln(m, x);
    DisplaceDown(m, x, T(0), kTab[1]);
    Ln(m, x);
    Displace(m, x, a, beta);
  });
  return status;
}

}  // namespace

extern "C" QUO_API int32_t _quodRngGumbel(uint32_t, StreamState* stream, int32_t n, double* r,
                                          double a, double beta) {
  return Gumbel<_quodGumbelTab>(stream, n, r, a, beta);
}

extern "C" QUO_API int32_t _quosRngGumbel(uint32_t, StreamState* stream, int32_t n, float* r,
                                          float a, float beta) {
  return Gumbel<_quosGumbelTab>(stream, n, r, a, beta);
}

}  // namespace quo
