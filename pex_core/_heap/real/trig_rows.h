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

// Rows for the lanes of a vector's lower half, and for those of its upper half: offset and sine are
// where they are wanted.
struct TrigHalfRows {
  alignas(64) double lower[16][4];  // offset, sin, cos, nothing
  alignas(64) double upper[16][4];  // cos, nothing, offset, sin
};

constexpr TrigHalfRows ByHalfRows(const TrigTable& t) {
  TrigHalfRows r{};
  for (int j = 0; j < 16; ++j) {
    r.lower[j][0] = r.upper[j][2] = t.offset[j];
    r.lower[j][1] = r.upper[j][3] = t.sin[j];
    r.lower[j][2] = r.upper[j][0] = t.cos[j];
  }
  return r;
}

inline constexpr TrigHalfRows kTrigPointHalfRows = ByHalfRows(kTrigTable);

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
