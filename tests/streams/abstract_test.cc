// Abstract streams: the refill contract against a plain model, failures that leave the position
// alone, the bits of the mapping, and everything that draws.
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "tests/streams/streams.h"
#include "tests/support/samplers.h"
#include "tests/uniform/levels.h"

namespace {

using namespace streams;

struct Call {
  int32_t n, nmin, nmax, pos;
  bool operator==(const Call&) const = default;
};
void PrintTo(const Call& c, std::ostream* out) {
  *out << "{" << c.n << " " << c.nmin << " " << c.nmax << " " << c.pos << "}";
}

// What the refill function does, and what it saw. Number i that it writes is i.
struct Script {
  std::vector<int32_t> counts;  // returned one after the other, then *nmax
  int32_t written = 0;
  std::vector<Call> calls;
  const void* stream = nullptr;
  uint32_t mxcsr = 0;
} script;

template <typename T>
int32_t Refill(StreamState* stream, int32_t* n, T* buffer, int32_t* nmin, int32_t* nmax,
               int32_t* pos) {
  const size_t call = script.calls.size();
  script.calls.push_back({*n, *nmin, *nmax, *pos});
  script.stream = stream;
  script.mxcsr = _mm_getcsr();
  const int32_t count = call < script.counts.size() ? script.counts[call] : *nmax;
  for (int32_t i = 0; i < count && i < *nmax; ++i) {
    const auto number = static_cast<T>(script.written++);
    std::memcpy(buffer + (*pos + i) % *n, &number, sizeof(T));
  }
  *n = *nmin = *nmax = *pos = -77;
  return count;
}

template <typename T>
struct Kind;
template <>
struct Kind<uint32_t> {
  static constexpr int32_t kId = QUO_BRNG_IABSTRACT;
  static int32_t New(StreamState** s, int32_t n, uint32_t* buffer, RefillI f = Refill<uint32_t>) {
    return __quoiNewAbstractStream(s, n, buffer, f);
  }
  static int32_t Draw(StreamState* s, int32_t n, uint32_t* r) {
    return __quoiBRngiAbstract(s, n, r);
  }
};
template <>
struct Kind<double> {
  static constexpr int32_t kId = QUO_BRNG_DABSTRACT;
  static int32_t New(StreamState** s, int32_t n, double* buffer, RefillD f = Refill<double>) {
    return __quodNewAbstractStream(s, n, buffer, 0, 1, f);
  }
  static int32_t Draw(StreamState* s, int32_t n, double* r) {
    return __quodBRngdAbstract(s, n, r, 0, 1);
  }
};
template <>
struct Kind<float> {
  static constexpr int32_t kId = QUO_BRNG_SABSTRACT;
  static int32_t New(StreamState** s, int32_t n, float* buffer, RefillS f = Refill<float>) {
    return __quosNewAbstractStream(s, n, buffer, 0, 1, f);
  }
  static int32_t Draw(StreamState* s, int32_t n, float* r) {
    return __quosBRngsAbstract(s, n, r, 0, 1);
  }
};

// n, idx and free, the first three words of every kind.
std::vector<int32_t> Position(const StreamState* stream) {
  std::vector<int32_t> words(3);
  std::memcpy(words.data(), stream + 1, 12);
  return words;
}

template <typename T>
class Abstract : public testing::Test {};
using Types = testing::Types<uint32_t, double, float>;
TYPED_TEST_SUITE(Abstract, Types);

TYPED_TEST(Abstract, StartsEmptyAndRefillsAtOnce) {
  script = {};
  TypeParam buffer[8], r[20];
  Owned stream;
  ASSERT_EQ(Kind<TypeParam>::New(&stream.p, 8, buffer), QUO_OK);
  EXPECT_EQ(stream.p->id, Kind<TypeParam>::kId);
  EXPECT_EQ(Position(stream), (std::vector<int32_t>{8, 0, 8}));
  EXPECT_EQ(script.calls.size(), 0u);
  for (const int32_t none : {0, -1, INT32_MIN}) {
    EXPECT_EQ(Kind<TypeParam>::Draw(stream, none, r), QUO_OK);
  }
  EXPECT_EQ(script.calls.size(), 0u) << "nothing asked for";

  ASSERT_EQ(Kind<TypeParam>::Draw(stream, 3, r), QUO_OK);
  EXPECT_EQ(script.calls, (std::vector<Call>{{8, 3, 8, 0}}));
  EXPECT_EQ(script.stream, stream.p);
  EXPECT_EQ(Position(stream), (std::vector<int32_t>{8, 3, 3}));
  ASSERT_EQ(Kind<TypeParam>::Draw(stream, 5, r), QUO_OK);
  EXPECT_EQ(script.calls.size(), 1u) << "the rest sufficed";
  EXPECT_EQ(Position(stream), (std::vector<int32_t>{8, 0, 8}));

  ASSERT_EQ(Kind<TypeParam>::Draw(stream, 20, r), QUO_OK) << "more than the buffer holds";
  EXPECT_EQ(script.calls,
            (std::vector<Call>{{8, 3, 8, 0}, {8, 8, 8, 0}, {8, 8, 8, 0}, {8, 4, 8, 0}}));
  for (int i = 0; i < 20; ++i) EXPECT_EQ(r[i], static_cast<TypeParam>(8 + i));
}

// Requests and refills of all sizes against a model that delivers one number at a time.
TYPED_TEST(Abstract, FollowsTheModelForEveryPatternOfRefills) {
  using T = TypeParam;
  const uint32_t seed = 20130409;
  std::mt19937 random(seed);
  SCOPED_TRACE(seed);
  for (int run = 0; run < 200; ++run) {
    const auto n = static_cast<int32_t>(1 + random() % 17);
    script = {};
    for (int i = 0; i < 1000; ++i) {
      script.counts.push_back(static_cast<int32_t>(run % 3 == 0 ? n : 1 + random() % n));
    }
    std::vector<T> buffer(static_cast<size_t>(n));
    Owned stream;
    ASSERT_EQ(Kind<T>::New(&stream.p, n, buffer.data()), QUO_OK);

    int32_t idx = 0, ready = 0, next = 0;
    std::vector<Call> calls;
    for (int request = 0; request < 12; ++request) {
      const auto m = static_cast<int32_t>(random() % (request % 2 ? 6 : 3 * n + 2));
      std::vector<T> r(static_cast<size_t>(m) + 1, T{123}), want = r;
      for (int32_t i = 0; i < m; ++i) {
        if (ready == 0) {
          ready = script.counts[calls.size()];
          calls.push_back({n, std::min(n, m - i), n, idx});
        }
        want[static_cast<size_t>(i)] = static_cast<T>(next++);
        --ready;
        idx = (idx + 1) % n;
      }
      ASSERT_EQ(Kind<T>::Draw(stream, m, r.data()), QUO_OK);
      ASSERT_EQ(r, want);
      ASSERT_EQ(script.calls, calls);
      ASSERT_EQ(Position(stream), (std::vector<int32_t>{n, idx, n - ready}));
    }
  }
}

TYPED_TEST(Abstract, KeepsItsPositionWhenARefillFails) {
  using T = TypeParam;
  struct Case {
    std::vector<int32_t> counts;
    int32_t status, delivered;
  };
  const Case cases[] = {
      {{4, 0}, QUO_EMPTY_REFILL, 3},       {{4, -1}, QUO_BAD_REFILL, 3},
      {{4, 6}, QUO_BAD_REFILL, 3},         {{4, INT32_MAX}, QUO_BAD_REFILL, 3},
      {{4, INT32_MIN}, QUO_BAD_REFILL, 3}, {{4, 5, 1, 0}, QUO_EMPTY_REFILL, 9},
      {{4, 2, 5, -3}, QUO_BAD_REFILL, 10},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.counts));
    script = {};
    script.counts = c.counts;
    T buffer[5];
    Owned stream;
    ASSERT_EQ(Kind<T>::New(&stream.p, 5, buffer), QUO_OK);
    T first;
    ASSERT_EQ(Kind<T>::Draw(stream, 1, &first), QUO_OK);
    const auto position = Position(stream);
    EXPECT_EQ(position, (std::vector<int32_t>{5, 1, 2}));
    std::vector<T> r(20, T{123});
    EXPECT_EQ(Kind<T>::Draw(stream, 20, r.data()), c.status);
    for (int32_t i = 0; i < 20; ++i) {
      EXPECT_EQ(r[static_cast<size_t>(i)], static_cast<T>(i < c.delivered ? i + 1 : 123)) << i;
    }
    EXPECT_EQ(Position(stream), position);

