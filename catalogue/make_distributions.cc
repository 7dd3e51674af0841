// make_distributions DOCS: writes DOCS/distributions.md from the catalogue, and for each
// distribution with a density DOCS/distribution-NAME.svg (by gnuplot): a histogram of a million
// numbers of MCG59 from its own start against it.
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"

namespace {

constexpr int32_t kDraws = 1000000;
constexpr int kBins = 100;

struct DeleteStream {
  void operator()(StreamState* stream) const { __quoDeleteStream(&stream); }
};
struct ClosePipe {
  void operator()(std::FILE* pipe) const { pclose(pipe); }
};

std::string Number(double x) {
  char text[32];
  std::snprintf(text, sizeof(text), "%g", x);
  return text;
}

std::vector<double> Draw(const quo::Sampler& sampler,
                         const std::array<double, quo::kMaxParameters>& parameters) {
  StreamState* made = nullptr;
  if (__quoNewStreamEx(&made, QUO_BRNG_MCG59, 0, nullptr) != QUO_OK) {
    throw std::runtime_error("no stream");
  }
  const std::unique_ptr<StreamState, DeleteStream> stream(made);
  std::vector<double> x(kDraws);
  std::vector<int32_t> whole(sampler.type == 'i' ? kDraws : 0);
  void* const r = sampler.type == 'i' ? static_cast<void*>(whole.data()) : x.data();
  if (sampler.draw(0, stream.get(), kDraws, r, parameters.data()) != QUO_OK) {
    throw std::runtime_error(std::string(sampler.symbol) + " failed");
  }
  if (sampler.type == 'i') x.assign(whole.begin(), whole.end());
  return x;
}

void Plot(const quo::Distribution& d, const quo::Sampler& sampler, const std::string& file) {
  const bool discrete = sampler.type == 'i';
  const int bins = discrete ? static_cast<int>(d.hi - d.lo) + 1 : kBins;
  const double lo = discrete ? d.lo - 0.5 : d.lo;
  const double width = discrete ? 1 : (d.hi - d.lo) / kBins;
  const auto parameters = d.ShownParameters();
  std::vector<int> counts(static_cast<size_t>(bins));
  for (const double x : Draw(sampler, parameters)) {
    const double bin = std::floor((x - lo) / width);
    if (bin >= 0 && bin < bins) ++counts[static_cast<size_t>(bin)];
  }
  const std::unique_ptr<std::FILE, ClosePipe> gnuplot(popen("gnuplot", "w"));
  if (gnuplot == nullptr) throw std::runtime_error("gnuplot cannot be run");
  std::string title(d.name);
  for (size_t i = 0; i < static_cast<size_t>(d.parameter_count()); ++i) {
    const std::string name(d.parameters[i].name);
    std::fprintf(gnuplot.get(), "%s = %.17g\n", name.c_str(), parameters[i]);
    title += ", " + name + " = " + Number(parameters[i]);
  }
  std::fprintf(gnuplot.get(),
               "set terminal svg size 640,320\nset output '%s'\nset title '%s'\n"
               "set samples 801\nset xrange [%g:%g]\nset yrange [0:]\n"
               "set style fill solid 0.35 noborder\nset boxwidth %g\n"
               "density(x) = %.*s\nplot '-' with boxes lc rgb '#4477aa' title '%d draws', ",
               file.c_str(), title.c_str(), lo, lo + bins * width, discrete ? 0.8 : width,
               static_cast<int>(d.density.size()), d.density.data(), kDraws);
  std::fputs(discrete ? "'-' using 1:(density($1)) with points pt 7 lc rgb '#aa3333' title "
                        "'probability'\n"
                      : "density(x) with lines lw 1.5 lc rgb '#aa3333' title 'density'\n",
             gnuplot.get());
  for (int pass = 0; pass < (discrete ? 2 : 1); ++pass) {
    for (int i = 0; i < bins; ++i) {
      std::fprintf(gnuplot.get(), "%.9g %.9g\n", lo + (i + 0.5) * width,
                   counts[static_cast<size_t>(i)] / (kDraws * width));
    }
    std::fputs("e\n", gnuplot.get());
  }
}

std::string ConditionText(const quo::Parameter& p) {
  switch (p.condition) {
    case quo::Condition::Positive:
      return "above 0";
    case quo::Condition::Probability:
      return "from 0 to 1";
    case quo::Condition::Count:
      return "an integer from 0 to 2147483647";
    default:
      return "finite";
  }
}

void Write(std::ofstream& out, const quo::Distribution& d, const std::filesystem::path& docs) {
  out << "\n## " << d.name << "\n\n" << d.what << ".\n\n";
  std::string entries;
  const quo::Sampler* plotted = nullptr;
  for (const quo::Sampler& s : quo::Samplers()) {
    if (s.distribution != &d) continue;
    entries += (entries.empty() ? "`" : ", `") + std::string(s.symbol) + "`";
    if (plotted == nullptr) plotted = &s;
  }
  if (entries.empty()) entries = "see `pexquo/quo.h`";
  out << "- Entries: " << entries << "\n";
  for (int i = 0; i < d.parameter_count(); ++i) {
    const quo::Parameter& p = d.parameters[static_cast<size_t>(i)];
    out << "- `" << p.name << "`: " << p.what << "; " << ConditionText(p) << ", " << p.standard
        << " for `pexquo draw` without it\n";
  }
  if (!d.methods.empty()) out << "- Methods 0, 1, ...: " << d.methods << "\n";
  out << "- Result: " << d.result << "\n- Generator outputs for a number: " << d.uniforms << "\n";
  if (d.density.empty() || plotted == nullptr) return;
  const std::string svg = "distribution-" + std::string(d.name) + ".svg";
  Plot(d, *plotted, (docs / svg).string());
  out << "- " << (plotted->type == 'i' ? "Probability of x" : "Density at x") << ": `" << d.density
      << "`\n\n![" << d.name << "](" << svg << ")\n";
}

void WriteAll(const std::filesystem::path& docs) {
  std::ofstream out(docs / "distributions.md");
  out << "# Distributions\n\n"
         "Written by `make_distributions docs` from the catalogue; do not edit.\n\n"
         "Every entry takes (method, stream, n, results, parameters) and returns 0 or the\n"
         "generator's negative status. u stands for uniforms on [0, 1) of the generator, ln u for\n"
         "ln of the least positive number where u is 0. The numbers are the same bits on every\n"
         "processor and vector level. No parameter is checked by the entries; `pexquo draw`\n"
         "checks them. The plots show "
      << kDraws << " numbers each from MCG59.\n";
  for (const quo::Distribution& d : quo::Distributions()) Write(out, d, docs);
  if (!out.flush()) throw std::runtime_error("distributions.md could not be written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: make_distributions DOCS\n", stderr);
    return 2;
  }
  try {
    WriteAll(argv[1]);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "make_distributions: %s\n", failure.what());
    return 1;
  }
}
