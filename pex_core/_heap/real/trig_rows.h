// The tables by rows, for levels that load rows and transpose them.
#ifndef PEX_CORE__HEAP_REAL_TRIG_ROWS_H_
#define PEX_CORE__HEAP_REAL_TRIG_ROWS_H_

#include "pex_core/_heap/real/rows.h"
#include "pex_core/_heap/real/trig_tables.h"

namespace pex {

// The second column keeps the others in the places of their pairs.
inline constexpr double kNoColumn[16] = {};
inline constexpr auto kTrigPointRows =
    ByRows(kTrigTable.offset, kNoColumn, kTrigTable.sin, kTrigTable.cos);
// For the lanes of a vector's lower half, and for those of its upper half: offset and sine are
// where they are wanted.
inline constexpr auto kTrigPointLowerRows =
    ByRows(kTrigTable.offset, kTrigTable.sin, kTrigTable.cos, kNoColumn);
inline constexpr auto kTrigPointUpperRows =
    ByRows(kTrigTable.cos, kNoColumn, kTrigTable.offset, kTrigTable.sin);
inline constexpr auto kTangentPointRows = ByRows(kTangentPointTable.offset, kTangentPointTable.tan);
inline constexpr auto kTangentRows =
    ByRows(kTangentTable.tan, kTangentTable.cos2, kTangentTable.sin_cos, kTangentTable.infinite);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_ROWS_H_
