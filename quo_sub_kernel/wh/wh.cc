// WH: 273 generators, each the sum modulo 1 of four multiplicative generators x' = A x mod m with
// moduli below 2^24.
//
// Lane i of a block holds the four x A^i, so blocks advance by the powers A^(block length). States
// and multipliers are whole numbers in doubles, which makes their products, below 2^48, exact. The
// quotient of a product by m is taken with rounded factors, 3 ulp at most and so 2^-27 off, while
// the true one is no whole number (m is prime) and 1/m > 2^-24 away from any: truncated, both
// agree.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/wh/wh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <cstring>

#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/fill-inl.h"
#include "quo_sub_kernel/_math/params.h"
#include "quo_sub_kernel/_math/quiet_guard.h"
#include "quo_sub_kernel/wh/wh.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

// A step of the recurrence for one component or, in lanes, several.
template <class D>
struct Factor {
  using V = hn::Vec<D>;
  V a, quotient, m;  // the multiplier, the same over the modulus, the modulus
  HWY_INLINE V Times(V x) const {
    const V q = hn::Trunc(hn::Mul(x, quotient));
    return hn::NegMulAdd(q, m, hn::Mul(x, a));  // exact, fused or not
  }
};

class SourceWH {
 public:
  using State = MemberWH;
  static HWY_INLINE bool IsReduced(const State& s) {
    bool reduced = true;
    for (int j = 0; j < 4; ++j) reduced &= s.state->x[j] < s.m[j];
    return reduced;
  }
  static HWY_INLINE double ToDouble(const State& s) {
    const uint32_t* const x = s.state->x;
    const double sum =
        ((x[0] * s.inverse[0] + x[1] * s.inverse[1]) + x[2] * s.inverse[2]) + x[3] * s.inverse[3];
    return sum - static_cast<double>(static_cast<int64_t>(sum));
  }
  static HWY_INLINE void Step(State& s) {
    for (int j = 0; j < 4; ++j) s.state->x[j] = MulMod(s.state->x[j], s.state->a[j], s.m[j]);
  }

  static constexpr size_t kChains = 2;
  static constexpr size_t kBlock = kChains * kLanes;
  static constexpr double kScale = 1;

  explicit HWY_INLINE SourceWH(const State& s) {
    const DoubleTag d;
    HWY_ALIGN double block[kBlock][4];
    HWY_ALIGN double step[4];
    Start(s, block, step);
    for (size_t u = 0; u < kChains; ++u) {
      hn::LoadInterleaved4(d, block[u * kLanes], chain_[u][0], chain_[u][1], chain_[u][2],
                           chain_[u][3]);
    }
    for (int j = 0; j < 4; ++j) {
      inverse_[j] = hn::Set(d, s.inverse[j]);
      step_[j].a = hn::Set(d, step[j]);
      step_[j].quotient = hn::Mul(step_[j].a, inverse_[j]);
      step_[j].m = hn::Set(d, s.m[j]);
    }
  }
  // State words as the low halves of 64-bit lanes.
  HWY_INLINE U64Vec Words(size_t u, int j) const {
    const DoubleTag d;
    return hn::BitCast(U64Tag(), hn::Add(chain_[u][j], hn::Set(d, 0x1p52)));
  }
  HWY_INLINE DoubleVec Value(size_t u) const {
    const auto term = [this, u](int j) HWY_ATTR { return hn::Mul(chain_[u][j], inverse_[j]); };
    const DoubleVec sum = hn::Add(hn::Add(hn::Add(term(0), term(1)), term(2)), term(3));
    return hn::Sub(sum, hn::Trunc(sum));
  }
  HWY_INLINE DoubleVec Unit(size_t u) const { return Value(u); }
  HWY_INLINE void Advance(size_t u) {
    for (int j = 0; j < 4; ++j) chain_[u][j] = step_[j].Times(chain_[u][j]);
  }
  HWY_INLINE void Take(size_t i, State& s) const {
    HWY_ALIGN double block[kBlock][4];
    for (size_t u = 0; u < kChains; ++u) {
      hn::StoreInterleaved4(chain_[u][0], chain_[u][1], chain_[u][2], chain_[u][3], DoubleTag(),
                            block[u * kLanes]);
    }
    for (size_t j = 0; j < 4; j += hn::MaxLanes(RowTag())) {
      const auto x = hn::DemoteTo(RowIntTag(), hn::Load(RowTag(), block[i] + j));
      hn::StoreU(x, RowIntTag(), reinterpret_cast<int32_t*>(s.state->x + j));
    }
  }

 private:
  // The components of one state side by side.
  using RowTag = hn::CappedTag<double, 4>;
  using RowIntTag = hn::Rebind<int32_t, RowTag>;
  static HWY_INLINE hn::Vec<RowTag> LoadRow(const uint32_t* words) {
    return hn::PromoteTo(RowTag(), hn::LoadU(RowIntTag(), reinterpret_cast<const int32_t*>(words)));
  }

