// Results and exception flags of every arithmetic entry, element by element: special values, every
// rounding and flush mode, every length and neighbour, every vector level.
#include "tests/arithmetic/reference.h"

#include <gtest/gtest.h>

#include <csetjmp>
#include <csignal>
#include <cstring>

#include "pex_core/abs/abs.h"

namespace pex::test {
namespace {

template <typename T>
class Arithmetic : public testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(Arithmetic, Types);

// Runs an entry on n elements and compares results, flags and the control word that is left.
template <typename T>
testing::AssertionResult Check(const Entry<T>& entry, const Level& level, uint32_t word, int32_t n,
                               const BitsOf<T>* a, const BitsOf<T>* b, BitsOf<T>* r1,
                               BitsOf<T>* r2) {
  const auto as = [](const BitsOf<T>* p) { return reinterpret_cast<const T*>(p); };
  const auto out = [](BitsOf<T>* p) { return reinterpret_cast<T*>(p); };
  const uint32_t left = Under(word, [&] { entry.call(n, as(a), as(b), out(r1), out(r2)); });
  uint32_t flags = 0;
  for (int32_t i = 0; i < n; ++i) {
    const Expected<T> e = entry.expect(a[i], b[i], word);
    flags |= e.flags;
    if (r1[i] != e.r1 || (entry.results == 2 && r2[i] != e.r2)) {
      return testing::AssertionFailure()
             << entry.name << " on " << level.name << ", control word " << std::hex << word
             << ", element " << std::dec << i << " of " << n << std::hex << ": arguments " << a[i]
             << ' ' << b[i] << ", results " << r1[i] << ' ' << r2[i] << ", expected " << e.r1 << ' '
             << e.r2;
    }
  }
  if (left != (word | flags)) {
    return testing::AssertionFailure()
           << entry.name << " on " << level.name << ": control word " << std::hex << word
           << " became " << left << ", expected flags " << flags << "; first arguments " << a[0]
           << ' ' << b[0] << ", count " << std::dec << n;
  }
  return testing::AssertionSuccess();
}

TYPED_TEST(Arithmetic, SpecialValuesOneByOne) {
  using Bits = BitsOf<TypeParam>;
  const std::vector<Bits> values = SpecialBits<TypeParam>();
  for (const Entry<TypeParam>& entry : Entries<TypeParam>()) {
    for (const Level& level : Levels()) {
      const OnLevel on(level);
      for (const uint32_t word : ControlWords()) {
        for (const Bits x : values) {
          for (const Bits y : values) {
            Bits r1 = 0, r2 = 0;
            ASSERT_TRUE(Check(entry, level, word, 1, &x, &y, &r1, &r2));
            if (entry.arguments == 1) break;
          }
        }
      }
    }
  }
}

// Elements around the array are signalling NaNs: no flag and no bit of theirs may show. Integers of
// few bits raise nothing in any entry, so that a flag can only come from elsewhere.
TYPED_TEST(Arithmetic, NeighboursDoNotShow) {
  using T = TypeParam;
  using Bits = BitsOf<T>;
  const std::vector<Bits> values = SpecialBits<T>();
  const Bits poison = Format<T>::kInfinity | 1;
  for (const Entry<T>& entry : Entries<T>()) {
    for (const Level& level : Levels()) {
      const OnLevel on(level);
      for (int32_t n = 1; n <= 70; ++n) {
        for (int offset = 0; offset < 16; offset += n % 2 ? 1 : 5) {
          std::vector<Bits> a(n + 32, poison), b = a, r1(n + 32, 0xABCD), r2 = r1;
          for (const bool special : {false, true}) {
            for (int32_t i = 0; i < n; ++i) {
              a[offset + i] = special ? values[(i * 7 + n) % values.size()]
                                      : std::bit_cast<Bits>(static_cast<T>(i % 9 + 1));
              b[offset + i] = special ? values[(i * 11 + offset) % values.size()]
                                      : std::bit_cast<Bits>(static_cast<T>(i % 5 + 2));
            }
            const uint32_t word = ControlWords()[(n + offset) % 16];
            const int r_offset = (offset * 3 + n) % 16;
            ASSERT_TRUE(
                Check(entry, level, word, n, &a[offset], &b[offset], &r1[r_offset], &r2[r_offset]));
            for (int i = 0; i < n + 32; ++i) {
              if (i >= r_offset && i < r_offset + n) continue;
              ASSERT_EQ(r1[i], 0xABCDu) << entry.name << ' ' << level.name << ' ' << n;
              ASSERT_EQ(r2[i], 0xABCDu) << entry.name << ' ' << level.name << ' ' << n;
            }
          }
        }
      }
    }
  }
}

TYPED_TEST(Arithmetic, RandomBits) {
  using Bits = BitsOf<TypeParam>;
  const uint64_t seed = Seed();
  SCOPED_TRACE("PEXQUO_TEST_SEED=" + std::to_string(seed));
  std::mt19937_64 random(seed);
  const int32_t n = 20000;
  std::vector<Bits> a(n), b(n), r1(n), r2(n);
  for (int32_t i = 0; i < n; ++i) {
    a[i] = static_cast<Bits>(random());
    b[i] = static_cast<Bits>(random());
    if (i % 2) {  // half of them between 2^-10 and 2^60, where rounding does something
      constexpr int kBits = Format<TypeParam>::kFractionBits;
      const Bits exponent = std::bit_cast<Bits>(TypeParam(1)) + ((random() % 70 - 10) << kBits);
      a[i] = (a[i] & ~Format<TypeParam>::kInfinity) | (exponent & Format<TypeParam>::kInfinity);
    }
  }
  for (const Entry<TypeParam>& entry : Entries<TypeParam>()) {
    for (const Level& level : Levels()) {
      const OnLevel on(level);
      const uint32_t word = ControlWords()[random() % 16];
      ASSERT_TRUE(Check(entry, level, word, n, a.data(), b.data(), r1.data(), r2.data()));
    }
  }
}

// Unmasked exceptions stay unmasked, and flags that stood before the call stay.
TYPED_TEST(Arithmetic, ControlWordComesBack) {
  using Bits = BitsOf<TypeParam>;
  const Bits x[3] = {std::bit_cast<Bits>(TypeParam(3)), 0, std::bit_cast<Bits>(TypeParam(-7))};
  for (const Entry<TypeParam>& entry : Entries<TypeParam>()) {
    for (const Level& level : Levels()) {
      const OnLevel on(level);
      for (uint32_t word : ControlWords()) {
        word =
            (word & ~0x680u) | 4u;  // invalid, overflow and zero-divide would trap; the last stands
        Bits r1[3], r2[3];
        ASSERT_TRUE(Check(entry, level, word & ~kFlags, 3, x, x, r1, r2));
      }
      Bits r1[3], r2[3];
      ASSERT_TRUE(Check(entry, level, kMasks | kRoundUp | 4u, 3, x, x, r1, r2));
    }
  }
}

sigjmp_buf trapped;

// Whether one signalling NaN under a rounding mode ends in a signal when invalid is unmasked.
template <typename T>
[[gnu::noinline]] bool Traps(const Entry<T>& entry, uint32_t rounding) {
  const BitsOf<T> signalling = Format<T>::kInfinity | 1;
  const auto* const x = reinterpret_cast<const T*>(&signalling);
  T r[2];
  if (sigsetjmp(trapped, 1) != 0) return true;
  _mm_setcsr((kMasks & ~0x80u) | rounding);
  entry.call(1, x, x, r, r + 1);
  return false;
}

// An exception that the caller unmasked traps, in whatever rounding mode the entry works.
TYPED_TEST(Arithmetic, UnmaskedInvalidTraps) {
  struct sigaction action = {}, before;
  action.sa_handler = [](int) { siglongjmp(trapped, 1); };
  ASSERT_EQ(sigaction(SIGFPE, &action, &before), 0);
  const uint32_t saved = _mm_getcsr();
  for (const Entry<TypeParam>& entry : Entries<TypeParam>()) {
    for (const uint32_t rounding : {0u, uint32_t{kRoundUp}}) {
      const bool traps = Traps(entry, rounding);
      _mm_setcsr(saved);
      EXPECT_TRUE(traps) << entry.name;
    }
  }
  sigaction(SIGFPE, &before, nullptr);
}

TYPED_TEST(Arithmetic, CountOfNoneTouchesNothing) {
  for (const Entry<TypeParam>& entry : Entries<TypeParam>()) {
    for (const Level& level : Levels()) {
      const OnLevel on(level);
      for (const int32_t n : {0, -1, std::numeric_limits<int32_t>::min()}) {
        entry.call(n, nullptr, nullptr, nullptr, nullptr);
      }
    }
  }
}

TEST(AbsScalar, ClearsTheSignAndNothingElse) {
  for (const uint64_t x : SpecialBits<double>()) {
    double r = 0;
    const uint32_t left =
        Under(kMasks | kDenormalsAreZero, [&] { r = _pex_dabs_scalar(std::bit_cast<double>(x)); });
    EXPECT_EQ(std::bit_cast<uint64_t>(r), x & 0x7FFFFFFFFFFFFFFF);
    EXPECT_EQ(left & kFlags, 0u);
  }
  for (const uint32_t x : SpecialBits<float>()) {
    float r = 0;
    const uint32_t left =
        Under(kMasks | kDenormalsAreZero, [&] { r = _pex_sabs_scalar(std::bit_cast<float>(x)); });
    EXPECT_EQ(std::bit_cast<uint32_t>(r), x & 0x7FFFFFFF);
    EXPECT_EQ(left & kFlags, 0u);
  }
}

// A few results in plain numbers, beside the reference.
TEST(Examples, Rounding) {
  const double x[] = {0.5, -0.5, 1.5, 2.5, -2.5, 3.5, 0.49999999999999994};
  const double expected[] = {1, -1, 2, 3, -3, 4, 0};
  double r[7];
  _pexdRound(7, x, r);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(r[i], expected[i]) << x[i];
  const double y[] = {0x1p53 + 2, -3, -0.5, -std::numeric_limits<double>::infinity()};
  const double whole[] = {0x1p53 + 2, -3, -0.0, -std::numeric_limits<double>::infinity()};
  const double fraction[] = {0, -0.0, -0.5, -0.0};
  double r1[4], r2[4];
  _pexdModf(4, y, r1, r2);
  EXPECT_EQ(std::memcmp(r1, whole, sizeof(whole)), 0);
  EXPECT_EQ(std::memcmp(r2, fraction, sizeof(fraction)), 0);
}

}  // namespace
}  // namespace pex::test
