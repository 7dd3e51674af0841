// e^x = 2^n 2^(j/64) e^r, n = k >> 6, j = k & 63, k = round(x 64/ln2), |r| <= ln2/128.
#include "pex_core/exp/exp_rare.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "pex_core/_heap/real/exp_tables.h"
#include "pexquo/pex.h"

namespace pex {
namespace {

constexpr double kShifter = 0x1.8p52;                // its sum with an integer ends in that integer
constexpr double k64OverLn2 = 0x1.71547652b82fep+6;  // 64/ln2
constexpr double kLn2Over64Hi = 0x1.62e42fefap-7;    // ln2/64: times any k exact
constexpr double kLn2Over64Lo = 0x1.cf79abc9e3b3ap-46;
constexpr double kOverflow = 0x1.62e42fefa39efp+9;  // ln of the largest number, 709.78
constexpr double kNormal = -0x1.6232bdd7abcd2p+9;   // ln of the smallest normal number, -708.39
constexpr double kZero = -0x1.74910d52d3052p+9;     // ln of half the smallest subnormal, -745.13

// A product that is carried out and raises its flags.
double Raise(double a) {
  const volatile double x = a;
  const volatile double square = x * x;
  return square;
}

// e^x 2^-n as a pair, and n.
struct Scaled {
  double hi, lo;
  int n;
};

Scaled ScaledExp(double x) {
  const double kf = x * k64OverLn2 + kShifter;
  const double kd = kf - kShifter;
  const int k = static_cast<int>(static_cast<uint32_t>(std::bit_cast<uint64_t>(kf)));
  const double r = x - kd * kLn2Over64Hi - kd * kLn2Over64Lo;
  // e^r - 1 - r over r^2; relative error of e^r 2^-63 on |r| <= ln2/128.
  const double q =
      0.5 + r * (0.1666666666665788 + r * (0.04166666666677052 +
                                           r * (0.008333341995140497 + r * 0.0013888870459233254)));
  const double p = r + r * r * q;
  const double* row = _pexdExpHATab[k & 63];
  return {row[0], row[0] * (p + row[1]), k >> 6};
}

double PowerOfTwo(int n) { return std::bit_cast<double>(static_cast<uint64_t>(n + 1023) << 52); }

// (hi + lo) 2^n rounded once, where that is subnormal: the sum is rounded to the subnormals' grid,
// raised by 60 octaves, by the addition of a number whose ulp is that grid.
double Subnormal(const Scaled& s) {
  const double scale = PowerOfTwo(s.n + 60);
  const double hi = s.hi * scale, lo = s.lo * scale;
  constexpr double kGrid = 0x1p-962;  // ulp 2^-1014, up to the largest sum
  const double sum = kGrid + hi;
  const double rest = (hi - (sum - kGrid)) + lo;
  Raise(0x1p-1022);
  return ((sum + rest) - kGrid) * 0x1p-60;
}

// |t p|, t from 1 to 2, rounded to a multiple of 2^(-1074 - n); below 2^(-1022 - n).
double GridProduct(uint64_t t, uint64_t p, int n) {
  constexpr uint64_t kLeading = uint64_t{1} << 52;
  const int exponent = (static_cast<int>(p >> 52) & 0x7FF) - 1023;
  const int dropped = 104 - 1074 - n - exponent;  // bits of the product below the grid
  if (dropped > 107) return 0;
  const auto whole = static_cast<unsigned __int128>((t & (kLeading - 1)) | kLeading) *
                     ((p & (kLeading - 1)) | kLeading);
  const auto half = static_cast<unsigned __int128>(1) << (dropped - 1);
  auto kept = static_cast<uint64_t>(whole >> dropped);
  const auto rest = whole & (2 * half - 1);
  kept += rest > half || (rest == half && kept % 2 == 1);
  return static_cast<double>(static_cast<int64_t>(kept)) * PowerOfTwo(-1074 - n);
}

}  // namespace

int dExpScalar(double x, double* r) {
  const uint64_t bits = std::bit_cast<uint64_t>(x);
  const int exponent = static_cast<int>(bits >> 52) & 0x7FF;
  if (exponent == 0x7FF) {
    *r = bits == 0xFFF0000000000000 ? 0.0 : x + x;
    return PEX_STATUS_OK;
  }
  if (exponent <= 970) {
    *r = 1.0 + x;
    return PEX_STATUS_OK;
  }
  if (x > kOverflow) {
    *r = Raise(0x1.fffffffffffffp+1023);
    return PEX_STATUS_OVERFLOW;
  }
  if (x < kZero) {
    *r = Raise(0x1.0000000000001p-1022);
    return PEX_STATUS_UNDERFLOW;
  }
  const Scaled s = ScaledExp(x);
  if (x < kNormal) {
    *r = Subnormal(s);
    return PEX_STATUS_UNDERFLOW;
  }
  // 2^1024 is no double, so the last octave is reached in two steps.
  const double v = s.hi + s.lo;
  *r = s.n > 1023 ? v * PowerOfTwo(s.n - 1) * 2.0 : v * PowerOfTwo(s.n);
  return PEX_STATUS_OK;
}

int dExpLAScalar(double x, double* r) {
  if (!std::isless(std::fabs(x), 708.39599609375)) return dExpScalar(x, r);
  const double kf = x * 0x1.71547652b82fep+10 + kShifter;
  const double kd = kf - kShifter;
  const uint64_t k = std::bit_cast<uint64_t>(kf);
  const uint64_t power = std::bit_cast<uint64_t>(dExp_HA_Table[k & 1023]);
  const double s = std::bit_cast<double>(power + (k << 42 & 0xFFF0000000000000));
  const double rest = x - kd * 0x1.62e42fecp-11 - kd * 0x1.d1cf79abc9e3bp-42;
  const double p = (0x1.5555555555556p-3 * rest + 0x1.0000001ebfbep-1) * rest * rest + rest;
  const int n = static_cast<int>(static_cast<uint32_t>(k)) >> 10;
  if (x > 0 || p == 0 || std::fabs(p) >= PowerOfTwo(-1022 - n)) {
    *r = s * p + s;
    return PEX_STATUS_OK;
  }
  // The product is subnormal, the sum is normal: both are made 2^-n as large, where neither raises
  // a flag but inexact.
  const double t = std::bit_cast<double>(power);
  const double sum = t + std::copysign(GridProduct(power, std::bit_cast<uint64_t>(p), n), p);
  *r = std::bit_cast<double>(std::bit_cast<uint64_t>(sum) + (static_cast<uint64_t>(n) << 52));
  return PEX_STATUS_OK;
}

int sExpScalar(float x, float* r) {
  const uint32_t bits = std::bit_cast<uint32_t>(x);
  const int exponent = static_cast<int>(bits >> 23) & 0xFF;
  if (exponent == 0xFF) {
    *r = bits == 0xFF800000 ? 0.0f : x + x;
    return PEX_STATUS_OK;
  }
  if (exponent < 75) {
    *r = 1.0f + x;
    return PEX_STATUS_OK;
  }
  const double wide = x;
  if (wide > 88.72283172607422) {
    *r = static_cast<float>(Raise(0x1p100));
    return PEX_STATUS_OVERFLOW;
  }
  if (wide < -103.97207641601563) {
    *r = static_cast<float>(Raise(0x1p-100));
    return PEX_STATUS_UNDERFLOW;
  }
  const Scaled s = ScaledExp(wide);
  *r = static_cast<float>((s.hi + s.lo) * PowerOfTwo(s.n));
  return wide < -87.33654022216797 ? PEX_STATUS_UNDERFLOW : PEX_STATUS_OK;
}

}  // namespace pex
