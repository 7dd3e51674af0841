// Seeding when memory runs out: -4, the stream as it was, nothing lost.
#include <gtest/gtest.h>

#include "tests/quasi/plain.h"
#include "tests/streams/counted_memory.h"

namespace {

using quasi::Owned;
using quasi::Words;

TEST(Memory, OfUsersSets) {
  const std::pair<int32_t, Words> sets[] = {{QUO_BRNG_SOBOL, {2, 7, 1, 1, 1}},
                                            {QUO_BRNG_NIEDERR, {2, 11, 13}}};
  for (const auto& [id, words] : sets) {
    const auto n = static_cast<int32_t>(words.size());
    BrngProperties g;
    ASSERT_EQ(__quoGetBrngProperties(id, &g), QUO_OK);
    memory = Memory{};
    {
      const Owned stream(id, words);
      ASSERT_EQ(stream.status, QUO_OK);
      EXPECT_EQ(memory.live.size(), 3u) << "stream, chunk and its data";
      stream.Take(7);
      const std::string before = stream.Bytes();
      for (const int failing : {1, 2}) {
        memory.countdown = failing;
        EXPECT_EQ(g.InitStream(QUO_INIT_STANDARD, stream, n, words.data()), QUO_NO_MEMORY);
        EXPECT_EQ(stream.Bytes(), before);
        EXPECT_EQ(memory.live.size(), 3u);
      }
      memory.countdown = 0;
      EXPECT_EQ(g.InitStream(QUO_INIT_STANDARD, stream, n, words.data()), QUO_OK);
      EXPECT_EQ(memory.live.size(), 3u) << "in place of the first set";
    }
    EXPECT_TRUE(memory.live.empty());
    EXPECT_EQ(memory.wrong_alignment + memory.wrong_free, 0);
  }
}

}  // namespace
