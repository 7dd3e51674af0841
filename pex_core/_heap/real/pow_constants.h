// What the tiers of the power differ in, and their tables by rows.
#ifndef PEX_CORE__HEAP_REAL_POW_CONSTANTS_H_
#define PEX_CORE__HEAP_REAL_POW_CONSTANTS_H_

#include "pex_core/_heap/real/pow_polynomials.h"
#include "pex_core/_heap/real/pow_tables.h"

namespace pex {

// Two columns side by side, for levels that load rows and transpose them.
template <int kRows>
struct PowPairs {
  alignas(64) double row[kRows][2];
};

template <int kRows>
constexpr PowPairs<kRows> SideBySide(const double (&first)[kRows], const double (&second)[kRows]) {
  PowPairs<kRows> pairs{};
  for (int i = 0; i < kRows; ++i) {
    pairs.row[i][0] = first[i];
    pairs.row[i][1] = second[i];
  }
  return pairs;
}

inline constexpr PowPairs kPowLogPairs64 = SideBySide(kPowFactors64.factor, kPowFactors64.log);
inline constexpr PowPairs kPowLogPairs32 = SideBySide(kPowFactors32.factor, kPowFactors32.log);
inline constexpr PowPairs kPowLog2Pairs32 = SideBySide(kPowFactors32.factor, kPowFactors32.log2);
inline constexpr PowPairs kPowPowerPairs16 = SideBySide(kPowPowers16.hi, kPowPowers16.lo);
inline constexpr PowPairs kPowPowerPairs32 = SideBySide(kPowPowers32.hi, kPowPowers32.lo);

// ln2 = kPowLn2Hi + kPowLn2Lo; the first is a multiple of 2^-42, so that its product with an
// exponent, and the sum with a logarithm of the table, are exact.
inline constexpr double kPowLn2Hi = 0x1.62e42fefa38p-1, kPowLn2Lo = 0x1.ef35793c7673p-45;

struct PowHA {
  static constexpr int kRows = 64;   // steps of the logarithm's table
  static constexpr int kSteps = 32;  // steps of an octave in the table of powers
  static constexpr const double* kFactor = kPowFactors64.factor;
  static constexpr const double* kLog = kPowFactors64.log;
  static constexpr auto& kLogPairs = kPowLogPairs64;
  static constexpr const double* kPower = kPowPowers32.hi;
  static constexpr const double* kPowerRest = kPowPowers32.lo;
  static constexpr auto& kPowerPairs = kPowPowerPairs32;
  static constexpr auto& kLogPolynomial = kPowLogHA;
  static constexpr auto& kExpPolynomial = kPowExpHA;
  // ln2/32 in two parts, the first a multiple of 2^-42: times any number of steps it is exact.
  static constexpr double kStepHi = 0x1.62e42fefap-6, kStepLo = 0x1.cf79abc9e3b3ap-45;
};

struct PowLA {
  static constexpr int kRows = 32;
  static constexpr int kSteps = 16;
  static constexpr const double* kFactor = kPowFactors32.factor;
  static constexpr const double* kLog = kPowFactors32.log;
  static constexpr auto& kLogPairs = kPowLogPairs32;
  static constexpr const double* kPower = kPowPowers16.hi;
  static constexpr const double* kPowerRest = kPowPowers16.lo;
  static constexpr auto& kPowerPairs = kPowPowerPairs16;
  static constexpr auto& kLogPolynomial = kPowLogLA;
  static constexpr auto& kExpPolynomial = kPowExpLA;
  static constexpr double kStepHi = 0x1.62e42fefap-5, kStepLo = 0x1.cf79abc9e3b3ap-44;
};

struct PowEP {
  static constexpr int kRows = 32;
  static constexpr int kSteps = 16;
  static constexpr const double* kFactor = kPowFactors32.factor;
  static constexpr const double* kLog = kPowFactors32.log2;
  static constexpr auto& kLogPairs = kPowLog2Pairs32;
  static constexpr auto& kLogPolynomial = kPowLogEP;
  static constexpr auto& kExpPolynomial = kPowExpEP;
};

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_POW_CONSTANTS_H_
