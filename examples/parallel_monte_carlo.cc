// The mean distance of two points of the unit cube by Monte Carlo on all cores, in two ways whose
// results do not depend on the number of threads:
//
// 1. one random sequence: each array is filled, and each function computed, by all cores;
// 2. independent workers: each task has a member of a family of generators to itself and works in
//    the nearest cache; the sums of the tasks are added in their order.
//
// The exact mean is (4 + 17 sqrt 2 - 6 sqrt 3 + 21 ln(1 + sqrt 2) + 42 ln(2 + sqrt 3) - 7 pi) / 105
// (D. P. Robbins, T. S. Bolis, American Mathematical Monthly 85 (1978) 277-278). Ends with status 1
// when an estimate lies more than four standard errors away, or threads make a difference.
#include <pexquo/pexquo.hpp>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <span>
#include <vector>

namespace {

constexpr std::size_t kPairs = 2'000'000;

double Exact() {
  using std::numbers::pi, std::numbers::sqrt2, std::numbers::sqrt3;
  return (4 + 17 * sqrt2 - 6 * sqrt3 + 21 * std::log(1 + sqrt2) + 42 * std::log(2 + sqrt3) -
          7 * pi) /
         105;
}

double Sum(std::span<const double> x) {
  double sum = 0;
  for (const double number : x) sum += number;
  return sum;
}

double OneSequence(const pexquo::parallel& cores) {
  pexquo::stream s("mrg32k3a", 1978);
  std::vector<double> distance(kPairs), p(kPairs), q(kPairs);
  for (int axis = 0; axis < 3; ++axis) {
    cores.fill(pexquo::uniform{}, s, p);
    cores.fill(pexquo::uniform{}, s, q);
    cores.apply(pexquo::sub, p, q, p);
    cores.apply(pexquo::hypot, distance, p, distance);
  }
  return Sum(distance) / kPairs;
}

double Workers(const pexquo::parallel& cores) {
  constexpr std::size_t kTasks = 200, kBlock = 1000, kBlocks = kPairs / kTasks / kBlock;
  const pexquo::family workers("mt2203", 1978);
  std::vector<double> sums(kTasks);
  cores.for_each(kTasks, [&](std::size_t task) {
    pexquo::stream s = workers[task];
    std::array<double, kBlock> distance, p, q;
    for (std::size_t block = 0; block < kBlocks; ++block) {
      distance.fill(0);
      for (int axis = 0; axis < 3; ++axis) {
        pexquo::uniform{}.fill(s, p);
        pexquo::uniform{}.fill(s, q);
        pexquo::sub(p, q, p);
        pexquo::hypot(distance, p, distance);
      }
      sums[task] += Sum(distance);
    }
  });
  return Sum(sums) / kPairs;
}

template <typename Estimate>
bool Run(const char* how, Estimate estimate) {
  const auto time = [&](const pexquo::parallel& cores, double& result) {
    const auto start = std::chrono::steady_clock::now();
    result = estimate(cores);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  const pexquo::parallel one(1), all;
  double alone = 0, together = 0;
  const double seconds = time(one, alone), parallel_seconds = time(all, together);
  const double deviation = std::sqrt(0.5 - Exact() * Exact());  // the mean square is 3/6
  const double errors = std::fabs(together - Exact()) / (deviation / std::sqrt(kPairs));
  std::printf("%s: %.17g, %.2f standard errors away\n", how, together, errors);
  std::printf("  1 thread %.3f s, %u threads %.3f s, %s\n", seconds, all.threads(),
              parallel_seconds, alone == together ? "the same result" : "different results");
  return alone == together && errors < 4;
}

}  // namespace

int main() {
  std::printf("mean distance of two points of the unit cube: %.17g\n", Exact());
  const bool sequence = Run("one sequence", OneSequence);
  const bool workers = Run("workers", Workers);
  return sequence && workers ? 0 : 1;
}
