// The interface of libpexquo_front: it exports what its headers declare and nothing else, and they
// are clean in C and C++.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "pexquo/pexquo.h"

namespace {

std::string Content(const std::string& header) {
  std::ifstream file(std::string(INCLUDE_FOLDER "/pexquo/") + header);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::set<std::string> Declared() {
  std::set<std::string> names;
  const std::string text = Content("pexquo.h") + Content("front_functions.h");
  const std::regex declaration(R"(PEXQUO_API [\w\s\*]*?\b(\w+)\()");
  for (std::sregex_iterator i(text.begin(), text.end(), declaration), end; i != end; ++i) {
    names.insert((*i)[1]);
  }
  return names;
}

std::set<std::string> Exported(const std::string& options) {
  std::set<std::string> names;
  const std::string command = std::string(NM " -D --defined-only ") + options + " " FRONT_LIBRARY;
  FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return names;
  char line[600];
  while (std::fgets(line, sizeof(line), pipe) != nullptr) {
    std::istringstream fields(line);
    std::string address, kind, name;
    fields >> address >> kind >> name;
    if (kind != "A") names.insert(name);  // A: the version itself
  }
  EXPECT_EQ(pclose(pipe), 0) << command;
  return names;
}

std::string Missing(const std::set<std::string>& some, const std::set<std::string>& all) {
  std::string missing;
  for (const std::string& name : some) {
    if (!all.contains(name)) missing += " " + name;
  }
  return missing;
}

TEST(Library, ExportsWhatItsHeadersDeclare) {
  std::set<std::string> declared = Declared();
  EXPECT_GT(declared.size(), 350u);
  std::istringstream without(WITHOUT);  // declared, but without a kernel yet
  for (std::string name; without >> name;) EXPECT_EQ(declared.erase(name), 1u) << name;
  const std::set<std::string> exported = Exported("--without-symbol-versions");
  EXPECT_EQ(Missing(declared, exported), "");
  EXPECT_EQ(Missing(exported, declared), "");
}

TEST(Library, VersionsItsSymbols) {
  for (const std::string& name : Exported("--with-symbol-versions")) {
    EXPECT_TRUE(name.ends_with("@@PEXQUO_FRONT_1.0")) << name;
  }
  EXPECT_STREQ(pexquoVersion(), VERSION);
}

// A program that takes the address of every function.
std::string AddressesSource() {
  std::string source = "#include <pexquo/pexquo.h>\n#include <pexquo/pexquo.h>\n";
  source +=
      "typedef void (*Function)(void);\nextern Function functions[];\nFunction functions[] = {\n";
  for (const std::string& name : Declared()) source += "  (Function)" + name + ",\n";
  return source + "};\n";
}

void Compile(const std::string& compiler, const std::string& file) {
  const std::string path = std::string(WORK_FOLDER "/") + file;
  std::ofstream(path) << AddressesSource();
  const std::string command =
      compiler + " -pedantic -Wall -Wextra -Wno-cast-function-type -Werror -fsyntax-only -I " +
      INCLUDE_FOLDER + " " + path;
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

// The example of the manual page, a program.
std::string Example() {
  std::ifstream page(MANUAL_PAGE);
  std::string source;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line == ".EE") inside = false;
    if (inside) source += std::regex_replace(line, std::regex(R"(\\e)"), "\\") + "\n";
    if (line == ".EX") inside = true;
  }
  return source;
}

TEST(ManualPage, ShowsAProgramThatRuns) {
  const std::string path = WORK_FOLDER "/example", folder = FRONT_FOLDER;
  std::ofstream(path + ".c") << Example();
  const std::string command = C_COMPILER
                              " -std=c89 -pedantic -Wall -Wextra -Werror -I " INCLUDE_FOLDER " " +
                              path + ".c -o " + path + " " FRONT_LIBRARY " -Wl,-rpath," + folder +
                              " && " + path + " > " + path + ".out";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
  std::ifstream output(path + ".out");
  std::string line, last;
  int lines = 0;
  for (; std::getline(output, line); ++lines) last = line;
  EXPECT_EQ(lines, 6);
  EXPECT_EQ(last, "element 3: the function has a pole at an argument");
}

TEST(Header, IsCleanC89) { Compile(C_COMPILER " -std=c89", "header89.c"); }
TEST(Header, IsCleanC17) { Compile(C_COMPILER " -std=c17 -Wstrict-prototypes", "header17.c"); }
TEST(Header, IsCleanCxx98) { Compile(CXX_COMPILER " -std=c++98 -Wno-long-long", "header98.cc"); }
TEST(Header, IsCleanCxx20) { Compile(CXX_COMPILER " -std=c++20", "header20.cc"); }

}  // namespace