    // And it is not lost: the undelivered slots come again, then new ones.
    const std::vector<T> slots(buffer, buffer + 5);
    const auto next = static_cast<T>(script.written);
    script.counts.clear();
    EXPECT_EQ(Kind<T>::Draw(stream, 4, r.data()), QUO_OK);
    EXPECT_EQ((std::vector<T>(r.begin(), r.begin() + 4)),
              (std::vector<T>{slots[1], slots[2], slots[3], next}));
  }
}

TYPED_TEST(Abstract, IsNotMadeOfBadArguments) {
  using T = TypeParam;
  T buffer[4];
  StreamState* const rubbish = reinterpret_cast<StreamState*>(16);
  StreamState* stream = rubbish;
  for (const int32_t n : {0, -1, INT32_MIN}) {
    EXPECT_EQ(Kind<T>::New(&stream, n, buffer), QUO_BAD_ARGUMENT);
    EXPECT_EQ(stream, nullptr);
  }
  stream = rubbish;
  EXPECT_EQ(Kind<T>::New(&stream, 4, nullptr), QUO_BAD_ARGUMENT);
  EXPECT_EQ(stream, nullptr);
  EXPECT_EQ(Kind<T>::New(&stream, 4, buffer, nullptr), QUO_BAD_ARGUMENT);
  EXPECT_EQ(__quoNewStreamEx(&stream, Kind<T>::kId, 0, nullptr), QUO_INVALID_BRNG);
}

