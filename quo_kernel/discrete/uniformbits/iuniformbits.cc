// The generator's raw integer output, WordBytes bytes an element.
#include "quo_kernel/_kernel/call_guard.h"
#include "quo_kernel/_kernel/generate.h"

namespace quo {

extern "C" QUO_API int32_t _quoiRngUniformBits(uint32_t, StreamState* stream, int32_t n,
                                               uint32_t* r) {
  const CallGuard guard;
  return Generate(stream, n, r);
}

}  // namespace quo
