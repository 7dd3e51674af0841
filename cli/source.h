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
  bool text_only = true;  // a column of an .npy array is refused, not ignored
  int parts = 1;          // numbers of an element of text: 2 when it is complex
  // Of separated values: a column's name or its number from 1, two of them, by a comma, for complex
  // elements. Empty: a line holds one element and no more.
  std::string column;
  std::string delimiter = ",";  // one character, "tab" or "space" (any run of blanks)
};

class Source {
 public:
  virtual ~Source() = default;

  // Takes the next n elements, rounded to nearest, to parts() * n numbers at x; fewer than n only
  // at the end. Bad input ends in a Failure that names the file and the line.
  virtual size_t Read(double* x, size_t n) = 0;
  virtual size_t Read(float* x, size_t n) = 0;
  // The line that held element i of the last Read, from 1; 0 where there are no lines.
  virtual uint64_t LineOf(size_t i) const = 0;
  // The shape where it is known beforehand.
  virtual const NpyShape* shape() const = 0;
  // Numbers of an element: 2, the real part first, when it is complex.
  virtual int parts() const = 0;
  // Of an array of single-precision numbers s, or c when they are complex; else d or z.
  virtual char natural_type() const = 0;
  virtual const std::string& name() const = 0;
};

// Opens a file, or standard input for "-". What begins with the magic of .npy files, or has a name
// that ends in .npy, is an .npy array; everything else is text.
std::unique_ptr<Source> OpenSource(const std::string& path, const TextOptions& options);

}  // namespace cli

#endif  // CLI_SOURCE_H_
