#include "cli/sink.h"

#include <bit>
#include <string_view>
#include <type_traits>

#include "cli/failure.h"
#include "cli/names.h"
#include "cli/numbers.h"

namespace cli {
namespace {

static_assert(std::endian::native == std::endian::little);

template <typename T>
constexpr std::string_view Descr(bool complex_rows) {
  if constexpr (std::is_same_v<T, double>) return complex_rows ? "<c16" : "<f8";
  if constexpr (std::is_same_v<T, float>) return complex_rows ? "<c8" : "<f4";
  if constexpr (std::is_same_v<T, int32_t>) return "<i4";
  if constexpr (std::is_same_v<T, uint32_t>) return "<u4";
  if constexpr (std::is_same_v<T, uint64_t>) return "<u8";
}

}  // namespace

Format FormatOf(const std::string& name, const std::string& path, bool allow_raw) {
  if (name.empty()) return path.ends_with(".npy") ? Format::Npy : Format::Text;
  if (name == "text") return Format::Text;
  if (name == "npy") return Format::Npy;
  if (name == "raw" && allow_raw) return Format::Raw;
  std::vector<std::string> known = {"text", "npy"};
  if (allow_raw) known.push_back("raw");
  Fail("unknown format ", Quoted(name),
       Suggestion(name, known, "; the formats are " + Enumeration(known)));
}

Sink::Sink(const std::string& path, Format format, int columns, std::optional<NpyShape> shape,
           bool complex_rows)
    : file_(path),
      format_(format),
      columns_(columns),
      complex_rows_(complex_rows),
      shape_(std::move(shape)) {
  if (format_ != Format::Text && file_.is_terminal()) {
    Fail("binary results are not written to a terminal; name a file with --output");
  }
  if (format_ == Format::Npy && !shape_) file_.HoldBack();
}

template <typename T>
std::string Sink::Header() const {
  NpyShape shape = shape_ ? *shape_ : NpyShape{{rows_}, false};
  if (columns_ > 1 && !complex_rows_) shape.dims.push_back(static_cast<uint64_t>(columns_));
  return NpyHeaderBytes(Descr<T>(complex_rows_), shape);
}

template <typename T>
void Sink::Write(const T* x, size_t rows) {
  const size_t count = rows * static_cast<size_t>(columns_);
  if (format_ != Format::Text) {
    if (format_ == Format::Npy && !begun_) {
      const std::string header = Header<T>();
      file_.Write(header.data(), header.size());
      begun_ = true;
    }
    file_.Write(x, count * sizeof(T));
  } else {
    char line[kMaxNumberText + 1];
    for (size_t i = 0; i < count; ++i) {
      const size_t length = FormatNumber(x[i], line);
      line[length] = (i + 1) % static_cast<size_t>(columns_) == 0 ? '\n' : '\t';
      file_.Write(line, length + 1);
    }
  }
  rows_ += rows;
}

template <typename T>
void Sink::Finish() {
  if (!begun_) Write<T>(nullptr, 0);
  if (format_ == Format::Npy && !shape_) file_.ReplaceStart(Header<T>());
  file_.Commit();
}

#define CLI_SINK(T)                            \
  template void Sink::Write(const T*, size_t); \
  template void Sink::Finish<T>();
CLI_SINK(double)
CLI_SINK(float)
CLI_SINK(int32_t)
CLI_SINK(uint32_t)
CLI_SINK(uint64_t)
#undef CLI_SINK

}  // namespace cli
