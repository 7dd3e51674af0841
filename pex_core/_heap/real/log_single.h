// What natural and decimal logarithms differ in, in single precision.
#ifndef PEX_CORE__HEAP_REAL_LOG_SINGLE_H_
#define PEX_CORE__HEAP_REAL_LOG_SINGLE_H_

#include "pex_core/_heap/real/log_single_polynomials.h"

namespace pex {

struct sNaturalLog {
  static constexpr float kLog2 = 0x1.62e430p-24f;  // 2^-23 ln 2
  static constexpr auto& kFactor = kLnSingleFactor;
  static constexpr auto& kLog = kLnSingleLog;
  static constexpr auto& kLA = kLnSingleLA;
  static constexpr auto& kEP = kLnSingleEP;
};

struct sDecimalLog {
  static constexpr float kLog2 = 0x1.344136p-25f;  // 2^-23 log10 2
  static constexpr auto& kFactor = kLog10SingleFactor;
  static constexpr auto& kLog = kLog10SingleLog;
  static constexpr auto& kLA = kLog10SingleLA;
  static constexpr auto& kEP = kLog10SingleEP;
};

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_LOG_SINGLE_H_
