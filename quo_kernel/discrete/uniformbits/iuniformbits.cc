// The generator's raw integer output, WordBytes bytes an element.
#include "pex_core/_kernel/control.h"
#include "quo_kernel/_kernel/generate.h"

namespace quo {

extern "C" QUO_API int32_t _quoiRngUniformBits(uint32_t, StreamState* stream, int32_t n,
                                               uint32_t* r) {
  if (GuardsItself(stream)) return Generate(stream, n, r);
  const pex::QuietGuard guard;
  return Generate(stream, n, r);
}

}  // namespace quo
