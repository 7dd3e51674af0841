// What the front adds to a call of a kernel: for every vector function (double and single
// precision, the default tier) the time of one call on n elements, and a distribution of each kind.
// Prints the median and the largest differences, or with --all every row.
//
//     front [--all] [n]        n = 1 if not given
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "pexquo/pexquo.h"

namespace {

constexpr int kCalls = 2000, kRounds = 60;

alignas(64) double a[4096], b[4096], r1[4096], r2[4096];
QuoStream* stream;

template <typename T>
T* As(double* array) {
  return reinterpret_cast<T*>(array);
}

// Calls of a kernel, of its public name, and of that with a mode, `calls` times.
using Calls = void (*)(int32_t n, int calls);
struct Row {
  const char* name;
  Calls kernel, front, front_with_mode;
};

#define REPEATED(call)                    \
  [](int32_t n, int calls) {              \
    for (int i = 0; i < calls; ++i) call; \
  }
#define CALLS_1(t, Name, kernel, A, R)                        \
  Row{"v" #t #Name, REPEATED(kernel(n, As<A>(a), As<R>(r1))), \
      REPEATED(v##t##Name(n, As<A>(a), As<R>(r1))),           \
      REPEATED(v##t##Name##Mode(n, As<A>(a), As<R>(r1), PEX_ACCURACY_HA))},
#define CALLS_Unary(t, Name, kernel, Real, Number) CALLS_1(t, Name, kernel, Number, Number)
#define CALLS_ToReal(t, Name, kernel, Real, Number) CALLS_1(t, Name, kernel, Number, Real)
#define CALLS_FromReal(t, Name, kernel, Real, Number) CALLS_1(t, Name, kernel, Real, Number)
#define CALLS_Binary(t, Name, kernel, Real, N)                          \
  Row{"v" #t #Name, REPEATED(kernel(n, As<N>(a), As<N>(b), As<N>(r1))), \
      REPEATED(v##t##Name(n, As<N>(a), As<N>(b), As<N>(r1))),           \
      REPEATED(v##t##Name##Mode(n, As<N>(a), As<N>(b), As<N>(r1), PEX_ACCURACY_HA))},
#define CALLS_UnaryScalar(t, Name, kernel, Real, N)                      \
  Row{"v" #t #Name, REPEATED(kernel(n, As<N>(a), *As<N>(b), As<N>(r1))), \
      REPEATED(v##t##Name(n, As<N>(a), *As<N>(b), As<N>(r1))),           \
      REPEATED(v##t##Name##Mode(n, As<N>(a), *As<N>(b), As<N>(r1), PEX_ACCURACY_HA))},
#define CALLS_UnaryTwo(t, Name, kernel, Real, N)                         \
  Row{"v" #t #Name, REPEATED(kernel(n, As<N>(a), As<N>(r1), As<N>(r2))), \
      REPEATED(v##t##Name(n, As<N>(a), As<N>(r1), As<N>(r2))),           \
      REPEATED(v##t##Name##Mode(n, As<N>(a), As<N>(r1), As<N>(r2), PEX_ACCURACY_HA))},

#define PEX_TIERED(Name, Shape, ...)                       \
  CALLS_##Shape(d, Name, _pexd##Name##_HA, double, double) \
      CALLS_##Shape(s, Name, _pexs##Name##_HA, float, float)
#define PEX_PLAIN(Name, Shape, ...)                   \
  CALLS_##Shape(d, Name, _pexd##Name, double, double) \
      CALLS_##Shape(s, Name, _pexs##Name, float, float)
#define PEX_COMPLEX_TIERED(Name, Shape, ...)                     \
  CALLS_##Shape(z, Name, _pexz##Name##_HA, double, PexComplex16) \
      CALLS_##Shape(c, Name, _pexc##Name##_HA, float, PexComplex8)
#define PEX_COMPLEX_PLAIN(Name, Shape, ...)                 \
  CALLS_##Shape(z, Name, _pexz##Name, double, PexComplex16) \
      CALLS_##Shape(c, Name, _pexc##Name, float, PexComplex8)

#define DRAWN(Name, T, ...)                                           \
  Row{#Name, REPEATED(_##Name(0, stream, n, As<T>(r1), __VA_ARGS__)), \
      REPEATED(Name(0, stream, n, As<T>(r1), __VA_ARGS__)), nullptr},

const Row kRows[] = {
#include "catalogue/complex_functions.def"
#include "catalogue/functions.def"
    DRAWN(quodRngUniform, double, 0, 1) DRAWN(quodRngGaussian, double, 0, 1)
        DRAWN(quosRngExponential, float, 0, 1) DRAWN(quoiRngBernoulli, int32_t, 0.5)};

double Nanoseconds(Calls call, int32_t n) {
  const auto start = std::chrono::steady_clock::now();
  call(n, kCalls);
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start)
             .count() /
         kCalls;
}

struct Timed {
  const char* name;
  double kernel = 1e30, front = 1e30, mode = 1e30;
  double added() const { return front - kernel; }
  double added_with_mode() const { return mode - kernel; }
};

// The least of many short rounds, in turns, so that no form has the quiet moments for itself.
Timed Measure(const Row& row, int32_t n) {
  Timed timed{row.name};
  for (int round = 0; round < kRounds; ++round) {
    timed.kernel = std::min(timed.kernel, Nanoseconds(row.kernel, n));
    timed.front = std::min(timed.front, Nanoseconds(row.front, n));
    if (row.front_with_mode == nullptr) continue;
    timed.mode = std::min(timed.mode, Nanoseconds(row.front_with_mode, n));
  }
  if (row.front_with_mode == nullptr) timed.mode = timed.front;
  return timed;
}

}  // namespace

int main(int argc, char** argv) {
  const bool all = argc > 1 && std::strcmp(argv[1], "--all") == 0;
  const int32_t n = argc > 1 + all ? std::atoi(argv[1 + all]) : 1;
  if (n < 0 || n > 2048) return 2;
  for (int i = 0; i < 4096; ++i) {
    // Finite in both precisions, between 0.4 and 0.7: a float's halves are in range too.
    const float x[2] = {0.41f + static_cast<float>(i % 64) * 0.004f, 0.45f};
    std::memcpy(&a[i], x, sizeof(x));
    b[i] = a[i];
  }
  if (quoNewStream(&stream, QUO_BRNG_MCG31M1, 1) != QUO_OK) return 1;
  std::vector<Timed> rows;
  for (const Row& row : kRows) rows.push_back(Measure(row, n));
  quoDeleteStream(&stream);

  const auto by_added = [](const Timed& x, const Timed& y) { return x.added() < y.added(); };
  std::sort(rows.begin(), rows.end(), by_added);
  std::printf("ns per call of %d elements\n%-22s %9s %9s %7s %9s %7s\n", n, "function", "kernel",
              "front", "added", "mode", "added");
  const size_t from = all || rows.size() < 8 ? 0 : rows.size() - 8;
  for (size_t i = from; i < rows.size(); ++i) {
    const Timed& t = rows[i];
    std::printf("%-22s %9.2f %9.2f %7.2f %9.2f %7.2f\n", t.name, t.kernel, t.front, t.added(),
                t.mode, t.added_with_mode());
  }
  std::vector<double> with_mode;
  for (const Timed& t : rows) with_mode.push_back(t.added_with_mode());
  std::sort(with_mode.begin(), with_mode.end());
  std::printf("of %zu functions: added, median %.2f, largest %.2f; with a mode, %.2f and %.2f\n",
              rows.size(), rows[rows.size() / 2].added(), rows.back().added(),
              with_mode[with_mode.size() / 2], with_mode.back());
}
