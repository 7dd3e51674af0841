// The correctly rounded square roots of several vectors, as calls over arrays, one level at a time.
#ifndef TESTS_KERNEL_ROOT_KERNELS_H_
#define TESTS_KERNEL_ROOT_KERNELS_H_

#include <cstddef>
#include <cstdint>

// n is a multiple of 32. The estimates of 1/sqrt(t) are for the levels that start from estimates,
// all vectors then; null: the processor's own, for the vectors that use them.
void RunRoots(size_t n, const double* t, const double* estimates, double* r);

// How many numbers y from `first` to `last`, patterns of floats, do not lead to the root of t; 0 on
// levels that start from no estimate.
size_t WrongRoots(float t, int32_t first, int32_t last);

#endif  // TESTS_KERNEL_ROOT_KERNELS_H_
