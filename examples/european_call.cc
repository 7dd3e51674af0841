// The price of a European call by Monte Carlo: two threads draw the two halves of one random
// sequence, leapfrogged, transform it to normal variates by inversion, and price the end points of
// geometric Brownian motion (Black and Scholes 1973). The sum of each block is added in the order
// of the blocks, so the price is the same however the threads run.
//
// Then the same by as many Sobol points of one, four and sixteen coordinates, the steps of a path;
// there each thread skips to its half of the points. Ends with status 1 when the closed form lies
// more than four standard errors away from the random price, or a tenth of one from the others.
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <thread>
#include <vector>

#include "pexquo/pex.h"
#include "pexquo/quo.h"

namespace {

constexpr double kSpot = 100, kStrike = 105;       // currency units
constexpr double kRate = 0.03, kVolatility = 0.2;  // a year
constexpr double kYears = 1;
constexpr int64_t kPaths = 10000000;
constexpr int kThreads = 2;
constexpr int32_t kBlock = 2048;  // paths at a time, to stay in the nearest cache
constexpr uint32_t kGaussianByInversion = 2;

struct Sums {
  double payoff = 0, square = 0;
  bool ok = true;
};

// Paths of so many steps, one normal variate each, from a stream.
Sums Price(StreamState* stream, int32_t steps, int64_t paths) {
  Sums sums;
  sums.ok = stream != nullptr;
  const double years = kYears / steps;
  const double spread = kVolatility * std::sqrt(years);
  const double drift = kRate * years - spread * spread / 2;
  std::array<double, kBlock> x;
  while (sums.ok && paths > 0) {
    const auto n = static_cast<int32_t>(std::min<int64_t>(kBlock / steps, paths));
    sums.ok = _quodRngGaussian(kGaussianByInversion, stream, n * steps, x.data(), drift, spread) ==
              QUO_OK;
    for (int32_t i = 0; steps > 1 && i < n; ++i) {
      const double* const path = x.data() + static_cast<ptrdiff_t>(i) * steps;
      x[static_cast<size_t>(i)] = std::accumulate(path, path + steps, 0.0);
    }
    _pexdExp_50(n, x.data(), x.data());  // growth of the share
    Sums block;
    for (int32_t i = 0; i < n; ++i) {
      const double payoff = std::fmax(kSpot * x[static_cast<size_t>(i)] - kStrike, 0);
      block.payoff += payoff;
      block.square += payoff * payoff;
    }
    sums.payoff += block.payoff;
    sums.square += block.square;
    paths -= n;
  }
  return sums;
}

// Every kThreads-th number from the one numbered `part` on; null when a call failed.
StreamState* RandomPart(int part) {
  StreamState* stream = nullptr;
  const uint32_t seed = 1973;
  if (__quoNewStreamEx(&stream, QUO_BRNG_MCG59, 1, &seed) != QUO_OK ||
      __quoLeapfrogStream(stream, part, kThreads) != QUO_OK) {
    __quoDeleteStream(&stream);
  }
  return stream;
}

// Sobol points of so many coordinates from the one numbered `first` on.
StreamState* SobolFrom(int64_t first, uint32_t dimension) {
  StreamState* stream = nullptr;
  if (__quoNewStreamEx(&stream, QUO_BRNG_SOBOL, 1, &dimension) != QUO_OK ||
      __quoSkipAheadStream(stream, static_cast<uint64_t>(first) * dimension) != QUO_OK) {
    __quoDeleteStream(&stream);
  }
  return stream;
}

// The sums over all paths, which the threads share; open(part, first path) gives a thread its
// stream.
template <typename Open>
Sums PriceInThreads(int32_t steps, const Open& open) {
  std::array<Sums, kThreads> parts;
  {
    std::vector<std::jthread> threads;
    int64_t first = 0;
    for (int part = 0; part < kThreads; ++part) {
      const int64_t paths = kPaths / kThreads + (part < kPaths % kThreads ? 1 : 0);
      threads.emplace_back([&parts, &open, part, first, steps, paths] {
        StreamState* stream = open(part, first);
        parts[static_cast<size_t>(part)] = Price(stream, steps, paths);
        __quoDeleteStream(&stream);
      });
      first += paths;
    }
  }
  Sums all;
  for (const Sums& part : parts) {
    if (!part.ok) {
      std::fprintf(stderr, "european_call: a stream failed\n");
      std::exit(2);
    }
    all.payoff += part.payoff;
    all.square += part.square;
  }
  return all;
}

double ClosedForm() {
  const double spread = kVolatility * std::sqrt(kYears);
  const double ratio[] = {kSpot / kStrike};
  double log_ratio[1];
  _pexdLn_HA(1, ratio, log_ratio);
  const double d1 = (log_ratio[0] + kRate * kYears) / spread + spread / 2;
  const double d[] = {d1, d1 - spread};
  double probability[2], discount[] = {-kRate * kYears};
  _pexdCdfNorm_HA(2, d, probability);
  _pexdExp_HA(1, discount, discount);
  return kSpot * probability[0] - kStrike * discount[0] * probability[1];
}

}  // namespace

int main() {
  const auto start = std::chrono::steady_clock::now();
  const Sums random = PriceInThreads(1, [](int part, int64_t) { return RandomPart(part); });
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;

  const auto n = static_cast<double>(kPaths);
  const double discount = std::exp(-kRate * kYears), mean = random.payoff / n;
  const double price = discount * mean;
  const double error = discount * std::sqrt((random.square / n - mean * mean) / (n - 1));
  const double closed = ClosedForm();
  std::printf("A call on a share of %g at %g in %g year, rate %g %%, volatility %g %%\n", kSpot,
              kStrike, kYears, 100 * kRate, 100 * kVolatility);
  std::printf("%lld paths on %d leapfrogged streams: %.5f, standard error %.5f\n",
              static_cast<long long>(kPaths), kThreads, price, error);
  std::printf("closed form: %.5f, %.2f standard errors away\n", closed,
              std::fabs(price - closed) / error);
  std::printf("%.0f million paths a second\n", n / seconds.count() / 1e6);
  bool close = std::fabs(price - closed) <= 4 * error;

  for (const int32_t steps : {1, 4, 16}) {
    const Sums sobol = PriceInThreads(steps, [steps](int, int64_t first) {
      return SobolFrom(first, static_cast<uint32_t>(steps));
    });
    const double off = std::fabs(discount * sobol.payoff / n - closed);
    std::printf(
        "Sobol points of %d coordinate%s instead: off by %.1e, %.0f times closer than the "
        "standard error\n",
        steps, steps == 1 ? "" : "s", off, error / off);
    close = close && off <= error / 10;
  }
  return close ? 0 : 1;
}
