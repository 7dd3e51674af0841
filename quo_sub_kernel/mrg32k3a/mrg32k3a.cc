// MRG32K3A: two recurrences of order 3 modulo primes just below 2^32, combined by subtraction.
//   P. L'Ecuyer: Good parameters and implementations for combined multiple recursive random number
//   generators, Operations Research 47 (1999), 159-164.
//
// A block is kSteps steps of several lanes, each lane that many steps ahead of the one before; a
// table of constant matrices takes the state to its lanes. Words are doubles, residues from about
// -m/2 to m/2: products and sums stay below 2^53 and the quotient is rounded to an integer, so that
// everything is exact. Four steps at a time are transposed from lanes to runs of outputs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/mrg32k3a/mrg32k3a.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>

#include "pex_core/_kernel/exact-inl.h"
#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/outputs.h"
#include "quo_sub_kernel/_math/params.h"
#include "quo_sub_kernel/_math/powmod.h"
#include "quo_sub_kernel/_math/quiet_guard.h"
#include "quo_sub_kernel/_math/words-inl.h"
#include "quo_sub_kernel/mrg32k3a/mrg32k3a.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

using Tag = Doubles::Tag;
using Vec = Doubles::Vec;
constexpr size_t kLanes = Doubles::kHalf;

// Fewer outputs than this are made one by one.
constexpr size_t kFewMRG = 24;
// Steps of a block: so many, or fewer for outputs that would not fill half a pair of vectors.
constexpr size_t kManySteps = 32;
constexpr size_t kFewSteps = 8;
// Pairs of vectors of lanes in a block, and the outputs of each.
constexpr size_t kPairs = kLanesMRG / kWordLanes < 4 ? kLanesMRG / kWordLanes : 4;
constexpr size_t kLanesUsed = kPairs * kWordLanes;
constexpr size_t kPairOutputs = kWordLanes * kManySteps;
constexpr size_t kBlock = kPairs * kPairOutputs;
constexpr size_t kFewOutputs = kPairOutputs / 2;
static_assert(kFewOutputs <= kLanesUsed * kFewSteps);

// The words of the lanes.
struct Lanes {
  double x[3][kLanesUsed];
  double y[3][kLanesUsed];
};

// c - a b, where the product and the difference are exact.
HWY_INLINE Vec LessProduct(Vec c, Vec a, Vec b) {
#if HWY_TARGET == HWY_SSE4
  return hn::Sub(c, hn::Mul(a, b));
#else
  return pex::HWY_NAMESPACE::Remainder(Tag(), c, a, b);
#endif
}

// p mod m for |p| below 2^53: the residue of least size, or one that exceeds m/2 by less than 1.
HWY_INLINE Vec Residue(Vec p, uint32_t m) {
  const Tag d;
  const Vec quotient = hn::Round(hn::Mul(p, hn::Set(d, 1.0 / m)));
  return LessProduct(p, quotient, hn::Set(d, double(m)));
}

// The lanes ahead of a component's words.
HWY_INLINE void Spread(const uint32_t* w, const ComponentMRG& c, const LanesMRG& lanes, size_t used,
                       double (*ahead)[kLanesUsed]) {
  const Tag d;
  Vec low[3], high[3];
  for (size_t j = 0; j < 3; ++j) {
    low[j] = hn::Set(d, double(w[j]));
    high[j] = hn::Set(d, double((uint64_t{w[j]} << 16) % c.m));
  }
  for (size_t i = 0; i < used; i += kLanes) {
    for (size_t k = 0; k < 3; ++k) {
      Vec sums[3];
      for (size_t j = 0; j < 3; ++j) {
        sums[j] = hn::Add(hn::Mul(hn::Load(d, &lanes.low[k][j][i]), low[j]),
                          hn::Mul(hn::Load(d, &lanes.high[k][j][i]), high[j]));
      }
      hn::Store(Residue(hn::Add(hn::Add(sums[0], sums[1]), sums[2]), c.m), d, &ahead[k][i]);
    }
  }
}

// One step of a component, words oldest first.
template <const ComponentMRG& c>
HWY_INLINE Vec Advance(Vec (&w)[3]) {
  const Tag d;
  const Vec p = LessProduct(hn::Mul(hn::Set(d, double(c.plus)), w[c.plus_at]),
                            hn::Set(d, double(c.minus)), w[0]);
  w[0] = w[1];
  w[1] = w[2];
  w[2] = Residue(p, c.m);
  return w[2];
}

// Residues of a pair of vectors as words from 0 to m - 1: 2^52 + 2^51 + w has them, modulo 2^32, in
// its low half.
HWY_INLINE WordVec Reduced(Vec lower, Vec upper, uint32_t m) {
  const Tag d;
  const WordTag dw;
  const hn::RebindToSigned<WordTag> di;
  const Vec magic = hn::Set(d, 0x1.8p52);
  const WordVec w = hn::ConcatEven(dw, hn::BitCast(dw, hn::Add(upper, magic)),
                                   hn::BitCast(dw, hn::Add(lower, magic)));
  const WordVec negative = hn::BitCast(dw, hn::BroadcastSignBit(hn::BitCast(di, w)));
#if HWY_TARGET == HWY_AVX3
  return hn::IfThenElse(hn::MaskFromVec(negative), hn::Add(w, hn::Set(dw, m)), w);
#else
  return hn::Sub(w, hn::And(negative, hn::Set(dw, 0 - m)));
#endif
}

