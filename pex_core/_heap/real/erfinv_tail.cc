// erfcinv(q) = v (1 - D(1/v)), v = sqrt(-ln q): the logarithm by the table of the vector
// logarithms, D by a polynomial for each 1/128 of its argument.
#include "pex_core/_heap/real/erfinv_tail.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "pex_core/_heap/real/erfinv_tables.h"
#include "pex_core/_heap/real/log_constants.h"

namespace pex {
namespace {

// -ln q within 2^-60.
Two MinusLog(double q) {
  double e = 0;
  if (q < 0x1p-1022) {
    q *= 0x1p64;
    e = -64;
  }
  constexpr int64_t kLeast = 0x3FE9000000000000;  // 25/32
  const int64_t above = std::bit_cast<int64_t>(q) - kLeast;
  e += static_cast<double>(above >> 52);
  const double m = std::bit_cast<double>((above & 0x000FFFFFFFFFFFFF) + kLeast);
  const double* row = kLnRows.row[std::bit_cast<uint64_t>(m + 0x1.8p48) & 15];
  const Two p = TwoProduct(m - row[0], row[1]);
  constexpr int kTerms = sizeof kLn / sizeof *kLn;
  double rest = kLn[kTerms - 1];
  for (int i = kTerms - 1; i-- > 0;) rest = rest * p.hi + kLn[i];
  const double head = e * NaturalLog::kLog2Hi + row[2];  // exact
  const Two s = FastTwoSum(head, p.hi);
  const double tail = rest * (p.hi * p.hi) + e * NaturalLog::kLog2Lo;
  const Two log = FastTwoSum(s.hi, s.lo + (p.lo + tail));
  return {-log.hi, -log.lo};
}

}  // namespace

Two ErfcInvTail(double q) {
  const Two log = MinusLog(q);
  const double v = std::sqrt(log.hi);
  const Two square = TwoProduct(v, v);
  const double v_rest = ((log.hi - square.hi) - square.lo + log.lo) / (v + v);
  const double s = 1 / v;
  const Two one = TwoProduct(s, v);
  const double s_rest = ((1 - one.hi) - one.lo - s * v_rest) * s;

  const int j = static_cast<int>(s * 128);
  double row[16];
  for (int i = 0; i < 16; ++i) row[i] = kErfInvTail[i / 4][j - kErfInvTailFirst][i % 4];
  const double t = (s - (j + 0.5) / 128) + s_rest;
  double p = row[kErfInvTailDegree + 1];
  for (int i = kErfInvTailDegree; i > 2; --i) p = p * t + row[i];
  const Two linear = TwoProduct(row[2], t);
  Two less = FastTwoSum(row[0], linear.hi);
  less.lo += (row[1] + linear.lo) + p * (t * t);

  const Two product = TwoProduct(v, less.hi);
  const Two head = FastTwoSum(v, -product.hi);
  const double tail = (v_rest * (1 - less.hi) - v * less.lo) - product.lo;
  return FastTwoSum(head.hi, head.lo + tail);
}

Two NormInvTail(double q) {
  constexpr double kRoot = 0x1.6a09e667f3bcdp+0, kRootRest = -0x1.bdd3413b26456p-54;  // sqrt(2)
  const Two y = ErfcInvTail(q);
  const Two product = TwoProduct(y.hi, kRoot);
  return FastTwoSum(product.hi, product.lo + (y.hi * kRootRest + y.lo * kRoot));
}

double RoundTail(Two s, bool negative) {
  const double y = s.hi + s.lo;
  return negative ? -y : y;
}

// The sum is rounded to odd first.
float RoundTailToFloat(Two s, bool negative) {
  uint64_t bits = std::bit_cast<uint64_t>(s.hi);
  if (s.lo != 0) bits = (bits - (s.lo < 0)) | 1;
  const float y = static_cast<float>(std::bit_cast<double>(bits));
  return negative ? -y : y;
}

}  // namespace pex
