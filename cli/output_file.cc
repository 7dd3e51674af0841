#include "cli/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "cli/failure.h"

namespace cli {
namespace {

constexpr size_t kBufferSize = 1 << 18;

// The name of the unfinished file, for the signal handler; empty when there is none.
char unfinished[PATH_MAX];

extern "C" void RemoveAndDie(int signal_number) {
  if (unfinished[0] != '\0') unlink(unfinished);
  signal(signal_number, SIG_DFL);
  raise(signal_number);
}

void RemoveOnSignals() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    if (signal(number, RemoveAndDie) == SIG_IGN) signal(number, SIG_IGN);
  }
}

std::string ResolvedPath(const std::string& path) {
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) != nullptr ? resolved : path;
}

mode_t PermissionsFor(bool exists, const struct stat& old) {
  if (exists) return old.st_mode & 0777;
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : name_(path == "-" ? "standard output" : path) {
  buffer_.reserve(kBufferSize);
  if (path == "-") {
    fd_ = STDOUT_FILENO;
    return;
  }
  struct stat old = {};
  const bool exists = stat(path.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode)) {
    fd_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd_ < 0) FailWith(errno);
    return;
  }
  if (exists && access(path.c_str(), W_OK) != 0) FailWith(errno);
  target_ = ResolvedPath(path);
  const size_t slash = target_.rfind('/');
  const size_t base = slash == std::string::npos ? 0 : slash + 1;
  if (base == target_.size()) FailWith(EISDIR);
  // A short name, so that a long one of the target still fits.
  const std::string pattern = target_.substr(0, base) + ".pexquo-XXXXXX";
  if (pattern.size() >= sizeof(unfinished)) FailWith(ENAMETOOLONG);
  if (target_.size() - base > NAME_MAX) FailWith(ENAMETOOLONG);
  char made[PATH_MAX];
  std::memcpy(made, pattern.c_str(), pattern.size() + 1);
  fd_ = mkostemp(made, O_CLOEXEC);
  if (fd_ < 0) FailWith(errno);
  std::memcpy(unfinished, made, sizeof(made));
  RemoveOnSignals();
  fchmod(fd_, PermissionsFor(exists, old));
}

OutputFile::~OutputFile() {
  if (held_ >= 0) close(held_);
  if (fd_ >= 0 && fd_ != STDOUT_FILENO) close(fd_);
  if (unfinished[0] != '\0') unlink(unfinished);
  unfinished[0] = '\0';
}

void OutputFile::FailWith(int error) const {
  if (error == EPIPE) throw ClosedPipe(name_ + ": closed before the end");
  Fail(name_, ": ", std::strerror(error));
}

void OutputFile::HoldBack() {
  if (!target_.empty()) return;
  const char* directory = std::getenv("TMPDIR");
  std::string pattern = std::string(directory != nullptr ? directory : "/tmp") + "/pexquo-XXXXXX";
  held_ = mkostemp(pattern.data(), O_CLOEXEC);
  if (held_ < 0) Fail(pattern, ": ", std::strerror(errno));
  unlink(pattern.c_str());
}

void OutputFile::WriteOut(int fd, const char* bytes, size_t n) {
  while (n > 0) {
    const ssize_t written = write(fd, bytes, n);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) FailWith(errno);
    bytes += written;
    n -= static_cast<size_t>(written);
  }
}

void OutputFile::Flush() {
  WriteOut(held_ >= 0 ? held_ : fd_, buffer_.data(), buffer_.size());
  buffer_.clear();
}

void OutputFile::Write(const void* bytes, size_t n) {
  if (buffer_.size() + n > kBufferSize) Flush();
  const char* const from = static_cast<const char*>(bytes);
  if (n >= kBufferSize) {
    WriteOut(held_ >= 0 ? held_ : fd_, from, n);
  } else {
    buffer_.insert(buffer_.end(), from, from + n);
  }
}

void OutputFile::ReplaceStart(std::string_view bytes) {
  Flush();
  const ssize_t written = pwrite(held_ >= 0 ? held_ : fd_, bytes.data(), bytes.size(), 0);
  if (written != static_cast<ssize_t>(bytes.size())) FailWith(written < 0 ? errno : ENOSPC);
}

void OutputFile::Commit() {
  Flush();
  if (held_ >= 0) {
    if (lseek(held_, 0, SEEK_SET) != 0) FailWith(errno);
    buffer_.resize(kBufferSize);
    ssize_t got;
    while ((got = read(held_, buffer_.data(), buffer_.size())) > 0) {
      WriteOut(fd_, buffer_.data(), static_cast<size_t>(got));
    }
    if (got < 0) FailWith(errno);
    buffer_.clear();
  }
  const int fd = fd_;
  fd_ = -1;
  if (close(fd) != 0) FailWith(errno);
  if (target_.empty()) return;
  if (rename(unfinished, target_.c_str()) != 0) FailWith(errno);
  unfinished[0] = '\0';
}

std::string OutputFile::place() const { return target_.empty() ? name_ : unfinished; }

bool OutputFile::is_terminal() const { return isatty(fd_) == 1; }

}  // namespace cli
