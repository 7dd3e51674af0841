// Tables of columns by rows, for the levels that read whole rows.
#ifndef PEX_CORE__HEAP_REAL_ROWS_H_
#define PEX_CORE__HEAP_REAL_ROWS_H_

#include <cstddef>

namespace pex {

template <typename T, size_t kRows, size_t kColumns>
struct Rows {
  alignas(64) T row[kRows][kColumns];
};

template <typename T, size_t kRows, typename... More>
constexpr Rows<T, kRows, 1 + sizeof...(More)> ByRows(const T (&first)[kRows], const More&... more) {
  Rows<T, kRows, 1 + sizeof...(More)> rows{};
  for (size_t i = 0; i < kRows; ++i) {
    size_t column = 0;
    rows.row[i][column++] = first[i];
    ((rows.row[i][column++] = more[i]), ...);
  }
  return rows;
}

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_ROWS_H_
