// Streams and chunks: layout, creation, copies with their prescribed oddities.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "pexquo/quo.h"
#include "tests/streams/scripted_generator.h"
#include "tests/streams/streams.h"

namespace {

using namespace streams;

TEST(Stream, KeepsTheIdentifierAsGiven) {
  for (const int32_t id : {0, 0x100000, 3, 0x400000, 4, 276, 0x500000, 0x500000 + 272}) {
    const Owned stream(id);
    EXPECT_EQ(__quoGetStreamStateBrng(stream), id);
    EXPECT_EQ(stream.p->header, 1);
    EXPECT_EQ(stream.p->chunks, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(stream.p) % 32, 0u);
  }
}

TEST(Stream, IsNotMadeForWhatIsNoGenerator) {
  const int32_t ids[] = {-1,         INT32_MIN, 279,      0x500000 + 273, 0x900000 + 1024,
                         0x1FF00000, INT32_MAX, 0xA00000, 0xB00000,       0xC00000,
                         0xC00001};
  const uint32_t seed = 1;
  for (const int32_t id : ids) {
    StreamState* stream = reinterpret_cast<StreamState*>(16);
    EXPECT_EQ(__quoNewStreamEx(&stream, id, 1, &seed), QUO_INVALID_BRNG) << id;
    EXPECT_EQ(stream, nullptr) << id;
    EXPECT_EQ(__quoDeleteStream(&stream), QUO_OK) << "nothing to delete";
  }
}

TEST(Stream, StaysWhenItsGeneratorRefuses) {
  scripted::Script script;
  script.init_status = -77;
  scripted::script = script;
  StreamState* stream = nullptr;
  EXPECT_EQ(__quoNewStreamEx(&stream, scripted::Id(), 0, nullptr), -77);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(__quoGetStreamStateBrng(stream), scripted::Id());
  EXPECT_EQ(__quoDeleteStream(&stream), QUO_OK);
  EXPECT_EQ(stream, nullptr);
}

TEST(Stream, OfAStateSizeBelowTheHeaderHasAHeader) {
  for (const int32_t size : {0, 15, 16, 17}) {
    BrngProperties record = scripted::kRecord;
    record.StateSize = size;
    record.InitStream = [](int32_t, StreamState*, int32_t, const uint32_t*) { return 0; };
    const int32_t id = __quoRegisterBrng(&record);
    Owned one(id), two(id), three;
    AddChunk(one, 1, 8, 1);
    EXPECT_EQ(__quoCopyStream(&three.p, one), QUO_OK);
    EXPECT_EQ(__quoCopyStreamState(two, one), QUO_OK);
    EXPECT_EQ(Keys(two), Words{1});
    EXPECT_EQ(Keys(three), Words{1});
  }
}

TEST(Chunk, GoesToTheHeadAndIsFoundFromThere) {
  const Owned stream(0x400000);
  EXPECT_EQ(__quoSearchChunk(stream, 2), nullptr);
  AddChunk(stream, 2, 16, 0xA);
  AddChunk(stream, 5, 544, 0xB);
  AddChunk(stream, 2, 32, 0xC);
  ASSERT_EQ(__quoAddChunk(stream, 0xFFFFFFFF, nullptr, 100), QUO_OK);
  EXPECT_EQ(Keys(stream), (Words{0xFFFFFFFF, 2, 5, 2}));
  EXPECT_EQ(*static_cast<unsigned char*>(__quoSearchChunk(stream, 2)), 0xC) << "the later one";
  EXPECT_EQ(*static_cast<unsigned char*>(__quoSearchChunk(stream, 5)), 0xB);
  EXPECT_EQ(__quoSearchChunk(stream, 0xFFFFFFFF), nullptr) << "a chunk without data";
  EXPECT_EQ(__quoSearchChunk(stream, 3), nullptr);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(stream.p->chunks) % 32, 0u);

  Owned copy;
  ASSERT_EQ(__quoCopyStream(&copy.p, stream), QUO_OK);
  EXPECT_EQ(Keys(copy), (Words{2, 5, 2, 0xFFFFFFFF}));
  EXPECT_EQ(*static_cast<unsigned char*>(__quoSearchChunk(copy, 2)), 0xA) << "now the earlier one";

  EXPECT_EQ(__quoDeleteChunks(stream), QUO_OK);
  EXPECT_EQ(Keys(stream), Words{});
  EXPECT_EQ(__quoDeleteChunks(stream), QUO_OK);
  EXPECT_EQ(__quoGetNumChunks(copy), 4) << "the copy has its own";
}

TEST(StreamCopy, ContinuesTheSequenceWithItsOwnData) {
  for (const int32_t id : {0, 0x100000, 0x400000, 0x500000 + 100, 150}) {
    SCOPED_TRACE(id);
    const Owned source(id);
    Draw(source, 33);
    AddChunk(source, 2, 40, 0x5A);
    AddChunk(source, 5, 3, 0x3C);
    Owned copy;
    ASSERT_EQ(__quoCopyStream(&copy.p, source), QUO_OK);
    EXPECT_EQ(copy.p->id, id);
    EXPECT_EQ(copy.p->header, 1);
    EXPECT_EQ(Keys(copy), (Words{2, 5}));
    for (const uint32_t key : {2u, 5u}) {
      const void *from = __quoSearchChunk(source, key), *to = __quoSearchChunk(copy, key);
      EXPECT_NE(from, to);
      EXPECT_EQ(std::memcmp(from, to, key == 2 ? 40 : 3), 0);
      EXPECT_EQ(reinterpret_cast<uintptr_t>(to) % 32, 0u);
    }
    const auto want = Draw(source, 50);
    EXPECT_EQ(Draw(copy, 50), want);
  }
}

