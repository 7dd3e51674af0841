// How far a long run is, shown on standard error where that is a terminal.
#ifndef CLI_PROGRESS_H_
#define CLI_PROGRESS_H_

#include <chrono>
#include <cstdint>

namespace cli {

class Progress {
 public:
  // Shows nothing when `hidden`, or when standard error is no terminal.
  Progress(uint64_t total, bool hidden);
  ~Progress();  // clears the line
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  void Update(uint64_t done);

 private:
  uint64_t total_;
  bool enabled_, shown_ = false;
  std::chrono::steady_clock::time_point start_, next_;
};

}  // namespace cli

#endif  // CLI_PROGRESS_H_
