// Draws numbers of a distribution from a stream, block by block.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "catalogue/catalogue.h"
#include "cli/commands.h"
#include "cli/failure.h"
#include "cli/names.h"
#include "cli/numbers.h"
#include "cli/progress.h"
#include "cli/sink.h"
#include "cli/stream.h"

namespace cli {
namespace {

constexpr size_t kBlock = 1 << 16;
constexpr uint64_t kMaxCount = 1000000000000000;

// Digits, or digits with a decimal exponent as in 1e6.
uint64_t CountOf(const std::string& text) {
  const auto digits = [](const std::string& part) {
    return !part.empty() && part.find_first_not_of("0123456789") == std::string::npos;
  };
  const size_t e = text.find_first_of("eE");
  const std::string mantissa = text.substr(0, e);
  const std::string exponent = e == std::string::npos ? "0" : text.substr(e + 1);
  if (text.starts_with('-') && digits(text.substr(1))) Fail("the count ", text, " is negative");
  if (!digits(mantissa) || !digits(exponent)) Fail("the count ", Quoted(text), " is no count");
  uint64_t count = 0, power = 0;
  bool large = ParseUnsigned(mantissa, &count) != Parsed::Ok ||
               ParseUnsigned(exponent, &power) != Parsed::Ok || (count > 0 && power > 15);
  for (; count > 0 && power > 0 && !large; --power) {
    large = __builtin_mul_overflow(count, 10, &count);
  }
  if (large || count > kMaxCount) Fail("the count ", text, " is too large; at most 1e15");
  return count;
}

// Writes `count` rows of `columns` numbers that fill(n, x) supplies.
template <typename T, typename Fill>
void DrawRows(const DrawOptions& options, uint64_t count, int columns, const Fill& fill) {
  const Format format = FormatOf(options.format, options.output, true);
  try {
    Sink sink(options.output, format, columns, NpyShape{{count}, false});
    Progress progress(count, sink.is_terminal());
    std::vector<T> block(kBlock * static_cast<size_t>(columns));
    for (uint64_t done = 0; done < count;) {
      const auto n = static_cast<size_t>(std::min<uint64_t>(kBlock, count - done));
      fill(static_cast<int32_t>(n), block.data());
      sink.Write(block.data(), n);
      done += n;
      progress.Update(done);
    }
    sink.Finish<T>();
  } catch (const ClosedPipe&) {
    // A test battery has read as much as it wanted.
    if (format != Format::Raw) throw;
  }
}

const std::string& Parameter(const DrawOptions& options, const std::string& name) {
  static const std::string none;
  const auto found = options.parameters.find(name);
  return found == options.parameters.end() ? none : found->second;
}

template <typename T>
T Bound(const DrawOptions& options, const std::string& name, T standard) {
  const std::string& text = Parameter(options, name);
  if (text.empty()) return standard;
  Parsed parsed;
  T x;
  if constexpr (std::is_integral_v<T>) {
    int64_t wide = 0;
    parsed =
        ParseInteger(text, std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), &wide);
    x = static_cast<T>(wide);
    if (parsed == Parsed::OutOfRange) Fail("--", name, " ", text, " is no 32-bit integer");
    if (parsed == Parsed::Malformed) Fail("--", name, " ", Quoted(text), " is not an integer");
  } else {
    parsed = ParseReal(text, &x);
    if (parsed == Parsed::Malformed) Fail("--", name, " ", Quoted(text), " is not a number");
    if (parsed == Parsed::OutOfRange || !std::isfinite(x))
      Fail("--", name, " ", text, " is not finite");
  }
  return x;
}

template <typename T, typename Kernel>
void DrawUniformAs(const DrawOptions& options, Stream& stream, uint64_t count, Kernel kernel) {
  if (std::is_integral_v<T> && Parameter(options, "b").empty()) {
    Fail("integers are drawn from a to b - 1: give --b");
  }
  const T a = Bound<T>(options, "a", 0), b = Bound<T>(options, "b", 1);
  if (!(a < b)) Fail("b = ", NumberText(b), " is not above a = ", NumberText(a));
  if constexpr (!std::is_integral_v<T>) {
    if (!std::isfinite(b - a)) Fail("b - a overflows");
  }
  const uint32_t method = options.accurate ? QUO_METHOD_ACCURATE : 0;
  DrawRows<T>(options, count, 1, [&](int32_t n, T* x) {
    Expect(kernel(method, stream.state.get(), n, x, a, b), stream, "uniform");
  });
}

void DrawUniform(const DrawOptions& options, Stream& stream, uint64_t count) {
  const std::string type = options.type.empty() ? "d" : options.type;
  if (type == "d") return DrawUniformAs<double>(options, stream, count, _quodRngUniform);
  if (type == "s") return DrawUniformAs<float>(options, stream, count, _quosRngUniform);
  if (type != "i") Fail("unknown type ", Quoted(type), "; the types of uniform are d, s and i");
  if (options.accurate) Fail("--accurate is for types d and s");
  DrawUniformAs<int32_t>(options, stream, count, _quoiRngUniform);
}

// The generator's own words: one 32-bit or one 64-bit number a row, or four 32-bit ones.
void DrawBits(const DrawOptions& options, Stream& stream, uint64_t count) {
  if (!options.type.empty()) Fail("uniformbits has no type: the generator decides");
  if (options.accurate) Fail("--accurate is for uniform");
  const auto bits = [&](int32_t n, uint32_t* words) {
    Expect(_quoiRngUniformBits(0, stream.state.get(), n, words), stream, "uniformbits");
  };
  const auto words_each = static_cast<size_t>(stream.properties.WordBytes) / sizeof(uint32_t);
  if (words_each != 2) {
    return DrawRows<uint32_t>(options, count, static_cast<int>(words_each), bits);
  }
  std::vector<uint32_t> words(2 * kBlock);
  DrawRows<uint64_t>(options, count, 1, [&](int32_t n, uint64_t* x) {
    bits(n, words.data());
    std::memcpy(x, words.data(), static_cast<size_t>(n) * sizeof(uint64_t));
  });
}

// One row for each catalogued distribution.
struct Sampler {
  std::string_view name;
  void (*draw)(const DrawOptions&, Stream&, uint64_t);
};
constexpr Sampler kSamplers[] = {{"uniform", DrawUniform}, {"uniformbits", DrawBits}};

const Sampler& FindSampler(const DrawOptions& options) {
  std::vector<std::string> known;
  for (const quo::Distribution& d : quo::Distributions()) {
    known.emplace_back(d.name);
    if (Normalized(options.distribution) != d.name) continue;
    const std::string parameters = " " + std::string(d.parameters) + " ";
    for (const auto& [name, text] : options.parameters) {
      if (!text.empty() && parameters.find(" " + name + " ") == std::string::npos) {
        Fail(d.name, " has no parameter ", name);
      }
    }
    for (const Sampler& s : kSamplers) {
      if (s.name == d.name) return s;
    }
  }
  Fail("unknown distribution ", Quoted(options.distribution),
       Suggestion(options.distribution, known));
}

}  // namespace

int Draw(const DrawOptions& options) {
  const Sampler& sampler = FindSampler(options);
  const uint64_t count = CountOf(options.count);
  const int32_t id = GeneratorId(options.generator, options.member);
  Stream stream = OpenStream(id, options.generator, SeedWords(options.seeds));
  if (!options.leapfrog.empty()) Leapfrog(stream, options.leapfrog);
  if (!options.skip.empty()) SkipAhead(stream, options.skip);
  sampler.draw(options, stream, count);
  return kStatusOk;
}

}  // namespace cli
