// The laws of a count k that fixes the cells of a table by its margins, x_i = start_i +- k:
//
//   binomial        k, n - k                              of n
//   hypergeometric  k, m - k, s - k, l - m - s + k        of l, m marked, s drawn
//
//   ln f(k) = total - sum of (E(x_i) + D(x_i, mean_i)),   x_i - mean_i = +-(k - mean_0)
//
// with E the excesses of the factorials and total those of the margins.
#ifndef QUO_KERNEL_DISCRETE__KERNEL_CELLS_H_
#define QUO_KERNEL_DISCRETE__KERNEL_CELLS_H_

#include <cstdint>

#include "quo_kernel/_kernel/log_factorial.h"

namespace quo {

inline constexpr double kSteps[] = {1, -1, -1, 1};

template <int kCells>
struct Cells {
  double start[kCells], mean[kCells];
  double odds;        // f(k + 1)/f(k): odds, times the falling x_i, by the growing x_i + 1
  double margins[5];  // n; m, l - m, s, l - s and l, whose excess is taken off
  double variance;
  double mode;  // or next to it
  double most;  // k is 0 to most; 0: all the rest is void

  double X(int i, double k) const { return start[i] + kSteps[i] * k; }

  double Growth(double k) const {
    double up = odds, down = 1;
    for (int i = 0; i < kCells; ++i) (kSteps[i] > 0 ? down : up) *= X(i, k + (kSteps[i] > 0));
    return up / down;
  }

  // ln f(k) - total
  double Log(double k) const {
    double sum = 0;
    for (int i = 0; i < kCells; ++i) {
      const double x = X(i, k);
      sum -= LogFactorialExcess(x) + Deviance(x, mean[i], kSteps[i] * (k - mean[0]));
    }
    return sum;
  }

  double Total() const {
    double sum = 0;
    for (int i = 0; i < 4; ++i) sum += LogFactorialExcess(margins[i]);
    return sum - LogFactorialExcess(margins[4]);
  }
};

// Results from counts: offset + sign k.
struct Reflection {
  int32_t offset = 0, sign = 1;

  int32_t operator()(int32_t k) const { return offset + sign * k; }
};

}  // namespace quo

#endif  // QUO_KERNEL_DISCRETE__KERNEL_CELLS_H_
