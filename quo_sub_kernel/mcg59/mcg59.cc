// MCG59: x' = A x mod 2^59, a 59-bit multiplicative congruential generator.
//
// Lane i of a block holds x A^i, so blocks advance by the power A^(block length) in independent
// chains. The first block is x times a table of powers of the base multiplier; with the multiplier
// of a leapfrogged stream it takes a few more products. The chains hold 32 x modulo 2^64, which
// drops the bits above 59 by itself.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/mcg59/mcg59.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <cstring>

#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/fill-inl.h"
#include "quo_sub_kernel/_math/outputs.h"
#include "quo_sub_kernel/_math/params.h"
#include "quo_sub_kernel/mcg59/mcg59.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

class SourceMCG59 {
 public:
  using State = StateMCG59;
  static HWY_INLINE bool IsReduced(const State& s) { return s.x <= kMask59; }
  static HWY_INLINE double ToDouble(const State& s) { return static_cast<double>(s.x); }
  static HWY_INLINE void Step(State& s) { s.x = MulMod2P59(s.x, s.a); }
  static constexpr size_t kChains = 4;
  static constexpr size_t kBlock = kChains * kLanes;
  static_assert(kBlock <= kPowers59);

  static constexpr double kScale = kInv2P59;

  explicit HWY_INLINE SourceMCG59(const State& state) {
    if (state.a == kMultiplier59) {
      Start(state.x, kBasePowers59.data());
    } else {
      Start(state.x, state.a);
    }
  }
  HWY_INLINE U64Vec Words(size_t u) const { return hn::ShiftRight<kSpare>(chain_[u]); }
  HWY_INLINE DoubleVec Value(size_t u) const { return Rounded<0>(u); }
  HWY_INLINE DoubleVec Unit(size_t u) const { return Rounded<59>(u); }
  HWY_INLINE void Advance(size_t u) { chain_[u] = Product(chain_[u], step_, step_high_); }
  HWY_INLINE void Take(size_t i, State& state) const {
    HWY_ALIGN uint64_t block[kBlock];
    for (size_t u = 0; u < kChains; ++u) hn::Store(chain_[u], U64Tag(), block + u * kLanes);
    state.x = block[i] >> kSpare;
  }

 private:
  static constexpr int kSpare = 64 - 59;

  // Lane by lane x times the powers of `a` whose exponents' bits the lane's number holds, and from
  // chain to chain likewise.
  HWY_INLINE void Start(uint64_t x, uint64_t a) {
    const U64Tag d;
    const U64Vec lane = hn::Iota(d, 0);
    step_ = hn::Set(d, a);
    step_high_ = hn::ShiftRight<32>(step_);
    chain_[0] = hn::Set(d, x << kSpare);
    for (size_t bit = 1; bit < kLanes; bit *= 2) {
      const auto held = hn::TestBit(lane, hn::Set(d, bit));
      const U64Vec moved = Product(chain_[0], step_, step_high_);
      chain_[0] = hn::IfThenElse(held, moved, chain_[0]);
      SquareStep();
    }
    for (size_t bit = 1; bit < kChains; bit *= 2) {
      for (size_t u = 0; u < bit; ++u) chain_[bit + u] = Product(chain_[u], step_, step_high_);
      SquareStep();
    }
  }
  HWY_INLINE void SquareStep() {
    step_ = Product(step_, step_, step_high_);
    step_high_ = hn::ShiftRight<32>(step_);
  }
  HWY_INLINE void Start(uint64_t x, const uint64_t* powers) {
    const U64Tag d;
    const U64Vec vx = hn::Set(d, x << kSpare);
    const U64Vec vx_high = hn::ShiftRight<32>(vx);
    for (size_t u = 0; u < kChains; ++u) {
      chain_[u] = Product(hn::LoadU(d, powers + u * kLanes), vx, vx_high);
    }
    step_ = hn::Set(d, powers[kBlock]);
    step_high_ = hn::ShiftRight<32>(step_);
  }
  // The state rounded to the nearest double, over 2^kDown.
  template <int kDown>
  HWY_INLINE DoubleVec Rounded(size_t u) const {
    const DoubleTag d;
#if HWY_TARGET == HWY_AVX3
    const DoubleVec x = hn::ConvertTo(d, hn::BitCast(hn::RebindToSigned<U64Tag>(), Words(u)));
    return kDown == 0 ? x : hn::Mul(x, hn::Set(d, kInv2P59));
#else
    // The words as the low ones of 2^e + 2^(e-20) high and 2^(e-32) + 2^(e-84) low, where
    // e = 84 - kSpare - kDown: the difference of the powers goes away exactly, the sum rounds once.
    constexpr uint64_t kExponent = 1023 + 84 - kSpare - kDown;
    constexpr double kPowers = (0x1p84 + 0x1p52) / (uint64_t{1} << kSpare) / (uint64_t{1} << kDown);
    const U64Tag du;
    const U64Vec high = hn::Or(hn::ShiftRight<32>(chain_[u]), hn::Set(du, kExponent << 52));
    const U32Vec low = hn::OddEven(hn::BitCast(U32Tag(), hn::Set(du, (kExponent - 32) << 52)),
                                   hn::BitCast(U32Tag(), chain_[u]));
    return hn::Add(hn::Sub(hn::BitCast(d, high), hn::Set(d, kPowers)), hn::BitCast(d, low));
#endif
  }
  // x y modulo 2^64; y_high is the high word of y.
  static HWY_INLINE U64Vec Product(U64Vec x, U64Vec y, U64Vec y_high) {
#if HWY_TARGET == HWY_AVX3
    (void)y_high;
    return hn::Mul(x, y);
#else
    const U32Tag d;
    const auto x32 = hn::BitCast(d, x);
    const auto y32 = hn::BitCast(d, y);
    const U64Vec cross = hn::Add(hn::MulEven(x32, hn::BitCast(d, y_high)),
                                 hn::MulEven(hn::BitCast(d, hn::ShiftRight<32>(x)), y32));
    return hn::Add(hn::MulEven(x32, y32), hn::ShiftLeft<32>(cross));
#endif
  }

