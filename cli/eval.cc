// Applies a function of the catalogue to numbers, block by block, and reports special elements
// through the library's error callback.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "catalogue/catalogue.h"
#include "cli/commands.h"
#include "cli/failure.h"
#include "cli/names.h"
#include "cli/numbers.h"
#include "cli/sink.h"
#include "pexquo/pex.h"

namespace cli {
namespace {

constexpr size_t kBlock = 1 << 16;
// The library counts elements in 32 bits; positions beyond are counted from a multiple of this.
constexpr uint64_t kWindow = uint64_t{1} << 30;

// What the callback needs to know of the elements it is shown.
struct Reporter {
  std::string function;
  const Source* source = nullptr;
  bool single = false, two_arguments = false, two_results = false;
  std::string scalar;  // the one second argument; some kernels record their own arguments
  uint64_t limit = UINT64_MAX;
  uint64_t window = 0;  // position of the element that the library counts as 0
  uint64_t block = 0;   // position of the first element of this block
  uint64_t seen = 0;
};
thread_local Reporter* reporter = nullptr;

const char* ReasonOf(int32_t code) {
  switch (code) {
    case PEX_STATUS_DOMAIN:
      return "argument outside the domain";
    case PEX_STATUS_SINGULARITY:
      return "pole";
    case PEX_STATUS_OVERFLOW:
      return "overflow";
    case PEX_STATUS_UNDERFLOW:
      return "underflow";
    default:
      return "special element";
  }
}

int Report(PexErrorContext* record) {
  Reporter& r = *reporter;
  if (++r.seen > r.limit) return 1;
  const auto text = [&](double x) {
    return r.single ? NumberText(static_cast<float>(x)) : NumberText(x);
  };
  const uint64_t position = r.window + static_cast<uint32_t>(record->index);
  std::string line = "pexquo: " + r.source->name() + ": ";
  const uint64_t number = r.source->LineOf(position - r.block);
  if (number != 0) line += "line " + std::to_string(number) + ", ";
  line += "element " + std::to_string(position) + ": " + r.function + "(" + text(record->arg1);
  if (r.two_arguments) line += ", " + (r.scalar.empty() ? text(record->arg2) : r.scalar);
  line += ") = " + text(record->res1);
  if (r.two_results) line += ", " + text(record->res2);
  line += std::string(": ") + ReasonOf(record->code) + "\n";
  std::fputs(line.c_str(), stderr);
  return 1;
}

// The functions of a name, which take the same number of arguments.
struct Functions {
  const pex::Function *real, *complex;  // at least one
  const pex::Function& any() const { return real != nullptr ? *real : *complex; }
};

Functions FindFunctions(const std::string& name) {
  const std::string normalized = Normalized(name);
  const Functions f{pex::FindFunction(normalized), pex::FindComplexFunction(normalized)};
  if (f.real != nullptr || f.complex != nullptr) return f;
  std::vector<std::string> known;
  for (const auto& functions : {pex::Functions(), pex::ComplexFunctions()}) {
    for (const pex::Function& function : functions) known.push_back(Normalized(function.name));
  }
  Fail("unknown function ", Quoted(name),
       Suggestion(name, known, "; pexquo list functions shows them"));
}

pex::Tier TierOf(const std::string& name) {
  for (const pex::Tier tier : {pex::Tier::HA, pex::Tier::LA, pex::Tier::EP}) {
    if (name == pex::TierName(tier)) return tier;
  }
  Fail("unknown tier ", Quoted(name), "; the tiers are ha, la and ep");
}

void ExpectParts(const Source& source, const pex::Entry& entry) {
  if (source.parts() == entry.argument_parts()) return;
  const auto kind = [](int parts) { return parts == 2 ? "complex" : "real"; };
  Fail(source.name(), " has ", kind(source.parts()), " numbers; ", Normalized(entry.function->name),
       " in type ", entry.type, " takes ", kind(entry.argument_parts()), " ones");
}

// The one second argument of --b, RE,IM when it is complex.
template <typename T>
std::vector<T> ParseSecond(const std::string& text, const pex::Entry& entry) {
  std::vector<T> value;
  for (const std::string& part :
       entry.argument_parts() == 2 ? CommaSeparated(text) : std::vector{text}) {
    switch (ParseReal<T>(part, &value.emplace_back())) {
      case Parsed::Ok:
        break;
      case Parsed::Malformed:
        Fail("--b ", Quoted(part), " is not a number");
      case Parsed::OutOfRange:
        Fail("--b ", Quoted(part), " is beyond the range of ", sizeof(T) == 8 ? "double" : "single",
             " precision");
    }
  }
  if (value.size() != static_cast<size_t>(entry.argument_parts())) {
    Fail("--b ", Quoted(text), " is not RE,IM, a complex number");
  }
  return value;
}

// The second arguments, block by block.
template <typename T>
class Second {
 public:
  Second(const EvalOptions& options, const pex::Entry& entry)
      : parts_(static_cast<size_t>(entry.argument_parts())) {
    if (!options.with.empty()) {
      TextOptions text = options.text;
      text.text_only = !options.with_column.empty();
      if (text.text_only) text.column = options.with_column;
      source_ = OpenSource(options.with, text);
      ExpectParts(*source_, entry);
      values_.resize(parts_ * kBlock);
      return;
    }
    const std::vector<T> value = ParseSecond<T>(options.with_value, entry);
    while (values_.size() < parts_ * kBlock)
      values_.insert(values_.end(), value.begin(), value.end());
  }

