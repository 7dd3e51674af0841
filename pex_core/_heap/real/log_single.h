// What natural and decimal logarithms differ in, in single precision.
#ifndef PEX_CORE__HEAP_REAL_LOG_SINGLE_H_
#define PEX_CORE__HEAP_REAL_LOG_SINGLE_H_

#include "pex_core/_heap/real/log_single_polynomials.h"
#include "pex_core/_heap/real/log_single_tables.h"

namespace pex {

struct sNaturalLog {
  static constexpr float kLog2 = 0x1.62e430p-24f;  // 2^-23 ln 2
  static constexpr float kLog2Multiple = 1, kLog2Part = kLog2;
  static constexpr auto& kTable = kLnSingleTable;
  static constexpr auto& kLA = kLnSingleLA;
  static constexpr auto& kEP = kLnSingleEP;
  static constexpr auto& kHA = kLnSingleHA;
};

struct sDecimalLog {
  static constexpr float kLog2Multiple = 641, kLog2Part = 0x1.ec7028p-35f;
  static constexpr float kLog2 = 0x1.344136p-25f;  // 2^-23 log10 2
  static constexpr auto& kTable = kLog10SingleTable;
  static constexpr auto& kLA = kLog10SingleLA;
  static constexpr auto& kEP = kLog10SingleEP;
  static constexpr auto& kHA = kLog10SingleHA;
};

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_LOG_SINGLE_H_
