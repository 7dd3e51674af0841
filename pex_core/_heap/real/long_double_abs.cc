// |x| of an 80-bit number, by its bits: no arithmetic, so no flag and no part for the control word.
#include "pex_core/_heap/real/long_double.h"

long double _pexfabsl_scalar(long double x) {
  pex::ldbl::Bits b = pex::ldbl::ToBits(x);
  b.sign_exponent &= 0x7FFF;
  const bool nan = b.sign_exponent == 0x7FFF && b.significand << 1 != 0;
  if (nan) b.significand |= uint64_t{1} << 62;
  return pex::ldbl::FromBits(b);
}
