#include "pex_core/_heap/real/root_scalar.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "pex_core/_heap/real/exact_scalar.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

// 2^e for a normal result.
double PowerOfTwo(int e) { return std::bit_cast<double>(static_cast<uint64_t>(e + 1023) << 52); }

// x = 4^k m, 1 <= m < 4, for positive finite x.
struct Reduced {
  double m;
  int k;
};

Reduced Reduce(double x) {
  const bool subnormal = x < 0x1p-1022;
  const uint64_t bits = std::bit_cast<uint64_t>(subnormal ? x * 0x1p54 : x);
  const int exponent = static_cast<int>(bits >> 52) - 1023;
  const int odd = exponent & 1;
  const uint64_t m = (bits & 0x000FFFFFFFFFFFFF) | static_cast<uint64_t>(1023 + odd) << 52;
  return {std::bit_cast<double>(m), (exponent - odd) / 2 - (subnormal ? 27 : 0)};
}

// (hi + lo) 2^e for 1 <= hi < 8, rounded once.
double Scaled(Two x, int e) {
  if (e > -1022) return (x.hi + x.lo) * PowerOfTwo(e);
  if (e < -1080) return 0;
  double sum = x.hi + x.lo;
  const double big = PowerOfTwo(-1022 - e);  // unscaled, the least normal number
  if (x.hi < big) {
    // Sums with it have the least subnormal number for an ulp.
    const double high = big + x.hi;
    sum = (high + ((x.hi - (high - big)) + x.lo)) - big;
  }
  return sum * 0x1p-500 * PowerOfTwo(e + 500);
}

// The result and code for x that is not a positive finite number or zero; false for those.
template <typename T>
bool NotPositive(T x, T* r, int* code) {
  if (x != x) {
    *r = x + x;
  } else if (x < 0) {
    *r = -std::numeric_limits<T>::quiet_NaN();
    *code = PEX_STATUS_DOMAIN;
  } else {
    return false;
  }
  return true;
}

// A zero divisor's quotient is made without the division: its exceptions are the error report's.
template <typename Word, typename T>
int Quotient(T a, T b, T* r) {
  constexpr Word kSign = Word{1} << (sizeof(Word) * 8 - 1);
  const Word infinity = std::bit_cast<Word>(std::numeric_limits<T>::infinity());
  const Word nan = std::bit_cast<Word>(std::numeric_limits<T>::quiet_NaN());
  const Word bits_a = std::bit_cast<Word>(a), bits_b = std::bit_cast<Word>(b);
  const Word magnitude = bits_a & ~kSign;
  if ((bits_b & ~kSign) != 0) {
    *r = a / b;
    return PEX_STATUS_OK;
  }
  if (magnitude > infinity) {
    *r = std::bit_cast<T>(bits_a | nan);
  } else if (magnitude == 0) {
    *r = std::bit_cast<T>(nan | kSign);
  } else {
    *r = std::bit_cast<T>(((bits_a ^ bits_b) & kSign) | infinity);
  }
  return PEX_STATUS_SINGULARITY;
}

}  // namespace

int SqrtScalar(double x, double* r) {
  int code = PEX_STATUS_OK;
  if (!NotPositive(x, r, &code)) *r = std::sqrt(x);
  return code;
}

int SqrtScalar(float x, float* r) {
  int code = PEX_STATUS_OK;
  if (!NotPositive(x, r, &code)) *r = std::sqrt(x);
  return code;
}

int DivScalar(double a, double b, double* r) { return Quotient<uint64_t>(a, b, r); }
int DivScalar(float a, float b, float* r) { return Quotient<uint32_t>(a, b, r); }

int InvSqrtScalar(double x, double* r) {
  int code = PEX_STATUS_OK;
  if (NotPositive(x, r, &code)) return code;
  if (x == 0) {
    *r = std::copysign(std::numeric_limits<double>::infinity(), x);
    return PEX_STATUS_SINGULARITY;
  }
  if (x > std::numeric_limits<double>::max()) {
    *r = 0;
    return PEX_STATUS_OK;
  }
  const auto [m, k] = Reduce(x);
  const double y = 1 / std::sqrt(m);
  const Two square = TwoProduct(y, y);
  const Two product = TwoProduct(m, square.hi);
  const double e = ((1 - product.hi) - product.lo) - m * square.lo;
  *r = (y + 0.5 * y * e) * PowerOfTwo(-k);
  return PEX_STATUS_OK;
}

int InvSqrtScalar(float x, float* r) {
  int code = PEX_STATUS_OK;
  if (NotPositive(x, r, &code)) return code;
  if (x == 0) {
    *r = std::copysign(std::numeric_limits<float>::infinity(), x);
    return PEX_STATUS_SINGULARITY;
  }
  *r = static_cast<float>(1 / std::sqrt(double{x}));
  return PEX_STATUS_OK;
}

int Pow3o2Scalar(double x, double* r) {
  int code = PEX_STATUS_OK;
  if (NotPositive(x, r, &code)) return code;
  if (x == 0 || x > 0x1p683) {
    *r = x * x;  // 0, or infinity
    return PEX_STATUS_OK;
  }
  const auto [m, k] = Reduce(x);
  const double s = std::sqrt(m);
  const Two square = TwoProduct(s, s);
  const double rest = (m - square.hi) - square.lo;
  const Two product = TwoProduct(m, s);
  const Two result = {product.hi, product.lo + 0.5 * s * rest};
  *r = Scaled(result, 3 * k);
  return PEX_STATUS_OK;
}

int Pow3o2Scalar(float x, float* r) {
  int code = PEX_STATUS_OK;
  if (NotPositive(x, r, &code)) return code;
  *r = static_cast<float>(x * std::sqrt(double{x}));
  return PEX_STATUS_OK;
}

}  // namespace pex
