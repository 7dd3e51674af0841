// The cosine of one element in single precision.
#include "pex_core/_heap/real/trig_single_element.h"

PEX_SINGLE_ELEMENT(Cos, A11, ElementCosine)
PEX_SINGLE_ELEMENT(Cos, LA, ElementCosine)
PEX_SINGLE_ELEMENT(Cos, HA, ElementCosine)
