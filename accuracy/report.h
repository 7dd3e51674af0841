// What the measurer writes: lines for the terminal, docs/accuracy.md and its plots.
#ifndef ACCURACY_REPORT_H_
#define ACCURACY_REPORT_H_

#include <string>
#include <vector>

#include "accuracy/exhaustive.h"
#include "accuracy/measure.h"

namespace pex::accuracy {

// "2.195 ulp" or "26.31 bits", by the tier of the entry.
std::string ErrorText(const Entry& entry, const Worst& worst);
std::string BoundText(const Entry& entry);

// One line for each entry, with `details` also one for each regime.
void PrintHead();
void Print(const EntryResult& result, bool details);
void Print(const ExhaustiveResult& result);

// The whole document: a table and, where it exists beside the file, the plot for each function.
// `machine` is the line on processor, compiler and date.
void WriteMarkdown(const std::filesystem::path& file, const std::vector<EntryResult>& results,
                   const std::vector<ExhaustiveRecord>& exhaustive, const Settings& settings,
                   const std::string& machine);

// Processor, vector level, compiler and date; no name of the machine.
std::string MachineLine(const std::string& level);
std::string Today();

// DIRECTORY/accuracy-NAME.svg by gnuplot: the largest error of each entry of the function in 150
// parts of the typical range. Throws std::runtime_error when gnuplot fails.
void Plot(const std::filesystem::path& directory, const Function& function,
          const std::vector<const Entry*>& entries, const Settings& settings);
std::filesystem::path PlotFile(const std::filesystem::path& directory, const Function& function);

}  // namespace pex::accuracy

#endif  // ACCURACY_REPORT_H_
