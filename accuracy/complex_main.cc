// pexquo_accuracy_complex [--count N] [--seed N] [SYMBOL ...]: the errors of the complex entries
// against MPC, of all entries or of those whose symbols contain one of the given words.
//
// Exit status: 0 when every entry is within its bound, 1 when one is not, 2 for bad arguments.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "accuracy/complex.h"

int main(int argc, char** argv) {
  using namespace pex;
  uint64_t count = 100'000, seed = 1;
  std::vector<std::string> words;
  CLI::App app("The errors of the complex entries against MPC.", "pexquo_accuracy_complex");
  app.add_option("--count", count, "Points for each regime")
      ->check(CLI::Range(uint64_t{1}, uint64_t{1} << 30))
      ->capture_default_str();
  app.add_option("--seed", seed, "Seed of the random points")->capture_default_str();
  app.add_option("symbols", words, "Parts of symbols, as zMul_HA");
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::fprintf(stderr, "pexquo_accuracy_complex: %s\n", e.what());
    return 2;
  }
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
    for (const accuracy::ComplexRegimeResult& r : accuracy::MeasureComplex(entry, count, seed)) {
      const bool good = r.worst.error <= entry.ulp_bound();
      within &= good;
      std::printf("  %s%s\n", Text(r).c_str(), good ? "" : "  BEYOND THE BOUND");
    }
  }
  if (!any) {
    std::fprintf(stderr, "pexquo_accuracy_complex: no entry matches\n");
    return 2;
  }
  return within ? 0 : 1;
}
