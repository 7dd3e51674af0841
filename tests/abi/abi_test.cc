// The binary interface: both libraries export the entries of symbols.tsv whose groups exist, each
// with its version, and nothing else; the public headers declare each with the types of the list,
// for C89 and for C++.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Symbol {
  std::string group, name, result, arguments;
  bool is_data() const { return arguments == "data"; }
};

std::vector<Symbol> ReadSymbols() {
  std::vector<Symbol> symbols;
  std::ifstream file(SYMBOLS);
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    Symbol s;
    std::getline(fields, s.group, '\t');
    std::getline(fields, s.name, '\t');
    std::getline(fields, s.result, '\t');
    std::getline(fields, s.arguments, '\t');
    symbols.push_back(s);
  }
  return symbols;
}

// Group to library.
std::map<std::string, std::string> ReadGroups() {
  std::map<std::string, std::string> groups;
  std::ifstream file(GROUPS);
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string library, group;
    if (line.empty() || line[0] == '#' || !(fields >> library >> group)) continue;
    groups[group] = library;
  }
  return groups;
}

std::string Version(const std::string& library) {
  return library == "kro" ? "KRO_1.0" : "PEXQUO_1.0";
}

// What a library exports with that version: name to the letter of its kind.
std::map<std::string, char> Exported(const std::string& library, const std::string& version) {
  std::map<std::string, char> names;
  const std::string command = std::string(NM) + " -D --defined-only " + library;
  FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return names;
  char address[64], kind, name[512];
  while (std::fscanf(pipe, "%63s %c %511s", address, &kind, name) == 3) {
    if (name == version) continue;  // the version itself
    const std::string versioned = name;
    const size_t at = versioned.find("@@");
    EXPECT_EQ(at == std::string::npos ? "" : versioned.substr(at + 2), version) << versioned;
    names[versioned.substr(0, at)] = kind;
  }
  EXPECT_EQ(pclose(pipe), 0) << command;
  return names;
}

class Exports : public testing::TestWithParam<std::string> {};

TEST_P(Exports, AreTheListedEntriesAndNothingElse) {
  const std::string library = GetParam();
  const std::string path = library == "kro" ? KRO_LIBRARY : PEXQUO_LIBRARY;
  const auto groups = ReadGroups();
  std::map<std::string, char> exported = Exported(path, Version(library));
  ASSERT_FALSE(exported.empty());
  std::map<std::string, std::string> waiting;  // listed, but of a group that does not exist yet
  std::string missing, extra;
  for (const Symbol& s : ReadSymbols()) {
    const auto group = groups.find(s.group);
    if (group == groups.end()) {
      waiting[s.name] = s.group;
      continue;
    }
    if (group->second != library) continue;
    const auto found = exported.find(s.name);
    if (found == exported.end()) {
      missing += "\n  " + s.name + " (" + s.group + ")";
      continue;
    }
    const std::string kinds = s.is_data() ? "DB" : "T";
    EXPECT_NE(kinds.find(found->second), std::string::npos)
        << s.name << " is exported as " << found->second;
    exported.erase(found);
  }
  for (const auto& [name, kind] : exported) {
    const auto group = waiting.find(name);
    extra +=
        "\n  " + name + (group == waiting.end() ? "" : " (" + group->second + ", see groups.txt)");
  }
  EXPECT_EQ(missing, "");
  EXPECT_EQ(extra, "");
}

TEST_P(Exports, AreFoundAtRunTime) {
  const std::string library = GetParam();
  void* const handle =
      dlopen(library == "kro" ? KRO_LIBRARY : PEXQUO_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(handle, nullptr) << dlerror();
  const auto groups = ReadGroups();
  for (const Symbol& s : ReadSymbols()) {
    const auto group = groups.find(s.group);
    if (group == groups.end() || group->second != library) continue;
    void* const symbol = dlsym(handle, s.name.c_str());
    EXPECT_NE(symbol, nullptr) << s.name;
    EXPECT_EQ(dlvsym(handle, s.name.c_str(), Version(library).c_str()), symbol) << s.name;
  }
  dlclose(handle);
}

INSTANTIATE_TEST_SUITE_P(Libraries, Exports, testing::Values("pexquo", "kro"),
                         [](const auto& info) { return info.param; });

// A source that takes the address of every entry as a pointer of the listed type.
std::string SignatureSource() {
  const auto groups = ReadGroups();
  std::ostringstream source;
  source << "#include <pexquo/kro.h>\n#include <pexquo/pex.h>\n#include <pexquo/quo.h>\n";
  for (const Symbol& s : ReadSymbols()) {
    if (!groups.contains(s.group)) continue;
    const std::string pointer = "(*const listed_" + s.name + ")";
    if (s.is_data()) {
      const size_t bracket = s.result.find('[');
      const std::string type = s.result.substr(0, bracket);
      const std::string extent = bracket == std::string::npos ? "" : s.result.substr(bracket);
      source << type << " "
             << (extent.empty() ? pointer.substr(1, pointer.size() - 2) : pointer + extent)
             << " = &" << s.name << ";\n";
    } else {
      source << s.result << " " << pointer << "(" << s.arguments << ") = " << s.name << ";\n";
    }
  }
  return source.str();
}

void Compile(const std::string& compiler, const std::string& file) {
  const std::string path = std::string(WORK_FOLDER) + "/" + file;
  std::ofstream(path) << SignatureSource();
  const std::string command =
      compiler +
      " -Wall -Wextra -Werror -Wno-unused-const-variable -pedantic-errors -fsyntax-only -I " +
      INCLUDE_FOLDER + " " + path;
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

TEST(Headers, DeclareEveryEntryForC89) { Compile(C_COMPILER " -std=c89", "signatures.c"); }
TEST(Headers, DeclareEveryEntryForC17) { Compile(C_COMPILER " -std=c17", "signatures17.c"); }
TEST(Headers, DeclareEveryEntryForCxx98) {
  Compile(CXX_COMPILER " -std=c++98 -Wno-long-long", "signatures98.cc");
}
TEST(Headers, DeclareEveryEntryForCxx20) { Compile(CXX_COMPILER " -std=c++20", "signatures.cc"); }

TEST(List, NamesEverySymbolOnceAndEveryGroupThatExists) {
  std::set<std::string> names, groups;
  for (const Symbol& s : ReadSymbols()) {
    EXPECT_TRUE(names.insert(s.name).second) << s.name;
    EXPECT_FALSE(s.arguments.empty()) << s.name;
    groups.insert(s.group);
  }
  for (const auto& [group, library] : ReadGroups()) EXPECT_TRUE(groups.contains(group)) << group;
}

}  // namespace
