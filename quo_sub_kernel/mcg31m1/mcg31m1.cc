// MCG31M1: x' = A x mod 2^31 - 1, a 31-bit multiplicative congruential generator.
//
// Lane i of a block holds x A^i, so blocks advance by the power A^(block length) in independent
// chains. The first block is x times a table of powers of the base multiplier; with the multiplier
// of a leapfrogged stream it takes a few more products. States are exact residues, so the split
// into blocks and calls leaves no trace.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/mcg31m1/mcg31m1.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <cstring>

#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/fill-inl.h"
#include "quo_sub_kernel/_math/params.h"
#include "quo_sub_kernel/_math/quiet_guard.h"
#include "quo_sub_kernel/mcg31m1/mcg31m1.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

// A chain holds its state in the low words and the high word of 2^52 in the high words of its
// lanes: as a double this is 2^52 + x.
class SourceMCG31M1 {
 public:
  using State = StateMCG31M1;
  static HWY_INLINE bool IsReduced(const State& s) { return s.x < kM31 && s.a < kM31; }
  static HWY_INLINE double ToDouble(const State& s) { return s.x; }
  static HWY_INLINE void Step(State& s) {
    s.x = MulMod2P31M1(IsReduced(s) ? s.x : s.x % kM31, IsReduced(s) ? s.a : s.a % kM31);
  }
  static constexpr size_t kChains = 4;
  static constexpr size_t kBlock = kChains * kLanes;
  static_assert(kBlock <= kPowers31);
  static constexpr double kScale = kInv2P31M1;

  explicit HWY_INLINE SourceMCG31M1(const State& state) {
    if (state.a == kMultiplier31) {
      Start(state.x, kBasePowers31.data());
    } else {
      Start(state.x, state.a % kM31);
    }
  }
  HWY_INLINE U32Vec Words(size_t u) const { return chain_[u]; }
  HWY_INLINE DoubleVec Value(size_t u) const {
    const DoubleTag d;
    return hn::Sub(hn::BitCast(d, chain_[u]), hn::Set(d, 0x1p52));
  }
  HWY_INLINE DoubleVec Unit(size_t u) const {
    return hn::Mul(Value(u), hn::Set(DoubleTag(), kScale));
  }
  HWY_INLINE void Advance(size_t u) { chain_[u] = Product(chain_[u], step_); }
  HWY_INLINE void Take(size_t i, State& state) const {
    HWY_ALIGN uint64_t block[kBlock];
    for (size_t u = 0; u < kChains; ++u) {
      hn::Store(hn::BitCast(U64Tag(), chain_[u]), U64Tag(), block + u * kLanes);
    }
    state.x = static_cast<uint32_t>(block[i]);
  }

 private:
  static constexpr uint64_t kHigh = 0x4330000000000000;  // 2^52

  // Lane by lane x times the powers of `a` whose exponents' bits the lane's number holds, and from
  // chain to chain likewise.
  HWY_INLINE void Start(uint32_t x, uint32_t a) {
    const U64Tag d;
    const U32Tag d32;
    const U64Vec lane = hn::Iota(d, 0);
    step_ = hn::BitCast(d32, hn::Set(d, a));
    chain_[0] = hn::BitCast(d32, hn::Set(d, kHigh | x));
    for (size_t bit = 1; bit < kLanes; bit *= 2) {
      const U64Vec stays = hn::BitCast(d, chain_[0]);
      const U64Vec moves = hn::BitCast(d, Product(chain_[0], step_));
      const auto held = hn::TestBit(lane, hn::Set(d, bit));
      chain_[0] = hn::BitCast(d32, hn::IfThenElse(held, moves, stays));
      step_ = Product(step_, step_);
    }
    for (size_t bit = 1; bit < kChains; bit *= 2) {
      for (size_t u = 0; u < bit; ++u) chain_[bit + u] = Product(chain_[u], step_);
      step_ = Product(step_, step_);
    }
  }
  HWY_INLINE void Start(uint32_t x, const uint32_t* powers) {
    const hn::Rebind<uint32_t, U64Tag> half;
    const U32Vec vx = hn::Set(U32Tag(), x % kM31);
    for (size_t u = 0; u < kChains; ++u) {
      const U64Vec p = hn::PromoteTo(U64Tag(), hn::LoadU(half, powers + u * kLanes));
      chain_[u] = Product(vx, hn::BitCast(U32Tag(), p));
    }
    step_ = hn::Set(U32Tag(), powers[kBlock]);
  }
  // The residue of the product of the low words: its halves of 31 bits added, less the modulus
  // where that does not wrap round.
  static HWY_INLINE U32Vec Product(U32Vec x, U32Vec y) {
    const U64Tag d;
    const U32Tag d32;
    const U64Vec p = hn::MulEven(x, y);
    const U64Vec low = hn::OrAnd(hn::Set(d, kHigh), p, hn::Set(d, kM31));
    const U32Vec t = hn::BitCast(d32, hn::Add(low, hn::ShiftRight<31>(p)));
    return hn::Min(t, hn::Sub(t, hn::BitCast(d32, hn::Set(d, kM31))));
  }

