// Exact sums and products of doubles in scalar code.
#ifndef PEX_CORE__HEAP_REAL_TRIG_SCALAR_H_
#define PEX_CORE__HEAP_REAL_TRIG_SCALAR_H_

namespace pex {

struct Two {
  double hi, lo;
};

// a + b = hi + lo exactly, for |a| >= |b| or a = 0 (Dekker 1971).
inline Two FastSum(double a, double b) {
  const double hi = a + b;
  return {hi, b - (hi - a)};
}

// a + b = hi + lo exactly (Knuth).
inline Two Sum(double a, double b) {
  const double hi = a + b;
  const double t = hi - a;
  return {hi, (a - (hi - t)) + (b - t)};
}

// a * b = hi + lo exactly (Dekker 1971), without overflow of a 2^27 and underflow.
inline Two Product(double a, double b) {
  const auto split = [](double x) {
    const double c = 134217729.0 * x;
    const double hi = c - (c - x);
    return Two{hi, x - hi};
  };
  const double hi = a * b;
  const Two x = split(a), y = split(b);
  const double err1 = hi - x.hi * y.hi;
  const double err2 = err1 - x.lo * y.hi;
  const double err3 = err2 - x.hi * y.lo;
  return {hi, x.lo * y.lo - err3};
}

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_TRIG_SCALAR_H_
