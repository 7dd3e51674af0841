// The tables by rows, for levels that load rows and transpose them.
#ifndef PEX_CORE__HEAP_REAL_TRIG_ROWS_H_
#define PEX_CORE__HEAP_REAL_TRIG_ROWS_H_

#include "pex_core/_heap/real/trig_tables.h"

namespace pex {

struct TrigRows {
  alignas(64) double row[16][4];  // offset, nothing, sin, cos
};

constexpr TrigRows ByRows(const TrigTable& t) {
  TrigRows r{};
  for (int j = 0; j < 16; ++j) {
    r.row[j][0] = t.offset[j];
    r.row[j][2] = t.sin[j];
    r.row[j][3] = t.cos[j];
  }
  return r;
}

inline constexpr TrigRows kTrigPointRows = ByRows(kTrigTable);

struct TangentPointRows {
  alignas(64) double row[16][2];  // offset, tan
};

constexpr TangentPointRows ByRows(const TangentPointTable& t) {
  TangentPointRows r{};
  for (int j = 0; j < 16; ++j) {
    r.row[j][0] = t.offset[j];
    r.row[j][1] = t.tan[j];
  }
  return r;
}

inline constexpr TangentPointRows kTangentPointRows = ByRows(kTangentPointTable);

struct TangentRows {
  alignas(64) double row[16][4];  // tan, cos2, sin_cos, infinite
};

constexpr TangentRows ByRows(const TangentTable& t) {
  TangentRows r{};
  for (int j = 0; j < 16; ++j) {
    r.row[j][0] = t.tan[j];
    r.row[j][1] = t.cos2[j];
    r.row[j][2] = t.sin_cos[j];
    r.row[j][3] = t.infinite[j];
  }
  return r;
}

inline constexpr TangentRows kTangentRows = ByRows(kTangentTable);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_ROWS_H_
