// Streams and their chunks: creation, deletion, copies.
//
// A stream is one block of its generator's StateSize bytes; its chunks form a singly linked list
// that it owns, each with its block of data. All blocks are aligned to 32 bytes.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "pexquo/kro.h"
#include "quo_sub_kernel/_service/_quo_brng.h"

namespace {

using quo::kAlignment;
using quo::kHeaderBytes;
using quo::StateBytes;
using quo::StateOf;
constexpr int32_t kHeaderWord = 1;

static_assert(sizeof(StreamState) == 16 && offsetof(StreamState, chunks) == 8);
static_assert(sizeof(StreamChunk) == 24 && offsetof(StreamChunk, data) == 8);

template <typename T>
T* Allocate(size_t bytes) {
  return static_cast<T*>(kro_serv_kro_malloc(bytes, kAlignment));
}

void Free(void* block) {
  if (block != nullptr) kro_serv_kro_free(block);
}

// Pushes copies of the source's chunks one by one, which reverses their order. When memory runs
// out, the destination is left without chunks.
int32_t CopyChunks(StreamState* destination, const StreamState* source) {
  for (const StreamChunk* chunk = source->chunks; chunk != nullptr; chunk = chunk->next) {
    void* data = nullptr;
    int32_t status = QUO_OK;
    if (chunk->data != nullptr) {
      data = Allocate<void>(chunk->size);
      if (data == nullptr) {
        status = QUO_NO_MEMORY;
      } else {
        std::memcpy(data, chunk->data, chunk->size);
      }
    }
    if (status == QUO_OK) status = __quoAddChunk(destination, chunk->key, data, chunk->size);
    if (status != QUO_OK) {
      Free(data);
      __quoDeleteChunks(destination);
      return status;
    }
  }
  return QUO_OK;
}

}  // namespace

int32_t __quoAllocateStream(StreamState** stream, const BrngProperties* table, int32_t id,
                            int32_t row, int32_t member) {
  *stream = nullptr;
  if (row < 0 || __quoIsBrngValid(table, row, member) != QUO_OK) return QUO_INVALID_BRNG;
  auto* block = Allocate<StreamState>(kHeaderBytes + StateBytes(table[row]));
  if (block == nullptr) return QUO_NO_MEMORY;
  block->id = id;
  block->header = kHeaderWord;
  block->chunks = nullptr;
  *stream = block;
  return QUO_OK;
}

int32_t __quoNewStreamEx(StreamState** stream, int32_t id, int32_t n, const uint32_t* params) {
  *stream = nullptr;
  if (id == QUO_BRNG_IABSTRACT || id == QUO_BRNG_DABSTRACT || id == QUO_BRNG_SABSTRACT) {
    return QUO_INVALID_BRNG;
  }
  int32_t row, member;
  const BrngProperties* table = __quoGetBrngBaseOffset(id, &row, &member);
  const int32_t status = __quoAllocateStream(stream, table, id, row, member);
  if (status != QUO_OK) return status;
  return table[row].InitStream(QUO_INIT_STANDARD, *stream, n, params);
}

int32_t __quoDeleteStream(StreamState** stream) {
  if (*stream != nullptr) {
    __quoDeleteChunks(*stream);
    Free(*stream);
    *stream = nullptr;
  }
  return QUO_OK;
}

int32_t __quoCopyStream(StreamState** copy, const StreamState* source) {
  int32_t row, member;
  const BrngProperties* table = __quoGetBrngBaseOffset(source->id, &row, &member);
  int32_t status = __quoAllocateStream(copy, table, source->id, row, member);
  if (status != QUO_OK) return status;
  std::memcpy(*copy, source, kHeaderBytes + StateBytes(table[row]));
  (*copy)->chunks = nullptr;
  status = CopyChunks(*copy, source);
  if (status != QUO_OK) __quoDeleteStream(copy);
  return status;
}

int32_t __quoCopyStreamState(StreamState* destination, const StreamState* source) {
  if (destination == source) return QUO_OK;
  const BrngProperties* to = quo::FindBrng(destination->id);
  const BrngProperties* from = quo::FindBrng(source->id);
  if (to == nullptr || from == nullptr) return QUO_INVALID_BRNG;

  int32_t to_row, from_row, member;
  __quoGetBrngBaseOffset(destination->id, &to_row, &member);
  __quoGetBrngBaseOffset(source->id, &from_row, &member);

  // The seeds of the source, as far as both streams have room. (WH counts 64 bytes and has 32.)
  const size_t room = std::min(StateBytes(*to), StateBytes(*from));
  const size_t seeds = static_cast<size_t>(from->WordBytes) * static_cast<size_t>(from->SeedCount);
  std::memcpy(StateOf(destination), StateOf(source), std::min(room, seeds));

  __quoDeleteChunks(destination);
  if (source->chunks == nullptr) return to_row == from_row ? QUO_OK : QUO_DIFFERENT_BRNGS;
  return CopyChunks(destination, source);  // its status replaces that of the comparison
}

int32_t __quoGetStreamStateBrng(const StreamState* stream) { return stream->id; }

int32_t __quoAddChunk(StreamState* stream, uint32_t key, void* data, uint32_t size) {
  auto* chunk = Allocate<StreamChunk>(sizeof(StreamChunk));
  if (chunk == nullptr) return QUO_NO_MEMORY;
  *chunk = {key, size, data, stream->chunks};
  stream->chunks = chunk;
  return QUO_OK;
}

void* __quoSearchChunk(const StreamState* stream, uint32_t key) {
  for (const StreamChunk* chunk = stream->chunks; chunk != nullptr; chunk = chunk->next) {
    if (chunk->key == key) return chunk->data;
  }
  return nullptr;
}

int32_t __quoGetNumChunks(const StreamState* stream) {
  int32_t count = 0;
  for (const StreamChunk* chunk = stream->chunks; chunk != nullptr; chunk = chunk->next) ++count;
  return count;
}

int32_t __quoDeleteChunks(StreamState* stream) {
  while (StreamChunk* chunk = stream->chunks) {
    stream->chunks = chunk->next;
    Free(chunk->data);
    Free(chunk);
  }
  return QUO_OK;
}
