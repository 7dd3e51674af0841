// State belongs to its thread: several at once, and the blocks that hold it. The service library's
// memory is replaced here by one that counts and can fail.
#include <atomic>
#include <barrier>
#include <cstdlib>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "catalogue/catalogue.h"
#include "pexquo/kro.h"
#include "tests/service/fixture.h"

namespace {
std::atomic<int> blocks{0};       // allocated and not freed
std::atomic<int> allocations{0};  // ever
std::atomic<bool> no_memory{false};
}  // namespace

extern "C" void* kro_serv_kro_malloc(size_t size, int32_t /*alignment*/) {
  if (no_memory) return nullptr;
  ++blocks;
  ++allocations;
  return std::malloc(size);
}

extern "C" void kro_serv_kro_free(void* p) {
  if (p != nullptr) --blocks;
  std::free(p);
}

namespace {

TEST(Slots, AreIndependentCreatedOnFirstTouchAndFreedWithTheThread) {
  static const double x = 0;
  static constexpr void (*kTouch[])() = {
      [] { _pexGetMode(); },
      [] { _pexGetErrStatus(); },
      [] { _pexGetErrorCallBack(); },
      [] { _pexSetInterfInputVectorPointer(&x); },
  };
  const int before = blocks;
  for (size_t touched = 1; touched < 16; ++touched) {
    int live = 0;
    std::thread([&] {
      for (size_t i = 0; i < 8; ++i) {  // a second touch allocates nothing
        if (touched >> i % 4 & 1) kTouch[i % 4]();
      }
      live = blocks - before;
    }).join();
    EXPECT_EQ(live, __builtin_popcountll(touched));
    EXPECT_EQ(blocks, before);
  }
}

TEST(Slots, AThreadThatTouchesNothingOwnsNothing) {
  const int before = allocations;
  OnFreshThread([] { dll_cpu_version(); });
  EXPECT_EQ(allocations, before);
}

TEST(SlotsDeathTest, WithoutMemoryTheProcessStopsWithAMessage) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        no_memory = true;
        _pexGetMode();
      },
      "pexquo: no memory for the thread's state");
}

thread_local int calls = 0;
thread_local double replacement = 0;

int Replace(PexErrorContext* record) {
  ++calls;
  record->res1 = replacement;
  return 0;
}

// Half of the threads replace special results, half ignore them, all at the same time.
TEST(Threads, HaveTheirOwnModeStatusAndCallback) {
  const pex::Entry* const exp = pex::FindEntry("_pexdExp_50");
  ASSERT_NE(exp, nullptr);
  constexpr int kThreads = 8, kRounds = 200, kCount = 37;
  std::barrier start(kThreads);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  std::atomic<int> wrong{0};
  const int before = blocks;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      const bool replaces = t % 2 == 0;
      replacement = -1 - t;
      if (replaces) {
        _pexSetErrorCallBack(Replace);
        _pexSetMode(PEX_ERRMODE_CALLBACK);
      } else {
        _pexSetMode(PEX_ERRMODE_IGNORE);
      }
      std::vector<double> a(kCount, 1.0), r(kCount);
      a[5] = 1000;        // overflows
      a[t + 10] = -1000;  // underflows, at another place in each thread
      start.arrive_and_wait();
      for (int round = 0; round < kRounds; ++round) {
        _pexClearErrStatus();
        exp->Call(kCount, a.data(), nullptr, r.data(), nullptr);
        const double inf = std::numeric_limits<double>::infinity();
        if (_pexGetErrStatus() != PEX_STATUS_UNDERFLOW) ++wrong;
        if (r[5] != (replaces ? replacement : inf)) ++wrong;
        if (r[t + 10] != (replaces ? replacement : 0.0)) ++wrong;
      }
      if (calls != (replaces ? 2 * kRounds : 0)) ++wrong;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(blocks, before);
}

// The lines of one report are not torn apart by another thread's.
TEST(Threads, KeepTheirMessagesTogether) {
  constexpr int kThreads = 4, kReports = 50;
  testing::internal::CaptureStderr();
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([] {
      _pexSetMode(PEX_ERRMODE_STDERR);
      const double a = 1;
      double r = 2;
      for (int i = 0; i < kReports; ++i) _pexdError(2, 0, &a, &a, &r, &r, "vdTest");
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::string expected;
  for (int i = 0; i < kThreads * kReports; ++i) {
    expected += "pexquo: vdTest: singularity\n  argument [0] = 1\n  result [0] = 2\n";
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
}

}  // namespace
