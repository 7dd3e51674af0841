// The vector functions that distributions are made of, by type, in place: the double ones with 26
// bits, the single ones with 21. The accuracy is part of the generated sequences.
#ifndef QUO_KERNEL__KERNEL_VECTOR_MATH_H_
#define QUO_KERNEL__KERNEL_VECTOR_MATH_H_

#include <cstdint>

#include "pexquo/pex.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_sub_kernel/_math/scalar.h"

namespace quo {

inline void Ln(int32_t n, double* r) { _pexdLn_26(n, r, r); }
inline void Ln(int32_t n, float* r) { _pexsLn_21(n, r, r); }
inline void Ln(int32_t n, const double* x, double* r) { _pexdLn_26(n, x, r); }
inline void Ln(int32_t n, const float* x, float* r) { _pexsLn_21(n, x, r); }
inline void Exp(int32_t n, double* r) { _pexdExp_26(n, r, r); }
inline void Exp(int32_t n, float* r) { _pexsExp_21(n, r, r); }
inline void Tan(int32_t n, double* r) { _pexdTan_26(n, r, r); }
inline void Tan(int32_t n, float* r) { _pexsTan_21(n, r, r); }
inline void Sqrt(int32_t n, double* r) { _pexdSqrt_26(n, r, r); }
inline void Sqrt(int32_t n, float* r) { _pexsSqrt_21(n, r, r); }
inline void Powx(int32_t n, double* r, double y) { _pexdPowx_26(n, r, y, r); }
inline void Powx(int32_t n, float* r, float y) { _pexsPowx_21(n, r, y, r); }

// Callbacks for VectorMath: kTab[0] for every special element, for poles only, and none at all.
template <const auto& kTab>
int ReplaceAll(PexErrorContext* record) {
  return ReplaceBy(record, kTab[0]);
}
template <const auto& kTab>
int ReplacePoles(PexErrorContext* record) {
  return record->code == PEX_STATUS_SINGULARITY ? ReplaceBy(record, kTab[0]) : 0;
}
inline int KeepResults(PexErrorContext*) { return 0; }

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_VECTOR_MATH_H_
