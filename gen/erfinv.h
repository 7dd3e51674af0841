// The inverse of the complementary error function to hundreds of bits, and polynomials through
// Chebyshev points: what the programs of its tables share.
#ifndef GEN_ERFINV_H_
#define GEN_ERFINV_H_

#include <mpfr.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <vector>

namespace gen {

// The working precision of new numbers.
inline mpfr_prec_t bits = 320;

class Real {
 public:
  Real(double x = 0) {
    mpfr_init2(x_, bits);
    mpfr_set_d(x_, x, MPFR_RNDN);
  }
  Real(const Real& other) {
    mpfr_init2(x_, bits);
    mpfr_set(x_, other.x_, MPFR_RNDN);
  }
  ~Real() { mpfr_clear(x_); }
  Real& operator=(const Real& other) {
    mpfr_set(x_, other.x_, MPFR_RNDN);
    return *this;
  }
  static Real Of(long double x) {
    Real r;
    mpfr_set_ld(r.x_, x, MPFR_RNDN);
    return r;
  }
  template <auto kOperation>
  static Real Of(const Real& a, const Real& b) {
    Real r;
    kOperation(r.x_, a.x_, b.x_, MPFR_RNDN);
    return r;
  }
  template <auto kFunction>
  static Real Of(const Real& a) {
    Real r;
    kFunction(r.x_, a.x_, MPFR_RNDN);
    return r;
  }
  double Double() const { return mpfr_get_d(x_, MPFR_RNDN); }

 private:
  mpfr_t x_;
};

inline Real operator+(const Real& a, const Real& b) { return Real::Of<mpfr_add>(a, b); }
inline Real operator-(const Real& a, const Real& b) { return Real::Of<mpfr_sub>(a, b); }
inline Real operator*(const Real& a, const Real& b) { return Real::Of<mpfr_mul>(a, b); }
inline Real operator/(const Real& a, const Real& b) { return Real::Of<mpfr_div>(a, b); }

// The y >= 0 with erfc(y) = q, by Newton's method: in long double as far as that goes, then with
// `bits`.
inline Real ErfcInverse(const Real& q) {
  static const Real half_root_pi = Real::Of<mpfr_sqrt>(Real::Of<mpfr_acos>(-1)) / 2;
  const double p = q.Double();
  Real y = (1 - p) * 0.886;
  if (p < 0.5) {
    const double l = -Real::Of<mpfr_log>(q).Double();
    y = std::sqrt(l - 0.5 * std::log(std::numbers::pi * (l + 0.3)));
  }
  const long double head = p, rest = (q - p).Double();
  long double start = y.Double();
  for (int i = 0; i < 6 && p > 0; ++i) {
    const long double value = std::erfc(start);
    start += ((value - head) - rest) * std::exp(start * start) * 0.886226925452758013649L;
  }
  if (start > 0x1p-20L && std::isfinite(start)) y = Real::Of(start);
  for (int i = 0; i < 40; ++i) {
    const Real step = (Real::Of<mpfr_erfc>(y) - q) * half_root_pi * Real::Of<mpfr_exp>(y * y);
    y = y + step;
    if (std::fabs(step.Double()) < 0x1p-90 * std::fabs(y.Double())) break;  // squared, the error
  }
  return y;
}

// The coefficients, lowest first, of the polynomial that takes the values c at the points x.
inline std::vector<Real> Through(const std::vector<Real>& x, std::vector<Real> c) {
  const int degree = static_cast<int>(x.size()) - 1;
  for (int k = 1; k <= degree; ++k) {
    for (int i = degree; i >= k; --i) c[i] = (c[i] - c[i - 1]) / (x[i] - x[i - k]);
  }
  for (int k = degree; k-- > 0;) {
    for (int i = k; i < degree; ++i) c[i] = c[i] - x[k] * c[i + 1];
  }
  return c;
}

// The coefficients, lowest first, in x - center + shift of the polynomial that takes the function's
// values at the Chebyshev points of center +- radius.
inline std::vector<Real> Interpolate(const std::function<Real(Real)>& function, double center,
                                     double radius, int degree, double shift = 0) {
  std::vector<Real> x, c;
  for (int i = 0; i <= degree; ++i) {
    x.push_back(shift + radius * std::cos(std::numbers::pi * (i + 0.5) / (degree + 1)));
    c.push_back(function(x[i] + (center - shift)));
  }
  return Through(x, c);
}

}  // namespace gen

#endif  // GEN_ERFINV_H_
