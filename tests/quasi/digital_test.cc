// The quasi-random generators against their definitions: outputs, splits, positions, copies, files,
// users' sets, statuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/quasi/plain.h"
#include "tests/streams/files.h"
#include "tests/support/random.h"
#include "tests/uniform/levels.h"

namespace {

using quasi::Columns;
using quasi::Kind;
using quasi::Owned;
using quasi::Plain;
using quasi::Words;

class Quasi : public testing::TestWithParam<Kind> {
 protected:
  // Around the widths of vectors, and where blocks of points grow shorter.
  std::vector<uint32_t> Dimensions() const {
    std::vector<uint32_t> all;
    for (const uint32_t d : {1,  2,  3,  4,  5,   7,   8,   11,  15,  16,  17,  31,  32,
                             33, 39, 40, 64, 159, 200, 282, 283, 308, 309, 312, 317, 318}) {
      if (d <= GetParam().dimensions) all.push_back(d);
    }
    return all;
  }
};
INSTANTIATE_TEST_SUITE_P(Generators, Quasi, testing::ValuesIn(quasi::kKinds),
                         [](const auto& info) { return std::string(info.param.name); });

template <typename T>
T ResultOf(uint32_t word, T a, T b) {
  if constexpr (std::is_integral_v<T>) {
    return word;
  } else {
    const double scale = (double{b} - double{a}) * 0x1p-32;
    const double product = word * scale;
    return static_cast<T>(product + double{a});
  }
}

// Draws n numbers from a stream to an address that is `shift` bytes off, and holds them against the
// sequence; the bytes around stay as they are.
template <typename T, class Entry>
void ExpectNext(StreamState* stream, Plain& plain, size_t n, size_t shift, T a, T b, Entry entry) {
  std::vector<char> buffer(n * sizeof(T) + 128, 0x5A);
  std::vector<char> want = buffer;
  char* const r = buffer.data() + 64 + shift;
  if constexpr (std::is_integral_v<T>) {
    ASSERT_EQ(entry(stream, static_cast<int32_t>(n), reinterpret_cast<T*>(r)), QUO_OK);
  } else {
    ASSERT_EQ(entry(stream, static_cast<int32_t>(n), reinterpret_cast<T*>(r), a, b), QUO_OK);
  }
  for (size_t i = 0; i < n; ++i) {
    const T x = ResultOf<T>(plain.Next(), a, b);
    std::memcpy(want.data() + 64 + shift + i * sizeof(T), &x, sizeof(T));
  }
  ASSERT_EQ(std::memcmp(buffer.data(), want.data(), buffer.size()), 0) << n << " from " << a;
}

void ExpectNextOfKind(StreamState* stream, Plain& plain, size_t n, int kind, size_t shift) {
  BrngProperties g;
  __quoGetBrngProperties(stream->id, &g);
  switch (kind) {
    case 0:
      return ExpectNext<uint32_t>(stream, plain, n, shift, 0, 1, g.iBRng);
    case 1:
      return ExpectNext<double>(stream, plain, n, shift, 0, 1, g.dBRng);
    case 2:
      return ExpectNext<double>(stream, plain, n, shift, -3, 0.1, g.dBRng);
    case 3:
      return ExpectNext<float>(stream, plain, n, shift, 0, 1, g.sBRng);
    default:
      return ExpectNext<float>(stream, plain, n, shift, 7, -0.3f, g.sBRng);
  }
}

// A copy of the sequence follows every request: whole blocks and a few outputs, any type, anywhere.
TEST_P(Quasi, DeliversItsPointsHoweverRequestsAreSplit) {
  constexpr uint64_t kSeed = 20240611;
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  levels::ForEach([&] {
    Random random(kSeed);
    for (const uint32_t d : Dimensions()) {
      SCOPED_TRACE("dimension " + std::to_string(d));
      const Owned stream(GetParam().id, {d});
      ASSERT_EQ(stream.status, QUO_OK);
      Plain plain(GetParam(), d);
      for (const size_t n : {size_t{5000}, size_t{d}, size_t{3} * d + 1, size_t{1}}) {
        ExpectNextOfKind(stream, plain, n, 0, 4);
      }
      for (int round = 0; round < 60 && !HasFatalFailure(); ++round) {
        const size_t n = 1 + random.Below(1u << random.Below(12));
        ExpectNextOfKind(stream, plain, n, static_cast<int>(random.Below(5)), random.Below(16));
      }
    }
  });
}

TEST_P(Quasi, EveryShortRequest) {
  levels::ForEach([&] {
    for (const uint32_t d : {1u, 3u, 16u, 21u, GetParam().dimensions}) {
      const Owned stream(GetParam().id, {d});
      Plain plain(GetParam(), d);
      for (size_t n = 1; n < 100 && !HasFatalFailure(); ++n) {
        ExpectNextOfKind(stream, plain, n, static_cast<int>(n % 5), n % 7);
      }
    }
  });
}

TEST_P(Quasi, StatesAreTheSameOnEveryLevel) {
  for (const uint32_t d : Dimensions()) {
    std::vector<std::string> states;
    levels::ForEach([&] {
      const Owned stream(GetParam().id, {d});
      stream.Take(7001);
      __quoSkipAheadStream(stream, 1234567890123);
      stream.Take(12345);
      states.push_back(stream.Bytes());
    });
    for (const std::string& state : states) EXPECT_EQ(state, states[0]) << d;
  }
}

TEST_P(Quasi, SkipsFromAnywhereByAnyCount) {
  constexpr uint64_t kSeed = 77;
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  Random random(kSeed);
  for (const uint32_t d : Dimensions()) {
    SCOPED_TRACE("dimension " + std::to_string(d));
    const uint64_t period = uint64_t{d} * 0xFFFFFFFF;
    std::vector<uint64_t> counts = {
        0,          1,      d,          d - 1u,     1000,         1u << 31,
        period - 1, period, period + 1, period / 2, ~uint64_t{0}, uint64_t{1} << 63};
    for (int k = 0; k < 20; ++k) counts.push_back(random.Bits() >> random.Below(64));
    const Owned stream(GetParam().id, {d});
    Plain plain(GetParam(), d);
    for (const uint64_t count : counts) {
      ASSERT_EQ(__quoSkipAheadStream(stream, count), QUO_OK);
      plain.Skip(count);
      const size_t n = 1 + random.Below(300);
      ASSERT_EQ(stream.Take(n), plain.Take(n)) << count;
    }
  }
}

// No output is 0, and point 1 follows point 2^32 - 1.
TEST_P(Quasi, BeginsAgainBehindTheLastPoint) {
  levels::ForEach([&] {
    for (const uint32_t d : Dimensions()) {
      SCOPED_TRACE("dimension " + std::to_string(d));
      const Owned stream(GetParam().id, {d});
      const Words first = stream.Take(3000);
      EXPECT_EQ(std::count(first.begin(), first.end(), 0u), 0);
      ASSERT_EQ(__quoSkipAheadStream(stream, uint64_t{d} * 0xFFFFFFFF - 3000 - 5001), QUO_OK);
      const Words last = stream.Take(5001);
      EXPECT_EQ(std::count(last.begin(), last.end(), 0u), 0);
      EXPECT_EQ(stream.Take(3000), first);
      Plain plain(GetParam(), d);
      plain.Skip(uint64_t{d} * 0xFFFFFFFF - 5001);
      EXPECT_EQ(plain.Take(5001), last);
    }
  });
}

TEST_P(Quasi, LeapfrogDeliversOneCoordinate) {
  for (const uint32_t d : Dimensions()) {
    for (const uint32_t k : {0u, d / 2, d - 1}) {
      for (const uint32_t before : {0u, 1u, d - 1, d, 777 * d + d / 2}) {
        SCOPED_TRACE(testing::Message() << k << " of " << d << " after " << before);
        const Owned stream(GetParam().id, {d});
        stream.Take(before);
        ASSERT_EQ(__quoLeapfrogStream(stream, static_cast<int32_t>(k), static_cast<int32_t>(d)),
                  QUO_OK);
        Plain plain({GetParam().columns(k)});
        plain.Skip(before / d + (before % d > k));
        ASSERT_EQ(stream.Take(3000), plain.Take(3000));
        // Its own outputs are what it skips, and it is a stream of one coordinate.
        ASSERT_EQ(__quoSkipAheadStream(stream, 0xFFFFFFFF0), QUO_OK);
        plain.Skip(0xFFFFFFFF0);
        ASSERT_EQ(__quoLeapfrogStream(stream, 0, 1), QUO_OK);
        ASSERT_EQ(stream.Take(3000), plain.Take(3000));
      }
    }
  }
  // At the last point of all.
  const Owned stream(GetParam().id, {3});
  ASSERT_EQ(__quoSkipAheadStream(stream, uint64_t{3} * 0xFFFFFFFF - 1), QUO_OK);
  ASSERT_EQ(__quoLeapfrogStream(stream, 1, 3), QUO_OK);
  EXPECT_EQ(stream.Take(100), Plain({GetParam().columns(1)}).Take(100));
}

TEST_P(Quasi, RefusalsLeaveTheStreamAsItWas) {
  const Owned stream(GetParam().id, {5});
  stream.Take(3);
  const std::string before = stream.Bytes();
  for (const auto& [k, streams] : {std::pair{0, 1}, {0, 4}, {0, 6}, {5, 5}, {-1, 5}, {0, 0}}) {
    EXPECT_EQ(__quoLeapfrogStream(stream, k, streams), QUO_LEAPFROG_UNSUPPORTED) << k;
  }
  BrngProperties g;
  __quoGetBrngProperties(GetParam().id, &g);
  const uint32_t params[2] = {1, 0};
  for (const int32_t method : {-1, 3, INT32_MAX}) {
    EXPECT_EQ(g.InitStream(method, stream, 2, params), QUO_BAD_METHOD);
  }
  for (const int32_t n : {0, -1, INT32_MIN}) {
    EXPECT_EQ(g.iBRng(stream, n, nullptr), QUO_OK);
    EXPECT_EQ(g.dBRng(stream, n, nullptr, 0, 1), QUO_OK);
    EXPECT_EQ(g.sBRng(stream, n, nullptr, 0, 1), QUO_OK);
  }
  EXPECT_EQ(stream.Bytes(), before);
}

TEST_P(Quasi, DimensionsOutOfRangeAreOne) {
  const Words one = Owned(GetParam().id, {1}).Take(500);
  for (const uint32_t d : {0u, GetParam().dimensions + 1, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(Owned(GetParam().id, {d}).Take(500), one) << d;
  }
  EXPECT_EQ(Owned(GetParam().id, {}).Take(500), one);
}

// ---- Users' sets. ----

struct Set {
  const char* what;
  Words words;  // the dimension first
  std::vector<Columns> columns;
};

Words Joined(Words a, const Words& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Words ColumnsAsWords(const Columns& columns) {
  return Joined({0}, {columns.begin(), columns.end()});
}

// What the table holds, as a user would give it.
Words TableAsWords(uint32_t dimension) {
  Words words = {dimension, 1};
  for (size_t i = 0; i + 1 < dimension; ++i) {
    const quo::SobolCoordinate& c = quo::kSobolTable[i];
    words.push_back(c.polynomial);
    for (int k = 0; k < quasi::Degree(c.polynomial); ++k) words.push_back(c.m[k]);
  }
  return words;
}

std::vector<Columns> TableColumns(uint32_t dimension) {
  std::vector<Columns> columns;
  for (size_t i = 0; i < dimension; ++i) columns.push_back(quasi::SobolColumns(i));
  return columns;
}

std::vector<Set> SoundSets(int32_t id) {
  using quasi::NiederrColumns;
  using quasi::Numerator;
  using quasi::SobolColumns;
  constexpr uint32_t kDegree31 = 0x80000009;  // x^31 + x^3 + 1
  if (id == QUO_BRNG_NIEDERR) {
    constexpr uint32_t kDegree17 = 0x20009;  // x^17 + x^3 + 1
    const auto columns = [](uint32_t p) { return NiederrColumns(p, Numerator(p)); };
    return {{"one", {1, 2}, {columns(2)}},
            {"not primitive, not in order", {3, 31, 7, 3}, {columns(31), columns(7), columns(3)}},
            {"large", {2, kDegree17, 2}, {columns(kDegree17), columns(2)}}};
  }
  Words ones;
  std::vector<uint64_t> m;
  for (uint32_t k = 0; k < 31; ++k) ones.push_back((1u << k) + (k == 0 ? 0 : 1));
  m.assign(ones.begin(), ones.end());
  return {
      {"as built in", TableAsWords(40), TableColumns(40)},
      {"the identity", {1, 1}, {SobolColumns(1, {})}},
      {"other m",
       {2, 7, 1, 1, 11, 1, 3, 7},
       {SobolColumns(7, {1, 1}), SobolColumns(11, {1, 3, 7})}},
      {"columns", Joined({1}, ColumnsAsWords(quasi::SobolColumns(7))), {quasi::SobolColumns(7)}},
      {"columns twice, and a polynomial",
       Joined(Joined(Joined({3}, ColumnsAsWords(quasi::SobolColumns(7))), {3, 1}),
              ColumnsAsWords(quasi::SobolColumns(7))),
       {quasi::SobolColumns(7), SobolColumns(3, {1}), quasi::SobolColumns(7)}},
      {"degree 31", Joined({1, kDegree31}, ones), {SobolColumns(kDegree31, m)}}};
}

std::vector<Set> MalformedSets(int32_t id) {
  if (id == QUO_BRNG_NIEDERR) {
    return {{"too few", {2, 3}, {}},          {"too many", {1, 2, 3}, {}},
            {"reducible", {1, 5}, {}},        {"no polynomial", {2, 2, 0}, {}},
            {"a constant", {1, 1}, {}},       {"twice", {3, 7, 11, 7}, {}},
            {"dimension 0", {0, 2, 3}, {}},   {"dimension 319", {319, 2, 3}, {}},
            {"a square", {1, 0x80000000}, {}}};
  }
  Columns odd = quasi::SobolColumns(3);
  odd[4] |= 1u << 26;  // a bit below its lowest
  Columns low = quasi::SobolColumns(3);
  low[4] ^= 1u << 27;  // without its lowest
  return {{"m even", {1, 7, 1, 2}, {}},
          {"m = 0", {1, 7, 0, 3}, {}},
          {"m_1 = 3", {1, 7, 3, 3}, {}},
          {"m too large", {1, 7, 1, 5}, {}},
          {"irreducible, not primitive", {1, 31, 1, 1, 1, 1}, {}},
          {"reducible", {1, 5, 1, 1}, {}},
          {"x", {1, 2, 1}, {}},
          {"too few m", {1, 7, 1}, {}},
          {"too many m", {1, 7, 1, 1, 1}, {}},
          {"too few coordinates", {2, 7, 1, 1}, {}},
          {"the polynomial alone", {2, 7, 1, 1, 11}, {}},
          {"a polynomial twice", {2, 7, 1, 1, 7, 1, 3}, {}},
          {"the identity twice", {2, 1, 1}, {}},
          {"31 columns", {1, 0, 1u << 31}, {}},
          {"a column with a low bit", Joined({1}, ColumnsAsWords(odd)), {}},
          {"a column without its bit", Joined({1}, ColumnsAsWords(low)), {}},
          {"dimension 0", {0, 1, 3, 1}, {}},
          {"dimension 41", {41, 1, 3, 1}, {}}};
}

TEST_P(Quasi, TakesUsersSets) {
  for (const Set& set : SoundSets(GetParam().id)) {
    SCOPED_TRACE(set.what);
    const Owned stream(GetParam().id, set.words);
    ASSERT_EQ(stream.status, QUO_OK);
    ASSERT_EQ(__quoGetNumChunks(stream), 1);
    const void* const kept = __quoSearchChunk(stream, GetParam().key);
    ASSERT_NE(kept, nullptr);
    ASSERT_EQ(stream.p->chunks->size, 4 * set.words.size());
    EXPECT_EQ(std::memcmp(kept, set.words.data(), 4 * set.words.size()), 0);
    Plain plain(set.columns);
    EXPECT_EQ(stream.Take(5000), plain.Take(5000));
    __quoSkipAheadStream(stream, ~uint64_t{0});
    plain.Skip(~uint64_t{0});
    EXPECT_EQ(stream.Take(500), plain.Take(500));
  }
}

// A stream in use keeps its place, its sequence and its chunks.
TEST_P(Quasi, RefusesMalformedSets) {
  const Owned stream(GetParam().id, SoundSets(GetParam().id)[0].words);
  stream.Take(12);
  const std::string before = stream.Bytes();
  BrngProperties g;
  __quoGetBrngProperties(GetParam().id, &g);
  for (const Set& set : MalformedSets(GetParam().id)) {
    SCOPED_TRACE(set.what);
    EXPECT_EQ(Owned(GetParam().id, set.words).status, QUO_BAD_ARGUMENT);
    EXPECT_EQ(g.InitStream(QUO_INIT_STANDARD, stream, static_cast<int32_t>(set.words.size()),
                           set.words.data()),
              QUO_BAD_ARGUMENT);
    EXPECT_EQ(stream.Bytes(), before);
  }
}

// Every irreducible polynomial has its numerator: all leading squares of the matrix are regular.
TEST(Niederr, EveryLeadingSquareOfAUsersMatrixIsRegular) {
  std::vector<uint32_t> polynomials = {0x80000009, 0x40000053, 0x2000000B, 0x80000003 ^ 0xA};
  for (uint32_t p = 4097; polynomials.size() < 40; p += 2) {
    if (quasi::IsIrreducible(p)) polynomials.push_back(p);
  }
  size_t tried = 0;
  for (const uint32_t p : polynomials) {
    const Owned stream(QUO_BRNG_NIEDERR, {1, p});
    if (stream.status != QUO_OK) continue;  // not irreducible
    ++tried;
    uint64_t at = 0;
    uint32_t rows[32] = {};
    for (int c = 0; c < 32; ++c) {
      const uint64_t place = (uint64_t{1} << c) - 1;  // of point 2^c
      __quoSkipAheadStream(stream, place - at);
      const uint32_t x = stream.Take(1)[0];
      at = place + 1;
      for (int row = 0; row < 32; ++row) rows[row] |= (x >> (31 - row) & 1) << c;
    }
    // Elimination without a change of rows meets a pivot at every step.
    for (int k = 0; k < 32; ++k) {
      ASSERT_EQ(rows[k] >> k & 1, 1u) << p << " " << k;
      for (int row = k + 1; row < 32; ++row) rows[row] ^= rows[row] >> k & 1 ? rows[k] : 0;
    }
  }
  EXPECT_GE(tried, 37u);
}

TEST_P(Quasi, SeedingAgainReplacesTheSet) {
  const std::vector<Set> sets = SoundSets(GetParam().id);
  const Owned stream(GetParam().id, sets[0].words);
  BrngProperties g;
  __quoGetBrngProperties(GetParam().id, &g);
  const auto seed = [&](const Words& words) {
    return g.InitStream(QUO_INIT_STANDARD, stream, static_cast<int32_t>(words.size()),
                        words.data());
  };
  ASSERT_EQ(seed(sets[1].words), QUO_OK);
  EXPECT_EQ(__quoGetNumChunks(stream), 1);
  EXPECT_EQ(stream.Bytes(), Owned(GetParam().id, sets[1].words).Bytes());
  ASSERT_EQ(seed({4}), QUO_OK);
  EXPECT_EQ(__quoGetNumChunks(stream), 0);
  EXPECT_EQ(stream.Bytes(), Owned(GetParam().id, {4}).Bytes());
}

// ---- Copies and files. ----

TEST_P(Quasi, CopiesContinue) {
  std::vector<Words> seeds;
  for (const uint32_t d : Dimensions()) seeds.push_back({d});
  for (const Set& set : SoundSets(GetParam().id)) seeds.push_back(set.words);
  for (const Words& words : seeds) {
    SCOPED_TRACE(testing::PrintToString(words));
    const Owned source(GetParam().id, words);
    source.Take(12345);
    // Into a stream of other contents.
    const Owned copy(GetParam().id, {GetParam().dimensions});
    copy.Take(99);
    ASSERT_EQ(__quoCopyStreamState(copy, source), QUO_OK);
    const files::TemporaryFile file;
    ASSERT_EQ(__quoSaveStreamF(source, file.path(), -1), QUO_OK);
    Owned loaded(GetParam().id, {1});
    __quoDeleteStream(&loaded.p);
    ASSERT_EQ(__quoLoadStreamF(&loaded.p, file.path(), -1), QUO_OK);
    EXPECT_EQ(loaded.Bytes(), source.Bytes());
    __quoSkipAheadStream(source, 50);
    const Words want = source.Take(9000);
    for (const Owned* other : {&copy, static_cast<const Owned*>(&loaded)}) {
      EXPECT_EQ(__quoGetNumChunks(*other), __quoGetNumChunks(source));
      __quoSkipAheadStream(*other, 50);
      EXPECT_EQ(other->Take(9000), want);
    }
  }
}

// A state of any content, as a file may bring, draws without leaving its bounds.
TEST_P(Quasi, AnyStateDraws) {
  constexpr uint64_t kSeed = 5;
  Random random(kSeed);
  levels::ForEach([&] {
    for (int round = 0; round < 300; ++round) {
      const Owned stream(GetParam().id, {1 + random.Below(GetParam().dimensions)});
      auto* const head = reinterpret_cast<uint32_t*>(stream.p + 1);
      for (int k = 0; k < 4; ++k) {
        if (random.Below(2)) head[k] = static_cast<uint32_t>(random.Bits() >> random.Below(64));
      }
      if (random.Below(2)) head[2] = ~random.Below(3);
      for (const size_t n : {size_t{1}, size_t{3000}, size_t{random.Below(3000)}}) {
        stream.Take(n);
        ASSERT_EQ(__quoSkipAheadStream(stream, random.Bits()), QUO_OK);
      }
      __quoLeapfrogStream(stream, 0, 1);
      stream.Take(100);
    }
  });
}

}  // namespace
