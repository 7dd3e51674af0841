// Binomial and hypergeometric, with their conditions.
#include <cstdint>

#include "front/draw.h"
#include "pexquo/pexquo.h"

using pexquo_front::Draw;
using pexquo_front::First;
using pexquo_front::Probability;
using pexquo_front::Request;
using pexquo_front::Unless;

extern "C" {

int32_t quoiRngBinomial(int32_t method, QuoStream* stream, int64_t n, int32_t* r, int32_t ntrial,
                        double p) {
  const Request<int32_t> request{method, 1, stream, n, r};
  return Draw(_quoiRngBinomial, request,
              First({Unless(ntrial >= 0, QUO_BAD_TRIALS), Probability(p)}), ntrial, p);
}

int32_t quoiRngHypergeometric(int32_t method, QuoStream* stream, int64_t n, int32_t* r, int32_t l,
                              int32_t s, int32_t m) {
  const Request<int32_t> request{method, 1, stream, n, r};
  const bool counts = s >= 0 && m >= 0 && s <= l && m <= l;
  return Draw(_quoiRngHypergeometric, request, Unless(counts, QUO_BAD_POPULATION), l, s, m);
}
}
