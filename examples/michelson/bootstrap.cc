#include "bootstrap.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "pexquo/pex.h"
#include "pexquo/quo.h"

namespace {

void Check(int32_t status, const char* what) {
  if (status == QUO_OK) return;
  std::fprintf(stderr, "%s: status %d\n", what, status);
  std::exit(1);
}

// The p-quantile of sorted numbers, linear between neighbours.
double Quantile(const std::vector<double>& sorted, double p) {
  const double place = p * static_cast<double>(sorted.size() - 1);
  const auto i = static_cast<size_t>(place);
  const size_t next = std::min(i + 1, sorted.size() - 1);
  return sorted[i] + (place - std::floor(place)) * (sorted[next] - sorted[i]);
}

// A quantile of n numbers has the standard deviation sqrt(p (1 - p) / n) dq/dp.
Endpoint EndpointAt(const std::vector<double>& sorted, double p) {
  constexpr double kStep = 0.005;
  const double slope = (Quantile(sorted, p + kStep) - Quantile(sorted, p - kStep)) / (2 * kStep);
  return {Quantile(sorted, p), std::sqrt(p * (1 - p) / static_cast<double>(sorted.size())) * slope};
}

Interval Percentiles(std::vector<double> x) {
  std::sort(x.begin(), x.end());
  return {EndpointAt(x, 0.025), EndpointAt(x, 0.975)};
}

}  // namespace

std::vector<double> Logarithms(const std::vector<double>& x) {
  std::vector<double> r(x.size());
  _pexdLn_HA(static_cast<int32_t>(x.size()), x.data(), r.data());
  return r;
}

std::vector<double> Exponentials(const std::vector<double>& x) {
  std::vector<double> r(x.size());
  _pexdExp_HA(static_cast<int32_t>(x.size()), x.data(), r.data());
  return r;
}

Bootstrap Resample(const std::vector<double>& x, int resamples, int32_t brng, uint32_t seed) {
  using Clock = std::chrono::steady_clock;
  constexpr int kResamplesPerCall = 100;
  const auto n = static_cast<int32_t>(x.size());
  const std::vector<double> logarithms = Logarithms(x);

  StreamState* stream = nullptr;
  Check(__quoNewStreamEx(&stream, brng, 1, &seed), "new stream");
  std::vector<double> means, mean_logarithms;
  std::vector<int32_t> picks(static_cast<size_t>(n) * kResamplesPerCall);
  Clock::duration drawing{};
  while (static_cast<int>(means.size()) < resamples) {
    const auto start = Clock::now();
    Check(_quoiRngUniform(0, stream, n * kResamplesPerCall, picks.data(), 0, n), "uniform");
    drawing += Clock::now() - start;
    for (size_t first = 0; first < picks.size(); first += x.size()) {
      double sum = 0, sum_of_logarithms = 0;
      for (size_t i = first; i < first + x.size(); ++i) {
        sum += x[static_cast<size_t>(picks[i])];
        sum_of_logarithms += logarithms[static_cast<size_t>(picks[i])];
      }
      means.push_back(sum / n);
      mean_logarithms.push_back(sum_of_logarithms / n);
    }
  }
  __quoDeleteStream(&stream);
  const double drawn = static_cast<double>(means.size()) * n;
  return {Percentiles(means), Percentiles(Exponentials(mean_logarithms)),
          drawn / std::chrono::duration<double>(drawing).count()};
}
