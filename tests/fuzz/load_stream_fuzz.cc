// libFuzzer target: any bytes as a stream file. Whatever loads must draw, and must come back as the
// same bytes once it has been saved, loaded and saved (chunks are reversed by each load).
//
//   cmake --preset fuzz && cmake --build --preset fuzz
//   build/fuzz/bin/make_stream_corpus build/fuzz/corpus
//   build/fuzz/bin/load_stream_fuzz build/fuzz/corpus -max_len=12000 -max_total_time=600
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "pexquo/quo.h"

namespace {

void Require(bool good) {
  if (!good) std::abort();
}

// A file in memory, and its name.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("stream", 0)) {
    Require(descriptor_ >= 0);
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
  }
  const char* path() const { return path_.c_str(); }
  void Write(const uint8_t* data, size_t size) {
    Require(ftruncate(descriptor_, 0) == 0);
    Require(pwrite(descriptor_, data, size, 0) == static_cast<ssize_t>(size));
  }
  std::vector<uint8_t> Read() {
    struct stat status;
    Require(fstat(descriptor_, &status) == 0);
    std::vector<uint8_t> bytes(static_cast<size_t>(status.st_size));
    Require(pread(descriptor_, bytes.data(), bytes.size(), 0) == status.st_size);
    return bytes;
  }

 private:
  int descriptor_;
  std::string path_;
};

void Draw(const StreamState* stream) {
  StreamState* copy = nullptr;
  Require(__quoCopyStream(&copy, stream) == QUO_OK);
  BrngProperties brng;
  Require(__quoGetBrngProperties(copy->id, &brng) == QUO_OK);
  uint32_t i[4 * 700];
  double d[700];
  float s[700];
  int32_t dice[9];
  brng.iBRng(copy, 1, i);
  brng.dBRng(copy, 700, d, 0, 1);
  brng.sBRng(copy, 700, s, 0, 1);
  brng.iBRng(copy, 700, i);
  __quoLeapfrogStream(copy, 1, 3);
  __quoSkipAheadStream(copy, 1000000007);
  _quoiRngUniform(0, copy, 9, dice, 1, 7);
  __quoDeleteStream(&copy);
}

bool IsAbstract(int32_t id) {
  return id == QUO_BRNG_IABSTRACT || id == QUO_BRNG_DABSTRACT || id == QUO_BRNG_SABSTRACT;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static MemoryFile given, saved;
  given.Write(data, size);
  StreamState* stream = nullptr;
  const int32_t status = __quoLoadStreamF(&stream, given.path(), -1);
  Require((status == QUO_OK) == (stream != nullptr));
  if (status != QUO_OK) return 0;

  Draw(stream);
  for (int round = 0; round < 2; ++round) {
    Require(__quoSaveStreamF(stream, saved.path(), -1) == QUO_OK);
    if (round == 1) break;
    __quoDeleteStream(&stream);
    Require(__quoLoadStreamF(&stream, saved.path(), -1) == QUO_OK);
  }
  // Up to the header's size and reserved bytes, and the pointers of abstract streams.
  std::vector<uint8_t> want(data, data + size), got = saved.Read();
  Require(got.size() <= size);
  want.resize(got.size());
  const auto forget = [&](size_t at, size_t count) {
    std::memset(want.data() + at, 0, count);
    std::memset(got.data() + at, 0, count);
  };
  forget(4, 2);
  forget(10, 2);
  if (IsAbstract(stream->id)) forget(16u + want[6] + 256u * want[7] - 16u, 16);
  Require(got == want);
  __quoDeleteStream(&stream);
  return 0;
}
