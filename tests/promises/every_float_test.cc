// Single-precision entries whose fused steps no result shows: the same bits on every level for
// every argument.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "pexquo/pex.h"
#include "tests/support/levels.h"

namespace {

struct Entry {
  const char* name;
  int (*function)(int32_t, const float*, float*);
};
void PrintTo(const Entry& entry, std::ostream* out) { *out << entry.name; }

constexpr size_t kChunk = 1 << 16;

class EveryFloat : public testing::TestWithParam<Entry> {};

TEST_P(EveryFloat, HasTheSameBitsOnEveryLevel) {
  std::vector<uint32_t> patterns(kChunk);
  std::vector<float> x(kChunk), expected(kChunk), got(kChunk);
  for (uint64_t first = 0; first < uint64_t{1} << 32; first += kChunk) {
    for (size_t i = 0; i < kChunk; ++i) {
      patterns[i] = static_cast<uint32_t>(first + i);
    }
    std::memcpy(x.data(), patterns.data(), kChunk * sizeof(float));
    {
      const UseLevel use(kLevels[0]);
      GetParam().function(kChunk, x.data(), expected.data());
    }
    for (const Level& level : kLevels) {
      if (level.target == kLevels[0].target || !ProcessorHas(level)) continue;
      const UseLevel use(level);
      GetParam().function(kChunk, x.data(), got.data());
      if (std::memcmp(got.data(), expected.data(), kChunk * sizeof(float)) == 0) continue;
      for (size_t i = 0; i < kChunk; ++i) {
        ASSERT_EQ(std::memcmp(&got[i], &expected[i], sizeof(float)), 0)
            << level.name << " at bits " << std::hex << patterns[i] << ": " << std::hexfloat
            << got[i] << ", not " << expected[i];
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Fused, EveryFloat,
                         testing::Values(Entry{"Log10_21", _pexsLog10_21},
                                         Entry{"Tan_21", _pexsTan_21}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
