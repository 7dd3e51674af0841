#include "cli/stream.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "catalogue/catalogue.h"
#include "cli/failure.h"
#include "cli/names.h"
#include "cli/numbers.h"
#include "cli/output_file.h"

namespace cli {
namespace {

constexpr int32_t kFirstNewId = 0x100000;
constexpr int64_t kMaxMember = 0xFFFFF;

const char* Meaning(int32_t status) {
  switch (status) {
    case QUO_BAD_METHOD:
      return "unknown method";
    case QUO_BAD_ARGUMENT:
      return "the seed words are no sound set";
    case QUO_NO_MEMORY:
      return "not enough memory";
    case QUO_INVALID_BRNG:
      return "there is no such generator, or it cannot be used this way";
    case QUO_LEAPFROG_UNSUPPORTED:
      return "the generator cannot leapfrog";
    case QUO_SKIPAHEAD_UNSUPPORTED:
      return "the generator cannot skip ahead";
    case QUO_CLOSE_FAILED:
      return "the file could not be closed";
    case QUO_OPEN_FAILED:
      return "the file could not be opened";
    case QUO_WRITE_FAILED:
      return "the file could not be written";
    case QUO_READ_FAILED:
      return "the file ends too early";
    case QUO_BAD_FILE:
      return "the file is no stream file";
    case QUO_BAD_FILE_FORMAT:
      return "the file has an unknown format";
    default:
      return "the generator failed";
  }
}

// The most coordinates of a quasi-random generator's points, 0 of any other generator.
uint32_t MostDimensions(const BrngProperties& g) {
  return g.iBRng == __quoiBRngSobol ? 40 : g.iBRng == __quoiBRngNiederr ? 318 : 0;
}

const quo::Generator& NamedGenerator(const std::string& name) {
  std::vector<std::string> known;
  for (const quo::Generator& g : quo::Generators()) {
    known.push_back(Normalized(g.name));
    if (known.back() == Normalized(name)) return g;
  }
  Fail("unknown generator ", Quoted(name),
       Suggestion(name, known, "; pexquo list generators shows them"));
}

int32_t NumberedGenerator(const std::string& text, bool has_member) {
  int64_t id = 0;
  if (ParseInteger(text, 0, std::numeric_limits<int32_t>::max(), &id) != Parsed::Ok) {
    Fail("there is no generator with the identifier ", Quoted(text));
  }
  BrngProperties properties;
  if (__quoGetBrngProperties(static_cast<int32_t>(id), &properties) != QUO_OK) {
    Fail("there is no generator with the identifier ", text);
  }
  if (has_member && (id < kFirstNewId || (id & kMaxMember) != 0)) {
    Fail("the identifier ", text, " names a member already");
  }
  return static_cast<int32_t>(id);
}

// Standard output has the numbers.
std::string SavePath(const std::string& path) { return path == "-" ? "./-" : path; }

}  // namespace

int32_t GeneratorId(const std::string& generator, const std::string& member) {
  const size_t colon = generator.find(':');
  const std::string base = generator.substr(0, colon);
  const bool has_suffix = colon != std::string::npos;
  if (has_suffix && !member.empty()) Fail("the member is given twice");
  const std::string chosen = has_suffix ? generator.substr(colon + 1) : member;
  const bool has_member = has_suffix || !member.empty();

  const bool by_number = base.find_first_not_of("+-0123456789") != 0;
  const int32_t id = by_number ? NumberedGenerator(base, has_member) : NamedGenerator(base).id;
  if (!has_member) return id;

  int64_t m = 0;
  if (ParseInteger(chosen, 0, kMaxMember, &m) == Parsed::Malformed) {
    Fail("the member ", Quoted(chosen), " is not a number");
  }
  const int32_t members = NumOffsets[id / kFirstNewId - 1];
  if (m < 0 || m >= members) {
    Fail("there is no member ", chosen, " of ", base, "; it has ", members, ", from 0 on");
  }
  return id + static_cast<int32_t>(m);
}

std::vector<uint32_t> SeedWords(const std::string& words) {
  std::vector<uint32_t> seeds;
  if (words.empty()) return seeds;
  for (const std::string& field : CommaSeparated(words)) {
    std::string_view rest = Trimmed(field);
    do {
      const std::string_view word = rest.substr(0, rest.find_first_of(" \t"));
      int64_t seed = 0;
      switch (ParseInteger(word, 0, std::numeric_limits<uint32_t>::max(), &seed)) {
        case Parsed::Ok:
          break;
        case Parsed::Malformed:
          Fail("the seed word ", Quoted(word), " is not an integer");
        case Parsed::OutOfRange:
          Fail("the seed word ", word, " is not between 0 and 4294967295");
      }
      seeds.push_back(static_cast<uint32_t>(seed));
      rest = Trimmed(rest.substr(word.size()));
    } while (!rest.empty());
  }
  return seeds;
}

uint32_t DimensionWord(const std::string& text, int32_t id, const std::string& generator) {
  BrngProperties properties{};
  __quoGetBrngProperties(id, &properties);
  const uint32_t most = MostDimensions(properties);
  if (most == 0) {
    Fail("--dimension is for sobol and niederr; ", generator, " has no points of a dimension");
  }
  int64_t dimension = 0;
  if (ParseInteger(text, 1, most, &dimension) != Parsed::Ok) {
    Fail("--dimension ", Quoted(text), " is no number of coordinates; ", generator,
         " has from 1 to ", most);
  }
  return static_cast<uint32_t>(dimension);
}

uint32_t DimensionOf(const Stream& stream) {
  const uint32_t most = MostDimensions(stream.properties);
  if (most == 0) return 0;
  uint32_t dimension;  // the first word of the state; what is no dimension counts as 1
  std::memcpy(&dimension, stream.state.get() + 1, sizeof(dimension));
  return dimension - 1 < most ? dimension : 1;
}

void Expect(int32_t status, const Stream& stream, const std::string& what) {
  if (status == QUO_OK) return;
  Fail(what, " with generator ", stream.generator, ": ", Meaning(status), " (status ", status, ")");
}

Stream OpenStream(int32_t id, const std::string& generator, const std::vector<uint32_t>& seeds) {
  Stream stream;
  stream.generator = generator;
  Expect(__quoGetBrngProperties(id, &stream.properties), stream, "new stream");
  StreamState* state = nullptr;
  const int32_t status =
      __quoNewStreamEx(&state, id, static_cast<int32_t>(seeds.size()), seeds.data());
  stream.state.reset(state);  // there may be one after a failure too
  Expect(status, stream, "new stream");
  return stream;
}

Stream LoadStream(const std::string& path) {
  StreamState* state = nullptr;
  const int32_t status = __quoLoadStreamF(&state, path.c_str(), -1);
  if (status != QUO_OK)
    Fail("--load ", Quoted(path), ": ", Meaning(status), " (status ", status, ")");
  Stream stream;
  stream.state.reset(state);
  const int32_t id = __quoGetStreamStateBrng(state);
  stream.generator = std::to_string(id);
  Expect(__quoGetBrngProperties(id, &stream.properties), stream, "load");
  return stream;
}

void ExpectSavePlace(const std::string& path) {
  struct stat old = {};
  const bool exists = stat(path.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode) && !S_ISDIR(old.st_mode)) return;  // a pipe is opened once
  const OutputFile probe(SavePath(path));
}

