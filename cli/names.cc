#include "cli/names.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace cli {
namespace {

// The number of insertions, deletions and replacements between two words.
size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t replaced = diagonal + (a[i] != b[j]);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string Normalized(std::string_view name) {
  std::string out;
  for (const char c : name) {
    if (c != '-' && c != '_') out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return out;
}

std::string Suggestion(std::string_view name, const std::vector<std::string>& known) {
  constexpr size_t kLongestTypo = 64;
  if (name.size() > kLongestTypo) return {};
  const std::string typed = Normalized(name);
  const std::string* best = nullptr;
  size_t least = typed.size() <= 3 ? 2 : 1 + std::max<size_t>(2, typed.size() / 3);
  for (const std::string& candidate : known) {
    const std::string word = Normalized(candidate);
    size_t distance = EditDistance(typed, word);
    if (typed.size() > 1 && (word.starts_with(typed) || typed.starts_with(word))) {
      distance = std::min<size_t>(distance, 1);
    }
    if (distance < least) {
      least = distance;
      best = &candidate;
    }
  }
  return best == nullptr ? "" : "; did you mean " + *best + "?";
}

}  // namespace cli
