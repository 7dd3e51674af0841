// Transformed rejection, for laws with a variance above kMostVariance: two uniforms u, v for a
// candidate, of which 81 to 88 of 100 are accepted, most of them by v alone. (W. Hoermann, "The
// generation of binomial random variates", J. Statistical Computation and Simulation 46, 1993:
// algorithm BTRS; the quick rejection at the rim is that of his PTRS, "The transformed rejection
// method for generating Poisson random variables", Insurance: Mathematics and Economics 12, 1993.)
//
// The exact test takes ln f(k)/f(mode) from deviances, right to 3e-9 whatever the counts.
#ifndef QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_H_
#define QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_H_

#include <cstdint>

#include "pexquo/quo.h"

#include "quo_kernel/discrete/_kernel/cells.h"

namespace quo {

// The hat: with e = 1/2 - |u - 1/2|, k = floor((2a/e + b)(u - 1/2) + c), and k is accepted if
// v alpha/(a/e^2 + b) <= f(k)/f(mode). From e = kInside on all with v <= v_sure are, and below kRim
// those with v > e are not. All three hold for binomial laws of p <= 1/2, and for hypergeometric
// ones, whose tails are shorter, with p = 0, if the variance is 20 or more.
struct TableMountain {
  static constexpr double kInside = 0.07, kRim = 0.013;
  double a, b, c, alpha, v_sure;

  TableMountain(double mean, double variance, double p) {
    const double deviation = __quodSqrt(variance);
    b = 1.15 + 2.53 * deviation;
    a = -0.0873 + 0.0248 * b + 0.01 * p;
    c = mean + 0.5;
    alpha = (2.83 + 5.1 / b) * deviation;
    v_sure = 0.92 - 4.2 / b;
  }
};

// What of a law takes logarithms. The numbers depend on nothing else that could be out of place:
// with any other peak they are still from 0 to law.most, and come to an end.
struct Peak {
  double log;     // law.Log(law.mode)
  double height;  // the same without the cells' ln(2 pi x)/2, a sum of small terms
};
template <int kCells>
Peak PeakOf(const Cells<kCells>& law);

// n numbers.
int32_t DrawByRejection(StreamState* stream, int32_t n, int32_t* r, const Cells<2>& law,
                        const Peak& peak, Reflection reflected);
int32_t DrawByRejection(StreamState* stream, int32_t n, int32_t* r, const Cells<4>& law,
                        const Peak& peak, Reflection reflected);

}  // namespace quo

#endif  // QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_H_
