#include "tests/kernel/root_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tests/kernel/root_kernels.cc"
#include "hwy/foreach_target.h"
//
#include "hwy/highway.h"
#include "pex_core/_heap/real/root_correct-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

void RootsOfArray(size_t n, const double* t, [[maybe_unused]] const double* estimates, double* r) {
  const hn::ScalableTag<double> d;
  const size_t lanes = hn::Lanes(d);
  for (size_t i = 0; i < n; i += 4 * lanes) {
    hn::Vec<decltype(d)> x[4];
    for (size_t k = 0; k < 4; ++k) x[k] = hn::LoadU(d, t + i + k * lanes);
    bool done = false;
#if HWY_TARGET != HWY_SSE4
    if (estimates != nullptr) {
      hn::Vec<decltype(d)> y[4];
      for (size_t k = 0; k < 4; ++k) y[k] = hn::LoadU(d, estimates + i + k * lanes);
      RootsByEstimates(d, x, y);
      done = true;
    }
#endif
    if (!done) Roots(d, x);
    for (size_t k = 0; k < 4; ++k) hn::StoreU(x[k], d, r + i + k * lanes);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(RootsOfArray);
}  // namespace pex

void RunRoots(size_t n, const double* t, const double* estimates, double* r) {
  using namespace pex;
  HWY_DYNAMIC_DISPATCH(RootsOfArray)(n, t, estimates, r);
}
#endif
