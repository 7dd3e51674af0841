// The drivers of elementwise functions, through kernels of known results, on every vector level.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

#include "pexquo/pex.h"
#include "tests/kernel/driver_kernels.h"
#include "tests/support/control.h"
#include "tests/support/guarded.h"
#include "tests/support/levels.h"
#include "tests/support/random.h"

namespace {

template <typename T>
constexpr T kInf = std::numeric_limits<T>::infinity();
template <typename T>
constexpr T kNaN = std::numeric_limits<T>::quiet_NaN();

// One exported test kernel and what it must do to one element.
template <typename T>
struct Subject {
  const char* name;
  int arguments, results;
  bool scalar;  // the second argument is one number
  void (*call)(int32_t n, const T* a, const T* b, T* r1, T* r2);
  int (*element)(T x, T y, T* r1, T* r2);  // results and code
};

template <typename T>
int RootElement(T x, T, T* r1, T*) {
  if (pex::IsCommon(x)) return *r1 = std::sqrt(x) + T(0), 0;
  return pex::RareRoot(x, r1);
}
template <typename T>
int QuotientElement(T x, T y, T* r1, T*) {
  if (pex::IsCommon(x, y)) return *r1 = x / y, 0;
  return pex::RareQuotient(x, y, r1);
}
template <typename T>
int PairElement(T x, T, T* r1, T* r2) {
  if (pex::IsCommon(x) && x != 0) return *r1 = std::sqrt(x), *r2 = 1 / x, 0;
  return pex::RarePair(x, r1, r2);
}

template <typename T>
const std::vector<Subject<T>>& Subjects();
template <>
const std::vector<Subject<double>>& Subjects() {
  using T = double;
  static const std::vector<Subject<T>> list = {
      {"root", 1, 1, false,
       [](int32_t n, const T* a, const T*, T* r, T*) { _pexdTestRoot(n, a, r); }, RootElement<T>},
      {"quotient", 2, 1, false,
       [](int32_t n, const T* a, const T* b, T* r, T*) { _pexdTestQuotient(n, a, b, r); },
       QuotientElement<T>},
      {"tried quotient", 2, 1, false,
       [](int32_t n, const T* a, const T* b, T* r, T*) { _pexdTestTriedQuotient(n, a, b, r); },
       QuotientElement<T>},
      {"quotient by", 2, 1, true,
       [](int32_t n, const T* a, const T* b, T* r, T*) { _pexdTestQuotientBy(n, a, *b, r); },
       QuotientElement<T>},
      {"pair", 1, 2, false,
       [](int32_t n, const T* a, const T*, T* r, T* r2) { _pexdTestPair(n, a, r, r2); },
       PairElement<T>}};
  return list;
}
template <>
const std::vector<Subject<float>>& Subjects() {
  using T = float;
  static const std::vector<Subject<T>> list = {
      {"root", 1, 1, false,
       [](int32_t n, const T* a, const T*, T* r, T*) { _pexsTestRoot(n, a, r); }, RootElement<T>},
      {"wide root", 1, 1, false,
       [](int32_t n, const T* a, const T*, T* r, T*) { _pexsTestWideRoot(n, a, r); },
       RootElement<T>},
      {"quotient", 2, 1, false,
       [](int32_t n, const T* a, const T* b, T* r, T*) { _pexsTestQuotient(n, a, b, r); },
       QuotientElement<T>},
      {"tried quotient", 2, 1, false,
       [](int32_t n, const T* a, const T* b, T* r, T*) { _pexsTestTriedQuotient(n, a, b, r); },
       QuotientElement<T>},
      {"quotient by", 2, 1, true,
       [](int32_t n, const T* a, const T* b, T* r, T*) { _pexsTestQuotientBy(n, a, *b, r); },
       QuotientElement<T>},
      {"pair", 1, 2, false,
       [](int32_t n, const T* a, const T*, T* r, T* r2) { _pexsTestPair(n, a, r, r2); },
       PairElement<T>}};
  return list;
}

// Arguments of which `rare` in 100 are out of the ordinary. The ordinary ones are squares and
// powers of two: no root or quotient of theirs is inexact.
template <typename T>
T Argument(Random& random, uint32_t rare, bool square) {
  static constexpr T kRare[] = {T(-5),    T(-0.5), T(100), T(1e7),  kInf<T>,
                                -kInf<T>, kNaN<T>, T(0),   T(-0.0), T(1000)};
  if (random.Below(100) < rare) return kRare[random.Below(std::size(kRare))];
  static constexpr T kPowers[] = {T(0.25), 1, 2, 4, 16, 64};
  static constexpr T kSquares[] = {T(0.25), 1, 4, 16, 64, T(0.0625)};
  return square ? kSquares[random.Below(6)] : kPowers[random.Below(6)];
}

template <typename T>
std::vector<T> Arguments(Random& random, size_t n, uint32_t rare, bool square) {
  std::vector<T> a(n);
  for (T& x : a) x = Argument<T>(random, rare, square);
  return a;
}

std::vector<PexErrorContext> records;
int Collect(PexErrorContext* record) {
  records.push_back(*record);
  return 0;
}
int CollectAndReplace(PexErrorContext* record) {
  Collect(record);
  record->res1 = 1234 + record->index;
  record->res2 = -1234 - record->index;
  return 0;
}
int CollectAndKeep(PexErrorContext* record) {
  CollectAndReplace(record);
  return 1;
}

bool Same(double x, double y) {
  return x == y ? std::signbit(x) == std::signbit(y) : x != x && y != y;
}

// What a call must leave: results, and the element errors in order.
template <typename T>
struct Expected {
  std::vector<T> r1, r2;
  std::vector<PexErrorContext> records;
};

template <typename T>
Expected<T> Expect(const Subject<T>& s, const std::vector<T>& a, const std::vector<T>& b) {
  Expected<T> e;
  for (size_t i = 0; i < a.size(); ++i) {
    const T y = s.arguments == 1 ? a[i] : s.scalar ? b[0] : b[i];
    T r1 = 0, r2 = 0;
    const int code = s.element(a[i], y, &r1, &r2);
    if (s.results == 1) r2 = r1;
    e.r1.push_back(r1);
    e.r2.push_back(r2);
    if (code != 0) {
      PexErrorContext record = {};
      record.code = code;
      record.index = static_cast<int32_t>(i);
      record.arg1 = a[i];
      record.arg2 = y;
      record.res1 = r1;
      record.res2 = r2;
      e.records.push_back(record);
    }
  }
  return e;
}

void CheckRecords(const std::vector<PexErrorContext>& wanted) {
  ASSERT_EQ(records.size(), wanted.size());
  for (size_t k = 0; k < wanted.size(); ++k) {
    const PexErrorContext &got = records[k], &want = wanted[k];
    ASSERT_EQ(got.index, want.index);
    ASSERT_EQ(got.code, want.code);
    ASSERT_TRUE(Same(got.arg1, want.arg1) && Same(got.arg2, want.arg2)) << "at " << want.index;
    ASSERT_TRUE(Same(got.res1, want.res1) && Same(got.res2, want.res2)) << "at " << want.index;
    ASSERT_STREQ(got.func_name, "vTest");
  }
}

template <typename T>
void CheckResults(const T* got, const std::vector<T>& want, const char* what) {
  for (size_t i = 0; i < want.size(); ++i) {
    ASSERT_TRUE(Same(got[i], want[i])) << what << " " << i << ": " << got[i] << " for " << want[i];
  }
}

class Driver : public testing::TestWithParam<Level> {
 protected:
  void SetUp() override {
    SKIP_WITHOUT(GetParam());
    level_.emplace(GetParam());
    Report(Collect, PEX_ERRMODE_CALLBACK);
  }
  void TearDown() override { Report(nullptr, PEX_MODE_DEFAULT); }

