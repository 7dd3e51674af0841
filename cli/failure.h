// How the program ends on bad input or a failed write: one line, status 2.
#ifndef CLI_FAILURE_H_
#define CLI_FAILURE_H_

#include <sstream>
#include <stdexcept>

namespace cli {

inline constexpr int kStatusOk = 0;
inline constexpr int kStatusSpecial = 1;  // eval met special elements; the results are written
inline constexpr int kStatusFailed = 2;

struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The reader of our output has gone.
struct ClosedPipe : Failure {
  using Failure::Failure;
};

template <typename... Parts>
[[noreturn]] void Fail(const Parts&... parts) {
  std::ostringstream text;
  (text << ... << parts);
  throw Failure(text.str());
}

}  // namespace cli

#endif  // CLI_FAILURE_H_
