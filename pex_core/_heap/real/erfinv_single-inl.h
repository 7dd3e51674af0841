// The inverse error functions in float, LA and EP: of x = erf(y) and q = 1 - |x| >= 2^-31, y by the
// polynomials of erfinv_single_table.h. Below, by ErfInvTail in double. Largest errors: ErfInv
// 1.50, ErfcInv 1.50, CdfNormInv 1.36 ulp; EP 11.26 bits.

#include "hwy/highway.h"
#include "pex_core/_heap/real/erfinv-inl.h"
#include "pex_core/_heap/real/erfinv_single_tables.h"
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERFINV_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERFINV_SINGLE_INL_H_
#undef PEX_CORE__HEAP_REAL_ERFINV_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERFINV_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Columns i of the rows of q, whose bits are given. On AVX-512 the columns are in
// registers; elsewhere whole rows are loaded and transposed, but for NearRows.
#if HWY_TARGET == HWY_AVX3
template <class D, size_t kColumns>
struct OctaveRows {
  template <class Table>
  HWY_INLINE void Load(D, const Table& table, BitsOf<D> q) {
    columns_ = table.columns;
    j_ = hn::ShiftRight<23>(q);
  }
  // After(p): the next column is looked up when p is there.
  HWY_INLINE VecOf<D> Column(size_t i) const {
    return VecOf<D>{_mm512_permutex2var_ps(_mm512_load_ps(columns_[i]), j_.raw,
                                           _mm512_load_ps(columns_[i] + 16))};
  }
  HWY_INLINE void After(VecOf<D> p) { LookUpAfter(p, j_); }
  const float (*columns_)[32];
  BitsOf<D> j_;
};
#else
template <class D, size_t kColumns>
struct OctaveRows {
  static_assert(kColumns % 4 == 0);
  template <class Table>
  HWY_INLINE void Load(D d, const Table& table, BitsOf<D> q) {
    HWY_ALIGN int32_t at[hn::MaxLanes(D())];
    hn::Store(hn::And(hn::ShiftRight<23>(q), SetBits(d, 31)), hn::RebindToSigned<D>(), at);
    asm("" : "+m"(at));
    for (size_t i = 0; i < kColumns; i += 4) {
      const auto four = [&](size_t lane) HWY_ATTR {
        const auto row = [&](size_t k) HWY_ATTR { return _mm_load_ps(table.rows[at[k]] + i); };
#if HWY_TARGET == HWY_AVX2
        return _mm256_insertf128_ps(_mm256_castps128_ps256(row(lane)), row(lane + 4), 1);
#else
        return row(lane);
#endif
      };
      const VecOf<D> a{four(0)}, b{four(1)}, c{four(2)}, e{four(3)};
      const auto low = [d](VecOf<D> u, VecOf<D> v) HWY_ATTR {
        return hn::BitCast(hn::Repartition<double, D>(), hn::InterleaveLower(d, u, v));
      };
      const auto high = [d](VecOf<D> u, VecOf<D> v) HWY_ATTR {
        return hn::BitCast(hn::Repartition<double, D>(), hn::InterleaveUpper(d, u, v));
      };
      const hn::Repartition<double, D> dd;
      const auto ab = low(a, b), ce = low(c, e), ab2 = high(a, b), ce2 = high(c, e);
      column_[i] = hn::BitCast(d, hn::InterleaveLower(dd, ab, ce));
      column_[i + 1] = hn::BitCast(d, hn::InterleaveUpper(dd, ab, ce));
      column_[i + 2] = hn::BitCast(d, hn::InterleaveLower(dd, ab2, ce2));
      column_[i + 3] = hn::BitCast(d, hn::InterleaveUpper(dd, ab2, ce2));
    }
  }
  HWY_INLINE VecOf<D> Column(size_t i) const { return column_[i]; }
  HWY_INLINE void After(VecOf<D>) {}
  VecOf<D> column_[kColumns];
};
#endif

#if HWY_TARGET == HWY_AVX2
// The upper 16 rows, which q >= 2^-15 has, from registers.
template <class D, size_t kColumns>
struct NearRows {
  template <class Table>
  HWY_INLINE void Load(D, const Table& table, BitsOf<D> q) {
    columns_ = table.upper;
    j_ = hn::ShiftRight<23>(q);
    choice_ = hn::ShiftRight<31>(hn::ShiftLeft<31 - 26>(q));  // by bit 3 of the row
  }
  HWY_INLINE VecOf<D> Column(size_t i) const {
    const auto half = reinterpret_cast<const __m256i*>(columns_[i]);
    const __m256i lower = _mm256_permutevar8x32_epi32(_mm256_load_si256(half), j_.raw);
    const __m256i change = _mm256_permutevar8x32_epi32(_mm256_load_si256(half + 1), j_.raw);
    return FromBits(D(), BitsOf<D>{_mm256_xor_si256(lower, _mm256_and_si256(change, choice_.raw))});
  }
  HWY_INLINE void After(VecOf<D> p) { LookUpAfter(p, j_); }
  const uint32_t (*columns_)[16];
  BitsOf<D> j_, choice_;
};
#endif

