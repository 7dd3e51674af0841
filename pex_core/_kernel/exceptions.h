// Scalar code whose exceptions are part of what it promises stands between PEX_EXCEPTIONS_COUNT and
// PEX_EXCEPTIONS_COUNT_END, in files that are compiled with the vector kernels. Clang takes
// arithmetic for free of exceptions otherwise and computes both sides of a choice, or an operation
// on the number that a selection is to put aside. Files without kernels are compiled with an option
// to the same effect.
#ifndef PEX_CORE__KERNEL_EXCEPTIONS_H_
#define PEX_CORE__KERNEL_EXCEPTIONS_H_

#if defined(__clang__)
#define PEX_EXCEPTIONS_COUNT _Pragma("float_control(push)") _Pragma("float_control(except, on)")
#define PEX_EXCEPTIONS_COUNT_END _Pragma("float_control(pop)")
#else
#define PEX_EXCEPTIONS_COUNT
#define PEX_EXCEPTIONS_COUNT_END
#endif

#endif  // PEX_CORE__KERNEL_EXCEPTIONS_H_
