// The stream file is untrusted: files cut at every byte, with every byte changed, with pieces
// removed, doubled and mixed. Each load ends as a plain reading of the format foretells, leaks
// nothing, and takes no more memory than the file could fill; a stream that comes out draws.
//
// Its own program: it takes the place of the service library's memory.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <string>
#include <thread>

#include "tests/streams/counted_memory.h"
#include "tests/streams/files.h"
#include "tests/streams/streams.h"
#include "tests/support/random.h"

namespace {

using files::Bytes;
using files::Number;
using files::SetNumber;
using streams::Owned;

// A file in memory that is loaded by its name.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("stream", 0)) {
    EXPECT_GE(descriptor_, 0);
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  const char* Holding(const Bytes& bytes) const {
    EXPECT_EQ(ftruncate(descriptor_, 0), 0);
    const auto size = static_cast<ssize_t>(bytes.size());
    EXPECT_EQ(pwrite(descriptor_, bytes.data(), bytes.size(), 0), size);
    return path_.c_str();
  }

 private:
  int descriptor_;
  std::string path_;
};

struct Chunk {
  uint32_t key;
  Bytes data;
  bool operator==(const Chunk&) const = default;
};

// What the format says about some bytes.
struct Reading {
  int32_t status = QUO_OK;
  int32_t id = 0;
  Bytes state;
  std::vector<Chunk> chunks;
};

Reading Read(const Bytes& bytes) {
  Reading r;
  size_t at = 0;
  const auto fits = [&](size_t n) { return n <= bytes.size() - at; };
  const auto take = [&](size_t n) {
    const auto begin = bytes.begin() + static_cast<ptrdiff_t>(at);
    at += n;
    return Bytes(begin, begin + static_cast<ptrdiff_t>(n));
  };
  const auto fail = [&](int32_t status) {
    r.status = status;
    return r;
  };
  if (!fits(16)) return fail(QUO_READ_FAILED);
  const Bytes header = take(16);
  if (header[0] != 'R' || header[1] != 'N' || header[2] != 'G') return fail(QUO_BAD_FILE);
  if (header[3] != 0) return fail(QUO_BAD_FILE_FORMAT);
  r.id = static_cast<int32_t>(Number(header, 12, 4));
  BrngProperties brng;
  if (__quoGetBrngProperties(r.id, &brng) != QUO_OK) return fail(QUO_BAD_FILE);
  const size_t state = Number(header, 6, 2);
  if (state != static_cast<size_t>(brng.StateSize) - 16) return fail(QUO_BAD_FILE);
  if (Number(header, 4, 2) < 16) return fail(QUO_BAD_FILE);
  if (!fits(state)) return fail(QUO_READ_FAILED);
  r.state = take(state);
  for (uint32_t i = Number(header, 8, 2); i > 0; --i) {
    if (!fits(8)) return fail(QUO_READ_FAILED);
    const Bytes record = take(8);
    const size_t size = Number(record, 4, 4);
    if (!fits(size)) return fail(QUO_READ_FAILED);
    r.chunks.insert(r.chunks.begin(), {Number(record, 0, 4), take(size)});
  }
  return r;
}

bool IsAbstract(int32_t id) {
  return id == QUO_BRNG_IABSTRACT || id == QUO_BRNG_DABSTRACT || id == QUO_BRNG_SABSTRACT;
}

// Whatever the state holds: the generator stays within its memory, and the call within its status.
void DrawFrom(StreamState* stream) {
  const BrngProperties brng = streams::Properties(stream);
  uint32_t i[4 * 40];
  double d[40];
  float s[40];
  const int32_t statuses[] = {brng.iBRng(stream, 1, i), brng.dBRng(stream, 40, d, 0, 1),
                              brng.sBRng(stream, 40, s, 0, 1), brng.iBRng(stream, 40, i)};
  for (const int32_t status : statuses) {
    if (IsAbstract(stream->id)) {
      ASSERT_TRUE(status == QUO_NULL_FUNCTION || status == QUO_WRONG_OUTPUT) << status;
    } else {
      ASSERT_TRUE(status == QUO_OK || status == QUO_INVALID_BRNG) << status;
    }
  }
}

void Check(const MemoryFile& file, const Bytes& bytes) {
  memory = Memory{};
  StreamState* stream = nullptr;
  const Reading want = Read(bytes);
  ASSERT_EQ(__quoLoadStreamF(&stream, file.Holding(bytes), -1), want.status);
  // A chunk's node takes the place of the 8 bytes that stand before its data.
  ASSERT_LE(memory.most_bytes, 4 * bytes.size() + 64);
  if (want.status != QUO_OK) {
    ASSERT_EQ(stream, nullptr);
  } else {
    ASSERT_NE(stream, nullptr);
    ASSERT_EQ(stream->id, want.id);
    const size_t pointers = IsAbstract(want.id) ? 16 : 0;
    ASSERT_EQ(std::memcmp(stream + 1, want.state.data(), want.state.size() - pointers), 0);
    std::vector<Chunk> chunks;
    for (const StreamChunk* c = stream->chunks; c != nullptr; c = c->next) {
      const auto* data = static_cast<const unsigned char*>(c->data);
      chunks.push_back({c->key, Bytes(data, data + c->size)});
    }
    ASSERT_EQ(chunks, want.chunks);
    DrawFrom(stream);
    __quoDeleteStream(&stream);
  }
  ASSERT_TRUE(memory.live.empty()) << memory.live.size() << " blocks leak";
  ASSERT_EQ(memory.wrong_free, 0);
  ASSERT_EQ(memory.wrong_alignment, 0);
}

