// Runs something on each vector level of the machine.
#ifndef TESTS_UNIFORM_LEVELS_H_
#define TESTS_UNIFORM_LEVELS_H_

#include <gtest/gtest.h>

#include <cstdint>

#include "hwy/targets.h"

namespace levels {

template <typename F>
void ForEach(F&& run) {
  const int64_t here = hwy::SupportedTargets();
  for (const int64_t level : {HWY_SSE4, HWY_AVX2, HWY_AVX3}) {
    if ((here & level) == 0) continue;
    SCOPED_TRACE(hwy::TargetName(level));
    hwy::SetSupportedTargetsForTest(level);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    run();
  }
  hwy::SetSupportedTargetsForTest(0);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

}  // namespace levels

#endif  // TESTS_UNIFORM_LEVELS_H_
