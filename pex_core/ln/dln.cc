// ln(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/ln/dln.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/ln/ln_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdLn";

struct dLnCommon : Kernel<double> {
  using Rarity = RareOutside<double, 0x00100000, 0x7FEFFFFF>;  // not positive, normal and finite
  static HWY_INLINE int Rare(double x, double* r) { return dLnScalar(x, r); }
};

struct dLnEP : dLnCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = LogReduce<NaturalLog>(d, x);
    return LogPlain<NaturalLog>(d, u, hn::Mul(hn::Sub(u.m, u.row.a), u.row.factor), kLnEP);
  }
};

// LA and HA differ in the degree of the polynomial. Without the product's error LA would pass 1 ulp.
template <class D, class V, size_t N>
HWY_INLINE V dLnInFull(D d, V x, const double (&c)[N]) {
  const auto u = LogReduce<NaturalLog>(d, x);
  const auto p = TwoProduct(d, hn::Sub(u.m, u.row.a), u.row.factor);
  return LogSum<NaturalLog>(d, u, p.hi, p.lo, c);
}

struct dLnLA : dLnCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return dLnInFull(d, x, kLnLA);
  }
};

struct dLnHA : dLnCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return dLnInFull(d, x, kLnHA);
  }
};

PEX_UNARY(double, dLn_26, dLnEP)
PEX_UNARY(double, dLn_50, dLnLA)
PEX_UNARY(double, dLn_HA, dLnHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dLn_26)
PEX_EXPORT_UNARY(double, dLn_50)
PEX_EXPORT_UNARY(double, dLn_HA)
}  // namespace pex
#endif
