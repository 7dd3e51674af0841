// The commands of the program. Each returns its exit status; bad input ends in a Failure.
#ifndef CLI_COMMANDS_H_
#define CLI_COMMANDS_H_

#include <map>
#include <string>

#include "cli/source.h"

namespace cli {

// What there is: "functions", "generators", "distributions", "levels", or everything for "".
int List(const std::string& topic);

// After what was printed on standard output: the exit status, or a Failure if not all got there.
int FinishPrinting();

struct EvalOptions {
  std::string function, tier, type;  // as typed; empty where not given
  std::string input = "-", output = "-", format;
  TextOptions text;
  std::string with, with_value, with_column;  // second argument: a file, or one value
  std::string max_reports;                    // special elements shown; all where not given
};
int Eval(const EvalOptions& options);

// All as typed; empty where not given.
struct DrawOptions {
  std::string distribution, generator, member, type, method, count;
  std::string dimension;  // of quasi-random points
  std::string seeds;      // words separated by commas; the generator's own start when empty
  std::map<std::string, std::string> parameters;
  std::string mean, factor, storage;  // of vectors
  bool accurate = false;
  std::string load, save;  // files of streams
  std::string leapfrog, skip;
  std::string output = "-", format;
};
int Draw(const DrawOptions& options);

}  // namespace cli

#endif  // CLI_COMMANDS_H_
