// Names that a person types: compared loosely, and answered with the closest one when unknown.
#ifndef CLI_NAMES_H_
#define CLI_NAMES_H_

#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Lower case, without hyphens and underscores.
std::string Normalized(std::string_view name);

// The fields of a list separated by commas, as they stand; at least one.
std::vector<std::string> CommaSeparated(std::string_view list);

// "; did you mean NAME?" with the closest of the known names, or `otherwise` when none is close.
std::string Suggestion(std::string_view name, const std::vector<std::string>& known,
                       const std::string& otherwise = "");

// "a, b and c".
std::string Enumeration(const std::vector<std::string>& words);

}  // namespace cli

#endif  // CLI_NAMES_H_
