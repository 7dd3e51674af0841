// e^x in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/exp/dexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/exp_tables.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/exp/exp_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdExp";

// Whether the high word of |x| is above `limit`: too large a number, an infinity or a NaN.
template <class D, class V>
HWY_INLINE MaskOf<D> HighWordAbove(D d, V x, int64_t limit) {
  const hn::RebindToSigned<D> di;
  const auto bits = hn::BitCast(di, hn::Abs(x));
  return hn::RebindMask(d, hn::Gt(bits, hn::Set(di, (limit << 32) | 0xFFFFFFFF)));
}

template <class D, class V>
HWY_INLINE V LookUp(D d, const double* table, hn::Vec<hn::RebindToSigned<D>> index) {
  return hn::GatherIndex(d, table, index);
}

struct dExpCommon : Kernel<double> {
  static constexpr uint32_t kStrayFlags = _MM_EXCEPT_UNDERFLOW | _MM_EXCEPT_DENORM;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return HighWordAbove(d, x, 0x4086232A);  // |x| >= 708.396
  }
  static HWY_INLINE int Rare(double x, double* r) { return dExpScalar(x, r); }
};

// 2^(k/1024) from a table, times a cubic in |r| <= ln2/2048.
struct dExpLA : dExpCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const hn::RebindToSigned<D> di;
    const V shifter = hn::Set(d, 0x1.8p52);
    const V kf = hn::Add(hn::Mul(x, hn::Set(d, 0x1.71547652b82fep+10)), shifter);
    const V kd = hn::Sub(kf, shifter);
    const auto k = hn::BitCast(di, kf);
    const V t = hn::GatherIndex(d, dExp_HA_Table, hn::And(k, hn::Set(di, 1023)));
    const auto exponent =
        hn::And(hn::ShiftLeft<42>(k), hn::Set(di, static_cast<int64_t>(0xFFF0000000000000)));
    const V s = hn::BitCast(d, hn::Add(hn::BitCast(di, t), exponent));
    const V r = hn::Sub(hn::Sub(x, hn::Mul(kd, hn::Set(d, 0x1.62e42fecp-11))),
                        hn::Mul(kd, hn::Set(d, 0x1.d1cf79abc9e3bp-42)));
    const V cubic = hn::Add(hn::Mul(hn::Set(d, 0x1.5555555555556p-3), r),
                            hn::Set(d, 0x1.0000001ebfbep-1));
    const V p = hn::Add(hn::Mul(hn::Mul(cubic, r), r), r);
    return hn::Add(hn::Mul(s, p), s);
  }
};

// 2^(k/128) from a table, times 1 + r + r^2/2, |r| <= ln2/256.
struct dExpEP : dExpCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const hn::RebindToSigned<D> di;
    const V shifter = hn::Set(d, 0x1.8p52);
    const V kf = hn::Add(hn::Mul(x, hn::Set(d, 184.6649652337873)), shifter);
    const V kd = hn::Sub(kf, shifter);
    const auto k = hn::BitCast(di, kf);
    const V t = hn::GatherIndex(d, dExp_EP_Table, hn::And(k, hn::Set(di, 127)));
    const auto exponent =
        hn::And(hn::ShiftLeft<45>(k), hn::Set(di, static_cast<int64_t>(0xFFF0000000000000)));
    const V s = hn::BitCast(d, hn::Add(hn::BitCast(di, t), exponent));
    const V r = hn::Sub(x, hn::Mul(kd, hn::Set(d, 0.0054152123481245725)));
    const V p = hn::Add(hn::Mul(hn::Mul(hn::Set(d, 0.5), r), r), r);
    return hn::Add(hn::Mul(s, p), s);
  }
};

PEX_UNARY(double, dExp_50, dExpLA)
PEX_UNARY(double, dExp_26, dExpEP)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dExp_50)
PEX_EXPORT_UNARY(double, dExp_26)
}  // namespace pex
#endif
