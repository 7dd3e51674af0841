// Names of the catalogue as Python has them.
#ifndef PYTHON_MODULE_NAMES_H_
#define PYTHON_MODULE_NAMES_H_

#include <cctype>
#include <string>
#include <string_view>

namespace pexquo::python {

inline std::string SmallLetters(std::string_view name) {
  std::string small(name);
  for (char& c : small) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return small;
}

}  // namespace pexquo::python

#endif  // PYTHON_MODULE_NAMES_H_
