// Sine, cosine and tangent of one float, in double precision from a table: x = j pi/32 + y with
// |y| <= pi/64, and sin x = sin c + (cos c sin y + sin c (cos y - 1)) for c = j pi/32.
// The relative error before the rounding to single precision is a few 2^-53, so that hardly a
// result is not the correctly rounded one: 0.5000001 ulp.
//
// Each entry has a copy of the computation of its own.
#ifndef PEX_CORE__HEAP_REAL_TRIG_SINGLE_ELEMENT_H_
#define PEX_CORE__HEAP_REAL_TRIG_SINGLE_ELEMENT_H_

#include <bit>
#include <cmath>
#include <cstdint>

#include "pex_core/_heap/real/trig_single_tables.h"
#include "pex_core/_kernel/control.h"
#include "pex_core/errors/pex_errors.h"
#include "pexquo/pex.h"

#define PEX_ALWAYS_INLINE inline __attribute__((always_inline))

namespace pex {

// |y| <= pi/64, and the table's row j, of which the lowest six bits count.
struct Element {
  double y;
  unsigned j;
};

// x for |x| < 2^17 is left to the table's steps; a larger one is reduced by pi/2 first, multiplied
// by the part of 1/pi that its exponent asks for. The first two products are exact.
PEX_ALWAYS_INLINE Element ReduceElement(float x) {
  constexpr double kShifter = 0x1.8p52;  // its sum with an integer ends in that integer
  const auto integer = [](double shifted) {
    return static_cast<unsigned>(std::bit_cast<uint64_t>(shifted));
  };
  double rest = x;
  unsigned turns = 0;
  if (std::fabs(x) >= 0x1p17f) {
    const uint32_t above_one = std::bit_cast<uint32_t>(x) - 0x3F800000;
    const double* row = kInversePiRows[above_one >> 26 & 15];
    const double scaled = 2 * double{std::bit_cast<float>((above_one & 0x83FFFFFF) + 0x3F800000)};
    const double high = scaled * row[0], middle = scaled * row[1], low = scaled * row[2];
    const double k1 = high + kShifter;
    const double fraction = high - (k1 - kShifter);
    const double k2 = (fraction + middle) + kShifter;
    rest = (((fraction - (k2 - kShifter)) + middle) + low) * 0x1.921fb54442d18p+0;
    turns = integer(k1) + integer(k2);
  }
  const double shifted = rest * 0x1.45f306dc9c883p+3 + kShifter;  // 32/pi
  const double k = shifted - kShifter;
  // pi/32 in three parts; k times the first and second is exact.
  const double y =
      ((rest - k * 0x1.921fb544p-4) - k * 0x1.0b4611a6p-38) - k * 0x1.3198a2e037073p-73;
  return {y, 16 * turns + integer(shifted)};
}

struct SineCosine {
  double sine, cosine;
};

PEX_ALWAYS_INLINE SineCosine SineCosineOf(Element e) {
  const double s = e.y * e.y;
  const double sin_y =
      e.y +
      e.y * s * (-0x1.5555555555555p-3 + s * (0x1.1111111111111p-7 - s * 0x1.a01a01a01a01ap-13));
  const double cos_y_less_1 =
      s * (-0.5 +
           s * (0x1.5555555555555p-5 + s * (-0x1.6c16c16c16c17p-10 + s * 0x1.a01a01a01a01ap-16)));
  const double sin_c = kSineOf32nds[e.j & 63], cos_c = kSineOf32nds[(e.j + 16) & 63];
  return {sin_c + (cos_c * sin_y + sin_c * cos_y_less_1),
          cos_c + (cos_c * cos_y_less_1 - sin_c * sin_y)};
}

// An infinity gives NaN, reported by the caller, a NaN itself; a tiny number is its own sine and
// tangent, and its cosine is 1.
enum class ElementKind { kOrdinary, kTiny, kNotFinite };

PEX_ALWAYS_INLINE ElementKind KindOf(float x) {
  const uint32_t magnitude = std::bit_cast<uint32_t>(x) & 0x7FFFFFFF;
  if (magnitude >= 0x7F800000) return ElementKind::kNotFinite;
  return magnitude < 0x31800000 ? ElementKind::kTiny : ElementKind::kOrdinary;  // 2^-28
}

struct ElementSine {
  static PEX_ALWAYS_INLINE float Tiny(float x) { return x; }
  static PEX_ALWAYS_INLINE double Of(SineCosine v) { return v.sine; }
};
struct ElementCosine {
  static PEX_ALWAYS_INLINE float Tiny(float) { return 1; }
  static PEX_ALWAYS_INLINE double Of(SineCosine v) { return v.cosine; }
};
struct ElementTangent {
  static PEX_ALWAYS_INLINE float Tiny(float x) { return x; }
  static PEX_ALWAYS_INLINE double Of(SineCosine v) { return v.sine / v.cosine; }
};

// x - x, carried out: NaN, raising invalid for an infinity.
PEX_ALWAYS_INLINE float Difference(float x) {
  const volatile float same = x;
  return same - same;
}

template <class Function>
PEX_ALWAYS_INLINE void ComputeElement(int32_t i, const float* a, float* r, const char* name) {
  const float x = a[i];
  switch (KindOf(x)) {
    case ElementKind::kTiny:
      r[i] = Function::Tiny(x);
      return;
    case ElementKind::kOrdinary:
      r[i] = static_cast<float>(Function::Of(SineCosineOf(ReduceElement(x))));
      return;
    case ElementKind::kNotFinite:
      r[i] = Difference(x);
      if (!std::isnan(x)) ReportError<float>(PEX_STATUS_DOMAIN, i, a, {x, x, r + i, r + i}, name);
  }
}

PEX_ALWAYS_INLINE void ComputeElement(int32_t i, const float* a, float* rsin, float* rcos,
                                      const char* name) {
  const float x = a[i];
  switch (KindOf(x)) {
    case ElementKind::kTiny:
      rsin[i] = ElementSine::Tiny(x);
      rcos[i] = ElementCosine::Tiny(x);
      return;
    case ElementKind::kOrdinary: {
      const SineCosine v = SineCosineOf(ReduceElement(x));
      rsin[i] = static_cast<float>(v.sine);
      rcos[i] = static_cast<float>(v.cosine);
      return;
    }
    case ElementKind::kNotFinite:
      rsin[i] = rcos[i] = Difference(x);
      if (!std::isnan(x)) {
        ReportError<float>(PEX_STATUS_DOMAIN, i, a, {x, x, rsin + i, rcos + i}, name);
      }
  }
}

}  // namespace pex

// _pexs<Name>_SC_<variant>, which reports as "s<Name>_<variant>".
#define PEX_SINGLE_ELEMENT(Name, variant, Function)                                         \
  extern "C" PEXQUO_API int _pexs##Name##_SC_##variant(int32_t i, const float* a, float* r, \
                                                       void*) {                             \
    const pex::ControlGuard guard;                                                          \
    pex::ComputeElement<pex::Function>(i, a, r, "s" #Name "_" #variant);                    \
    return 0;                                                                               \
  }

#endif  // PEX_CORE__HEAP_REAL_TRIG_SINGLE_ELEMENT_H_