  U64Vec chain_[kChains];
  U64Vec step_;
  U64Vec step_high_;
};

template <bool kUnit>
struct WordOutput<SourceMCG59, kUnit> : VectorOutput<uint64_t, 1> {
  static HWY_INLINE U64Vec Group(const SourceMCG59& s, size_t u, DoubleVec, DoubleVec) {
    return s.Words(u);
  }
  static HWY_INLINE void One(const StateMCG59& s, uint64_t* r, double, double) {
    std::memcpy(r, &s.x, sizeof(s.x));
  }
};

void dMCG59(StateMCG59* state, size_t n, double* r, double a, double b) {
  Generate<DoubleOutput, SourceMCG59>(*state, n, r, a, b);
}
void sMCG59(StateMCG59* state, size_t n, float* r, double a, double b) {
  Generate<FloatOutput, SourceMCG59>(*state, n, r, a, b);
}
void iMCG59(StateMCG59* state, size_t n, uint64_t* r) {
  Generate<WordOutput, SourceMCG59>(*state, n, r, 0, 1);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {
namespace {

StateMCG59* State(StreamState* stream) { return reinterpret_cast<StateMCG59*>(stream + 1); }

uint64_t Seed(int32_t n, const uint32_t* params) {
  if (n < 1) return 1;
  const uint64_t high = n == 1 ? 0 : params[1];
  const uint64_t x = (high << 32 | params[0]) & kMask59;
  return x == 0 ? 1 : x;
}

}  // namespace

extern "C" QUO_API int32_t __quoBRngMCG59InitStream(int32_t method, StreamState* stream, int32_t n,
                                                    const uint32_t* params) {
  StateMCG59* const s = State(stream);
  switch (method) {
    case QUO_INIT_STANDARD:
      s->x = Seed(n, params);
      s->a = kMultiplier59;
      return QUO_OK;
    case QUO_INIT_LEAPFROG:
      s->x = MulMod2P59(s->x, __quoiPowMod2P59(s->a, params[0]));
      s->a = __quoiPowMod2P59(s->a, static_cast<uint32_t>(n));
      return QUO_OK;
    case QUO_INIT_SKIPAHEAD:
      s->x = MulMod2P59(s->x, __quoiPowMod2P59(s->a, SkipCount(params)));
      return QUO_OK;
    default:
      return QUO_BAD_METHOD;
  }
}

QUO_EXPORT_UNIFORMS(MCG59)

HWY_EXPORT(iMCG59);

extern "C" QUO_API int32_t __quoiBRngMCG59(StreamState* stream, int32_t n, uint32_t* r) {
  if (n < 1) return QUO_OK;
  HWY_DYNAMIC_DISPATCH(iMCG59)
  (State(stream), static_cast<size_t>(n), reinterpret_cast<uint64_t*>(r));
  return QUO_OK;
}

}  // namespace quo
#endif
