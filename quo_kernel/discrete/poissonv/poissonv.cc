// Poisson with a mean for each number, from one uniform u each: below a mean of 27 by inversion,
// the least k with F(k) > u, from there on by the normal expansion.
//
// A block's large means go through the expansion all at once, its small ones are gathered and
// searched side by side from 0 on, until the last has found its count.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/poissonv/poissonv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/_kernel/candidates.h"
#include "quo_kernel/_kernel/counts-inl.h"
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/unaligned.h"
#include "quo_kernel/_kernel/vector_math.h"
#include "quo_kernel/discrete/poisson/normal_poisson-inl.h"
#include "quo_kernel/discrete/poisson/poisson.h"

#ifndef QUO_KERNEL_DISCRETE_POISSONV_POISSONV_CC_  // once, not once per vector level
#define QUO_KERNEL_DISCRETE_POISSONV_POISSONV_CC_
namespace quo {
namespace {

// A search side by side has this many members.
constexpr int32_t kGroup = 32;
// No search goes further: the counts of means below 27 that uniforms below kMostUniform have are
// below 100. Sums of probabilities that are rounded reach beyond kMostUniform.
constexpr int32_t kMostCount = 128;
constexpr double kMostUniform = 1 - 0x1p-46;

constexpr auto kInverses = [] {
  std::array<double, kMostCount + 1> inverses{};
  for (int k = 1; k <= kMostCount; ++k) inverses[k] = 1.0 / k;
  return inverses;
}();

struct VaryingPasses {
  void (*expand)(int32_t n, const double* e, const double* lambda, int32_t* r);
  void (*search)(int32_t n, const double* none, const double* lambda, double* u);
};

}  // namespace
}  // namespace quo
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

void Expand(int32_t n, const double* e, const double* lambda, int32_t* r) {
  const hn::ScalableTag<double> d;
  for (int32_t i = 0; i < n; i += static_cast<int32_t>(hn::Lanes(d))) {
    const auto mean = hn::Load(d, lambda + i);
    const auto x = NormalPoisson(d, hn::Load(d, e + i), mean, hn::Sqrt(mean));
    hn::StoreU(SaturatedFloor(d, x), hn::Rebind<int32_t, decltype(d)>(), r + i);
  }
}

// How often a lane was marked. Elsewhere than on AVX-512 a sum of the marks' bits, -1 each, takes
// less than a selection of counts.
template <class D>
class Tally {
#if HWY_TARGET == HWY_AVX3
  using Tag = D;
#else
  using Tag = hn::RebindToSigned<D>;
#endif

 public:
  HWY_INLINE Tally() : count_(hn::Zero(Tag())) {}
  HWY_INLINE void Add([[maybe_unused]] D d, hn::Mask<D> marked, [[maybe_unused]] int all) {
#if HWY_TARGET == HWY_AVX3
    count_ = hn::IfThenElse(marked, hn::Set(d, all), count_);
#else
    count_ = hn::Sub(count_, hn::BitCast(Tag(), hn::VecFromMask(d, marked)));
#endif
  }
  HWY_INLINE hn::Vec<D> Count(D d) const {
#if HWY_TARGET == HWY_AVX3
    (void)d;
    return count_;
#else
    // A count is below 2^52.
    const hn::Vec<D> shifter = hn::Set(d, 0x1p52);
    const auto sum = hn::BitCast(d, hn::Or(count_, hn::BitCast(Tag(), shifter)));
    return hn::Sub(sum, shifter);
#endif
  }

 private:
  hn::Vec<Tag> count_;
};

// The counts for the uniforms in place of them, `none` the probabilities of 0; n a multiple of
// kGroup.
void Search(int32_t n, const double* none, const double* lambda, double* u) {
  const hn::ScalableTag<double> d;
  using V = hn::Vec<decltype(d)>;
  constexpr int kLanes = static_cast<int>(hn::MaxLanes(d)), kVectors = HWY_MIN(4, kGroup / kLanes);
  for (int32_t i = 0; i < n; i += kVectors * kLanes) {
    V mean[kVectors], p[kVectors], sum[kVectors], uniform[kVectors];
    Tally<decltype(d)> beyond[kVectors];
    for (int j = 0; j < kVectors; ++j) {
      mean[j] = hn::Load(d, lambda + i + j * kLanes);
      sum[j] = p[j] = hn::Load(d, none + i + j * kLanes);
      uniform[j] = hn::Min(hn::Load(d, u + i + j * kLanes), hn::Set(d, kMostUniform));
    }
    // The sums rise, so that a uniform is beyond all of them up to its count.
    for (int k = 1; k <= kMostCount; ++k) {
      auto searching = hn::Ge(uniform[0], sum[0]);
      for (int j = 0; j < kVectors; ++j) {
        const auto is_beyond = hn::Ge(uniform[j], sum[j]);
        searching = hn::Or(searching, is_beyond);
        beyond[j].Add(d, is_beyond, k);
        p[j] = hn::Mul(p[j], hn::Mul(mean[j], hn::Set(d, kInverses[k])));
        sum[j] = hn::Add(sum[j], p[j]);
      }
      if (hn::AllFalse(d, searching)) break;
    }
    for (int j = 0; j < kVectors; ++j) hn::Store(beyond[j].Count(d), d, u + i + j * kLanes);
  }
}

