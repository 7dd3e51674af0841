// Entries with known faults, for tests of the measurer.
#ifndef TESTS_ACCURACY_FAKE_ENTRY_H_
#define TESTS_ACCURACY_FAKE_ENTRY_H_

#include "accuracy/measure.h"

namespace pex::accuracy {

// A unary entry made of a scalar function without captures.
template <typename T, typename F>
Entry FakeEntry(std::string_view function, Tier tier, F) {
  static_assert(std::is_empty_v<F>, "the function must not capture");
  int (*call)(int32_t, const T*, T*) = [](int32_t n, const T* a, T* r) {
    for (int32_t i = 0; i < n; ++i) r[i] = F()(a[i]);
    return 0;
  };
  return {"fake", FindFunction(function), sizeof(T) == 8 ? 'd' : 's', tier,
          reinterpret_cast<const void*>(call)};
}

}  // namespace pex::accuracy

#endif  // TESTS_ACCURACY_FAKE_ENTRY_H_