TEST(AbstractInterval, HasItsLowerBoundFirst) {
  const double inf = std::numeric_limits<double>::infinity(), nan = std::nan("");
  const double tiny = std::numeric_limits<double>::denorm_min();
  struct Case {
    double c, d;
    bool good;
  };
  const Case cases[] = {{0, 1, true},    {1, 0, false},    {1, 1, false},     {-0.0, 0, false},
                        {nan, 1, false}, {0, nan, false},  {-inf, inf, true}, {inf, -inf, false},
                        {0, tiny, true}, {tiny, 0, false}, {-5, -4, true}};
  std::feclearexcept(FE_ALL_EXCEPT);
  const uint32_t mxcsr = _mm_getcsr();
  _mm_setcsr(mxcsr | 0x8040);  // flushing and denormals taken for 0: no say in this
  float s[1];
  constexpr float kTiny = std::numeric_limits<float>::denorm_min();
  Owned above, below;
  EXPECT_EQ(__quosNewAbstractStream(&above.p, 1, s, 0, kTiny, Refill<float>), QUO_OK);
  EXPECT_EQ(__quosNewAbstractStream(&below.p, 1, s, kTiny, 0, Refill<float>), QUO_BAD_ARGUMENT);
  for (const Case& c : cases) {
    double d[1];
    Owned one, two;
    const int32_t want = c.good ? QUO_OK : QUO_BAD_ARGUMENT;
    EXPECT_EQ(__quodNewAbstractStream(&one.p, 1, d, c.c, c.d, Refill<double>), want);
    if (c.d == tiny || c.c == tiny) continue;  // 0 as a single
    const auto sc = static_cast<float>(c.c), sd = static_cast<float>(c.d);
    EXPECT_EQ(__quosNewAbstractStream(&two.p, 1, s, sc, sd, Refill<float>), want);
  }
  EXPECT_EQ(_mm_getcsr() & 0x3F, 0u) << "no flags";
  _mm_setcsr(mxcsr);
}

