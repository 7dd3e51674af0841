// Writes pex_core/_heap/real/erfinv_tables.cc: polynomials for the inverse of the error functions
// by intervals, through their values at Chebyshev points.
#include "pex_core/_heap/real/erfinv_tables.h"

#include <mpfr.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <numbers>
#include <vector>

namespace {

constexpr mpfr_prec_t kBits = 320;

class Real {
 public:
  Real(double x = 0) {
    mpfr_init2(x_, kBits);
    mpfr_set_d(x_, x, MPFR_RNDN);
  }
  Real(const Real& other) {
    mpfr_init2(x_, kBits);
    mpfr_set(x_, other.x_, MPFR_RNDN);
  }
  ~Real() { mpfr_clear(x_); }
  Real& operator=(const Real& other) {
    mpfr_set(x_, other.x_, MPFR_RNDN);
    return *this;
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

Real operator+(const Real& a, const Real& b) { return Real::Of<mpfr_add>(a, b); }
Real operator-(const Real& a, const Real& b) { return Real::Of<mpfr_sub>(a, b); }
Real operator*(const Real& a, const Real& b) { return Real::Of<mpfr_mul>(a, b); }
Real operator/(const Real& a, const Real& b) { return Real::Of<mpfr_div>(a, b); }

// The y >= 0 with erfc(y) = q, by Newton's method.
Real ErfcInverse(const Real& q) {
  const Real half_root_pi = Real::Of<mpfr_sqrt>(Real::Of<mpfr_acos>(-1)) / 2;
  const double p = q.Double();
  Real y = (1 - p) * 0.886;
  if (p < 0.5) {
    const double l = -Real::Of<mpfr_log>(q).Double();
    y = std::sqrt(l - 0.5 * std::log(std::numbers::pi * (l + 0.3)));
  }
  for (int i = 0; i < 40; ++i) {
    const Real step = (Real::Of<mpfr_erfc>(y) - q) * half_root_pi * Real::Of<mpfr_exp>(y * y);
    y = y + step;
    if (std::fabs(step.Double()) < 0x1p-150 * std::fabs(y.Double())) break;
  }
  return y;
}

// The coefficients, lowest first, in x - center of the polynomial that takes the function's values
// at the Chebyshev points of center +- radius.
std::vector<Real> Interpolate(const std::function<Real(Real)>& function, double center,
                              double radius, int degree) {
  std::vector<Real> x, c;
  for (int i = 0; i <= degree; ++i) {
    x.push_back(radius * std::cos(std::numbers::pi * (i + 0.5) / (degree + 1)));
    c.push_back(function(x[i] + center));
  }
  for (int k = 1; k <= degree; ++k) {
    for (int i = degree; i >= k; --i) c[i] = (c[i] - c[i - 1]) / (x[i] - x[i - k]);
  }
  for (int k = degree; k-- > 0;) {
    for (int i = k; i < degree; ++i) c[i] = c[i] - x[k] * c[i + 1];
  }
  return c;
}

// erfcinv(q), over 1 - q from 1/2 on.
Real Near(const Real& q) {
  const Real y = ErfcInverse(q);
  return q.Double() < 0.5 ? y : y / (1 - q);
}

// Coefficients of row j of a table with 2^bits rows to an octave.
std::vector<Real> Row(int j, int bits, int degree, double* center) {
  const int per_octave = 1 << bits;
  const double width = std::ldexp(1.0, j / per_octave - pex::kErfInvOctaves - bits);
  *center = (per_octave + j % per_octave + 0.5) * width;
  return Interpolate(Near, *center, width / 2, degree);
}

void Full(const char* name, const Real& factor) {
  std::printf("\nalignas(64) const double %s[3][kErfInvRowCount][4] = {", name);
  for (int part = 0; part < 3; ++part) {
    std::printf("{");
    for (int j = 0; j < pex::kErfInvRowCount; ++j) {
      double center;
      const std::vector<Real> c = Row(j, pex::kErfInvBits, 9, &center);
      double row[12] = {};
      for (int i = 1; i < 10; ++i) row[i + 2] = (c[i] * factor).Double();
      row[0] = center < 0.5 ? center : center - 1;
      row[1] = (c[0] * factor).Double();
      row[2] = (c[0] * factor - row[1]).Double();
      const double* r = row + 4 * part;
      std::printf("\n    {%a, %a, %a, %a},", r[0], r[1], r[2], r[3]);
    }
    std::printf("}%s", part < 2 ? ", " : "");
  }
  std::printf("};\n");
}

void Short() {
  std::printf("\nalignas(64) const double kErfInvShort[kErfInvShortCount][4] = {");
  for (int j = 0; j < pex::kErfInvShortCount; ++j) {
    double center;
    const std::vector<Real> c = Row(j, pex::kErfInvShortBits, 3, &center);
    std::printf("\n    {%a, %a, %a, %a},", c[0].Double(), c[1].Double(), c[2].Double(),
                c[3].Double());
  }
  std::printf("\n};\n\nalignas(64) const double kErfInvLines[kErfInvRowCount][2] = {");
  for (int j = 0; j < pex::kErfInvRowCount; ++j) {
    double center;
    const std::vector<Real> c = Row(j, pex::kErfInvBits, 1, &center);
    std::printf("%s{%a, %a},", j % 2 ? " " : "\n    ",
                static_cast<double>(static_cast<float>((c[0] - c[1] * center).Double())),
                static_cast<double>(static_cast<float>(c[1].Double())));
  }
  std::printf("\n};\n");
}

void Tail() {
  std::printf("\nalignas(64) const double kErfInvTail[4][kErfInvTailCount][4] = {");
  for (int part = 0; part < 4; ++part) {
    std::printf("{");
    for (int j = 0; j < pex::kErfInvTailCount; ++j) {
      const auto less = [](const Real& s) {
        const Real q = Real::Of<mpfr_exp>(Real(-1) / (s * s));
        return 1 - s * ErfcInverse(q);
      };
      const double center = (pex::kErfInvTailFirst + j + 0.5) / 128;
      const std::vector<Real> c = Interpolate(less, center, 0.5 / 128, pex::kErfInvTailDegree);
      double row[16] = {c[0].Double(), (c[0] - c[0].Double()).Double()};
      for (int i = 1; i <= pex::kErfInvTailDegree; ++i) row[i + 1] = c[i].Double();
      const double* r = row + 4 * part;
      std::printf("\n    {%a, %a, %a, %a},", r[0], r[1], r[2], r[3]);
    }
    std::printf("}%s", part < 3 ? ", " : "");
  }
  std::printf("};\n");
}

}  // namespace

int main() {
  std::printf(
      "// Generated by gen/erfinv_tables.cc:\n"
      "//   gen_erfinv_tables > pex_core/_heap/real/erfinv_tables.cc\n"
      "#include \"pex_core/_heap/real/erfinv_tables.h\"\n\nnamespace pex {\n");
  Full("kErfcInvRows", 1);
  Full("kNormInvRows", Real::Of<mpfr_sqrt>(2));
  Short();
  Tail();
  std::printf("\n}  // namespace pex\n");
}
