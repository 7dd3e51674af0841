// PackV and UnpackV: copies from and to elements at given indices.
//
// One element after the other on every vector level: where the gather and scatter instructions were
// measured they took longer than scalar moves, and moves in order need no knowledge of where the
// indices point.
#include "pex_core/pack/pack.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

template <typename T, typename Index>
void PackIndexed(int64_t n, const T* a, const Index* ia, T* y) {
  int64_t i = 0;
  if (n > 0 && !Overlap(ia, static_cast<size_t>(n), y, static_cast<size_t>(n))) {
    for (; i + 4 <= n; i += 4) {
      const int64_t j0 = ia[i], j1 = ia[i + 1], j2 = ia[i + 2], j3 = ia[i + 3];
      y[i] = a[j0];
      y[i + 1] = a[j1];
      y[i + 2] = a[j2];
      y[i + 3] = a[j3];
    }
  }
  for (; i < n; ++i) y[i] = a[ia[i]];
}

template <typename T, typename Index>
void UnpackIndexed(int64_t n, const T* a, T* y, const Index* iy) {
  for (int64_t i = 0; i < n; ++i) y[iy[i]] = a[i];
}

template <typename T>
int PackAny(int64_t n, const T* a, const void* ia, T* y, int32_t width) {
  n = Narrowed(n, width);
  if (width == kWidth32) {
    PackIndexed(n, a, static_cast<const int32_t*>(ia), y);
  } else {
    PackIndexed(n, a, static_cast<const int64_t*>(ia), y);
  }
  return 0;
}

template <typename T>
int UnpackAny(int64_t n, const T* a, T* y, const void* iy, int32_t width) {
  n = Narrowed(n, width);
  if (width == kWidth32) {
    UnpackIndexed(n, a, y, static_cast<const int32_t*>(iy));
  } else {
    UnpackIndexed(n, a, y, static_cast<const int64_t*>(iy));
  }
  return 0;
}

}  // namespace

extern "C" PEXQUO_API int _pexdPackV(int64_t n, const double* a, const void* ia, double* y,
                                     int32_t width) {
  return PackAny(n, a, ia, y, width);
}
extern "C" PEXQUO_API int _pexsPackV(int64_t n, const float* a, const void* ia, float* y,
                                     int32_t width) {
  return PackAny(n, a, ia, y, width);
}
extern "C" PEXQUO_API int _pexdUnpackV(int64_t n, const double* a, double* y, const void* iy,
                                       int32_t width) {
  return UnpackAny(n, a, y, iy, width);
}
extern "C" PEXQUO_API int _pexsUnpackV(int64_t n, const float* a, float* y, const void* iy,
                                       int32_t width) {
  return UnpackAny(n, a, y, iy, width);
}

}  // namespace pex
