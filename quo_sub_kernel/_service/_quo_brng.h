// The registry row behind a stream, and the state within, for everything that draws from one,
// copies or stores one.
#ifndef QUO_SUB_KERNEL__SERVICE__QUO_BRNG_H_
#define QUO_SUB_KERNEL__SERVICE__QUO_BRNG_H_

#include <algorithm>
#include <cstddef>

#include "pexquo/quo.h"

namespace quo {

// The record of an identifier of either scheme, or null when no such generator or member exists.
const BrngProperties* FindBrng(int32_t id);

// Of every block that a stream consists of.
inline constexpr int32_t kAlignment = 32;

// The generator's state behind a stream's head, and its size. A registered generator may claim
// fewer bytes than the head needs: it has no state.
inline constexpr size_t kHeaderBytes = sizeof(StreamState);
inline size_t StateBytes(const BrngProperties& brng) {
  return static_cast<size_t>(std::max<int32_t>(brng.StateSize, kHeaderBytes)) - kHeaderBytes;
}
inline char* StateOf(StreamState* stream) { return reinterpret_cast<char*>(stream + 1); }
inline const char* StateOf(const StreamState* stream) {
  return reinterpret_cast<const char*>(stream + 1);
}

}  // namespace quo

#endif  // QUO_SUB_KERNEL__SERVICE__QUO_BRNG_H_
