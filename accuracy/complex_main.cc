// pexquo_accuracy_complex [--count N] [--seed N] [--markdown FILE] [SYMBOL ...]: the errors of the
// complex entries against MPC, of all entries or of those whose symbols contain one of the given
// words; FILE gets a table of the largest ones.
//
// Exit status: 0 when every entry is within its bound, 1 when one is not, 2 for bad arguments.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "accuracy/complex.h"

namespace {

constexpr char kMarkdownHead[] =
    "# Accuracy of the complex functions\n\n"
    "Written by `pexquo_accuracy_complex --markdown`; do not edit. The largest errors against "
    "MPC,\n"
    "in units of the last place of a part of the result (*modulus*: of its larger part; of `_26` "
    "and\n"
    "`_11` entries in units of 2^-53 and 2^-24 of the part), with the regime and the argument a "
    "of\n"
    "each. The results are the same on every processor and vector level.\n\n";

std::string MarkdownRow(const pex::Entry& entry, const pex::accuracy::ComplexRegimeResult& worst) {
  char text[300];
  std::snprintf(text, sizeof(text), "| `%.*s` | %g%s | %.4f | %s | (%a, %a) |\n",
                static_cast<int>(entry.symbol.size()), entry.symbol.data(), entry.ulp_bound(),
                entry.measure() == pex::Measure::Modulus ? " modulus" : "",
                std::ceil(worst.worst.error * 1e4) / 1e4, worst.name.c_str(), worst.worst.a.real(),
                worst.worst.a.imag());
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace pex;
  uint64_t count = 100'000, seed = 1;
  std::vector<std::string> words;
  std::string markdown;
  CLI::App app("The errors of the complex entries against MPC.", "pexquo_accuracy_complex");
  app.add_option("--count", count, "Points for each regime")
      ->check(CLI::Range(uint64_t{1}, uint64_t{1} << 30))
      ->capture_default_str();
  app.add_option("--seed", seed, "Seed of the random points")->capture_default_str();
  app.add_option("--markdown", markdown, "Write the largest errors to this file");
  app.add_option("symbols", words, "Parts of symbols, as zMul_HA");
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::fprintf(stderr, "pexquo_accuracy_complex: %s\n", e.what());
    return 2;
  }
  std::string table =
      kMarkdownHead + std::to_string(count) + " points a regime, seed " + std::to_string(seed) +
      ".\n\n| entry | bound | largest error | regime | a |\n|---|---|---|---|---|\n";
  bool within = true, any = false;
  for (const Entry& entry : ComplexEntries()) {
    const auto matches = [&](const std::string& word) {
      return entry.symbol.find(word) != std::string_view::npos;
    };
    if (!entry.function->tiered || (!words.empty() && std::ranges::none_of(words, matches)))
      continue;
    any = true;
    std::printf("%.*s, bound %g\n", static_cast<int>(entry.symbol.size()), entry.symbol.data(),
                entry.ulp_bound());
    accuracy::ComplexRegimeResult worst;
    for (const accuracy::ComplexRegimeResult& r : accuracy::MeasureComplex(entry, count, seed)) {
      if (r.worst.error > worst.worst.error) worst = r;
      const bool good = r.worst.error <= entry.ulp_bound();
      within &= good;
      std::printf("  %s%s\n", Text(r).c_str(), good ? "" : "  BEYOND THE BOUND");
    }
    table += MarkdownRow(entry, worst);
  }
  if (!any) {
    std::fprintf(stderr, "pexquo_accuracy_complex: no entry matches\n");
    return 2;
  }
  if (!markdown.empty()) {
    std::ofstream file(markdown);
    file << table;
    if (!file.flush()) {
      std::fprintf(stderr, "pexquo_accuracy_complex: cannot write %s\n", markdown.c_str());
      return 2;
    }
  }
  return within ? 0 : 1;
}
