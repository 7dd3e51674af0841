// Which arguments are reported with which code: the tables tests/special/*.ranges.tsv.
#ifndef TESTS_PROMISES_ERROR_RANGES_H_
#define TESTS_PROMISES_ERROR_RANGES_H_

#include <string>
#include <vector>

#include "catalogue/catalogue.h"

// An interval of extended real numbers; no NaN lies in any.
struct Interval {
  double lo, hi;
  bool open_lo, open_hi;
  bool Has(double x) const { return (open_lo ? x > lo : x >= lo) && (open_hi ? x < hi : x <= hi); }
};

struct ErrorRange {
  std::string function;
  std::string types;                // "d", "s" or "ds"
  int code = 0;                     // 0: these arguments are fine, whatever later lines say
  std::vector<Interval> arguments;  // empty: the function reports nothing
};

// All lines of all tables in `folder`; throws std::runtime_error with file and line for a bad one.
std::vector<ErrorRange> ReadErrorRanges(const std::string& folder);

// The lines of an entry.
std::vector<ErrorRange> RangesOf(const std::vector<ErrorRange>& all, const pex::Entry& entry);

// The code of the first line that has the arguments; 0 for none.
int ExpectedCode(const std::vector<ErrorRange>& lines, double a, double b);

#endif  // TESTS_PROMISES_ERROR_RANGES_H_