// (p1 - p2) mod m1.
HWY_INLINE WordVec Combined(WordVec p1, WordVec p2) {
  const WordTag d;
  const WordVec z = hn::Sub(p1, p2);
#if HWY_TARGET == HWY_AVX3
  return hn::IfThenElse(hn::Lt(p1, p2), hn::Add(z, hn::Set(d, kM1)), z);
#else
  const auto stays = hn::Eq(hn::Max(p1, p2), p1);
  return hn::Sub(z, hn::IfThenZeroElse(stays, hn::Set(d, 0 - kM1)));
#endif
}

// Stores 128-bit block b of `rows` as the four words at r + 4 b run.
template <class D>
HWY_INLINE void StoreBlocks(D d, hn::Vec<D> rows, size_t run, uint32_t* r) {
  if constexpr (hn::MaxLanes(D()) == 4) {
    hn::StoreU(rows, d, r);
  } else {
    const hn::Half<D> half;
    StoreBlocks(half, hn::LowerHalf(half, rows), run, r);
    StoreBlocks(half, hn::UpperHalf(half, rows), run, r + hn::MaxLanes(D()) / 2 * run);
  }
}

// z[t] holds output t of each lane; r has those of the lanes kSteps apart.
template <size_t kSteps>
HWY_INLINE void StoreRuns(const WordVec* z, uint32_t* r) {
  const WordTag d;
  const hn::ScalableTag<uint64_t> d64;
  const auto lower01 = hn::BitCast(d64, hn::InterleaveLower(d, z[0], z[1]));
  const auto lower23 = hn::BitCast(d64, hn::InterleaveLower(d, z[2], z[3]));
  const auto upper01 = hn::BitCast(d64, hn::InterleaveUpper(d, z[0], z[1]));
  const auto upper23 = hn::BitCast(d64, hn::InterleaveUpper(d, z[2], z[3]));
  const WordVec rows[4] = {
      hn::BitCast(d, hn::InterleaveLower(d64, lower01, lower23)),
      hn::BitCast(d, hn::InterleaveUpper(d64, lower01, lower23)),
      hn::BitCast(d, hn::InterleaveLower(d64, upper01, upper23)),
      hn::BitCast(d, hn::InterleaveUpper(d64, upper01, upper23)),
  };
  for (size_t k = 0; k < 4; ++k) StoreBlocks(d, rows[k], kSteps, r + k * kSteps);
}

// Four steps of the pair of vectors at lane i.
template <size_t kSteps>
HWY_INLINE void FourSteps(const Lanes& from, Lanes& to, size_t i, uint32_t* r) {
  const Tag d;
  Vec x[2][3], y[2][3];
  for (size_t u = 0; u < 2; ++u) {
    for (size_t k = 0; k < 3; ++k) {
      x[u][k] = hn::Load(d, &from.x[k][i + u * kLanes]);
      y[u][k] = hn::Load(d, &from.y[k][i + u * kLanes]);
    }
  }
  WordVec z[4];
  for (size_t t = 0; t < 4; ++t) {
    const Vec x0 = Advance<kX>(x[0]), x1 = Advance<kX>(x[1]);
    const Vec y0 = Advance<kY>(y[0]), y1 = Advance<kY>(y[1]);
    z[t] = Combined(Reduced(x0, x1, kM1), Reduced(y0, y1, kM2));
  }
  for (size_t u = 0; u < 2; ++u) {
    for (size_t k = 0; k < 3; ++k) {
      hn::Store(x[u][k], d, &to.x[k][i + u * kLanes]);
      hn::Store(y[u][k], d, &to.y[k][i + u * kLanes]);
    }
  }
  StoreRuns<kSteps>(z, r + i * kSteps);
}

uint32_t Unsigned(double residue, uint32_t m) {
  return static_cast<uint32_t>(static_cast<int64_t>(residue < 0 ? residue + m : residue));
}

// n steps; visit(k, z) gets the outputs. Each word has its variable: a state that moves up in
// memory would wait for its own stores.
template <class Visit>
HWY_INLINE void OneByOne(StateMRG32K3A& s, size_t n, Visit visit) {
  auto [x0, x1, x2] = s.x;
  auto [y0, y1, y2] = s.y;
  for (size_t k = 0; k < n; ++k) {
    const uint32_t p1 = kX.Next(x0, x1, x2), p2 = kY.Next(y0, y1, y2);
    x0 = x1, x1 = x2, x2 = p1;
    y0 = y1, y1 = y2, y2 = p2;
    const int64_t z = int64_t{p1} - int64_t{p2};
    visit(k, static_cast<uint32_t>(z + (z >> 63 & kM1)));
  }
  s = {{x0, x1, x2}, {y0, y1, y2}};
}

