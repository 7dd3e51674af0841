#include "cli/reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "cli/failure.h"

namespace cli {
namespace {
constexpr size_t kBufferSize = 1 << 20;
}

Reader::Reader(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      fd_(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)),
      buffer_(kBufferSize) {
  if (fd_ < 0) Fail(name_, ": ", std::strerror(errno));
}

Reader::~Reader() {
  if (fd_ != STDIN_FILENO) close(fd_);
}

bool Reader::Fill() {
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (at_end_ || end_ == buffer_.size()) return false;
  ssize_t got;
  do {
    got = read(fd_, buffer_.data() + end_, buffer_.size() - end_);
  } while (got < 0 && errno == EINTR);
  if (got < 0) Fail(name_, ": ", std::strerror(errno));
  at_end_ = got == 0;
  end_ += static_cast<size_t>(got);
  return !at_end_;
}

std::string_view Reader::Peek(size_t n) {
  while (end_ - begin_ < n && Fill()) {
  }
  return {buffer_.data() + begin_, std::min(n, end_ - begin_)};
}

size_t Reader::Read(void* to, size_t n) {
  size_t done = 0;
  while (done < n) {
    if (begin_ == end_ && !Fill()) break;
    const size_t part = std::min(n - done, end_ - begin_);
    std::memcpy(static_cast<char*>(to) + done, buffer_.data() + begin_, part);
    begin_ += part;
    done += part;
  }
  return done;
}

bool Reader::ReadLine(std::string_view* line) {
  size_t searched = 0;
  for (;;) {
    const std::string_view held(buffer_.data() + begin_, end_ - begin_);
    const size_t newline = held.find('\n', searched);
    if (newline != std::string_view::npos) {
      *line = held.substr(0, newline);
      begin_ += newline + 1;
      break;
    }
    searched = held.size();
    if (Fill()) continue;
    if (!at_end_) Fail(name_, ": a line is longer than ", kBufferSize, " bytes");
    if (searched == 0) return false;
    *line = {buffer_.data() + begin_, end_ - begin_};
    begin_ = end_;
    break;
  }
  if (line->ends_with('\r')) line->remove_suffix(1);
  return true;
}

}  // namespace cli
