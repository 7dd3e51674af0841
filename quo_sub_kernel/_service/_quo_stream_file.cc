// Streams in files: saving and loading.
//
// A file is a header of 16 bytes, the generator's state, and the chunks from the head of the list,
// each its key, its size and its data; all numbers little-endian, nothing padded. What a file says
// is believed only as far as the file goes: no block is allocated that the rest of it could not
// fill.
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>
#include <utility>

#include "pexquo/kro.h"
#include "quo_sub_kernel/_service/_quo_abstract.h"
#include "quo_sub_kernel/_service/_quo_brng.h"

namespace {

constexpr char kSignature[] = {'R', 'N', 'G'};
constexpr uint8_t kFormat = 0;

struct FileHeader {
  char signature[3];
  uint8_t format;
  uint16_t header_size;
  uint16_t state_size;
  uint16_t chunks;
  uint16_t reserved;
  int32_t id;
};
static_assert(sizeof(FileHeader) == 16 && offsetof(FileHeader, id) == 12);

struct ChunkHeader {
  uint32_t key;
  uint32_t size;
};

// A block of the service library's memory.
class Block {
 public:
  Block() = default;
  // A service library may give no block for no bytes.
  explicit Block(size_t bytes)
      : data_(
            static_cast<char*>(kro_serv_kro_malloc(std::max(bytes, size_t{1}), quo::kAlignment))) {}
  Block(const Block&) = delete;
  Block& operator=(Block&& other) noexcept {
    std::swap(data_, other.data_);
    return *this;
  }
  ~Block() {
    if (data_ != nullptr) kro_serv_kro_free(data_);
  }
  char* get() const { return data_; }
  void Release() { data_ = nullptr; }

 private:
  char* data_ = nullptr;
};

// A file's name, copied to get its terminating zero where its length was given.
class FileName {
 public:
  FileName(const char* name, int32_t length) : name_(name) {
    if (length < 0) return;
    const auto bytes = static_cast<size_t>(length);
    copy_ = Block(bytes + 1);
    name_ = copy_.get();
    failed_ = name_ == nullptr;
    if (failed_) return;
    if (bytes != 0) std::memcpy(copy_.get(), name, bytes);
    copy_.get()[bytes] = '\0';
  }
  bool failed() const { return failed_; }
  FILE* Open(const char* mode) const { return name_ == nullptr ? nullptr : fopen(name_, mode); }

 private:
  const char* name_;
  Block copy_;
  bool failed_ = false;
};

// ---- Saving. ----

bool Write(FILE* file, const void* data, size_t bytes) {
  return bytes == 0 || std::fwrite(data, 1, bytes, file) == bytes;
}

// A chunk without data is one of no bytes.
bool WriteChunk(FILE* file, const StreamChunk& chunk) {
  const ChunkHeader header = {chunk.key, chunk.data == nullptr ? 0 : chunk.size};
  return Write(file, &header, sizeof(header)) && Write(file, chunk.data, header.size);
}

bool WriteStream(FILE* file, const FileHeader& header, const StreamState* stream) {
  if (!Write(file, &header, sizeof(header))) return false;
  if (!Write(file, quo::StateOf(stream), header.state_size)) return false;
  for (const StreamChunk* chunk = stream->chunks; chunk != nullptr; chunk = chunk->next) {
    if (!WriteChunk(file, *chunk)) return false;
  }
  return true;
}

// ---- Loading. ----

// A file from its beginning, and what is left of it where that is known.
class Reader {
 public:
  explicit Reader(FILE* file) : file_(file) {
    // Of a size of 0 nothing follows: files that are made up while they are read have it.
    struct stat status;
    if (fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
      left_ = static_cast<uint64_t>(status.st_size);
      is_sized_ = true;
    }
  }
  bool MayHold(size_t bytes) const { return !is_sized_ || bytes <= left_; }

  bool Read(void* data, size_t bytes) {
    if (!MayHold(bytes)) return false;
    left_ -= is_sized_ ? bytes : 0;
    return bytes == 0 || std::fread(data, 1, bytes, file_) == bytes;
  }

