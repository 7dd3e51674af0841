// Members of MT2203 with one seed, in pairs: no correlation between their words.
//
// The seed alone makes the initial state, so that bits of the first words of two members agree too
// often: of the first 69 words 40 to 45 % of the bits differ, after 207 words a half. That weighs
// little among the draws taken here.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "pexquo/quo.h"

namespace quo::test {
namespace {

constexpr int kDraws = 1 << 16;
// In standard deviations: about 2500 statistics, of which one is farther out in 10^4 runs.
constexpr double kBound = 5.5;

std::vector<uint32_t> Draw(int member, uint32_t seed) {
  std::vector<uint32_t> words(kDraws);
  StreamState* stream = nullptr;
  EXPECT_EQ(__quoNewStreamEx(&stream, QUO_BRNG_MT2203 + member, 1, &seed), QUO_OK);
  EXPECT_EQ(_quoiRngUniformBits(0, stream, kDraws, words.data()), QUO_OK);
  __quoDeleteStream(&stream);
  return words;
}

// Of x[i] and y[i + lag] as uniform numbers about 0, in standard deviations.
double Correlation(const std::vector<uint32_t>& x, const std::vector<uint32_t>& y, int lag) {
  double sum = 0;
  for (int i = 0; i < kDraws; ++i) {
    sum += (x[i] * 0x1p-32 - 0.5) * (y[(i + lag + kDraws) % kDraws] * 0x1p-32 - 0.5);
  }
  return sum * 12 / std::sqrt(kDraws);
}

// How often each bit of x[i] differs from that of y[i], in standard deviations from a half.
std::array<double, 32> Differences(const std::vector<uint32_t>& x, const std::vector<uint32_t>& y) {
  std::array<double, 32> z = {};
  for (int bit = 0; bit < 32; ++bit) {
    int differing = 0;
    for (int i = 0; i < kDraws; ++i) differing += (x[i] ^ y[i]) >> bit & 1;
    z[bit] = (differing - kDraws / 2) / (std::sqrt(kDraws) / 2);
  }
  return z;
}

TEST(Mt2203Members, UncorrelatedPairs) {
  std::mt19937 random(20);
  for (int pair = 0; pair < 64; ++pair) {
    // Neighbours, the two ends, and any.
    const int first = pair < 24 ? 43 * pair : pair == 24 ? 0 : random() % 1024;
    const int second = pair < 24 ? first + 1 : pair == 24 ? 1023 : random() % 1024;
    if (first == second) continue;
    const uint32_t seed = 1 + pair % 3 * 7777777;
    SCOPED_TRACE(testing::Message()
                 << "members " << first << " and " << second << ", seed " << seed);
    const auto x = Draw(first, seed), y = Draw(second, seed);
    ASSERT_NE(x, y);
    for (int lag : {-35, -1, 0, 1, 69}) {
      EXPECT_LT(std::fabs(Correlation(x, y, lag)), kBound) << "lag " << lag;
    }
    const auto differences = Differences(x, y);
    for (int bit = 0; bit < 32; ++bit) {
      EXPECT_LT(std::fabs(differences[bit]), kBound) << "bit " << bit;
    }
  }
}

// A stream that no validation has seen: the table of members is not read beyond its end.
TEST(Mt2203Members, BeyondTheLastAreTheFirst) {
  struct Stream {
    StreamState head;
    uint32_t state[(312 - sizeof(StreamState)) / sizeof(uint32_t)];
  };
  const uint32_t seed = 5;
  const auto words = [&](int32_t id) {
    Stream s = {{id, 1, nullptr}, {}};
    EXPECT_EQ(__quoBRngMT2203InitStream(QUO_INIT_STANDARD, &s.head, 1, &seed), QUO_OK);
    std::vector<uint32_t> r(100);
    EXPECT_EQ(__quoiBRngMT2203(&s.head, 100, r.data()), QUO_OK);
    return r;
  };
  const auto first = words(QUO_BRNG_MT2203);
  EXPECT_NE(words(QUO_BRNG_MT2203 + 1023), first);
  for (const int32_t member : {1024, 1025, 65536, 0xFFFFF}) {
    EXPECT_EQ(words(QUO_BRNG_MT2203 + member), first) << member;
  }
}

}  // namespace
}  // namespace quo::test
