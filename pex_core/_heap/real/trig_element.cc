// Sine, cosine and tangent of one element: x = (16 q + k) pi/32 + y, and the sums of the table's
// sine and cosine of the point with polynomials in y.
#include "pex_core/_heap/real/trig_element.h"

#include <bit>
#include <cstdint>

#include "pex_core/_heap/real/exact_scalar.h"
#include "pex_core/_heap/real/trig_reduce.h"
#include "pex_core/_heap/real/trig_tables.h"
#include "pex_core/_kernel/control.h"
#include "pex_core/errors/pex_errors.h"

namespace pex {
namespace {

constexpr int kTinyExponent = 771;    // below, |x| < 2^-252
constexpr int kLargeExponent = 1040;  // from here on |x| >= 2^17

int Exponent(double x) { return static_cast<int>(std::bit_cast<uint64_t>(x) >> 52 & 0x7FF); }

// The point's row, and what remains: y + rest.
struct Reduced {
  int64_t row;
  double y, rest;
};

Reduced Reduce(double x) {
  ReducedArgument u = {x, 0};
  int64_t row = 0;
  if (Exponent(x) >= kLargeExponent) row = 16 * _pexreduce_pio2d(&u, x);
  const double shifted = u.high * 10.185916357881302 + 0x1.8p52;  // 32/pi
  const double k = shifted - 0x1.8p52;
  const double high = u.high - k * 0.09817477042088285;  // the products with two parts are exact
  const double part2 = k * 3.798187816439979e-12;
  const double y = high - part2;
  const double rest = ((high - y) - part2) - k * 1.2639164054974691e-22 + u.low;
  const Two sum = FastTwoSum(y, rest);
  return {row + static_cast<int64_t>(k), sum.hi, sum.lo};
}

// sin(j pi/32 + y + rest) for row j: hi is the rounded sum of the two leading terms, |lo| < 0.01
// |hi| unless hi is the sine of y alone.
Two SineFromRow(int64_t j, const Reduced& u) {
  const auto& [sin, sin_rest, cos, cos_rest] = _dCosTab[j & 63];
  const double y2 = u.y * u.y;
  const double small_sin =
      u.y * y2 * (-1.0 / 6 + y2 * (1.0 / 120 + y2 * (-1.0 / 5040 + y2 * 2.7557319223985893e-06)));
  const double small_cos =
      y2 * (-1.0 / 2 + y2 * (1.0 / 24 + y2 * (-1.0 / 720 + y2 * (1.0 / 40320))));
  const Two p = TwoProduct(cos, u.y);
  const Two head = FastTwoSum(sin, p.hi);
  const double tail = sin * small_cos + cos * (small_sin + u.rest);
  return {head.hi, (head.lo + p.lo) + ((sin_rest + cos_rest * u.y) + tail)};
}

double Sine(const Reduced& u) {
  const Two s = SineFromRow(u.row, u);
  return s.hi + s.lo;
}

double Cosine(const Reduced& u) {
  const Two c = SineFromRow(u.row + 16, u);
  return c.hi + c.lo;
}

// The quotient of the sums, corrected by its remainder.
double Tangent(const Reduced& u) {
  const Two s = SineFromRow(u.row, u), c = SineFromRow(u.row + 16, u);
  const double cosine = c.hi + c.lo;
  const double q = (s.hi + s.lo) / cosine;
  const Two p = TwoProduct(q, c.hi);
  return q + (((s.hi - p.hi) - p.lo) + (s.lo - q * c.lo)) / cosine;
}

// Code 1 for infinities.
int NotFinite(double x, double* r) {
  *r = x;
  *r = *r - x;
  return x == x ? PEX_STATUS_DOMAIN : PEX_STATUS_OK;
}

// Stores one result by `tiny` or `function`, or the NaN, and reports it.
template <class Tiny, class Function>
int OneElement(int32_t i, const double* a, double* r, const char* name, Tiny tiny,
               Function function) {
  const ControlGuard guard;
  const double x = a[i];
  if (Exponent(x) == 0x7FF) {
    if (const int code = NotFinite(x, &r[i])) {
      ReportError<double>(code, i, a, {x, x, &r[i], &r[i]}, name);
    }
  } else {
    r[i] = Exponent(x) < kTinyExponent ? tiny(x) : function(Reduce(x));
  }
  return 0;
}

double Itself(double x) { return x; }

}  // namespace

int _pexdSin_SC(int32_t i, const double* a, double* r, const char* name) {
  return OneElement(i, a, r, name, Itself, Sine);
}

int _pexdCos_SC(int32_t i, const double* a, double* r, const char* name) {
  return OneElement(
      i, a, r, name, [](double x) { return 1 - x; }, Cosine);
}

int _pexdTan_SC(int32_t i, const double* a, double* r, const char* name) {
  return OneElement(i, a, r, name, Itself, Tangent);
}

int _pexdSinCos_SC(int32_t i, const double* a, double* rsin, double* rcos, const char* name) {
  const ControlGuard guard;
  const double x = a[i];
  if (Exponent(x) == 0x7FF) {
    const int code = NotFinite(x, &rsin[i]);
    rcos[i] = rsin[i];
    if (code) ReportError<double>(code, i, a, {x, x, &rsin[i], &rcos[i]}, name);
  } else if (Exponent(x) < kTinyExponent) {
    rsin[i] = x;
    rcos[i] = 1 - x;
  } else {
    const Reduced u = Reduce(x);
    rsin[i] = Sine(u);
    rcos[i] = Cosine(u);
  }
  return 0;
}

}  // namespace pex
