#include "cli/progress.h"

#include <unistd.h>

#include <cstdio>

namespace cli {
namespace {
using Clock = std::chrono::steady_clock;
constexpr auto kInterval = std::chrono::milliseconds(250);
}  // namespace

Progress::Progress(uint64_t total, bool hidden)
    : total_(total),
      enabled_(!hidden && isatty(STDERR_FILENO) == 1),
      start_(Clock::now()),
      next_(start_ + kInterval) {}

Progress::~Progress() {
  if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::Update(uint64_t done) {
  if (!enabled_) return;
  const auto now = Clock::now();
  if (now < next_) return;
  next_ = now + kInterval;
  shown_ = true;
  const double part = static_cast<double>(done) / static_cast<double>(total_);
  const double seconds = std::chrono::duration<double>(now - start_).count();
  std::fprintf(stderr, "\rpexquo: %5.1f %%, %.3g of %.3g, %.0f s left\033[K", 100 * part,
               static_cast<double>(done), static_cast<double>(total_), seconds * (1 - part) / part);
}

}  // namespace cli
