// The same bits everywhere: every entry of the catalogue, on every vector level, wherever and
// however it is called, against one call on the lowest level.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "tests/promises/arguments.h"
#include "tests/support/levels.h"
#include "tests/support/random.h"

namespace {

constexpr uint64_t kSeed = 41;

// The outcome of the lowest level, in one call.
Outcome Reference(const pex::Entry& entry, const Arguments& arguments, const Control& control) {
  const UseLevel level(kLevels[0]);
  return CallEntry(entry, arguments, DecidingControl(entry, control));
}

Arguments Part(const Arguments& whole, size_t from, size_t count) {
  const size_t parts = whole.parts;
  return {whole.a.part(from * parts, count * parts),
          whole.has_scalar() || whole.b.size() == 0 ? whole.b
                                                    : whole.b.part(from * parts, count * parts),
          parts};
}

// The outcome of a part, from that of the whole.
Outcome Part(const Outcome& whole, size_t from, size_t count, size_t parts) {
  Outcome part;
  part.r1 = whole.r1.part(from * parts, count * parts);
  if (whole.r2.size() > 0) part.r2 = whole.r2.part(from, count);
  for (PexErrorContext record : whole.records) {
    if (record.index < static_cast<int>(from) || record.index >= static_cast<int>(from + count)) {
      continue;
    }
    record.index -= static_cast<int32_t>(from);
    part.records.push_back(record);
    part.status = record.code;
  }
  return part;
}

using Parameter = std::tuple<size_t, Level>;  // which entry

class SameBits : public testing::TestWithParam<Parameter> {
 protected:
  void SetUp() override {
    RecordProperty("seed", static_cast<int>(kSeed));
    SKIP_WITHOUT(level());
  }
  static const pex::Entry& entry() { return *AllEntries()[std::get<0>(GetParam())]; }
  static size_t result_parts() { return static_cast<size_t>(entry().result_parts()); }
  static const Level& level() { return std::get<1>(GetParam()); }
};

TEST_P(SameBits, WholeArraysInPlaceAndOnAnotherThread) {
  const pex::Shape shape = entry().function->shape;
  std::vector<Place> places = {Place::Apart, Place::OverA};
  if (shape == pex::Shape::Binary) places.push_back(Place::OverB);
  if (shape == pex::Shape::UnaryTwo) places.push_back(Place::SecondOverA);
  for (const Arguments& arguments : EveryKind(entry(), kSeed, 4000)) {
    const Outcome expected = Reference(entry(), arguments, kDefaultControl);
    const UseLevel use(level());
    for (const Place place : places) {
      EXPECT_EQ(Difference(CallEntry(entry(), arguments, kDefaultControl, 0, place), expected), "")
          << "place " << static_cast<int>(place);
    }
    std::thread([&] {
      EXPECT_EQ(Difference(CallEntry(entry(), arguments, kDefaultControl, 1), expected), "");
    }).join();
  }
}

TEST_P(SameBits, AllLengthsAlignmentsAndPlaces) {
  const std::vector<Arguments> sets = EveryKind(entry(), kSeed + 1, 300);
  Random random(kSeed);
  const size_t alignments = 64 / sets[0].a.width();
  // Where there are many sets (a scalar argument), each gets some of the windows.
  const size_t per_set = std::max<size_t>(1, 1200 / sets.size());
  size_t length = 0;
  for (const Arguments& arguments : sets) {
    const Outcome whole = Reference(entry(), arguments, kDefaultControl);
    const UseLevel use(level());
    for (size_t k = 0; k < per_set; ++k) {
      length = length % 70 + 1;
      const size_t offset = k / 70 % alignments;
      const size_t from = random.Below(static_cast<uint32_t>(arguments.size() - length));
      const Outcome got =
          CallEntry(entry(), Part(arguments, from, length), kDefaultControl, offset);
      ASSERT_EQ(Difference(got, Part(whole, from, length, result_parts())), "")
          << "length " << length << " offset " << offset << " from " << from;
    }
  }
}

// An element somewhere among ordinary ones has the result, the record and the flags that it has
// alone on the lowest level.
TEST_P(SameBits, AmongOrdinaryElementsAsAlone) {
  constexpr size_t kLength = 200;  // more than a group of any kernel
  constexpr uint32_t kCounted = ~uint32_t{kInexact | kDenormal};
  const auto put = [](Numbers& to, size_t at, const Numbers& from) {
    std::copy_n(from.at(0), from.size() * from.width(), to.at(at * from.size()));
  };
  Random random(kSeed + 4);
  const std::vector<Arguments> sets = EveryKind(entry(), kSeed + 4, 100);
  // All of a function of one argument, some of the pairs.
  const size_t per_set = std::max<size_t>(10, 1500 / sets.size());
  for (const Arguments& arguments : sets) {
    const bool has_scalar = arguments.has_scalar();
    const size_t step = std::max<size_t>(1, arguments.size() / per_set);
    std::vector<Arguments> elements;
    for (size_t i = random.Below(static_cast<uint32_t>(step)); i < arguments.size(); i += step) {
      elements.push_back(Part(arguments, i, 1));
    }
    std::vector<Outcome> alone;
    {
      const UseLevel lowest(kLevels[0]);
      for (const Arguments& one : elements)
        alone.push_back(CallEntry(entry(), one, kDefaultControl));
    }
    const UseLevel use(level());
    Arguments ordinary = Ordinary(entry(), kSeed, kLength);
    if (has_scalar) ordinary.b = arguments.b;
    const uint32_t others = CallEntry(entry(), ordinary, kDefaultControl).flags;
    for (size_t i = 0; i < elements.size(); ++i) {
      const size_t at = random.Below(kLength);
      Arguments mixed = ordinary;
      put(mixed.a, at, elements[i].a);
      if (!has_scalar && elements[i].b.size() > 0) put(mixed.b, at, elements[i].b);
      const Outcome got = CallEntry(entry(), mixed, kDefaultControl);
      ASSERT_EQ(Difference(Part(got, at, 1, result_parts()), alone[i]), "")
          << elements[i].a.value(0) << " at " << at;
      ASSERT_EQ(got.flags & ~others & kCounted, alone[i].flags & ~others & kCounted)
          << elements[i].a.value(0) << " at " << at;
    }
  }
}

// One array cut into calls of all sizes.
TEST_P(SameBits, ManyCallsOrOne) {
  Random random(kSeed + 2);
  for (const Arguments& arguments : EveryKind(entry(), kSeed + 2, 500)) {
    const Outcome whole = Reference(entry(), arguments, kDefaultControl);
    const UseLevel use(level());
    for (size_t from = 0; from < arguments.size();) {
      const size_t count = std::min<size_t>(arguments.size() - from, 1 + random.Below(200));
      ASSERT_EQ(Difference(CallEntry(entry(), Part(arguments, from, count), kDefaultControl),
                           Part(whole, from, count, result_parts())),
                "")
          << "from " << from << " count " << count;
      from += count;
    }
  }
}

TEST_P(SameBits, UnderTheCallersControlWords) {
  const std::vector<Arguments> sets = EveryKind(entry(), kSeed + 3, 500);
  for (const Control& control : kControls) {
    // The hardware's operations would trap, as they should.
    const bool unmasked = (control.mxcsr & 0x1F80) != 0x1F80;
    if (unmasked && entry().tier == pex::Tier::Plain) continue;
    for (const Arguments& arguments : sets) {
      const Outcome expected = Reference(entry(), arguments, control);
      const UseLevel use(level());
      ASSERT_EQ(Difference(CallEntry(entry(), arguments, control), expected), "") << control.name;
    }
  }
}

std::vector<size_t> Indices() {
  std::vector<size_t> all(AllEntries().size());
  for (size_t i = 0; i < all.size(); ++i) all[i] = i;
  return all;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, SameBits,
                         testing::Combine(testing::ValuesIn(Indices()), testing::ValuesIn(kLevels)),
                         [](const auto& info) {
                           return EntryName(*AllEntries()[std::get<0>(info.param)]) + "_" +
                                  std::get<1>(info.param).name;
                         });

}  // namespace
