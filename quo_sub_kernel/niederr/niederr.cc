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
#include "quo_sub_kernel/niederr/niederr.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

QUO_DIGITAL_BODIES(Niederr)

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

extern "C" QUO_API int32_t __quoBRngNiederrInitStream(int32_t method, StreamState* stream,
                                                      int32_t n, const uint32_t* params) {
  if (method == QUO_INIT_STANDARD) return SeedNiederr(stream, n, params);
  return MoveDigital(kNiederrShape, method, *DigitalOf(stream), n, params);
}

QUO_EXPORT_DIGITAL(Niederr, kNiederrShape)

}  // namespace quo
#endif
