#include "tests/kernel/driver_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tests/kernel/driver_kernels.cc"
#include "hwy/foreach_target.h"
//
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vTest";

template <class D, class V>
HWY_INLINE MaskOf<D> IsRareRoot(D d, V x) {
  // Negative numbers have the largest bits: not [0, 100) nor a NaN's.
  const hn::RebindToUnsigned<D> du;
  const auto limit = hn::BitCast(du, hn::Set(d, 100));
  return hn::RebindMask(d, hn::Not(hn::Lt(hn::BitCast(du, x), limit)));
}

template <class V>
HWY_INLINE V MainRoot(V x) {
  return hn::Add(hn::Sqrt(x), hn::Sub(x, x));
}

template <typename T>
struct Root : Kernel<T> {
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return IsRareRoot(d, x);
  }
  template <class D, class V>
  static HWY_INLINE V Main(D, V x) {
    return MainRoot(x);
  }
  static int Rare(T x, T* r) { return RareRoot(x, r); }
};

// Single precision computed in double, one vector per group.
struct WideRoot : Kernel<float, double> {
  static constexpr int kUnroll = 1;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return IsRareRoot(d, x);
  }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return hn::DemoteTo(d, MainRoot(hn::PromoteTo(hn::Rebind<double, D>(), x)));
  }
  static int Rare(float x, float* r) { return RareRoot(x, r); }
};

template <typename T>
struct Quotient : Kernel<T> {
  static constexpr int kArguments = 2;
  static constexpr int kUnroll = 2;
  static constexpr T kHarmless = T(2);
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x, V y) {
    return hn::Or(hn::Or(IsRareRoot(d, x), IsRareRoot(d, y)), hn::Eq(y, hn::Zero(d)));
  }
  template <class D, class V>
  static HWY_INLINE V Main(D, V x, V y) {
    return hn::Div(x, y);
  }
  static int Rare(T x, T y, T* r) { return RareQuotient(x, y, r); }
};

// The same with a test of its own for groups.
template <typename T>
struct TriedQuotient : Quotient<T> {
  template <class D, class V, size_t K>
  static HWY_INLINE bool TryGroup(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
    auto rare = Quotient<T>::IsRare(d, x[0], y[0]);
    for (size_t k = 1; k < K; ++k) rare = hn::Or(rare, Quotient<T>::IsRare(d, x[k], y[k]));
    if (!hn::AllFalse(d, rare)) return false;
    for (size_t k = 0; k < K; ++k) r[k] = hn::Div(x[k], y[k]);
    return true;
  }
};

template <typename T>
struct RootAndInverse : Kernel<T> {
  static constexpr int kResults = 2;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return hn::Or(IsRareRoot(d, x), hn::Eq(x, hn::Zero(d)));
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, V x, V& r1, V& r2) {
    r1 = hn::Sqrt(x);
    r2 = hn::Div(hn::Set(d, 1), x);
  }
  static int Rare(T x, T* r1, T* r2) { return RarePair(x, r1, r2); }
};

PEX_UNARY(double, dTestRoot, Root<double>)
PEX_UNARY(float, sTestRoot, Root<float>)
PEX_UNARY(float, sTestWideRoot, WideRoot)
PEX_BINARY(double, dTestQuotient, Quotient<double>)
PEX_BINARY(float, sTestQuotient, Quotient<float>)
PEX_BINARY(double, dTestTriedQuotient, TriedQuotient<double>)
PEX_BINARY(float, sTestTriedQuotient, TriedQuotient<float>)
PEX_UNARY_SCALAR(double, dTestQuotientBy, Quotient<double>)
PEX_UNARY_SCALAR(float, sTestQuotientBy, Quotient<float>)
PEX_UNARY_TWO(double, dTestPair, RootAndInverse<double>)
PEX_UNARY_TWO(float, sTestPair, RootAndInverse<float>)

int64_t Target() { return HWY_TARGET; }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dTestRoot)
PEX_EXPORT_UNARY(float, sTestRoot)
PEX_EXPORT_UNARY(float, sTestWideRoot)
PEX_EXPORT_BINARY(double, dTestQuotient)
PEX_EXPORT_BINARY(float, sTestQuotient)
PEX_EXPORT_BINARY(double, dTestTriedQuotient)
PEX_EXPORT_BINARY(float, sTestTriedQuotient)
PEX_EXPORT_UNARY_SCALAR(double, dTestQuotientBy)
PEX_EXPORT_UNARY_SCALAR(float, sTestQuotientBy)
PEX_EXPORT_UNARY_TWO(double, dTestPair)
PEX_EXPORT_UNARY_TWO(float, sTestPair)
HWY_EXPORT(Target);
extern "C" int64_t TestTarget() { return HWY_DYNAMIC_DISPATCH(Target)(); }
}  // namespace pex
#endif
