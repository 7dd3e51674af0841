// n outputs of the generator behind a stream, by the type of the output. A stream that names no
// generator gives -1000, else the status is the generator's. The caller holds a pex::QuietGuard,
// unless the stream's generator guards itself.
#ifndef QUO_KERNEL__KERNEL_GENERATE_H_
#define QUO_KERNEL__KERNEL_GENERATE_H_

#include <algorithm>
#include <cstdint>

#include "quo_sub_kernel/_service/_quo_brng.h"

namespace quo {

inline int32_t Generate(StreamState* stream, int32_t n, double* r, double a, double b) {
  const BrngProperties* brng = FindBrng(stream->id);
  return brng == nullptr ? QUO_INVALID_BRNG : brng->dBRng(stream, n, r, a, b);
}

inline int32_t Generate(StreamState* stream, int32_t n, float* r, float a, float b) {
  const BrngProperties* brng = FindBrng(stream->id);
  return brng == nullptr ? QUO_INVALID_BRNG : brng->sBRng(stream, n, r, a, b);
}

// WordBytes bytes an element.
inline int32_t Generate(StreamState* stream, int32_t n, uint32_t* r) {
  const BrngProperties* brng = FindBrng(stream->id);
  return brng == nullptr ? QUO_INVALID_BRNG : brng->iBRng(stream, n, r);
}

// One uniform on [a, b) for each of n numbers at r, in blocks: transform(m, u, r) makes m numbers
// of u, its to overwrite and kBlock long. After a negative status r holds the blocks that were
// done.
// Always inlined: behind a call, what transform captures lies in memory, which makes a search in a
// table a quarter slower.
template <int32_t kBlock, typename U, typename T, class Transform>
[[gnu::always_inline]] inline int32_t GenerateInBlocks(StreamState* stream, int32_t n, T* r, U a,
                                                       U b, Transform&& transform) {
  alignas(64) U u[kBlock];
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0; left -= kBlock, r += kBlock) {
    const int32_t m = std::min(left, kBlock);
    status = Generate(stream, m, u, a, b);
    if (status < 0) break;
    transform(m, u, r);
  }
  return status;
}

// Whether requests to the stream's generator may be split at will: the library's own generators
// give the same outputs however they are asked and never fail once seeded. Users' generators and
// abstract streams see each request.
inline bool RequestsAreUnseen(const StreamState* stream) { return stream->id < QUO_BRNG_IABSTRACT; }

// Whether the generator sets the control word and brings back the flags by itself, as the library's
// own do.
inline bool GuardsItself(const StreamState* stream) { return stream->id < QUO_BRNG_IABSTRACT; }

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_GENERATE_H_
