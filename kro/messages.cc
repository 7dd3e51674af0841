// The message catalogue: headlines of element errors and the lines of values below them.
#include <cstdarg>
#include <cstdio>

#include "pexquo/kro.h"

namespace {

enum class Arguments { Name, NameAndIndex, IndexAndValue };

struct Message {
  Arguments arguments;
  const char* format;
};

constexpr int32_t kFirst = 735;
constexpr Message kMessages[] = {
    {Arguments::NameAndIndex, "pexquo: %s: bad array length (parameter %d)"},
    {Arguments::Name, "pexquo: %s: an array is missing (null pointer)"},
    {Arguments::Name, "pexquo: %s: argument outside the function's domain"},
    {Arguments::Name, "pexquo: %s: singularity"},
    {Arguments::Name, "pexquo: %s: overflow"},
    {Arguments::Name, "pexquo: %s: underflow"},
    {Arguments::Name, "pexquo: %s: unknown error"},
    // One argument, one result.
    {Arguments::IndexAndValue, "  argument [%d] = %.17g"},
    {Arguments::IndexAndValue, "  result [%d] = %.17g"},
    // One argument, two results.
    {Arguments::IndexAndValue, "  argument [%d] = %.17g"},
    {Arguments::IndexAndValue, "  first result [%d] = %.17g"},
    {Arguments::IndexAndValue, "  second result [%d] = %.17g"},
    // Two arguments, one result.
    {Arguments::IndexAndValue, "  first argument [%d] = %.17g"},
    {Arguments::IndexAndValue, "  second argument [%d] = %.17g"},
    {Arguments::IndexAndValue, "  result [%d] = %.17g"},
    // Two arguments, two results.
    {Arguments::IndexAndValue, "  first argument [%d] = %.17g"},
    {Arguments::IndexAndValue, "  second argument [%d] = %.17g"},
    {Arguments::IndexAndValue, "  first result [%d] = %.17g"},
    {Arguments::IndexAndValue, "  second result [%d] = %.17g"},
};
constexpr int32_t kCount = sizeof(kMessages) / sizeof(kMessages[0]);

}  // namespace

extern "C" int kro_serv_kro_print(int32_t /*kind*/, int32_t message_id, int32_t nargs, ...) {
  if (message_id < kFirst || message_id >= kFirst + kCount) return -1;
  const Message& message = kMessages[message_id - kFirst];
  const int32_t wanted = message.arguments == Arguments::Name ? 1 : 2;
  if (nargs != wanted) return -1;

  va_list args;
  va_start(args, nargs);
  flockfile(stderr);  // the line stays whole
  const int length = std::vfprintf(stderr, message.format, args);
  const bool ended = std::fputc('\n', stderr) != EOF;
  funlockfile(stderr);
  va_end(args);
  if (length < 0 || !ended) return -1;
  return length + 1;
}
