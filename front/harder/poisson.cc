// Poisson with one mean and with one for each number, and negative binomial, with their conditions.
#include <cstdint>
#include <limits>
#include <span>

#include "front/draw.h"
#include "pexquo/pexquo.h"

namespace pexquo_front {
namespace {

constexpr int32_t kPoissonMethods = QUO_METHOD_POISSON_NORMAL + 1;

// Counts end at 2^31 - 1, and a mean beyond has hardly any.
int32_t Mean(double lambda) {
  constexpr double kMost = std::numeric_limits<int32_t>::max();
  return First({Finite(lambda), Unless(lambda > 0 && lambda <= kMost, QUO_BAD_MEAN)});
}

int32_t Means(std::span<const double> lambdas) {
  for (const double lambda : lambdas) {
    if (const int32_t refused = Mean(lambda)) return refused;
  }
  return QUO_OK;
}

}  // namespace
}  // namespace pexquo_front

using pexquo_front::Draw;
using pexquo_front::Finite;
using pexquo_front::First;
using pexquo_front::Request;
using pexquo_front::Unless;

extern "C" {

int32_t quoiRngPoisson(int32_t method, QuoStream* stream, int64_t n, int32_t* r, double lambda) {
  const Request<int32_t> request{method, pexquo_front::kPoissonMethods, stream, n, r};
  return Draw(_quoiRngPoisson, request, pexquo_front::Mean(lambda), lambda);
}

int32_t quoiRngPoissonV(int32_t method, QuoStream* stream, int64_t n, int32_t* r,
                        const double* lambda) {
  const Request<int32_t> request{method, 1, stream, n, r};
  if (const int32_t refused = First(
          {pexquo_front::Refusal(request), Unless(lambda != nullptr || n == 0, QUO_NULL_ARRAY)})) {
    return refused;
  }
  const std::span<const double> lambdas(lambda, static_cast<size_t>(n));
  if (const int32_t refused = pexquo_front::Means(lambdas)) return refused;
  return pexquo_front::InPieces(n, r, 1, [&](int32_t count, int32_t* part) {
    return _quoiRngPoissonV(static_cast<uint32_t>(method), stream, count, part,
                            lambda + (part - r));
  });
}

int32_t quoiRngNegbinomial(int32_t method, QuoStream* stream, int64_t n, int32_t* r, double a,
                           double p) {
  const Request<int32_t> request{method, 1, stream, n, r};
  const int32_t refused = First({Finite(a, p), Unless(a > 0, QUO_BAD_SUCCESSES),
                                 Unless(p > 0 && p <= 1, QUO_BAD_PROBABILITY)});
  return Draw(_quoiRngNegbinomial, request, refused, a, p);
}
}
