// Sums and products with their errors, against multiple precision; and the same bits whether the
// level has fused operations or not.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "accuracy/real.h"
#include "tests/kernel/exact_kernels.h"
#include "tests/support/levels.h"
#include "tests/support/random.h"

namespace {

using pex::accuracy::Real;

constexpr long kExact = 4300;  // holds any sum or product of pairs of doubles

// hi + lo, exactly.
void Set(mpfr_ptr to, double hi, double lo) {
  mpfr_set_d(to, hi, MPFR_RNDN);
  mpfr_add_d(to, to, lo, MPFR_RNDN);
}

template <typename T>
struct Pairs {
  std::vector<T> hi, lo;
  explicit Pairs(size_t n) : hi(n), lo(n) {}
  PairArrays<const T> in() const { return {hi.data(), lo.data()}; }
  PairArrays<T> out() { return {hi.data(), lo.data()}; }
};

struct Operation {
  const char* name;
  ExactOp op;
  bool product, ordered, pair_a, pair_b;
  double bound;  // error in units of u^2 times |a| + |b|, or |a b|; u = 2^-53 or 2^-24
};
constexpr Operation kOperations[] = {
    {"TwoSum", ExactOp::TwoSum, false, false, false, false, 0},
    {"FastTwoSum", ExactOp::FastTwoSum, false, true, false, false, 0},
    {"TwoProduct", ExactOp::TwoProduct, true, false, false, false, 0},
    {"AddFast", ExactOp::AddFast, false, true, true, false, 2},
    {"AddPairs", ExactOp::AddPairs, false, false, true, true, 3},
    {"MulByNumber", ExactOp::MulByNumber, true, false, true, false, 4},
    {"MulPairs", ExactOp::MulPairs, true, false, true, true, 8},
};

// A number of the format with an exponent between the limits, now and then a short one.
template <typename T>
T Number(Random& random, int least, int most) {
  constexpr int kBits = std::numeric_limits<T>::digits;
  double m = 1 + std::ldexp(static_cast<double>(random.Bits() >> (65 - kBits)), 1 - kBits);
  if (random.Below(4) == 0) m = 1 + random.Below(16) / 16.0;
  const int exponent = least + static_cast<int>(random.Below(static_cast<uint32_t>(most - least)));
  return static_cast<T>(std::ldexp(random.Below(2) ? m : -m, exponent));
}

// Arguments within the stated range: no overflow, and the error term of a product representable.
template <typename T>
void Fill(Random& random, const Operation& o, Pairs<T>& a, Pairs<T>& b) {
  using Limits = std::numeric_limits<T>;
  constexpr int kBits = Limits::digits;
  const T half_ulp = Limits::epsilon() / 2;
  for (size_t i = 0; i < a.hi.size(); ++i) {
    if (o.product) {
      const int most = Limits::max_exponent - 1 - (kBits == 53 ? 28 : 13);
      const int least = Limits::min_exponent - 1 + (o.pair_a ? kBits : 0);
      a.hi[i] = Number<T>(random, least, most);
      const int exponent = std::ilogb(a.hi[i]);
      const int low = std::max(least, Limits::min_exponent + 2 * kBits - exponent);
      const int high = std::min(most, Limits::max_exponent - 3 - exponent);
      b.hi[i] = Number<T>(random, low, high);
    } else {
      const int exponent = static_cast<int>(random.Below(40)) - 20;
      const int gap = static_cast<int>(random.Below(2 * kBits + 5));
      a.hi[i] = Number<T>(random, exponent, exponent + 1);
      b.hi[i] = Number<T>(random, exponent - gap, exponent - gap + 1);
      if (random.Below(8) == 0) b.hi[i] = -a.hi[i] * (1 + half_ulp * 2 * random.Below(3));
      if (random.Below(50) == 0) b.hi[i] = 0;
      if (!o.ordered && random.Below(2)) std::swap(a.hi[i], b.hi[i]);
      if (o.ordered && std::fabs(b.hi[i]) > std::fabs(a.hi[i])) std::swap(a.hi[i], b.hi[i]);
    }
    const auto low = [&](T hi) { return hi * half_ulp * static_cast<T>(random.Unit() * 2 - 1); };
    a.lo[i] = o.pair_a ? low(a.hi[i]) : T(0);
    b.lo[i] = o.pair_b ? low(b.hi[i]) : T(0);
  }
}

template <typename T>
class Exact : public testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(Exact, Types);

TYPED_TEST(Exact, ErrorsAreAsStatedAndBitsTheSameOnEveryLevel) {
  using T = TypeParam;
  constexpr size_t kCount = 4096;
  const double u = std::ldexp(1.0, -std::numeric_limits<T>::digits);
  Real x(kExact), y(kExact), z(kExact), scale(kExact), error(kExact);
  for (const Operation& o : kOperations) {
    SCOPED_TRACE(o.name);
    Random random(7);
    Pairs<T> a(kCount), b(kCount), first(kCount);
    Fill(random, o, a, b);
    {
      const UseLevel level(kLevels[0]);
      RunExact<T>(o.op, kCount, a.in(), b.in(), first.out());
    }
    for (size_t i = 0; i < kCount; ++i) {
      Set(x, a.hi[i], a.lo[i]);
      Set(y, b.hi[i], b.lo[i]);
      if (o.product) {
        mpfr_mul(z, x, y, MPFR_RNDN);
        mpfr_abs(scale, z, MPFR_RNDN);
      } else {
        mpfr_add(z, x, y, MPFR_RNDN);
        mpfr_abs(scale, x, MPFR_RNDN);
        mpfr_abs(y, y, MPFR_RNDN);
        mpfr_add(scale, scale, y, MPFR_RNDN);
      }
      Set(error, first.hi[i], first.lo[i]);
      mpfr_sub(error, error, z, MPFR_RNDN);
      mpfr_abs(error, error, MPFR_RNDN);
      mpfr_mul_d(scale, scale, o.bound * u * u, MPFR_RNDN);
      ASSERT_LE(mpfr_cmp(error, scale), 0)
          << "a " << a.hi[i] << " + " << a.lo[i] << ", b " << b.hi[i] << " + " << b.lo[i];
      // A pair: the high part is the pair rounded.
      ASSERT_EQ(first.hi[i], static_cast<T>(first.hi[i] + first.lo[i]));
    }
    for (const Level& level : kLevels) {
      if (!ProcessorHas(level)) continue;
      const UseLevel use(level);
      Pairs<T> r(kCount);
      RunExact<T>(o.op, kCount, a.in(), b.in(), r.out());
      EXPECT_EQ(std::memcmp(r.hi.data(), first.hi.data(), kCount * sizeof(T)), 0) << level.name;
      EXPECT_EQ(std::memcmp(r.lo.data(), first.lo.data(), kCount * sizeof(T)), 0) << level.name;
    }
  }
}

// 1 + 2 x + 3 x^2 + ... of small integers is exact in any order; of fractions it is the same on
// every level.
TYPED_TEST(Exact, PolynomialsHaveEveryTermOnce) {
  using T = TypeParam;
  constexpr size_t kCount = 64;
  for (const Level& level : kLevels) {
    if (!ProcessorHas(level)) continue;
    SCOPED_TRACE(level.name);
    for (const int degree : {0, 1, 2, 3, 4, 7, 8}) {
      for (const bool even_odd : {false, true}) {
        std::vector<T> x(kCount), r(kCount), first(kCount);
        for (size_t i = 0; i < kCount; ++i) x[i] = static_cast<T>(static_cast<int>(i % 8) - 4);
        const auto run = [&](const Level& on, std::vector<T>& to) {
          const UseLevel use(on);
          RunPolynomial<T>(even_odd, degree, kCount, x.data(), to.data());
        };
        run(level, r);
        for (size_t i = 0; i < kCount; ++i) {
          long sum = 0;
          for (int k = degree; k >= 0; --k) sum = sum * static_cast<long>(x[i]) + k + 1;
          ASSERT_EQ(r[i], static_cast<T>(sum)) << "degree " << degree << " at " << x[i];
        }
        Random random(8);
        for (T& value : x) value = static_cast<T>(random.Unit() - 0.5);
        run(level, r);
        run(kLevels[0], first);
        EXPECT_EQ(std::memcmp(r.data(), first.data(), kCount * sizeof(T)), 0);
      }
    }
  }
}

}  // namespace
