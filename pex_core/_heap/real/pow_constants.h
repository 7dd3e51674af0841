// What the tiers of the power differ in, and their tables by rows.
#ifndef PEX_CORE__HEAP_REAL_POW_CONSTANTS_H_
#define PEX_CORE__HEAP_REAL_POW_CONSTANTS_H_

#include "pex_core/_heap/real/pow_polynomials.h"
#include "pex_core/_heap/real/pow_tables.h"

namespace pex {

// Two columns side by side, from the row kFirst on, for levels that load rows and transpose them.
template <int kRows>
struct PowPairs {
  alignas(64) double row[kRows][2];
};

template <int kFirst = 0, int kRows>
constexpr PowPairs<kRows> SideBySide(const double (&first)[kRows], const double (&second)[kRows]) {
  PowPairs<kRows> pairs{};
  for (int i = 0; i < kRows; ++i) {
    pairs.row[i][0] = first[(i + kFirst) % kRows];
    pairs.row[i][1] = second[(i + kFirst) % kRows];
  }
  return pairs;
}

inline constexpr PowPairs kPowLogPairs64 = SideBySide<32>(kPowFactors64.factor, kPowFactors64.log);
inline constexpr PowPairs kPowLogPairs32 = SideBySide<16>(kPowFactors32.factor, kPowFactors32.log);
inline constexpr PowPairs kPowLog2Pairs32 =
    SideBySide<16>(kPowFactors32.factor, kPowFactors32.log2);
inline constexpr PowPairs kPowPowerPairs16 = SideBySide(kPowPowers16.hi, kPowPowers16.lo);
inline constexpr PowPairs kPowPowerPairs32 = SideBySide(kPowPowers32.hi, kPowPowers32.lo);

// ln2 in two parts; the first is a multiple of 2^-42, so that its product with an exponent, and the
// sum with a logarithm of the table, are exact; the second has 40 bits, for exact products too.
inline constexpr double kPowLn2Hi = 0x1.62e42fefa38p-1, kPowLn2Rest = 0x1.ef35793c76p-45;

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
  // ln2/32 in two parts, the first a multiple of 2^-42, the second of 36 bits: times the steps to a
  // normal power both are exact.
  static constexpr double kStepHi = 0x1.62e42fefap-6, kStepRest = 0x1.cf79abc9ep-45;
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
  static constexpr double kStepHi = 0x1.62e42fefap-5, kStepRest = 0x1.cf79abc9ep-44;
  static constexpr double kStepLo = 0x1.cf79abc9e3b3ap-44;  // the second part as a double
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