  U32Vec chain_[kChains];
  U32Vec step_;
};

// The state as an output: the low words of two chains.
template <bool kUnit>
struct WordOutput<SourceMCG31M1, kUnit> : VectorOutput<uint32_t, 2> {
  static HWY_INLINE U32Vec Group(const SourceMCG31M1& s, size_t u, DoubleVec, DoubleVec) {
    return hn::ConcatEven(U32Tag(), s.Words(u + 1), s.Words(u));
  }
  static HWY_INLINE void One(const StateMCG31M1& s, uint32_t* r, double, double) {
    std::memcpy(r, &s.x, sizeof(s.x));
  }
};

void dMCG31M1(StateMCG31M1* state, size_t n, double* r, double a, double b) {
  Generate<DoubleOutput, SourceMCG31M1>(*state, n, r, a, b);
}
void sMCG31M1(StateMCG31M1* state, size_t n, float* r, double a, double b) {
  Generate<FloatOutput, SourceMCG31M1>(*state, n, r, a, b);
}
void iMCG31M1(StateMCG31M1* state, size_t n, uint32_t* r) {
  Generate<WordOutput, SourceMCG31M1>(*state, n, r, 0, 1);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {
namespace {

StateMCG31M1* State(StreamState* stream) { return reinterpret_cast<StateMCG31M1*>(stream + 1); }

// A count of 0 or less still makes the first output and one step.
size_t Count(int32_t n) { return n < 1 ? 1 : static_cast<size_t>(n); }

}  // namespace

HWY_EXPORT(dMCG31M1);
HWY_EXPORT(sMCG31M1);
HWY_EXPORT(iMCG31M1);

extern "C" QUO_API int32_t __quoBRngMCG31M1InitStream(int32_t method, StreamState* stream,
                                                      int32_t n, const uint32_t* params) {
  StateMCG31M1* const s = State(stream);
  switch (method) {
    case QUO_INIT_STANDARD: {
      const uint32_t x = n >= 1 ? params[0] % kM31 : 1;
      s->x = x == 0 ? 1 : x;
      s->a = kMultiplier31;
      return QUO_OK;
    }
    case QUO_INIT_LEAPFROG:
      s->x = MulMod2P31M1(s->x % kM31, __quoiPowMod2P31M1(s->a, params[0]));
      s->a = __quoiPowMod2P31M1(s->a, static_cast<uint32_t>(n));
      return QUO_OK;
    case QUO_INIT_SKIPAHEAD:
      s->x = MulMod2P31M1(s->x % kM31, __quoiPowMod2P31M1(s->a, SkipCount(params)));
      return QUO_OK;
    default:
      return QUO_BAD_METHOD;
  }
}

extern "C" QUO_API int32_t __quodBRngMCG31M1(StreamState* stream, int32_t n, double* r, double a,
                                             double b) {
  const QuietGuard guard(ArePlainBounds(a, b));
  HWY_DYNAMIC_DISPATCH(dMCG31M1)(State(stream), Count(n), r, a, b);
  return QUO_OK;
}

extern "C" QUO_API int32_t __quosBRngMCG31M1(StreamState* stream, int32_t n, float* r, float a,
                                             float b) {
  const QuietGuard guard(ArePlainBounds(a, b));
  HWY_DYNAMIC_DISPATCH(sMCG31M1)(State(stream), Count(n), r, a, b);
  return QUO_OK;
}

extern "C" QUO_API int32_t __quoiBRngMCG31M1(StreamState* stream, int32_t n, uint32_t* r) {
  HWY_DYNAMIC_DISPATCH(iMCG31M1)(State(stream), Count(n), r);
  return QUO_OK;
}

}  // namespace quo
#endif
