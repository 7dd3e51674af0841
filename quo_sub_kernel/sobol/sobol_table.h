// The coordinates of the Sobol sequence from the second on: the primitive polynomials in order of
// degree and value, and the first m numbers of each with good two-dimensional projections, of
// S. Joe, F. Y. Kuo, SIAM J. Sci. Comput. 30 (2008) 2635-2654, list new-joe-kuo-6.
#ifndef QUO_SUB_KERNEL_SOBOL_SOBOL_TABLE_H_
#define QUO_SUB_KERNEL_SOBOL_SOBOL_TABLE_H_

#include <cstdint>

namespace quo {

struct SobolCoordinate {
  uint16_t polynomial;  // bit k is the coefficient of x^k
  uint8_t m[8];         // m_1, m_2 ... as many as its degree; m_k is odd and below 2^k
};

// clang-format off
inline constexpr SobolCoordinate kSobolTable[39] = {
    {3, {1}},
    {7, {1, 3}},
    {11, {1, 3, 1}},
    {13, {1, 1, 1}},
    {19, {1, 1, 3, 3}},
    {25, {1, 3, 5, 13}},
    {37, {1, 1, 5, 5, 17}},
    {41, {1, 1, 5, 5, 5}},
    {47, {1, 1, 7, 11, 19}},
    {55, {1, 1, 5, 1, 1}},
    {59, {1, 1, 1, 3, 11}},
    {61, {1, 3, 5, 5, 31}},
    {67, {1, 3, 3, 9, 7, 49}},
    {91, {1, 1, 1, 15, 21, 21}},
    {97, {1, 3, 1, 13, 27, 49}},
    {103, {1, 1, 1, 15, 7, 5}},
    {109, {1, 3, 1, 15, 13, 25}},
    {115, {1, 1, 5, 5, 19, 61}},
    {131, {1, 3, 7, 11, 23, 15, 103}},
    {137, {1, 3, 7, 13, 13, 15, 69}},
    {143, {1, 1, 3, 13, 7, 35, 63}},
    {145, {1, 3, 5, 9, 1, 25, 53}},
    {157, {1, 3, 1, 13, 9, 35, 107}},
    {167, {1, 3, 1, 5, 27, 61, 31}},
    {171, {1, 1, 5, 11, 19, 41, 61}},
    {185, {1, 3, 5, 3, 3, 13, 69}},
    {191, {1, 1, 7, 13, 1, 19, 1}},
    {193, {1, 3, 7, 5, 13, 19, 59}},
    {203, {1, 1, 3, 9, 25, 29, 41}},
    {211, {1, 3, 5, 13, 23, 1, 55}},
    {213, {1, 3, 7, 3, 13, 59, 17}},
    {229, {1, 3, 1, 3, 5, 53, 69}},
    {239, {1, 1, 5, 5, 23, 33, 13}},
    {241, {1, 1, 7, 7, 1, 61, 123}},
    {247, {1, 1, 7, 9, 13, 61, 49}},
    {253, {1, 3, 3, 5, 3, 55, 33}},
    {285, {1, 3, 1, 15, 31, 13, 49, 245}},
    {299, {1, 3, 5, 15, 31, 59, 63, 97}},
    {301, {1, 3, 1, 11, 11, 11, 77, 249}},
};
// clang-format on

}  // namespace quo

#endif  // QUO_SUB_KERNEL_SOBOL_SOBOL_TABLE_H_
