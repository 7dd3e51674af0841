// Where numbers come from: a text file, a column of one, or an .npy array, block by block.
#ifndef CLI_SOURCE_H_
#define CLI_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "cli/npy.h"

namespace cli {

struct TextOptions {
  bool text_only = true;        // a column of an .npy array is refused, not ignored
  std::string column;           // a column's name or its number from 1; empty: one number a line
  std::string delimiter = ",";  // one character, "tab" or "space" (any run of blanks)
};

class Source {
 public:
  virtual ~Source() = default;

  // Takes the next numbers, rounded to nearest; fewer than n only at the end. Bad input ends in a
  // Failure that names the file and the line.
  virtual size_t Read(double* x, size_t n) = 0;
  virtual size_t Read(float* x, size_t n) = 0;
  // The line that held element i of the last Read, from 1; 0 where there are no lines.
  virtual uint64_t LineOf(size_t i) const = 0;
  // The shape where it is known beforehand.
  virtual const NpyShape* shape() const = 0;
  // s for an array of single-precision numbers, else d.
  virtual char natural_type() const = 0;
  virtual const std::string& name() const = 0;
};

// Opens a file, or standard input for "-". What begins with the magic of .npy files, or has a name
// that ends in .npy, is an .npy array; everything else is text.
std::unique_ptr<Source> OpenSource(const std::string& path, const TextOptions& options);

}  // namespace cli

#endif  // CLI_SOURCE_H_
