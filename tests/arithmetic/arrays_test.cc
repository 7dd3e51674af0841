// Where the arrays of an arithmetic entry lie: results over arguments, ranges that overlap in part,
// ends of readable memory, counts near the largest.
#include <gtest/gtest.h>

#include "tests/arithmetic/reference.h"

namespace pex::test {
namespace {

template <typename T>
class Arrays : public testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(Arrays, Types);

// Arguments and results as offsets into one array: an ascending loop over elements must give the
// same array.
template <typename T>
struct Layout {
  int a, b, r1, r2;
};

template <typename T>
testing::AssertionResult SameAsLoop(const Entry<T>& entry, const Level& level, int32_t n,
                                    const Layout<T>& at) {
  using Bits = BitsOf<T>;
  const int size = n + HWY_MAX(HWY_MAX(at.a, at.b), HWY_MAX(at.r1, at.r2));
  std::vector<Bits> got(size), want(size);
  for (int i = 0; i < size; ++i) {
    got[i] = want[i] = std::bit_cast<Bits>(static_cast<T>(((i * 37) % 101 - 50) / T(8)));
  }
  for (int32_t i = 0; i < n; ++i) {
    const Expected<T> e = entry.expect(want[at.a + i], want[at.b + i], kMasks);
    want[at.r1 + i] = e.r1;
    if (entry.results == 2) want[at.r2 + i] = e.r2;
  }
  T* const p = reinterpret_cast<T*>(got.data());
  entry.call(n, p + at.a, p + at.b, p + at.r1, p + at.r2);
  for (int i = 0; i < size; ++i) {
    if (got[i] != want[i]) {
      return testing::AssertionFailure()
             << entry.name << " on " << level.name << ", n " << n << ", offsets " << at.a << ' '
             << at.b << ' ' << at.r1 << ' ' << at.r2 << ": place " << i << " is " << std::hex
             << got[i] << ", expected " << want[i];
    }
  }
  return testing::AssertionSuccess();
}

TYPED_TEST(Arrays, ResultsOverArguments) {
  std::vector<int> offsets;
  for (int k = -9; k <= 9; ++k) offsets.push_back(k);
  for (const int k : {15, 16, 17, 31, 32, 33, 63, 64, 65}) {
    offsets.push_back(k);
    offsets.push_back(-k);
  }
  constexpr int kBase = 70;
  for (const Entry<TypeParam>& entry : Entries<TypeParam>()) {
    for (const Level& level : Levels()) {
      const OnLevel on(level);
      for (const int32_t n : {1, 2, 7, 40, 150, 600}) {
        for (const int k1 : offsets) {
          if (entry.arguments == 1 && entry.results == 1) {
            ASSERT_TRUE(SameAsLoop(entry, level, n, {kBase, kBase, kBase + k1, 0}));
            continue;
          }
          if (n == 600 && k1 % 3 != 0) continue;  // the pairs are many
          for (const int k2 : offsets) {
            const Layout<TypeParam> at =
                entry.arguments == 2 ? Layout<TypeParam>{kBase + k1, kBase + k2, kBase, 0}
                                     : Layout<TypeParam>{kBase, kBase, kBase + k1, kBase + k2};
            ASSERT_TRUE(SameAsLoop(entry, level, n, at));
          }
        }
      }
    }
  }
}

// Arrays that begin or end at unreadable pages, each against the other.
TYPED_TEST(Arrays, NothingOutsideIsTouched) {
  using T = TypeParam;
  const GuardedPages pages[4] = {GuardedPages(4096), GuardedPages(4096), GuardedPages(4096),
                                 GuardedPages(4096)};
  for (const Entry<T>& entry : Entries<T>()) {
    for (const Level& level : Levels()) {
      const OnLevel on(level);
      for (int32_t n = 1; n <= 300; n += n < 140 ? 1 : 23) {
        for (int ends = 0; ends < 4; ++ends) {
          T* p[4];
          for (int k = 0; k < 4; ++k) {
            const bool at_end = ends >> (k / 2) & 1;
            p[k] = at_end ? pages[k].template AtEnd<T>(n) : pages[k].template AtBegin<T>();
            for (int32_t i = 0; i < n; ++i) p[k][i] = static_cast<T>(i) / 4;
          }
          entry.call(n, p[0], p[1], p[2], p[3]);
          const auto last = std::bit_cast<BitsOf<T>>(static_cast<T>(n - 1) / 4);
          EXPECT_EQ(std::bit_cast<BitsOf<T>>(p[2][n - 1]), entry.expect(last, last, kMasks).r1);
        }
      }
    }
  }
}

// 2^31 - 1 floats in place, 8 GB of addresses over the same 2 MB: an offset that wraps leaves them.
TEST(LargestCount, OffsetsDoNotWrap) {
  constexpr size_t kPiece = size_t{1} << 21, kPieces = 4096;
  const int file = memfd_create("pexquo", 0);
  ASSERT_GE(file, 0);
  ASSERT_EQ(ftruncate(file, kPiece), 0);
  char* const base = static_cast<char*>(mmap(nullptr, kPiece * kPieces, PROT_NONE,
                                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
  ASSERT_NE(base, MAP_FAILED);
  for (size_t k = 0; k < kPieces; ++k) {
    ASSERT_NE(
        mmap(base + k * kPiece, kPiece, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0),
        MAP_FAILED);
  }
  float* const p = reinterpret_cast<float*>(base);
  p[5] = p[kPiece / sizeof(float) - 1] = -2.5f;
  EXPECT_EQ(_pexsAbs(std::numeric_limits<int32_t>::max(), p, p), 0);
  EXPECT_EQ(p[5], 2.5f);
  EXPECT_EQ(p[kPiece / sizeof(float) - 1], 2.5f);
  munmap(base, kPiece * kPieces);
  close(file);
}

}  // namespace
}  // namespace pex::test
