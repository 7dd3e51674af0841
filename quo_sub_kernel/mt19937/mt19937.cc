// MT19937: the Mersenne twister of period 2^19937 - 1 and 623 dimensions (M. Matsumoto and T.
// Nishimura, ACM TOMACS 8 (1998) 3-30).
//
// The block is a whole number of vectors and is regenerated in place. Two vectors read across its
// end: the one whose middle words run from the old block into the new one, and the last one.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/mt19937/mt19937.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/mersenne-inl.h"
#include "quo_sub_kernel/_math/outputs.h"
#include "quo_sub_kernel/mt19937/mt19937.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

class SourceMT19937 {
 public:
  using State = StateMT19937;
  static constexpr size_t kMost = State::kN;

  explicit HWY_INLINE SourceMT19937(State& state) : mt_(state.mt), twist_(State::words().a) {}

  template <class Visit>
  HWY_INLINE const uint32_t* Next(size_t, Visit visit) {
    constexpr size_t kN = State::kN, kM = State::kM;
    // The vector whose first kOld middle words are the old block's last.
    constexpr size_t kSeam = (kN - kM) / kWordLanes * kWordLanes;
    constexpr size_t kOld = kN - kM - kSeam;
    static_assert(kN % kWordLanes == 0 && kOld < kWordLanes);
    HWY_UNROLL(2)
    for (size_t k = 0; k < kSeam; k += kWordLanes) Move(k, mt_ + k + 1, mt_ + k + kM, visit);
    uint32_t joined[kWordLanes];
    Join(mt_ + kN - kOld, kOld, joined);
    Move(kSeam, mt_ + kSeam + 1, joined, visit);
    size_t k = kSeam + kWordLanes;
    HWY_UNROLL(2)
    for (; k < kN - kWordLanes; k += kWordLanes) Move(k, mt_ + k + 1, mt_ + k + kM - kN, visit);
    Join(mt_ + k + 1, kWordLanes - 1, joined);
    Move(k, joined, mt_ + k + kM - kN, visit);
    return mt_;
  }
  HWY_INLINE void Leave(size_t) const {}

 private:
  // The vector of new words at k.
  template <class Visit>
  HWY_INLINE void Move(size_t k, const uint32_t* next, const uint32_t* middle, Visit visit) const {
    const WordTag d;
    const WordVec x = twist_(hn::LoadU(d, mt_ + k), hn::LoadU(d, next), hn::LoadU(d, middle));
    hn::StoreU(x, d, mt_ + k);
    visit(k, x);
  }
  // `count` words at the block's end, and then its start.
  HWY_INLINE void Join(const uint32_t* end, size_t count, uint32_t* joined) const {
    std::memcpy(joined, end, count * sizeof(*joined));
    std::memcpy(joined + count, mt_, (kWordLanes - count) * sizeof(*joined));
  }

  uint32_t* mt_;
  Twist<State> twist_;
};

void dMT19937(StateMT19937* state, size_t n, double* r, double a, double b) {
  GenerateDoubles<SourceMT19937>(*state, n, r, a, b);
}
void sMT19937(StateMT19937* state, size_t n, float* r, double a, double b) {
  GenerateFloats<SourceMT19937>(*state, n, r, a, b);
}
// In a copy that begins with a cache line, as a stream's block does not: its vectors lie across two
// lines each.
HWY_NOINLINE void PassOverMT19937(StateMT19937* state, size_t n) {
  alignas(64) StateMT19937 copy = *state;
  PassOver<SourceMT19937>(copy, n);
  *state = copy;
}
void iMT19937(StateMT19937* state, size_t n, uint32_t* r) {
  if (r == nullptr) return PassOverMT19937(state, n);
  Generate<SourceMT19937>(*state, n, r, TwisterIntegers());
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {
namespace {

StateMT19937* State(StreamState* stream) { return reinterpret_cast<StateMT19937*>(stream + 1); }

}  // namespace

extern "C" QUO_API int32_t __quoBRngMT19937InitStream(int32_t method, StreamState* stream,
                                                      int32_t n, const uint32_t* params) {
  return InitTwister(method, State(stream), n, params);
}

QUO_EXPORT_UNIFORMS(MT19937)
QUO_EXPORT_WORDS(MT19937)

}  // namespace quo
#endif
