#include "tests/cli/program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace cli_test {
namespace {

constexpr char kIn[] = ".test-in", kOut[] = ".test-out", kErr[] = ".test-err";

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

}  // namespace

ProgramTest::ProgramTest() {
  std::string pattern = testing::TempDir() + "/pexquo-test-XXXXXX";
  folder_ = mkdtemp(pattern.data());
}
ProgramTest::~ProgramTest() { std::filesystem::remove_all(folder_); }

pid_t ProgramTest::Start(const std::string& arguments, const std::function<void()>& prepare) {
  std::vector<std::string> words = Split(arguments, ' ');
  const pid_t child = fork();
  if (child != 0) return child;
  if (chdir(folder_.c_str()) != 0) _exit(126);
  const int in = open(kIn, O_RDONLY | O_CREAT, 0600);
  const int out = open(kOut, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const int err = open(kErr, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(in, STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  if (prepare) prepare();
  std::vector<char*> argv = {const_cast<char*>("pexquo")};
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  execv(PEXQUO_PROGRAM, argv.data());
  _exit(127);
}

Outcome ProgramTest::Run(const std::string& arguments, std::string_view input,
                         const std::function<void()>& prepare) {
  WriteFile(kIn, input);
  int status = 0;
  waitpid(Start(arguments, prepare), &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), ReadFile(kOut),
          ReadFile(kErr)};
}

void ProgramTest::WriteFile(const std::string& name, std::string_view bytes) {
  std::ofstream file(folder_ + "/" + name, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string ProgramTest::ReadFile(const std::string& name) {
  std::ifstream file(folder_ + "/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> ProgramTest::Files() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    const std::string name = entry.path().filename();
    if (name != kIn && name != kOut && name != kErr) names.push_back(name);
  }
  std::ranges::sort(names);
  return names;
}

void ExpectFailure(const Outcome& outcome, const std::string& part) {
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.err.starts_with("pexquo: ")) << outcome.err;
  EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
  EXPECT_TRUE(outcome.err.ends_with('\n')) << outcome.err;
  EXPECT_NE(outcome.err.find(part), std::string::npos) << outcome.err << " lacks: " << part;
}

std::vector<std::string> Lines(const std::string& text) { return Split(text, '\n'); }

std::string Npy(const std::string& dictionary, std::string_view data, int version) {
  std::string bytes = "\x93NUMPY";
  bytes += {static_cast<char>(version), '\0'};
  const size_t length = dictionary.size();
  for (int i = 0; i < (version == 1 ? 2 : 4); ++i) bytes += static_cast<char>(length >> (8 * i));
  return bytes + dictionary + std::string(data);
}

std::string NpyData(const std::string& file, const std::string& dictionary) {
  if (file.size() < 10) {
    ADD_FAILURE() << "no .npy header in " << file.size() << " bytes";
    return {};
  }
  const size_t length = static_cast<unsigned char>(file[8]) | static_cast<unsigned char>(file[9])
                                                                  << 8;
  EXPECT_EQ(file.substr(0, 8), std::string("\x93NUMPY\x01\x00", 8));
  EXPECT_EQ((10 + length) % 64, 0u);
  const std::string text = file.substr(10, length);
  EXPECT_EQ(text.substr(0, text.find_last_not_of(" \n") + 1), dictionary);
  EXPECT_TRUE(text.ends_with('\n'));
  return file.substr(10 + length);
}

}  // namespace cli_test
