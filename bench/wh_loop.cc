#include "bench/wh_loop.h"

#include <stdint.h>

namespace {

constexpr uint32_t kA[4] = {125, 117, 127, 126};
constexpr uint32_t kM[4] = {16770647, 16770643, 16770623, 16770617};

struct State {
  uint32_t x1, x2, x3, x4;
};
State kept = {1, 1, 1, 1};

#define NEXT(s)                \
  s.x1 = s.x1 * kA[0] % kM[0]; \
  s.x2 = s.x2 * kA[1] % kM[1]; \
  s.x3 = s.x3 * kA[2] % kM[2]; \
  s.x4 = s.x4 * kA[3] % kM[3];

// The sum of the four fractions; its own fraction is the uniform.
#define SUM(s) \
  (s.x1 * (1.0 / kM[0]) + s.x2 * (1.0 / kM[1]) + s.x3 * (1.0 / kM[2]) + s.x4 * (1.0 / kM[3]))

#define FILL(T, scale)                                                               \
  [](int n, void* r) {                                                               \
    State s = kept;                                                                  \
    for (int i = 0; i < n; ++i) {                                                    \
      const double sum = SUM(s);                                                     \
      static_cast<T*>(r)[i] = static_cast<T>((sum - static_cast<int>(sum)) * scale); \
      NEXT(s)                                                                        \
    }                                                                                \
    kept = s;                                                                        \
  }

void FillBits(int n, void* r) {
  State s = kept;
  auto* out = static_cast<uint32_t*>(r);
  for (int i = 0; i < n; ++i, out += 4) {
    out[0] = s.x1;
    out[1] = s.x2;
    out[2] = s.x3;
    out[3] = s.x4;
    NEXT(s)
  }
  kept = s;
}

}  // namespace

namespace bench {

WhLoops WhLoop() {
  return {FillBits, FILL(double, 1), FILL(float, 1), FILL(int32_t, bench::kIntegers)};
}

}  // namespace bench
