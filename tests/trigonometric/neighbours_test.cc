// An HA result is the same alone, where its group takes the way of its own kind, and among
// arguments of every kind, where all take the longest, on every level.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "pexquo/pex.h"
#include "tests/support/levels.h"
#include "tests/trigonometric/arguments.h"

namespace trigonometric_test {
namespace {

struct Function {
  const char* name;
  void (*call)(int32_t n, const double* x, double* r1, double* r2);
};

constexpr Function kFunctions[] = {
    {"Sin", [](int32_t n, const double* x, double* r1, double*) { _pexdSin_HA(n, x, r1); }},
    {"Cos", [](int32_t n, const double* x, double* r1, double*) { _pexdCos_HA(n, x, r1); }},
    {"Tan", [](int32_t n, const double* x, double* r1, double*) { _pexdTan_HA(n, x, r1); }},
    {"SinCos",
     [](int32_t n, const double* x, double* r1, double* r2) { _pexdSinCos_HA(n, x, r1, r2); }},
};

class Neighbours : public testing::TestWithParam<Function> {};
INSTANTIATE_TEST_SUITE_P(Functions, Neighbours, testing::ValuesIn(kFunctions),
                         [](const auto& info) { return info.param.name; });

TEST_P(Neighbours, ChangeNoBits) {
  constexpr uint64_t kSeed = 51;
  std::printf("seed %d\n", static_cast<int>(kSeed));
  std::vector<double> x = Arguments(40000, kSeed);
  // The end of the usual arguments, on AVX-512 and on the other levels, and its other sides.
  for (const double limit : {0x1.921fb54442d18p+12, 0x1p12, 0x1p-20, 0x1p-27, 0x1p-31}) {
    for (double at = limit * (1 - 0x1p-51); at < limit * (1 + 0x1p-50);) {
      x.push_back(at);
      x.push_back(-at);
      at = std::nextafter(at, INFINITY);
    }
  }
  const auto size = static_cast<int32_t>(x.size());
  std::vector<double> first[2], r[2], one[2] = {{0}, {0}};
  for (auto* v : {first, r}) v[0].resize(x.size()), v[1].resize(x.size());
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    GetParam().call(size, x.data(), r[0].data(), r[1].data());
    if (&level == &kLevels[0]) {
      for (int k : {0, 1}) first[k] = r[k];
    }
    for (size_t i = 0; i < x.size(); ++i) {
      GetParam().call(1, &x[i], one[0].data(), one[1].data());
      for (int k : {0, 1}) {
        if (k == 1 && GetParam().name[3] == 0) continue;  // one result
        const auto bits = std::bit_cast<uint64_t>(r[k][i]);
        ASSERT_EQ(std::bit_cast<uint64_t>(one[k][0]), bits) << std::hexfloat << x[i];
        ASSERT_EQ(std::bit_cast<uint64_t>(first[k][i]), bits) << std::hexfloat << x[i];
      }
    }
  }
}

}  // namespace
}  // namespace trigonometric_test
