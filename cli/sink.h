// Where results go: text, an .npy array, or raw little-endian words.
#ifndef CLI_SINK_H_
#define CLI_SINK_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "cli/npy.h"
#include "cli/output_file.h"

namespace cli {

enum class Format { Text, Npy, Raw };

// text, npy or raw; for an empty name npy where the path ends in .npy and text elsewhere. With
// allow_raw false, raw is unknown.
Format FormatOf(const std::string& name, const std::string& path, bool allow_raw);

// Rows of `columns` numbers of one type: double, float, int32_t, uint32_t or uint64_t. In text a
// row is a line, its numbers separated by tabs.
class Sink {
 public:
  // `shape` is that of the rows, unknown when empty; columns above 1 add a last dimension. With
  // `complex_rows` the two columns of doubles or floats are the parts of one complex number.
  Sink(const std::string& path, Format format, int columns, std::optional<NpyShape> shape,
       bool complex_rows = false);

  template <typename T>
  void Write(const T* x, size_t rows);
  bool is_terminal() const { return file_.is_terminal(); }
  // Completes the file and gives it its name. T is the type of the numbers, for an .npy header.
  template <typename T>
  void Finish();

 private:
  template <typename T>
  std::string Header() const;

  OutputFile file_;
  Format format_;
  int columns_;
  bool complex_rows_;
  std::optional<NpyShape> shape_;
  uint64_t rows_ = 0;
  bool begun_ = false;
};

}  // namespace cli

#endif  // CLI_SINK_H_
