// The vector levels of the library, and a scope in which calls go to one of them.
#ifndef TESTS_SUPPORT_LEVELS_H_
#define TESTS_SUPPORT_LEVELS_H_

#include <cstdint>
#include <ostream>

#include "hwy/highway.h"

struct Level {
  const char* name;
  int64_t target;
};
inline void PrintTo(const Level& level, std::ostream* out) { *out << level.name; }

inline constexpr Level kLevels[] = {{"SSE4", HWY_SSE4}, {"AVX2", HWY_AVX2}, {"AVX512", HWY_AVX3}};

class UseLevel {
 public:
  explicit UseLevel(const Level& level) { Set(level.target); }
  ~UseLevel() { Set(0); }
  UseLevel(const UseLevel&) = delete;
  UseLevel& operator=(const UseLevel&) = delete;

 private:
  static void Set(int64_t targets) {  // 0: those of the processor
    hwy::SetSupportedTargetsForTest(targets);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  }
};

inline bool ProcessorHas(const Level& level) {
  return (hwy::SupportedTargets() & level.target) != 0;
}

// In a test whose body runs on one level.
#define SKIP_WITHOUT(level) \
  if (!ProcessorHas(level)) GTEST_SKIP() << "this processor has no " << (level).name

#endif  // TESTS_SUPPORT_LEVELS_H_
