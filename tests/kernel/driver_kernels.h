// Kernels whose formulas are so plain that a test can say what the drivers must deliver. On a lane
// that is rare, or beyond the end, their main paths would raise a flag that gives them away.
#ifndef TESTS_KERNEL_DRIVER_KERNELS_H_
#define TESTS_KERNEL_DRIVER_KERNELS_H_

#include <cmath>
#include <cstdint>
#include <limits>

namespace pex {

// sqrt(x) + (x - x) on [0, 100).
template <typename T>
bool IsCommon(T x) {
  return !std::signbit(x) && x < 100;
}

// Elsewhere: a NaN stays (no error), up to 2^20 there is half the number (no error), and the three
// other pieces have a code each.
template <typename T>
int RareRoot(T x, T* r) {
  if (x != x) return *r = x, 0;
  if (x < -1) return *r = std::numeric_limits<T>::quiet_NaN(), 1;
  if (x < 0) return *r = -std::numeric_limits<T>::infinity(), 2;
  if (x > 1048576) return *r = std::numeric_limits<T>::infinity(), 3;
  return *r = x / 2, 0;
}

// x / y on [0, 100) x (0, 100).
template <typename T>
bool IsCommon(T x, T y) {
  return IsCommon(x) && IsCommon(y) && y != 0;
}

template <typename T>
int RareQuotient(T x, T y, T* r) {
  if (x != x || y != y) return *r = 0, 0;
  if (y == 0) return *r = std::numeric_limits<T>::infinity(), 2;
  return *r = T(-1), 1;
}

// sqrt(x) and 1 / x on (0, 100).
template <typename T>
int RarePair(T x, T* r1, T* r2) {
  *r2 = T(-2);
  if (x == 0) return *r1 = 0, 2;
  return RareRoot(x, r1);
}

}  // namespace pex

extern "C" {
int64_t TestTarget();
int _pexdTestRoot(int32_t n, const double* a, double* r);
int _pexsTestRoot(int32_t n, const float* a, float* r);
int _pexsTestWideRoot(int32_t n, const float* a, float* r);
int _pexdTestQuotient(int32_t n, const double* a, const double* b, double* r);
int _pexsTestQuotient(int32_t n, const float* a, const float* b, float* r);
int _pexdTestTriedQuotient(int32_t n, const double* a, const double* b, double* r);
int _pexsTestTriedQuotient(int32_t n, const float* a, const float* b, float* r);
int _pexdTestQuotientBy(int32_t n, const double* a, double b, double* r);
int _pexsTestQuotientBy(int32_t n, const float* a, float b, float* r);
int _pexdTestPair(int32_t n, const double* a, double* r1, double* r2);
int _pexsTestPair(int32_t n, const float* a, float* r1, float* r2);
}

#endif  // TESTS_KERNEL_DRIVER_KERNELS_H_
