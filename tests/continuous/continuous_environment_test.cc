// No trace of the vector functions inside: the caller's callback, mode, status, errno and flags are
// as before, and what the caller has set changes no result. Bernoulli and geometric included.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <vector>

#include "tests/continuous/distributions.h"
#include "tests/streams/scripted_generator.h"
#include "tests/support/control.h"
#include "tests/uniform/levels.h"

namespace {

using continuous::All;
using continuous::Distribution;
using continuous::Draw;

constexpr int32_t kCount = 600;
constexpr uint32_t kHiddenFlags = kMxcsrFlags & ~uint32_t{kInexact};

// Zeros, ones, negative and huge numbers, infinities and NaNs: all that the vector functions
// report.
scripted::Script SpecialUniforms() {
  scripted::Script s;
  const double infinity = std::numeric_limits<double>::infinity();
  s.values = {0,
              0.25,
              1,
              -0.5,
              1e-310,
              1e-42,
              0.75,
              1e300,
              -1e300,
              infinity,
              -infinity,
              -1e-3,
              0.5,
              0.99,
              5e-324,
              2,
              std::numeric_limits<double>::signaling_NaN()};
  return s;
}

void AppendBytes(std::vector<unsigned char>& bytes, const void* data, size_t size) {
  const auto* first = static_cast<const unsigned char*>(data);
  bytes.insert(bytes.end(), first, first + size);
}

// Calls draw(stream, r) for everything there is, r with room for kCount doubles.
template <class F>
void ForEveryDraw(F&& draw) {
  for (const Distribution& d : All()) {
    draw([&](StreamState* s, void* r) { Draw(d, 0, s, kCount, static_cast<double*>(r)); });
    draw([&](StreamState* s, void* r) { Draw(d, 0, s, kCount, static_cast<float*>(r)); });
  }
  for (const double p : {0.0, 1e-300, 1e-9, 0.3, 1.0, 2.0, -1.0, 1e300,
                         std::numeric_limits<double>::signaling_NaN()}) {
    draw([&](StreamState* s, void* r) {
      _quoiRngBernoulli(0, s, kCount, static_cast<int32_t*>(r), p);
    });
    draw([&](StreamState* s, void* r) {
      _quoiRngGeometric(0, s, kCount, static_cast<int32_t*>(r), p);
    });
  }
}

int callback_calls = 0;
int Callback(PexErrorContext* record) {
  ++callback_calls;
  record->res1 = record->res2 = 4711;
  return 0;
}

TEST(Environment, SeesNothingOfTheVectorFunctions) {
  const scripted::Script script = SpecialUniforms();
  std::vector<double> r(kCount);
  for (const uint32_t mode : {0x1A02u, 0x20E03u, 0x0101u, 0x1000u, 0x30F0Fu}) {
    for (const PexErrorCallBack callback :
         {PexErrorCallBack{Callback}, PexErrorCallBack{nullptr}}) {
      ForEveryDraw([&](auto draw) {
        StreamState* stream = scripted::Start(script);
        _pexSetErrorCallBack(callback);
        _pexSetMode(mode);
        const uint32_t mode_before = _pexGetMode();
        _pexSetErrStatus(77);
        errno = 4711;
        callback_calls = 0;
        {
          UseControl control(kDefaultControl);
          draw(stream, r.data());
          control.Finish();
          ASSERT_EQ(control.flags() & kHiddenFlags, 0u);
          ASSERT_TRUE(control.kept());
        }
        ASSERT_EQ(errno, 4711);
        ASSERT_EQ(callback_calls, 0);
        ASSERT_EQ(_pexGetErrStatus(), 77);
        ASSERT_EQ(_pexGetMode(), mode_before);
        ASSERT_EQ(_pexGetErrorCallBack(), callback);
        __quoDeleteStream(&stream);
      });
    }
  }
  _pexClearErrorCallBack();
  _pexSetMode(PEX_MODE_DEFAULT);
  _pexClearErrStatus();
}

// The same after a failure in any call of the generator.
TEST(Environment, IsRestoredAfterAFailure) {
  std::vector<double> r(kCount);
  ForEveryDraw([&](auto draw) {
    scripted::Script script = SpecialUniforms();
    script.failing_call = 0;
    StreamState* stream = scripted::Start(script);
    _pexSetErrorCallBack(Callback);
    _pexSetErrStatus(77);
    const uint32_t mode = _pexGetMode();
    draw(stream, r.data());
    ASSERT_EQ(_pexGetMode(), mode);
    ASSERT_EQ(_pexGetErrorCallBack(), Callback);
    ASSERT_EQ(_pexGetErrStatus(), 77);
    __quoDeleteStream(&stream);
  });
  _pexClearErrorCallBack();
  _pexClearErrStatus();
}

TEST(Environment, ChangesNoResult) {
  const auto everything = [](const Control& control, uint32_t standing_flags, bool scripted) {
    std::vector<unsigned char> bytes;
    std::vector<double> r(kCount);
    const uint32_t seed = 31415;
    ForEveryDraw([&](auto draw) {
      StreamState* stream = nullptr;
      if (scripted) {
        stream = scripted::Start(SpecialUniforms());
      } else {
        __quoNewStreamEx(&stream, QUO_BRNG_MCG31M1, 1, &seed);
      }
      UseControl use(control, standing_flags);
      draw(stream, r.data());
      use.Finish();
      EXPECT_TRUE(use.kept()) << control.name;
      EXPECT_EQ(use.flags() & kHiddenFlags, standing_flags) << control.name;
      AppendBytes(bytes, r.data(), r.size() * sizeof r[0]);
      __quoDeleteStream(&stream);
    });
    return bytes;
  };
  for (const bool scripted : {false, true}) {
    const auto want = everything(kDefaultControl, 0, scripted);
    levels::ForEach([&] {
      EXPECT_TRUE(everything(kDefaultControl, 0, scripted) == want);
      for (const Control& control : kControls) {
        EXPECT_TRUE(everything(control, 0, scripted) == want) << control.name;
      }
      EXPECT_TRUE(everything(kDefaultControl, kOverflow | kInvalid, scripted) == want);
    });
  }
}

}  // namespace
