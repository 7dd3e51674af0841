// Plain text has one number a line; "#" begins a comment and blank lines are skipped. A column is
// taken from lines of fields as CSV files have them: fields may stand in double quotes, in which a
// doubled quote is one; lines that begin with "#" are comments. The first line is a header when the
// column is chosen by name, or when its field does not look like a number.
#include "cli/text_source.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "cli/failure.h"
#include "cli/names.h"
#include "cli/numbers.h"

namespace cli {
namespace {

constexpr char kBlanks = ' ';  // as a delimiter: any run of blanks and tabs

char DelimiterOf(const std::string& text) {
  if (text == "tab" || text == "\\t") return '\t';
  if (text == "space") return kBlanks;
  if (text.size() != 1 || text == "\"" || text == "#" || text == "\n") {
    Fail("the delimiter ", Quoted(text), " is not one character, tab or space");
  }
  return text[0];
}

bool LooksLikeNumber(std::string_view field) {
  double x;
  return field.empty() || ParseReal(field, &x) != Parsed::Malformed ||
         std::string_view("0123456789+-.").find(field[0]) != std::string_view::npos;
}

class TextSource : public Source {
 public:
  TextSource(std::unique_ptr<Reader> reader, const TextOptions& options)
      : reader_(std::move(reader)), delimiter_(DelimiterOf(options.delimiter)) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    char mark[kMark.size()];
    if (reader_->Peek(kMark.size()) == kMark) reader_->Read(mark, sizeof(mark));
    if (!options.column.empty()) ChooseColumn(options.column);
  }

  size_t Read(double* x, size_t n) override { return ReadAs(x, n); }
  size_t Read(float* x, size_t n) override { return ReadAs(x, n); }
  uint64_t LineOf(size_t i) const override { return lines_[i]; }
  const NpyShape* shape() const override { return nullptr; }
  char natural_type() const override { return 'd'; }
  const std::string& name() const override { return reader_->name(); }

 private:
  template <typename... Parts>
  [[noreturn]] void FailHere(const Parts&... parts) const {
    Fail(name(), ": line ", line_, ": ", parts...);
  }

  // The next line that holds something.
  bool NextLine(std::string_view* line) {
    while (reader_->ReadLine(line)) {
      ++line_;
      if (column_ == 0) *line = line->substr(0, line->find('#'));
      const std::string_view text = Trimmed(*line);
      if (!text.empty() && text.front() != '#') return true;
    }
    return false;
  }

  // Takes the first field off the line; false when the line ends with it.
  bool NextField(std::string_view* rest, std::string* field) const {
    const size_t start = rest->find_first_not_of(delimiter_ == '\t' ? " " : " \t");
    rest->remove_prefix(start == std::string_view::npos ? rest->size() : start);
    const bool quoted = rest->starts_with('"');
    field->clear();
    if (quoted) {
      size_t i = 1;
      for (; i < rest->size(); ++i) {
        if ((*rest)[i] == '"') {
          if (i + 1 >= rest->size() || (*rest)[i + 1] != '"') break;
          ++i;
        }
        *field += (*rest)[i];
      }
      if (i >= rest->size()) FailHere("a quoted field has no end");
      rest->remove_prefix(i + 1);
    }
    const size_t end = delimiter_ == kBlanks ? rest->find_first_of(" \t") : rest->find(delimiter_);
    const std::string_view text = Trimmed(rest->substr(0, end));
    if (quoted && !text.empty()) FailHere("text follows a quoted field");
    if (!quoted) *field = text;
    if (end == std::string_view::npos) return false;
    rest->remove_prefix(end + 1);
    // Blanks at the end of a line separate nothing.
    return delimiter_ != kBlanks || !Trimmed(*rest).empty();
  }

  // Sets column_, and takes the header off where there is one.
  void ChooseColumn(const std::string& column) {
    column_ = 1;  // fields from here on
    const bool by_number = std::ranges::all_of(column, [](char c) { return c >= '0' && c <= '9'; });
    if (by_number) {
      int64_t number = 0;
      if (ParseInteger(column, 1, 1 << 20, &number) != Parsed::Ok) {
        Fail("there is no column ", column, "; the first is 1");
      }
      column_ = static_cast<size_t>(number);
    }
    std::string_view line;
    if (!NextLine(&line)) {
      if (!by_number) Fail(name(), ": no header with a column ", Quoted(column));
      return;
    }
    if (by_number) {
      std::string field = Field(line);
      if (LooksLikeNumber(field)) {
        first_ = std::move(field);
        has_first_ = true;
      }
      return;
    }
    std::vector<std::string> known;
    bool more = true;
    while (more) {
      std::string field;
      more = NextField(&line, &field);
      if (field == column) {
        column_ = known.size() + 1;
        return;
      }
      known.push_back(std::move(field));
    }
    Fail(name(), ": no column ", Quoted(column), Suggestion(column, known));
  }

  std::string Field(std::string_view line) const {
    std::string field;
    for (size_t i = 1; i <= column_; ++i) {
      if (!NextField(&line, &field) && i < column_) {
        FailHere("there is no column ", column_, ", the line has ", i);
      }
    }
    return field;
  }

  template <typename T>
  T Number(std::string_view text) const {
    T x;
    switch (ParseReal(text, &x)) {
      case Parsed::Ok:
        return x;
      case Parsed::OutOfRange:
        FailHere(Quoted(text), " is beyond the range of ", sizeof(T) == 8 ? "double" : "single",
                 " precision");
      case Parsed::Malformed:
        break;
    }
    const bool several = column_ == 0 && text.find_first_of(",; \t") != std::string_view::npos;
    FailHere(Quoted(text), " is not a number", several ? "; --column chooses a column" : "");
  }

  template <typename T>
  size_t ReadAs(T* x, size_t n) {
    lines_.clear();
    while (lines_.size() < n) {
      std::string_view line;
      if (has_first_) {
        has_first_ = false;
        x[lines_.size()] = Number<T>(first_);
      } else if (!NextLine(&line)) {
        break;
      } else if (column_ == 0) {
        x[lines_.size()] = Number<T>(Trimmed(line));
      } else {
        x[lines_.size()] = Number<T>(Field(line));
      }
      lines_.push_back(line_);
    }
    return lines_.size();
  }

  std::unique_ptr<Reader> reader_;
  char delimiter_;
  size_t column_ = 0;  // from 1; 0 when a line is one number
  uint64_t line_ = 0;
  std::string first_;  // the field of the first line, where that was no header
  bool has_first_ = false;
  std::vector<uint64_t> lines_;
};

}  // namespace

std::unique_ptr<Source> MakeTextSource(std::unique_ptr<Reader> reader, const TextOptions& options) {
  return std::make_unique<TextSource>(std::move(reader), options);
}

}  // namespace cli
