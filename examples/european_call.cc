// The price of a European call by Monte Carlo: two threads draw the two halves of one random
// sequence, leapfrogged, transform it to normal variates by inversion, and price the end points of
// geometric Brownian motion (Black and Scholes 1973). The sum of each block is added in the order
// of the blocks, so the price is the same however the threads run. Ends with status 1 when the
// closed form lies more than four standard errors away.
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
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

// Every kThreads-th path from the one numbered `part` on.
Sums Price(int part, int64_t paths) {
  Sums sums;
  StreamState* stream = nullptr;
  const uint32_t seed = 1973;
  sums.ok = __quoNewStreamEx(&stream, QUO_BRNG_MCG59, 1, &seed) == QUO_OK &&
            __quoLeapfrogStream(stream, part, kThreads) == QUO_OK;
  const double spread = kVolatility * std::sqrt(kYears);
  const double drift = kRate * kYears - spread * spread / 2;
  std::array<double, kBlock> x;
  while (sums.ok && paths > 0) {
    const auto n = static_cast<int32_t>(std::min<int64_t>(kBlock, paths));
    sums.ok = _quodRngGaussian(kGaussianByInversion, stream, n, x.data(), drift, spread) == QUO_OK;
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
  __quoDeleteStream(&stream);
  return sums;
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
  std::vector<Sums> parts(kThreads);
  {
    std::vector<std::jthread> threads;
    for (int part = 0; part < kThreads; ++part) {
      threads.emplace_back([&parts, part] {
        parts[static_cast<size_t>(part)] =
            Price(part, kPaths / kThreads + (part < kPaths % kThreads ? 1 : 0));
      });
    }
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;

  Sums all;
  for (const Sums& part : parts) {
    if (!part.ok) {
      std::fprintf(stderr, "european_call: a stream failed\n");
      return 2;
    }
    all.payoff += part.payoff;
    all.square += part.square;
  }
  const auto n = static_cast<double>(kPaths);
  const double discount = std::exp(-kRate * kYears), mean = all.payoff / n;
  const double price = discount * mean;
  const double error = discount * std::sqrt((all.square / n - mean * mean) / (n - 1));
  const double closed = ClosedForm();
  std::printf("A call on a share of %g at %g in %g year, rate %g %%, volatility %g %%\n", kSpot,
              kStrike, kYears, 100 * kRate, 100 * kVolatility);
  std::printf("%lld paths on %d leapfrogged streams: %.5f, standard error %.5f\n",
              static_cast<long long>(kPaths), kThreads, price, error);
  std::printf("closed form: %.5f, %.2f standard errors away\n", closed,
              std::fabs(price - closed) / error);
  std::printf("%.0f million paths a second\n", n / seconds.count() / 1e6);
  return std::fabs(price - closed) <= 4 * error ? 0 : 1;
}
