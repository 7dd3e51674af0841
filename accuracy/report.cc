#include "accuracy/report.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <map>
#include <stdexcept>

namespace pex::accuracy {
namespace {

std::string Text(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string Text(const char* format, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof(text), format, arguments);
  va_end(arguments);
  return text;
}

std::string Arguments(const Entry& entry, const Worst& w) {
  return ArgumentCount(entry.function->shape) == 2 ? Hex(w.a) + ", " + Hex(w.b) : Hex(w.a);
}

// Rounded away from zero, so that a number printed as 0.5000 is at most that.
std::string Up(double x, int digits) {
  if (!std::isfinite(x)) return "inf";
  const double scale = std::pow(10.0, digits);
  return Text("%.*f", digits, x < 1e6 ? std::fabs(std::ceil(x * scale - 1e-9)) / scale : x);
}

std::string Down(double x, int digits) {
  if (!std::isfinite(x)) return x > 0 ? "all" : "none";
  const double scale = std::pow(10.0, digits);
  return Text("%.*f", digits, std::floor(x * scale) / scale);
}

std::string Processor() {
  std::ifstream in("/proc/cpuinfo");
  std::string line;
  while (std::getline(in, line)) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown processor";
}

std::string Compiler() {
#if defined(__clang__)
  return "Clang " + std::to_string(__clang_major__) + "." + std::to_string(__clang_minor__);
#else
  return "GCC " + std::to_string(__GNUC__) + "." + std::to_string(__GNUC_MINOR__);
#endif
}

void WriteFunction(std::ofstream& out, const std::filesystem::path& directory,
                   const std::vector<const EntryResult*>& results) {
  const Function& function = *results.front()->entry->function;
  out << "\n## " << function.name << "\n\n"
      << "| entry | bound | largest error | regime | input | got | wanted |\n"
         "|---|---|---|---|---|---|---|\n";
  for (const EntryResult* r : results) {
    const RegimeResult& regime = r->worst();
    const Worst& w = regime.worst;
    out << "| `" << r->entry->symbol << "` | " << BoundText(*r->entry) << " | "
        << ErrorText(*r->entry, w) << (r->within_bound() ? "" : " **above the bound**") << " | "
        << regime.name << " | `" << Arguments(*r->entry, w) << "` | `" << Hex(w.got) << "` | `"
        << Hex(w.wanted) << "` |\n";
  }
  out << "\nLargest error by regime:\n\n| entry |";
  for (const RegimeResult& regime : results.front()->regimes) out << " " << regime.name << " |";
  out << "\n|---|";
  for (size_t i = 0; i < results.front()->regimes.size(); ++i) out << "---|";
  out << "\n";
  for (const EntryResult* r : results) {
    out << "| `" << r->entry->symbol << "` |";
    for (const RegimeResult& regime : r->regimes) {
      out << " " << (regime.worst.error < 0 ? "-" : ErrorText(*r->entry, regime.worst)) << " |";
    }
    out << "\n";
  }
  if (std::filesystem::exists(PlotFile(directory, function))) {
    out << "\n![Error of " << function.name << " over the typical range]("
        << PlotFile("", function).string() << ")\n";
  }
}

void WriteLongRuns(std::ofstream& out, const std::vector<ExhaustiveRecord>& records, bool pairs) {
  out << "| entry | " << (pairs ? "pairs" : "inputs")
      << " | wrong roundings | largest error | correct bits | input | got | wanted "
         "| date |\n|---|---|---|---|---|---|---|---|---|\n";
  for (const ExhaustiveRecord& r : records) {
    if (r.b.has_value() != pairs) continue;
    out << "| `" << r.symbol << "` | " << r.inputs << " | " << r.wrong << " | " << Up(r.ulp, 4)
        << " ulp | " << Down(r.bits, 2) << " | `" << Hex(r.a) << (r.b ? ", " + Hex(*r.b) : "")
        << "` | `" << Hex(r.got) << "` | `" << Hex(r.wanted) << "` | " << r.date << " |\n";
  }
}

void WriteExhaustive(std::ofstream& out, const std::vector<ExhaustiveRecord>& records) {
  const auto of_pairs = [](const ExhaustiveRecord& r) { return r.b.has_value(); };
  out << "\n## All arguments in single precision\n\n";
  if (std::ranges::all_of(records, of_pairs)) {
    out << "No exhaustive run is on record.\n";
  } else {
    out << "Runs over all 2^32 bit patterns: the reference is the C library's double-precision\n"
           "function, and MPFR decides every result that it leaves in doubt.\n\n";
    WriteLongRuns(out, records, false);
  }
  if (std::ranges::none_of(records, of_pairs)) return;
  out << "\n## Pairs of arguments in single precision\n\n"
         "The same for random and structured pairs, from the endless regimes in turn.\n\n";
  WriteLongRuns(out, records, true);
}

struct Series {
  const Entry* entry;
  std::vector<std::pair<double, double>> points;  // middle of a part, largest error in it
};

Series MeasureParts(const Entry& entry, const Settings& settings) {
  constexpr int kParts = 150;
  const Range range = entry.precision().typical;
  const double width = (range.hi - range.lo) / kParts;
  const Oracle& oracle = OracleOf(*entry.function);
  const bool single = !entry.is_double();
  Series series{&entry, {}};
  std::vector<Regime> parts;
  for (int i = 0; i < kParts; ++i) {
    const double lo = range.lo + i * width;
    parts.push_back({"part", std::max<uint64_t>(settings.count / kParts, 2000),
                     [=](uint64_t, Random& random, std::span<double> out) {
                       for (double& x : out) {
                         const double at = static_cast<double>(random() >> 11) * 0x1p-53;
                         x = lo + width * at;
                         if (single) x = static_cast<float>(x);
                       }
                     }});
  }
  const auto results = MeasureRegimes(entry, oracle, parts, settings);
  for (int i = 0; i < kParts; ++i) {
    const double ulp = results[static_cast<size_t>(i)].worst.ulp;
    series.points.emplace_back(range.lo + (i + 0.5) * width, ulp);
  }
  return series;
}

void WritePanel(std::FILE* gnuplot, const char* title, const std::vector<Series>& panel) {
  std::fprintf(gnuplot, "set title '%s'\nplot ", title);
  for (size_t i = 0; i < panel.size(); ++i) {
    std::fprintf(gnuplot, "%s'-' with lines lw 1.5 title '%.*s'", i ? ", " : "",
                 static_cast<int>(panel[i].entry->symbol.size()), panel[i].entry->symbol.data());
  }
  std::fputs("\n", gnuplot);
  for (const Series& series : panel) {
    for (const auto& [x, y] : series.points) std::fprintf(gnuplot, "%.6g %.4g\n", x, y);
    std::fputs("e\n", gnuplot);
  }
}

}  // namespace

std::string ErrorText(const Entry& entry, const Worst& worst) {
  if (!IsRelative(entry)) return Up(worst.error, 4) + " ulp";
  return Down(CorrectBits(worst.error, FormatOf(entry)), 2) + " bits";
}

std::string BoundText(const Entry& entry) {
  if (IsRelative(entry)) return Text("%g bits", entry.precision().ep_bits);
  return Text("%g ulp", entry.ulp_bound());
}

void PrintHead() {
  std::printf("%-16s %-10s %-14s %-11s %s\n", "entry", "bound", "largest error", "regime",
              "input, got, wanted");
}

void Print(const EntryResult& result, bool details) {
  const Entry& entry = *result.entry;
  const auto line = [&](const RegimeResult& r, const char* name, const std::string& bound) {
    std::printf("%-16s %-10s %-14s %-11s %s %s %s\n", name, bound.c_str(),
                r.worst.error < 0 ? "-" : ErrorText(entry, r.worst).c_str(), r.name.c_str(),
                Arguments(entry, r.worst).c_str(), Hex(r.worst.got).c_str(),
                Hex(r.worst.wanted).c_str());
  };
  line(result.worst(), std::string(entry.symbol).c_str(), BoundText(entry));
  if (!result.within_bound()) std::printf("%-16s ABOVE ITS BOUND\n", "");
  if (details) {
    for (const RegimeResult& r : result.regimes) line(r, "", Text("%g", double(r.points)));
  }
  std::fflush(stdout);
}

void Print(const ExhaustiveResult& result) {
  const Worst& w = result.worst;
  const bool pair = result.entry->function->shape == Shape::Binary;
  const std::string at = Hex(w.a) + (pair ? ", " + Hex(w.b) : "");
  std::printf(
      "%.*s: %llu inputs, %llu wrong roundings, largest error %s (%s ulp) at %s: %s for %s; "
      "MPFR decided %llu\n",
      static_cast<int>(result.entry->symbol.size()), result.entry->symbol.data(),
      static_cast<unsigned long long>(result.inputs), static_cast<unsigned long long>(result.wrong),
      ErrorText(*result.entry, w).c_str(), Up(w.ulp, 6).c_str(), at.c_str(), Hex(w.got).c_str(),
      Hex(w.wanted).c_str(), static_cast<unsigned long long>(result.decided));
  std::fflush(stdout);
}

void WriteMarkdown(const std::filesystem::path& file, const std::vector<EntryResult>& results,
                   const std::vector<ExhaustiveRecord>& exhaustive, const Settings& settings,
                   const std::string& machine) {
  std::map<std::string_view, std::vector<const EntryResult*>> functions;
  std::vector<std::string_view> order;
  for (const EntryResult& r : results) {
    auto& list = functions[r.entry->function->name];
    if (list.empty()) order.push_back(r.entry->function->name);
    list.push_back(&r);
  }
  std::ofstream out(file);
  out << "# Accuracy\n\nWritten by `pexquo_accuracy --markdown`; do not edit.\n"
      << machine
      << "\n\nErrors are against MPFR, in units of the last place of the exact value (of the\n"
         "smallest spacing for subnormal results), rounded up; the measure of a `_26` or `_11`\n"
         "entry is the number of correct bits, -log2 of the relative error. The results are the\n"
         "same on every processor and vector level, so the figures are, too. Each regime has "
      << settings.count << "\npoints (seed " << settings.seed
      << "): *typical* is uniform over the range of the plot; *whole*, all bit patterns\n"
         "and log-uniform magnitudes; *marks* and *zeros-ones*, both sides of each threshold, "
         "zero\n"
         "and one of the function at all distances; *subnormals*, such arguments and results;\n"
         "*integers*, with powers of two and ten; *recorded*, the cases of `accuracy/worst/`; "
         "*near\n"
         "worst*, around the worst points of the others.\n";
  for (const std::string_view name : order) WriteFunction(out, file.parent_path(), functions[name]);
  WriteExhaustive(out, exhaustive);
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

std::string Today() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  char text[16];
  std::strftime(text, sizeof(text), "%F", std::gmtime(&now));
  return text;
}

std::string MachineLine(const std::string& level) {
  return Processor() + ", vector level " + level + ", " + Compiler() + ", " + Today() + ".";
}

std::filesystem::path PlotFile(const std::filesystem::path& directory, const Function& function) {
  std::string name(function.name);
  std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
  return directory / ("accuracy-" + name + ".svg");
}

void Plot(const std::filesystem::path& directory, const Function& function,
          const std::vector<const Entry*>& entries, const Settings& settings) {
  std::vector<Series> panels[2];
  for (const Entry* entry : entries) {
    panels[entry->is_double() ? 0 : 1].push_back(MeasureParts(*entry, settings));
  }
  const int shown = !panels[0].empty() + !panels[1].empty();
  std::FILE* gnuplot = popen("gnuplot", "w");
  if (gnuplot == nullptr) throw std::runtime_error("cannot start gnuplot");
  std::fprintf(gnuplot,
               "set terminal svg size 900,%d font 'sans,12' background 'white' noenhanced\n"
               "set output '%s'\nset multiplot layout %d,1\nset logscale y\nset grid\n"
               "set ylabel 'largest error, ulp'\nset xlabel 'argument'\nset key outside right\n"
               "set format y '%%.0e'\nset yrange [0.1:*]\n",
               40 + 330 * shown, PlotFile(directory, function).c_str(), shown);
  const std::string name(function.name);
  if (!panels[0].empty()) WritePanel(gnuplot, (name + ", double").c_str(), panels[0]);
  if (!panels[1].empty()) WritePanel(gnuplot, (name + ", single").c_str(), panels[1]);
  if (pclose(gnuplot) != 0) throw std::runtime_error("gnuplot failed for " + name);
}

}  // namespace pex::accuracy
