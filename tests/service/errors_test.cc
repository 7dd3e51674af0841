// The error routines in every mode, held against a model written down apart from them.
#include <cerrno>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <immintrin.h>
#include <unistd.h>

#include "pexquo/kro.h"
#include "tests/service/fixture.h"

namespace {

constexpr int kUntouched = 4711;  // an errno that no code maps to
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kFlags = FE_ALL_EXCEPT & ~FE_INEXACT;

int Report(int32_t code, int32_t index, const double* a1, const double* a2, double* r1, double* r2,
           const char* name) {
  return _pexdError(code, index, a1, a2, r1, r2, name);
}
int Report(int32_t code, int32_t index, const float* a1, const float* a2, float* r1, float* r2,
           const char* name) {
  return _pexsError(code, index, a1, a2, r1, r2, name);
}

struct Seen {
  int calls = 0;
  PexErrorContext record;
};
Seen seen;
int answer = 0;  // what the callback returns

int Look(PexErrorContext* record) {
  ++seen.calls;
  seen.record = *record;
  return answer;
}

int LookAndReplace(PexErrorContext* record) {
  ++seen.calls;
  seen.record = *record;
  record->res1 = 5;
  record->res2 = 6;
  return answer;
}

int ErrnoOf(int32_t code) {
  switch (code) {
    case 0:
      return 0;
    case 1:
      return EDOM;
    case 2:
    case 3:
    case 4:
      return ERANGE;
    case -1:
      return EINVAL;
    case -2:
      return EACCES;
    default:
      return EFAULT;
  }
}

// Overflow is announced by no flag: its operand squared is a quiet NaN.
int FlagsOf(int32_t code) {
  return code == 1 ? FE_INVALID : code == 2 ? FE_DIVBYZERO : code == 4 ? FE_UNDERFLOW : 0;
}

class Errors : public CleanThread {
 protected:
  void SetUp() override {
    CleanThread::SetUp();
    seen = {};
    answer = 0;
    errno = kUntouched;
    std::feclearexcept(FE_ALL_EXCEPT);
  }
};

template <typename T>
class ErrorRoutine : public Errors {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(ErrorRoutine, Types);

enum class Handler { None, Keeps, Replaces, DealsWith };

// Every error mode (all eight bits' relevant combinations), every code, every kind of callback.
TYPED_TEST(ErrorRoutine, FollowsTheModel) {
  using T = TypeParam;
  std::vector<uint32_t> modes = {0x2000, 0x4200, 0x8800};  // the other bits of 0xF000 count too
  for (uint32_t m = 1; m < 32; ++m) modes.push_back(m << 8);
  for (const uint32_t mode : modes) {
    for (const int32_t code : {0, 1, 2, 3, 4, -1, -2, 5, 1000, -3}) {
      for (const Handler handler :
           {Handler::None, Handler::Keeps, Handler::Replaces, Handler::DealsWith}) {
        SCOPED_TRACE(testing::Message() << "mode " << std::hex << mode << std::dec << " code "
                                        << code << " handler " << static_cast<int>(handler));
        answer = handler == Handler::DealsWith ? 17 : 0;
        _pexSetErrorCallBack(handler == Handler::None    ? nullptr
                             : handler == Handler::Keeps ? Look
                                                         : LookAndReplace);
        _pexSetMode(mode);
        _pexSetErrStatus(99);
        seen = {};
        const T a[3] = {1, 2, 3};
        T r[3] = {10, 20, 30};

        testing::internal::CaptureStderr();
        std::feclearexcept(FE_ALL_EXCEPT);
        errno = kUntouched;
        const int returned = Report(code, 1, a, a, r, r, "vdTest");
        const int error = errno;
        const int flags = std::fetestexcept(FE_ALL_EXCEPT);
        const std::string printed = testing::internal::GetCapturedStderr();

        const bool carries = code != -1 && code != -2;
        const bool ignored = mode == 0x100;
        const bool called = !ignored && (mode & 0xF000) && handler != Handler::None;
        const bool done = ignored || (called && answer != 0);
        EXPECT_EQ(_pexGetErrStatus(), code);
        EXPECT_EQ(seen.calls, called ? 1 : 0);
        EXPECT_EQ(error, !done && (mode & 0x200) ? ErrnoOf(code) : kUntouched);
        EXPECT_EQ(flags & kFlags, !done && (mode & 0x800) ? FlagsOf(code) : 0);
        if (flags & FE_INEXACT) {
          EXPECT_TRUE(flags & FE_UNDERFLOW);
        }
        EXPECT_EQ(printed.empty(), done || !(mode & 0x400) || code == 0) << printed;
        const bool replaced = called && !done && carries && handler == Handler::Replaces;
        EXPECT_EQ(r[1], replaced ? T(5) : T(20));
        EXPECT_TRUE(r[0] == 10 && r[2] == 30);
        if (ignored) {
          EXPECT_EQ(returned, 0x100);
        } else if (done) {
          EXPECT_EQ(returned, 17);
        }
      }
    }
  }
}

TYPED_TEST(ErrorRoutine, TheRecordShowsTheElement) {
  using T = TypeParam;
  const T a[2] = {0, T(0.1)}, b[2] = {0, -7};
  T r1[2] = {0, 3}, r2[2] = {0, 4};
  _pexSetErrorCallBack(Look);
  Report(3, 1, a, b, r1, r2, "vdTwo");
  EXPECT_EQ(seen.record.code, 3);
  EXPECT_EQ(seen.record.index, 1);
  EXPECT_EQ(seen.record.arg1, static_cast<double>(T(0.1)));
  EXPECT_EQ(seen.record.arg2, -7);
  EXPECT_EQ(seen.record.res1, 3);
  EXPECT_EQ(seen.record.res2, 4);
  EXPECT_STREQ(seen.record.func_name, "vdTwo");
  EXPECT_EQ(seen.record.func_name_len, 5);
}

TYPED_TEST(ErrorRoutine, ResultsAreWrittenBackFirstOneLast) {
  using T = TypeParam;
  const T a[1] = {1};
  T same[1] = {2}, r1[1] = {3}, r2[1] = {4};
  _pexSetErrorCallBack(LookAndReplace);
  Report(1, 0, a, a, same, same, "vdTest");
  EXPECT_EQ(same[0], T(5));
  Report(1, 0, a, a, r1, r2, "vdTest");
  EXPECT_EQ(r1[0], T(5));
  EXPECT_EQ(r2[0], T(6));
}

// What the callback does to the mode holds for the rest of the same report.
TYPED_TEST(ErrorRoutine, TheModeIsReadAgainAfterTheCallback) {
  using T = TypeParam;
  const T a[1] = {1};
  T r[1] = {2};
  _pexSetErrorCallBack([](PexErrorContext* record) {
    _pexSetMode(PEX_ERRMODE_CALLBACK);
    record->res1 = 8;
    return 0;
  });
  _pexSetMode(PEX_ERRMODE_CALLBACK | PEX_ERRMODE_ERRNO);
  errno = kUntouched;
  Report(1, 0, a, a, r, r, "vdTest");
  EXPECT_EQ(errno, kUntouched);
  EXPECT_EQ(r[0], T(8));
}

// Codes without an element never look into the arrays.
TYPED_TEST(ErrorRoutine, SizeAndMemoryErrorsTouchNoArray) {
  const TypeParam* none = nullptr;
  TypeParam* nowhere = nullptr;
  _pexSetErrorCallBack(LookAndReplace);
  for (const int32_t code : {-1, -2}) {
    errno = kUntouched;
    Report(code, 3, none, none, nowhere, nowhere, "vdTest");
    EXPECT_EQ(errno, ErrnoOf(code));
    EXPECT_EQ(seen.record.code, code);
    EXPECT_EQ(seen.record.index, 3);
  }
}

TYPED_TEST(ErrorRoutine, NamesKeepUpTo64Characters) {
  const TypeParam a[1] = {1};
  TypeParam r[1] = {1};
  _pexSetErrorCallBack(Look);
  for (const size_t length : {0, 1, 63, 64, 65, 200}) {
    std::string name;
    for (size_t i = 0; i < length; ++i) name += static_cast<char>('a' + i % 26);
    const size_t kept = std::min<size_t>(length, 64);
    _pexSetMode(PEX_ERRMODE_CALLBACK | PEX_ERRMODE_STDERR);
    testing::internal::CaptureStderr();
    Report(2, 0, a, a, r, r, name.c_str());
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(seen.record.func_name_len, static_cast<int32_t>(kept));
    EXPECT_EQ(std::memcmp(seen.record.func_name, name.data(), kept), 0);
    if (kept < 64) {
      EXPECT_EQ(seen.record.func_name[kept], '\0');
    }
    EXPECT_EQ(printed.substr(0, printed.find('\n')),
              "pexquo: " + name.substr(0, 64) + ": singularity");
  }
}

TYPED_TEST(ErrorRoutine, TheInputVectorBaseMovesTheIndex) {
  using T = TypeParam;
  std::vector<T> whole(1000, T(0)), r(1000, T(0));
  _pexSetErrorCallBack(Look);
  const char* const start = reinterpret_cast<const char*>(whole.data());
  static constexpr struct {
    int base_bytes_in_elements, extra_bytes, chunk, index, reported;
  } kCases[] = {
      {0, 0, 600, 7, 607},  {0, 0, 0, 7, 7},
      {10, 0, 600, 7, 597}, {8, 0, 5, 0, -3},  // the base may lie behind the chunk
      {0, 1, 0, 4, 3},                         // a byte difference of -1 shifts to -1
      {0, 1, 2, 0, 1},
  };
  for (const auto& c : kCases) {
    _pexSetInterfInputVectorPointer(start + c.base_bytes_in_elements * sizeof(T) + c.extra_bytes);
    whole[c.chunk + c.index] = T(42);
    Report(1, c.index, &whole[c.chunk], &whole[c.chunk], &r[c.chunk], &r[c.chunk], "vdTest");
    EXPECT_EQ(seen.record.index, c.reported);
    EXPECT_EQ(seen.record.arg1, 42) << "the element is read with the index as passed";
    whole[c.chunk + c.index] = T(0);
  }
  _pexSetInterfInputVectorPointer(nullptr);
  Report(1, 7, &whole[600], &whole[600], &r[600], &r[600], "vdTest");
  EXPECT_EQ(seen.record.index, 7);
}

TEST_F(Errors, FloatResultsAreNarrowedOnTheWayBack) {
  const float a[1] = {1};
  float r[1] = {2};
  _pexSetErrorCallBack([](PexErrorContext* record) {
    record->res1 = 0.1;
    return 0;
  });
  _pexsError(1, 0, a, a, r, r, "vsTest");
  EXPECT_EQ(r[0], 0.1f);
}

// Round upward, flush to zero, denormals are zero, while it lives.
class OddControl {
 public:
  OddControl() { _mm_setcsr(saved_ | 0xC040); }
  ~OddControl() { _mm_setcsr((saved_ & ~0x3Fu) | (_mm_getcsr() & 0x3F)); }

