// Geometric, the failures before the first success: floor(log(u) / log(1 - p)), u uniform on [0, 1)
// in single precision, like the logarithm of u and the product with 1/log(1 - p). log(0) is the
// logarithm of the smallest positive number.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/geometric/geometric.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//

#include "hwy/highway.h"
#include "quo_kernel/_kernel/each-inl.h"
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/vector_math.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

// Truncated. Beyond the 32-bit range the nearest end, for what is not a number the upper one.
template <class D, class V>
HWY_INLINE hn::Vec<hn::RebindToSigned<D>> Truncated(D d, V x) {
  const hn::RebindToSigned<D> di;
  const auto below = hn::RebindMask(di, hn::Lt(x, hn::Set(d, 0x1p31f)));
  return hn::IfThenElse(below, hn::ConvertTo(di, x), hn::Set(di, hwy::LimitsMax<int32_t>()));
}

// r[i] = the floor of log_u[i] scale
void StoreFloors(size_t n, const float* log_u, int32_t* r, float scale) {
  Each(n, log_u, r, [=](auto d, auto log) HWY_ATTR {
    const auto x = hn::Mul(log, hn::Set(d, scale));
    const auto whole = hn::ConvertTo(d, Truncated(d, x));
    return Truncated(d, hn::Sub(x, hn::IfThenElseZero(hn::Lt(x, whole), hn::Set(d, 1.0f))));
  });
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(StoreFloors);

namespace {
constexpr float _quosGeometricTab[] = {kLnSmallestSingle, 1.0f};
}

extern "C" QUO_API int32_t _quoiRngGeometric(uint32_t, StreamState* stream, int32_t n, int32_t* r,
                                             double p) {
  constexpr int32_t kBlock = 1024;
  const VectorMath borrowed(ReplaceAll<_quosGeometricTab>);
  const auto scale = static_cast<float>(1.0 / __quodLn(1.0 - AfterControl(p)));
  return GenerateInBlocks<kBlock>(stream, n, r, 0.0f, _quosGeometricTab[1],
                                  [=](int32_t m, float* block, int32_t* to) {
                                    Ln(m, block);
                                    HWY_DYNAMIC_DISPATCH(StoreFloors)
                                    (static_cast<size_t>(m), block, to, scale);
                                  });
}

}  // namespace quo
#endif
