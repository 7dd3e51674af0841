// MT2203: 1024 Mersenne twisters of period 2^2203 - 1, for independent parallel streams (M.
// Matsumoto and T. Nishimura, "Dynamic Creation of Pseudorandom Number Generators", 2000).
//
// The block of 69 words is no whole number of vectors, so the words are regenerated in one line,
// across the blocks' ends, in pieces of as many blocks as a vector has words. There the words 69,
// 68 and 35 places back stand in two vectors next to each other each, and a shift joins them: loads
// across vectors just stored would have to wait for both. On AVX2 the words 69 and 68 places back
// are eight vectors old and in memory by then.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/mt2203/mt2203.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/mersenne-inl.h"
#include "quo_sub_kernel/_math/outputs.h"
#include "quo_sub_kernel/mt2203/mt2203.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

class SourceMT2203 {
 public:
  using State = StateMT2203;
  static constexpr size_t kMost = State::kN * kWordLanes;

  explicit HWY_INLINE SourceMT2203(State& state) : state_(state), twist_(state.a) {
    std::memcpy(line_ + kStart - State::kN, state.mt, sizeof(state.mt));
  }
  template <class Visit>
  HWY_INLINE const uint32_t* Next(size_t n, Visit visit) {
    const WordTag d;
    for (size_t k = 0; made_ != 0 && k < kStart; k += kWordLanes) {
      hn::Store(hn::Load(d, line_ + kMost + k), d, line_ + k);
    }
    const size_t made = (n + State::kN - 1) / State::kN * State::kN;  // whole blocks
    const Twist<State> twist = twist_;
    HWY_UNROLL(3)
    for (size_t k = 0; k < made; k += kWordLanes) {
      uint32_t* const end = line_ + kStart + k;
#if HWY_TARGET == HWY_AVX2
      const WordVec x = twist(hn::LoadU(d, end - State::kN), hn::LoadU(d, end - State::kN + 1),
                              Back<State::kN - State::kM>(end));
#else
      const WordVec x =
          twist(Back<State::kN>(end), Back<State::kN - 1>(end), Back<State::kN - State::kM>(end));
#endif
      hn::Store(x, d, end);
      visit(k, x);
    }
    made_ = made;
    return line_ + kStart;
  }
  HWY_INLINE void Leave(size_t) const {
    std::memcpy(state_.mt, line_ + kStart + made_ - State::kN, sizeof(state_.mt));
  }

 private:
  // Words in front of the first new one: those of the block before, in whole vectors.
  static constexpr size_t kStart = (State::kN + kWordLanes - 1) / kWordLanes * kWordLanes;

  // The vector of words from kDistance before `end` on, where `end` is aligned.
  template <size_t kDistance>
  static HWY_INLINE WordVec Back(const uint32_t* end) {
    constexpr size_t kVectors = (kDistance + kWordLanes - 1) / kWordLanes;
    const uint32_t* const low = end - kVectors * kWordLanes;
    const WordTag d;
    return Joined<kVectors * kWordLanes - kDistance>(hn::Load(d, low),
                                                     hn::Load(d, low + kWordLanes));
  }
  // The last words of `low`, less the first kSkip, and the first kSkip of `high`.
  template <size_t kSkip>
  static HWY_INLINE WordVec Joined(WordVec low, WordVec high) {
#if HWY_TARGET == HWY_AVX3
    return WordVec{_mm512_alignr_epi32(high.raw, low.raw, kSkip)};
#else
    const hn::Repartition<uint8_t, WordTag> bytes;
    const WordVec between =
        kWordLanes == 4 ? high : hn::ConcatLowerUpper(WordTag(), high, low);  // from word 4 on
    if constexpr (kSkip == 4) {
      return between;
    } else {
      const WordVec from = kSkip < 4 ? low : between, to = kSkip < 4 ? between : high;
      return hn::BitCast(WordTag(), hn::CombineShiftRightBytes<kSkip % 4 * 4>(
                                        bytes, hn::BitCast(bytes, to), hn::BitCast(bytes, from)));
    }
#endif
  }

  State& state_;
  Twist<State> twist_;
  size_t made_ = 0;
  HWY_ALIGN uint32_t line_[kStart + kMost];
};

void dMT2203(StateMT2203* state, size_t n, double* r, double a, double b) {
  GenerateDoubles<SourceMT2203>(*state, n, r, a, b);
}
void sMT2203(StateMT2203* state, size_t n, float* r, double a, double b) {
  GenerateFloats<SourceMT2203>(*state, n, r, a, b);
}
void iMT2203(StateMT2203* state, size_t n, uint32_t* r) {
  if (r == nullptr) {
    PassOver<SourceMT2203>(*state, n);
  } else {
    Generate<SourceMT2203>(*state, n, r, TwisterIntegers());
  }
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {
namespace {

StateMT2203* State(StreamState* stream) { return reinterpret_cast<StateMT2203*>(stream + 1); }

}  // namespace

// A stream whose identifier names no member, as none that passed validation does, is member 0.
extern "C" QUO_API int32_t __quoBRngMT2203InitStream(int32_t method, StreamState* stream, int32_t n,
                                                     const uint32_t* params) {
  StateMT2203* const s = State(stream);
  if (method == QUO_INIT_STANDARD) {
    const size_t member = stream->id & 0xFFFFF;
    const Mt2203Row& row = _quo_mt2203_table[member < std::size(_quo_mt2203_table) ? member : 0];
    s->a = row.a;
    s->b = row.b;
    s->c = row.c;
  }
  return InitTwister(method, s, n, params);
}

QUO_EXPORT_UNIFORMS(MT2203)
QUO_EXPORT_WORDS(MT2203)

}  // namespace quo
#endif
