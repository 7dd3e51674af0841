// Generators under any floating-point control word: the same bits, the word handed back, and no
// exception flag left behind but inexact.
#include <gtest/gtest.h>
#include <immintrin.h>

#include <cfloat>
#include <cmath>
#include <limits>

#include "tests/generators/reference.h"

namespace quo::test {
namespace {

constexpr uint32_t kInexact = 0x20;
constexpr uint32_t kFlags = 0x3F;

struct Bounds {
  double a, b;
};

const Bounds kBounds[] = {
    {0, 1},
    {-0.0, 1},
    {-1, 1},
    {0, 2},
    {-0.1, 0.3},
    {0.3, -0.1},
    {7, 7},
    {-0x1p30, 0x1p30},
    {0, 0x1p-30},
    {0x1p-30, 0x1.00002p-30},
    {0, 0x1p-31},
    {0, 0x1p31},
    {0, 0x1p-1074},       // scale 0
    {0, 0x1p-1000},       // scale subnormal
    {0x1p-1070, 1},       // subnormal bound
    {0, 1e-40},           // single results subnormal
    {0, 0x1p-960},        // extreme scale, normal
    {-DBL_MAX, DBL_MAX},  // b - a overflows
    {0, 1e39},            // single results overflow
    {0, std::numeric_limits<double>::infinity()},
    {std::numeric_limits<double>::signaling_NaN(), 1},
};

// Outputs of each type, in the pieces given.
template <class Source>
std::string AllOutputs(const Source& start, std::initializer_list<int> pieces, Bounds bounds) {
  const float a = static_cast<float>(bounds.a), b = static_cast<float>(bounds.b);
  Source source = start;
  std::string bits;
  for (int n : pieces) bits += Bits(source.Words(n));
  for (int n : pieces) bits += Bits(source.Doubles(n, bounds.a, bounds.b));
  for (int n : pieces) bits += Bits(source.Floats(n, a, b));
  return bits + source.State();
}

// By the definition where it stands in this form, else under the usual control word.
std::string ExpectedOutputs(const Generator& g, Bounds bounds) {
  if (g.start.empty()) return AllOutputs(Stream(g, AnySeed(g)), {37, 260, 3}, bounds);
  return AllOutputs(Reference(g, {12345, 678}), {300}, bounds);
}

TEST(Control, SameBitsUnderAnyControlWord) {
  for (const Generator& g : AllGenerators()) {
    SCOPED_TRACE(g.name);
    for (const Bounds& bounds : kBounds) {
      if (std::isnan(bounds.a)) continue;
      const std::string expected = ExpectedOutputs(g, bounds);
      OnEveryLevel([&] {
        // Rounding modes, then flush to zero and denormals are zero, then no exception masked.
        for (uint32_t word : {0x1F80u, 0x3F80u, 0x5F80u, 0x7F80u, 0x9FC0u, 0xFFC0u}) {
          Stream stream(g, AnySeed(g));
          _mm_setcsr(word);
          uint16_t x87 = 0;
          __asm__ volatile("fnstcw %0" : "=m"(x87));
          const uint16_t coarse = (x87 & ~0xF00) | 0xC00;  // 24 bits, toward zero
          __asm__ volatile("fldcw %0" : : "m"(coarse));
          const std::string got = AllOutputs(stream, {37, 260, 3}, bounds);
          __asm__ volatile("fldcw %0" : : "m"(x87));
          const uint32_t after = _mm_getcsr();
          _mm_setcsr(0x1F80);
          // The conversion of the bounds to single, in AllOutputs, runs under the odd word itself.
          const bool same_floats =
              static_cast<float>(bounds.a) == bounds.a && static_cast<float>(bounds.b) == bounds.b;
          if (word == 0x1F80 || same_floats) {
            EXPECT_TRUE(got == expected) << bounds.a << " " << bounds.b << " " << word;
          }
          EXPECT_EQ(after & ~kFlags, word);
        }
      });
    }
  }
}

// Each call by itself, with flags that stand before it.
template <class Call>
void ExpectQuiet(uint32_t before, Call call) {
  _mm_setcsr(0x1F80 | before);
  call();
  const uint32_t after = _mm_getcsr();
  _mm_setcsr(0x1F80);
  EXPECT_EQ(after & ~kInexact, (0x1F80 | before) & ~kInexact);
  EXPECT_EQ(before & ~after, 0u);
}

TEST(Control, NoFlagsButInexact) {
  for (const Generator& g : AllGenerators()) {
    SCOPED_TRACE(g.name);
    for (const Bounds& bounds : kBounds) {
      const float a = static_cast<float>(bounds.a), b = static_cast<float>(bounds.b);
      OnEveryLevel([&] {
        Stream stream(g, AnySeed(g));
        double d[100];
        float s[100];
        uint32_t w[400];
        for (uint32_t before : {0x00u, 0x01u, 0x3Fu}) {
          for (int n : {1, 3, 4, 70, 100}) {
            ExpectQuiet(before, [&] { g.dbrng(stream.get(), n, d, bounds.a, bounds.b); });
            ExpectQuiet(before, [&] { g.sbrng(stream.get(), n, s, a, b); });
            ExpectQuiet(before, [&] { g.ibrng(stream.get(), n, w); });
          }
        }
      });
    }
  }
}

// With every exception unmasked, nothing traps, and the word comes back unmasked.
TEST(Control, NothingTraps) {
  for (const Generator& g : AllGenerators()) {
    OnEveryLevel([&] {
      Stream stream(g, AnySeed(g));
      double d[70];
      uint32_t w[280];
      _mm_setcsr(0x0000);
      g.dbrng(stream.get(), 70, d, -DBL_MAX, DBL_MAX);
      g.ibrng(stream.get(), 70, w);
      const uint32_t after = _mm_getcsr();
      _mm_setcsr(0x1F80);
      EXPECT_EQ(after & ~kInexact, 0u);
    });
  }
}

}  // namespace
}  // namespace quo::test
