// The scalar reduction of a double by pi/2.
#ifndef PEX_CORE__HEAP_REAL_TRIG_REDUCE_H_
#define PEX_CORE__HEAP_REAL_TRIG_REDUCE_H_

namespace pex {

struct ReducedArgument {
  double high, low;  // |low| at most half an ulp of high
};

// The finite x less the nearest multiple of pi/2, as a pair good to 2^-68 of itself: below 2^30 by
// pi/4 in parts, above by the bits of 2/pi that matter (M. Payne and R. Hanek, 1983). Returns the
// multiple modulo 4.
int _pexreduce_pio2d(ReducedArgument* reduced, double x);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_REDUCE_H_
