// Outputs that fail, are replaced, or are watched.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "tests/cli/program.h"

namespace cli_test {
namespace {

class OutputTest : public ProgramTest {};

using Names = std::vector<std::string>;

// Standard output becomes a pipe that nobody reads.
void CloseReader() {
  int ends[2];
  if (pipe(ends) != 0) _exit(125);
  close(ends[0]);
  dup2(ends[1], STDOUT_FILENO);
}

TEST_F(OutputTest, AClosedPipe) {
  const Outcome raw = Run("draw uniformbits --count 1e12 --format raw", {}, CloseReader);
  EXPECT_EQ(raw.status, 0);
  EXPECT_EQ(raw.err, "");
  ExpectFailure(Run("draw uniform --count 1e12", {}, CloseReader), "closed before the end");
  ExpectFailure(Run("eval ln", "1\n", CloseReader), "closed before the end");
  const auto close_output = [] { close(STDOUT_FILENO); };
  ExpectFailure(Run("draw uniform --count 10 --format raw", {}, close_output), "standard output: ");
  ExpectFailure(Run("list", {}, close_output), "standard output: ");
}

TEST_F(OutputTest, AFullDisk) {
  ExpectFailure(Run("draw uniform --count 10 -o /dev/full"), "/dev/full: No space left");
  ExpectFailure(Run("eval ln --format npy -o /dev/full", "1\n"), "/dev/full: No space left");
  const auto limit = [] {
    const rlimit small = {4096, 4096};
    setrlimit(RLIMIT_FSIZE, &small);
  };
  for (const char* format : {"text", "npy", "raw"}) {
    ExpectFailure(
        Run(std::string("draw uniform --count 1000000 -o u --format ") + format, {}, limit),
        "u: File too large");
    EXPECT_EQ(Files(), Names{});
  }
}

// No file that the program opens takes the place of a descriptor that was closed.
TEST_F(OutputTest, ClosedDescriptors) {
  const auto no_messages = [] { close(STDERR_FILENO); };
  EXPECT_EQ(Run("eval ln -o r", "0\n1\n", no_messages).status, 1);
  EXPECT_EQ(ReadFile("r"), "-inf\n0\n");
  ExpectFailure(Run("eval ln --format npy", "1\n", [] { close(STDOUT_FILENO); }),
                "standard output: Bad file descriptor");
  WriteFile("x", "1\n");
  ExpectFailure(Run("eval add x -", {}, [] { close(STDIN_FILENO); }),
                "standard input: Bad file descriptor");
}

TEST_F(OutputTest, TextsThatCannotBePrinted) {
  const auto full = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
  for (const char* arguments : {"list", "--help", "draw --help", "--version"}) {
    ExpectFailure(Run(arguments, {}, full), "standard output: ");
  }
}

// A stream goes to its file as results do: into devices, through links, and beside other files.
TEST_F(OutputTest, SavedStreams) {
  WriteFile("s.part", "mine");
  WriteFile("s", "old");
  ASSERT_EQ(chmod((folder_ + "/s").c_str(), 0640), 0);
  ASSERT_EQ(symlink("s", (folder_ + "/link").c_str()), 0);
  ASSERT_EQ(symlink("/dev/full", (folder_ + "/full").c_str()), 0);
  EXPECT_EQ(Run("draw uniform --count 1 --save link").status, 0);
  ExpectFailure(Run("draw uniform --count 1 --save full -o u"), "--save \"full\": ");
  // Where nothing can be written is known before anything is drawn.
  for (const std::string output : {"new", "-"}) {
    const Outcome r = Run("draw uniform --count 1 --save absent/s -o " + output);
    ExpectFailure(r, "absent/s: No such file");
    EXPECT_EQ(r.out, "");
  }
  EXPECT_NE(access((folder_ + "/new").c_str(), F_OK), 0);
  struct stat state;
  for (const char* link : {"/link", "/full"}) {
    ASSERT_EQ(lstat((folder_ + link).c_str(), &state), 0);
    EXPECT_TRUE(S_ISLNK(state.st_mode)) << link;
  }
  ASSERT_EQ(stat((folder_ + "/s").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0640u);
  EXPECT_EQ(Run("draw uniform --count 1 --load s").status, 0);
  EXPECT_EQ(ReadFile("s.part"), "mine");
  EXPECT_EQ(Files(), (Names{"full", "link", "s", "s.part", "u"}));
}

// Standard output has the numbers; "-" is a file's name where a stream is saved.
TEST_F(OutputTest, ASavedStreamIsNotMixedWithTheNumbers) {
  ExpectFailure(Run("draw uniformbits --count 2 --save -"), "are the same file");
  EXPECT_EQ(Run("draw uniformbits --generator mcg31m1 --count 2 --save - -o words").out, "");
  EXPECT_EQ(ReadFile("words"), "1\n1132489760\n");
  EXPECT_EQ(Files(), (Names{"-", "words"}));
  EXPECT_EQ(Run("draw uniformbits --count 1 --load -").out, "826537482\n");
}

TEST_F(OutputTest, FilesThatCannotBeWritten) {
  ExpectFailure(Run("draw uniform --count 1 -o absent/u"), "absent/u: No such file");
  ExpectFailure(Run("draw uniform --count 1 -o ."), ".: Is a directory");
  ExpectFailure(Run("draw uniform --count 1 -o " + std::string(300, 'u')), "File name too long");
  EXPECT_EQ(Files(), Names{});
}

TEST_F(OutputTest, ReplacesItsOwnInputAndKeepsLinksAndPermissions) {
  WriteFile("x", "1\n4\n");
  const std::string path = folder_ + "/x";
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  ASSERT_EQ(symlink("x", (folder_ + "/link").c_str()), 0);
  EXPECT_EQ(Run("eval floor x -o link").status, 0);
  EXPECT_EQ(ReadFile("x"), "1\n4\n");
  struct stat state;
  ASSERT_EQ(lstat((folder_ + "/link").c_str(), &state), 0);
  EXPECT_TRUE(S_ISLNK(state.st_mode));
  ASSERT_EQ(stat(path.c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0640u);
  EXPECT_EQ(Run("eval floor x -o new", {}, [] { umask(022); }).status, 0);
  ASSERT_EQ(stat((folder_ + "/new").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0644u);
  EXPECT_EQ(Files(), (Names{"link", "new", "x"}));
}

TEST_F(OutputTest, ASignalLeavesNothingBehind) {
  for (const int signal_number : {SIGTERM, SIGINT, SIGHUP}) {
    const pid_t child = Start("draw uniform --count 1e12 --format raw -o u");
    for (int i = 0; i < 1000 && Files().empty(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(Files().size(), 1u);  // the unfinished file
    kill(child, signal_number);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal_number) << status;
    EXPECT_EQ(Files(), Names{});
  }
}

TEST_F(OutputTest, MemoryDoesNotGrowWithTheCount) {
  const auto peak = [&](const std::string& count) {
    const pid_t child = Start("draw uniformbits --format raw -o /dev/null --count " + count);
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    EXPECT_EQ(status, 0);
    return usage.ru_maxrss;  // KiB
  };
  EXPECT_LT(peak("5e7"), peak("1e5") + 20000);  // 5e7 words are 400 MB
}

// Progress appears on a terminal, and binary numbers do not.
TEST_F(OutputTest, Terminals) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
    GTEST_SKIP() << "no pseudo-terminal on this machine";
  }
  const std::string other_end = ptsname(terminal);
  const int kept = open(other_end.c_str(), O_RDWR | O_NOCTTY);  // else it closes with the program
  const auto attach = [&](int to) { dup2(open(other_end.c_str(), O_RDWR | O_NOCTTY), to); };
  ExpectFailure(Run("draw uniform --count 1 --format npy", {}, [&] { attach(STDOUT_FILENO); }),
                "not written to a terminal");

  const pid_t child = Start("draw uniformbits --count 1e12 --format raw -o /dev/null",
                            [&] { attach(STDERR_FILENO); });
  std::string shown;
  char part[256];
  while (shown.find('%') == std::string::npos) {
    const ssize_t got = read(terminal, part, sizeof(part));
    if (got <= 0) break;
    shown.append(part, static_cast<size_t>(got));
  }
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  close(kept);
  close(terminal);
  EXPECT_NE(shown.find("of 1e+12"), std::string::npos) << shown;
}

}  // namespace
}  // namespace cli_test
