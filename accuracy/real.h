// A number of multiple precision, for exact values.
#ifndef ACCURACY_REAL_H_
#define ACCURACY_REAL_H_

#include <mpfr.h>

namespace pex::accuracy {

// An MPFR number that frees itself.
class Real {
 public:
  explicit Real(long bits) { mpfr_init2(x_, bits); }
  ~Real() { mpfr_clear(x_); }
  Real(const Real&) = delete;
  Real& operator=(const Real&) = delete;
  operator mpfr_ptr() { return x_; }
  operator mpfr_srcptr() const { return x_; }
  mpfr_ptr get() { return x_; }  // for what MPFR has as macros

 private:
  mpfr_t x_;
};

}  // namespace pex::accuracy

#endif  // ACCURACY_REAL_H_
