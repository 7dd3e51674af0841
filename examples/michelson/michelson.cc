// What do Michelson's 100 measurements of 1879 say about the speed of light? Intervals for their
// mean and geometric mean by the bootstrap, with three generators side by side. Ends with status 1
// when the data are not the published ones or the generators disagree.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numeric>
#include <string>

#include "bootstrap.h"
#include "pexquo/quo.h"

namespace {

constexpr double kOffset = 299000;  // km/s; the file counts from here
constexpr int kResamples = 100000;
constexpr double kMostErrors = 4;  // a larger difference, in standard deviations, is no accident

std::vector<double> ReadSpeeds(const char* path) {
  std::vector<double> speeds;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') speeds.push_back(kOffset + std::stod(line));
  }
  return speeds;
}

double Mean(const std::vector<double>& x) {
  return std::accumulate(x.begin(), x.end(), 0.0) / static_cast<double>(x.size());
}

double StandardDeviation(const std::vector<double>& x) {
  const double mean = Mean(x);
  double squares = 0;
  for (const double v : x) squares += (v - mean) * (v - mean);
  return std::sqrt(squares / static_cast<double>(x.size() - 1));
}

bool RoundsTo(double x, double published, double unit) {
  return std::abs(x - published) <= unit / 2;
}

double Difference(const Endpoint& a, const Endpoint& b) {
  return std::abs(a.value - b.value) / std::hypot(a.error, b.error);
}

double Difference(const Interval& a, const Interval& b) {
  return std::max(Difference(a.low, b.low), Difference(a.high, b.high));
}

struct Run {
  const char* generator;
  int32_t brng;
  Bootstrap result{};
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: michelson FILE\n");
    return 2;
  }
  const std::vector<double> speeds = ReadSpeeds(argv[1]);
  if (speeds.size() < 2) {
    std::fprintf(stderr, "michelson: %s: no measurements\n", argv[1]);
    return 2;
  }
  const double mean = Mean(speeds), deviation = StandardDeviation(speeds);
  const double geometric_mean = Exponentials({Mean(Logarithms(speeds))})[0];
  const bool published = RoundsTo(mean - kOffset, 852.4, 0.1) && RoundsTo(deviation, 79.01, 0.01);
  std::printf("%zu measurements: mean %.1f km/s, standard deviation %.2f km/s (%s)\n",
              speeds.size(), mean, deviation,
              published ? "as published" : "NOT the published 299852.4 and 79.01");
  std::printf("Geometric mean, exp of the mean logarithm: %.2f km/s\n\n", geometric_mean);

  Run runs[] = {{"mcg31m1", QUO_BRNG_MCG31M1}, {"mcg59", QUO_BRNG_MCG59}, {"wh", QUO_BRNG_WH}};
  std::printf("95 %% intervals from %d resamples, km/s:\n", kResamples);
  std::printf("  %-10s %-21s %-23s %s\n", "generator", "mean", "geometric mean",
              "numbers drawn per second");
  for (Run& run : runs) {
    run.result = Resample(speeds, kResamples, run.brng, 1879);
    const Interval &m = run.result.mean, &g = run.result.geometric_mean;
    std::printf("  %-10s %.1f to %.1f  %.2f to %.2f  %.0f million\n", run.generator, m.low.value,
                m.high.value, g.low.value, g.high.value, run.result.numbers_per_second / 1e6);
  }

  const Interval& first = runs[0].result.geometric_mean;
  std::printf("\nWith %d resamples an endpoint has a Monte-Carlo error of %.2f km/s or so.\n",
              kResamples, (first.low.error + first.high.error) / 2);
  std::printf("Largest difference of an endpoint between two generators, in errors of it:\n");
  bool agree = true;
  for (size_t i = 0; i < std::size(runs); ++i) {
    const Run &a = runs[i], &b = runs[(i + 1) % std::size(runs)];
    const double mean_part = Difference(a.result.mean, b.result.mean);
    const double geometric_part = Difference(a.result.geometric_mean, b.result.geometric_mean);
    agree &= std::max(mean_part, geometric_part) <= kMostErrors;
    std::printf("  %-8s and %-8s mean %.1f, geometric mean %.1f\n", a.generator, b.generator,
                mean_part, geometric_part);
  }
  std::printf("%s (more than %.0f would be no accident).\n",
              agree ? "The generators agree" : "The generators DISAGREE", kMostErrors);
  return published && agree ? 0 : 1;
}
