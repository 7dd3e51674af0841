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

size_t WrongRootsFrom([[maybe_unused]] float t, [[maybe_unused]] int32_t first,
                      [[maybe_unused]] int32_t last) {
  size_t wrong = 0;
#if HWY_TARGET == HWY_AVX3
  const hn::ScalableTag<float> d;
  const hn::ScalableTag<int32_t> di;
  const auto x = hn::Set(d, t), root = hn::Sqrt(x);
  for (int32_t pattern = first; pattern <= last; pattern += static_cast<int32_t>(hn::Lanes(d))) {
    const auto y = hn::BitCast(d, hn::Iota(di, pattern));
    wrong += hn::CountTrue(d, hn::Ne(RootByEstimate(d, x, y), root));
  }
#endif
  return wrong;
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(RootsOfArray);
HWY_EXPORT(WrongRootsFrom);
}  // namespace pex

void RunRoots(size_t n, const double* t, const double* estimates, double* r) {
  using namespace pex;
  HWY_DYNAMIC_DISPATCH(RootsOfArray)(n, t, estimates, r);
}

size_t WrongRoots(float t, int32_t first, int32_t last) {
  using namespace pex;
  return HWY_DYNAMIC_DISPATCH(WrongRootsFrom)(t, first, last);
}
#endif
