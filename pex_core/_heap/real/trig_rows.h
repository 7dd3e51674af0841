// The table of accurate points by rows, for levels that load rows and transpose them.
#ifndef PEX_CORE__HEAP_REAL_TRIG_ROWS_H_
#define PEX_CORE__HEAP_REAL_TRIG_ROWS_H_

#include "pex_core/_heap/real/trig_tables.h"

namespace pex {

struct TrigRows {
  alignas(64) double row[16][4];  // offset, sin, cos, nothing
};

constexpr TrigRows ByRows(const TrigTable& t) {
  TrigRows r{};
  for (int j = 0; j < 16; ++j) {
    r.row[j][0] = t.offset[j];
    r.row[j][1] = t.sin[j];
    r.row[j][2] = t.cos[j];
  }
  return r;
}

inline constexpr TrigRows kTrigRows = ByRows(kTrigTable);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_ROWS_H_
