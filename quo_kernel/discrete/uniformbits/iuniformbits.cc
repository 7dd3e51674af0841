// The generator's raw integer output, WordBytes bytes an element.
#include "quo_kernel/_kernel/call_guard.h"
#include "quo_sub_kernel/_service/_quo_brng.h"

namespace quo {

extern "C" int32_t _quoiRngUniformBits(uint32_t, StreamState* stream, int32_t n, uint32_t* r) {
  const CallGuard guard;
  const BrngProperties* brng = FindBrng(stream->id);
  if (brng == nullptr) return QUO_INVALID_BRNG;
  return brng->iBRng(stream, n, r);
}

}  // namespace quo