// The first n outputs of a block, to r, where whole pairs have room; the state after them.
template <size_t kSteps>
HWY_INLINE void Block(StateMRG32K3A& s, size_t n, uint32_t* r) {
  constexpr size_t kFours = kSteps / 4;
  HWY_ALIGN Lanes lanes[kFours + 1];  // every fourth step
  const size_t used = (n - 1) / (kWordLanes * kSteps) * kWordLanes + kWordLanes;
  Spread(s.x, kX, kLanesX<kSteps>, used, lanes[0].x);
  Spread(s.y, kY, kLanesY<kSteps>, used, lanes[0].y);
  for (size_t t = 0; t < kFours; ++t) {
    for (size_t i = 0; i < used; i += kWordLanes) {
      FourSteps<kSteps>(lanes[t], lanes[t + 1], i, r + 4 * t);
    }
  }
  const size_t lane = (n - 1) / kSteps;
  const size_t steps = n - lane * kSteps;
  const Lanes& last = lanes[steps / 4];
  for (size_t k = 0; k < 3; ++k) {
    s.x[k] = Unsigned(last.x[k][lane], kM1);
    s.y[k] = Unsigned(last.y[k][lane], kM2);
  }
  OneByOne(s, steps % 4, [](size_t, uint32_t) HWY_ATTR {});
}

template <class Output>
HWY_INLINE void GenerateMRG(StateMRG32K3A& state, size_t n, typename Output::T* r,
                            const Output& output) {
  StateMRG32K3A s = state;
  HWY_ALIGN uint32_t words[kBlock];
  while (n >= kFewMRG) {
    const size_t count = std::min(n, kBlock);
    if (std::is_same_v<Output, Words> && count == kBlock) {
      Block<kManySteps>(s, count, reinterpret_cast<uint32_t*>(r));
    } else {
      if (count <= kFewOutputs) {
        Block<kFewSteps>(s, count, words);
      } else {
        Block<kManySteps>(s, count, words);
      }
      size_t k = 0;
      for (; k + kWordLanes <= count; k += kWordLanes)
        output.Put(hn::Load(WordTag(), words + k), r + k);
      if (k < count) {
        k = count - kWordLanes;
        output.Put(hn::LoadU(WordTag(), words + k), r + k);
      }
    }
    r += count;
    n -= count;
  }
  OneByOne(s, n, [&](size_t k, uint32_t z) HWY_ATTR { output.One(z, r + k); });
  state = s;
}

void dMRG32K3A(StateMRG32K3A* state, size_t n, double* r, double a, double b) {
  GenerateMRG(*state, n, r, Doubles((b - a) * kInvM1, a));
}
void sMRG32K3A(StateMRG32K3A* state, size_t n, float* r, double a, double b) {
  GenerateMRG(*state, n, r, Floats(Doubles((b - a) * kInvM1, a)));
}
void iMRG32K3A(StateMRG32K3A* state, size_t n, uint32_t* r) { GenerateMRG(*state, n, r, Words()); }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {
namespace {

StateMRG32K3A* State(StreamState* stream) { return reinterpret_cast<StateMRG32K3A*>(stream + 1); }

void Seed(uint32_t* w, int32_t n, const uint32_t* params, uint32_t m) {
  for (int32_t k = 0; k < 3; ++k) {
    w[k] = k < n ? params[k] : 1;
    if (w[k] >= m) w[k] -= m;
  }
  if ((w[0] | w[1] | w[2]) == 0) w[0] = 1;
}

}  // namespace

extern "C" QUO_API int32_t __quoBRngMRG32K3AInitStream(int32_t method, StreamState* stream,
                                                       int32_t n, const uint32_t* params) {
  StateMRG32K3A* const s = State(stream);
  switch (method) {
    case QUO_INIT_STANDARD:
      Seed(s->x, n, params, kM1);
      Seed(s->y, n > 3 ? n - 3 : 0, n > 3 ? params + 3 : nullptr, kM2);
      return QUO_OK;
    case QUO_INIT_LEAPFROG:
      return QUO_LEAPFROG_UNSUPPORTED;
    case QUO_INIT_SKIPAHEAD:
      __quoiVect3PowMod(s->x, kX.row, SkipCount(params), kM1);
      __quoiVect3PowMod(s->y, kY.row, SkipCount(params), kM2);
      return QUO_OK;
    default:
      return QUO_BAD_METHOD;
  }
}

QUO_EXPORT_UNIFORMS(MRG32K3A)

HWY_EXPORT(iMRG32K3A);

extern "C" QUO_API int32_t __quoiBRngMRG32K3A(StreamState* stream, int32_t n, uint32_t* r) {
  if (n < 1) return QUO_OK;
  const QuietGuard guard(true);  // the recurrence runs in doubles
  HWY_DYNAMIC_DISPATCH(iMRG32K3A)(State(stream), static_cast<size_t>(n), r);
  return QUO_OK;
}

}  // namespace quo
#endif
