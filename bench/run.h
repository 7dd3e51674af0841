// What the benchmark programs share: the vector level of a run, the timing discipline and the
// command line.
#ifndef BENCH_RUN_H_
#define BENCH_RUN_H_

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

// A vector level of the library, by Highway's target bit.
struct Level {
  const char* name;   // as in --level=NAME
  const char* title;  // as people write it
  int64_t target;
};

std::span<const Level> Levels();  // best first

// Makes the library and the dispatched peers work at `level`, which the processor must have.
void UseLevel(const Level& level);
bool ProcessorHas(const Level& level);

// The program: takes --level=NAME out of the arguments (default: the best level there is), switches
// to it, calls `add` to register the benchmarks, and runs them with Google Benchmark. Its options
// default to 60 repetitions of 1 ms, the repetitions of all benchmarks shuffled, and of each
// benchmark the least counts ("min"). Returns the exit status: 2 after one line on standard error
// for a bad option or a level that is unknown or missing.
int Main(int argc, char** argv, std::string_view program, bool (*add)(const Level&));

// Registers a benchmark of `call`, one call of which makes n elements. Counters: "per_element",
// seconds of processor time, and "ulp", the largest error of a peer, left out if negative.
template <typename F>
void Add(const std::string& name, int n, double ulp, F call) {
  benchmark::RegisterBenchmark((name + "/n:" + std::to_string(n)).c_str(),
                               [=](benchmark::State& state) {
                                 for (auto _ : state) {
                                   call();
                                   benchmark::ClobberMemory();
                                 }
                                 using benchmark::Counter;
                                 state.counters["per_element"] = Counter(
                                     n, Counter::kIsIterationInvariantRate | Counter::kInvert);
                                 if (ulp >= 0) state.counters["ulp"] = ulp;
                               })
      ->ComputeStatistics("min", [](const std::vector<double>& v) {
        return *std::min_element(v.begin(), v.end());
      });
}

}  // namespace bench

#endif  // BENCH_RUN_H_
