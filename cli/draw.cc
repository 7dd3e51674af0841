// Draws numbers of a distribution from a stream, block by block.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>
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
const std::string kStandardGenerator = "mcg59";

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

// Writes `count` rows of `columns` numbers that fill(n, x) supplies, at most `rows` at a time.
template <typename T, typename Fill>
void DrawRows(const DrawOptions& options, uint64_t count, int columns, const Fill& fill,
              size_t rows = kBlock) {
  const Format format = FormatOf(options.format, options.output, true);
  try {
    Sink sink(options.output, format, columns, NpyShape{{count}, false});
    Progress progress(count, sink.is_terminal());
    rows = std::min<uint64_t>(rows, count);
    std::vector<T> block(rows * static_cast<size_t>(columns));
    for (uint64_t done = 0; done < count;) {
      const auto n = static_cast<size_t>(std::min<uint64_t>(rows, count - done));
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

const std::string& Given(const DrawOptions& options, const std::string& name) {
  static const std::string none;
  const auto found = options.parameters.find(name);
  return found == options.parameters.end() ? none : found->second;
}

// The number that `text` gives for the option --name.
template <typename T>
T NumberOf(const std::string& name, const std::string& text) {
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

// A parameter in the type T, in which it meets its condition.
template <typename T>
T ParameterOf(const DrawOptions& options, const quo::Parameter& parameter) {
  const std::string name(parameter.name);
  const std::string& text = Given(options, name);
  const T x = text.empty() ? static_cast<T>(parameter.standard) : NumberOf<T>(name, text);
  if (parameter.condition == quo::Condition::Positive && !(x > 0)) {
    Fail("--", name, " ", text, " is not positive");
  }
  if (parameter.condition == quo::Condition::Probability && !(x >= 0 && x <= 1)) {
    Fail("--", name, " ", text, " is not a probability, from 0 to 1");
  }
  if (parameter.condition == quo::Condition::Count &&
      !(x >= 0 && static_cast<double>(x) <= 2147483647.0 && std::trunc(x) == x)) {
    Fail("--", name, " ", text, " is not an integer from 0 to 2147483647");
  }
  return x;
}

// The value of the method chosen, or of the one standing for none.
uint32_t MethodOf(const DrawOptions& options, const quo::Distribution& d) {
  if (options.method.empty()) {
    const int inversion = d.FindMethod("icdf");
    return inversion < 0 ? 0 : static_cast<uint32_t>(inversion);
  }
  if (d.methods.empty()) Fail(d.name, " has one method only");
  const int method = d.FindMethod(options.method);
  if (method < 0) {
    Fail(d.name, " has no method ", Quoted(options.method), "; its methods are ", d.methods);
  }
  return static_cast<uint32_t>(method);
}

// Writes `count` numbers that fill(n, x) supplies, one a row; of quasi-random ones `count` points.
template <typename T, typename Fill>
void DrawPoints(const DrawOptions& options, const Stream& stream, uint64_t count,
                const Fill& fill) {
  const auto columns = std::max(static_cast<int32_t>(DimensionOf(stream)), 1);
  DrawRows<T>(
      options, count, columns, [&](int32_t n, T* x) { fill(n * columns, x); },
      kBlock / static_cast<size_t>(columns));
}

using Parameters = std::array<double, quo::kMaxParameters>;

template <typename T>
void DrawNumbers(const DrawOptions& options, Stream& stream, uint64_t count,
                 const quo::Sampler& sampler, uint32_t method, const Parameters& parameters) {
  DrawPoints<T>(options, stream, count, [&](int32_t n, T* x) {
    Expect(sampler.draw(method, stream.state.get(), n, x, parameters.data()), stream,
           std::string(sampler.distribution->name));
  });
}

// The type of the results: the one given, else the first of "d", "s" and "i" that there is.
const quo::Sampler& SamplerOf(const DrawOptions& options, const quo::Distribution& d) {
  std::string types;
  for (const char type : {'d', 's', 'i'}) {
    const quo::Sampler* sampler = FindSampler(d, type);
    if (sampler == nullptr) continue;
    if (options.type.empty() || options.type == std::string(1, type)) return *sampler;
    types += (types.empty() ? "" : ", ") + std::string(1, type);
  }
  Fail("unknown type ", Quoted(options.type), "; of ", d.name, " there is ", types);
}

// Counts end at 2^31 - 1, and a mean beyond has hardly any.
void ExpectMean(const char* name, double mean) {
  constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
  if (mean > kMost) Fail("--", name, " ", NumberText(mean), " is above ", kMost);
}

// Any distribution of scalars with parameters.
void DrawScalars(const DrawOptions& options, const quo::Distribution& d, Stream& stream,
                 uint64_t count) {
  const quo::Sampler& sampler = SamplerOf(options, d);
  const uint32_t method = MethodOf(options, d);
  Parameters parameters{};
  for (int i = 0; i < d.parameter_count(); ++i) {
    const quo::Parameter& p = d.parameters[static_cast<size_t>(i)];
    parameters[static_cast<size_t>(i)] = sampler.type == 's'
                                             ? double{ParameterOf<float>(options, p)}
                                             : ParameterOf<double>(options, p);
  }
  if (d.name == "hypergeometric" && !(std::max(parameters[1], parameters[2]) <= parameters[0])) {
    Fail("s and m are parts of the lot: at most l = ", NumberText(parameters[0]));
  }
  if (d.name == "geometric" && !(1 - parameters[0] < 1)) {
    Fail("--p ", NumberText(parameters[0]), " is too small: 1 - p is 1");
  }
  if (d.name == "negbinomial" && !(parameters[1] > 0)) {
    Fail("--p ", NumberText(parameters[1]), " is not positive");
  }
  if (d.name == "poisson") ExpectMean("lambda", parameters[0]);
  if (sampler.type == 'd') {
    return DrawNumbers<double>(options, stream, count, sampler, method, parameters);
  }
  if (sampler.type == 's') {
    return DrawNumbers<float>(options, stream, count, sampler, method, parameters);
  }
  DrawNumbers<int32_t>(options, stream, count, sampler, method, parameters);
}

template <typename T>
void DrawUniformAs(const DrawOptions& options, const quo::Distribution& d, Stream& stream,
                   uint64_t count) {
  if (std::is_integral_v<T> && Given(options, "b").empty()) {
    Fail("integers are drawn from a to b - 1: give --b");
  }
  const T a = ParameterOf<T>(options, d.parameters[0]);
  const T b = ParameterOf<T>(options, d.parameters[1]);
  if (!(a < b)) Fail("b = ", NumberText(b), " is not above a = ", NumberText(a));
  if constexpr (!std::is_integral_v<T>) {
    if (!std::isfinite(b - a)) Fail("b - a overflows");
    if (!std::isfinite(a + b)) Fail("a + b overflows");  // of which some generators take half
  }
  DrawNumbers<T>(options, stream, count, SamplerOf(options, d),
                 options.accurate ? QUO_METHOD_ACCURATE : 0,
                 {static_cast<double>(a), static_cast<double>(b)});
}

void DrawUniform(const DrawOptions& options, const quo::Distribution& d, Stream& stream,
                 uint64_t count) {
  MethodOf(options, d);
  const char type = SamplerOf(options, d).type;
  if (type == 'd') return DrawUniformAs<double>(options, d, stream, count);
  if (type == 's') return DrawUniformAs<float>(options, d, stream, count);
  if (options.accurate) Fail("--accurate is for types d and s");
  DrawUniformAs<int32_t>(options, d, stream, count);
}

// The generator's own words: one 32-bit or one 64-bit number a row, or four 32-bit ones.
void DrawBits(const DrawOptions& options, const quo::Distribution& d, Stream& stream,
              uint64_t count) {
  if (!options.type.empty()) Fail("uniformbits has no type: the generator decides");
  MethodOf(options, d);
  const auto bits = [&](int32_t n, uint32_t* words) {
    Expect(_quoiRngUniformBits(0, stream.state.get(), n, words), stream, "uniformbits");
  };
  const auto words_each = static_cast<size_t>(stream.properties.WordBytes) / sizeof(uint32_t);
  if (words_each == 1) return DrawPoints<uint32_t>(options, stream, count, bits);
  if (words_each != 2) {
    return DrawRows<uint32_t>(options, count, static_cast<int>(words_each), bits);
  }
  std::vector<uint32_t> words(2 * kBlock);
  DrawRows<uint64_t>(options, count, 1, [&](int32_t n, uint64_t* x) {
    bits(n, words.data());
    std::memcpy(x, words.data(), static_cast<size_t>(n) * sizeof(uint64_t));
  });
}

// Numbers separated by commas.
template <typename T>
std::vector<T> NumbersOf(const std::string& name, const std::string& text) {
  std::vector<T> numbers;
  for (const std::string& word : CommaSeparated(text)) numbers.push_back(NumberOf<T>(name, word));
  return numbers;
}

struct Storage {
  std::string_view name;
  int32_t value;
  size_t (*size)(size_t dimension);  // of the factor
};
constexpr Storage kStorages[] = {
    {"full", QUO_STORAGE_FULL, [](size_t d) { return d * d; }},
    {"packed", QUO_STORAGE_PACKED, [](size_t d) { return d * (d + 1) / 2; }},
    {"diagonal", QUO_STORAGE_DIAGONAL, [](size_t d) { return d; }},
};

constexpr size_t kMaxDimension = 4096;
constexpr size_t kMostOfVectors = 256 * kBlock;  // components at a time

template <typename T, typename Kernel>
void DrawVectors(const DrawOptions& options, const quo::Distribution& d, Stream& stream,
                 uint64_t count, Kernel kernel) {
  const auto mean = NumbersOf<T>("mean", options.mean.empty() ? "0" : options.mean);
  const size_t dimension = mean.size();
  if (dimension > kMaxDimension) Fail("a vector has at most ", kMaxDimension, " components");
  const std::string storage_name = options.storage.empty() ? "full" : Normalized(options.storage);
  const auto storage = std::ranges::find(kStorages, storage_name, &Storage::name);
  if (storage == std::end(kStorages)) {
    Fail("unknown storage ", Quoted(options.storage), "; it is full, packed or diagonal");
  }
  std::vector<T> factor;
  if (!options.factor.empty()) {
    factor = NumbersOf<T>("factor", options.factor);
  } else if (!options.storage.empty()) {
    Fail("--storage is that of --factor: give --factor");
  } else {
    factor.resize(dimension * dimension);
    for (size_t i = 0; i < dimension; ++i) factor[i * (dimension + 1)] = 1;
  }
  if (factor.size() != storage->size(dimension)) {
    Fail("--factor has ", factor.size(), " numbers; a ", storage->name, " one of dimension ",
         dimension, " has ", storage->size(dimension));
  }
  const uint32_t method = MethodOf(options, d);
  DrawRows<T>(
      options, count, static_cast<int>(dimension),
      [&](int32_t n, T* x) {
        Expect(kernel(method, stream.state.get(), n, x, static_cast<int32_t>(dimension),
                      storage->value, mean.data(), factor.data()),
               stream, "gaussianmv");
      },
      std::min(kBlock, kMostOfVectors / dimension));
}

void DrawGaussianMV(const DrawOptions& options, const quo::Distribution& d, Stream& stream,
                    uint64_t count) {
  if (options.type.empty() || options.type == "d") {
    return DrawVectors<double>(options, d, stream, count, _quodRngGaussianMV);
  }
  if (options.type != "s") {
    Fail("unknown type ", Quoted(options.type), "; of gaussianmv there is d, s");
  }
  DrawVectors<float>(options, d, stream, count, _quosRngGaussianMV);
}

// Rows with one count for each of the means.
void DrawPoissonV(const DrawOptions& options, const quo::Distribution& d, Stream& stream,
                  uint64_t count) {
  if (!options.type.empty() && options.type != "i") {
    Fail("unknown type ", Quoted(options.type), "; of poissonv there is i");
  }
  MethodOf(options, d);
  const auto mean = NumbersOf<double>("mean", options.mean.empty() ? "1" : options.mean);
  for (const double m : mean) {
    if (m < 0) Fail("--mean has ", NumberText(m), ", which is below 0");
    ExpectMean("mean", m);
  }
  if (mean.size() > kMaxDimension) Fail("there are at most ", kMaxDimension, " means");
  std::vector<double> means;
  while (means.size() < kBlock) means.insert(means.end(), mean.begin(), mean.end());
  const size_t rows_at_once = means.size() / mean.size();
  DrawRows<int32_t>(
      options, count, static_cast<int>(mean.size()),
      [&](int32_t n, int32_t* x) {
        Expect(_quoiRngPoissonV(0, stream.state.get(), n * static_cast<int32_t>(mean.size()), x,
                                means.data()),
               stream, "poissonv");
      },
      rows_at_once);
}

const quo::Distribution& NamedDistribution(const DrawOptions& options) {
  const quo::Distribution* d = quo::FindDistribution(Normalized(options.distribution));
  if (d != nullptr) return *d;
  std::vector<std::string> known;
  for (const quo::Distribution& one : quo::Distributions()) known.emplace_back(one.name);
  for (const quo::Generator& g : quo::Generators()) {
    if (g.is_quasi_random()) known.push_back(Normalized(g.name));
  }
  Fail("unknown distribution ", Quoted(options.distribution),
       Suggestion(options.distribution, known, "; pexquo list distributions shows them"));
}

// Refuses what the distribution has no use for.
void CheckOptions(const DrawOptions& options, const quo::Distribution& d) {
  if (options.save == options.output) Fail("--save and --output are the same file");
  for (const auto& [name, text] : options.parameters) {
    const auto is_it = [&name](const quo::Parameter& p) { return p.name == name; };
    if (!text.empty() && std::ranges::none_of(d.parameters, is_it)) {
      Fail(d.name, " has no parameter ", name);
    }
  }
  if (options.accurate && d.name != "uniform") Fail("--accurate is for uniform");
  if (d.name == "gaussianmv") return;
  if (!options.mean.empty() && d.name != "poissonv") Fail(d.name, " has no parameter mean");
  if (!options.factor.empty()) Fail(d.name, " has no parameter factor");
  if (!options.storage.empty()) Fail("--storage is for gaussianmv");
}

Stream StreamOf(const DrawOptions& options) {
  if (options.load.empty()) {
    const std::string& generator =
        options.generator.empty() ? kStandardGenerator : options.generator;
    const int32_t id = GeneratorId(generator, options.member);
    if (options.dimension.empty()) return OpenStream(id, generator, SeedWords(options.seeds));
    const uint32_t dimension = DimensionWord(options.dimension, id, generator);
    if (!options.seeds.empty()) {
      Fail("the dimension is the first seed word: give --dimension or --seed");
    }
    return OpenStream(id, generator, {dimension});
  }
  if (!options.generator.empty() || !options.member.empty() || !options.seeds.empty()) {
    Fail("--load brings the generator and its state: leave --generator, --member and --seed out");
  }
  if (!options.dimension.empty()) Fail("--load brings the dimension: leave --dimension out");
  return LoadStream(options.load);
}

// The quasi-random generator that stands in place of a distribution; null for none.
const quo::Generator* GeneratorAsDistribution(const std::string& distribution) {
  for (const quo::Generator& g : quo::Generators()) {
    if (g.is_quasi_random() && Normalized(distribution) == Normalized(g.name)) return &g;
  }
  return nullptr;
}

// Such a generator draws its uniform points.
DrawOptions Resolved(DrawOptions options) {
  const quo::Generator* const g = GeneratorAsDistribution(options.distribution);
  if (g == nullptr) return options;
  if (!options.generator.empty()) {
    Fail(options.distribution, " is a generator itself: leave --generator out, or draw uniform");
  }
  options.distribution = "uniform";
  if (options.load.empty()) options.generator = Normalized(g->name);
  return options;
}

void ExpectGenerator(const Stream& stream, const quo::Generator* g) {
  if (g == nullptr) return;
  BrngProperties properties{};
  __quoGetBrngProperties(g->id, &properties);
  if (stream.properties.iBRng != properties.iBRng) {
    Fail("--load brings another generator than ", Normalized(g->name));
  }
}

}  // namespace

int Draw(const DrawOptions& given) {
  const DrawOptions options = Resolved(given);
  const quo::Distribution& d = NamedDistribution(options);
  CheckOptions(options, d);
  const uint64_t count = CountOf(options.count);
  Stream stream = StreamOf(options);
  ExpectGenerator(stream, GeneratorAsDistribution(given.distribution));
  if (!options.leapfrog.empty()) Leapfrog(stream, options.leapfrog);
  if (!options.skip.empty()) SkipAhead(stream, options.skip);
  if (!options.save.empty()) ExpectSavePlace(options.save);
  if (d.name == "uniform") {
    DrawUniform(options, d, stream, count);
  } else if (d.name == "uniformbits") {
    DrawBits(options, d, stream, count);
  } else if (d.name == "gaussianmv") {
    DrawGaussianMV(options, d, stream, count);
  } else if (d.name == "poissonv") {
    DrawPoissonV(options, d, stream, count);
  } else {
    DrawScalars(options, d, stream, count);
  }
  if (!options.save.empty()) SaveStream(stream, options.save);
  return kStatusOk;
}

}  // namespace cli
