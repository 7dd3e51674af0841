// Argument sets for tests that run over the whole catalogue, and one call with all it does.
#ifndef TESTS_PROMISES_ARGUMENTS_H_
#define TESTS_PROMISES_ARGUMENTS_H_

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"
#include "pexquo/pex.h"
#include "tests/support/control.h"

// Numbers of an entry's type, as 64-bit patterns or as 32-bit ones.
class Numbers {
 public:
  Numbers() = default;
  Numbers(bool is_double, size_t n) : width_(is_double ? 8 : 4), bytes_(n * width_) {}
  size_t size() const { return width_ == 0 ? 0 : bytes_.size() / width_; }
  bool is_double() const { return width_ == 8; }
  size_t width() const { return width_; }
  uint8_t* at(size_t i) { return bytes_.data() + i * width_; }
  const uint8_t* at(size_t i) const { return bytes_.data() + i * width_; }
  uint64_t bits(size_t i) const;
  double value(size_t i) const;
  void set(size_t i, double value);
  void set_bits(size_t i, uint64_t bits);
  Numbers part(size_t from, size_t count) const;
  bool operator==(const Numbers&) const = default;

 private:
  size_t width_ = 0;
  std::vector<uint8_t> bytes_;
};

bool IsNaN(const Numbers& x, size_t i);
bool IsSignallingNaN(const Numbers& x, size_t i);

// The arguments of a call. Where the second is one number for all, b holds it once. Of complex
// arguments the numbers are the parts in turn.
struct Arguments {
  Numbers a, b;
  size_t parts = 1;  // numbers per element of a and b
  size_t size() const { return a.size() / parts; }
  bool has_scalar() const { return b.size() == parts; }
};

// Special values and pairs of them, the neighbourhoods of the catalogue's marks, the typical range,
// all magnitudes, and `random` random bit patterns. Where one second argument serves a whole set,
// there are many sets: each has 700 of the first arguments, or of complex ones `random` if that is
// more; all of them where the environment has PEXQUO_EVERY_WITH_EACH, which takes minutes.
std::vector<Arguments> EveryKind(const pex::Entry& entry, uint64_t seed, size_t random);

// The set behind the digests. It depends on nothing but the entry's shape and type, for ever.
std::vector<Arguments> DigestSet(const pex::Entry& entry);

// Ordinary numbers: the typical range and moderate magnitudes.
Arguments Ordinary(const pex::Entry& entry, uint64_t seed, size_t n);

// What one call left behind.
struct Outcome {
  Numbers r1, r2;
  int32_t status = 0;
  std::vector<PexErrorContext> records;
  uint32_t flags = 0;  // SSE and x87 together, as enum SseFlag
};

enum class Place { Apart, OverA, OverB, SecondOverA };

// Calls an entry on arrays at `offset` elements from an aligned address, with a callback that notes
// every record. The control words are those given; EXPECTs that they are kept.
Outcome CallEntry(const pex::Entry& entry, const Arguments& arguments, const Control& control,
                  size_t offset = 0, Place place = Place::Apart);

// The same of a function that stands in for the entry: call(n, a, b, r1, r2), as Entry::Call.
using StandIn = std::function<void(size_t n, const void* a, const void* b, void* r1, void* r2)>;
Outcome CallInPlaceOf(const pex::Entry& entry, const StandIn& call, const Arguments& arguments,
                      const Control& control, size_t offset = 0, Place place = Place::Apart);

// "" if both are the same to the last bit, otherwise where they differ.
std::string Difference(const Outcome& x, const Outcome& y);

// Whether the entry is the hardware's operation under the caller's control word.
bool FollowsTheCaller(const pex::Entry& entry);

// The control words that the results of a call under `control` depend on: `control` itself, the
// default ones, or these with the caller's choice on subnormal arguments.
Control DecidingControl(const pex::Entry& entry, const Control& control);

// Real and complex entries.
std::vector<const pex::Entry*> AllEntries();

// Names a gtest parameter after its entry.
std::string EntryName(const pex::Entry& entry);

#endif  // TESTS_PROMISES_ARGUMENTS_H_
