// Runs the program in a folder of its own and shows what it leaves behind.
#ifndef TESTS_CLI_PROGRAM_H_
#define TESTS_CLI_PROGRAM_H_

#include <sys/types.h>

#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "gtest/gtest.h"

namespace cli_test {

struct Outcome {
  int status = -1;  // exit status; 128 + the number of a signal
  std::string out, err;
};

class ProgramTest : public testing::Test {
 protected:
  ProgramTest();
  ~ProgramTest() override;

  // The arguments are separated by single blanks; the program runs in the test's folder. `prepare`
  // runs in the child before the program starts.
  Outcome Run(const std::string& arguments, std::string_view input = {},
              const std::function<void()>& prepare = {});
  // Starts without waiting.
  pid_t Start(const std::string& arguments, const std::function<void()>& prepare = {});

  void WriteFile(const std::string& name, std::string_view bytes);
  std::string ReadFile(const std::string& name);
  // Names in the test's folder, sorted, without what Run itself leaves there.
  std::vector<std::string> Files();

  std::string folder_;
};

// Exactly one line that begins with "pexquo: " and holds `part`; status 2.
void ExpectFailure(const Outcome& outcome, const std::string& part);

std::vector<std::string> Lines(const std::string& text);

// An .npy file made by hand: `dictionary` is the header's text without padding.
std::string Npy(const std::string& dictionary, std::string_view data, int version = 1);

template <typename T>
std::string Bytes(const std::vector<T>& x) {
  return {reinterpret_cast<const char*>(x.data()), x.size() * sizeof(T)};
}
template <typename T>
std::vector<T> Values(std::string_view bytes) {
  std::vector<T> x(bytes.size() / sizeof(T));
  if (!x.empty()) std::memcpy(x.data(), bytes.data(), x.size() * sizeof(T));
  return x;
}
// The data of an .npy file of version 1.0, after a check of its header's dictionary.
std::string NpyData(const std::string& file, const std::string& dictionary);

}  // namespace cli_test

#endif  // TESTS_CLI_PROGRAM_H_
