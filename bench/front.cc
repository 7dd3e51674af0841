// What the front adds to a call of a kernel: for every vector function (double and single
// precision, the default tier) the time of one call on n elements with the thread's mode, with a
// tier for the call, and with a tier and an error field for the call; and a distribution of each
// kind. Prints the median and the largest differences, or with --all every row.
//
//     front [--all] [n]        n = 1 if not given
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "pexquo/pexquo.h"

namespace {

// All functions are passed through several times: a slow spell of the machine lasts longer than the
// rounds of one.
constexpr int kCalls = 1000, kRounds = 25, kPasses = 32;

alignas(64) double a[4096], b[4096], results1[4096], results2[4096];
// Where results go: a load waits for a store to another address that is alike in its lower bits, so
// a stack that happens to lie like the results would count for the function.
double *r1 = results1, *r2 = results2;
QuoStream* stream;

template <typename T>
T* As(double* array) {
  return reinterpret_cast<T*>(array);
}

// Calls of a kernel, of its public name, and of that with a mode word, `calls` times.
using Calls = void (*)(int32_t n, uint32_t mode, int calls);
struct Row {
  const char* name;
  Calls kernel, front, front_with_mode;
};

#define REPEATED(call)                                       \
  [](int32_t n, [[maybe_unused]] uint32_t mode, int calls) { \
    for (int i = 0; i < calls; ++i) call;                    \
  }
#define CALLS_1(t, Name, kernel, A, R)                        \
  Row{"v" #t #Name, REPEATED(kernel(n, As<A>(a), As<R>(r1))), \
      REPEATED(v##t##Name(n, As<A>(a), As<R>(r1))),           \
      REPEATED(v##t##Name##Mode(n, As<A>(a), As<R>(r1), mode))},
#define CALLS_Unary(t, Name, kernel, Real, Number) CALLS_1(t, Name, kernel, Number, Number)
#define CALLS_ToReal(t, Name, kernel, Real, Number) CALLS_1(t, Name, kernel, Number, Real)
#define CALLS_FromReal(t, Name, kernel, Real, Number) CALLS_1(t, Name, kernel, Real, Number)
#define CALLS_Binary(t, Name, kernel, Real, N)                          \
  Row{"v" #t #Name, REPEATED(kernel(n, As<N>(a), As<N>(b), As<N>(r1))), \
      REPEATED(v##t##Name(n, As<N>(a), As<N>(b), As<N>(r1))),           \
      REPEATED(v##t##Name##Mode(n, As<N>(a), As<N>(b), As<N>(r1), mode))},
#define CALLS_UnaryScalar(t, Name, kernel, Real, N)                      \
  Row{"v" #t #Name, REPEATED(kernel(n, As<N>(a), *As<N>(b), As<N>(r1))), \
      REPEATED(v##t##Name(n, As<N>(a), *As<N>(b), As<N>(r1))),           \
      REPEATED(v##t##Name##Mode(n, As<N>(a), *As<N>(b), As<N>(r1), mode))},
#define CALLS_UnaryTwo(t, Name, kernel, Real, N)                         \
  Row{"v" #t #Name, REPEATED(kernel(n, As<N>(a), As<N>(r1), As<N>(r2))), \
      REPEATED(v##t##Name(n, As<N>(a), As<N>(r1), As<N>(r2))),           \
      REPEATED(v##t##Name##Mode(n, As<N>(a), As<N>(r1), As<N>(r2), mode))},

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

double Nanoseconds(Calls call, int32_t n, uint32_t mode) {
  const auto start = std::chrono::steady_clock::now();
  call(n, mode, kCalls);
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start)
             .count() /
         kCalls;
}

enum Form { kKernel, kFront, kTier, kErrors, kForms };
constexpr const char* kFormNames[kForms] = {"kernel", "front", "tier of the call",
                                            "and error field"};

struct Timed {
  const char* name;
  double ns[kForms] = {1e30, 1e30, 1e30, 1e30};
  double added(int form) const { return ns[form] - ns[kKernel]; }
};

// The least of many short rounds, in turns, so that no form has the quiet moments for itself.
void Measure(const Row& row, int32_t n, Timed& timed) {
  const auto keep = [&](Form form, Calls call, uint32_t mode) {
    timed.ns[form] = std::min(timed.ns[form], Nanoseconds(call, n, mode));
  };
  for (int round = 0; round < kRounds; ++round) {
    keep(kKernel, row.kernel, 0);
    keep(kFront, row.front, 0);
    if (row.front_with_mode == nullptr) continue;
    keep(kTier, row.front_with_mode, PEX_ACCURACY_HA);
    keep(kErrors, row.front_with_mode, PEX_ACCURACY_HA | PEX_ERRMODE_IGNORE);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const bool all = argc > 1 && std::strcmp(argv[1], "--all") == 0;
  const int32_t n = argc > 1 + all ? std::atoi(argv[1 + all]) : 1;
  if (n < 0 || n > 1024) return 2;
  for (int i = 0; i < 4096; ++i) {
    // Finite in both precisions, between 0.4 and 0.7: a float's halves are in range too.
    const float x[2] = {0.41f + static_cast<float>(i % 64) * 0.004f, 0.45f};
    std::memcpy(&a[i], x, sizeof(x));
    b[i] = a[i];
  }
  if (quoNewStream(&stream, QUO_BRNG_MCG31M1, 1) != QUO_OK) return 1;
  std::vector<Timed> rows;
  for (const Row& row : kRows) rows.push_back({row.name});
  for (int pass = 0; pass < kPasses; ++pass) {
    r1 = results1 + pass % 4 * 128;  // quarters of a page
    r2 = results2 + pass % 4 * 128;
    for (size_t i = 0; i < rows.size(); ++i) Measure(kRows[i], n, rows[i]);
  }
  quoDeleteStream(&stream);

  std::sort(rows.begin(), rows.end(),
            [](const Timed& x, const Timed& y) { return x.added(kFront) > y.added(kFront); });
  std::printf("ns per call of %d elements, and what the front adds\n\n", n);
  std::printf(
      "| function | kernel | front | tier of the call | and error field |\n"
      "|---|---:|---:|---:|---:|\n");
  const size_t shown = all ? rows.size() : std::min<size_t>(rows.size(), 8);
  const auto print_added = [](double added) {
    added < 1e20 ? std::printf(" %.2f |", added) : std::printf(" - |");
  };
  for (size_t i = 0; i < shown; ++i) {
    std::printf("| %s | %.2f |", rows[i].name, rows[i].ns[kKernel]);
    for (int form = kFront; form < kForms; ++form) print_added(rows[i].added(form));
    std::printf("\n");
  }
  std::printf("\nOf %zu functions, added ns", rows.size());
  for (int form = kFront; form < kForms; ++form) {
    std::vector<double> added;
    for (const Timed& t : rows) {
      if (t.ns[form] < 1e20) added.push_back(t.added(form));
    }
    std::sort(added.begin(), added.end());
    std::printf("%s %s: median %.2f, largest %.2f", form == kFront ? "," : ";", kFormNames[form],
                added[added.size() / 2], added.back());
  }
  std::printf(".\n");
}
