// Leapfrog and skip-ahead through the stream's entries: dispatch, refusals, and what the partitions
// of every catalogued generator are made of.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/streams/streams.h"

namespace {

using namespace streams;

// A generator that only notes how it was initialised.
struct Noted {
  int calls = 0;
  int32_t method, n, status = QUO_OK;
  uint32_t words[2];
} noted;

int32_t RegisterNoting() {
  BrngProperties record{};
  record.StateSize = 16;
  record.SeedCount = 1;
  record.WordBytes = 4;
  record.BitCount = 32;
  record.InitStream = [](int32_t method, StreamState*, int32_t n, const uint32_t* params) {
    noted = {noted.calls + 1, method, n, noted.status, {}};
    const size_t words = method == QUO_INIT_SKIPAHEAD ? 2 : method == QUO_INIT_LEAPFROG ? 1 : 0;
    std::memcpy(noted.words, params, 4 * words);
    return noted.status;
  };
  record.sBRng = [](StreamState*, int32_t, float*, float, float) { return 0; };
  record.dBRng = [](StreamState*, int32_t, double*, double, double) { return 0; };
  record.iBRng = [](StreamState*, int32_t, uint32_t*) { return 0; };
  return __quoRegisterBrng(&record);
}

TEST(Partition, HandsItsArgumentsToTheGenerator) {
  const Owned stream(RegisterNoting());
  noted = {};
  for (const auto& [k, streams] : {std::pair{5, 7}, {-1, 3}, {0, 0}, {INT32_MIN, INT32_MAX}}) {
    EXPECT_EQ(__quoLeapfrogStream(stream, k, streams), QUO_OK);
    EXPECT_EQ(noted.method, QUO_INIT_LEAPFROG);
    EXPECT_EQ(noted.n, streams);
    EXPECT_EQ(noted.words[0], static_cast<uint32_t>(k));
  }
  EXPECT_EQ(noted.calls, 4);
  for (const int32_t streams : {-1, INT32_MIN}) {
    EXPECT_EQ(__quoLeapfrogStream(stream, 5, streams), QUO_BAD_STREAM_COUNT);
  }
  EXPECT_EQ(noted.calls, 4) << "not asked";

  for (const uint64_t skip : std::vector<uint64_t>{0, 1, 0x123456789ABCDEF0, ~0ull}) {
    EXPECT_EQ(__quoSkipAheadStream(stream, skip), QUO_OK);
    EXPECT_EQ(noted.method, QUO_INIT_SKIPAHEAD);
    EXPECT_EQ(noted.n, 2);
    EXPECT_EQ(noted.words[0], static_cast<uint32_t>(skip)) << "low word first";
    EXPECT_EQ(noted.words[1], static_cast<uint32_t>(skip >> 32));
  }
  noted.status = -4321;
  EXPECT_EQ(__quoLeapfrogStream(stream, 0, 1), -4321);
  EXPECT_EQ(__quoSkipAheadStream(stream, 1), -4321);
}

TEST(Partition, OfAForgedStreamIsRefused) {
  for (const int32_t id : {-5, INT32_MIN, 400, 0x7FF00000, 0x500000 + 273}) {
    StreamState forged = {id, 1, nullptr};
    EXPECT_EQ(__quoLeapfrogStream(&forged, 0, 2), QUO_INVALID_BRNG);
    EXPECT_EQ(__quoLeapfrogStream(&forged, 0, -2), QUO_BAD_STREAM_COUNT);
    EXPECT_EQ(__quoSkipAheadStream(&forged, 1), QUO_INVALID_BRNG);
  }
}

struct Step {
  int32_t k, streams;  // a leapfrog, or for streams 0 a skip
  uint64_t skip;
};

// What a stream delivers after some steps, as start and step of elements of the whole sequence.
class PartitionOf : public testing::TestWithParam<int32_t> {};

TEST_P(PartitionOf, DeliversItsPartOfTheSequence) {
  const std::vector<Step> plans[] = {
      {{0, 1, 0}},
      {{2, 3, 0}},
      {{0, 0, 0}},
      {{0, 0, 1}},
      {{0, 0, 777}},
      {{0, 0, 100}, {0, 0, 23}},
      {{1, 2, 0}, {0, 0, 10}},
      {{0, 0, 10}, {1, 2, 0}},
      {{1, 3, 0}, {3, 4, 0}, {0, 0, 5}, {0, 2, 0}},
      {{7, 5, 0}},  // an index beyond the number of streams: elements 7, 12, 17 ...
  };
  const int32_t id = GetParam();
  const Owned whole(id);
  const Words raw = Raw(whole, 1500);
  const auto words = static_cast<size_t>(Properties(whole).WordBytes) / 4;
  for (size_t p = 0; p < std::size(plans); ++p) {
    SCOPED_TRACE(p);
    const Owned stream(id);
    size_t start = 0, step = 1;
    for (const Step& s : plans[p]) {
      const bool leaps = s.streams != 0;
      const Words before(
          reinterpret_cast<uint32_t*>(stream.state()),
          reinterpret_cast<uint32_t*>(stream.state()) + (Properties(stream).StateSize - 16) / 4);
      const int32_t status = leaps ? __quoLeapfrogStream(stream, s.k, s.streams)
                                   : __quoSkipAheadStream(stream, s.skip);
      if (status != QUO_OK) {
        EXPECT_EQ(status, leaps ? QUO_LEAPFROG_UNSUPPORTED : QUO_SKIPAHEAD_UNSUPPORTED);
        EXPECT_EQ(std::memcmp(before.data(), stream.state(), 4 * before.size()), 0);
        continue;
      }
      start += step * (leaps ? static_cast<size_t>(s.k) : s.skip);
      step *= leaps ? static_cast<size_t>(s.streams) : 1;
    }
    const Words want = Every(raw, words, start, step);
    const Words got = Raw(stream, static_cast<int32_t>(want.size() / words));
    EXPECT_EQ(got, want);
  }
}

// Far skips add up: 2^64 - 1 steps in one, or in two halves.
TEST_P(PartitionOf, SkipsFarInOneOrSeveralSteps) {
  const Owned one(GetParam()), two(GetParam());
  if (__quoSkipAheadStream(one, ~uint64_t{0}) == QUO_SKIPAHEAD_UNSUPPORTED) return;
  EXPECT_EQ(__quoSkipAheadStream(two, uint64_t{1} << 63), QUO_OK);
  EXPECT_EQ(__quoSkipAheadStream(two, (uint64_t{1} << 63) - 7), QUO_OK);
  Raw(two, 6);
  EXPECT_EQ(Raw(one, 20), Raw(two, 20));
}

INSTANTIATE_TEST_SUITE_P(Partition, PartitionOf, testing::ValuesIn(Identifiers()),
                         [](const auto& info) { return "id" + std::to_string(info.param); });

}  // namespace
