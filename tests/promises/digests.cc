// The bits from release to release: a digest of every entry's results and error codes over a fixed
// set of arguments, the same on every vector level.
//
//   digests FILE            compares each entry on each level of the processor with FILE
//   digests --update FILE   rewrites FILE
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "tests/promises/arguments.h"
#include "tests/support/levels.h"

namespace {

// FNV-1a over 64-bit words, byte by byte.
struct Digest {
  uint64_t state = 0xCBF29CE484222325;
  void Add(uint64_t word) {
    for (int i = 0; i < 64; i += 8) state = (state ^ (word >> i & 0xFF)) * 0x100000001B3;
  }
  void Add(const Numbers& numbers) {
    for (size_t i = 0; i < numbers.size(); ++i) Add(numbers.bits(i));
  }
};

std::string DigestOf(const pex::Entry& entry) {
  Digest digest;
  for (const Arguments& arguments : DigestSet(entry)) {
    const Outcome outcome = CallEntry(entry, arguments, kDefaultControl);
    digest.Add(outcome.r1);
    digest.Add(outcome.r2);
    for (const PexErrorContext& record : outcome.records) {
      digest.Add(static_cast<uint64_t>(record.index) << 32 | static_cast<uint32_t>(record.code));
    }
  }
  char text[20];
  std::snprintf(text, sizeof(text), "%016" PRIx64, digest.state);
  return text;
}

std::map<std::string, std::string> Read(const char* path) {
  std::map<std::string, std::string> digests;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string symbol, digest;
    if (line.empty() || line[0] == '#' || !(fields >> symbol >> digest)) continue;
    digests[symbol] = digest;
  }
  return digests;
}

int Update(const char* path) {
  std::ofstream file(path);
  file << "# Digests of results and error codes over a fixed set of arguments, the same on every\n"
          "# processor. A line that changes is a change of results: say so where the change is "
          "made.\n"
          "# Written by `digests --update` (target update_digests).\n";
  for (const pex::Entry* entry : AllEntries()) {
    file << entry->symbol << '\t' << DigestOf(*entry) << '\n';
  }
  return file.flush() ? 0 : 1;
}

int Compare(const char* path) {
  std::map<std::string, std::string> recorded = Read(path);
  int faults = 0;
  for (const pex::Entry* listed : AllEntries()) {
    const pex::Entry& entry = *listed;
    const std::string symbol(entry.symbol);
    const auto line = recorded.find(symbol);
    if (line == recorded.end()) {
      std::printf("%s: no digest recorded; run the target update_digests\n", symbol.c_str());
      ++faults;
      continue;
    }
    for (const Level& level : kLevels) {
      if (!ProcessorHas(level)) continue;
      const UseLevel use(level);
      const std::string digest = DigestOf(entry);
      if (digest == line->second) continue;
      std::printf("%s on %s: %s, recorded %s\n", symbol.c_str(), level.name, digest.c_str(),
                  line->second.c_str());
      ++faults;
    }
    recorded.erase(line);
  }
  for (const auto& [symbol, digest] : recorded) {
    std::printf("%s: recorded, but the library has no such entry\n", symbol.c_str());
    ++faults;
  }
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) std::printf("skipped: this processor has no %s\n", level.name);
  }
  return faults == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2) return Compare(argv[1]);
  if (argc == 3 && std::strcmp(argv[1], "--update") == 0) return Update(argv[2]);
  std::fprintf(stderr, "usage: digests [--update] FILE\n");
  return 2;
}
