// The bits from release to release: a digest of every entry's results and error codes over a fixed
// set of arguments, the same on every vector level.
//
//   digests FILE            compares each entry on each level of the processor with FILE
//   digests --update FILE   rewrites FILE
#include "tests/promises/arguments.h"
#include "tests/promises/digest_table.h"

namespace {

constexpr char kHead[] =
    "# Digests of results and error codes over a fixed set of arguments, the same on every\n"
    "# processor. A line that changes is a change of results: say so where the change is made.\n"
    "# Written by `digests --update` (target update_digests).\n";

void Add(Digest* digest, const Numbers& numbers) {
  for (size_t i = 0; i < numbers.size(); ++i) digest->Add(numbers.bits(i));
}

Digest DigestOf(const pex::Entry& entry) {
  Digest digest;
  for (const Arguments& arguments : DigestSet(entry)) {
    const Outcome outcome = CallEntry(entry, arguments, kDefaultControl);
    Add(&digest, outcome.r1);
    Add(&digest, outcome.r2);
    for (const PexErrorContext& record : outcome.records) {
      digest.Add(static_cast<uint64_t>(record.index) << 32 | static_cast<uint32_t>(record.code));
    }
  }
  return digest;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<Pinned> all;
  for (const pex::Entry* entry : AllEntries()) {
    all.push_back({std::string(entry->symbol), [entry] { return DigestOf(*entry); }});
  }
  return RunDigests(all, kHead, argc, argv);
}
