// Identifiers of basic generators: their registry rows, their validity, their properties.
//
// New scheme, from 0x100000 on: row + 1 in the bits from 20 up, the member of the family below.
// Legacy scheme: 4 to 276 are the members of WH, anything else is a row of the legacy table.
#include "quo_sub_kernel/_service/_quo_brng.h"

#include <algorithm>

namespace {

constexpr int32_t kFirstNewId = 0x100000;
constexpr int32_t kMemberMask = 0xFFFFF;
constexpr int32_t kLegacyRows = 279;
constexpr int32_t kLegacyFirstWH = 4, kLegacyLastWH = 276, kLegacyWHRow = 4;

// The bodies of the two entries below, so that a lookup of the library's own is one call.
BrngProperties* Locate(int32_t id, int32_t* row, int32_t* member) {
  if (id >= kFirstNewId) {
    *row = (id >> 20) - 1;
    *member = id & kMemberMask;
    return __RegBrngsNew;
  }
  if (id >= kLegacyFirstWH && id <= kLegacyLastWH) {
    *row = kLegacyWHRow;
    *member = id - kLegacyFirstWH;
  } else {
    *row = id;
    *member = 0;
  }
  return __RegBrngs;
}

// Upper bounds, signed: a negative identifier is its own legacy row and passes, and it is for those
// who read the row to refuse it. Rows whose members are counted lie within the table of counts,
// whatever the caller has written there.
bool IsValid(const BrngProperties* table, int32_t row, int32_t member) {
  if (table == __RegBrngs) return row < kLegacyRows;
  return table == __RegBrngsNew && row >= 0 && row < std::min(NRegBrngsNew, QUO_REGISTRY_ROWS) &&
         member < NumOffsets[row];
}

}  // namespace

BrngProperties* __quoGetBrngBaseOffset(int32_t id, int32_t* row, int32_t* member) {
  return Locate(id, row, member);
}

int32_t __quoIsBrngValid(const BrngProperties* table, int32_t row, int32_t member) {
  return IsValid(table, row, member) ? QUO_OK : QUO_INVALID_BRNG;
}

const BrngProperties* quo::FindBrng(int32_t id) {
  int32_t row, member;
  const BrngProperties* table = Locate(id, &row, &member);
  return row >= 0 && IsValid(table, row, member) ? table + row : nullptr;
}

int32_t __quoGetBrngProperties(int32_t id, BrngProperties* record) {
  const BrngProperties* brng = quo::FindBrng(id);
  if (brng == nullptr) return QUO_INVALID_BRNG;
  *record = *brng;
  return QUO_OK;
}

int32_t __quoGetNumRegBrngs(void) { return NRegBrngsNew; }
