// The program's exit status and messages.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

struct Outcome {
  int status;
  std::string output;  // both streams
};

Outcome RunProgram(const std::string& arguments) {
  const std::string command = std::string(PEXQUO_ACCURACY_PROGRAM) + " " + arguments + " 2>&1";
  std::FILE* pipe = popen(command.c_str(), "r");
  Outcome outcome{-1, {}};
  char text[256];
  while (std::fgets(text, sizeof(text), pipe) != nullptr) outcome.output += text;
  const int status = pclose(pipe);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

TEST(Program, BadArgumentsEndWithOneLineAndStatus2) {
  for (const char* arguments :
       {"--count many", "--count 0", "--function Nonesuch", "--entry _pexdNonesuch_HA",
        "--tier best", "--level mmx", "--jobs 0", "--worst /nonexistent", "--unknown",
        "--exhaustive --markdown x.md", "--exhaustive --pairs 9", "--pairs 9 --function Exp",
        "--function Exp --tier la --type d --exhaustive",
        "--count 100 --tier la --function Exp --markdown /nonexistent/x.md"}) {
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments;
    const auto at = outcome.output.rfind("pexquo_accuracy: ");
    ASSERT_NE(at, std::string::npos) << arguments << "\n" << outcome.output;
    EXPECT_EQ(outcome.output.find('\n', at), outcome.output.size() - 1) << outcome.output;
  }
}

TEST(Program, MeasuresTheSameOnEveryLevelAndWritesTheDocument) {
  const auto file = std::filesystem::path(testing::TempDir()) / "pexquo_accuracy.md";
  const std::string selection = "--entry _pexdexp_50 --count 2000 --details ";
  const Outcome best = RunProgram(selection + "--markdown " + file.string());
  EXPECT_EQ(best.status, 0) << best.output;
  const auto table = [](const std::string& s) { return s.substr(s.find('\n')); };
  for (const char* level : {"sse4", "avx2", "avx512"}) {
    const Outcome outcome = RunProgram(selection + "--level " + level);
    if (outcome.output.find("this processor has no") != std::string::npos) continue;
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(table(outcome.output), table(best.output)) << level;
  }
  std::ifstream in(file);
  const std::string text((std::istreambuf_iterator<char>(in)), {});
  EXPECT_NE(text.find("| `_pexdExp_50` | "), std::string::npos) << text;
  std::filesystem::remove(file);
}

}  // namespace