TEST(StateCopy, OntoItselfChangesNothing) {
  const Owned stream(0x400000);
  AddChunk(stream, 5, 8, 1);
  EXPECT_EQ(__quoCopyStreamState(stream, stream), QUO_OK);
  EXPECT_EQ(Keys(stream), Words{5});
}

TEST(StateCopy, MovesTheSeedsButNotTheHeaderOrTheMultiplier) {
  const Owned source(0x100000, {1234}), destination(0, {99});
  std::memset(destination.state() + 4, 0x77, 4);  // the multiplier
  AddChunk(destination, 1, 8, 1);
  EXPECT_EQ(__quoCopyStreamState(destination, source), QUO_OK) << "row 0 of either table";
  EXPECT_EQ(destination.p->id, 0);
  EXPECT_EQ(Keys(destination), Words{});
  EXPECT_EQ(std::memcmp(destination.state(), source.state(), 4), 0);
  EXPECT_EQ(destination.state()[4], 0x77);
}

TEST(StateCopy, OfWHStaysWithinTheStream) {
  const Owned source(0x500003, {11, 12, 13, 14}), destination(8, {21, 22, 23, 24});
  EXPECT_EQ(__quoCopyStreamState(destination, source), QUO_OK) << "members of one row";
  EXPECT_EQ(std::memcmp(destination.state(), source.state(), 32), 0);
  EXPECT_EQ(destination.p->id, 8);

  // 64 bytes of seeds, 32 of state, and only 8 of them fit. (A sanitizer sees a byte too many.)
  const Owned small(0x100000);
  EXPECT_EQ(__quoCopyStreamState(small, source), QUO_DIFFERENT_BRNGS);
  EXPECT_EQ(std::memcmp(small.state(), source.state(), 8), 0);
}

// Seeds that the destination has no room for stay behind, whatever their number.
TEST(StateCopy, EndsWithTheSmallerState) {
  for (const int32_t id : {0x800000, 0x900000, 0x200000, 0x600000}) {
    SCOPED_TRACE(id);
    const Owned source(id);
    struct {
      StreamState head = {0x100000, 1, nullptr};
      unsigned char state[8] = {};  // of MCG31M1
      unsigned char behind[20000] = {};
    } small;
    EXPECT_EQ(__quoCopyStreamState(&small.head, source), QUO_DIFFERENT_BRNGS);
    EXPECT_EQ(std::memcmp(small.state, source.state(), 8), 0);
    EXPECT_EQ(std::count(std::begin(small.behind), std::end(small.behind), 0), 20000);
  }
}

TEST(StateCopy, BetweenGeneratorsCopiesAndLosesItsErrorToChunks) {
  const Owned source(0x100000, {1234}), destination(0x400000, {99});
  std::memset(destination.state(), 0x77, 16);
  AddChunk(destination, 1, 8, 1);
  EXPECT_EQ(__quoCopyStreamState(destination, source), QUO_DIFFERENT_BRNGS);
  EXPECT_EQ(std::memcmp(destination.state(), source.state(), 4), 0);
  EXPECT_EQ(destination.state()[4], 0x77) << "the source's count: four bytes";
  EXPECT_EQ(Keys(destination), Words{}) << "freed all the same";

  AddChunk(source, 2, 16, 2);
  AddChunk(source, 5, 24, 5);
  AddChunk(destination, 1, 8, 1);
  EXPECT_EQ(__quoCopyStreamState(destination, source), QUO_OK);
  EXPECT_EQ(Keys(destination), (Words{2, 5}));
  EXPECT_EQ(Keys(source), (Words{5, 2}));

  // One generator, but different rows of the two tables.
  StreamState *legacy = nullptr, *current = nullptr;
  __quoNewStreamEx(&legacy, 277, 0, nullptr);
  __quoNewStreamEx(&current, 0x600000, 0, nullptr);
  EXPECT_EQ(__quoCopyStreamState(legacy, current), QUO_DIFFERENT_BRNGS);
  __quoDeleteStream(&legacy);
  __quoDeleteStream(&current);
}

// A stream that was made up: no table is read beyond its end.
TEST(Stream, WithAForgedIdentifierIsRefused) {
  for (const int32_t id : {-5, INT32_MIN, 400, 0x7FF00000, 0x500000 + 273}) {
    StreamState forged = {id, 1, nullptr};
    const Owned good(0x100000);
    StreamState* copy = good;
    double d;
    float s;
    uint32_t u;
    EXPECT_EQ(__quoCopyStream(&copy, &forged), QUO_INVALID_BRNG);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(__quoCopyStreamState(good, &forged), QUO_INVALID_BRNG);
    EXPECT_EQ(__quoCopyStreamState(&forged, good), QUO_INVALID_BRNG);
    EXPECT_EQ(_quodRngUniform(0, &forged, 1, &d, 0, 1), QUO_INVALID_BRNG);
    EXPECT_EQ(_quosRngUniform(0, &forged, 1, &s, 0, 1), QUO_INVALID_BRNG);
    EXPECT_EQ(_quoiRngUniformBits(0, &forged, 1, &u), QUO_INVALID_BRNG);
  }
}

}  // namespace
