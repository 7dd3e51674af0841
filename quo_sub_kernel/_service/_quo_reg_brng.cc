// The registry of basic generators: its two tables, and the registration of users' generators.
#include "pexquo/quo.h"

namespace {

#define QUO_SLOTS(G) __quoBRng##G##InitStream, __quosBRng##G, __quodBRng##G, __quoiBRng##G

// ---- The built-in generators. ----
//                               StateSize SeedCount ZeroPossible WordBytes BitCount
constexpr BrngProperties kMCG31M1 = {24, 1, 0, 4, 31, QUO_SLOTS(MCG31M1)};

constexpr BrngProperties kR250 = {1024, 252, 1, 4, 32, QUO_SLOTS(R250)};
constexpr BrngProperties kMRG32K3A = {40, 6, 1, 4, 32, QUO_SLOTS(MRG32K3A)};

constexpr BrngProperties kMCG59 = {32, 1, 0, 8, 59, QUO_SLOTS(MCG59)};
constexpr BrngProperties kWH = {48, 4, 1, 16, 24, QUO_SLOTS(WH)};
constexpr BrngProperties kSobol = {10592, 2604, 0, 4, 32, QUO_SLOTS(Sobol)};
constexpr BrngProperties kNiederr = {43280, 10498, 0, 4, 32, QUO_SLOTS(Niederr)};

constexpr BrngProperties kMT19937 = {2520, 625, 1, 4, 32, QUO_SLOTS(MT19937)};
constexpr BrngProperties kMT2203 = {312, 70, 1, 4, 32, QUO_SLOTS(MT2203)};

constexpr BrngProperties kIAbstract = {48, 0, 1, 4, 32, QUO_SLOTS(iAbstract)};
constexpr BrngProperties kDAbstract = {64, 0, 1, 4, 32, QUO_SLOTS(dAbstract)};
constexpr BrngProperties kSAbstract = {56, 0, 1, 4, 32, QUO_SLOTS(sAbstract)};

}  // namespace

#define QUO_ROWS_4(row) row, row, row, row
#define QUO_ROWS_16(row) QUO_ROWS_4(row), QUO_ROWS_4(row), QUO_ROWS_4(row), QUO_ROWS_4(row)
#define QUO_ROWS_64(row) QUO_ROWS_16(row), QUO_ROWS_16(row), QUO_ROWS_16(row), QUO_ROWS_16(row)
#define QUO_ROWS_256(row) QUO_ROWS_64(row), QUO_ROWS_64(row), QUO_ROWS_64(row), QUO_ROWS_64(row)
#define QUO_ROWS_273(row) QUO_ROWS_256(row), QUO_ROWS_16(row), row

// Initialised data: whoever runs before the library's own initialisation finds them complete.
constinit BrngProperties __RegBrngsNew[QUO_REGISTRY_ROWS] = {
    kMCG31M1, kR250,    kMRG32K3A, kMCG59,     kWH,        kSobol,
    kNiederr, kMT19937, kMT2203,   kIAbstract, kDAbstract, kSAbstract,
};
constinit int32_t NumOffsets[QUO_REGISTRY_ROWS] = {1, 1, 1, 1, 273, 1, 1, 1, 1024, 1, 1, 1};
constinit int32_t NRegBrngsNew = 12;

constinit BrngProperties __RegBrngs[QUO_REGISTRY_ROWS] = {
    kMCG31M1, kR250, kMRG32K3A, kMCG59, QUO_ROWS_273(kWH), kSobol, kNiederr,
};

int32_t __quoRegisterBrng(const BrngProperties* record) {
  if (record->StateSize < 0) return QUO_BAD_STATE_SIZE;
  if (record->WordBytes != 4 && record->WordBytes != 8 && record->WordBytes != 16) {
    return QUO_BAD_WORD_SIZE;
  }
  if (record->SeedCount <= 0) return QUO_BAD_SEED_COUNT;
  if (record->BitCount <= 0) return QUO_BAD_BIT_COUNT;
  if (record->dBRng == nullptr || record->sBRng == nullptr || record->iBRng == nullptr ||
      record->InitStream == nullptr) {
    return QUO_NULL_FUNCTION;
  }
  const int32_t row = NRegBrngsNew;
  if (row < 0 || row >= QUO_REGISTRY_ROWS) return QUO_INVALID_BRNG;
  __RegBrngsNew[row] = *record;
  NumOffsets[row] = 1;
  NRegBrngsNew = row + 1;
  return (row << 20) + 0x100000;
}
