// The tables of the reduction by the bits of the argument.
#ifndef PEX_CORE__HEAP_REAL_LOG_STRETCHES_H_
#define PEX_CORE__HEAP_REAL_LOG_STRETCHES_H_

#include <cstdint>

#include "pex_core/_heap/real/log_constants.h"

namespace pex {

// The first m, by its bits, and what keeps biased exponents positive: with it the first normal
// number's sum is the least integer.
inline constexpr uint64_t kLogStretchStart = 0x3FE7840000000000;
inline constexpr int kLogStretchBias = 3069;

// Tables, of factors and of their logarithms. kShort: of 26 bits, with a log(2) so short that all
// sums are exact.
struct LnShortStretches {
  static constexpr bool kShort = true;
  static constexpr const LogFactors& kFactors = kLnShortStretches;
  static constexpr double kLog2 = 0x1.62e42fefap-1;
};

struct LnStretches {
  static constexpr bool kShort = false;
  static constexpr const LogFactors& kFactors = kLnStretches;
  static constexpr double kLog2 = NaturalLog::kLog2Hi;
};

// scale c, and log(c) + plus.
constexpr LogFactors ShiftedFactors(const LogFactors& f, double scale, double plus) {
  LogFactors r{};
  for (int j = 0; j < 16; ++j) {
    r.row[j][0] = f.row[j][0] * scale;
    r.row[j][1] = plus - f.row[j][1];
  }
  return r;
}

// Rows by the byte that the exponent's last four bits and the number of the stretch make.
struct LogStretchRows {
  alignas(64) double row[256][2];
};

constexpr LogStretchRows ByStretches(const LogFactors& f) {
  LogStretchRows r{};
  for (int i = 0; i < 256; ++i) {
    r.row[i][0] = f.row[i & 15][0];
    r.row[i][1] = f.row[i & 15][1];
  }
  return r;
}

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_LOG_STRETCHES_H_
