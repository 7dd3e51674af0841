// What a distribution keeps with a stream: a record of the type C in the chunk of a key.
#ifndef QUO_KERNEL__KERNEL_CHUNK_H_
#define QUO_KERNEL__KERNEL_CHUNK_H_

#include <cstdint>
#include <type_traits>

#include "pexquo/kro.h"
#include "pexquo/quo.h"

namespace quo {

// The record of the first chunk of that key and the size of C, or null. A chunk of another size, as
// a file may bring, is passed over.
template <class C>
C* FindChunk(const StreamState* stream, uint32_t key) {
  static_assert(std::is_trivially_copyable_v<C>);
  for (const StreamChunk* chunk = stream->chunks; chunk != nullptr; chunk = chunk->next) {
    if (chunk->key == key && chunk->size == sizeof(C) && chunk->data != nullptr) {
      return static_cast<C*>(chunk->data);
    }
  }
  return nullptr;
}

// A new chunk's record, whose content is the caller's to set; null where there is no memory.
template <class C>
C* AddChunk(StreamState* stream, uint32_t key) {
  void* const data = kro_serv_kro_malloc(sizeof(C), 32);
  if (data == nullptr) return nullptr;
  if (__quoAddChunk(stream, key, data, sizeof(C)) < 0) {
    kro_serv_kro_free(data);
    return nullptr;
  }
  return static_cast<C*>(data);
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_CHUNK_H_