TYPED_TEST(Abstract, IsInitialisedByItsConstructorAlone) {
  using T = TypeParam;
  T buffer[4];
  Owned stream;
  ASSERT_EQ(Kind<T>::New(&stream.p, 4, buffer), QUO_OK);
  const BrngProperties brng = Properties(stream);
  const std::vector<unsigned char> before(stream.state(), stream.state() + brng.StateSize - 16);
  const uint32_t words[16] = {1, 2, 3, 4, 5, 6, 7, 8};
  const auto unaligned = reinterpret_cast<const uint32_t*>(uintptr_t{1});
  for (const int32_t n : {0, 1, 4, 8, 12, 48, -1, INT32_MAX}) {
    EXPECT_EQ(brng.InitStream(QUO_INIT_STANDARD, stream, n, words), QUO_BAD_ARGUMENT);
    EXPECT_EQ(brng.InitStream(QUO_INIT_STANDARD, stream, n, nullptr), QUO_BAD_ARGUMENT);
    EXPECT_EQ(brng.InitStream(QUO_INIT_STANDARD, stream, n, unaligned), QUO_BAD_ARGUMENT);
  }
  EXPECT_EQ(__quoLeapfrogStream(stream, 0, 2), QUO_LEAPFROG_UNSUPPORTED);
  EXPECT_EQ(__quoLeapfrogStream(stream, 0, -2), QUO_BAD_STREAM_COUNT);
  EXPECT_EQ(__quoSkipAheadStream(stream, 0), QUO_SKIPAHEAD_UNSUPPORTED);
  for (const int32_t method : {-1, 3, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(brng.InitStream(method, stream, 1, words), QUO_BAD_METHOD);
  }
  EXPECT_EQ(std::memcmp(before.data(), stream.state(), before.size()), 0);
}

TYPED_TEST(Abstract, ServesItsOwnTypeAlone) {
  using T = TypeParam;
  script = {};
  T buffer[4];
  Owned stream;
  ASSERT_EQ(Kind<T>::New(&stream.p, 4, buffer), QUO_OK);
  const BrngProperties brng = Properties(stream);
  double d = -7;
  float s = -7;
  uint32_t u = 7;
  int32_t i = -7;
  constexpr int32_t kId = Kind<T>::kId;
  const auto expect = [](int32_t own) { return own == kId ? QUO_OK : QUO_WRONG_OUTPUT; };
  EXPECT_EQ(brng.dBRng(stream, 1, &d, 0, 1), expect(QUO_BRNG_DABSTRACT));
  EXPECT_EQ(brng.sBRng(stream, 1, &s, 0, 1), expect(QUO_BRNG_SABSTRACT));
  EXPECT_EQ(brng.iBRng(stream, 1, &u), expect(QUO_BRNG_IABSTRACT));
  EXPECT_EQ(script.calls.size(), 1u);
  EXPECT_EQ(_quodRngUniform(0, stream, 1, &d, 0, 1), expect(QUO_BRNG_DABSTRACT));
  EXPECT_EQ(_quosRngUniform(0, stream, 1, &s, 0, 1), expect(QUO_BRNG_SABSTRACT));
  EXPECT_EQ(_quoiRngUniform(0, stream, 1, &i, 0, 9), expect(QUO_BRNG_DABSTRACT));
  EXPECT_EQ(_quoiRngUniformBits(0, stream, 1, &u), expect(QUO_BRNG_IABSTRACT));
  EXPECT_EQ(d == -7, kId != QUO_BRNG_DABSTRACT);
  EXPECT_EQ(s == -7, kId != QUO_BRNG_SABSTRACT);
  EXPECT_EQ(u == 7, kId != QUO_BRNG_IABSTRACT);
  EXPECT_EQ(i == -7, kId != QUO_BRNG_DABSTRACT);
}

TYPED_TEST(Abstract, IsCopiedWithItsPlaceButNotByStateCopy) {
  using T = TypeParam;
  script = {};
  T buffer[6], r[6], s[6];
  Owned stream, copy, other;
  ASSERT_EQ(Kind<T>::New(&stream.p, 6, buffer), QUO_OK);
  ASSERT_EQ(Kind<T>::Draw(stream, 2, r), QUO_OK);
  ASSERT_EQ(__quoCopyStream(&copy.p, stream), QUO_OK);
  ASSERT_EQ(Kind<T>::Draw(stream, 4, r), QUO_OK);
  ASSERT_EQ(Kind<T>::Draw(copy, 4, s), QUO_OK);
  EXPECT_EQ(std::memcmp(r, s, 4 * sizeof(T)), 0);
  EXPECT_EQ(script.calls.size(), 1u);

  T others[3];
  ASSERT_EQ(Kind<T>::New(&other.p, 3, others), QUO_OK);
  EXPECT_EQ(__quoCopyStreamState(other, stream), QUO_OK);
  EXPECT_EQ(Position(other), (std::vector<int32_t>{3, 0, 3})) << "no seeds to copy";
}

// ---- The mapping. ----

// Hands out a fixed list in a circle, without arithmetic.
template <typename T>
std::vector<T> numbers;
size_t place;

template <typename T>
int32_t FromList(StreamState*, int32_t* n, T* buffer, int32_t*, int32_t* nmax, int32_t* pos) {
  for (int32_t i = 0; i < *nmax; ++i) {
    const T* const u = numbers<T>.data() + place++ % numbers<T>.size();
    std::memcpy(buffer + (*pos + i) % *n, u, sizeof(T));
  }
  return *nmax;
}

int32_t New(StreamState** s, int32_t n, double* b, double c, double d) {
  return __quodNewAbstractStream(s, n, b, c, d, FromList<double>);
}
int32_t New(StreamState** s, int32_t n, float* b, float c, float d) {
  return __quosNewAbstractStream(s, n, b, c, d, FromList<float>);
}
int32_t Generate(StreamState* s, int32_t n, double* r, double a, double b) {
  return __quodBRngdAbstract(s, n, r, a, b);
}
int32_t Generate(StreamState* s, int32_t n, float* r, float a, float b) {
  return __quosBRngsAbstract(s, n, r, a, b);
}

// The definition, one rounding at a time.
template <typename T>
T Mapped(T u, T c, T d, T a, T b) {
  volatile T width = d - c, target = b - a;
  volatile T scale = target / width, offset = u - c;
  volatile T product = offset * scale;
  volatile T sum = product + a;
  return sum;
}

template <typename T>
void CheckMapping() {
  const uint32_t seed = 1987;
  SCOPED_TRACE(seed);
  std::mt19937_64 random(seed);
  struct Bounds {
    double c, d, a, b;
  };
  constexpr double kBig = std::is_same_v<T, double> ? 1.5e308 : 3e38;
  const Bounds bounds[] = {{0, 1, 0, 1},        {0, 1, -3, 0.1},     {-2, 7, 0, 1},
                           {1, 3, 1, 3},        {0, 1e-30, 5, 6},    {-1e9, 1e9, -1e-9, 1e-9},
                           {0, 1, 5, 5},        {0, 1, 2, -2},       {-kBig, kBig, 0, 1},
                           {0, 1, -kBig, kBig}, {0, 1e-38, 0, 1e-38}};
  for (const Bounds& x : bounds) {
    const auto c = static_cast<T>(x.c), d = static_cast<T>(x.d);
    const auto a = static_cast<T>(x.a), b = static_cast<T>(x.b);
    numbers<T>.clear();
    for (int i = 0; i < 97; ++i) {
      const double u = static_cast<double>(random() >> 11) * 0x1p-53;
      numbers<T>.push_back(static_cast<T>(x.c + (x.d * u - x.c * u)));
    }
    numbers<T>[5] = c;
    place = 0;
    constexpr int32_t kSlots = 53, kCount = 211;
    // Buffer and results at addresses that suit no element.
    std::vector<char> buffer(kSlots * sizeof(T) + 1), result(kCount * sizeof(T) + 3);
    Owned stream;
    ASSERT_EQ(New(&stream.p, kSlots, reinterpret_cast<T*>(buffer.data() + 1), c, d), QUO_OK);
    T* const r = reinterpret_cast<T*>(result.data() + 3);
    std::vector<T> want;
    for (size_t i = 0; i < kCount; ++i) {
      want.push_back(Mapped(numbers<T>[i % numbers<T>.size()], c, d, a, b));
    }
    std::feclearexcept(FE_ALL_EXCEPT);
    const uint32_t mxcsr = _mm_getcsr();
    const uint32_t control = (mxcsr & ~0x3Fu) | 0xE040;  // towards zero, flushing
    _mm_setcsr(control);
    const int32_t status = Generate(stream, kCount, r, a, b);
    const uint32_t after = _mm_getcsr();
    _mm_setcsr(mxcsr);
    ASSERT_EQ(status, QUO_OK);
    EXPECT_EQ(after & ~0x20u, control) << "control as it was, no flag but inexact";
    EXPECT_EQ(std::memcmp(result.data() + 3, want.data(), kCount * sizeof(T)), 0)
        << x.c << " " << x.d << " onto " << x.a << " " << x.b;
  }
}

TEST(AbstractMapping, IsThatOfTheDefinitionOnEveryLevel) {
  levels::ForEach([] {
    CheckMapping<double>();
    CheckMapping<float>();
  });
}

TEST(AbstractMapping, LeavesNumbersOfTheirOwnIntervalAlone) {
  numbers<double> = {0, 0.1, 0x1p-60, 0.5, 1 - 0x1p-53, 1.0 / 3};
  place = 0;
  double buffer[4], r[12];
  Owned stream;
  ASSERT_EQ(New(&stream.p, 4, buffer, 0, 1), QUO_OK);
  ASSERT_EQ(_quodRngUniform(0, stream, 12, r, 0, 1), QUO_OK);
  for (size_t i = 0; i < 12; ++i) EXPECT_EQ(r[i], numbers<double>[i % 6]);
}

TEST(AbstractMapping, CallsTheRefillUnderTheCallersControl) {
  script = {};
  double buffer[2], r[3];
  Owned stream;
  ASSERT_EQ(Kind<double>::New(&stream.p, 2, buffer), QUO_OK);
  const uint32_t mxcsr = _mm_getcsr();
  _mm_setcsr(mxcsr | 0x6000);
  const int32_t status = __quodBRngdAbstract(stream, 3, r, 0, 1);
  _mm_setcsr(mxcsr);
  EXPECT_EQ(status, QUO_OK);
  EXPECT_EQ(script.mxcsr & 0xE040u, 0x6000u);
}

// ---- Distributions. ----

TEST(AbstractDistributions, DrawWhatTheCallerBrought) {
  numbers<double> = {0, 0.25, 0.999, 0.5, 0.75};
  numbers<float> = {0, 0.25, 0.999f, 0.5, 0.75};
  place = 0;
  double d_buffer[3], d[5];
  float s_buffer[3], s[5];
  Owned doubles, singles;
  ASSERT_EQ(New(&doubles.p, 3, d_buffer, 0, 1), QUO_OK);
  ASSERT_EQ(New(&singles.p, 3, s_buffer, 0, 1), QUO_OK);
  ASSERT_EQ(_quodRngUniform(QUO_METHOD_ACCURATE, doubles, 5, d, 8, 12), QUO_OK);
  for (size_t i = 0; i < 5; ++i) EXPECT_EQ(d[i], numbers<double>[i] * 4 + 8);
  place = 0;
  ASSERT_EQ(_quosRngUniform(0, singles, 5, s, -1, 1), QUO_OK);
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(s[i], Mapped(numbers<float>[i], 0.f, 1.f, -1.f, 1.f));
  }

  // Integers take doubles on [a, b), in several blocks of 1024.
  place = 0;
  Owned fresh;
  ASSERT_EQ(New(&fresh.p, 3, d_buffer, 0, 1), QUO_OK);
  std::vector<int32_t> dice(3001);
  ASSERT_EQ(_quoiRngUniform(0, fresh, 3001, dice.data(), 1, 7), QUO_OK);
  for (size_t i = 0; i < 3001; ++i) {
    ASSERT_EQ(dice[i], static_cast<int32_t>(std::floor(numbers<double>[i % 5] * 6 + 1))) << i;
  }

  script = {};
  uint32_t words[4], bits[6];
  Owned integers;
  ASSERT_EQ(Kind<uint32_t>::New(&integers.p, 4, words), QUO_OK);
  ASSERT_EQ(_quoiRngUniformBits(0, integers, 6, bits), QUO_OK);
  for (uint32_t i = 0; i < 6; ++i) EXPECT_EQ(bits[i], i);
}

