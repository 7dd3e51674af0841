// Factorials and deviances for probabilities that are sharp however large the counts are:
//   ln k! = k ln k - k + ln(2 pi k)/2 + delta(k)
//   D(x, mean) = x ln(x/mean) - (x - mean)
// Of a multinomial's cells, the large terms of the first join to the second, which is small near
// the mean and loses nothing to cancellation. C. Loader, "Fast and accurate computation of binomial
// probabilities" (2000).
#ifndef QUO_KERNEL__KERNEL_LOG_FACTORIAL_H_
#define QUO_KERNEL__KERNEL_LOG_FACTORIAL_H_

#include <cmath>

#include "quo_sub_kernel/_math/scalar.h"

namespace quo {

inline constexpr double kLnTwoPi = 0x1.d67f1c864beb5p+0;  // 1.8378770664093455

// delta(k) = (1/12 - (1/360 - (1/1260 - 1/1680 y) y) y)/k, y = 1/k^2: from 16 on within 2e-14.
inline constexpr double kStirlingFrom = 16;
inline constexpr double kStirling[] = {1.0 / 12, 1.0 / 360, 1.0 / 1260, 1.0 / 1680};

inline double StirlingError(double k) {
  const double r = 1 / k, y = r * r;
  return (kStirling[0] - (kStirling[1] - (kStirling[2] - kStirling[3] * y) * y) * y) * r;
}

// ln k! - k ln k + k for whole k >= 0: ln(2 pi k)/2 + delta(k), and 0 for 0.
inline double LogFactorialExcess(double k) {
  static constexpr double kSmall[] = {0,
                                      1.0,
                                      1.3068528194400546,
                                      1.4959226032237258,
                                      1.6328763858683832,
                                      1.7403021806115442,
                                      1.828694396641771,
                                      1.9037903176782212,
                                      1.9690705693065629,
                                      2.0268062840554952,
                                      2.0785616431350586,
                                      2.12545984509181,
                                      2.168334698205882,
                                      2.207822206123445,
                                      2.244418568125061,
                                      2.2785183673077407};
  if (k < kStirlingFrom) return kSmall[static_cast<int>(k)];
  return 0.5 * (kLnTwoPi + __quodLn(k)) + StirlingError(k);
}

// atanh(v) = v (1 + w), w = z/3 + z^2/5 + ..., z = v^2 at most 1/16: within 3e-15 of w.
inline constexpr double kMostForSeries = 0.25;
inline constexpr double kAtanh[] = {1.0 / 3,  1.0 / 5,  1.0 / 7,  1.0 / 9,  1.0 / 11,
                                    1.0 / 13, 1.0 / 15, 1.0 / 17, 1.0 / 19, 1.0 / 21};

// D(x, mean), d = x - mean, x >= 0, mean > 0. With v = d/(x + mean) it is v (d + 2 x w).
inline double Deviance(double x, double mean, double d) {
  if (x == 0) return mean;
  const double v = d / (x + mean);
  if (std::fabs(v) > kMostForSeries) return x * __quodLn(x / mean) - d;
  const double z = v * v;
  double w = 0;
  for (int i = 9; i >= 0; --i) w = (w + kAtanh[i]) * z;
  return v * (d + 2 * x * w);
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_LOG_FACTORIAL_H_
