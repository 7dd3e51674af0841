// The vector level that the library computes with.
#ifndef CLI_LEVEL_H_
#define CLI_LEVEL_H_

#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct Level {
  std::string_view name;  // as --level takes it
  std::string_view what;
  bool available;  // on this processor
};

// The levels the library is compiled for, from the lowest.
std::vector<Level> Levels();
// The highest one that calls may use now.
std::string_view LevelInUse();
// Holds the library to a level and those below. Unknown, or beyond this processor: a Failure.
void UseLevel(const std::string& name);

}  // namespace cli

#endif  // CLI_LEVEL_H_
