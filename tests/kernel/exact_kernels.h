// The exact arithmetic of the kernels, as calls over arrays, one level at a time.
#ifndef TESTS_KERNEL_EXACT_KERNELS_H_
#define TESTS_KERNEL_EXACT_KERNELS_H_

#include <cstddef>

enum class ExactOp {
  TwoSum,       // a.hi + b.hi
  FastTwoSum,   // the same, |a.hi| >= |b.hi|
  TwoProduct,   // a.hi * b.hi
  AddFast,      // a + b.hi, |a.hi| >= |b.hi|
  AddPairs,     // a + b
  MulByNumber,  // a * b.hi
  MulPairs,     // a * b
};

template <typename T>
struct PairArrays {
  T *hi, *lo;
};

// n is a multiple of 16.
template <typename T>
void RunExact(ExactOp op, size_t n, PairArrays<const T> a, PairArrays<const T> b, PairArrays<T> r);

// Polynomials of degree 0 to 8 with coefficients 1, 2, ... 9 over c: the first degree + 1 of them.
template <typename T>
void RunPolynomial(bool even_odd, int degree, size_t n, const T* x, T* r);

#endif  // TESTS_KERNEL_EXACT_KERNELS_H_
