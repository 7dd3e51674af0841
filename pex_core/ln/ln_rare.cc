// log(x) from the nearest of 16 breakpoints, with one rounding more than the vector kernels of HA.
#include "pex_core/ln/ln_rare.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "pex_core/_heap/real/exact_scalar.h"
#include "pex_core/_heap/real/log_constants.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

template <size_t N>
double Polynomial(double x, const double (&c)[N]) {
  double p = c[N - 1];
  for (size_t i = N - 1; i-- > 0;) p = p * x + c[i];
  return p;
}

// log(2^shift x) for positive normal x.
template <class Base>
double PositiveLog(double x, int shift) {
  constexpr int64_t kLeastM = 0x3FE9000000000000;  // 25/32
  const int64_t above = std::bit_cast<int64_t>(x) - kLeastM;
  const double e = static_cast<double>((above >> 52) + shift);
  const double m = std::bit_cast<double>((above & 0x000FFFFFFFFFFFFF) + kLeastM);
  const int j = static_cast<int>(std::bit_cast<uint64_t>(m + 0x1.8p48) & 15);

  constexpr auto& table = Base::kTable;
  const double t = m - table.a[j];
  const Two p = TwoProduct(t, table.factor[j]);
  const double p_rest = p.lo + t * table.rest[j];
  const double q = p.hi * p.hi * Polynomial(p.hi, Base::kPolynomial);
  const double head = e * Base::kLog2Hi + table.log[j];
  const double sum = head + p.hi;
  const double lost = p.hi - (sum - head);
  return sum + (lost + (p_rest + (q + e * Base::kLog2Lo)));
}

template <class Base>
int LogScalar(double x, double* r) {
  int code = 0;
  if (LogSpecial(x, r, &code)) return code;
  const bool subnormal = x < 0x1p-1022;
  *r = PositiveLog<Base>(subnormal ? x * 0x1p52 : x, subnormal ? -52 : 0);
  return PEX_STATUS_OK;
}

template <class Base>
int LogScalar(float x, float* r) {
  int code = 0;
  if (LogSpecial(x, r, &code)) return code;
  *r = static_cast<float>(PositiveLog<Base>(x, 0));
  return PEX_STATUS_OK;
}

}  // namespace

template <typename T>
bool LogSpecial(T x, T* r, int* code) {
  using Limits = std::numeric_limits<T>;
  if (IsNaN(x)) {
    *r = x;
  } else if (x == 0) {
    *r = -Limits::infinity();
    *code = PEX_STATUS_SINGULARITY;
  } else if (x < 0) {
    *r = -Limits::quiet_NaN();  // the pattern 0xFFF8...
    *code = PEX_STATUS_DOMAIN;
  } else if (x == Limits::infinity()) {
    *r = x;
  } else {
    return false;
  }
  return true;
}

template bool LogSpecial(double, double*, int*);
template bool LogSpecial(float, float*, int*);

int dLnScalar(double x, double* r) { return LogScalar<NaturalLog>(x, r); }
int dLog10Scalar(double x, double* r) { return LogScalar<DecimalLog>(x, r); }
int sLnScalar(float x, float* r) { return LogScalar<NaturalLog>(x, r); }
int sLog10Scalar(float x, float* r) { return LogScalar<DecimalLog>(x, r); }

}  // namespace pex
