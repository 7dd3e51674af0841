// One sequence for several consumers: the generator behind a stream leapfrogs or skips ahead, or
// refuses.
#include "quo_sub_kernel/_service/_quo_brng.h"

int32_t __quoLeapfrogStream(StreamState* stream, int32_t k, int32_t nstreams) {
  if (nstreams < 0) return QUO_BAD_STREAM_COUNT;
  const BrngProperties* brng = quo::FindBrng(stream->id);
  if (brng == nullptr) return QUO_INVALID_BRNG;
  const auto index = static_cast<uint32_t>(k);
  return brng->InitStream(QUO_INIT_LEAPFROG, stream, nstreams, &index);
}

int32_t __quoSkipAheadStream(StreamState* stream, uint64_t nskip) {
  const BrngProperties* brng = quo::FindBrng(stream->id);
  if (brng == nullptr) return QUO_INVALID_BRNG;
  // Aligned as the whole count, for generators that read it as one.
  alignas(uint64_t)
      const uint32_t words[] = {static_cast<uint32_t>(nskip), static_cast<uint32_t>(nskip >> 32)};
  return brng->InitStream(QUO_INIT_SKIPAHEAD, stream, 2, words);
}