  // As many as the first argument has; `position` counts those before.
  const T* Next(size_t n, uint64_t position, const Source& first) {
    if (source_ == nullptr) return values_.data();
    const size_t got = source_->Read(values_.data(), n);
    if (got < n) {
      Fail(source_->name(), " has ", position + got, " numbers, ", first.name(), " has more");
    }
    return values_.data();
  }
  void ExpectEnd(uint64_t position, const Source& first) {
    T more[2];
    if (source_ != nullptr && source_->Read(more, 1) != 0) {
      Fail(first.name(), " has ", position, " numbers, ", source_->name(), " has more");
    }
  }

 private:
  size_t parts_;
  std::unique_ptr<Source> source_;
  std::vector<T> values_;
};

template <typename T>
uint64_t EvalAs(const pex::Entry& entry, const EvalOptions& options, Source& source) {
  const bool two_arguments = pex::ArgumentCount(entry.function->shape) == 2;
  const bool two_results = pex::ResultCount(entry.function->shape) == 2;
  std::optional<Second<T>> second;
  if (two_arguments) second.emplace(options, entry);

  std::optional<NpyShape> shape;
  if (source.shape() != nullptr) shape = *source.shape();
  const Format format = FormatOf(options.format, options.output, false);
  if (two_results && format == Format::Npy && shape && shape->fortran_order &&
      shape->dims.size() > 1) {
    Fail(source.name(), ": two results of an array in Fortran order are written as text only");
  }
  const int columns = two_results ? 2 : entry.result_parts();
  Sink sink(options.output, format, columns, shape, entry.result_parts() == 2);

  Reporter report;
  report.function = Normalized(entry.function->name);
  report.source = &source;
  report.single = sizeof(T) == 4;
  report.two_arguments = two_arguments;
  report.two_results = two_results;
  if (entry.function->shape == pex::Shape::UnaryScalar && entry.argument_parts() == 1) {
    report.scalar = NumberText(*second->Next(0, 0, source));
  }
  if (!options.max_reports.empty() &&
      ParseUnsigned(options.max_reports, &report.limit) != Parsed::Ok) {
    Fail("--max-reports ", Quoted(options.max_reports), " is no count");
  }
  reporter = &report;
  _pexSetMode(PEX_ERRMODE_CALLBACK);
  _pexSetErrorCallBack(Report);

  std::vector<T> a(kBlock * static_cast<size_t>(entry.argument_parts()));
  std::vector<T> r(kBlock * static_cast<size_t>(entry.result_parts()));
  std::vector<T> r2(two_results ? kBlock : 0), rows(2 * r2.size());
  uint64_t position = 0;
  for (;;) {
    const size_t n = source.Read(a.data(), kBlock);
    const T* const b = two_arguments ? second->Next(n, position, source) : nullptr;
    if (n == 0) break;
    report.block = position;
    report.window = position - position % kWindow;
    _pexSetInterfInputVectorPointer(reinterpret_cast<const void*>(
        reinterpret_cast<uintptr_t>(a.data()) -
        (position - report.window) * sizeof(T) * static_cast<size_t>(entry.argument_parts())));
    entry.Call(static_cast<int32_t>(n), a.data(), b, r.data(), r2.data());
    if (two_results) {
      for (size_t i = 0; i < n; ++i) {
        rows[2 * i] = r[i];
        rows[2 * i + 1] = r2[i];
      }
    }
    sink.Write(two_results ? rows.data() : r.data(), n);
    position += n;
  }
  if (two_arguments) second->ExpectEnd(position, source);
  sink.Finish<T>();

  _pexSetInterfInputVectorPointer(nullptr);
  _pexClearErrorCallBack();
  reporter = nullptr;
  if (report.seen > report.limit) {
    std::fprintf(stderr, "pexquo: %s: %llu special elements in all, %llu not shown\n",
                 source.name().c_str(), static_cast<unsigned long long>(report.seen),
                 static_cast<unsigned long long>(report.seen - report.limit));
  }
  return report.seen;
}

bool IsComplex(char type) { return type == 'z' || type == 'c'; }

// The function of the name in a type.
const pex::Function& FunctionOf(const Functions& functions, char type) {
  const pex::Function* const f = IsComplex(type) ? functions.complex : functions.real;
  if (f != nullptr) return *f;
  Fail(Normalized(functions.any().name), " does not exist in type ", type, "; its types are ",
       functions.real != nullptr ? "d and s" : "z and c");
}

// That second arguments are given as the function takes them.
void CheckSecond(const EvalOptions& options, const pex::Function& function) {
  const std::string name = Normalized(function.name);
  const bool two_arguments = pex::ArgumentCount(function.shape) == 2;
  const bool has_second = !options.with.empty() || !options.with_value.empty();
  if (two_arguments && !has_second) {
    Fail(name, " takes two arguments: give the second as a file after the first, or as --b NUMBER");
  }
  if (!two_arguments && has_second)
    Fail(name, " takes one argument; a second is for functions of two");
  if (function.shape == pex::Shape::UnaryScalar && !options.with.empty()) {
    Fail(name, " takes one second argument for all elements: --b NUMBER");
  }
  if (options.input == "-" && options.with == "-") Fail("standard input can be read once only");
}

}  // namespace

int Eval(const EvalOptions& given) {
  EvalOptions options = given;
  const Functions functions = FindFunctions(options.function);
  pex::Tier tier = TierOf(options.tier.empty() ? "ha" : options.tier);
  const bool chosen = !options.type.empty();
  if (chosen && options.type != "d" && options.type != "s" && options.type != "z" &&
      options.type != "c") {
    Fail("unknown type ", Quoted(options.type), "; the types are d, s, z and c");
  }
  CheckSecond(options, functions.any());

  // Text says nothing of its type: it is taken as real where the function has a real form.
  char type = chosen ? options.type[0] : functions.real != nullptr ? 'd' : 'z';
  const bool from_real = FunctionOf(functions, type).shape == pex::Shape::FromReal;
  options.text.parts = IsComplex(type) && !from_real ? 2 : 1;
  const std::unique_ptr<Source> source = OpenSource(options.input, options.text);
  if (!chosen) {
    type = source->natural_type();
    if (functions.real == nullptr) type = type == 's' || type == 'c' ? 'c' : 'z';
  }

  const pex::Function& function = FunctionOf(functions, type);
  if (!function.tiered) tier = pex::Tier::Plain;  // one computation, as exact as any tier
  const pex::Entry& entry = *pex::FindEntry(function.name, type, tier);
  ExpectParts(*source, entry);
  const uint64_t special = entry.is_double() ? EvalAs<double>(entry, options, *source)
                                             : EvalAs<float>(entry, options, *source);
  return special == 0 ? kStatusOk : kStatusSpecial;
}

}  // namespace cli
