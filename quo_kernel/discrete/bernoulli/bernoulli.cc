// Bernoulli: 1 if u < p, else 0, u uniform on [0, 1) in single precision. p is rounded to single
// precision too, and the two are compared by their bits: for what is not negative that is the same.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/bernoulli/bernoulli.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <bit>
#include <cstddef>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/_kernel/each-inl.h"
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/passes.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

// r[i] = 1 if the bits of p are greater than r[i], else 0
void StoreSuccesses(size_t n, int32_t* r, int32_t p) {
  Each(n, r, r, [=](auto d, auto u) HWY_ATTR {
    return hn::IfThenElseZero(hn::Gt(hn::Set(d, p), u), hn::Set(d, 1));
  });
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(StoreSuccesses);

extern "C" QUO_API int32_t _quoiRngBernoulli(uint32_t, StreamState* stream, int32_t n, int32_t* r,
                                             double p) {
  const QuietCall quiet;
  const auto single = static_cast<float>(AfterControl(p));
  const int32_t status = Generate(stream, n, reinterpret_cast<float*>(r), 0.0f, 1.0f);
  if (status < 0 || n < 1) return status;
  HWY_DYNAMIC_DISPATCH(StoreSuccesses)(static_cast<size_t>(n), r, std::bit_cast<int32_t>(single));
  return status;
}

}  // namespace quo
#endif
