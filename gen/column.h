// A column of a table, for the programs that write them.
#ifndef GEN_COLUMN_H_
#define GEN_COLUMN_H_

#include <cstddef>
#include <cstdio>

// The numbers of the rows' fields between braces, kPerLine a line.
template <int kPerLine, typename T, class Row, size_t kRows>
void PrintColumn(const Row (&rows)[kRows], T Row::*field) {
  std::printf("    {");
  for (size_t i = 0; i < kRows; ++i) {
    std::printf("%s%a%s",
                i == 0         ? ""
                : i % kPerLine ? ", "
                               : ",\n     ",
                static_cast<double>(rows[i].*field), sizeof(T) == 4 ? "f" : "");
  }
  std::printf("},\n");
}

#endif  // GEN_COLUMN_H_
