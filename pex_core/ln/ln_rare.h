// The scalar logarithms: special values, errors, and subnormal arguments.
#ifndef PEX_CORE_LN_LN_RARE_H_
#define PEX_CORE_LN_LN_RARE_H_

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace pex {

// By the bits, as a comparison of a signalling NaN raises invalid: logarithms hand every NaN on as
// it is.
template <typename T>
inline bool IsNaN(T x) {
  using Bits = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  constexpr Bits kSign = Bits{1} << (8 * sizeof(T) - 1);
  return (std::bit_cast<Bits>(x) & ~kSign) >
         std::bit_cast<Bits>(std::numeric_limits<T>::infinity());
}

// The logarithm of any x, natural and decimal, with an error below 0.53 ulp, next to 1, which no
// kernel leaves to it, below 0.58; returns the status code: 1 for negative numbers (NaN), 2 for
// zeros (-inf), 0 otherwise.
int dLnScalar(double x, double* r);
int dLog10Scalar(double x, double* r);

// The special values alone; false for positive finite x.
template <typename T>
bool LogSpecial(T x, T* r, int* code);

// The same in single precision, computed in double.
int sLnScalar(float x, float* r);
int sLog10Scalar(float x, float* r);

}  // namespace pex

#endif  // PEX_CORE_LN_LN_RARE_H_
