// 2/pi for the vector reduction of large arguments.
#ifndef PEX_CORE__HEAP_REAL_TRIG_TWO_OVER_PI_H_
#define PEX_CORE__HEAP_REAL_TRIG_TWO_OVER_PI_H_

namespace pex {

// Row g: the bits of 2/pi from number g on (number 1 is the first after the binary point), in four
// pieces of 53, times 2^g. The last row serves the exponent 1023.
struct TwoOverPi {
  alignas(64) double row[1023 - 53 + 1][4];
};

extern const TwoOverPi kTwoOverPi;

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_TWO_OVER_PI_H_
