// The stream file: its bytes, round trips of every generator, names, failures.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/streams/files.h"
#include "tests/streams/scripted_generator.h"
#include "tests/streams/streams.h"

namespace {

using namespace streams;
using files::Bytes;
using files::SavedBytes;
using files::SetNumber;
using files::TemporaryFile;

// A stream for the duration of a test, loaded from bytes.
struct Loaded : Owned {
  int32_t status;
  explicit Loaded(const Bytes& bytes) {
    const TemporaryFile file;
    file.Write(bytes);
    status = __quoLoadStreamF(&p, file.path(), -1);
  }
};

// Chunks of several sizes, the last one at the head.
void AddSomeChunks(StreamState* stream) {
  AddChunk(stream, 1, 8, 0x11);
  AddChunk(stream, 2, 16, 0x22);
  AddChunk(stream, 0xFFFFFFFF, 5001, 0x33);
  AddChunk(stream, 9, 0, 0x44);
}

TEST(StreamFile, HasTheseBytes) {
  const Owned stream(0x100000, {42});
  const Bytes plain = {'R', 'N', 'G', 0, 16, 0, 8, 0, 0,    0,    0,    0,
                       0,   0,   16,  0, 42, 0, 0, 0, 0x20, 0x6C, 0x80, 0x43};
  EXPECT_EQ(SavedBytes(stream), plain);

  AddChunk(stream, 2, 3, 0xAA);
  AddChunk(stream, 0x12345678, 1, 0xBB);
  Bytes chunks = plain;
  chunks[8] = 2;
  const unsigned char records[] = {0x78, 0x56, 0x34, 0x12, 1, 0, 0, 0, 0xBB,  //
                                   2,    0,    0,    0,    3, 0, 0, 0, 0xAA, 0xAA, 0xAA};
  chunks.insert(chunks.end(), std::begin(records), std::end(records));
  EXPECT_EQ(SavedBytes(stream), chunks);
}

TEST(StreamFile, KeepsTheIdentifierOfEitherScheme) {
  const Owned legacy(7), current(0x500003);
  EXPECT_EQ(files::Number(SavedBytes(legacy), 12, 4), 7u);
  EXPECT_EQ(files::Number(SavedBytes(current), 12, 4), 0x500003u);
  EXPECT_EQ(SavedBytes(legacy).size(), 48u);
  const Loaded again(SavedBytes(legacy));
  EXPECT_EQ(again.p->id, 7);
  EXPECT_EQ(again.p->header, 1);
}

void ExpectSameChunksReversed(const StreamState* stream, const StreamState* loaded) {
  auto keys = Keys(stream);
  std::reverse(keys.begin(), keys.end());
  ASSERT_EQ(Keys(loaded), keys);
  for (const StreamChunk* c = loaded->chunks; c != nullptr; c = c->next) {
    const StreamChunk* from = stream->chunks;
    while (from->key != c->key) from = from->next;
    ASSERT_EQ(c->size, from->size);
    ASSERT_NE(c->data, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(c->data) % 32, 0u);
    EXPECT_EQ(std::memcmp(c->data, from->data, c->size), 0);
  }
}

class RoundTrip : public testing::TestWithParam<int32_t> {};

TEST_P(RoundTrip, GoesOnWhereTheSavedStreamStood) {
  for (const int32_t drawn : {0, 1, 13, 1000}) {
    SCOPED_TRACE(drawn);
    const Owned stream(GetParam());
    if (drawn != 0) Raw(stream, drawn);
    AddSomeChunks(stream);
    const Bytes bytes = SavedBytes(stream);
    const Loaded loaded(bytes);
    ASSERT_EQ(loaded.status, QUO_OK);
    EXPECT_EQ(loaded.p->id, GetParam());
    EXPECT_EQ(loaded.p->header, 1);
    ExpectSameChunksReversed(stream, loaded);
    EXPECT_EQ(Raw(loaded, 700), Raw(stream, 700));
    EXPECT_EQ(Draw(loaded, 700), Draw(stream, 700));
    std::vector<float> one(99), other(99);
    EXPECT_EQ(_quosRngUniform(0, loaded, 99, one.data(), -1, 1), QUO_OK);
    EXPECT_EQ(_quosRngUniform(0, stream, 99, other.data(), -1, 1), QUO_OK);
    EXPECT_EQ(one, other);
  }
}

// A leapfrogged stream keeps its stride.
TEST_P(RoundTrip, KeepsThePartition) {
  const Owned stream(GetParam());
  __quoLeapfrogStream(stream, 2, 5);  // as far as the generator does either
  __quoSkipAheadStream(stream, 12345678901);
  const Loaded loaded(SavedBytes(stream));
  ASSERT_EQ(loaded.status, QUO_OK);
  EXPECT_EQ(Raw(loaded, 50), Raw(stream, 50));
}

std::vector<int32_t> RoundTripIdentifiers() {
  std::vector<int32_t> ids = Identifiers();
  ids.insert(ids.end(), {0, 3, 4, 276});
  return ids;
}
INSTANTIATE_TEST_SUITE_P(StreamFile, RoundTrip, testing::ValuesIn(RoundTripIdentifiers()),
                         [](const auto& info) { return "id" + std::to_string(info.param); });

TEST(StreamFile, OfARegisteredGenerator) {
  scripted::Script script;
  script.values = {0.1, 0.2, 0.3, 0.4, 0.5};
  Owned stream;
  stream.p = scripted::Start(script);
  const std::vector<double> first = Draw(stream, 3);
  const Loaded loaded(SavedBytes(stream));
  ASSERT_EQ(loaded.status, QUO_OK);
  EXPECT_EQ(Draw(loaded, 4), (std::vector<double>{0.4, 0.5, 0.1, 0.2}));

  // Generators without a state of their own, and with one that the file's 16 bits cannot count.
  for (const int32_t size : {0, 15, 16, 17, 16 + 65535, 16 + 65536, 1 << 20}) {
    SCOPED_TRACE(size);
    BrngProperties record = scripted::kRecord;
    record.StateSize = size;
    record.InitStream = [](int32_t, StreamState*, int32_t, const uint32_t*) { return 0; };
    const Owned sized(__quoRegisterBrng(&record));
    const size_t bytes = size < 16 ? 0 : static_cast<size_t>(size) - 16;
    std::memset(sized.state(), 0x5A, bytes);
    const TemporaryFile file;
    file.Write({1, 2, 3});
    if (bytes > 65535) {
      EXPECT_EQ(__quoSaveStreamF(sized, file.path(), -1), QUO_WRITE_FAILED);
      EXPECT_EQ(file.Read(), (Bytes{1, 2, 3})) << "untouched";
      continue;
    }
    ASSERT_EQ(__quoSaveStreamF(sized, file.path(), -1), QUO_OK);
    EXPECT_EQ(file.Read().size(), 16 + bytes);
    const Loaded again(file.Read());
    ASSERT_EQ(again.status, QUO_OK);
    EXPECT_EQ(std::memcmp(again.state(), sized.state(), bytes), 0);
  }
}

TEST(StreamFile, HoldsUpTo65535Chunks) {
  const Owned stream(0x100000);
  for (uint32_t i = 0; i < 65535; ++i) ASSERT_EQ(__quoAddChunk(stream, i, nullptr, 77), QUO_OK);
  const Bytes bytes = SavedBytes(stream);
  EXPECT_EQ(bytes.size(), 24 + 8 * 65535u) << "a chunk without data has no bytes";
  const Loaded loaded(bytes);
  ASSERT_EQ(loaded.status, QUO_OK);
  auto keys = Keys(stream);
  std::reverse(keys.begin(), keys.end());
  EXPECT_EQ(Keys(loaded), keys);
  EXPECT_EQ(loaded.p->chunks->size, 0u);

  ASSERT_EQ(__quoAddChunk(stream, 0, nullptr, 0), QUO_OK);
  const TemporaryFile file;
  EXPECT_EQ(__quoSaveStreamF(stream, file.path(), -1), QUO_WRITE_FAILED);
  EXPECT_EQ(file.Read(), Bytes{});
}

TEST(StreamFile, HasANameWithOrWithoutItsLength) {
  const Owned stream(0x400000);
  const TemporaryFile file;
  const std::string path = file.path();
  const std::string longer = path + "-and more";
  const auto length = static_cast<int32_t>(path.size());
  ASSERT_EQ(__quoSaveStreamF(stream, longer.data(), length), QUO_OK);
  EXPECT_EQ(file.Read().size(), 32u);
  for (const auto& [name, n] : {std::pair{longer, length}, {path, -1}, {path, INT32_MIN}}) {
    Owned loaded;
    EXPECT_EQ(__quoLoadStreamF(&loaded.p, name.data(), n), QUO_OK);
    EXPECT_NE(loaded.p, nullptr);
  }
  for (const auto& [name, n] : {std::pair{path.data(), 0},
                                {static_cast<const char*>(nullptr), 0},
                                {static_cast<const char*>(nullptr), -1}}) {
    Owned loaded;
    EXPECT_EQ(__quoLoadStreamF(&loaded.p, name, n), QUO_OPEN_FAILED);
    EXPECT_EQ(__quoSaveStreamF(stream, name, n), QUO_OPEN_FAILED);
  }
}

TEST(StreamFile, SaysWhenItCannotBeWritten) {
  const Owned stream(0x100000);
  EXPECT_EQ(__quoSaveStreamF(stream, "/no such folder/file", -1), QUO_OPEN_FAILED);
  EXPECT_EQ(__quoSaveStreamF(stream, testing::TempDir().c_str(), -1), QUO_OPEN_FAILED);
  const StreamState forged = {-5, 1, nullptr};
  const TemporaryFile file;
  EXPECT_EQ(__quoSaveStreamF(&forged, file.path(), -1), QUO_INVALID_BRNG);
  EXPECT_EQ(file.Read(), Bytes{});

  // A full disk, met where the bytes leave the buffer: while the file is closed, or earlier.
  if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full";
  EXPECT_EQ(__quoSaveStreamF(stream, "/dev/full", -1), QUO_CLOSE_FAILED);
  AddChunk(stream, 1, 1u << 20, 1);
  EXPECT_EQ(__quoSaveStreamF(stream, "/dev/full", -1), QUO_WRITE_FAILED);
}

TEST(StreamFile, IsRefusedForTheFirstFault) {
  const Owned stream(0x100000);
  AddChunk(stream, 2, 16, 1);
  const Bytes good = SavedBytes(stream);
  struct Case {
    const char* what;
    size_t at, size;
    uint32_t value;
    int32_t status;
  };
  const Case cases[] = {
      {"first letter", 0, 1, 'r', QUO_BAD_FILE},
      {"last letter", 2, 1, 'g', QUO_BAD_FILE},
      {"format", 3, 1, 1, QUO_BAD_FILE_FORMAT},
      {"header size too small", 4, 2, 15, QUO_BAD_FILE},
      {"header size 0", 4, 2, 0, QUO_BAD_FILE},
      {"header size larger", 4, 2, 65535, QUO_OK},
      {"state size", 6, 2, 9, QUO_BAD_FILE},
      {"state size with the head", 6, 2, 24, QUO_BAD_FILE},
      {"no chunks, though some follow", 8, 2, 0, QUO_OK},
      {"a chunk too many", 8, 2, 2, QUO_READ_FAILED},
      {"65535 chunks", 8, 2, 65535, QUO_READ_FAILED},
      {"reserved", 10, 2, 0xFFFF, QUO_OK},
      {"negative identifier", 12, 4, 0x80000000, QUO_BAD_FILE},
      {"identifier -1", 12, 4, 0xFFFFFFFF, QUO_BAD_FILE},
      {"member of no family", 12, 4, 0x100001, QUO_BAD_FILE},
      {"identifier of another generator", 12, 4, 0x400000, QUO_BAD_FILE},
      {"identifier in the other scheme", 12, 4, 0, QUO_OK},
      {"legacy identifier beyond the table", 12, 4, 279, QUO_BAD_FILE},
      {"chunk size a byte too large", 28, 4, 17, QUO_READ_FAILED},
      {"chunk size 2^31", 28, 4, 0x80000000, QUO_READ_FAILED},
      {"chunk size 2^32 - 1", 28, 4, 0xFFFFFFFF, QUO_READ_FAILED},
      {"chunk size smaller", 28, 4, 15, QUO_OK},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Bytes bytes = good;
    SetNumber(&bytes, c.at, c.size, c.value);
    const Loaded loaded(bytes);
    EXPECT_EQ(loaded.status, c.status);
    EXPECT_EQ(loaded.p == nullptr, c.status != QUO_OK);
  }
  // Several faults: the format comes after the signature and before all the rest.
  Bytes bytes = good;
  SetNumber(&bytes, 3, 1, 1);
  SetNumber(&bytes, 12, 4, 279);
  EXPECT_EQ(Loaded(bytes).status, QUO_BAD_FILE_FORMAT);
  SetNumber(&bytes, 0, 1, 'X');
  EXPECT_EQ(Loaded(bytes).status, QUO_BAD_FILE);

  Owned none;
  EXPECT_EQ(__quoLoadStreamF(&none.p, "/no such folder/file", -1), QUO_OPEN_FAILED);
  EXPECT_EQ(__quoLoadStreamF(&none.p, testing::TempDir().c_str(), -1), QUO_READ_FAILED);
  EXPECT_EQ(none.p, nullptr);
}

TEST(StreamFile, ThatFailsDeletesWhatThePointerRefersTo) {
  Owned stream(0x100000);
  EXPECT_EQ(__quoLoadStreamF(&stream.p, "/no such folder/file", -1), QUO_OPEN_FAILED);
  EXPECT_EQ(stream.p, nullptr);
}

// ---- Abstract streams: their buffer and function belong to the process that saved them. ----

int32_t Refill(StreamState*, int32_t* n, double* buffer, int32_t*, int32_t*, int32_t*) {
  for (int32_t i = 0; i < *n; ++i) buffer[i] = 0.5;
  return *n;
}
int32_t Refill(StreamState*, int32_t* n, float* buffer, int32_t*, int32_t*, int32_t*) {
  for (int32_t i = 0; i < *n; ++i) buffer[i] = 0.5;
  return *n;
}
int32_t Refill(StreamState*, int32_t* n, uint32_t* buffer, int32_t*, int32_t*, int32_t*) {
  for (int32_t i = 0; i < *n; ++i) buffer[i] = 5;
  return *n;
}

TEST(StreamFile, OfAnAbstractStreamLosesItsBufferAndFunction) {
  double d[4];
  float s[4];
  uint32_t i[4];
  Owned streams[3];
  ASSERT_EQ(__quodNewAbstractStream(&streams[0].p, 4, d, -1, 1, Refill), QUO_OK);
  ASSERT_EQ(__quosNewAbstractStream(&streams[1].p, 4, s, -1, 1, Refill), QUO_OK);
  ASSERT_EQ(__quoiNewAbstractStream(&streams[2].p, 4, i, Refill), QUO_OK);
  for (const Owned& stream : streams) {
    SCOPED_TRACE(stream.p->id);
    const BrngProperties brng = Properties(stream);
    uint64_t r[4];
    const auto generate = [&](StreamState* from, int32_t n) {
      const int32_t statuses[] = {brng.dBRng(from, n, reinterpret_cast<double*>(r), 0, 1),
                                  brng.sBRng(from, n, reinterpret_cast<float*>(r), 0, 1),
                                  brng.iBRng(from, n, reinterpret_cast<uint32_t*>(r))};
      int32_t own = 0;
      for (const int32_t status : statuses) own = status == QUO_WRONG_OUTPUT ? own : status;
      return own;
    };
    EXPECT_EQ(generate(stream, 2), QUO_OK);
    const auto state_bytes = static_cast<size_t>(brng.StateSize) - 16;
    const Bytes bytes = SavedBytes(stream);
    EXPECT_EQ(Bytes(bytes.begin() + 16, bytes.end()),
              Bytes(stream.state(), stream.state() + state_bytes));
    const Loaded loaded(bytes);
    ASSERT_EQ(loaded.status, QUO_OK);
    EXPECT_EQ(std::memcmp(loaded.state(), stream.state(), state_bytes - 16), 0) << "all but that";
    for (const int32_t n : {2, 0}) EXPECT_EQ(generate(loaded, n), QUO_NULL_FUNCTION) << n;
    EXPECT_EQ(generate(stream, 2), QUO_OK);
    EXPECT_EQ(SavedBytes(loaded).size(), bytes.size());
  }
}

}  // namespace
