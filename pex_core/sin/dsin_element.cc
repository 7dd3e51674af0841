// The sine of one element in double precision.
#include "pex_core/_heap/real/trig_element.h"
#include "pexquo/pex.h"

namespace pex {

PEX_EXPORT_ELEMENT(Sin)

}  // namespace pex
