#include "cli/names.h"

#include <algorithm>
#include <cctype>

namespace cli {
namespace {

// The number of insertions, deletions, replacements and swaps of neighbours between two words.
size_t EditDistance(std::string_view a, std::string_view b) {
  // distance[i][j]: between the first i letters of a and the first j of b.
  std::vector<std::vector<size_t>> distance(a.size() + 1, std::vector<size_t>(b.size() + 1));
  for (size_t i = 0; i <= a.size(); ++i) {
    for (size_t j = 0; j <= b.size(); ++j) {
      size_t& d = distance[i][j];
      if (i == 0 || j == 0) {
        d = std::max(i, j);
        continue;
      }
      d = std::min({distance[i - 1][j] + 1, distance[i][j - 1] + 1,
                    distance[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        d = std::min(d, distance[i - 2][j - 2] + 1);
      }
    }
  }
  return distance[a.size()][b.size()];
}

}  // namespace

std::string Normalized(std::string_view name) {
  std::string out;
  for (const char c : name) {
    if (c != '-' && c != '_') out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return out;
}

std::vector<std::string> CommaSeparated(std::string_view list) {
  std::vector<std::string> fields;
  for (;;) {
    const size_t comma = list.find(',');
    fields.emplace_back(list.substr(0, comma));
    if (comma == std::string_view::npos) return fields;
    list.remove_prefix(comma + 1);
  }
}

std::string Suggestion(std::string_view name, const std::vector<std::string>& known,
                       const std::string& otherwise) {
  constexpr size_t kLongestTypo = 64;
  if (name.size() > kLongestTypo) return otherwise;
  const std::string typed = Normalized(name);
  const std::string* best = nullptr;
  size_t least = typed.size() <= 1   ? 1  // any letter is like any other
                 : typed.size() <= 3 ? 2
                                     : 1 + std::max<size_t>(2, typed.size() / 3);
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
  return best == nullptr ? otherwise : "; did you mean " + *best + "?";
}

std::string Enumeration(const std::vector<std::string>& words) {
  std::string text;
  for (size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " and " : ", ";
    text += words[i];
  }
  return text;
}

}  // namespace cli
