// What the tests of arithmetic and data movement share: vector levels, the floating-point control
// word, arrays that end at an unreadable page.
#ifndef TESTS_ARITHMETIC_SUPPORT_H_
#define TESTS_ARITHMETIC_SUPPORT_H_

#include <immintrin.h>
#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "hwy/highway.h"
#include "hwy/targets.h"

namespace pex::test {

struct Level {
  int64_t target;
  const char* name;
};

inline std::vector<Level> Levels() {
  std::vector<Level> levels;
  for (const Level level :
       {Level{HWY_SSE4, "SSE4"}, Level{HWY_AVX2, "AVX2"}, Level{HWY_AVX3, "AVX-512"}}) {
    if (hwy::SupportedTargets() & level.target) levels.push_back(level);
  }
  return levels;
}

// Entries run on one level while this lives.
class OnLevel {
 public:
  explicit OnLevel(const Level& level) { Choose(level.target); }
  ~OnLevel() { Choose(0); }

 private:
  static void Choose(int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  }
};

// MXCSR: the sticky flags and what the caller may set.
enum : uint32_t {
  kInvalid = 1,
  kDenormal = 2,
  kInexact = 0x20,
  kFlags = 0x3F,
  kDenormalsAreZero = 0x40,
  kMasks = 0x1F80,
  kRoundDown = 0x2000,
  kRoundUp = 0x4000,
  kRoundToZero = 0x6000,
  kFlushToZero = 0x8000,
};

// All rounding and flush modes.
inline std::vector<uint32_t> ControlWords() {
  std::vector<uint32_t> words;
  for (const uint32_t rounding :
       {0u, uint32_t{kRoundDown}, uint32_t{kRoundUp}, uint32_t{kRoundToZero}}) {
    for (const uint32_t flush : {0u, uint32_t{kFlushToZero}, uint32_t{kDenormalsAreZero},
                                 kFlushToZero | kDenormalsAreZero}) {
      words.push_back(kMasks | rounding | flush);
    }
  }
  return words;
}

// Runs `f` under a control word with clear flags; returns the word it leaves. The caller's word
// comes back as it was.
template <typename F>
[[gnu::noinline]] uint32_t Under(uint32_t word, F&& f) {
  const uint32_t saved = _mm_getcsr();
  _mm_setcsr(word);
  f();
  const uint32_t after = _mm_getcsr();
  _mm_setcsr(saved);
  return after;
}

template <typename T>
using BitsOf = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;

template <typename T>
struct Format {
  using Bits = BitsOf<T>;
  static constexpr int kFractionBits = sizeof(T) == 8 ? 52 : 23;
  static constexpr Bits kSign = Bits{1} << (sizeof(T) * 8 - 1);
  static constexpr Bits kQuiet = Bits{1} << (kFractionBits - 1);
  static constexpr Bits kInfinity = ~(kSign | ((Bits{1} << kFractionBits) - 1));
};

// Numbers live as bits in the tests, so that no test code quiets a NaN on the way.
template <typename T>
std::vector<BitsOf<T>> SpecialBits() {
  using F = Format<T>;
  using Bits = BitsOf<T>;
  const auto bits = [](double x) { return std::bit_cast<Bits>(static_cast<T>(x)); };
  const auto two52 = bits(sizeof(T) == 8 ? 0x1p52 : 0x1p23);
  std::vector<Bits> all = {0,
                           1,
                           F::kQuiet,                          // subnormal
                           (Bits{1} << F::kFractionBits) - 1,  // largest subnormal
                           Bits{1} << F::kFractionBits,        // smallest normal
                           F::kInfinity - 1,                   // largest finite
                           F::kInfinity,
                           F::kInfinity | 1,       // signalling
                           F::kInfinity | 0x1234,  // signalling
                           F::kInfinity | F::kQuiet,
                           F::kInfinity | F::kQuiet | 0x4321,
                           bits(0.5) - 1,  // rounds to 0
                           bits(0.5),
                           bits(0.5) + 1,
                           bits(1) - 1,
                           bits(1),
                           bits(1) + 1,
                           bits(1.5),
                           bits(2.5),
                           bits(3),
                           bits(3.5),
                           bits(1e5) + 77,
                           bits(0x1p31) - 3,
                           bits(1e30),
                           bits(1e-30)};
  for (int shift = -2; shift <= 2; ++shift) {  // around 2^50 to 2^54, in single 2^21 to 2^25
    for (int step = -3; step <= 3; ++step) {
      all.push_back(two52 + (static_cast<Bits>(shift) << F::kFractionBits) +
                    static_cast<Bits>(step));
    }
  }
  const size_t half = all.size();
  for (size_t i = 0; i < half; ++i) all.push_back(all[i] | F::kSign);
  return all;
}

inline uint64_t Seed() {
  const char* text = std::getenv("PEXQUO_TEST_SEED");
  return text != nullptr ? std::strtoull(text, nullptr, 0) : std::random_device()();
}

// Readable pages between two that are not.
class GuardedPages {
 public:
  explicit GuardedPages(size_t bytes) {
    page_ = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    size_ = (bytes + page_ - 1) / page_ * page_;
    base_ = static_cast<char*>(
        mmap(nullptr, size_ + 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (base_ == MAP_FAILED || mprotect(base_ + page_, size_, PROT_READ | PROT_WRITE) != 0) {
      std::abort();
    }
  }
  ~GuardedPages() { munmap(base_, size_ + 2 * page_); }
  GuardedPages(const GuardedPages&) = delete;
  GuardedPages& operator=(const GuardedPages&) = delete;

  // `count` objects that begin where the pages do, or end there.
  template <typename T>
  T* AtBegin() const {
    return reinterpret_cast<T*>(base_ + page_);
  }
  template <typename T>
  T* AtEnd(size_t count) const {
    return reinterpret_cast<T*>(base_ + page_ + size_) - count;
  }

 private:
  size_t page_, size_;
  char* base_;
};

}  // namespace pex::test

#endif  // TESTS_ARITHMETIC_SUPPORT_H_
