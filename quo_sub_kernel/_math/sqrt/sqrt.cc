#include <cmath>

#include "quo_sub_kernel/_math/scalar.h"

namespace quo {

double __quodSqrt(double x) { return std::sqrt(x); }  // the processor's

}  // namespace quo