template <template <class, size_t> class Rows, class Table, class D, class V, size_t K>
HWY_INLINE void ErfInvOctave(D d, const ErfInvArgument<V> (&u)[K], const Table& table, V (&y)[K]) {
  Rows<D, Table::kColumns> rows[K];
  V t[K];
  for (size_t k = 0; k < K; ++k) {
    const auto bits = Bits(d, u[k].q);
    rows[k].Load(d, table, bits);
    const auto m = hn::Or(hn::And(bits, SetBits(d, 0x7FFFFF)), SetBits(d, BitsOfNumber(1.0f)));
    t[k] = hn::Sub(FromBits(d, m), hn::Set(d, 1.5f));
    y[k] = hn::Set(d, table.leading);
  }
  for (size_t i = Table::kDegree; i-- > 0;) {
    for (size_t k = 0; k < K; ++k) {
      y[k] = hn::Mul(y[k], t[k]);
      rows[k].After(y[k]);
      y[k] = hn::Add(y[k], rows[k].Column(i));
    }
  }
  for (size_t k = 0; k < K; ++k) {
    if constexpr (Table::kLA) {
      const auto central = hn::Ge(u[k].q, hn::Set(d, 0.5f));
      const V unit = hn::CopySignToAbs(hn::Set(d, 1.0f), u[k].x);
#if HWY_TARGET == HWY_AVX3
      y[k] = hn::Mul(hn::IfThenElse(central, u[k].x, unit), y[k]);
      y[k] = hn::IfThenElse(central, hn::Add(y[k], u[k].x), y[k]);
#else
      // The same, for no y is 0 where nothing is added to it.
      const V x = hn::IfThenElseZero(central, u[k].x);
      y[k] = hn::Add(hn::Mul(hn::Or(x, hn::IfThenZeroElse(central, unit)), y[k]), x);
#endif
    } else {
      y[k] = hn::Mul(u[k].x, y[k]);
    }
  }
}

// Function is one of erfinv-inl.h.
template <class Function, bool kLA>
constexpr const auto& ErfInvSingleTable() {
  if constexpr (kLA) {
    return Function::kSingleLA;
  } else {
    return Function::kSingleEP;
  }
}

template <class Function, bool kLA, int (*kRare)(const float*, float*)>
struct sErfInvWholeKernel : Kernel<float> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 4 : 2;
  static constexpr float kHarmless = 0.5f;
  using Rarity = Function::template Rarity<float>;
  static HWY_INLINE int Rare(float x, float* r) { return kRare(&x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    ErfInvArgument<V> u[K];
    V a[K];
    for (size_t k = 0; k < K; ++k) {
      a[k] = x[k];
      u[k] = Function::Split(d, x[k]);
    }
    ErfInvOctave<OctaveRows>(d, u, ErfInvSingleTable<Function, kLA>(), out);
    if constexpr (Function::kSingleTail) {
      V least = u[0].q;
      for (size_t k = 1; k < K; ++k) least = hn::Min(least, u[k].q);
      const auto tail = hn::Lt(least, hn::Set(d, kErfInvSingleLeast));
      if (!hn::AllFalse(d, tail)) [[unlikely]] {
        for (size_t k = 0; k < K; ++k) out[k] = Tail(d, a[k], out[k]);
      }
    }
  }

  // y = out where the table serves.
  template <class D, class V>
  static HWY_NOINLINE V Tail(D d, V a, V out) {
    const hn::Half<D> half;
    hn::Rebind<double, decltype(half)> wide;
    const auto part = [&](auto a_half, auto out_half) HWY_ATTR {
      const auto u = Function::Split(wide, hn::PromoteTo(wide, a_half));
      const auto serves = hn::Ge(u.q, hn::Set(wide, kErfInvSingleLeast));
      using W = VecOf<decltype(wide)>;
      const Pair<W> none = {hn::Zero(wide), hn::Zero(wide)};
      const W tail = ErfInvTail<Function>(wide, u, none).hi;
      return hn::DemoteTo(half, hn::IfThenElse(serves, hn::PromoteTo(wide, out_half), tail));
    };
    return hn::Combine(d, part(hn::UpperHalf(half, a), hn::UpperHalf(half, out)),
                       part(hn::LowerHalf(half, a), hn::LowerHalf(half, out)));
  }
};

#if HWY_TARGET == HWY_AVX2
template <class Function, bool kLA, int (*kRare)(const float*, float*)>
struct sErfInvKernel : Kernel<float> {
  static constexpr int kUnroll = 4;
  static constexpr float kHarmless = 0.5f;
  using Wide = sErfInvWholeKernel<Function, kLA, kRare>;
  using Rarity = Function::FineRarity;  // leaves q >= 2^-15
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    ErfInvArgument<V> u[K];
    for (size_t k = 0; k < K; ++k) u[k] = Function::Split(d, x[k]);
    ErfInvOctave<NearRows>(d, u, ErfInvSingleTable<Function, kLA>(), out);
  }
};
#else
template <class Function, bool kLA, int (*kRare)(const float*, float*)>
using sErfInvKernel = sErfInvWholeKernel<Function, kLA, kRare>;
#endif

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFINV_SINGLE_INL_H_
