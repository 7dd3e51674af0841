// Which arguments are reported with which code: the tables tests/special/*.ranges.tsv.
#ifndef TESTS_PROMISES_ERROR_RANGES_H_
#define TESTS_PROMISES_ERROR_RANGES_H_

#include <cmath>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"

// An interval of extended real numbers, with or without the integers; no NaN lies in any.
struct Interval {
  double lo, hi;
  bool open_lo, open_hi;
  bool fractions_only = false;
  bool Has(double x) const {
    if (fractions_only && x == std::trunc(x)) return false;
    return (open_lo ? x > lo : x >= lo) && (open_hi ? x < hi : x <= hi);
  }
};

struct ErrorRange {
  std::string function;
  std::string types;                // "d", "s" or "ds"
  int code = 0;                     // 0: these arguments are fine, whatever later lines say
  std::vector<Interval> arguments;  // empty: the function reports nothing
};

// All lines of all tables in `folder`; throws std::runtime_error with file and line for a bad one.
std::vector<ErrorRange> ReadErrorRanges(const std::string& folder);

// The function under whose name, and with whose codes, an entry reports: its own, but for Powx with
// an exponent that another kernel serves.
std::string ReportingFunction(const pex::Entry& entry, double b);

// The lines of a function for a type.
std::vector<ErrorRange> RangesOf(const std::vector<ErrorRange>& all, const std::string& function,
                                 char type);

// The code of the first line that has the arguments; 0 for none.
int ExpectedCode(const std::vector<ErrorRange>& lines, double a, double b);

#endif  // TESTS_PROMISES_ERROR_RANGES_H_
