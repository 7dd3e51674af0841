// Niederr: the Niederreiter sequence in base 2 (H. Niederreiter, J. Number Theory 30 (1988) 51-70;
// P. Bratley, B. L. Fox, H. Niederreiter, ACM TOMACS 2 (1992) 195-213) of up to 318 coordinates.
//
// Coordinate i has an irreducible polynomial p of degree e. Row Q e + u of its matrix, u below e,
// holds the digits behind the point of x^u y / p^(Q+1). The method leaves the numerator y free.
// Here the continued fraction of y/p has partial quotients of degree 1 alone; then every leading
// square of the matrix is regular, and each coordinate is a (0, 1)-sequence. (With the usual y,
// which makes the first e digits of y/p ones, the whole square of 32 rows is singular for many p.)
// s coordinates are a (t, s)-sequence with t the sum of their e - 1.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/niederr/niederr.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/digital-inl.h"
#include "quo_sub_kernel/_math/quiet_guard.h"
#include "quo_sub_kernel/niederr/niederr.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

void uNiederr(DigitalState* state, size_t n, double* r) { DigitalUnits(*state, n, r); }
void dNiederr(DigitalState* state, size_t n, double* r, double a, double b) {
  DigitalDoubles(*state, n, r, a, b);
}
void sNiederr(DigitalState* state, size_t n, float* r, double a, double b) {
  DigitalFloats(*state, n, r, a, b);
}
void iNiederr(DigitalState* state, size_t n, uint32_t* r) { DigitalWords(*state, n, r); }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(uNiederr);
HWY_EXPORT(dNiederr);
HWY_EXPORT(sNiederr);
HWY_EXPORT(iNiederr);

extern "C" QUO_API int32_t __quoBRngNiederrInitStream(int32_t method, StreamState* stream,
                                                      int32_t n, const uint32_t* params) {
  if (method == QUO_INIT_STANDARD) return SeedNiederr(stream, n, params);
  return MoveDigital(kNiederrShape, method, *DigitalOf(stream), n, params);
}

extern "C" QUO_API int32_t __quodBRngNiederr(StreamState* stream, int32_t n, double* r, double a,
                                             double b) {
  if (n < 1) return QUO_OK;
  Repair(kNiederrShape, *DigitalOf(stream));
  if (IsUnitInterval(a, b)) {
    HWY_DYNAMIC_DISPATCH(uNiederr)(DigitalOf(stream), static_cast<size_t>(n), r);
    return QUO_OK;
  }
  const QuietGuard guard(ArePlainBounds(a, b));
  HWY_DYNAMIC_DISPATCH(dNiederr)(DigitalOf(stream), static_cast<size_t>(n), r, a, b);
  return QUO_OK;
}

extern "C" QUO_API int32_t __quosBRngNiederr(StreamState* stream, int32_t n, float* r, float a,
                                             float b) {
  if (n < 1) return QUO_OK;
  Repair(kNiederrShape, *DigitalOf(stream));
  const QuietGuard guard(ArePlainBounds(a, b));
  HWY_DYNAMIC_DISPATCH(sNiederr)(DigitalOf(stream), static_cast<size_t>(n), r, a, b);
  return QUO_OK;
}

extern "C" QUO_API int32_t __quoiBRngNiederr(StreamState* stream, int32_t n, uint32_t* r) {
  if (n < 1) return QUO_OK;
  Repair(kNiederrShape, *DigitalOf(stream));
  HWY_DYNAMIC_DISPATCH(iNiederr)(DigitalOf(stream), static_cast<size_t>(n), r);
  return QUO_OK;
}

}  // namespace quo
#endif
