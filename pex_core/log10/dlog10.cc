// log10(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/log10/dlog10.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/ln/ln_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdLog10";

struct dLog10Common : Kernel<double> {
  using Rarity = RareOutside<double, 0x00100000, 0x7FEFFFFF>;  // not positive, normal and finite
  static HWY_INLINE int Rare(double x, double* r) { return dLog10Scalar(x, r); }
};

struct dLog10EP : dLog10Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = LogReduce<DecimalLog>(d, x);
    return LogPlain<DecimalLog>(d, u, hn::Mul(hn::Sub(u.m, u.row.a), u.row.factor), kLog10EP);
  }
};

struct dLog10LA : dLog10Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = LogReduce<DecimalLog>(d, x);
    return LogPlain<DecimalLog>(d, u, hn::Mul(hn::Sub(u.m, u.row.a), u.row.factor), kLog10LA);
  }
};

struct dLog10HA : dLog10Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = LogReduce<DecimalLog>(d, x);
    const V t = hn::Sub(u.m, u.row.a);
    const auto p = TwoProduct(d, t, u.row.factor);
    return LogSum<DecimalLog>(d, u, p.hi, hn::Add(p.lo, hn::Mul(t, u.row.rest)), kLog10HA);
  }
};

PEX_UNARY(double, dLog10_26, dLog10EP)
PEX_UNARY(double, dLog10_50, dLog10LA)
PEX_UNARY(double, dLog10_HA, dLog10HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dLog10_26)
PEX_EXPORT_UNARY(double, dLog10_50)
PEX_EXPORT_UNARY(double, dLog10_HA)
}  // namespace pex
#endif
