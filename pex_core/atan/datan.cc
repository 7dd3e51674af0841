// atan(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atan/datan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/atan/atan_fine-inl.h"
#include "pex_core/atan/atan_plain-inl.h"
#include "pex_core/atan/atan_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAtan";

template <class D, size_t kVectors>
using dAtanPartEP = AtanPlainPart<kAtanPlainEP, D, kVectors>;
struct dAtanEP : AtanPlain<double, dAtanPartEP> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
#if HWY_TARGET == HWY_AVX3
    if constexpr (K >= 4) {
      if (__builtin_cpu_is("intel")) {  // as in Quotients
        AtanMixedPart<kAtanPlainEP, D, 1> parts[K];
        return SomeInTurn<3>(parts, x, r);
      }
    }
#endif
    AtanPlain<double, dAtanPartEP>::MainGroup(d, x, r);
  }
};

template <class D, size_t kVectors>
using dAtanPartLA = AtanPlainPart<kAtanPlainLA, D, kVectors>;
using dAtanLA = AtanPlain<double, dAtanPartLA>;

using dAtanHA = AtanPlain<double, AtanFinePart>;

PEX_UNARY(double, dAtan_26, dAtanEP)
PEX_UNARY(double, dAtan_50, dAtanLA)
PEX_UNARY(double, dAtan_HA, dAtanHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dAtan_26)
PEX_EXPORT_UNARY(double, dAtan_50)
PEX_EXPORT_UNARY(double, dAtan_HA)
}  // namespace pex
#endif
