// Plain text has one number a line, or the two parts of a complex one, separated by the delimiter
// or by blanks; "#" begins a comment and blank lines are skipped. Columns are taken from lines of
// fields as CSV files have them: fields may stand in double quotes, in which a doubled quote is
// one; lines that begin with "#" are comments. The first line is a header when a column is chosen
// by name, or when a field of it does not look like a number.
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
      : reader_(std::move(reader)),
        delimiter_(DelimiterOf(options.delimiter)),
        parts_(static_cast<size_t>(options.parts)) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    char mark[kMark.size()];
    if (reader_->Peek(kMark.size()) == kMark) reader_->Read(mark, sizeof(mark));
    if (!options.column.empty()) ChooseColumns(options.column);
  }

  size_t Read(double* x, size_t n) override { return ReadAs(x, n); }
  size_t Read(float* x, size_t n) override { return ReadAs(x, n); }
  uint64_t LineOf(size_t i) const override { return lines_[i]; }
  const NpyShape* shape() const override { return nullptr; }
  int parts() const override { return static_cast<int>(parts_); }
  char natural_type() const override { return parts_ == 2 ? 'z' : 'd'; }
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
      if (columns_.empty()) *line = line->substr(0, line->find('#'));
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

  // Sets columns_, and takes the header off where there is one.
  void ChooseColumns(const std::string& chosen) {
    const std::vector<std::string> names =
        parts_ == 2 ? CommaSeparated(chosen) : std::vector{chosen};
    if (names.size() != parts_) {
      Fail("--column ", Quoted(chosen), " is not RE,IM: two columns make complex numbers");
    }
    columns_.resize(parts_);
    const std::string* by_name = nullptr;
    for (size_t i = 0; i < parts_; ++i) {
      if (!std::ranges::all_of(names[i], [](char c) { return c >= '0' && c <= '9'; })) {
        by_name = &names[i];
        continue;
      }
      int64_t number = 0;
      if (ParseInteger(names[i], 1, 1 << 20, &number) != Parsed::Ok) {
        Fail("there is no column ", names[i], "; the first is 1");
      }
      columns_[i] = static_cast<size_t>(number);
    }
    std::string_view line;
    if (!NextLine(&line)) {
      if (by_name != nullptr) Fail(name(), ": no header with a column ", Quoted(*by_name));
      return;
    }
    if (by_name == nullptr) {
      has_first_ = std::ranges::all_of(
          columns_, [&](size_t column) { return LooksLikeNumber(Field(line, column)); });
      first_ = line;
      return;
    }
    std::vector<std::string> known;
    for (bool more = true; more;) {
      std::string field;
      more = NextField(&line, &field);
      known.push_back(std::move(field));
    }
    for (size_t i = 0; i < parts_; ++i) {
      if (columns_[i] != 0) continue;
      const auto found = std::ranges::find(known, names[i]);
      if (found == known.end()) {
        std::vector<std::string> quoted;
        for (const std::string& column : known) quoted.push_back(Quoted(column));
        constexpr size_t kFewColumns = 10;
        Fail(name(), ": no column ", Quoted(names[i]),
             Suggestion(names[i], known,
                        quoted.size() > kFewColumns ? "" : "; there is " + Enumeration(quoted)));
      }
      if (std::find(found + 1, known.end(), names[i]) != known.end()) {
        Fail(name(), ": several columns are named ", Quoted(names[i]),
             "; choose one by its number");
      }
      columns_[i] = static_cast<size_t>(found - known.begin()) + 1;
    }
  }

  std::string Field(std::string_view line, size_t column) const {
    std::string field;
    for (size_t i = 1; i <= column; ++i) {
      if (!NextField(&line, &field) && i < column) {
        FailHere("there is no column ", column, ", the line has ", i);
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
    const bool several = columns_.empty() && text.find_first_of(",; \t") != std::string_view::npos;
    FailHere(Quoted(text), " is not a number",
             !several      ? ""
             : parts_ == 1 ? "; --column chooses a column"
                           : "; --column chooses two columns");
  }

  // The parts of the line's element.
  template <typename T>
  void Element(std::string_view line, T* x) const {
    for (size_t i = 0; i < columns_.size(); ++i) x[i] = Number<T>(Field(line, columns_[i]));
    if (!columns_.empty()) return;
    const std::string_view text = Trimmed(line);
    if (parts_ == 1) {
      *x = Number<T>(text);
      return;
    }
    size_t end = text.find(delimiter_);
    if (end == std::string_view::npos) end = text.find_first_of(" \t");
    if (end == std::string_view::npos) {
      FailHere(Quoted(text), " is one number, a complex one takes two");
    }
    x[0] = Number<T>(Trimmed(text.substr(0, end)));
    x[1] = Number<T>(Trimmed(text.substr(end + 1)));
  }

  template <typename T>
  size_t ReadAs(T* x, size_t n) {
    lines_.clear();
    while (lines_.size() < n) {
      std::string_view line;
      if (has_first_) {
        has_first_ = false;
        line = first_;
      } else if (!NextLine(&line)) {
        break;
      }
      Element(line, x + parts_ * lines_.size());
      lines_.push_back(line_);
    }
    return lines_.size();
  }

  std::unique_ptr<Reader> reader_;
  char delimiter_;
  size_t parts_;
  std::vector<size_t> columns_;  // one for each part, from 1; none when a line is one element
  uint64_t line_ = 0;
  std::string first_;  // the first line, where that was no header
  bool has_first_ = false;
  std::vector<uint64_t> lines_;
};

}  // namespace

std::unique_ptr<Source> MakeTextSource(std::unique_ptr<Reader> reader, const TextOptions& options) {
  return std::make_unique<TextSource>(std::move(reader), options);
}

}  // namespace cli
