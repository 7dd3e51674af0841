// dAbstract: a caller's doubles, mapped from their interval onto the requested one.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/dabstract/dabstract.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "quo_sub_kernel/_math/map-inl.h"
#include "quo_sub_kernel/_math/quiet_guard.h"
#include "quo_sub_kernel/_service/_quo_abstract.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

// Whether c is below d: a call behind the guard, where the caller's flushing has no say.
int IsIntervalDouble(double c, double d) { return __builtin_isless(c, d); }

void MapDouble(const double* from, size_t n, double* r, double c, double d, double a, double b) {
  Map(from, n, r, c, d, a, b);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(IsIntervalDouble);
HWY_EXPORT(MapDouble);

extern "C" QUO_API int32_t __quodNewAbstractStream(StreamState** stream, int32_t n, double* buffer,
                                                   double c, double d, RefillD refill) {
  *stream = nullptr;
  {
    const QuietGuard guard;
    if (!HWY_DYNAMIC_DISPATCH(IsIntervalDouble)(c, d)) return QUO_BAD_ARGUMENT;
  }
  return NewAbstract<double>(stream, QUO_BRNG_DABSTRACT, n, buffer, {c, d}, refill);
}

extern "C" QUO_API int32_t __quoBRngdAbstractInitStream(int32_t method, StreamState* stream,
                                                        int32_t, const uint32_t* params) {
  return InitAbstract<double>(method, stream, params);
}

// The guard stands around the mapping alone: the caller's function runs as the caller does.
extern "C" QUO_API int32_t __quodBRngdAbstract(StreamState* stream, int32_t n, double* r, double a,
                                               double b) {
  const auto [c, d] = AbstractStateOf<double>(stream)->interval;
  return GenerateAbstract<double>(stream, n, r, [&](const double* from, size_t count, double* to) {
    if (count == 0) return;
    const QuietGuard guard;
    HWY_DYNAMIC_DISPATCH(MapDouble)(from, count, to, c, d, a, b);
  });
}

extern "C" QUO_API int32_t __quosBRngdAbstract(StreamState*, int32_t, float*, float, float) {
  return QUO_WRONG_OUTPUT;
}
extern "C" QUO_API int32_t __quoiBRngdAbstract(StreamState*, int32_t, uint32_t*) {
  return QUO_WRONG_OUTPUT;
}

}  // namespace quo
#endif
