// The correctly rounded quotients of several vectors, as a call over arrays.
#ifndef TESTS_KERNEL_QUOTIENT_KERNELS_H_
#define TESTS_KERNEL_QUOTIENT_KERNELS_H_

#include <cstddef>

// a becomes a/b from estimates of 1/b; null: from the processor's own, for the vectors that use
// them. n is a multiple of 64. False, with nothing done, on levels that only divide.
bool RunQuotients(size_t n, double* a, const double* b, const double* estimates);

#endif  // TESTS_KERNEL_QUOTIENT_KERNELS_H_
