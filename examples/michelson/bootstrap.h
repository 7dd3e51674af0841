// The bootstrap: how far a statistic of a sample may be from that of its source, seen by drawing
// samples of the same size from the sample itself (Efron, The Annals of Statistics 7, 1979).
#ifndef EXAMPLES_MICHELSON_BOOTSTRAP_H_
#define EXAMPLES_MICHELSON_BOOTSTRAP_H_

#include <cstdint>
#include <vector>

// One end of a percentile interval.
struct Endpoint {
  double value;
  double error;  // standard deviation that comes from the number of resamples being finite
};

struct Interval {
  Endpoint low, high;
};

struct Bootstrap {
  Interval mean, geometric_mean;  // 95 % each, in the unit of the sample
  double numbers_per_second;      // integers drawn
};

// Draws `resamples` samples from `x` (positive numbers) with the generator `brng`, started from one
// seed word. Ends the program when the library reports an error.
Bootstrap Resample(const std::vector<double>& x, int resamples, int32_t brng, uint32_t seed);

// Arrays in, arrays out: the natural logarithm and its inverse, at most 1 ulp off.
std::vector<double> Logarithms(const std::vector<double>& x);
std::vector<double> Exponentials(const std::vector<double>& x);

#endif  // EXAMPLES_MICHELSON_BOOTSTRAP_H_
