// Tables of digests: one line for each thing whose bits are pinned, compared on every vector level.
#ifndef TESTS_PROMISES_DIGEST_TABLE_H_
#define TESTS_PROMISES_DIGEST_TABLE_H_

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/levels.h"

// FNV-1a over 64-bit words, byte by byte.
struct Digest {
  uint64_t state = 0xCBF29CE484222325;
  void Add(uint64_t word) {
    for (int i = 0; i < 64; i += 8) state = (state ^ (word >> i & 0xFF)) * 0x100000001B3;
  }
  std::string Text() const {
    char text[20];
    std::snprintf(text, sizeof(text), "%016" PRIx64, state);
    return text;
  }
};

struct Pinned {
  std::string name;  // without blanks
  std::function<Digest()> digest;
};

inline std::map<std::string, std::string> ReadDigests(const char* path) {
  std::map<std::string, std::string> digests;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string name, digest;
    if (line.empty() || line[0] == '#' || !(fields >> name >> digest)) continue;
    digests[name] = digest;
  }
  return digests;
}

inline int UpdateDigests(const std::vector<Pinned>& all, const char* head, const char* path) {
  std::ofstream file(path);
  file << head;
  for (const Pinned& pinned : all) file << pinned.name << '\t' << pinned.digest().Text() << '\n';
  return file.flush() ? 0 : 1;
}

inline int CompareDigests(const std::vector<Pinned>& all, const char* path) {
  std::map<std::string, std::string> recorded = ReadDigests(path);
  int faults = 0;
  for (const Pinned& pinned : all) {
    const auto line = recorded.find(pinned.name);
    if (line == recorded.end()) {
      std::printf("%s: no digest recorded; update the table\n", pinned.name.c_str());
      ++faults;
      continue;
    }
    for (const Level& level : kLevels) {
      if (!ProcessorHas(level)) continue;
      const UseLevel use(level);
      const std::string digest = pinned.digest().Text();
      if (digest == line->second) continue;
      std::printf("%s on %s: %s, recorded %s\n", pinned.name.c_str(), level.name, digest.c_str(),
                  line->second.c_str());
      ++faults;
    }
    recorded.erase(line);
  }
  for (const auto& [name, digest] : recorded) {
    std::printf("%s: recorded, but the library has no such entry\n", name.c_str());
    ++faults;
  }
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) std::printf("skipped: this processor has no %s\n", level.name);
  }
  return faults == 0 ? 0 : 1;
}

// PROGRAM FILE compares on each level of the processor, PROGRAM --update FILE rewrites. The exit
// status.
inline int RunDigests(const std::vector<Pinned>& all, const char* head, int argc, char** argv) {
  if (argc == 2) return CompareDigests(all, argv[1]);
  if (argc == 3 && std::strcmp(argv[1], "--update") == 0) return UpdateDigests(all, head, argv[2]);
  std::fprintf(stderr, "usage: %s [--update] FILE\n", argv[0]);
  return 2;
}

#endif  // TESTS_PROMISES_DIGEST_TABLE_H_
