// PackI and UnpackI: copies from and to elements at a constant increment.
//
// Increment 1 is a memory move, -1 and 2 (the real parts of complex numbers) are shuffles of whole
// vectors. For the others, four loads joined to one vector store took half the time of a plain loop
// or of the gather instruction; spread stores are bound by one store a cycle in any form.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/pack/strided.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <cstring>

#include "hwy/highway.h"
#include "pex_core/pack/pack.h"
#include "pexquo/pex.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// y[i] = a[-i] and y[i] = a[2 i], arrays apart. Return the number of elements done; what is left is
// less than a vector, or one for the second, whose last vector would read behind the last element.
template <typename T>
int64_t PackReversed(int64_t n, const T* a, T* y) {
  const hn::ScalableTag<T> d;
  const int64_t lanes = hn::Lanes(d);
  int64_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    hn::StoreU(hn::Reverse(d, hn::LoadU(d, a - i - lanes + 1)), d, y + i);
  }
  return i;
}

template <typename T>
int64_t PackEven(int64_t n, const T* a, T* y) {
  const hn::ScalableTag<T> d;
  const int64_t lanes = hn::Lanes(d);
  int64_t i = 0;
  for (; i + lanes < n; i += lanes) {
    const auto low = hn::LoadU(d, a + 2 * i);
    const auto high = hn::LoadU(d, a + 2 * i + lanes);
    hn::StoreU(hn::ConcatEven(d, high, low), d, y + i);
  }
  return i;
}

template <typename T>
int64_t PackQuads(int64_t n, const T* a, int64_t inc, T* y) {
  int64_t i = 0;
  for (; i + 4 <= n; i += 4) {
    const T* const p = a + i * inc;
    const T x0 = p[0], x1 = p[inc], x2 = p[2 * inc], x3 = p[3 * inc];
    y[i] = x0;
    y[i + 1] = x1;
    y[i + 2] = x2;
    y[i + 3] = x3;
  }
  return i;
}

// y[i] = a[i]. Where y begins behind a within the range, one element after the other: left to
// itself the compiler moves whole vectors once it believes the arrays to lie whole elements apart.
template <typename T>
int PackContiguous(int64_t n, const T* a, T* y) {
  if (y > a && y < a + n) {
    const volatile T* const from = a;
    volatile T* const to = y;
    for (int64_t i = 0; i < n; ++i) to[i] = from[i];
  } else {
    std::memmove(y, a, static_cast<size_t>(n) * sizeof(T));
  }
  return 0;
}

template <typename T>
int PackStrided(int64_t n, const T* a, int64_t inc, T* y) {
  if (n <= 0) return 0;
  if (inc == 1) return PackContiguous(n, a, y);
  const int64_t last = (n - 1) * inc;
  const T* const first = last < 0 ? a + last : a;
  const size_t extent = static_cast<size_t>(last < 0 ? -last : last) + 1;
  int64_t i = 0;
  if (!Overlap(first, extent, y, static_cast<size_t>(n))) {
    i = inc == -1 ? PackReversed(n, a, y) : inc == 2 ? PackEven(n, a, y) : PackQuads(n, a, inc, y);
  }
  for (; i < n; ++i) y[i] = a[i * inc];
  return 0;
}

template <typename T>
int UnpackStrided(int64_t n, const T* a, T* y, int64_t inc) {
  if (n <= 0) return 0;
  if (inc == 1) return PackContiguous(n, a, y);
  for (int64_t i = 0; i < n; ++i) y[i * inc] = a[i];
  return 0;
}

int dPackI(int64_t n, const double* a, int64_t inc, double* y) { return PackStrided(n, a, inc, y); }
int sPackI(int64_t n, const float* a, int64_t inc, float* y) { return PackStrided(n, a, inc, y); }
int dUnpackI(int64_t n, const double* a, double* y, int64_t inc) {
  return UnpackStrided(n, a, y, inc);
}
int sUnpackI(int64_t n, const float* a, float* y, int64_t inc) {
  return UnpackStrided(n, a, y, inc);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {

HWY_EXPORT(dPackI);
HWY_EXPORT(sPackI);
HWY_EXPORT(dUnpackI);
HWY_EXPORT(sUnpackI);

extern "C" PEXQUO_API int _pexdPackI(int64_t n, const double* a, int64_t inca, double* y,
                                     int32_t width) {
  return HWY_DYNAMIC_DISPATCH(dPackI)(Narrowed(n, width), a, Narrowed(inca, width), y);
}
extern "C" PEXQUO_API int _pexsPackI(int64_t n, const float* a, int64_t inca, float* y,
                                     int32_t width) {
  return HWY_DYNAMIC_DISPATCH(sPackI)(Narrowed(n, width), a, Narrowed(inca, width), y);
}
extern "C" PEXQUO_API int _pexdUnpackI(int64_t n, const double* a, double* y, int64_t incy,
                                       int32_t width) {
  return HWY_DYNAMIC_DISPATCH(dUnpackI)(Narrowed(n, width), a, y, Narrowed(incy, width));
}
extern "C" PEXQUO_API int _pexsUnpackI(int64_t n, const float* a, float* y, int64_t incy,
                                       int32_t width) {
  return HWY_DYNAMIC_DISPATCH(sUnpackI)(Narrowed(n, width), a, y, Narrowed(incy, width));
}

}  // namespace pex
#endif