void SaveStream(const Stream& stream, const std::string& path) {
  OutputFile file(SavePath(path));
  const int32_t status = __quoSaveStreamF(stream.state.get(), file.place().c_str(), -1);
  if (status != QUO_OK) {
    Fail("--save ", Quoted(path), ": ", Meaning(status), " (status ", status, ")");
  }
  file.Commit();
}

void Leapfrog(Stream& stream, const std::string& k_of_s) {
  const size_t slash = k_of_s.find('/');
  constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
  int64_t k = 0, s = 0;
  if (slash == std::string::npos ||
      ParseInteger(k_of_s.substr(0, slash), 0, kMax, &k) != Parsed::Ok ||
      ParseInteger(k_of_s.substr(slash + 1), 1, kMax, &s) != Parsed::Ok || k >= s) {
    Fail("--leapfrog ", Quoted(k_of_s), " is not K/S with K from 0 to S - 1");
  }
  Expect(__quoLeapfrogStream(stream.state.get(), static_cast<int32_t>(k), static_cast<int32_t>(s)),
         stream, "leapfrog");
}

void SkipAhead(Stream& stream, const std::string& count) {
  uint64_t n = 0;
  if (ParseUnsigned(count, &n) != Parsed::Ok) {
    Fail("--skip ", Quoted(count), " is not a count from 0 to 2^64 - 1");
  }
  // Of points all coordinates, one after the other as their product may be beyond 64 bits.
  for (uint32_t k = std::max(DimensionOf(stream), 1u); k > 0; --k) {
    Expect(__quoSkipAheadStream(stream.state.get(), n), stream, "skip");
  }
}

}  // namespace cli
