// The vector functions that distributions are made of, by type, in place: the double ones with 26
// bits, the single ones with 21. The accuracy is part of the generated sequences. For callers that
// hold a VectorMath.
#ifndef QUO_KERNEL__KERNEL_VECTOR_MATH_H_
#define QUO_KERNEL__KERNEL_VECTOR_MATH_H_

#include <cstdint>

#include "pexquo/pex.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_sub_kernel/_math/scalar.h"

// Entries of vector math without their control guards.
namespace pex::unguarded {

#define QUO_UNARY(Function)                                    \
  int d##Function##_26(int32_t n, const double* a, double* r); \
  int s##Function##_21(int32_t n, const float* a, float* r);
QUO_UNARY(Ln)
QUO_UNARY(Sin)
QUO_UNARY(Sqrt)
QUO_UNARY(ErfInv)
#undef QUO_UNARY
int dLn_50(int32_t n, const double* a, double* r);
int dLog1p_50(int32_t n, const double* a, double* r);
int dExp_50(int32_t n, const double* a, double* r);
int dExpm1_50(int32_t n, const double* a, double* r);
int dSinCos_26(int32_t n, const double* a, double* r1, double* r2);
int sSinCos_21(int32_t n, const float* a, float* r1, float* r2);

}  // namespace pex::unguarded

namespace quo {

namespace math = pex::unguarded;

inline void Ln(int32_t n, double* r) { math::dLn_26(n, r, r); }
inline void Ln(int32_t n, float* r) { math::sLn_21(n, r, r); }
inline void Ln(int32_t n, const double* x, double* r) { math::dLn_26(n, x, r); }
inline void Ln(int32_t n, const float* x, float* r) { math::sLn_21(n, x, r); }
inline void Sqrt(int32_t n, double* r) { math::dSqrt_26(n, r, r); }
inline void Sqrt(int32_t n, float* r) { math::sSqrt_21(n, r, r); }
inline void Powx(int32_t n, double* r, double y) { _pexdPowx_26(n, r, y, r); }
inline void Powx(int32_t n, float* r, float y) { _pexsPowx_21(n, r, y, r); }

// For callers without a VectorMath: special elements are reported as the thread's mode and callback
// say, by their places in r, and the callback may replace them.
inline void ExpAsSet(int32_t n, double* r) { _pexdExp_26(n, r, r); }
inline void ExpAsSet(int32_t n, float* r) { _pexsExp_21(n, r, r); }
inline void TanAsSet(int32_t n, double* r) { _pexdTan_26(n, r, r); }
inline void TanAsSet(int32_t n, float* r) { _pexsTan_21(n, r, r); }

// Callbacks for VectorMath: kTab[0] for every special element, and for poles only.
template <const auto& kTab>
int ReplaceAll(PexErrorContext* record) {
  return ReplaceBy(record, kTab[0]);
}
template <const auto& kTab>
int ReplacePoles(PexErrorContext* record) {
  return record->code == PEX_STATUS_SINGULARITY ? ReplaceBy(record, kTab[0]) : 0;
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_VECTOR_MATH_H_
