// Speed of pexquo::parallel: one thread against all cores for compute-bound functions and fills,
// and, where oneTBB is there, the same blocks given out by its parallel_for. Minima of several
// rounds in which the variants take turns, a few calls each: threads are awake as in a program that
// calls again. To be run on a quiet machine:
//
//   pexquo_bench_parallel [ELEMENTS [ROUNDS]]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "pexquo/pexquo.hpp"

#ifdef PEXQUO_BENCH_TBB
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#endif

namespace {

constexpr int kCalls = 4;              // in a row
constexpr std::size_t kBlock = 16384;  // as pexquo::parallel has it

double Seconds(const std::function<void()>& run) {
  const auto start = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Variant {
  std::string name;
  std::function<void()> run;
  double best = 1e300;
};

// The first variant is what the others are compared with: a row of its time and of each one's gain.
void Compare(const std::string& what, std::size_t n, int rounds, std::vector<Variant> variants) {
  for (int i = 0; i < rounds; ++i) {
    for (Variant& v : variants) {
      for (int call = 0; call < kCalls; ++call) v.best = std::min(v.best, Seconds(v.run));
    }
  }
  std::printf("| %s |", what.c_str());
  for (std::size_t k = 0; k < 2; ++k) {
    std::printf(" %.3f |", 1e9 * variants[k].best / static_cast<double>(n));
  }
  for (std::size_t k = 1; k < 3; ++k) {
    if (k < variants.size()) {
      std::printf(" %.2f |", variants[0].best / variants[k].best);
    } else {
      std::printf(" - |");
    }
  }
  std::printf("\n");
}

template <typename F, typename T>
void CompareFunction(const std::string& what, const F& f, std::vector<T> a, int rounds) {
  std::vector<T> r(a.size());
  const pexquo::parallel one(1, kBlock), all(0, kBlock);
  std::vector<Variant> variants = {{"one thread", [&] { one.apply(f, a, r); }},
                                   {"all cores", [&] { all.apply(f, a, r); }}};
#ifdef PEXQUO_BENCH_TBB
  variants.push_back({"oneTBB", [&] {
                        tbb::parallel_for(
                            tbb::blocked_range<std::size_t>(0, a.size(), kBlock), [&](auto range) {
                              const auto part = std::span(a).subspan(range.begin(), range.size());
                              f(part, std::span(r).subspan(range.begin(), range.size()));
                            });
                      }});
#endif
  Compare(what, a.size(), rounds, std::move(variants));
}

// What memory allows: as many bytes, and nothing computed.
void CompareCopy(const std::vector<double>& a, int rounds) {
  std::vector<double> r(a.size());
  const auto copy_with = [&](const pexquo::parallel& cores) {
    cores.for_each((a.size() - 1) / kBlock + 1, [&](std::size_t i) {
      const std::size_t first = i * kBlock;
      std::copy_n(&a[first], std::min(kBlock, a.size() - first), &r[first]);
    });
  };
  const pexquo::parallel one(1), all(0);
  Compare("copy, double", a.size(), rounds,
          {{"one thread", [&] { copy_with(one); }}, {"all cores", [&] { copy_with(all); }}});
}

template <typename T, typename D>
void CompareFill(const std::string& what, const D& d, pexquo::generator g, std::size_t n,
                 int rounds) {
  std::vector<T> r(n);
  pexquo::stream s(g, 1);
  const pexquo::parallel one(1, kBlock), all(0, kBlock);
  Compare(what + ", " + std::string(name(g)), n, rounds,
          {{"one thread", [&] { one.fill(d, s, r); }}, {"all cores", [&] { all.fill(d, s, r); }}});
}

}  // namespace

int main(int argc, char** argv) {
  const std::size_t n = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1'000'000;
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 200;
  std::printf("%zu elements, %u threads, least of %d rounds.\n\n", n, pexquo::parallel().threads(),
              rounds);
  std::printf(
      "| work | one thread, ns | all cores, ns | gain | of oneTBB |\n|---|---:|---:|---:|---:|\n");
  pexquo::stream s("mrg32k3a", 1);
  const auto a = pexquo::uniform{0.5, 20}.sample(s, n);
  const auto af = pexquo::uniform{0.5, 20}.sample<float>(s, n);
  CompareCopy(a, rounds);
  CompareFunction("exp, double", pexquo::exp, a, rounds);
  CompareFunction("ln, double", pexquo::ln, a, rounds);
  CompareFunction("sin, double", pexquo::sin, a, rounds);
  CompareFunction("cdfnorminv, double", pexquo::cdfnorminv,
                  pexquo::uniform{0.001, 0.999}.sample(s, n), rounds);
  CompareFunction("tan, double", pexquo::tan, a, rounds);
  CompareFunction("exp, single", pexquo::exp, af, rounds);
  CompareFunction("asin, single", pexquo::asin, pexquo::uniform{-1, 1}.sample<float>(s, n), rounds);
  using pexquo::generator;
  using pexquo::normal_method;
  const pexquo::normal icdf, pairs(0, 1, normal_method::boxmuller2);
  CompareFill<double>("normal icdf", icdf, generator::mrg32k3a, n, rounds);
  CompareFill<double>("normal icdf", icdf, generator::mcg59, n, rounds);
  CompareFill<double>("normal icdf", icdf, generator::mt19937, n, rounds);
  CompareFill<double>("normal boxmuller2", pairs, generator::mrg32k3a, n, rounds);
  CompareFill<double>("normal boxmuller2", pairs, generator::mt19937, n, rounds);
  CompareFill<double>("exponential", pexquo::exponential{}, generator::mrg32k3a, n, rounds);
  CompareFill<double>("uniform", pexquo::uniform{}, generator::mrg32k3a, n, rounds);
  CompareFill<double>("uniform", pexquo::uniform{}, generator::mcg31m1, n, rounds);
  CompareFill<double>("weibull", pexquo::weibull{2}, generator::r250, n, rounds);
}