 private:
  const uint32_t saved_ = _mm_getcsr();
};

// Subnormal floats are not lost on their way to the record and back, and a replaced result is
// rounded to nearest.
TEST_F(Errors, TheCallersControlBitsDoNotReachTheValues) {
  const float a[1] = {1e-40f};
  float r[1] = {1e-41f};
  _pexSetErrorCallBack(Look);
  {
    const OddControl odd;
    _pexsError(4, 0, a, a, r, r, "vsTest");
    EXPECT_EQ(_mm_getcsr() & 0xE040, 0xC040);
  }
  EXPECT_EQ(seen.record.arg1, 1e-40f);
  EXPECT_EQ(seen.record.res1, 1e-41f);
  EXPECT_EQ(r[0], 1e-41f);
  _pexSetErrorCallBack([](PexErrorContext* record) {
    record->res1 = 0.7;  // 0.7f is below 0.7
    return 0;
  });
  {
    const OddControl odd;
    _pexsError(4, 0, a, a, r, r, "vsTest");
  }
  EXPECT_EQ(r[0], 0.7f);
}

// The mode that the callback leaves is the one that counts.
TEST_F(Errors, TheModeThatACallbackSetsHoldsForItsOwnElement) {
  struct Case {
    uint32_t before, after;
    int error;
  };
  static uint32_t left;
  _pexSetErrorCallBack([](PexErrorContext*) {
    _pexSetMode(left);
    return 0;
  });
  constexpr uint32_t kErrno = PEX_ERRMODE_CALLBACK | PEX_ERRMODE_ERRNO;
  for (const Case& c :
       {Case{PEX_ERRMODE_CALLBACK, kErrno, EDOM}, Case{kErrno, PEX_ERRMODE_CALLBACK, kUntouched}}) {
    const double a[1] = {-1};
    double r[1] = {kNaN};
    left = c.after;
    _pexSetMode(c.before);
    errno = kUntouched;
    const int mode = _pexdError(1, 0, a, a, r, r, "vdTest");
    EXPECT_EQ(mode, static_cast<int>(_pexGetMode()));
    EXPECT_EQ(errno, c.error);
  }
}

// Flags are raised without a trap where the caller has unmasked the exceptions.
TEST_F(Errors, RaisesFlagsUnderUnmaskedExceptions) {
  const double a[1] = {1};
  double r[1] = {1};
  _pexSetMode(PEX_ERRMODE_EXCEPT);
  constexpr uint32_t kRaised[] = {0, 1, 4, 0, 0x10};  // invalid, zero divide, underflow
  for (const int code : {1, 2, 3, 4}) {
    const uint32_t saved = _mm_getcsr();
    _mm_setcsr(0);
    _pexdError(code, 0, a, a, r, r, "vdTest");
    const uint32_t word = _mm_getcsr();
    _mm_setcsr(saved);
    EXPECT_EQ(word & ~0x22u, kRaised[code]) << code;
  }
}

// A second argument that is subnormal is not 0.
TEST_F(Errors, TheCallersFlushBitsDoNotReachTheLines) {
  PexErrorContext record = {};
  record.code = 2;
  record.arg1 = 0.3;
  record.arg2 = std::numeric_limits<double>::denorm_min();
  record.res1 = record.res2 = 3;
  std::strcpy(record.func_name, "vdTest");
  _pexSetMode(PEX_ERRMODE_STDERR);
  testing::internal::CaptureStderr();
  {
    const OddControl odd;
    _pexStdErrorHandler(&record);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "pexquo: vdTest: singularity\n  first argument [0] = 0.29999999999999999\n"
            "  second argument [0] = 4.9406564584124654e-324\n  result [0] = 3\n");
}

// The elements after one whose callback changes the rounding mode keep their bits, and the caller
// keeps its mode.
TEST_F(Errors, TheControlBitsThatACallbackChangesEndWithIt) {
  std::vector<double> a(200), expected(a.size()), r(a.size());
  for (size_t i = 0; i < a.size(); ++i) a[i] = 0.3 + 0.017 * static_cast<double>(i);
  a[3] = 0;
  a[70] = -1;
  const auto n = static_cast<int32_t>(a.size());
  _pexSetErrorCallBack(Look);
  _pexdLn_HA(n, a.data(), expected.data());
  const auto change = [](PexErrorContext*) {
    std::fesetround(FE_UPWARD);
    _mm_setcsr(_mm_getcsr() | 0x8040);
    std::feraiseexcept(FE_UNDERFLOW);
    return 0;
  };
  _pexSetErrorCallBack(change);
  for (const int rounding : {FE_TONEAREST, FE_TOWARDZERO}) {
    std::fesetround(rounding);
    std::feclearexcept(FE_ALL_EXCEPT);
    const uint32_t before = _mm_getcsr() & ~0x3Fu;
    _pexdLn_HA(n, a.data(), r.data());
    const uint32_t after = _mm_getcsr() & ~0x3Fu;
    const int x87 = std::fegetround();
    const bool raised = std::fetestexcept(FE_UNDERFLOW) != 0;
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(after, before);
    EXPECT_EQ(x87, rounding);
    EXPECT_TRUE(raised);
    EXPECT_EQ(std::memcmp(r.data(), expected.data(), r.size() * sizeof(double)), 0);
  }
}

// An exception ends the call at the element; the caller has its control word back, and the thread
// its status, mode and callback.
TEST_F(Errors, AnExceptionOfTheCallbackEndsTheCall) {
  std::vector<double> a(100, 2.0), r(a.size());
  a[70] = -1;
  a[90] = 0;
  const auto n = static_cast<int32_t>(a.size());
  const auto give_up = [](PexErrorContext* record) -> int {
    std::fesetround(FE_UPWARD);
    throw record->index;
  };
  _pexSetErrorCallBack(give_up);
  const auto call = [&](uint32_t word, auto entry) {
    const uint32_t saved = _mm_getcsr();
    int caught = -1;
    _mm_setcsr(word);
    try {
      entry();
    } catch (int32_t index) {
      caught = index;
    }
    const uint32_t after = _mm_getcsr() & ~0x3Fu;
    const int x87 = std::fegetround();
    _mm_setcsr(saved);
    EXPECT_EQ(after, word);
    EXPECT_EQ(x87, FE_TONEAREST);
    return caught;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  for (const uint32_t word : {0x1F80u, 0x7F80u, 0x9FC0u}) {
    EXPECT_EQ(call(word, [&] { _pexdLn_50(n, a.data(), r.data()); }), 70);
    EXPECT_EQ(_pexGetErrStatus(), PEX_STATUS_DOMAIN);
    EXPECT_EQ(call(word, [&] { _pexdSin_SC_LA(0, &infinity, r.data(), nullptr); }), 0);
    EXPECT_EQ(call(word, [&] { Report(2, 90, a.data(), a.data(), r.data(), r.data(), "x"); }), 90);
    EXPECT_EQ(_pexGetErrStatus(), PEX_STATUS_SINGULARITY);
    EXPECT_EQ(_pexGetMode(), PEX_MODE_DEFAULT);
    EXPECT_EQ(_pexGetErrorCallBack(), static_cast<PexErrorCallBack>(give_up));
  }
}

TEST_F(Errors, HeadlinesNameTheReason) {
  static const struct {
    int32_t code;
    std::string text;
    bool values;
  } kCases[] = {
      {-1, "pexquo: vdTest: bad array length (parameter 3)\n", false},
      {-2, "pexquo: vdTest: an array is missing (null pointer)\n", false},
      {0, "", false},
      {1, "pexquo: vdTest: argument outside the function's domain\n", true},
      {2, "pexquo: vdTest: singularity\n", true},
      {3, "pexquo: vdTest: overflow\n", true},
      {4, "pexquo: vdTest: underflow\n", true},
      {77, "pexquo: vdTest: unknown error\n", true},
  };
  _pexSetMode(PEX_ERRMODE_STDERR);
  const double a[4] = {0, 0, 0, -1.5};
  double r[4] = {0, 0, 0, 2};
  for (const auto& c : kCases) {
    testing::internal::CaptureStderr();
    _pexdError(c.code, 3, a, a, r, r, "vdTest");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              c.text + (c.values ? "  argument [3] = -1.5\n  result [3] = 2\n" : ""));
  }
}

// The shape follows from the values alone: a second value that equals the first, or is 0, is not
// shown.
TEST_F(Errors, ValueLinesHaveFourShapes) {
  const std::string one_one = "  argument [0] = 1\n  result [0] = 3\n";
  const std::string one_two =
      "  argument [0] = 1\n  first result [0] = 3\n  second result [0] = 4\n";
  const std::string two_one =
      "  first argument [0] = 1\n  second argument [0] = 2\n  result [0] = 3\n";
  const std::string two_two =
      "  first argument [0] = 1\n  second argument [0] = 2\n"
      "  first result [0] = 3\n  second result [0] = 4\n";
  const std::string nan_arguments =
      "  first argument [0] = nan\n  second argument [0] = nan\n  result [0] = 3\n";
  const struct {
    double a1, a2, r1, r2;
    std::string lines;
  } kCases[] = {
      {1, 1, 3, 3, one_one},
      {1, 0, 3, 0, one_one},
      {1, -0.0, 3, 3, one_one},
      {1, 1, 3, 4, one_two},
      {1, 0, 3, 4, one_two},
      {1, 2, 3, 3, two_one},
      {1, 2, 3, -0.0, two_one},
      {1, 2, 3, 4, two_two},
      {kNaN, kNaN, 3, 3, nan_arguments},  // a NaN equals nothing
  };
  _pexSetMode(PEX_ERRMODE_STDERR);
  for (const auto& c : kCases) {
    double r1 = c.r1, r2 = c.r2;
    testing::internal::CaptureStderr();
    _pexdError(2, 0, &c.a1, &c.a2, &r1, &r2, "vdTest");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "pexquo: vdTest: singularity\n" + c.lines);
  }
}

// A message that cannot be printed is lost, and that is all: errno belongs to the errno mode.
TEST_F(Errors, AClosedStandardErrorLeavesErrnoAlone) {
  const double a[1] = {1};
  double r[1] = {2};
  const int kept = dup(STDERR_FILENO);
  close(STDERR_FILENO);
  _pexSetMode(PEX_ERRMODE_STDERR);
  errno = kUntouched;
  _pexdError(1, 0, a, a, r, r, "vdTest");
  const int alone = errno;
  _pexSetMode(PEX_ERRMODE_STDERR | PEX_ERRMODE_ERRNO);
  _pexdError(1, 0, a, a, r, r, "vdTest");
  const int with_errno = errno;
  dup2(kept, STDERR_FILENO);
  close(kept);
  EXPECT_EQ(alone, kUntouched);
  EXPECT_EQ(with_errno, EDOM);
}

TEST_F(Errors, TheStandardHandlerWorksOnItsOwn) {
  PexErrorContext record = {};
  record.code = 2;
  record.index = 5;
  record.arg1 = record.arg2 = 1;
  record.res1 = record.res2 = 2;
  std::strcpy(record.func_name, "vsOwn");
  record.func_name_len = 5;
  _pexSetErrorCallBack(Look);
  _pexSetMode(PEX_ERRMODE_ERRNO | PEX_ERRMODE_STDERR | PEX_ERRMODE_EXCEPT | PEX_ERRMODE_CALLBACK);
  testing::internal::CaptureStderr();
  _pexStdErrorHandler(&record);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "pexquo: vsOwn: singularity\n  argument [5] = 1\n  result [5] = 2\n");
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(std::fetestexcept(kFlags), FE_DIVBYZERO);
  EXPECT_EQ(seen.calls, 0);
  EXPECT_EQ(_pexGetErrStatus(), 0);
}

TEST(Strings, AreMeasuredAndJoined) {
  for (const auto& [first, second] : {std::pair{"", ""}, {"v", ""}, {"", "dExp"}, {"vd", "Exp"}}) {
    char joined[16];
    std::memset(joined, '#', sizeof(joined));
    const std::string expected = std::string(first) + second;
    EXPECT_EQ(kro_pex_service_strcat1(first, second, joined), static_cast<int>(expected.size()));
    EXPECT_STREQ(joined, expected.c_str());
    EXPECT_EQ(joined[expected.size() + 1], '#');
    EXPECT_EQ(kro_pex_service_strlen1(joined), static_cast<int>(expected.size()));
  }
}

}  // namespace
