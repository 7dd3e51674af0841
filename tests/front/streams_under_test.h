// Streams of the front for tests: owned, and as bytes to compare.
#ifndef TESTS_FRONT_STREAMS_UNDER_TEST_H_
#define TESTS_FRONT_STREAMS_UNDER_TEST_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "pexquo/pexquo.h"

struct DeleteStream {
  void operator()(QuoStream* stream) const { quoDeleteStream(&stream); }
};
using OwnedStream = std::unique_ptr<QuoStream, DeleteStream>;

inline OwnedStream NewStream(int32_t brng = QUO_BRNG_MT19937, uint32_t seed = 7) {
  QuoStream* stream = nullptr;
  EXPECT_EQ(quoNewStream(&stream, brng, seed), QUO_OK);
  return OwnedStream(stream);
}

inline OwnedStream CopyOf(const QuoStream* source) {
  QuoStream* copy = nullptr;
  EXPECT_EQ(quoCopyStream(&copy, source), QUO_OK);
  return OwnedStream(copy);
}

// The next numbers of a stream.
inline std::vector<double> Next(QuoStream* stream, int64_t n) {
  std::vector<double> r(static_cast<size_t>(n));
  EXPECT_EQ(quodRngUniform(0, stream, n, r.data(), 0.0, 1.0), QUO_OK);
  return r;
}

// Whether both deliver the same from here on. Both move on.
inline bool StandAlike(QuoStream* x, QuoStream* y) { return Next(x, 10) == Next(y, 10); }

#endif  // TESTS_FRONT_STREAMS_UNDER_TEST_H_
