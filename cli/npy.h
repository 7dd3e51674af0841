// The header of NumPy's .npy files, versions 1.0, 2.0 and 3.0: the magic "\x93NUMPY", two bytes of
// version, the header's length (2 bytes in version 1.0, 4 later, little-endian), and a Python
// dictionary with the keys descr, fortran_order and shape, padded with blanks and a newline.
#ifndef CLI_NPY_H_
#define CLI_NPY_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cli/reader.h"

namespace cli {

inline constexpr std::string_view kNpyMagic = "\x93NUMPY";

struct NpyShape {
  std::vector<uint64_t> dims;
  bool fortran_order = false;
};

struct NpyHeader {
  char kind = 'f';  // f or i
  int width = 8;    // bytes of a number, 4 or 8
  int parts = 1;    // numbers of an element: 2 when it is complex
  bool big_endian = false;
  NpyShape shape;
  uint64_t count = 0;  // the product of the dimensions
};

// Takes the magic and the header from the reader. Anything else than a whole header of an array of
// f4, f8, i4, i8, c8 or c16 elements ends in a Failure.
NpyHeader ReadNpyHeader(Reader& reader);

// The bytes before the data. `descr` as in "<f8". The length is a multiple of 64 and does not
// depend on the number in the first dimension, so that a header can be replaced when the count is
// known.
std::string NpyHeaderBytes(std::string_view descr, const NpyShape& shape);

}  // namespace cli

#endif  // CLI_NPY_H_
