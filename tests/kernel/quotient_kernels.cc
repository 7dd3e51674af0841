#include "tests/kernel/quotient_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tests/kernel/quotient_kernels.cc"
#include "hwy/foreach_target.h"
//
#include "hwy/highway.h"
#include "pex_core/_heap/real/quotient_correct-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

bool QuotientsOfArray([[maybe_unused]] size_t n, [[maybe_unused]] double* a,
                      [[maybe_unused]] const double* b, [[maybe_unused]] const double* estimates) {
#if HWY_TARGET == HWY_AVX3
  const hn::ScalableTag<double> d;
  const size_t lanes = hn::Lanes(d);
  constexpr size_t kVectors = 8;
  for (size_t i = 0; i < n; i += kVectors * lanes) {
    hn::Vec<decltype(d)> x[kVectors], m[kVectors], y[kVectors];
    for (size_t k = 0; k < kVectors; ++k) {
      x[k] = hn::LoadU(d, a + i + k * lanes);
      m[k] = hn::LoadU(d, b + i + k * lanes);
    }
    if (estimates != nullptr) {
      for (size_t k = 0; k < kVectors; ++k) y[k] = hn::LoadU(d, estimates + i + k * lanes);
      QuotientsByEstimates(d, x, m, y);
    } else {
      MixedQuotients<kVectors / 2>(d, x, m);
    }
    for (size_t k = 0; k < kVectors; ++k) hn::StoreU(x[k], d, a + i + k * lanes);
  }
  return true;
#else
  return false;
#endif
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(QuotientsOfArray);
}  // namespace pex

bool RunQuotients(size_t n, double* a, const double* b, const double* estimates) {
  using namespace pex;
  return HWY_DYNAMIC_DISPATCH(QuotientsOfArray)(n, a, b, estimates);
}
#endif