  // The states of the first block, each half from the one before it, and A^kBlock.
  static HWY_INLINE void Start(const State& s, double (*block)[4], double* step) {
    const RowTag d;
    const uint32_t* multipliers = s.state->a;
    uint32_t residues[4];
    bool reduced = true;
    for (int j = 0; j < 4; ++j) reduced &= multipliers[j] < s.m[j];
    if (!reduced) {
      for (int j = 0; j < 4; ++j) residues[j] = multipliers[j] % s.m[j];
      multipliers = residues;
    }
    for (size_t j = 0; j < 4; j += hn::MaxLanes(d)) {
      const auto inverse = hn::LoadU(d, s.inverse + j);
      Factor<RowTag> factor;
      factor.a = LoadRow(multipliers + j);
      factor.m = LoadRow(s.m + j);
      hn::Store(LoadRow(s.state->x + j), d, block[0] + j);
      for (size_t length = 1; length < kBlock; length *= 2) {
        factor.quotient = hn::Mul(factor.a, inverse);
        for (size_t i = 0; i < length; ++i) {
          hn::Store(factor.Times(hn::Load(d, block[i] + j)), d, block[length + i] + j);
        }
        factor.a = factor.Times(factor.a);
      }
      hn::Store(factor.a, d, step + j);
    }
  }

  DoubleVec chain_[kChains][4];
  DoubleVec inverse_[4];
  Factor<DoubleTag> step_[4];
};

// Four words per output, x1 to x4.
template <bool kUnit>
struct WordOutput<SourceWH, kUnit> {
  using T = uint32_t;
  static constexpr size_t kWords = 4;
  static constexpr size_t kChainsPerGroup = 1;
  struct Pairs {
    U64Vec x12, x34;
  };
  static HWY_INLINE Pairs Group(const SourceWH& s, size_t u, DoubleVec, DoubleVec) {
    return {Pair(s.Words(u, 0), s.Words(u, 1)), Pair(s.Words(u, 2), s.Words(u, 3))};
  }
  static HWY_INLINE U64Vec Pair(U64Vec low, U64Vec high) {
    const U32Tag d;
    return hn::BitCast(U64Tag(),
                       hn::OddEven(hn::BitCast(d, hn::ShiftLeft<32>(high)), hn::BitCast(d, low)));
  }
  static HWY_INLINE void Write(const Pairs& group, uint32_t* r) {
    hn::StoreInterleaved2(group.x12, group.x34, U64Tag(), reinterpret_cast<uint64_t*>(r));
  }
  static HWY_INLINE void WriteFirst(const Pairs& group, uint32_t* r, size_t count) {
    HWY_ALIGN uint32_t words[4 * kLanes];
    Write(group, words);
    std::memcpy(r, words, count * 16);
  }
  static HWY_INLINE void One(const MemberWH& s, uint32_t* r, double, double) {
    std::memcpy(r, s.state->x, 16);
  }
};

void dWH(MemberWH* s, size_t n, double* r, double a, double b) {
  Generate<DoubleOutput, SourceWH>(*s, n, r, a, b);
}
void sWH(MemberWH* s, size_t n, float* r, double a, double b) {
  Generate<FloatOutput, SourceWH>(*s, n, r, a, b);
}
void iWH(MemberWH* s, size_t n, uint32_t* r) { Generate<WordOutput, SourceWH>(*s, n, r, 0, 1); }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(dWH);
HWY_EXPORT(sWH);
HWY_EXPORT(iWH);

extern "C" QUO_API int32_t __quoBRngWHInitStream(int32_t method, StreamState* stream, int32_t n,
                                                 const uint32_t* params) {
  const MemberWH s(stream);
  uint32_t* const x = s.state->x;
  uint32_t* const a = s.state->a;
  switch (method) {
    case QUO_INIT_STANDARD:
      for (int j = 0; j < 4; ++j) {
        const bool seeded = n < 0 || j < n;
        const uint32_t seed = seeded ? params[j] % s.m[j] : 1;
        x[j] = seed == 0 ? 1 : seed;
        a[j] = s.a[j];
      }
      return QUO_OK;
    case QUO_INIT_LEAPFROG:
      for (int j = 0; j < 4; ++j) {
        x[j] = MulMod(x[j], __quoiPowMod(a[j], params[0], s.m[j]), s.m[j]);
        a[j] = __quoiPowMod(a[j], static_cast<uint32_t>(n), s.m[j]);
      }
      return QUO_OK;
    case QUO_INIT_SKIPAHEAD:
      for (int j = 0; j < 4; ++j) {
        x[j] = MulMod(x[j], __quoiPowMod(a[j], SkipCount(params), s.m[j]), s.m[j]);
      }
      return QUO_OK;
    default:
      return QUO_BAD_METHOD;
  }
}

extern "C" QUO_API int32_t __quodBRngWH(StreamState* stream, int32_t n, double* r, double a,
                                        double b) {
  if (n < 1) return QUO_OK;
  const QuietGuard guard(ArePlainBounds(a, b));
  MemberWH s(stream);
  HWY_DYNAMIC_DISPATCH(dWH)(&s, static_cast<size_t>(n), r, a, b);
  return QUO_OK;
}

extern "C" QUO_API int32_t __quosBRngWH(StreamState* stream, int32_t n, float* r, float a,
                                        float b) {
  if (n < 1) return QUO_OK;
  const QuietGuard guard(ArePlainBounds(a, b));
  MemberWH s(stream);
  HWY_DYNAMIC_DISPATCH(sWH)(&s, static_cast<size_t>(n), r, a, b);
  return QUO_OK;
}

// The states are computed in double, exactly: no flag but inexact can rise, in the quotients.
extern "C" QUO_API int32_t __quoiBRngWH(StreamState* stream, int32_t n, uint32_t* r) {
  if (n < 1) return QUO_OK;
  const QuietGuard guard(true);
  MemberWH s(stream);
  HWY_DYNAMIC_DISPATCH(iWH)(&s, static_cast<size_t>(n), r);
  return QUO_OK;
}

}  // namespace quo
#endif
