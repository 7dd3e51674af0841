// What natural and decimal logarithms differ in, in single precision.
#ifndef PEX_CORE__HEAP_REAL_LOG_SINGLE_H_
#define PEX_CORE__HEAP_REAL_LOG_SINGLE_H_

#include "pex_core/_heap/real/log_single_polynomials.h"
#include "pex_core/_heap/real/log_single_tables.h"

namespace pex {

// The factors by rows, for the level that loads rows.
template <typename Factor>
struct LogSingleRows {
  struct alignas(2 * sizeof(Factor)) Row {
    Factor factor;
    float log;
  } row[16];
};

template <typename Factor>
constexpr LogSingleRows<Factor> ByRows(const LogSingleTable& t) {
  LogSingleRows<Factor> r{};
  for (int j = 0; j < 16; ++j) r.row[j] = {t.factor[j], t.log[j]};
  return r;
}

// Rows 6 .. 12 in the places 6, 7, 0, 1, ...: what fits a register of eight.
struct LogSingleEight {
  alignas(32) float factor[8], log[8];
};

constexpr LogSingleEight Folded(const LogSingleTable& t) {
  LogSingleEight r{};
  for (int i = 6; i <= 12; ++i) {
    r.factor[i & 7] = t.factor[i];
    r.log[i & 7] = t.log[i];
  }
  return r;
}

inline constexpr auto kLnSingleEight = Folded(kLnSingleEighths);
inline constexpr auto kLnSingleRows = ByRows<float>(kLnSingleEighths);
inline constexpr auto kLog10SingleEight = Folded(kLog10SingleEighths);
inline constexpr auto kLog10SingleRows = ByRows<double>(kLog10SingleEighths);

// Powers of it go along with the argument where products of a tiny one would underflow.
inline constexpr float kLog1pScale = 0x1p27f;

// 2^-23 ln 2 in two parts of 16 bits.
inline constexpr float kSingleLn2Hi = 0x1.62e4p-24f, kSingleLn2Lo = 0x1.7f7ep-43f;

struct sNaturalLog {
  static constexpr float kLogE = 1;
  static constexpr float kLog2 = 0x1.62e430p-24f;  // 2^-23 ln 2
  static constexpr float kLog2Hi = kSingleLn2Hi;
  static constexpr auto& kTable = kLnSingleTable;
  static constexpr auto& kEP = kLnSingleEP;
  static constexpr auto& kHA = kLnSingleHA;
};

struct sDecimalLog {
  static constexpr float kLogE = 0x1.bcb7b2p-2f,
                         kLogELo = static_cast<float>(0x1.bcb7b1526e50ep-2 - 0x1.bcb7b2p-2);
  // 2^-23 log10 2 in two parts of 16 bits
  static constexpr float kLog2Hi = 0x1.344p-25f, kLog2Lo = 0x1.350ap-41f;
  static constexpr auto& kEP = kLog10SingleEP;
  static constexpr auto& kHA = kLog10SingleHA;
};

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_LOG_SINGLE_H_
