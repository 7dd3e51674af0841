// The scalar reduction of a double by pi/2.
#ifndef PEX_CORE__HEAP_REAL_TRIG_REDUCE_H_
#define PEX_CORE__HEAP_REAL_TRIG_REDUCE_H_

namespace pex {

struct ReducedArgument {
  double high, low;  // |low| at most half an ulp of high
};

// The finite x less the nearest multiple of pi/2, as a pair: below 2^30 by pi/4 in parts, above by
// the bits of 2/pi that matter (M. Payne and R. Hanek, 1983), there good to 2^-75 of itself. Below
// it is good to 2^-68 but next to a few multiples, where the rounding of the last part's product
// shows: 2^-58.9 at worst (0x1.b951f1572eba5p+23). Returns the multiple modulo 4.
int _pexreduce_pio2d(ReducedArgument* reduced, double x);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_REDUCE_H_
