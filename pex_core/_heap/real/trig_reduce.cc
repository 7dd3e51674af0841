// The scalar reduction of a double by pi/2, in units of pi/4 for large arguments.
#include "pex_core/_heap/real/trig_reduce.h"

#include <bit>
#include <cstdint>

#include "pex_core/_heap/real/exact_scalar.h"
#include "pex_core/_heap/real/trig_tables.h"

namespace pex {
namespace {

constexpr const double* kTable = _pexReductionTab;
constexpr uint64_t kSignificand = (uint64_t{1} << 52) - 1;

// The sum so far in double-double arithmetic.
struct RunningSum {
  double hi = 0, lo = 0;
  void Add(double x) {
    const Two s = TwoSum(hi, x);
    const Two t = FastTwoSum(s.hi, s.lo + lo);
    hi = t.hi;
    lo = t.lo;
  }
};

int Store(ReducedArgument* reduced, double sign, Two r, int64_t multiple) {
  *reduced = {sign * r.hi, sign * r.lo};
  return static_cast<int>((sign < 0 ? -multiple : multiple) & 3);
}

// Below 2^30: pi/4 in parts whose products with the integer n are exact, but for the last.
int ReduceModerate(ReducedArgument* reduced, double ax, double sign, bool five_parts) {
  const auto k = static_cast<int64_t>(ax * kTable[8]);
  const int64_t multiple = (k + 1) >> 1;
  const auto n = static_cast<double>(k + (k & 1));
  const double* part = five_parts ? kTable + 14 : kTable + 10;
  RunningSum sum{ax, 0};
  for (int i = five_parts ? 4 : 3; i > 0; --i) sum.Add(-n * *part++);
  sum.lo -= n * *part;
  return Store(reduced, sign, FastTwoSum(sum.hi, sum.lo), multiple);
}

// From 2^30 on: the products of the two halves of ax 2^-200 with the pieces of 2/pi that can change
// the angle, from the largest down.
int ReduceLarge(ReducedArgument* reduced, double ax, double sign, int exponent) {
  const auto bits = std::bit_cast<uint64_t>(ax) - (uint64_t{200} << 52);
  const double hi = std::bit_cast<double>(bits >> 27 << 27);
  const double lo = std::bit_cast<double>(bits) - hi;
  const int j = ((exponent - 1052) * 83886) >> 21;
  const double* piece = kTable + 20 + j;

  RunningSum sum;
  sum.Add(lo * piece[0]);
  sum.Add(hi * piece[1]);
  const int kept = 38 - (exponent - 1052 - 25 * j);
  sum.Add(-std::bit_cast<double>(std::bit_cast<uint64_t>(sum.hi) >> kept << kept));
  for (int i = 1; i <= 2; ++i) {
    sum.Add(lo * piece[i]);
    sum.Add(hi * piece[i + 1]);
  }

  const auto pattern = std::bit_cast<uint64_t>(sum.hi);
  const int below_point = 52 - (static_cast<int>(pattern >> 52) - 1023);
  const uint64_t whole =
      below_point > 52 ? 0 : ((pattern & kSignificand) | (kSignificand + 1)) >> below_point;
  sum.Add(-static_cast<double>(whole));
  sum.Add(kTable[whole & 1]);
  for (int i = 3; i <= 7; ++i) {
    sum.Add(lo * piece[i]);
    sum.Add(hi * piece[i + 1]);
  }

  const Two f = FastTwoSum(sum.hi, sum.lo);
  const double shifted = f.hi * kTable[4];
  const double f_hi = (f.hi + shifted) - shifted;
  const double f_lo = (f.hi - f_hi) + f.lo;
  const double p = f_hi * kTable[6];
  const double c = kTable[6] * f_lo + (f_hi + f_lo) * kTable[7];
  return Store(reduced, sign, FastTwoSum(p, c), static_cast<int64_t>(whole + 1) >> 1);
}

}  // namespace

int _pexreduce_pio2d(ReducedArgument* reduced, double x) {
  const auto bits = std::bit_cast<uint64_t>(x);
  const int exponent = static_cast<int>(bits >> 52 & 0x7FF);
  const double sign = kTable[2 + (bits >> 63)];
  const double ax = std::bit_cast<double>(bits << 1 >> 1);
  if (exponent > 1052) return ReduceLarge(reduced, ax, sign, exponent);
  return ReduceModerate(reduced, ax, sign, exponent > 1045);
}

}  // namespace pex
