// The sine of one element in single precision.
#include "pex_core/_heap/real/trig_single_element.h"

PEX_SINGLE_ELEMENT(Sin, A11, ElementSine)
PEX_SINGLE_ELEMENT(Sin, LA, ElementSine)
PEX_SINGLE_ELEMENT(Sin, HA, ElementSine)