TEST(AbstractDistributions, HandBackTheStatusOfAFailedRefill) {
  for (const auto& [count, status] :
       {std::pair{0, QUO_EMPTY_REFILL}, {-1, QUO_BAD_REFILL}, {5, QUO_BAD_REFILL}}) {
    script = {};
    script.counts = {4, count, count, count};
    double buffer[4];
    std::vector<double> d(9, -1);
    Owned stream;
    ASSERT_EQ(Kind<double>::New(&stream.p, 4, buffer), QUO_OK);
    EXPECT_EQ(_quodRngUniform(QUO_METHOD_ACCURATE, stream, 9, d.data(), 0, 1), status);
    EXPECT_EQ(d, (std::vector<double>{0, 1, 2, 3, -1, -1, -1, -1, -1})) << "not clamped either";
    int32_t i[2];
    EXPECT_EQ(_quoiRngUniform(0, stream, 2, i, 0, 9), status);
  }
}

// A user's generator that hands out the list too, and scales a number by the definition.
template <typename T>
int32_t ScaledList(StreamState*, int32_t n, T* r, T a, T b) {
  for (int32_t i = 0; i < n; ++i) {
    const T x = Mapped<T>(numbers<T>[place++ % numbers<T>.size()], 0, 1, a, b);
    std::memcpy(r + i, &x, sizeof(T));
  }
  return QUO_OK;
}
int32_t PlainList(StreamState*, int32_t n, uint32_t* r) {
  for (int32_t i = 0; i < n; ++i) r[i] = numbers<uint32_t>[place++ % numbers<uint32_t>.size()];
  return QUO_OK;
}
int32_t AnyStart(int32_t, StreamState*, int32_t, const uint32_t*) { return QUO_OK; }

