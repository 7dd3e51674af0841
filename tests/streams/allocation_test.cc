// Streams when memory runs out: for every operation, the first, second, third ... allocation fails
// until none does. Nothing may leak, crash, or be left half done.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "pexquo/kro.h"
#include "pexquo/quo.h"
#include "tests/streams/counted_memory.h"
#include "tests/streams/files.h"
#include "tests/streams/scripted_generator.h"

namespace {

// Runs `operation`, which returns a status, once with each allocation failing; `settle` looks at
// what is left and cleans up. Returns the number of allocations of a good run.
int FailEach(
    const std::function<int32_t()>& operation, const std::function<void(bool)>& settle,
    const std::function<void()>& prepare = [] {}) {
  for (int k = 1;; ++k) {
    SCOPED_TRACE(k);
    memory = Memory{};
    prepare();
    memory.countdown = k;
    const int32_t status = operation();
    memory.countdown = 0;
    EXPECT_EQ(status, memory.failed ? QUO_NO_MEMORY : QUO_OK);
    settle(memory.failed);
    EXPECT_TRUE(memory.live.empty()) << memory.live.size() << " blocks leak";
    EXPECT_EQ(memory.wrong_free, 0);
    EXPECT_EQ(memory.wrong_alignment, 0);
    if (!memory.failed) return k - 1;
    if (k > 100) return -1;
  }
}

StreamState *source, *other;
const uint32_t kSeeds[] = {1, 2, 3, 4};

void AddChunks(StreamState* stream, uint32_t count) {
  for (uint32_t key = 1; key <= count; ++key) {
    void* data = kro_serv_kro_malloc(100 * key, 32);
    std::memset(data, static_cast<int>(key), 100 * key);
    ASSERT_EQ(__quoAddChunk(stream, key, data, 100 * key), QUO_OK);
  }
}

TEST(Allocation, FailsForANewStream) {
  for (const int32_t id : {0x100000, 3, 0x500000 + 272, scripted::Id()}) {
    StreamState* stream = nullptr;
    EXPECT_EQ(FailEach(
                  [&] {
                    stream = reinterpret_cast<StreamState*>(16);
                    return __quoNewStreamEx(&stream, id, 4, kSeeds);
                  },
                  [&](bool failed) {
                    EXPECT_EQ(stream == nullptr, failed);
                    __quoDeleteStream(&stream);
                  }),
              1);
  }
}

TEST(Allocation, FailsForAChunk) {
  void* data = nullptr;
  EXPECT_EQ(FailEach([&] { return __quoAddChunk(source, 7, data, 50); },
                     [&](bool failed) {
                       EXPECT_EQ(__quoGetNumChunks(source), failed ? 2 : 3);
                       if (failed) kro_serv_kro_free(data);  // still the caller's
                       __quoDeleteStream(&source);
                     },
                     [&] {
                       __quoNewStreamEx(&source, 0x400000, 1, kSeeds);
                       AddChunks(source, 2);
                       data = kro_serv_kro_malloc(50, 32);
                     }),
            1);
}

TEST(Allocation, FailsForACopy) {
  StreamState* copy = nullptr;
  EXPECT_EQ(FailEach([&] { return __quoCopyStream(&copy, source); },
                     [&](bool failed) {
                       EXPECT_EQ(copy == nullptr, failed);
                       EXPECT_EQ(__quoGetNumChunks(source), 3);
                       __quoDeleteStream(&copy);
                       __quoDeleteStream(&source);
                     },
                     [&] {
                       copy = nullptr;
                       __quoNewStreamEx(&source, 0x500000, 4, kSeeds);
                       AddChunks(source, 3);
                     }),
            7)
      << "the stream, three blocks, three nodes";
}

// Between different generators too: the chunks' status is the one that counts.
TEST(Allocation, FailsForAStateCopy) {
  for (const int32_t id : {0x400000, 0x100000}) {
    EXPECT_EQ(FailEach([&] { return __quoCopyStreamState(other, source); },
                       [&](bool failed) {
                         EXPECT_EQ(__quoGetNumChunks(other), failed ? 0 : 3);
                         EXPECT_EQ(__quoGetNumChunks(source), 3);
                         double r;  // both still work
                         EXPECT_EQ(_quodRngUniform(0, other, 1, &r, 0, 1), QUO_OK);
                         EXPECT_EQ(_quodRngUniform(0, source, 1, &r, 0, 1), QUO_OK);
                         __quoDeleteStream(&other);
                         __quoDeleteStream(&source);
                       },
                       [&] {
                         __quoNewStreamEx(&source, 0x400000, 2, kSeeds);
                         __quoNewStreamEx(&other, id, 1, kSeeds);
                         AddChunks(source, 3);
                         AddChunks(other, 2);
                       }),
              6);
  }
}

TEST(Allocation, FailsForAFile) {
  const files::TemporaryFile file;
  const auto length = static_cast<int32_t>(std::strlen(file.path()));
  EXPECT_EQ(FailEach([&] { return __quoSaveStreamF(source, file.path(), length); },
                     [](bool) { __quoDeleteStream(&source); },
                     [] {
                       __quoNewStreamEx(&source, 0x500000, 4, kSeeds);
                       AddChunks(source, 3);
                     }),
            1)
      << "the name";
  StreamState* loaded = nullptr;
  EXPECT_EQ(FailEach([&] { return __quoLoadStreamF(&loaded, file.path(), length); },
                     [&](bool failed) {
                       EXPECT_EQ(loaded == nullptr, failed);
                       __quoDeleteStream(&loaded);
                     }),
            8)
      << "the name, the stream, three blocks, three nodes";
}

TEST(Allocation, FailsForAnAbstractStream) {
  double d[1];
  float s[1];
  uint32_t i[1];
  const auto settle = [](bool failed) {
    EXPECT_EQ(source == nullptr, failed);
    __quoDeleteStream(&source);
  };
  const RefillD refill_d = [](auto...) { return 1; };
  const RefillS refill_s = [](auto...) { return 1; };
  const RefillI refill_i = [](auto...) { return 1; };
  EXPECT_EQ(
      FailEach([&] { return __quodNewAbstractStream(&source, 1, d, 0, 1, refill_d); }, settle), 1);
  EXPECT_EQ(
      FailEach([&] { return __quosNewAbstractStream(&source, 1, s, 0, 1, refill_s); }, settle), 1);
  EXPECT_EQ(FailEach([&] { return __quoiNewAbstractStream(&source, 1, i, refill_i); }, settle), 1);
}

// No distribution call of this family takes memory.
TEST(Allocation, IsNotNeededByUniforms) {
  memory = Memory{};
  __quoNewStreamEx(&source, 0x400000, 1, kSeeds);
  memory.countdown = 1;
  std::vector<double> d(3000);
  std::vector<float> s(3000);
  std::vector<int32_t> i(3000);
  EXPECT_EQ(_quodRngUniform(QUO_METHOD_ACCURATE, source, 3000, d.data(), 0, 1), QUO_OK);
  EXPECT_EQ(_quosRngUniform(QUO_METHOD_ACCURATE, source, 3000, s.data(), 0, 1), QUO_OK);
  EXPECT_EQ(_quoiRngUniform(0, source, 3000, i.data(), -5, 5), QUO_OK);
  EXPECT_FALSE(memory.failed);
  memory.countdown = 0;
  __quoDeleteStream(&source);
}

}  // namespace