// ---- The files that are mutated: a stream with chunks of each kind of generator. ----

double double_buffer[3];
float single_buffer[3];
uint32_t word_buffer[3];

Bytes GoodFile(int32_t id) {
  memory = Memory{};
  Owned stream;
  const RefillD refill_d = [](auto...) { return 1; };
  const RefillS refill_s = [](auto...) { return 1; };
  const RefillI refill_i = [](auto...) { return 1; };
  // Of the quasi-random generators a user's set, which brings a chunk of its own.
  const uint32_t seed[] = {id == QUO_BRNG_NIEDERR ? 2u : 1u, id == QUO_BRNG_SOBOL ? 3u : 2u,
                           id == QUO_BRNG_SOBOL ? 1u : 3u};
  const int32_t status = id == QUO_BRNG_DABSTRACT
                             ? __quodNewAbstractStream(&stream.p, 3, double_buffer, 0, 1, refill_d)
                         : id == QUO_BRNG_SABSTRACT
                             ? __quosNewAbstractStream(&stream.p, 3, single_buffer, 0, 1, refill_s)
                         : id == QUO_BRNG_IABSTRACT
                             ? __quoiNewAbstractStream(&stream.p, 3, word_buffer, refill_i)
                             : __quoNewStreamEx(&stream.p, id, 3, seed);
  EXPECT_EQ(status, QUO_OK);
  streams::AddChunk(stream, 1, 8, 0xBF);
  streams::AddChunk(stream, 7, 0, 0);
  streams::AddChunk(stream, 2, 16, 0xBF);
  return files::SavedBytes(stream);
}

std::vector<int32_t> Kinds() {
  std::vector<int32_t> ids = {QUO_BRNG_IABSTRACT, QUO_BRNG_DABSTRACT, QUO_BRNG_SABSTRACT};
  for (const quo::Generator& g : quo::Generators()) ids.push_back(g.id);
  return ids;
}

// The next byte to look at: all of a small file and of the ends of a large one, and some between.
size_t Next(size_t at, const Bytes& file) {
  constexpr size_t kEnds = 300, kStep = 89;
  const bool within = at >= kEnds && at + kEnds + kStep < file.size();
  return at + (within && file.size() > 5000 ? kStep : 1);
}

class Mutation : public testing::TestWithParam<int32_t> {
 protected:
  MemoryFile file_;
  Bytes good_ = GoodFile(GetParam());
};

TEST_P(Mutation, CutAtEveryByte) {
  for (size_t size = 0; size <= good_.size(); size = Next(size, good_)) {
    SCOPED_TRACE(size);
    ASSERT_NO_FATAL_FAILURE(
        Check(file_, Bytes(good_.begin(), good_.begin() + static_cast<ptrdiff_t>(size))));
  }
}

TEST_P(Mutation, EveryByteChanged) {
  for (size_t at = 0; at < good_.size(); at = Next(at, good_)) {
    const int byte = good_[at];
    for (const int value : {0, 1, 0x7F, 0x80, 0xFF, byte ^ 1, byte ^ 0x80, byte + 1, byte - 1}) {
      SCOPED_TRACE(testing::Message() << "byte " << at << " is " << (value & 0xFF));
      Bytes bytes = good_;
      bytes[at] = static_cast<unsigned char>(value);
      ASSERT_NO_FATAL_FAILURE(Check(file_, bytes));
    }
  }
}

// Numbers of absurd size in every place where a chunk's key and size could stand.
TEST_P(Mutation, EveryWordAbsurd) {
  for (size_t at = 0; at + 4 <= good_.size(); at = Next(at, good_)) {
    for (const uint32_t value : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 0x40000000u, 0u}) {
      SCOPED_TRACE(testing::Message() << "bytes from " << at << " are " << value);
      Bytes bytes = good_;
      SetNumber(&bytes, at, 4, value);
      ASSERT_NO_FATAL_FAILURE(Check(file_, bytes));
    }
  }
}

