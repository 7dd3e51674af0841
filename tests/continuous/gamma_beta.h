// Gamma and beta numbers by type.
#ifndef TESTS_CONTINUOUS_GAMMA_BETA_H_
#define TESTS_CONTINUOUS_GAMMA_BETA_H_

#include <cstdint>
#include <ostream>
#include <vector>

#include "pexquo/quo.h"

namespace gamma_beta {

// Gamma of shape p where q is 0, else beta of shapes p and q.
struct Shape {
  double p, q = 0;
  bool IsGamma() const { return q == 0; }
};
inline std::ostream& operator<<(std::ostream& out, const Shape& s) {
  return s.IsGamma() ? out << "gamma " << s.p : out << "beta " << s.p << ", " << s.q;
}

inline int32_t Draw(const Shape& s, StreamState* stream, int32_t n, double* r, double a = 0,
                    double beta = 1) {
  return s.IsGamma() ? _quodRngGamma(0, stream, n, r, s.p, a, beta)
                     : _quodRngBeta(0, stream, n, r, s.p, s.q, a, beta);
}
inline int32_t Draw(const Shape& s, StreamState* stream, int32_t n, float* r, double a = 0,
                    double beta = 1) {
  const auto p = static_cast<float>(s.p), q = static_cast<float>(s.q);
  const auto single_a = static_cast<float>(a), single_beta = static_cast<float>(beta);
  return s.IsGamma() ? _quosRngGamma(0, stream, n, r, p, single_a, single_beta)
                     : _quosRngBeta(0, stream, n, r, p, q, single_a, single_beta);
}

// One or more for each method, of single precision.
inline const std::vector<Shape>& Ordinary() {
  static const std::vector<Shape> all = {{1},
                                         {1.0625},
                                         {2.5},
                                         {40},
                                         {12288},
                                         {0.9375},
                                         {0.5},
                                         {0.03125},
                                         {1, 1},
                                         {1, 3.5},
                                         {0.25, 1},
                                         {0.5, 0.5},
                                         {0.9375, 0.96875},
                                         {0.03125, 2},
                                         {2.5, 1.5},
                                         {1.0625, 1.0625},
                                         {3, 50},
                                         {600, 12},
                                         {6, 0.75},
                                         {4096, 0.5}};
  return all;
}

}  // namespace gamma_beta

#endif  // TESTS_CONTINUOUS_GAMMA_BETA_H_
