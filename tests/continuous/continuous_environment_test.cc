// No trace of the vector functions inside: the caller's callback, mode, status, errno and flags are
// as before, and what the caller has set changes no result. Bernoulli and geometric included.
// Cauchy and lognormal alone report, the special elements of their last function.
#include <gtest/gtest.h>

#include <cerrno>
#include <limits>
#include <string>
#include <vector>

#include "tests/continuous/distributions.h"
#include "tests/streams/scripted_generator.h"
#include "tests/support/control.h"
#include "tests/uniform/levels.h"

namespace {

using continuous::All;
using continuous::Distribution;
using continuous::Draw;
using continuous::Name;

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

bool Reports(const Distribution& d) {
  return d.name == Name::kCauchy || d.name == Name::kLognormal;
}

// Calls draw(reports, call) for everything there is: call(stream, r) draws, r with room for kCount
// doubles; the thread may hear of special elements if `reports`.
template <class F>
void ForEveryDraw(F&& draw) {
  for (const Distribution& d : All()) {
    const bool reports = Reports(d);
    draw(reports, [&](StreamState* s, void* r) { Draw(d, 0, s, kCount, static_cast<double*>(r)); });
    draw(reports, [&](StreamState* s, void* r) { Draw(d, 0, s, kCount, static_cast<float*>(r)); });
  }
  for (const double p : {0.0, 1e-300, 1e-9, 0.3, 1.0, 2.0, -1.0, 1e300,
                         std::numeric_limits<double>::signaling_NaN()}) {
    draw(false, [&](StreamState* s, void* r) {
      _quoiRngBernoulli(0, s, kCount, static_cast<int32_t*>(r), p);
    });
    draw(false, [&](StreamState* s, void* r) {
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
      ForEveryDraw([&](bool reports, auto draw) {
        if (reports) return;
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
  ForEveryDraw([&](bool, auto draw) {
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
    ForEveryDraw([&](bool reports, auto draw) {
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
      if (!reports) {
        EXPECT_EQ(use.flags() & kHiddenFlags, standing_flags) << control.name;
      }
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

// ---- Cauchy and lognormal. ----

struct Report {
  std::string name;
  int32_t code, index;
  bool operator==(const Report&) const = default;
};
std::vector<Report> heard;
double replacement;
int Record(PexErrorContext* record) {
  heard.push_back(
      {{record->func_name, size_t(record->func_name_len)}, record->code, record->index});
  record->res1 = record->res2 = replacement;
  return 1;
}
int RecordAndReplace(PexErrorContext* record) {
  Record(record);
  return 0;
}

// n normal numbers far above or below 0 reach the exponential of lognormal: each is reported by its
// place, as the caller has set, and the callback may replace it.
template <typename T>
void ExpectReportsOfLognormal(const char* name) {
  constexpr int32_t n = 2500;  // of blocks of any length
  constexpr T kB = 2, kBeta = 3;
  std::vector<T> r(n);
  const uint32_t seed = 1;
  StreamState* stream = nullptr;
  ASSERT_EQ(__quoNewStreamEx(&stream, QUO_BRNG_MT19937, 1, &seed), 0);
  for (const bool overflow : {true, false}) {
    const int32_t code = overflow ? PEX_STATUS_OVERFLOW : PEX_STATUS_UNDERFLOW;
    const Distribution d{Name::kLognormal, kB, kBeta, overflow ? 1e4 : -1e4, 1};
    std::vector<Report> want;
    for (int32_t i = 0; i < n; ++i) want.push_back({name, code, i});

    for (const PexErrorCallBack callback : {Record, RecordAndReplace}) {
      heard.clear();
      replacement = 5;
      _pexSetMode(PEX_MODE_DEFAULT);
      _pexSetErrorCallBack(callback);
      _pexClearErrStatus();
      const uint32_t mode = _pexGetMode();
      errno = 4711;
      ASSERT_EQ(Draw(d, 0, stream, n, r.data()), 0);
      EXPECT_EQ(heard, want);
      EXPECT_EQ(_pexGetErrStatus(), code);
      EXPECT_EQ(_pexGetMode(), mode);
      EXPECT_EQ(_pexGetErrorCallBack(), callback);
      const bool replaced = callback == RecordAndReplace;  // Record has dealt with the element
      EXPECT_EQ(errno, replaced ? ERANGE : 4711);
      const T x = replaced ? T(5) : overflow ? std::numeric_limits<T>::infinity() : T(0);
      EXPECT_EQ(r, std::vector<T>(n, x * kBeta + kB));
    }
  }
  __quoDeleteStream(&stream);
  _pexClearErrorCallBack();
  _pexSetMode(PEX_MODE_DEFAULT);
  _pexClearErrStatus();
}

TEST(Reports, OfTheExponentialOfLognormal) {
  ExpectReportsOfLognormal<double>("vdExp");
  ExpectReportsOfLognormal<float>("vsExp");
}

// A uniform of 0 is special to the normal numbers, not to the exponential.
TEST(Reports, NothingOfTheNormalNumbersOfLognormal) {
  scripted::Script script;
  script.values = {0, 0.25, 0, 0.75};
  std::vector<double> r(kCount);
  _pexSetErrorCallBack(Callback);
  _pexClearErrStatus();
  callback_calls = 0;
  for (const bool single : {false, true}) {
    StreamState* stream = scripted::Start(script);
    const Distribution d{Name::kLognormal};
    if (single) {
      Draw(d, 0, stream, kCount, reinterpret_cast<float*>(r.data()));
    } else {
      Draw(d, 0, stream, kCount, r.data());
    }
    EXPECT_EQ(callback_calls, 0);
    EXPECT_EQ(_pexGetErrStatus(), 0);
    __quoDeleteStream(&stream);
  }
  _pexClearErrorCallBack();
  _pexSetMode(PEX_MODE_DEFAULT);
}

TEST(Reports, TheTangentOfAnInfinityByCauchy) {
  scripted::Script script;
  script.values = {0, 1, std::numeric_limits<double>::infinity(), -1.5};
  _pexSetErrorCallBack(RecordAndReplace);
  replacement = 5;
  {
    heard.clear();
    StreamState* stream = scripted::Start(script);
    std::vector<double> r(4);
    ASSERT_EQ(_quodRngCauchy(0, stream, 4, r.data(), 2, 3), 0);
    EXPECT_EQ(heard, (std::vector<Report>{{"vdTan", PEX_STATUS_DOMAIN, 2}}));
    EXPECT_EQ(r[2], 17);
    __quoDeleteStream(&stream);
  }
  {
    heard.clear();
    StreamState* stream = scripted::Start(script);
    std::vector<float> r(4);
    ASSERT_EQ(_quosRngCauchy(0, stream, 4, r.data(), 2, 3), 0);
    EXPECT_EQ(heard, (std::vector<Report>{{"vsTan", PEX_STATUS_DOMAIN, 2}}));
    EXPECT_EQ(r[2], 17);
    __quoDeleteStream(&stream);
  }
  _pexClearErrorCallBack();
  _pexSetMode(PEX_MODE_DEFAULT);
  _pexClearErrStatus();
}

}  // namespace