// Of the numbers that a sampler asks its generator for.
int32_t KindOf(const quo::Sampler& sampler) {
  const std::string_view name = sampler.distribution->name;
  switch (sampler.type) {
    case 'd':
      return QUO_BRNG_DABSTRACT;
    case 's':  // gamma and beta are double results, rounded
      return name == "gamma" || name == "beta" ? QUO_BRNG_DABSTRACT : QUO_BRNG_SABSTRACT;
    case 'w':
      return QUO_BRNG_IABSTRACT;
    default:
      return name == "bernoulli" || name == "geometric" ? QUO_BRNG_SABSTRACT : QUO_BRNG_DABSTRACT;
  }
}

void CheckDistributions(int32_t generator) {
  constexpr int32_t kSlots = 61, kCount = 2311;
  for (const Drawing& drawing : AllDrawings()) {
    SCOPED_TRACE(drawing.name);
    std::vector<char> want(kCount * drawing.ResultSize(4), '\1'), untouched = want;
    Owned direct(generator);
    place = 0;
    ASSERT_EQ(drawing(direct, kCount, want.data()), QUO_OK);
    ASSERT_NE(want, untouched);

    uint32_t words[kSlots];
    double doubles[kSlots];
    float singles[kSlots];
    Owned of_words, of_doubles, of_singles;
    ASSERT_EQ(__quoiNewAbstractStream(&of_words.p, kSlots, words, FromList<uint32_t>), QUO_OK);
    ASSERT_EQ(New(&of_doubles.p, kSlots, doubles, 0, 1), QUO_OK);
    ASSERT_EQ(New(&of_singles.p, kSlots, singles, 0, 1), QUO_OK);
    for (StreamState* stream : {of_words.p, of_doubles.p, of_singles.p}) {
      std::vector<char> r = untouched;
      const bool own = stream->id == KindOf(*drawing.sampler);
      place = 0;
      EXPECT_EQ(drawing(stream, kCount, r.data()), own ? QUO_OK : QUO_WRONG_OUTPUT) << stream->id;
      EXPECT_TRUE(r == (own ? want : untouched)) << stream->id;
      EXPECT_EQ(place > 0, own) << "refills";
    }
  }
}

TEST(AbstractDistributions, AreThoseOfTheNumbersBroughtAndRefuseTheOtherKinds) {
  constexpr size_t kNumbers = 5003;
  numbers<uint32_t>.resize(kNumbers);
  numbers<double>.resize(kNumbers);
  numbers<float>.resize(kNumbers);
  Owned source(QUO_BRNG_MT19937);
  ASSERT_EQ(_quoiRngUniformBits(0, source, kNumbers, numbers<uint32_t>.data()), QUO_OK);
  ASSERT_EQ(_quodRngUniform(0, source, kNumbers, numbers<double>.data(), 0, 1), QUO_OK);
  ASSERT_EQ(_quosRngUniform(0, source, kNumbers, numbers<float>.data(), 0, 1), QUO_OK);
  const BrngProperties record = {
      16, 1, 1, 4, 32, AnyStart, ScaledList<float>, ScaledList<double>, PlainList};
  const int32_t generator = __quoRegisterBrng(&record);
  ASSERT_GT(generator, 0);
  levels::ForEach([=] { CheckDistributions(generator); });
}

}  // namespace
