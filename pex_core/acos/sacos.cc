// acos(x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/acos/sacos.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/asin-inl.h"
#include "pex_core/_heap/real/asin_short-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/asin/asin_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAcos";

template <AsinDomain kDomain>
struct sAcosCommon : AsinRareGroups<float, kDomain, AsinGroups<float>> {
  static HWY_INLINE int Rare(float x, float* r) { return AsinRare(x, r); }
};

// EP: acos(|x|) = sqrt(1 - |x|) p(|x|), and half of pi as a float for |x| below the
// common arguments.
template <auto& c, AsinDomain kDomain, class D, size_t kVectors>
struct AcosShortPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = kVectors;
  V root[kVectors], p[kVectors];

  // As in PlainAsinPart.
  static constexpr size_t kReduceKinds = 2;
  static constexpr bool kMixed =
      HWY_TARGET == HWY_AVX3 && kVectors == 2 && kDomain == AsinDomain::kCommon;
  template <size_t kKind>
  HWY_INLINE void Reduce(const V* x) {
    const D d;
    for (size_t k = 0; k < kVectors; ++k) {
      const V ax = hn::Abs(x[k]);
      const auto usual = hn::Ge(ax, hn::Set(d, 0x1p-32f));
      const V a = kDomain == AsinDomain::kWhole ? Selected(hn::IfThenElseZero(usual, ax)) : ax;
      p[k] = Horner(d, a, c);
      if (kDomain == AsinDomain::kWhole) {
        p[k] = hn::IfThenElse(usual, p[k], hn::Set(d, static_cast<float>(kPi / 2)));
      }
      root[k] = hn::Sub(Whole<1>(d), a);
      if (kMixed && kKind == 0 && k == 0) {
        root[k] = RootByEstimate(d, root[k]);
      } else {
        root[k] = hn::Sqrt(root[k]);
      }
    }
    EndPart(root);
  }
  HWY_INLINE void Evaluate() {}
  HWY_INLINE void Result(const V* x, V* r) const {
    const D d;
    const V pi = Whole<kPi>(d);
    for (size_t k = 0; k < kVectors; ++k) {
      const V y = hn::Mul(root[k], p[k]);
#if HWY_TARGET == HWY_AVX3
      r[k] = SubFromWhere(d, hn::MaskFromVec(x[k]), pi, y);
#else
      const V base = hn::And(pi, FromBits(d, hn::ShiftRight<31>(Bits(d, x[k]))));
      r[k] = hn::Add(base, hn::Xor(y, hn::And(x[k], hn::SignBit(d))));
#endif
    }
  }
};

template <AsinDomain kDomain>
struct sAcosForEP : sAcosCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainInTurn<AcosShortPart, kAcosShortSingleEP, kDomain, sAcosCommon<kDomain>::kTogether>(d, x,
                                                                                             r);
  }
};
using sAcosEP = AsinKernel<sAcosForEP>;

template <AsinDomain kDomain>
struct sAcosForLA : sAcosCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainInTurn<PlainAcos, kAsinSingleLA, kDomain, sAcosCommon<kDomain>::kTogether>(d, x, r);
  }
};
using sAcosLA = AsinKernel<sAcosForLA>;

// Correctly rounded for all floats.
// The double above pi/2 instead of the one below, which is nearer: with that one 0x1.110b46p-26
// and 0x1.04c444p-12 come out in the middle of two floats and go to the even one, the wrong one.
template <auto& c, AsinDomain kDomain, class D, size_t kVectors>
struct PlainAcosHA : PlainAcosTo<c, kDomain, D, kVectors, kPi / 2 + 0x1p-52> {};

struct sAcosPaths {
  template <auto& c, AsinDomain kDomain, class D, size_t kVectors>
  using Part = PlainAcosHA<c, kDomain, D, kVectors>;
#if HWY_TARGET == HWY_AVX3
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    return sAcosShort(d, x, doubt);
  }
#endif
};
using sAcosHA = sAsinHAKernel<sAcosPaths>;

PEX_UNARY(float, sAcos_11, sAcosEP)
PEX_UNARY(float, sAcos_21, sAcosLA)
PEX_UNARY(float, sAcos_HA, sAcosHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sAcos_11)
PEX_EXPORT_UNARY(float, sAcos_21)
PEX_EXPORT_UNARY(float, sAcos_HA)
}  // namespace pex
#endif