TEST_P(Mutation, Mixed) {
  const uint64_t seed = 19790214;
  SCOPED_TRACE(seed);
  Random random(seed);
  const auto below = [&](size_t n) { return random.Below(static_cast<uint32_t>(n)); };
  for (int run = 0; run < 3000; ++run) {
    SCOPED_TRACE(run);
    Bytes bytes = good_;
    for (uint32_t k = 1 + random.Below(4); k > 0 && !bytes.empty(); --k) {
      const auto from = static_cast<ptrdiff_t>(below(bytes.size()));
      const auto to =
          from + static_cast<ptrdiff_t>(below(bytes.size() - static_cast<size_t>(from)));
      const Bytes piece(bytes.begin() + from, bytes.begin() + to);
      switch (random.Below(5)) {
        case 0:
          bytes[static_cast<size_t>(from)] = static_cast<unsigned char>(random.Bits());
          break;
        case 1:
          bytes.erase(bytes.begin() + from, bytes.begin() + to);
          break;
        case 2:
          bytes.insert(bytes.begin() + to, piece.begin(), piece.end());
          break;
        case 3:
          bytes.insert(bytes.begin() + from, static_cast<unsigned char>(random.Bits()));
          break;
        default:
          if (bytes.size() >= 10) SetNumber(&bytes, 8, 2, random.Below(8));  // the chunks' number
      }
    }
    ASSERT_NO_FATAL_FAILURE(Check(file_, bytes));
  }
}

// A state of nothing but random bits, which any index or length in it then is.
TEST_P(Mutation, StateAtRandom) {
  const uint64_t seed = 20080229;
  SCOPED_TRACE(seed);
  Random random(seed);
  const size_t state_bytes = Number(good_, 6, 2);
  for (int run = 0; run < 300; ++run) {
    SCOPED_TRACE(run);
    Bytes bytes = good_;
    for (size_t i = 16; i < 16 + state_bytes; ++i)
      bytes[i] = static_cast<unsigned char>(random.Bits());
    ASSERT_NO_FATAL_FAILURE(Check(file_, bytes));
  }
}

INSTANTIATE_TEST_SUITE_P(StreamFile, Mutation, testing::ValuesIn(Kinds()),
                         [](const auto& info) { return "id" + std::to_string(info.param); });

// By both their identifiers, the largest states there are, of ones alone.
TEST(StreamFile, OfALargeState) {
  const MemoryFile file;
  for (const int32_t id : {QUO_BRNG_SOBOL, QUO_BRNG_NIEDERR, 277, 278}) {
    BrngProperties brng;
    ASSERT_EQ(__quoGetBrngProperties(id, &brng), QUO_OK);
    Bytes bytes(static_cast<size_t>(brng.StateSize), 0xFF);
    const Bytes header = {'R', 'N', 'G', 0, 16, 0, 0, 0, 0, 0, 0, 0};
    std::copy(header.begin(), header.end(), bytes.begin());
    SetNumber(&bytes, 6, 2, static_cast<uint32_t>(brng.StateSize) - 16);
    SetNumber(&bytes, 12, 4, static_cast<uint32_t>(id));
    for (const size_t size : {bytes.size(), bytes.size() - 1, size_t{17}, size_t{16}}) {
      ASSERT_NO_FATAL_FAILURE(
          Check(file, Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size))));
    }
  }
}

// ---- A pipe, whose length nobody knows. ----

class Pipe {
 public:
  explicit Pipe(Bytes bytes) : path_(std::string(name_.path()) + "_pipe") {
    std::signal(SIGPIPE, SIG_IGN);  // the reader may leave early
    EXPECT_EQ(mkfifo(path_.c_str(), 0600), 0);
    writer_ = std::thread([this, bytes = std::move(bytes)] {
      FILE* const file = std::fopen(path_.c_str(), "wb");
      std::fwrite(bytes.data(), 1, bytes.size(), file);
      std::fclose(file);
    });
  }
  ~Pipe() {
    writer_.join();
    std::remove(path_.c_str());
  }
  Pipe(const Pipe&) = delete;
  const char* path() const { return path_.c_str(); }

 private:
  files::TemporaryFile name_;
  std::string path_;
  std::thread writer_;
};

TEST(StreamFile, ComesThroughAPipe) {
  memory = Memory{};
  for (const uint32_t size : {0u, 1u, 4095u, 4096u, 4097u, 100000u}) {
    const Owned stream(0x400000);
    streams::AddChunk(stream, 3, size, 0x5C);
    const Pipe pipe(files::SavedBytes(stream));
    Owned loaded;
    ASSERT_EQ(__quoLoadStreamF(&loaded.p, pipe.path(), -1), QUO_OK);
    ASSERT_EQ(loaded.p->chunks->size, size);
    EXPECT_EQ(std::memcmp(loaded.p->chunks->data, stream.p->chunks->data, size), 0);
    EXPECT_EQ(streams::Draw(loaded, 9), streams::Draw(stream, 9));
  }
  EXPECT_TRUE(memory.live.empty());
}

TEST(StreamFile, ThatPromisesTooMuchThroughAPipeTakesLittleMemory) {
  for (const size_t sent : {size_t{0}, size_t{5000}, size_t{300000}}) {
    Bytes bytes = GoodFile(0x100000);
    SetNumber(&bytes, 28, 4, 0xFFFFFFFF);
    bytes.resize(32 + sent, 0x77);
    memory = Memory{};
    const Pipe pipe(bytes);
    StreamState* stream = nullptr;
    EXPECT_EQ(__quoLoadStreamF(&stream, pipe.path(), -1), QUO_READ_FAILED);
    EXPECT_EQ(stream, nullptr);
    EXPECT_LE(memory.largest, std::max<size_t>(4096, 2 * sent));
    EXPECT_TRUE(memory.live.empty());
  }
}

}  // namespace
