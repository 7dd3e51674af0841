// sAbstract: a caller's singles, mapped from their interval onto the requested one.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/sabstract/sabstract.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "quo_sub_kernel/_math/map-inl.h"
#include "quo_sub_kernel/_math/quiet_guard.h"
#include "quo_sub_kernel/_service/_quo_abstract.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

// Whether c is below d: a call behind the guard, where the caller's flushing has no say.
int IsIntervalSingle(float c, float d) { return __builtin_isless(c, d); }

void MapSingle(const float* from, size_t n, float* r, float c, float d, float a, float b) {
  Map(from, n, r, c, d, a, b);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(IsIntervalSingle);
HWY_EXPORT(MapSingle);

extern "C" QUO_API int32_t __quosNewAbstractStream(StreamState** stream, int32_t n, float* buffer,
                                                   float c, float d, RefillS refill) {
  *stream = nullptr;
  {
    const QuietGuard guard;
    if (!HWY_DYNAMIC_DISPATCH(IsIntervalSingle)(c, d)) return QUO_BAD_ARGUMENT;
  }
  return NewAbstract<float>(stream, QUO_BRNG_SABSTRACT, n, buffer, {c, d}, refill);
}

extern "C" QUO_API int32_t __quoBRngsAbstractInitStream(int32_t method, StreamState* stream,
                                                        int32_t, const uint32_t* params) {
  return InitAbstract<float>(method, stream, params);
}

// The guard stands around the mapping alone: the caller's function runs as the caller does.
extern "C" QUO_API int32_t __quosBRngsAbstract(StreamState* stream, int32_t n, float* r, float a,
                                               float b) {
  const auto [c, d] = AbstractStateOf<float>(stream)->interval;
  return GenerateAbstract<float>(stream, n, r, [&](const float* from, size_t count, float* to) {
    if (count == 0) return;
    const QuietGuard guard;
    HWY_DYNAMIC_DISPATCH(MapSingle)(from, count, to, c, d, a, b);
  });
}

extern "C" QUO_API int32_t __quodBRngsAbstract(StreamState*, int32_t, double*, double, double) {
  return QUO_WRONG_OUTPUT;
}
extern "C" QUO_API int32_t __quoiBRngsAbstract(StreamState*, int32_t, uint32_t*) {
  return QUO_WRONG_OUTPUT;
}

}  // namespace quo
#endif
