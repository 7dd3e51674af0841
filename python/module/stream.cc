#include "python/module/stream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "pexquo/kro.h"
#include "python/module/names.h"

namespace pexquo::python {
namespace {

const quo::Generator* FindGenerator(std::string_view name) {
  const std::string small = SmallLetters(name);
  for (const quo::Generator& g : quo::Generators()) {
    if (SmallLetters(g.name) == small) return &g;
  }
  return nullptr;
}

// The identifier in the scheme of the catalogue; streams of the older one come from files.
int32_t CatalogueId(int32_t id) {
  if (id >= 0x100000) return id;
  if (id < 4) return (id + 1) << 20;
  if (id < 277) return QUO_BRNG_WH + id - 4;
  return id == 277 ? QUO_BRNG_SOBOL : QUO_BRNG_NIEDERR;
}

// The state in a stream file: see quo.h.
struct FileHeader {
  char signature[4];
  uint16_t header_bytes, state_bytes, chunks, reserved;
  int32_t id;
};
static_assert(sizeof(FileHeader) == 16);

[[noreturn]] void FailOnFile(int error, const std::string& path, const char* otherwise) {
  if (error == 0) throw Failure{PyExc_OSError, std::string(otherwise) + ": '" + path + "'"};
  errno = error;
  PyErr_SetFromErrnoWithFilename(PyExc_OSError, path.c_str());
  throw Failure{nullptr, {}};
}

}  // namespace

void Check(int32_t status, std::string_view what) {
  if (status >= 0) return;
  const std::string begin = std::string(what) + ": ";
  switch (status) {
    case QUO_NO_MEMORY:
      throw Failure{PyExc_MemoryError, begin + "no memory"};
    case QUO_LEAPFROG_UNSUPPORTED:
      throw Failure{PyExc_NotImplementedError, begin + "the generator cannot leapfrog"};
    case QUO_SKIPAHEAD_UNSUPPORTED:
      throw Failure{PyExc_NotImplementedError, begin + "the generator cannot skip ahead"};
    case QUO_INVALID_BRNG:
      throw Failure{PyExc_ValueError, begin + "no such generator"};
    default:
      throw Failure{PyExc_RuntimeError, begin + "status " + std::to_string(status)};
  }
}

Stream::Stream(std::string_view generator, int64_t member, const std::vector<uint32_t>& seed) {
  const quo::Generator* found = FindGenerator(generator);
  if (found == nullptr) {
    std::string text = "no generator '" + std::string(generator) + "'; there are";
    for (const quo::Generator& g : quo::Generators()) text += " " + SmallLetters(g.name);
    throw Failure{PyExc_ValueError, text};
  }
  if (member < 0 || member >= found->members) {
    throw Failure{PyExc_ValueError,
                  "member must be from 0 to " + std::to_string(found->members - 1) + " for " +
                      SmallLetters(found->name) + ", not " + std::to_string(member)};
  }
  const int32_t status = __quoNewStreamEx(&state_, found->id + static_cast<int32_t>(member),
                                          static_cast<int32_t>(seed.size()), seed.data());
  if (status < 0) {
    __quoDeleteStream(&state_);
    Check(status, "Stream");
  }
  Adopt();
}

Stream::Stream(StreamState* state) : state_(state) { Adopt(); }

Stream::Stream(std::string_view bytes) {
  const auto fail = [this] {
    __quoDeleteStream(&state_);
    throw Failure{PyExc_ValueError, "not a pickled stream of this library"};
  };
  FileHeader header;
  if (bytes.size() < sizeof header) fail();
  std::memcpy(&header, bytes.data(), sizeof header);
  bytes.remove_prefix(sizeof header);
  BrngProperties properties;
  if (std::memcmp(header.signature, "RNG", 4) != 0 ||
      __quoGetBrngProperties(header.id, &properties) != 0 ||
      header.state_bytes != properties.StateSize - 16 || bytes.size() < header.state_bytes) {
    fail();
  }
  int32_t row = 0, member = 0;
  const BrngProperties* table = __quoGetBrngBaseOffset(header.id, &row, &member);
  Check(__quoAllocateStream(&state_, table, header.id, row, member), "Stream");
  std::memcpy(reinterpret_cast<char*>(state_) + 16, bytes.data(), header.state_bytes);
  bytes.remove_prefix(header.state_bytes);
  std::vector<std::pair<uint32_t, std::string_view>> chunks;
  for (int i = 0; i < header.chunks; ++i) {
    uint32_t key_and_size[2];
    if (bytes.size() < sizeof key_and_size) fail();
    std::memcpy(key_and_size, bytes.data(), sizeof key_and_size);
    bytes.remove_prefix(sizeof key_and_size);
    if (bytes.size() < key_and_size[1]) fail();
    chunks.emplace_back(key_and_size[0], bytes.substr(0, key_and_size[1]));
    bytes.remove_prefix(key_and_size[1]);
  }
  if (!bytes.empty()) fail();
  // Each chunk goes to the head of the list.
  for (auto chunk = chunks.rbegin(); chunk != chunks.rend(); ++chunk) {
    const auto size = static_cast<uint32_t>(chunk->second.size());
    void* data = kro_serv_kro_malloc(size, 32);
    if (data != nullptr) std::memcpy(data, chunk->second.data(), size);
    if (data == nullptr || __quoAddChunk(state_, chunk->first, data, size) < 0) {
      kro_serv_kro_free(data);
      __quoDeleteStream(&state_);
      throw Failure{PyExc_MemoryError, "Stream: no memory"};
    }
  }
  Adopt();
}

Stream::~Stream() { __quoDeleteStream(&state_); }

void Stream::Adopt() {
  __quoGetBrngProperties(state_->id, &properties_);
  const int32_t id = CatalogueId(state_->id);
  for (const quo::Generator& g : quo::Generators()) {
    if (id >= g.id && id < g.id + g.members) generator_ = &g;
  }
  if (generator_ == nullptr) {
    __quoDeleteStream(&state_);
    throw Failure{PyExc_ValueError, "Stream: a generator that Python has no name for"};
  }
  member_ = id - generator_->id;
  before_.reserve(state_bytes());
}

void Stream::Require() const {
  if (state_ == nullptr) throw Failure{PyExc_ValueError, "a stream that was never initialised"};
}

void Stream::Lock() {
  if (mutex_.try_lock()) return;
  Py_BEGIN_ALLOW_THREADS;
  mutex_.lock();
  Py_END_ALLOW_THREADS;
}

Stream::Access::Access(Stream& stream, bool release) : stream_(stream) {
  stream.Require();
  stream.Lock();
  if (release) released_ = PyEval_SaveThread();
  stream.GiveBack();
}

Stream::Access::~Access() {
  stream_.Unlock();
  if (released_ != nullptr) PyEval_RestoreThread(released_);
}

void Stream::Restore(std::string_view bytes) {
  Stream other(bytes);
  const Access access(*this, false);
  if (other.generator_ != generator_ || other.member_ != member_) {
    throw Failure{PyExc_ValueError, "the state is of another generator"};
  }
  std::swap(state_, other.state_);
}

std::string Stream::Serialize() {
  const Access access(*this, false);
  FileHeader header = {"RNG",
                       16,
                       static_cast<uint16_t>(state_bytes()),
                       static_cast<uint16_t>(__quoGetNumChunks(state_)),
                       0,
                       state_->id};
  std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
  bytes.append(reinterpret_cast<const char*>(state_) + 16, state_bytes());
  for (const StreamChunk* c = state_->chunks; c != nullptr; c = c->next) {
    const uint32_t key_and_size[] = {c->key, c->data == nullptr ? 0 : c->size};
    bytes.append(reinterpret_cast<const char*>(key_and_size), sizeof key_and_size);
    bytes.append(static_cast<const char*>(c->data), key_and_size[1]);
  }
  return bytes;
}

// A generator without 32 significant bits in a word of 32 gives of 31 bits the upper 16 of two
// outputs, of 59 the upper 32, and of several fractions (WH) those of its uniform.
int32_t Stream::Words(int32_t n, uint32_t* words) {
  const auto count = static_cast<size_t>(n);
  if (properties_.WordBytes == 4 && properties_.BitCount == 32) {
    return properties_.iBRng(state_, n, words);
  }
  if (properties_.WordBytes == 4) {
    std::vector<uint32_t> raw(2 * count);
    const int32_t status = properties_.iBRng(state_, 2 * n, raw.data());
    const int low = properties_.BitCount - 16;
    for (size_t i = 0; i < count; ++i) {
      words[i] = (raw[2 * i] >> low << 16) | (raw[2 * i + 1] >> low & 0xFFFF);
    }
    return status;
  }
  if (properties_.WordBytes == 8) {
    std::vector<uint64_t> raw(count);
    const int32_t status = properties_.iBRng(state_, n, reinterpret_cast<uint32_t*>(raw.data()));
    for (size_t i = 0; i < count; ++i) {
      words[i] = static_cast<uint32_t>(raw[i] >> (properties_.BitCount - 32));
    }
    return status;
  }
  std::vector<double> uniforms(count);
  const int32_t status = properties_.dBRng(state_, n, uniforms.data(), 0, 1);
  for (size_t i = 0; i < count; ++i) {
    words[i] = static_cast<uint32_t>(std::min(uniforms[i] * 0x1p32, 0x1p32 - 1));
  }
  return status;
}

void Stream::DrawAhead() {
  const char* state = reinterpret_cast<const char*>(state_) + 16;
  before_.assign(state, state + state_bytes());
  Words(kAhead, words_.data());
  next_ = 0;
  count_ = kAhead;
}

void Stream::GiveBack() {
  if (next_ < count_) {
    std::memcpy(reinterpret_cast<char*>(state_) + 16, before_.data(), before_.size());
    if (next_ > 0) Words(static_cast<int32_t>(next_), words_.data());
  }
  next_ = count_ = 0;
}

std::unique_ptr<Stream> LoadStream(const std::string& path) {
  StreamState* state = nullptr;
  errno = 0;
  const int32_t status = __quoLoadStreamF(&state, path.c_str(), -1);
  switch (status) {
    case QUO_OPEN_FAILED:
    case QUO_CLOSE_FAILED:
      FailOnFile(errno, path, "cannot be read");
    case QUO_READ_FAILED:
      if (errno == EISDIR || errno == EIO) FailOnFile(errno, path, "cannot be read");
      [[fallthrough]];
    case QUO_BAD_FILE:
    case QUO_BAD_FILE_FORMAT:
      throw Failure{PyExc_ValueError,
                    "'" + path + "' is " +
                        (status == QUO_READ_FAILED ? "cut short"
                         : status == QUO_BAD_FILE  ? "not a stream file"
                                                   : "a stream file of another format")};
  }
  Check(status, "load");
  return std::make_unique<Stream>(state);
}

void SaveStream(Stream& stream, const std::string& path) {
  int32_t status = 0;
  int error = 0;
  {
    const Stream::Access access(stream, true);
    errno = 0;
    status = __quoSaveStreamF(access.state(), path.c_str(), -1);
    error = errno;
  }
  if (status <= QUO_CLOSE_FAILED && status >= QUO_WRITE_FAILED) {
    FailOnFile(error, path, "cannot be written");
  }
  Check(status, "save");
}

}  // namespace pexquo::python