  static void Report(PexErrorCallBack callback, uint32_t mode) {
    _pexSetErrorCallBack(callback);
    _pexSetMode(mode);
    _pexClearErrStatus();
    records.clear();
  }

  // Runs `body` for every subject of both precisions.
  template <class F>
  static void ForEachSubject(F body) {
    for (const auto& s : Subjects<double>()) {
      SCOPED_TRACE(testing::Message() << s.name << ", double");
      ASSERT_NO_FATAL_FAILURE(body(s, double()));
    }
    for (const auto& s : Subjects<float>()) {
      SCOPED_TRACE(testing::Message() << s.name << ", single");
      ASSERT_NO_FATAL_FAILURE(body(s, float()));
    }
  }

 private:
  std::optional<UseLevel> level_;
};

TEST_P(Driver, RunsOnTheLevelAskedFor) { EXPECT_EQ(TestTarget(), GetParam().target); }

TEST_P(Driver, CountsOfZeroOrLessDoNothing) {
  ForEachSubject([](const auto& s, auto zero) {
    using T = decltype(zero);
    const T b = 1;
    for (const int32_t n : {0, -1, INT32_MIN}) {
      s.call(n, nullptr, s.scalar ? &b : nullptr, nullptr, nullptr);
    }
    EXPECT_TRUE(records.empty());
  });
}

// Every length, arrays hard against a trap on either side, ordinary and special elements mixed.
TEST_P(Driver, EveryLengthStaysWithinTheArrays) {
  ForEachSubject([](const auto& s, auto zero) {
    using T = decltype(zero);
    constexpr size_t kMost = 70;
    Guarded<T> ga(kMost), gb(kMost), g1(kMost), g2(kMost);
    Random random(1);
    for (const uint32_t rare : {0, 10, 100}) {
      for (size_t n = 1; n <= kMost; ++n) {
        for (const bool at_end : {false, true}) {
          SCOPED_TRACE(testing::Message() << "n " << n << " rare " << rare << " at end " << at_end);
          const auto place = [&](Guarded<T>& g) { return at_end ? g.AtEnd(n) : g.AtStart(); };
          const auto a = Arguments<T>(random, n, rare, true);
          const auto b = Arguments<T>(random, n, rare, false);
          const Expected<T> expected = Expect(s, a, b);
          T *pa = place(ga), *pb = place(gb), *p1 = place(g1), *p2 = place(g2);
          std::copy(a.begin(), a.end(), pa);
          std::copy(b.begin(), b.end(), pb);
          records.clear();
          s.call(static_cast<int32_t>(n), pa, pb, p1, p2);
          ASSERT_NO_FATAL_FAILURE(CheckRecords(expected.records));
          ASSERT_NO_FATAL_FAILURE(CheckResults(p1, expected.r1, "first result"));
          if (s.results == 2) {
            ASSERT_NO_FATAL_FAILURE(CheckResults(p2, expected.r2, "second result"));
          }
          EXPECT_TRUE(std::memcmp(pa, a.data(), n * sizeof(T)) == 0);
          EXPECT_TRUE(std::memcmp(pb, b.data(), n * sizeof(T)) == 0);
        }
      }
    }
  });
}

// The elements around a call's own are neither read into the results nor written.
TEST_P(Driver, NothingAroundTheCallChanges) {
  ForEachSubject([](const auto& s, auto zero) {
    using T = decltype(zero);
    Random random(2);
    for (size_t n = 0; n <= 40; ++n) {
      for (size_t offset = 0; offset < 17; ++offset) {
        auto a = Arguments<T>(random, 80, 100, true);
        auto b = Arguments<T>(random, 80, 100, false);
        for (size_t i = offset; i < offset + n; ++i) {
          a[i] = Argument<T>(random, 5, true);
          b[i] = Argument<T>(random, 5, false);
        }
        const Expected<T> expected = Expect(s, {a.begin() + offset, a.begin() + offset + n},
                                            {b.begin() + offset, b.begin() + offset + n + 1});
        std::vector<T> r1(80, T(77)), r2(80, T(78));
        records.clear();
        s.call(static_cast<int32_t>(n), &a[offset], &b[offset], &r1[offset], &r2[offset]);
        ASSERT_NO_FATAL_FAILURE(CheckRecords(expected.records));
        ASSERT_NO_FATAL_FAILURE(CheckResults(&r1[offset], expected.r1, "first result"));
        for (size_t i = 0; i < 80; ++i) {
          if (i >= offset && i < offset + n) continue;
          ASSERT_EQ(r1[i], T(77)) << "n " << n << " offset " << offset << " at " << i;
          ASSERT_EQ(r2[i], T(78)) << "n " << n << " offset " << offset << " at " << i;
        }
      }
    }
  });
}

// Over the arguments: the record still shows the argument, and a replacement lands in the array.
TEST_P(Driver, ResultsMayOverwriteArguments) {
  ForEachSubject([](const auto& s, auto zero) {
    using T = decltype(zero);
    Random random(3);
    for (size_t n = 1; n <= 200; n += n < 70 ? 1 : 130) {
      for (const PexErrorCallBack callback : {Collect, CollectAndReplace, CollectAndKeep}) {
        for (int over = 0; over < 4; ++over) {  // r1 over a, r1 over b, r2 over a, none
          if ((over == 1 && s.arguments == 1) || (over == 2 && s.results == 1)) continue;
          if (over == 1 && s.scalar) continue;
          // Ordinary elements alone too, for what is computed twice comes from its arguments then.
          const uint32_t rare = (n + over) % 3 == 0 ? 0 : n % 2 == 0 ? 2 : 15;
          SCOPED_TRACE(testing::Message() << "n " << n << " over " << over << " rare " << rare);
          auto a = Arguments<T>(random, n, rare, true);
          auto b = Arguments<T>(random, n, rare, false);
          std::vector<T> c(n), d(n);
          Expected<T> expected = Expect(s, a, b);
          T* const r1 = over == 0 ? a.data() : over == 1 ? b.data() : c.data();
          T* const r2 = over == 2 ? a.data() : d.data();
          Report(callback, PEX_ERRMODE_CALLBACK);
          s.call(static_cast<int32_t>(n), a.data(), b.data(), r1, r2);
          ASSERT_NO_FATAL_FAILURE(CheckRecords(expected.records));
          if (callback == CollectAndReplace) {
            for (const PexErrorContext& record : expected.records) {
              expected.r1[record.index] = static_cast<T>(1234 + record.index);
              expected.r2[record.index] = static_cast<T>(-1234 - record.index);
            }
          }
          ASSERT_NO_FATAL_FAILURE(CheckResults(r1, expected.r1, "first result"));
          if (s.results == 2) {
            ASSERT_NO_FATAL_FAILURE(CheckResults(r2, expected.r2, "second result"));
          }
        }
      }
    }
  });
}

// The arguments have exact results, so a call on them raises nothing at all: whatever is raised
// comes from a padding lane or from a special element's lane.
TEST_P(Driver, RaisesNoFlagOfItsOwn) {
  ForEachSubject([](const auto& s, auto zero) {
    using T = decltype(zero);
    Random random(4);
    Report(nullptr, PEX_ERRMODE_IGNORE);
    for (const uint32_t rare : {0, 10, 50, 100}) {
      for (size_t n = 1; n <= 70; ++n) {
        const auto a = Arguments<T>(random, n, rare, true);
        const auto b = Arguments<T>(random, n, rare, false);
        std::vector<T> r1(n), r2(n);
        errno = 4711;
        UseControl control(kDefaultControl);
        s.call(static_cast<int32_t>(n), a.data(), b.data(), r1.data(), r2.data());
        control.Finish();
        ASSERT_EQ(control.flags(), 0u) << "n " << n << " rare " << rare;
        ASSERT_EQ(control.x87_flags(), 0u);
        ASSERT_EQ(errno, 4711);
      }
    }
  });
}

// Flags of the errors' codes stay when the control word is restored, and so do older flags.
TEST_P(Driver, KeepsTheCallersControlAndTheFlagsRaised) {
  ForEachSubject([](const auto& s, auto zero) {
    using T = decltype(zero);
    Random random(5);
    const auto a = Arguments<T>(random, 67, 10, true);
    const auto b = Arguments<T>(random, 67, 10, false);
    const Expected<T> expected = Expect(s, a, b);
    uint32_t raised = 0;
    for (const PexErrorContext& record : expected.records) {
      raised |= record.code == 1 ? kInvalid : record.code == 2 ? kDivByZero : SseFlag(0);
    }
    Report(nullptr, PEX_ERRMODE_EXCEPT);
    for (const Control& c : kControls) {
      for (const uint32_t standing : {0u, uint32_t{kUnderflow}, uint32_t{kOverflow | kInexact}}) {
        SCOPED_TRACE(testing::Message() << c.name << " standing " << standing);
        std::vector<T> r1(67), r2(67);
        UseControl control(c, standing);
        s.call(67, a.data(), b.data(), r1.data(), r2.data());
        control.Finish();
        EXPECT_TRUE(control.kept());
        EXPECT_EQ(control.flags(), raised | standing);
        ASSERT_NO_FATAL_FAILURE(CheckResults(r1.data(), expected.r1, "first result"));
      }
    }
  });
}

// The mode's other ways to report work from inside a call.
TEST_P(Driver, TheStatusIsTheLastElements) {
  const std::vector<double> a = {1, -0.5, 4, 1e7, 0.25, -5, 16, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  std::vector<double> r(a.size());
  _pexdTestRoot(static_cast<int32_t>(a.size()), a.data(), r.data());
  EXPECT_EQ(records.size(), 3u);
  EXPECT_EQ(_pexGetErrStatus(), 1);
  _pexdTestRoot(5, a.data(), r.data());
  EXPECT_EQ(_pexGetErrStatus(), 3);
  _pexdTestRoot(1, a.data(), r.data());
  EXPECT_EQ(_pexGetErrStatus(), 3) << "a call without errors leaves the status";
}

// A part of a longer vector reports its places in the whole.
// By the place in the first argument's array, wherever the second one and the results are.
TEST_P(Driver, IndicesFollowTheInputVectorBase) {
  std::vector<float> whole(1000, 4.0f), b(1000, 2.0f), r(1000), r2(1000);
  whole[607] = -5;
  whole[630] = -5;
  float* const a = &whole[600];
  _pexSetInterfInputVectorPointer(whole.data());
  _pexsTestRoot(100, a, &r[3]);
  _pexsTestQuotient(100, a, &b[20], &r[3]);
  _pexsTestQuotientBy(100, a, 2.0f, &r[3]);
  _pexsTestPair(100, a, &r[3], &r2[50]);
  _pexsTestRoot(100, a, a);
  _pexSetInterfInputVectorPointer(nullptr);
  ASSERT_EQ(records.size(), 10u);
  for (size_t i = 0; i < records.size(); ++i) EXPECT_EQ(records[i].index, i % 2 ? 630 : 607) << i;
}

INSTANTIATE_TEST_SUITE_P(Levels, Driver, testing::ValuesIn(kLevels),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
