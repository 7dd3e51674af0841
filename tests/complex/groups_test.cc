// Kernels that begin a group of numbers before the one ahead of it is ended: rare numbers in any
// groups, whole arrays in place, against calls of one number each.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "pexquo/pex.h"
#include "tests/support/levels.h"
#include "tests/support/random.h"

namespace {

template <typename C>
C Common(Random& random) {
  using T = decltype(C::re);
  return {static_cast<T>(random.Unit() * 8 - 4), static_cast<T>(random.Unit() * 8 - 4)};
}

template <typename C>
C Rare(Random& random) {
  using T = decltype(C::re);
  using Limits = std::numeric_limits<T>;
  const T parts[] = {0,
                     -T(0),
                     Limits::denorm_min(),
                     Limits::max(),
                     Limits::infinity(),
                     Limits::quiet_NaN(),
                     static_cast<T>(random.Unit())};
  return {parts[random.Below(7)], parts[random.Below(7)]};
}

// `call` takes one array twice or once, and r.
template <typename C, typename R, typename Call>
void ExpectSameAsSingly(Call call, bool in_place) {
  constexpr uint64_t kSeed = 2026;
  Random random(kSeed);
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    const UseLevel use(level);
    for (int round = 0; round < 300; ++round) {
      SCOPED_TRACE(testing::Message() << level.name << ", seed " << kSeed << ", round " << round);
      const auto n = static_cast<int32_t>(1 + random.Below(300));
      std::vector<C> a(n), b(n);
      for (int32_t i = 0; i < n; ++i) a[i] = Common<C>(random), b[i] = Common<C>(random);
      for (uint32_t rare = random.Below(6); rare > 0; --rare) {
        a[random.Below(static_cast<uint32_t>(n))] = Rare<C>(random);
        b[random.Below(static_cast<uint32_t>(n))] = Rare<C>(random);
      }
      std::vector<R> want(n), got(n);
      for (int32_t i = 0; i < n; ++i) call(1, &a[i], &b[i], &want[i]);
      if constexpr (std::is_same_v<C, R>) {
        if (in_place) {
          call(n, a.data(), b.data(), a.data());
          got = a;
        } else {
          call(n, a.data(), b.data(), got.data());
        }
      } else {
        call(n, a.data(), b.data(), got.data());
      }
      ASSERT_EQ(std::memcmp(got.data(), want.data(), n * sizeof(R)), 0);
    }
  }
}

template <auto kUnary, typename C, typename R>
void ExpectUnary() {
  const auto call = [](int32_t n, const C* a, const C*, R* r) { kUnary(n, a, r); };
  ExpectSameAsSingly<C, R>(call, false);
  if (std::is_same_v<C, R>) ExpectSameAsSingly<C, R>(call, true);
}

TEST(GroupsAhead, AreThoseOfSingleCalls) {
  ExpectUnary<_pexzAbs_HA, PexComplex16, double>();
  ExpectUnary<_pexcAbs_HA, PexComplex8, float>();
  ExpectUnary<_pexzSqrt_HA, PexComplex16, PexComplex16>();
  ExpectUnary<_pexcSqrt_HA, PexComplex8, PexComplex8>();
  for (const bool in_place : {false, true}) {
    ExpectSameAsSingly<PexComplex16, PexComplex16>(_pexzDiv_HA, in_place);
  }
}

}  // namespace
