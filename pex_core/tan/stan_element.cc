// The tangent of one element in single precision.
#include "pex_core/_heap/real/trig_single_element.h"

PEX_SINGLE_ELEMENT(Tan, A11, ElementTangent)
PEX_SINGLE_ELEMENT(Tan, LA, ElementTangent)
PEX_SINGLE_ELEMENT(Tan, HA, ElementTangent)
