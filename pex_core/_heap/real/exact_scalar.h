// Exact sums and products of doubles in scalar code.
#ifndef PEX_CORE__HEAP_REAL_EXACT_SCALAR_H_
#define PEX_CORE__HEAP_REAL_EXACT_SCALAR_H_

namespace pex {

struct Two {
  double hi, lo;
};

// a + b = hi + lo exactly, for |a| >= |b| or a = 0 (Dekker 1971).
inline Two FastTwoSum(double a, double b) {
  const double hi = a + b;
  return {hi, b - (hi - a)};
}

// a + b = hi + lo exactly, for any order (Knuth).
inline Two TwoSum(double a, double b) {
  const double hi = a + b;
  const double t = hi - a;
  return {hi, (a - (hi - t)) + (b - t)};
}

// x = hi + lo with both halves of at most 26 bits, so that products of halves are exact (Veltkamp).
// |x| < 2^996.
inline Two SplitHalves(double x) {
  const double c = 134217729.0 * x;  // 2^27 + 1
  const double hi = c - (c - x);
  return {hi, x - hi};
}

// a * b = hi + lo exactly, without underflow of the error (Dekker 1971).
inline Two TwoProduct(double a, double b) {
  const double hi = a * b;
  const Two x = SplitHalves(a), y = SplitHalves(b);
  return {hi, x.lo * y.lo - (((hi - x.hi * y.hi) - x.lo * y.hi) - x.hi * y.lo)};
}

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_EXACT_SCALAR_H_