constexpr VaryingPasses kVaryingPasses = {Expand, Search};
const VaryingPasses* VaryingPassesOfLevel() { return &kVaryingPasses; }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(VaryingPassesOfLevel);

namespace {

constexpr int32_t kBlock = kCandidates;
static_assert(kBlock % kGroup == 0);

// The means of a block below kNormalFrom, with the uniforms that belong to them, by their size: a
// search side by side takes as long as that of its largest mean.
struct SmallMeans {
  int32_t count = 0;
  int32_t index[kBlock];
  alignas(64) double lambda[kBlock];
  alignas(64) double none[kBlock];  // the probability of 0
  alignas(64) double u[kBlock];

  SmallMeans(int32_t m, const double* lambdas, const double* uniforms) {
    const auto take = [&](int32_t i) {
      index[count] = i;
      lambda[count] = lambdas[i];
      u[count] = uniforms[i];
    };
    if (m <= kGroup) {  // a search or two
      for (int32_t i = 0; i < m; ++i) {
        take(i);
        count += lambdas[i] < kNormalFrom;
      }
      return;
    }
    // Sizes: below 1/2, from there to 1, to 2 and so on to 16, to kNormalFrom, beyond. Each has its
    // members in two rows, so that none waits for the one before it.
    constexpr int32_t kSizes = 8, kRows = 2;
    static_assert(kNormalFrom > 16 && kNormalFrom <= 32);
    constexpr int64_t kLeast = 1021;  // biased exponent of numbers that are just below 1/2
    uint16_t members[kSizes][kRows][kBlock / kRows];
    int32_t length[kSizes][kRows] = {};
    for (int32_t i = 0; i < m; ++i) {
      const int64_t exponent = std::bit_cast<int64_t>(lambdas[i]) >> 52;
      const int64_t octave = std::clamp<int64_t>(exponent - kLeast, 0, kSizes - 2);
      const int64_t size = lambdas[i] < kNormalFrom ? octave : kSizes - 1;
      const int32_t row = i % kRows;
      members[size][row][length[size][row]++] = static_cast<uint16_t>(i);
    }
    for (int32_t size = 0; size < kSizes - 1; ++size) {
      for (int32_t row = 0; row < kRows; ++row) {
        for (int32_t j = 0; j < length[size][row]; ++j, ++count) take(members[size][row][j]);
      }
    }
  }

  void Draw(const VaryingPasses& passes, int32_t* counts) {
    const int32_t whole = Whole(count, kGroup);
    std::fill(lambda + count, lambda + whole, 0.0);
    std::fill(u + count, u + whole, 0.0);
    for (int32_t i = 0; i < whole; ++i) none[i] = -lambda[i];
    math::dExp_50(whole, none, none);
    passes.search(whole, none, lambda, u);
    for (int32_t i = 0; i < count; ++i) counts[index[i]] = static_cast<int32_t>(u[i]);
  }
};

}  // namespace

extern "C" QUO_API int32_t _quoiRngPoissonV(uint32_t, StreamState* stream, int32_t n, int32_t* r,
                                            const double* lambda) {
  if (n < 1) return QUO_OK;
  const VectorMath borrowed(ReplaceForPoisson);
  const VaryingPasses& passes = *HWY_DYNAMIC_DISPATCH(VaryingPassesOfLevel)();
  alignas(64) double u[kBlock], means[kBlock];
  alignas(64) int32_t counts[kBlock];
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0; left -= kBlock, r += kBlock, lambda += kBlock) {
    const int32_t m = std::min(left, kBlock), whole = Whole(m, kGroup);
    status = Generate(stream, m, u, 0.0, 1.0);
    if (status < 0) break;
    for (int32_t i = 0; i < m; ++i) means[i] = SoundMean(Get(lambda + i));
    SmallMeans small(m, means, u);
    if (small.count < m) {
      for (int32_t i = 0; i < m; ++i) u[i] = u[i] + u[i] - 1;
      std::fill(u + m, u + whole, 0.0);
      std::fill(means + m, means + whole, kNormalFrom);
      math::dErfInv_26(whole, u, u);
      passes.expand(whole, u, means, counts);
    }
    if (small.count > 0) small.Draw(passes, counts);
    std::memcpy(static_cast<void*>(r), counts, static_cast<size_t>(m) * sizeof(int32_t));
  }
  return status;
}

}  // namespace quo
#endif
