// A normal distribution's call changes nothing of the thread's but inexact, and nothing of the
// thread's changes it.
#include <gtest/gtest.h>

#include <cerrno>
#include <limits>
#include <vector>

#include "tests/gaussian/gaussian_reference.h"
#include "tests/streams/scripted_generator.h"
#include "tests/support/control.h"
#include "tests/uniform/levels.h"

namespace {

using namespace reference;

int calls_of_user = 0;
int UserCallBack(PexErrorContext* record) {
  ++calls_of_user;
  record->res1 = 1e9;
  return 0;
}

// Zeros, poles, and everything that has a status code, amid ordinary uniforms.
scripted::Script Special() {
  scripted::Script script;
  script.values = {0,
                   0.25,
                   -1,
                   0.75,
                   -0.5,
                   std::numeric_limits<double>::quiet_NaN(),
                   1,
                   0.5,
                   2,
                   1e300,
                   std::numeric_limits<double>::infinity(),
                   0.1,
                   0.7};
  return script;
}

constexpr int32_t kN = 1500, kDimension = 5;

// All six entries and the multivariate ones, as bytes.
std::vector<unsigned char> DrawAll(StreamState* stream) {
  std::vector<double> d(3 * kN + 3 * kN * kDimension);
  std::vector<float> s(d.size());
  const double a[kDimension] = {1, -2, 3, 0, 1e-3};
  const float as[kDimension] = {1, -2, 3, 0, 1e-3f};
  std::vector<double> t(kDimension * kDimension, 0.3);
  std::vector<float> ts(kDimension * kDimension, 0.3f);
  double* pd = d.data();
  float* ps = s.data();
  for (uint32_t method = 0; method < 3; ++method, pd += kN, ps += kN) {
    _quodRngGaussian(method, stream, kN, pd, 0.1, 1.7);
    _quosRngGaussian(method, stream, kN, ps, 0.1f, 1.7f);
  }
  for (int32_t storage = 0; storage < 3; ++storage) {
    _quodRngGaussianMV(1, stream, kN, pd, kDimension, storage, a, t.data());
    _quosRngGaussianMV(2, stream, kN, ps, kDimension, storage, as, ts.data());
    pd += kN * kDimension;
    ps += kN * kDimension;
  }
  auto bytes = Bytes(d);
  const auto more = Bytes(s);
  bytes.insert(bytes.end(), more.begin(), more.end());
  return bytes;
}

std::vector<unsigned char> DrawAll(bool special) {
  StreamState* stream = special ? scripted::Start(Special()) : NewStream(QUO_BRNG_MCG59, 314);
  auto bytes = DrawAll(stream);
  __quoDeleteStream(&stream);
  return bytes;
}

class GaussianEnvironment : public testing::TestWithParam<bool> {};

TEST_P(GaussianEnvironment, LeavesModeCallbackStatusAndErrno) {
  const auto want = DrawAll(GetParam());
  const struct {
    uint32_t mode;
    PexErrorCallBack callback;
  } states[] = {{PEX_MODE_DEFAULT, nullptr},
                {PEX_MODE_DEFAULT, UserCallBack},
                {0x20F03, UserCallBack},
                {PEX_ERRMODE_IGNORE, nullptr},
                {PEX_ERRMODE_ERRNO | 0x10000, nullptr},
                {PEX_ERRMODE_CALLBACK, UserCallBack}};
  levels::ForEach([&] {
    for (const auto& state : states) {
      _pexSetErrorCallBack(state.callback);
      _pexSetMode(state.mode);
      const uint32_t mode = _pexGetMode();
      _pexSetErrStatus(42);
      errno = 4711;
      calls_of_user = 0;
      EXPECT_EQ(DrawAll(GetParam()), want);
      EXPECT_EQ(errno, 4711);
      EXPECT_EQ(_pexGetErrStatus(), 42);
      EXPECT_EQ(_pexGetMode(), mode);
      EXPECT_EQ(_pexGetErrorCallBack(), state.callback);
      EXPECT_EQ(calls_of_user, 0);
    }
  });
  _pexSetErrorCallBack(nullptr);
  _pexSetMode(PEX_MODE_DEFAULT | 0x10000);
  _pexClearErrStatus();
}

TEST_P(GaussianEnvironment, ControlWordsChangeNothingAndAreKept) {
  const auto want = DrawAll(GetParam());
  levels::ForEach([&] {
    for (const Control& control : kControls) {
      SCOPED_TRACE(control.name);
      for (const uint32_t standing : {0u, static_cast<uint32_t>(kInvalid | kOverflow)}) {
        StreamState* stream =
            GetParam() ? scripted::Start(Special()) : NewStream(QUO_BRNG_MCG59, 314);
        // A flag that stands and is unmasked would trap at once.
        const uint32_t flags = (control.mxcsr & kMxcsrDefault) == kMxcsrDefault ? standing : 0;
        UseControl scope(control, flags);
        const auto got = DrawAll(stream);
        scope.Finish();
        EXPECT_TRUE(scope.kept());
        EXPECT_EQ(scope.flags() & ~kInexact, flags);
        EXPECT_EQ(scope.x87_flags(), 0u);
        EXPECT_EQ(got, want);
        __quoDeleteStream(&stream);
      }
    }
  });
}

INSTANTIATE_TEST_SUITE_P(, GaussianEnvironment, testing::Bool(),
                         [](const auto& info) { return info.param ? "special" : "ordinary"; });

}  // namespace
