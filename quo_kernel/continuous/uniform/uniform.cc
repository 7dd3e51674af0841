// Continuous uniforms on [a, b), double and single: the generator's own scaled output, clamped into
// [a, b] by the accurate method, since a + (b - a) u may round to just outside.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/continuous/uniform/uniform.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <cstring>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/generate.h"
#include "quo_sub_kernel/_math/quiet_guard.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// min(b, max(a, r)), where max(a, r) is a > r ? a : r and min(b, r) is b < r ? b : r: a bound that
// is not a number bounds nothing, a result that is not a number stays, and so does the sign of a
// zero.
template <class D, class V>
HWY_INLINE V Clamped(D, V a, V b, V r) {
  return hn::Min(b, hn::Max(a, r));
}

template <typename T>
HWY_INLINE void Clamp(size_t n, T* r, T a, T b) {
  const hn::ScalableTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  const auto va = hn::Set(d, a), vb = hn::Set(d, b);
  size_t i = 0;
  for (; i + 4 * kLanes <= n; i += 4 * kLanes) {
    for (size_t k = 0; k < 4; ++k) {
      T* p = r + i + k * kLanes;
      hn::StoreU(Clamped(d, va, vb, hn::LoadU(d, p)), d, p);
    }
  }
  for (; i + kLanes <= n; i += kLanes) {
    hn::StoreU(Clamped(d, va, vb, hn::LoadU(d, r + i)), d, r + i);
  }
  for (; i < n; ++i) {  // r may stand at any address
    T x;
    std::memcpy(&x, r + i, sizeof(T));
    x = a > x ? a : x;
    x = b < x ? b : x;
    std::memcpy(r + i, &x, sizeof(T));
  }
}

void ClampDouble(size_t n, double* r, double a, double b) { Clamp(n, r, a, b); }
void ClampSingle(size_t n, float* r, float a, float b) { Clamp(n, r, a, b); }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(ClampDouble);
HWY_EXPORT(ClampSingle);

namespace {

void ClampAll(size_t n, double* r, double a, double b) {
  HWY_DYNAMIC_DISPATCH(ClampDouble)(n, r, a, b);
}
void ClampAll(size_t n, float* r, float a, float b) {
  HWY_DYNAMIC_DISPATCH(ClampSingle)(n, r, a, b);
}

template <typename T>
int32_t Unguarded(bool clamped, StreamState* stream, int32_t n, T* r, T a, T b) {
  const int32_t status = Generate(stream, n, r, a, b);
  if (clamped && status >= 0 && n > 0) ClampAll(static_cast<size_t>(n), r, a, b);
  return status;
}

// To read the control word takes longer than to make a number: it is left to the library's own
// generators, where they are all that could leave a trace.
template <typename T>
int32_t Uniform(uint32_t method, StreamState* stream, int32_t n, T* r, T a, T b) {
  const bool clamped = (method & QUO_METHOD_ACCURATE) != 0;
  if (GuardsItself(stream) && (!clamped || ArePlainBounds(a, b))) {
    return Unguarded(clamped, stream, n, r, a, b);
  }
  const QuietGuard guard;
  return Unguarded(clamped, stream, n, r, a, b);
}

}  // namespace

extern "C" QUO_API int32_t _quodRngUniform(uint32_t method, StreamState* stream, int32_t n,
                                           double* r, double a, double b) {
  return Uniform(method, stream, n, r, a, b);
}

extern "C" QUO_API int32_t _quosRngUniform(uint32_t method, StreamState* stream, int32_t n,
                                           float* r, float a, float b) {
  return Uniform(method, stream, n, r, a, b);
}

}  // namespace quo
#endif
