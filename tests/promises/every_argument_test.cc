// Kernels with steps whose rounding no result shows, as every argument has been tried: here they
// are, every float on every level, in every place of a group of vectors.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <vector>

#include "pexquo/pex.h"
#include "tests/support/levels.h"

namespace {

struct Kernel {
  const char* name;
  int (*call)(int32_t, const float*, float*);
  float least, most;  // the domain: errors beyond take long
};

constexpr float kLargest = 0x1.fffffep+127f;

constexpr Kernel kKernels[] = {
    {"sAcos_11", _pexsAcos_11, -1, 1},
    {"sAcos_21", _pexsAcos_21, -1, 1},
    {"sAcos_HA", _pexsAcos_HA, -1, 1},
    {"sAcosh_HA", _pexsAcosh_HA, 1, kLargest},
    {"sAsin_11", _pexsAsin_11, -1, 1},
    {"sAsin_21", _pexsAsin_21, -1, 1},
    {"sAsin_HA", _pexsAsin_HA, -1, 1},
    {"sAsinh_HA", _pexsAsinh_HA, -kLargest, kLargest},
    {"sAtan_11", _pexsAtan_11, -kLargest, kLargest},
    {"sAtan_21", _pexsAtan_21, -kLargest, kLargest},
    {"sAtan_HA", _pexsAtan_HA, -kLargest, kLargest},
    {"sAtanh_HA", _pexsAtanh_HA, -1, 1},
    {"sExpm1_21", _pexsExpm1_21, -88, 88},
    {"sLn_HA", _pexsLn_HA, 0, kLargest},
    {"sLog10_21", _pexsLog10_21, 0, kLargest},
    {"sLog10_HA", _pexsLog10_HA, 0, kLargest},
    {"sLog1p_HA", _pexsLog1p_HA, -1, kLargest},
    {"sSin_11", _pexsSin_11, -kLargest, kLargest},
    {"sTan_11", _pexsTan_11, -kLargest, kLargest},
    {"sTan_21", _pexsTan_21, -kLargest, kLargest},
    {"sTanh_11", _pexsTanh_11, -kLargest, kLargest},
    {"sTanh_21", _pexsTanh_21, -kLargest, kLargest},
};

class EveryArgument : public testing::TestWithParam<Kernel> {};

TEST_P(EveryArgument, HasTheSameResultOnEveryLevel) {
  constexpr uint32_t kBlock = 1 << 20;
  constexpr int32_t kPlaces = 8, kLanes = 16;
  std::vector<float> x(kBlock), expected(kBlock), got(kBlock);
  const uint32_t most = std::bit_cast<uint32_t>(GetParam().most);
  const uint32_t least = std::bit_cast<uint32_t>(GetParam().least);
  for (uint64_t first = 0; first < uint64_t{1} << 32; first += kBlock) {
    if (first > (first >> 31 ? least : most)) continue;
    for (uint32_t i = 0; i < kBlock; ++i) {
      x[i] = std::bit_cast<float>(static_cast<uint32_t>(first) + i);
    }
    {
      const UseLevel use(kLevels[0]);
      GetParam().call(kBlock, x.data(), expected.data());
    }
    for (size_t level = 1; level < std::size(kLevels); ++level) {
      if (!ProcessorHas(kLevels[level])) continue;
      const UseLevel use(kLevels[level]);
      for (int32_t place = 0; place < kPlaces; ++place) {
        const int32_t before = place * kLanes;
        GetParam().call(before, x.data(), got.data());
        GetParam().call(kBlock - before, x.data() + before, got.data() + before);
        if (std::memcmp(got.data(), expected.data(), kBlock * sizeof(float)) == 0) continue;
        for (uint32_t i = 0; i < kBlock; ++i) {
          ASSERT_EQ(std::bit_cast<uint32_t>(got[i]), std::bit_cast<uint32_t>(expected[i]))
              << kLevels[level].name << " at " << x[i] << " after " << place << " vectors";
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Kernels, EveryArgument, testing::ValuesIn(kKernels),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
