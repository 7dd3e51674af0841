// What is promised of a row of the table of MT2203.
#ifndef TESTS_GENERATORS_MT2203_ROWS_H_
#define TESTS_GENERATORS_MT2203_ROWS_H_

#include <ostream>

#include "gen/mt2203_search.h"
#include "gtest/gtest.h"
#include "quo_sub_kernel/mt2203/mt2203_table.h"

namespace quo::mt2203 {

inline void PrintTo(const Member& row, std::ostream* out) {
  *out << std::hex << row.a << ' ' << row.b << ' ' << row.c << std::dec;
}

inline Member RowOf(int member) {
  const Mt2203Row& row = _quo_mt2203_table[member];
  return {row.a, row.b, row.c};
}

// The period is 2^2203 - 1, and the words are as equidistributed as those of the given rows, of
// which the worst has 711 defects.
inline void ExpectGoodRow(int member) {
  const Member row = RowOf(member);
  EXPECT_TRUE(IsIrreducible(MakeTwister(row.a).characteristic)) << "member " << member;
  EXPECT_LE(DefectSum(ComputeDimensions(row.a, {row.b, row.c})), 711) << "member " << member;
}

}  // namespace quo::mt2203

#endif  // TESTS_GENERATORS_MT2203_ROWS_H_
