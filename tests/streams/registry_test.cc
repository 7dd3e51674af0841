// The registry: every row, both numbering schemes, validity, registration up to a full table.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "pexquo/quo.h"
#include "tests/streams/scripted_generator.h"

namespace {

struct Row {
  const char* name;
  int32_t state_size, seed_count, zero_possible, word_bytes, bit_count, members;
};

constexpr Row kRows[] = {
    {"MCG31M1", 24, 1, 0, 4, 31, 1},        {"R250", 1024, 252, 1, 4, 32, 1},
    {"MRG32K3A", 40, 6, 1, 4, 32, 1},       {"MCG59", 32, 1, 0, 8, 59, 1},
    {"WH", 48, 4, 1, 16, 24, 273},          {"Sobol", 10592, 2604, 0, 4, 32, 1},
    {"Niederr", 43280, 10498, 0, 4, 32, 1}, {"MT19937", 2520, 625, 1, 4, 32, 1},
    {"MT2203", 312, 70, 1, 4, 32, 1024},    {"iAbstract", 48, 0, 1, 4, 32, 1},
    {"dAbstract", 64, 0, 1, 4, 32, 1},      {"sAbstract", 56, 0, 1, 4, 32, 1},
};
constexpr int32_t kBuiltIn = 12;

void ExpectRow(const BrngProperties& got, const Row& want) {
  SCOPED_TRACE(want.name);
  EXPECT_EQ(got.StateSize, want.state_size);
  EXPECT_EQ(got.SeedCount, want.seed_count);
  EXPECT_EQ(got.ZeroPossible, want.zero_possible);
  EXPECT_EQ(got.WordBytes, want.word_bytes);
  EXPECT_EQ(got.BitCount, want.bit_count);
  EXPECT_TRUE(got.InitStream && got.sBRng && got.dBRng && got.iBRng);
}

bool SameRecord(const BrngProperties& x, const BrngProperties& y) {
  return std::memcmp(&x, &y, sizeof x) == 0;
}

TEST(Registry, HoldsEveryBuiltInRow) {
  ASSERT_GE(__quoGetNumRegBrngs(), kBuiltIn);
  for (int32_t i = 0; i < kBuiltIn; ++i) {
    ExpectRow(__RegBrngsNew[i], kRows[i]);
    EXPECT_EQ(NumOffsets[i], kRows[i].members) << kRows[i].name;
  }
  for (int32_t i = NRegBrngsNew; i < QUO_REGISTRY_ROWS; ++i) {
    EXPECT_TRUE(SameRecord(__RegBrngsNew[i], BrngProperties{})) << i;
    EXPECT_EQ(NumOffsets[i], 0) << i;
  }
#define EXPECT_SLOTS(row, G)                                          \
  EXPECT_EQ(__RegBrngsNew[row].InitStream, __quoBRng##G##InitStream); \
  EXPECT_EQ(__RegBrngsNew[row].sBRng, __quosBRng##G);                 \
  EXPECT_EQ(__RegBrngsNew[row].dBRng, __quodBRng##G);                 \
  EXPECT_EQ(__RegBrngsNew[row].iBRng, __quoiBRng##G)
  EXPECT_SLOTS(0, MCG31M1);
  EXPECT_SLOTS(3, MCG59);
  EXPECT_SLOTS(4, WH);
  EXPECT_SLOTS(9, iAbstract);
  EXPECT_SLOTS(10, dAbstract);
  EXPECT_SLOTS(11, sAbstract);
}

TEST(Registry, HoldsEveryLegacyRow) {
  for (int32_t i = 0; i < QUO_REGISTRY_ROWS; ++i) {
    const int32_t same_as = i < 4 ? i : i < 277 ? 4 : i < 279 ? i - 272 : -1;
    const BrngProperties want = same_as < 0 ? BrngProperties{} : __RegBrngsNew[same_as];
    EXPECT_TRUE(SameRecord(__RegBrngs[i], want)) << i;
  }
}

TEST(Registry, FindsRowsOfBothSchemes) {
  constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
  constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();
  struct Case {
    int32_t id;
    const BrngProperties* table;
    int32_t row, member;
    bool valid;
  };
  const Case cases[] = {
      {0, __RegBrngs, 0, 0, true},
      {3, __RegBrngs, 3, 0, true},
      {4, __RegBrngs, 4, 0, true},
      {276, __RegBrngs, 4, 272, true},
      {277, __RegBrngs, 277, 0, true},
      {278, __RegBrngs, 278, 0, true},
      {279, __RegBrngs, 279, 0, false},
      {0xFFFFF, __RegBrngs, 0xFFFFF, 0, false},
      {-1, __RegBrngs, -1, 0, false},
      {kLowest, __RegBrngs, kLowest, 0, false},
      {0x100000, __RegBrngsNew, 0, 0, true},
      {0x100001, __RegBrngsNew, 0, 1, false},
      {0x500000 + 272, __RegBrngsNew, 4, 272, true},
      {0x500000 + 273, __RegBrngsNew, 4, 273, false},
      {0x900000 + 1023, __RegBrngsNew, 8, 1023, true},
      {0x900000 + 1024, __RegBrngsNew, 8, 1024, false},
      {0xC00000, __RegBrngsNew, 11, 0, true},
      {QUO_REGISTRY_ROWS << 20, __RegBrngsNew, 511, 0, false},
      {(QUO_REGISTRY_ROWS + 1) << 20, __RegBrngsNew, 512, 0, false},
      {kHighest, __RegBrngsNew, 0x7FE, 0xFFFFF, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.id);
    int32_t row = 77, member = 77;
    const BrngProperties* table = __quoGetBrngBaseOffset(c.id, &row, &member);
    EXPECT_EQ(table, c.table);
    EXPECT_EQ(row, c.row);
    EXPECT_EQ(member, c.member);
    const int32_t status = c.valid ? QUO_OK : QUO_INVALID_BRNG;
    // The rule looks at upper bounds alone; what would read the row refuses a negative one.
    EXPECT_EQ(__quoIsBrngValid(table, row, member), row < 0 ? QUO_OK : status);
    StreamState* stream = nullptr;
    EXPECT_EQ(__quoAllocateStream(&stream, table, c.id, row, member), status);
    __quoDeleteStream(&stream);
    BrngProperties record{};
    EXPECT_EQ(__quoGetBrngProperties(c.id, &record), status);
    EXPECT_TRUE(SameRecord(record, c.valid ? c.table[c.row] : BrngProperties{}));
  }
  EXPECT_EQ(__quoIsBrngValid(__RegBrngsNew, -1, 0), QUO_INVALID_BRNG);
  EXPECT_EQ(__quoIsBrngValid(__RegBrngsNew, 0, -1), QUO_OK);
  EXPECT_EQ(__quoIsBrngValid(__RegBrngs, 278, 12345), QUO_OK);
  EXPECT_EQ(__quoIsBrngValid(__RegBrngsNew + 1, 0, 0), QUO_INVALID_BRNG);
}

// The first check that fails decides, so each case breaks everything that is looked at later too.
TEST(Registry, ChecksARecordInOrder) {
  const BrngProperties good = scripted::kRecord;
  BrngProperties bad = good;
  const int32_t rows = __quoGetNumRegBrngs();
  const auto expect = [&](int32_t status, const char* what) {
    EXPECT_EQ(__quoRegisterBrng(&bad), status) << what;
  };
  bad.InitStream = nullptr;
  expect(QUO_NULL_FUNCTION, "no InitStream");
  bad = good, bad.iBRng = nullptr;
  expect(QUO_NULL_FUNCTION, "no iBRng");
  bad = good, bad.sBRng = nullptr;
  expect(QUO_NULL_FUNCTION, "no sBRng");
  bad.dBRng = nullptr;
  expect(QUO_NULL_FUNCTION, "no dBRng");
  bad.BitCount = 0;
  expect(QUO_BAD_BIT_COUNT, "bit count 0");
  bad.BitCount = -5;
  expect(QUO_BAD_BIT_COUNT, "bit count negative");
  bad.SeedCount = 0;
  expect(QUO_BAD_SEED_COUNT, "seed count 0");
  bad.SeedCount = -1;
  expect(QUO_BAD_SEED_COUNT, "seed count negative");
  for (const int32_t bytes : {12, 0, -4, 32, 5}) {
    bad.WordBytes = bytes;
    expect(QUO_BAD_WORD_SIZE, "word size");
  }
  bad.StateSize = -1;
  expect(QUO_BAD_STATE_SIZE, "state size");
  EXPECT_EQ(__quoGetNumRegBrngs(), rows);
}

// The number of rows is the caller's to write.
TEST(Registry, TakesNoGeneratorOutsideTheTable) {
  const int32_t rows = NRegBrngsNew;
  BrngProperties record = {};
  ASSERT_EQ(__quoGetBrngProperties(0x100000, &record), QUO_OK);
  for (const int32_t row : {-1, INT32_MIN, QUO_REGISTRY_ROWS, INT32_MAX}) {
    NRegBrngsNew = row;
    EXPECT_EQ(__quoRegisterBrng(&record), QUO_INVALID_BRNG) << row;
    EXPECT_EQ(NRegBrngsNew, row);
  }
  NRegBrngsNew = rows;
}

TEST(Registry, TakesGeneratorsUntilTheTableIsFull) {
  const int32_t before = __quoGetNumRegBrngs();
  BrngProperties record = scripted::kRecord;
  record.ZeroPossible = 42;  // taken as it is
  for (int32_t row = before; row < QUO_REGISTRY_ROWS; ++row) {
    record.StateSize = row;
    record.WordBytes = 4 << row % 3;
    const int32_t id = __quoRegisterBrng(&record);
    ASSERT_EQ(id, (row + 1) << 20);
    BrngProperties read{};
    EXPECT_EQ(__quoGetBrngProperties(id, &read), QUO_OK);
    EXPECT_TRUE(SameRecord(read, record));
    EXPECT_EQ(__quoGetBrngProperties(id + 1, &read), QUO_INVALID_BRNG) << "has one member";
  }
  EXPECT_EQ(__quoGetNumRegBrngs(), QUO_REGISTRY_ROWS);
  EXPECT_EQ(__quoRegisterBrng(&record), QUO_INVALID_BRNG);
  record.WordBytes = 12;
  EXPECT_EQ(__quoRegisterBrng(&record), QUO_BAD_WORD_SIZE) << "the record is looked at first";
  EXPECT_EQ(__quoGetNumRegBrngs(), QUO_REGISTRY_ROWS);
  EXPECT_EQ(__RegBrngsNew[QUO_REGISTRY_ROWS - 1].StateSize, QUO_REGISTRY_ROWS - 1);

  // The counts are writable: one beyond the table opens nothing.
  NRegBrngsNew = 4000;
  BrngProperties read{};
  EXPECT_EQ(__quoGetBrngProperties(513 << 20, &read), QUO_INVALID_BRNG);
  EXPECT_EQ(__quoRegisterBrng(&scripted::kRecord), QUO_INVALID_BRNG);

  for (int32_t row = before; row < QUO_REGISTRY_ROWS; ++row) {
    __RegBrngsNew[row] = {};
    NumOffsets[row] = 0;
  }
  NRegBrngsNew = before;
}

}  // namespace
