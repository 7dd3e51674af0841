// The inverse of the complementary error function far from its zero, by one element.
#ifndef PEX_CORE__HEAP_REAL_ERFINV_TAIL_H_
#define PEX_CORE__HEAP_REAL_ERFINV_TAIL_H_

namespace pex {

// hi + lo, |lo| at most half an ulp of hi.
struct TailSum {
  double hi, lo;
};

// erfcinv(q) and sqrt(2) erfcinv(q) for 0 < q <= 2^-20, subnormal q too, within 2^-58.
TailSum ErfcInvTail(double q);
TailSum NormInvTail(double q);

// s, or -s where `negative`, rounded once.
double RoundTail(TailSum s, bool negative);
float RoundTailToFloat(TailSum s, bool negative);

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_ERFINV_TAIL_H_
