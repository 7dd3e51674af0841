// What natural and decimal logarithms differ in: log(x) = e log(2) + log(a) + log(1 + (m - a)/a)
// for x = 2^e m and a point a of the table; the last term is a polynomial in p = (m - a) *
// factor(a).
#ifndef PEX_CORE__HEAP_REAL_LOG_CONSTANTS_H_
#define PEX_CORE__HEAP_REAL_LOG_CONSTANTS_H_

#include "pex_core/_heap/real/exp_log_polynomials.h"
#include "pex_core/_heap/real/log_tables.h"

namespace pex {

// The table by rows, for levels that load rows and transpose them.
struct LogRows {
  alignas(64) double row[16][4];  // a, factor, log, rest
};

constexpr LogRows ByRows(const LogTable& t) {
  LogRows r{};
  for (int j = 0; j < 16; ++j) {
    r.row[j][0] = t.a[j];
    r.row[j][1] = t.factor[j];
    r.row[j][2] = t.log[j];
    r.row[j][3] = t.rest[j];
  }
  return r;
}

// The same of a finer table, by the number of sixteenths.
struct LogFineRows {
  alignas(64) double row[25][4];  // a, factor, log
};

constexpr LogFineRows ByRows(const LogFineTable& t) {
  LogFineRows r{};
  for (int i = 12; i <= 24; ++i) {
    r.row[i][0] = t.a[i & 15];
    r.row[i][1] = t.factor[i & 15];
    r.row[i][2] = t.log[i & 15];
  }
  return r;
}

struct LogFactorColumns {
  alignas(64) double factor[16], log[16];
};

constexpr LogFactorColumns ByColumns(const LogFactors& f) {
  LogFactorColumns c{};
  for (int j = 0; j < 16; ++j) {
    c.factor[j] = f.row[j][0];
    c.log[j] = f.row[j][1];
  }
  return c;
}

// Rows by the number of sixteenths, 12 to 24.
struct LogSixteenths {
  alignas(64) double row[25][2];
};

constexpr LogSixteenths BySixteenths(const LogFactors& f) {
  LogSixteenths s{};
  for (int i = 12; i <= 24; ++i) {
    s.row[i][0] = f.row[i & 15][0];
    s.row[i][1] = f.row[i & 15][1];
  }
  return s;
}

constexpr LogFactors FactorsOf(const LogTable& t) {
  LogFactors f{};
  for (int j = 0; j < 16; ++j) {
    f.row[j][0] = t.factor[j];
    f.row[j][1] = t.log[j];
  }
  return f;
}

inline constexpr LogFactors kLnPoints = FactorsOf(kLnTable);
inline constexpr LogFactorColumns kLnColumns = ByColumns(kLnFactors);
inline constexpr LogFactorColumns kLnPointColumns = ByColumns(kLnPoints);
inline constexpr LogFactorColumns kLnShortColumns = ByColumns(kLnShortFactors);
inline constexpr LogFactorColumns kLog10Columns = ByColumns(kLog10Factors);
inline constexpr LogSixteenths kLnSixteenths = BySixteenths(kLnFactors);
inline constexpr LogSixteenths kLnPointSixteenths = BySixteenths(kLnPoints);
inline constexpr LogSixteenths kLnShortSixteenths = BySixteenths(kLnShortFactors);
inline constexpr LogSixteenths kLog10Sixteenths = BySixteenths(kLog10Factors);
inline constexpr LogRows kLnRows = ByRows(kLnTable);
inline constexpr LogRows kLog10Rows = ByRows(kLog10Table);
inline constexpr LogFineRows kLnFineRows = ByRows(kLnFineTable);
inline constexpr LogFineRows kLog10FineRows = ByRows(kLog10FineTable);

// Tables of factors, by rows and by columns. kHalfByMemory: where AVX2 extracts the numbers of rows
// of half of the lanes alone.
struct LnExactFactors {
  static constexpr bool kHalfByMemory = true;
  static constexpr auto& kRows = kLnFactors;
  static constexpr auto& kColumns = kLnColumns;
  static constexpr auto& kSixteenths = kLnSixteenths;
};

// For computations long enough to hide the extractions.
struct LnExtractedFactors : LnExactFactors {
  static constexpr bool kHalfByMemory = false;
};

// The points' own, next to which m c - 1 is smaller.
struct LnPointFactors {
  static constexpr bool kHalfByMemory = true;
  static constexpr auto& kRows = kLnPoints;
  static constexpr auto& kColumns = kLnPointColumns;
  static constexpr auto& kSixteenths = kLnPointSixteenths;
};

struct LnShortFactors {
  static constexpr bool kHalfByMemory = true;
  static constexpr auto& kRows = kLnShortFactors;
  static constexpr auto& kColumns = kLnShortColumns;
  static constexpr auto& kSixteenths = kLnShortSixteenths;
};

// For c m - log10(e).
struct Log10Factors {
  static constexpr bool kHalfByMemory = true;
  static constexpr auto& kRows = kLog10Factors;
  static constexpr auto& kColumns = kLog10Columns;
  static constexpr auto& kSixteenths = kLog10Sixteenths;
};

// log2_hi is a multiple of 2^-42, so that its product with an exponent, and the sum with log(a),
// are exact; log2_lo the rest of log(2).
struct NaturalLog {
  static constexpr bool kHasRest = false;  // every factor is good to 2^-58
  static constexpr const LogTable& kTable = kLnTable;
  static constexpr const LogRows& kRows = kLnRows;
  static constexpr double kLog2Hi = 0x1.62e42fefa38p-1;  // ln 2
  static constexpr double kLog2Lo = 0x1.ef35793c7673p-45;
  static constexpr auto& kPolynomial = kLn;
  using Factors = LnShortFactors;
  static constexpr double kLogE = 1;
  static constexpr auto& kLA = kLnLA;
  static constexpr auto& kEP = kLnEP;
};

struct DecimalLog {
  static constexpr bool kHasRest = true;
  static constexpr const LogTable& kTable = kLog10Table;
  static constexpr const LogRows& kRows = kLog10Rows;
  static constexpr double kLog2Hi = 0x1.34413509f8p-2;  // log10 2
  static constexpr double kLog2Lo = -0x1.80433b83b532ap-44;
  static constexpr auto& kPolynomial = kLog10;
  static constexpr double kLogE = 0x1.bcb7b1526e50ep-2;
};

// For the logarithms with one rounding. log2_rest is so short that its product with an exponent is
// exact; log(1 + (m - a)/a) = p + excess p + p^2 (c[0] + p (c[1] + p S(p))).
struct LongNaturalLog {
  static constexpr auto& kTable = kLnFineTable;
  static constexpr auto& kRows = kLnFineRows;
  static constexpr double kLog2Hi = NaturalLog::kLog2Hi;
  static constexpr double kLog2Rest = 0x1.ef35793c76p-45;
  static constexpr double kExcess = 0;
  static constexpr auto& kPolynomial = kLnLong;
  static constexpr auto& kSextic = kLnLongSextic;
};

struct LongDecimalLog {
  static constexpr auto& kTable = kLog10FineTable;
  static constexpr auto& kRows = kLog10FineRows;
  static constexpr double kLog2Hi = DecimalLog::kLog2Hi;
  static constexpr double kLog2Rest = -0x1.80433b83b53p-44;
  static constexpr double kExcess = kLog10Excess;
  static constexpr auto& kPolynomial = kLog10Long;
  static constexpr auto& kSextic = kLog10LongSextic;
};

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_LOG_CONSTANTS_H_
