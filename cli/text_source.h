// Numbers in text: one element a line, or columns of separated values.
#ifndef CLI_TEXT_SOURCE_H_
#define CLI_TEXT_SOURCE_H_

#include <memory>

#include "cli/reader.h"
#include "cli/source.h"

namespace cli {

std::unique_ptr<Source> MakeTextSource(std::unique_ptr<Reader> reader, const TextOptions& options);

}  // namespace cli

#endif  // CLI_TEXT_SOURCE_H_
