// Scalar helpers of the distributions: no library call, no table of the processor's, the same bits
// everywhere. They compute in round-to-nearest without flushing, which the caller's QuietGuard
// sets.
#ifndef QUO_SUB_KERNEL__MATH_SCALAR_H_
#define QUO_SUB_KERNEL__MATH_SCALAR_H_

namespace quo {

// The logarithm of the smallest positive number, double and single: what stands for log(0).
inline constexpr double kLnSmallest = -0x1.74385446d71c3p+9;  // -744.4400719213812
inline constexpr float kLnSmallestSingle = -0x1.9d1dap+6f;    // -103.27893

// log(x), x > 0, subnormal or not; log(0) is kLnSmallest. The sign of x is not looked at, and
// infinity and NaN are taken for numbers: callers do not pass them.
double __quodLn(double x);
// The same for a float, computed in double.
float __quosLn(float x);

// The square root, correctly rounded.
double __quodSqrt(double x);

// The largest integer not above x, with the sign of x where that is 0. NaN gives NaN.
double __quodFloor(double x);

}  // namespace quo

#endif  // QUO_SUB_KERNEL__MATH_SCALAR_H_
