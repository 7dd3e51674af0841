// What the caller has set in the floating-point control register changes no result, and what a call
// meets on the way leaves no trace there but inexact.
#include <gtest/gtest.h>
#include <immintrin.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <vector>

#include "pexquo/quo.h"
#include "tests/streams/scripted_generator.h"
#include "tests/uniform/levels.h"

namespace {

constexpr uint32_t kDefault = 0x1F80, kInvalid = 0x01, kOverflow = 0x08, kInexact = 0x20;
constexpr uint32_t kFlags = 0x3F, kMasks = 0x1F80;
constexpr uint32_t kFlushBits[] = {0, 0x8000, 0x0040, 0x8040};  // none, FTZ, DAZ, both

// Every result of this family from one stream, as bytes, drawn under the control word `csr`. The
// control word must be back afterwards.
std::vector<unsigned char> DrawAll(StreamState* stream, uint32_t csr) {
  constexpr int32_t n = 1500;
  std::vector<double> d(2 * n);
  std::vector<float> s(2 * n);
  std::vector<int32_t> i(2 * n);
  std::vector<uint32_t> u(4 * n);
  uint32_t after[7];
  errno = 4711;
  _mm_setcsr(csr);
  _quodRngUniform(0, stream, n, d.data(), -0.1, 1.7);
  after[0] = _mm_getcsr();
  _quodRngUniform(QUO_METHOD_ACCURATE, stream, n, d.data() + n, 0, 1e-307);
  after[1] = _mm_getcsr();
  _quosRngUniform(0, stream, n, s.data(), -0.1f, 1.7f);
  after[2] = _mm_getcsr();
  _quosRngUniform(QUO_METHOD_ACCURATE, stream, n, s.data() + n, -1e-38f, 1e-38f);
  after[3] = _mm_getcsr();
  _quoiRngUniform(0, stream, n, i.data(), -7, 12);
  after[4] = _mm_getcsr();
  _quoiRngUniform(0, stream, n, i.data() + n, std::numeric_limits<int32_t>::min(),
                  std::numeric_limits<int32_t>::max());
  after[5] = _mm_getcsr();
  _quoiRngUniformBits(0, stream, n, u.data());
  after[6] = _mm_getcsr();
  _mm_setcsr(kDefault);
  EXPECT_EQ(errno, 4711);
  for (const uint32_t word : after) EXPECT_EQ(word & ~kInexact, csr & ~kInexact);

  std::vector<unsigned char> bytes;
  const auto append = [&](const auto& v) {
    const size_t before = bytes.size(), more = v.size() * sizeof v[0];
    bytes.resize(before + more);
    std::memcpy(bytes.data() + before, v.data(), more);
  };
  append(d), append(s), append(i), append(u);
  return bytes;
}

TEST(Environment, ChangesNoResultOnAnyLevel) {
  for (const int32_t id : {0x100000, 0x400000, 0x500000}) {
    SCOPED_TRACE(id);
    const uint32_t seed = 271828;
    const auto draw = [&](uint32_t csr) {
      StreamState* stream = nullptr;
      __quoNewStreamEx(&stream, id, 1, &seed);
      auto bytes = DrawAll(stream, csr);
      __quoDeleteStream(&stream);
      return bytes;
    };
    const auto want = draw(kDefault);
    levels::ForEach([&] {
      for (uint32_t rounding = 0; rounding < 4; ++rounding) {
        for (const uint32_t flush : kFlushBits) {
          EXPECT_EQ(draw(kDefault | rounding << 13 | flush), want) << rounding << ' ' << flush;
        }
      }
      EXPECT_EQ(draw(kDefault | kOverflow | kInvalid), want) << "flags that stood before stay";
    });
  }
}

// A user's generator runs in round-to-nearest too. Its flags and those of the kernels (comparison
// and conversion of NaN) do not get out, nor do they trap.
TEST(Environment, HidesWhatHappensOnTheWay) {
  scripted::Script script;
  script.values = {std::numeric_limits<double>::signaling_NaN(), 0.5, 1e300, -1e300};
  script.raise = kFlags & ~kInexact;
  levels::ForEach([&] {
    for (const uint32_t csr : {kDefault, kDefault & ~(kInvalid << 7), kDefault & ~kMasks,
                               kDefault | 0x6000u, kDefault | 0x8040u, kDefault | kOverflow}) {
      StreamState* stream = scripted::Start(script);
      DrawAll(stream, csr);
      for (const scripted::Call& call : scripted::script.calls) {
        EXPECT_EQ(call.mxcsr & ~kFlags, kDefault);
      }
      __quoDeleteStream(&stream);
    }
  });
}

}  // namespace