  // Reads into a new block. Where the file's length is not known, the block grows with what comes,
  // to at most twice that.
  int32_t ReadBlock(size_t bytes, Block* block) {
    if (!MayHold(bytes)) return QUO_READ_FAILED;
    size_t capacity = is_sized_ ? bytes : std::min(bytes, kFirstStep);
    for (size_t have = 0;;) {
      Block grown(capacity);
      if (grown.get() == nullptr) return QUO_NO_MEMORY;
      if (have != 0) std::memcpy(grown.get(), block->get(), have);
      *block = std::move(grown);
      if (!Read(block->get() + have, capacity - have)) return QUO_READ_FAILED;
      if (capacity == bytes) return QUO_OK;
      have = capacity;
      capacity = std::min(bytes, 2 * capacity);
    }
  }

 private:
  static constexpr size_t kFirstStep = 4096;
  FILE* file_;
  uint64_t left_ = 0;
  bool is_sized_ = false;
};

int32_t ReadChunk(Reader* reader, StreamState* stream) {
  ChunkHeader header;
  if (!reader->Read(&header, sizeof(header))) return QUO_READ_FAILED;
  Block data;
  int32_t status = reader->ReadBlock(header.size, &data);
  if (status != QUO_OK) return status;
  status = __quoAddChunk(stream, header.key, data.get(), header.size);
  if (status == QUO_OK) data.Release();
  return status;
}

int32_t ReadStream(Reader* reader, StreamState** stream) {
  FileHeader header;
  if (!reader->Read(&header, sizeof(header))) return QUO_READ_FAILED;
  if (std::memcmp(header.signature, kSignature, sizeof(kSignature)) != 0) return QUO_BAD_FILE;
  if (header.format != kFormat) return QUO_BAD_FILE_FORMAT;
  const BrngProperties* brng = quo::FindBrng(header.id);
  if (brng == nullptr) return QUO_BAD_FILE;
  if (header.state_size != quo::StateBytes(*brng)) return QUO_BAD_FILE;
  if (header.header_size < sizeof(FileHeader)) return QUO_BAD_FILE;

  if (!reader->MayHold(header.state_size)) return QUO_READ_FAILED;
  int32_t row, member;
  const BrngProperties* table = __quoGetBrngBaseOffset(header.id, &row, &member);
  int32_t status = __quoAllocateStream(stream, table, header.id, row, member);
  if (status != QUO_OK) return status;
  if (!reader->Read(quo::StateOf(*stream), header.state_size)) return QUO_READ_FAILED;
  quo::DetachAbstract(*stream);
  for (uint32_t i = 0; i < header.chunks && status == QUO_OK; ++i) {
    status = ReadChunk(reader, *stream);
  }
  return status;
}

}  // namespace

int32_t __quoSaveStreamF(const StreamState* stream, const char* name, int32_t length) {
  const FileName file_name(name, length);
  if (file_name.failed()) return QUO_NO_MEMORY;
  const BrngProperties* brng = quo::FindBrng(stream->id);
  if (brng == nullptr) return QUO_INVALID_BRNG;

  constexpr size_t kLimit = std::numeric_limits<uint16_t>::max();
  const size_t state_size = quo::StateBytes(*brng);
  const auto chunks = static_cast<size_t>(__quoGetNumChunks(stream));
  if (state_size > kLimit || chunks > kLimit) return QUO_WRITE_FAILED;
  FileHeader header = {{},
                       kFormat,
                       sizeof(FileHeader),
                       static_cast<uint16_t>(state_size),
                       static_cast<uint16_t>(chunks),
                       0,
                       stream->id};
  std::memcpy(header.signature, kSignature, sizeof(kSignature));

  FILE* const file = file_name.Open("wb");
  if (file == nullptr) return QUO_OPEN_FAILED;
  const int32_t status = WriteStream(file, header, stream) ? QUO_OK : QUO_WRITE_FAILED;
  // Closing writes what is still buffered, so a full disk may show here first.
  return std::fclose(file) == 0 ? status : QUO_CLOSE_FAILED;
}

int32_t __quoLoadStreamF(StreamState** stream, const char* name, int32_t length) {
  const FileName file_name(name, length);
  if (file_name.failed()) return QUO_NO_MEMORY;
  int32_t status = QUO_OPEN_FAILED;
  if (FILE* const file = file_name.Open("rb")) {
    Reader reader(file);
    status = ReadStream(&reader, stream);
    if (std::fclose(file) != 0) status = QUO_CLOSE_FAILED;
  }
  if (status != QUO_OK) __quoDeleteStream(stream);
  return status;
}
