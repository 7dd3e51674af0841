#include "accuracy/search.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace pex::accuracy {
namespace {

struct Cell {
  Range range;
  Worst worst;
};

std::vector<Cell> Cells(const Precision& precision, std::span<const double> near) {
  std::vector<Cell> cells;
  const auto cut = [&](Range whole, int parts) {
    const double width = (whole.hi - whole.lo) / parts;
    for (int i = 0; i < parts; ++i) {
      const double lo = whole.lo + i * width;
      cells.push_back({{lo, lo + width}, {}});
    }
  };
  const auto octaves_beside = [&](double c, int lowest, int highest, int parts) {
    for (int e = lowest; e < highest; ++e) {
      const double low = std::ldexp(1.0, e);
      cut({c + low, c + 2 * low}, parts);
      cut({c - 2 * low, c - low}, parts);
    }
  };
  cut(precision.typical, 2048);
  octaves_beside(0, -64, 64, 8);
  for (const auto& points : {std::span<const double>(precision.marks), near}) {
    for (const double c : points) {
      if (c != 0) octaves_beside(c, -40, -2, 1);
    }
  }
  return cells;
}

// Every other point within 2^-11 to 2^-46 of the worst one, relatively, where one is known.
Regime Within(const Cell& cell, bool single, uint64_t count) {
  return {"search", count, [cell, single](uint64_t first, Random& random, std::span<double> out) {
            for (double& x : out) {
              const double u = Unit(random);
              const bool beside = cell.worst.error > 0 && first++ % 2;
              const double reach = std::ldexp(u - 0.5, -10 - static_cast<int>(random() % 36));
              x = ToType(beside ? cell.worst.a * (1 + reach)
                                : cell.range.lo + (cell.range.hi - cell.range.lo) * u,
                         single);
            }
          }};
}

}  // namespace

RegimeResult Search(const Entry& entry, const Oracle& oracle, const Settings& settings) {
  std::vector<Cell> cells = Cells(entry.precision(), oracle.near);
  RegimeResult result{"search", 0, {}};
  Settings round = settings;
  for (const size_t keep : {cells.size(), size_t{64}, size_t{64}, size_t{8}, size_t{8}}) {
    std::ranges::stable_sort(cells, std::greater{}, [](const Cell& c) { return c.worst.error; });
    cells.resize(keep);
    std::vector<Regime> regimes;
    for (const Cell& cell : cells) {
      regimes.push_back(Within(cell, !entry.is_double(), settings.search / keep + 1));
    }
    const auto found = MeasureRegimes(entry, oracle, regimes, round);
    for (size_t i = 0; i < keep; ++i) {
      result.points += found[i].points;
      if (found[i].worst.error > cells[i].worst.error) cells[i].worst = found[i].worst;
    }
    ++round.seed;
  }
  result.worst =
      std::ranges::max_element(cells, {}, [](const Cell& c) { return c.worst.error; })->worst;
  return result;
}

}  // namespace pex::accuracy
