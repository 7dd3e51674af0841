// A table of powers by rows, for levels that load rows and transpose them.
#ifndef PEX_CORE__HEAP_REAL_EXP_ROWS_H_
#define PEX_CORE__HEAP_REAL_EXP_ROWS_H_

#include "pex_core/_heap/real/exp_tables.h"

namespace pex {

struct ExpRows {
  alignas(64) double row[256][2];  // the product of the factors, the sum of the logarithms
};

constexpr ExpRows ByRows(const ExpFactors& t) {
  ExpRows r{};
  for (int j = 0; j < 256; ++j) {
    r.row[j][0] = t.coarse[j / 16] * t.fine[j % 16];
    r.row[j][1] = t.coarse_log[j / 16] + t.fine_log[j % 16];
  }
  return r;
}

inline constexpr ExpRows kExpRows = ByRows(kExpFactors);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_EXP_ROWS_H_
