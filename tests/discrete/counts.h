// The binomial and hypergeometric laws by their definitions in long double, and calls that draw
// them.
#ifndef TESTS_DISCRETE_COUNTS_H_
#define TESTS_DISCRETE_COUNTS_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ostream>
#include <vector>

#include "pexquo/quo.h"

namespace counts {

using Real = long double;

inline Real LogChoose(Real n, Real k) {
  return std::lgamma(n + 1) - std::lgamma(k + 1) - std::lgamma(n - k + 1);
}

// Binomial for l = 0: s trials with probability p. Else hypergeometric: s drawn from l, m marked.
struct Law {
  int32_t s;
  double p;
  int32_t l = 0, m = 0;

  static Law Binomial(int32_t ntrial, double p) { return {ntrial, p}; }
  static Law Hypergeometric(int32_t l, int32_t s, int32_t m) { return {s, 0, l, m}; }

  int32_t Draw(StreamState* stream, int32_t n, int32_t* r) const {
    return l == 0 ? _quoiRngBinomial(~0u, stream, n, r, s, p)
                  : _quoiRngHypergeometric(~0u, stream, n, r, l, s, m);
  }
  std::vector<int32_t> Draw(StreamState* stream, int32_t n) const {
    std::vector<int32_t> r(static_cast<size_t>(n));
    EXPECT_EQ(Draw(stream, n, r.data()), QUO_OK);
    return r;
  }

  int64_t Least() const { return l == 0 ? 0 : std::max<int64_t>(0, int64_t{s} + m - l); }
  int64_t Most() const { return l == 0 ? s : std::min(s, m); }
  Real Mean() const { return l == 0 ? Real{1} * s * p : Real{1} * s * m / l; }
  Real Variance() const {
    if (l == 0) return Mean() * (1 - Real{p});
    return l == 1 ? 0 : Mean() * (1 - Real{1} * m / l) * (l - s) / (l - Real{1});
  }
  Real LogProbability(int64_t k) const {
    const Real x = static_cast<Real>(k);
    if (l == 0)
      return LogChoose(Real{1} * s, x) + x * std::log(Real{p}) + (s - x) * std::log1p(-Real{p});
    return LogChoose(Real{1} * m, x) + LogChoose(Real{1} * l - m, s - x) -
           LogChoose(Real{1} * l, Real{1} * s);
  }
  Real Probability(int64_t k) const { return std::exp(LogProbability(k)); }
};

inline void PrintTo(const Law& law, std::ostream* out) {
  if (law.l == 0) {
    *out << "binomial " << law.s << ", " << law.p;
  } else {
    *out << "hypergeometric " << law.l << ", " << law.s << ", " << law.m;
  }
}

struct Stream {
  StreamState* p = nullptr;
  explicit Stream(StreamState* taken) : p(taken) {}
  explicit Stream(int32_t id, uint32_t seed = 20240229) { __quoNewStreamEx(&p, id, 1, &seed); }
  ~Stream() { __quoDeleteStream(&p); }
  Stream(const Stream&) = delete;
  operator StreamState*() const { return p; }
};

}  // namespace counts

#endif  // TESTS_DISCRETE_COUNTS_H_
