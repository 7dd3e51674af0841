// Generated from catalogue/functions.def and complex_functions.def by catalogue/make_header.cc:
// change the row, then run `cmake --build --preset release --target header`. Included by
// pexquo/functions.hpp, which says what all these functions have in common.
#ifndef PEXQUO_FUNCTION_LIST_HPP_
#define PEXQUO_FUNCTION_LIST_HPP_

namespace pexquo {

namespace detail {
// Functions with two arguments and with two results, as error records name them.
inline constexpr std::string_view kTwoArguments[] = {"Add", "Sub", "Mul", "Pow", "Powx", "Div",
    "Hypot", "Atan2"};
inline constexpr std::string_view kTwoResults[] = {"Modf", "SinCos"};
}  // namespace detail

namespace detail {
struct add_calls {
  static constexpr const char* name = "add";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, const double* b,
                          double* r) {
    return mode == 0 ? vdAdd(n, a, b, r) : vdAddMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, const float* b,
                          float* r) {
    return mode == 0 ? vsAdd(n, a, b, r) : vsAddMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a, const
                          std::complex<double>* b, std::complex<double>* r) {
    return mode == 0 ? vzAdd(n, C(a), C(b), C(r)) : vzAddMode(n, C(a), C(b), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a, const
                          std::complex<float>* b, std::complex<float>* r) {
    return mode == 0 ? vcAdd(n, C(a), C(b), C(r)) : vcAddMode(n, C(a), C(b), C(r), mode);
  }
};
}  // namespace detail

/// add: a + b. Rounds as the caller's control word says.
///
/// Complex add: a + b. Rounds as the caller's control word says.
inline constexpr binary_function<detail::add_calls> add{};

namespace detail {
struct sub_calls {
  static constexpr const char* name = "sub";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, const double* b,
                          double* r) {
    return mode == 0 ? vdSub(n, a, b, r) : vdSubMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, const float* b,
                          float* r) {
    return mode == 0 ? vsSub(n, a, b, r) : vsSubMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a, const
                          std::complex<double>* b, std::complex<double>* r) {
    return mode == 0 ? vzSub(n, C(a), C(b), C(r)) : vzSubMode(n, C(a), C(b), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a, const
                          std::complex<float>* b, std::complex<float>* r) {
    return mode == 0 ? vcSub(n, C(a), C(b), C(r)) : vcSubMode(n, C(a), C(b), C(r), mode);
  }
};
}  // namespace detail

/// sub: a - b. Rounds as the caller's control word says.
///
/// Complex sub: a - b. Rounds as the caller's control word says.
inline constexpr binary_function<detail::sub_calls> sub{};

namespace detail {
struct mul_calls {
  static constexpr const char* name = "mul";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, const double* b,
                          double* r) {
    return mode == 0 ? vdMul(n, a, b, r) : vdMulMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, const float* b,
                          float* r) {
    return mode == 0 ? vsMul(n, a, b, r) : vsMulMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a, const
                          std::complex<double>* b, std::complex<double>* r) {
    return mode == 0 ? vzMul(n, C(a), C(b), C(r)) : vzMulMode(n, C(a), C(b), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a, const
                          std::complex<float>* b, std::complex<float>* r) {
    return mode == 0 ? vcMul(n, C(a), C(b), C(r)) : vcMulMode(n, C(a), C(b), C(r), mode);
  }
};
}  // namespace detail

/// mul: a * b. Rounds as the caller's control word says.
///
/// Complex mul: a b. _26 and _11 round every product and sum and take subnormal arguments as the
/// caller's control word says; the other tiers are one computation that takes the products exactly,
/// so that cancellation loses nothing. Bounds in double: HA 0.51 ulp, LA 0.51 ulp, EP at least 51
/// bits of the larger part; in single: HA 0.51 ulp, LA 0.51 ulp, EP at least 22 bits of the larger
/// part.
inline constexpr binary_function<detail::mul_calls> mul{};

namespace detail {
struct sqr_calls {
  static constexpr const char* name = "sqr";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdSqr(n, a, r) : vdSqrMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsSqr(n, a, r) : vsSqrMode(n, a, r, mode);
  }
};
}  // namespace detail

/// sqr: a * a. Rounds as the caller's control word says.
inline constexpr unary_function<detail::sqr_calls> sqr{};

namespace detail {
struct abs_calls {
  static constexpr const char* name = "abs";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdAbs(n, a, r) : vdAbsMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsAbs(n, a, r) : vsAbsMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          double* r) {
    return mode == 0 ? vzAbs(n, C(a), r) : vzAbsMode(n, C(a), r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a, float*
                          r) {
    return mode == 0 ? vcAbs(n, C(a), r) : vcAbsMode(n, C(a), r, mode);
  }
};
}  // namespace detail

/// abs: |a|. A multiplication by plus or minus one: a signalling NaN becomes quiet and raises
/// invalid, and a NaN keeps its sign.
///
/// Complex abs: |a|. One computation for all tiers, without overflow or underflow on the way.
/// Infinity where a part is infinite, else NaN where one is: in double with the NaN's sign, in
/// single without. Bounds in double: HA 0.51 ulp, LA 0.51 ulp, EP at least 52 bits; in single: HA
/// 0.51 ulp, LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::abs_calls> abs{};

namespace detail {
struct ceil_calls {
  static constexpr const char* name = "ceil";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdCeil(n, a, r) : vdCeilMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsCeil(n, a, r) : vsCeilMode(n, a, r, mode);
  }
};
}  // namespace detail

/// ceil: the least integer not below a. May raise inexact.
inline constexpr unary_function<detail::ceil_calls> ceil{};

namespace detail {
struct floor_calls {
  static constexpr const char* name = "floor";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdFloor(n, a, r) : vdFloorMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsFloor(n, a, r) : vsFloorMode(n, a, r, mode);
  }
};
}  // namespace detail

/// floor: the greatest integer not above a. May raise inexact.
inline constexpr unary_function<detail::floor_calls> floor{};

namespace detail {
struct trunc_calls {
  static constexpr const char* name = "trunc";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdTrunc(n, a, r) : vdTruncMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsTrunc(n, a, r) : vsTruncMode(n, a, r, mode);
  }
};
}  // namespace detail

/// trunc: a rounded toward zero. May raise inexact.
inline constexpr unary_function<detail::trunc_calls> trunc{};

namespace detail {
struct rint_calls {
  static constexpr const char* name = "rint";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdRint(n, a, r) : vdRintMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsRint(n, a, r) : vsRintMode(n, a, r, mode);
  }
};
}  // namespace detail

/// rint: a rounded to an integer in the caller's rounding mode. May raise inexact.
inline constexpr unary_function<detail::rint_calls> rint{};

namespace detail {
struct nearbyint_calls {
  static constexpr const char* name = "nearbyint";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdNearbyInt(n, a, r) : vdNearbyIntMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsNearbyInt(n, a, r) : vsNearbyIntMode(n, a, r, mode);
  }
};
}  // namespace detail

/// nearbyint: a rounded to an integer in the caller's rounding mode. Never raises inexact.
inline constexpr unary_function<detail::nearbyint_calls> nearbyint{};

namespace detail {
struct round_calls {
  static constexpr const char* name = "round";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdRound(n, a, r) : vdRoundMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsRound(n, a, r) : vsRoundMode(n, a, r, mode);
  }
};
}  // namespace detail

/// round: the nearest integer, ties away from zero. May raise inexact; an infinity raises invalid
/// and stays.
inline constexpr unary_function<detail::round_calls> round{};

namespace detail {
struct modf_calls {
  static constexpr const char* name = "modf";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r1, double*
                          r2) {
    return mode == 0 ? vdModf(n, a, r1, r2) : vdModfMode(n, a, r1, r2, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r1, float* r2)
                          {
    return mode == 0 ? vsModf(n, a, r1, r2) : vsModfMode(n, a, r1, r2, mode);
  }
};
}  // namespace detail

/// modf: integer part and fractional part of a, both with its sign. The integer parts go to the
/// first result array. May raise inexact.
inline constexpr two_result_function<detail::modf_calls> modf{};

namespace detail {
struct exp_calls {
  static constexpr const char* name = "exp";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdExp(n, a, r) : vdExpMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsExp(n, a, r) : vsExpMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzExp(n, C(a), C(r)) : vzExpMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcExp(n, C(a), C(r)) : vcExpMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// exp: e^a. e^-inf is 0. Reports overflow (code 3, result inf) and underflow (code 4, result
/// subnormal or 0). Bounds in double: HA 0.55 ulp, LA 2.46 ulp, EP at least 26 bits; in single: HA
/// correctly rounded, LA 2 ulp, EP at least 11 bits.
///
/// Complex exp: e^a. One computation in double precision; in single, _11 is _21, which computes in
/// floats. No overflow or underflow on the way: e^x may exceed all numbers where its product with
/// the sine does not. No cuts. Real part -infinity gives zeros, +infinity infinite parts, with the
/// signs of cos and sin of the imaginary part. Bounds in double: HA 0.8 ulp, LA 0.8 ulp, EP at
/// least 52 bits; in single: HA 0.51 ulp, LA 3.6 ulp, EP at least 21 bits.
inline constexpr unary_function<detail::exp_calls> exp{};

namespace detail {
struct expm1_calls {
  static constexpr const char* name = "expm1";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdExpm1(n, a, r) : vdExpm1Mode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsExpm1(n, a, r) : vsExpm1Mode(n, a, r, mode);
  }
};
}  // namespace detail

/// expm1: e^a - 1. Keeps the sign of zero; -1 for -inf. Reports overflow (code 3, result inf).
/// Bounds in double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded,
/// LA 2 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::expm1_calls> expm1{};

namespace detail {
struct ln_calls {
  static constexpr const char* name = "ln";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdLn(n, a, r) : vdLnMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsLn(n, a, r) : vsLnMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzLn(n, C(a), C(r)) : vzLnMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcLn(n, C(a), C(r)) : vcLnMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// ln: the natural logarithm of a. Reports a pole at plus or minus 0 (code 2, result -inf) and
/// negative arguments (code 1, result NaN). Bounds in double: HA 0.56 ulp, LA 1 ulp, EP at least 26
/// bits; in single: HA correctly rounded, LA 2 ulp, EP at least 11 bits.
///
/// Complex ln: ln a. In single precision _21 and _11 compute in floats. Imaginary part in [-pi,
/// pi], cut along the negative real axis. The real part keeps its relative accuracy next to the
/// unit circle, but in _11, whose bits are those of the modulus. -infinity for 0, raising
/// divide-by-zero; +infinity with the angle of the argument where a part is infinite. Bounds in
/// double: HA 0.65 ulp, LA 2 ulp, EP at least 29 bits of the larger part; in single: HA 0.51 ulp,
/// LA 2.6 ulp, EP at least 11 bits of the larger part.
inline constexpr unary_function<detail::ln_calls> ln{};
/// The same as ln.
inline constexpr auto log = ln;

namespace detail {
struct log10_calls {
  static constexpr const char* name = "log10";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdLog10(n, a, r) : vdLog10Mode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsLog10(n, a, r) : vsLog10Mode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzLog10(n, C(a), C(r)) : vzLog10Mode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcLog10(n, C(a), C(r)) : vcLog10Mode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// log10: the decimal logarithm of a. Reports a pole at plus or minus 0 (code 2, result -inf) and
/// negative arguments (code 1, result NaN). Bounds in double: HA 0.57 ulp, LA 2 ulp, EP at least 26
/// bits; in single: HA correctly rounded, LA 2 ulp, EP at least 11 bits.
///
/// Complex log10: log10 a. As Ln, both parts divided by ln 10. Bounds in double: HA 0.7 ulp, LA 0.7
/// ulp, EP at least 52 bits; in single: HA 0.51 ulp, LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::log10_calls> log10{};

namespace detail {
struct log1p_calls {
  static constexpr const char* name = "log1p";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdLog1p(n, a, r) : vdLog1pMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsLog1p(n, a, r) : vsLog1pMode(n, a, r, mode);
  }
};
}  // namespace detail

/// log1p: the natural logarithm of 1 + a. Keeps the sign of zero. Reports a pole at -1 (code 2,
/// result -inf) and arguments below -1 (code 1, result NaN). Bounds in double: HA 0.56 ulp, LA 2
/// ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::log1p_calls> log1p{};

namespace detail {
struct sin_calls {
  static constexpr const char* name = "sin";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdSin(n, a, r) : vdSinMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsSin(n, a, r) : vsSinMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzSin(n, C(a), C(r)) : vzSinMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcSin(n, C(a), C(r)) : vcSinMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// sin: the sine of a radians. Keeps the sign of zero. Arguments of any finite size are reduced
/// exactly. Reports infinities (code 1, result NaN). Bounds in double: HA 0.55 ulp, LA 4 ulp, EP at
/// least 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at least 11 bits.
///
/// Complex sin: sin a. One computation for all tiers. No overflow or underflow on the way. No cuts.
/// sin a = -i sinh(ia), bit for bit. Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52
/// bits; in single: HA 0.51 ulp, LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::sin_calls> sin{};

namespace detail {
struct cos_calls {
  static constexpr const char* name = "cos";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdCos(n, a, r) : vdCosMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsCos(n, a, r) : vsCosMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzCos(n, C(a), C(r)) : vzCosMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcCos(n, C(a), C(r)) : vcCosMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// cos: the cosine of a radians. Arguments of any finite size are reduced exactly. Reports
/// infinities (code 1, result NaN). Bounds in double: HA 0.55 ulp, LA 4 ulp, EP at least 26 bits;
/// in single: HA correctly rounded, LA 2 ulp, EP at least 11 bits.
///
/// Complex cos: cos a. One computation for all tiers. No overflow or underflow on the way. No cuts.
/// cos a = cosh(ia), bit for bit. Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits;
/// in single: HA 0.51 ulp, LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::cos_calls> cos{};

namespace detail {
struct sincos_calls {
  static constexpr const char* name = "sincos";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r1, double*
                          r2) {
    return mode == 0 ? vdSinCos(n, a, r1, r2) : vdSinCosMode(n, a, r1, r2, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r1, float* r2)
                          {
    return mode == 0 ? vsSinCos(n, a, r1, r2) : vsSinCosMode(n, a, r1, r2, mode);
  }
};
}  // namespace detail

/// sincos: the sine and the cosine of a radians. The sines go to the first result array. Arguments
/// of any finite size are reduced exactly. Reports infinities (code 1, result NaN). Bounds in
/// double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp,
/// EP at least 11 bits.
inline constexpr two_result_function<detail::sincos_calls> sincos{};

namespace detail {
struct tan_calls {
  static constexpr const char* name = "tan";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdTan(n, a, r) : vdTanMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsTan(n, a, r) : vsTanMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzTan(n, C(a), C(r)) : vzTanMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcTan(n, C(a), C(r)) : vcTanMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// tan: the tangent of a radians. Keeps the sign of zero. Arguments of any finite size are reduced
/// exactly. Reports infinities (code 1, result NaN). Bounds in double: HA 0.55 ulp, LA 2 ulp, EP at
/// least 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at least 11 bits.
///
/// Complex tan: tan a. One computation for all tiers. No overflow or underflow on the way. No cuts;
/// poles at odd multiples of pi/2, which no number hits. tan a = -i tanh(ia), bit for bit: i and -i
/// for infinite imaginary parts. Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits;
/// in single: HA 0.51 ulp, LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::tan_calls> tan{};

namespace detail {
struct pow_calls {
  static constexpr const char* name = "pow";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, const double* b,
                          double* r) {
    return mode == 0 ? vdPow(n, a, b, r) : vdPowMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, const float* b,
                          float* r) {
    return mode == 0 ? vsPow(n, a, b, r) : vsPowMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a, const
                          std::complex<double>* b, std::complex<double>* r) {
    return mode == 0 ? vzPow(n, C(a), C(b), C(r)) : vzPowMode(n, C(a), C(b), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a, const
                          std::complex<float>* b, std::complex<float>* r) {
    return mode == 0 ? vcPow(n, C(a), C(b), C(r)) : vcPowMode(n, C(a), C(b), C(r), mode);
  }
};
}  // namespace detail

/// pow: a^b. Reports a pole, zero to a negative power, with code 1 (result inf or -inf), and a
/// negative base with a fractional exponent with code 1 (result NaN). Overflow and underflow are
/// not reported. Bounds in double: HA 0.56 ulp, LA 1.5 ulp, EP at least 26 bits; in single: HA 0.51
/// ulp, LA 2 ulp, EP at least 11 bits.
///
/// Complex pow: a^b. One computation for all tiers. a^b = e^(b ln a), ln as in Ln: cut along the
/// negative real axis of a. A part of b that is zero takes no part in the product: a^0 is 1, 0^b is
/// 0 for real b > 0. The bound holds for |b ln a| below 2^20. Bounds in double: HA 1 ulp of the
/// larger part, LA 1 ulp of the larger part, EP at least 52 bits of the larger part; in single: HA
/// 0.8 ulp of the larger part, LA 0.8 ulp of the larger part, EP at least 23 bits of the larger
/// part.
inline constexpr binary_function<detail::pow_calls> pow{};

namespace detail {
struct powx_calls {
  static constexpr const char* name = "powx";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double b, double* r)
                          {
    return mode == 0 ? vdPowx(n, a, b, r) : vdPowxMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float b, float* r) {
    return mode == 0 ? vsPowx(n, a, b, r) : vsPowxMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double> b, std::complex<double>* r) {
    return mode == 0 ? vzPowx(n, C(a), C(b), C(r)) : vzPowxMode(n, C(a), C(b), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float> b, std::complex<float>* r) {
    return mode == 0 ? vcPowx(n, C(a), C(b), C(r)) : vcPowxMode(n, C(a), C(b), C(r), mode);
  }
};
}  // namespace detail

/// powx: a^b, one b for all elements. Reports a pole, zero to a negative power, with code 1 (result
/// inf or -inf), and a negative base with a fractional exponent with code 1 (result NaN). Overflow
/// and underflow are not reported. An exponent of 1/2, -1/2, 1/3, -1/3, 2/3, 3/2 or -1 is handed to
/// Sqrt, InvSqrt, Cbrt, InvCbrt, Pow2o3, Pow3o2 or Inv, which report under their own names. Bounds
/// in double: HA 0.56 ulp, LA 2 ulp, EP at least 26 bits; in single: HA 0.51 ulp, LA 2 ulp, EP at
/// least 11 bits.
///
/// Complex powx: a^b for one b. As Pow. Bounds in double: HA 1 ulp of the larger part, LA 1 ulp of
/// the larger part, EP at least 52 bits of the larger part; in single: HA 0.8 ulp of the larger
/// part, LA 0.8 ulp of the larger part, EP at least 23 bits of the larger part.
inline constexpr scalar_function<detail::powx_calls> powx{};

namespace detail {
struct pow2o3_calls {
  static constexpr const char* name = "pow2o3";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdPow2o3(n, a, r) : vdPow2o3Mode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsPow2o3(n, a, r) : vsPow2o3Mode(n, a, r, mode);
  }
};
}  // namespace detail

/// pow2o3: a^(2/3), the square of the real cube root. Reports nothing. Bounds in double: HA 0.51
/// ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at least 11
/// bits.
inline constexpr unary_function<detail::pow2o3_calls> pow2o3{};

namespace detail {
struct pow3o2_calls {
  static constexpr const char* name = "pow3o2";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdPow3o2(n, a, r) : vdPow3o2Mode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsPow3o2(n, a, r) : vsPow3o2Mode(n, a, r, mode);
  }
};
}  // namespace detail

/// pow3o2: a^(3/2). Zero, without a sign, for both zeros. Reports negative arguments (code 1,
/// result NaN). Bounds in double: HA 0.51 ulp, LA 1.5 ulp, EP at least 26 bits; in single: HA
/// correctly rounded, LA 1.5 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::pow3o2_calls> pow3o2{};

namespace detail {
struct sqrt_calls {
  static constexpr const char* name = "sqrt";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdSqrt(n, a, r) : vdSqrtMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsSqrt(n, a, r) : vsSqrtMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzSqrt(n, C(a), C(r)) : vzSqrtMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcSqrt(n, C(a), C(r)) : vcSqrtMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// sqrt: the square root of a. Correctly rounded. Keeps the sign of zero. Reports negative
/// arguments (code 1, result NaN). Bounds in double: HA 0.5 ulp, LA 0.5 ulp, EP at least 26 bits;
/// in single: HA correctly rounded, LA 0.5 ulp, EP at least 11 bits.
///
/// Complex sqrt: sqrt(a). One computation in double precision; in single, _11 is _21, which
/// computes in floats. In the right half-plane, cut along the negative real axis. An infinite
/// imaginary part gives infinity in both parts, whatever the real part. Bounds in double: HA 0.55
/// ulp, LA 0.55 ulp, EP at least 52 bits; in single: HA 0.51 ulp, LA 2.5 ulp, EP at least 21 bits.
inline constexpr unary_function<detail::sqrt_calls> sqrt{};

namespace detail {
struct invsqrt_calls {
  static constexpr const char* name = "invsqrt";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdInvSqrt(n, a, r) : vdInvSqrtMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsInvSqrt(n, a, r) : vsInvSqrtMode(n, a, r, mode);
  }
};
}  // namespace detail

/// invsqrt: 1 / the square root of a. Reports a pole at plus or minus 0 (code 2, result inf or
/// -inf) and negative arguments (code 1, result NaN). Bounds in double: HA 0.52 ulp, LA 1.5 ulp, EP
/// at least 26 bits; in single: HA correctly rounded, LA 1.5 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::invsqrt_calls> invsqrt{};

namespace detail {
struct cbrt_calls {
  static constexpr const char* name = "cbrt";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdCbrt(n, a, r) : vdCbrtMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsCbrt(n, a, r) : vsCbrtMode(n, a, r, mode);
  }
};
}  // namespace detail

/// cbrt: the cube root of a. Reports nothing. Bounds in double: HA 0.51 ulp, LA 2 ulp, EP at least
/// 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::cbrt_calls> cbrt{};

namespace detail {
struct invcbrt_calls {
  static constexpr const char* name = "invcbrt";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdInvCbrt(n, a, r) : vdInvCbrtMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsInvCbrt(n, a, r) : vsInvCbrtMode(n, a, r, mode);
  }
};
}  // namespace detail

/// invcbrt: 1 / the cube root of a. Reports a pole at plus or minus 0 (code 2, result inf or -inf).
/// Bounds in double: HA 0.51 ulp, LA 1.5 ulp, EP at least 26 bits; in single: HA correctly rounded,
/// LA 1.5 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::invcbrt_calls> invcbrt{};

namespace detail {
struct inv_calls {
  static constexpr const char* name = "inv";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdInv(n, a, r) : vdInvMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsInv(n, a, r) : vsInvMode(n, a, r, mode);
  }
};
}  // namespace detail

/// inv: 1 / a. Correctly rounded. Reports a pole at plus or minus 0 (code 2, result inf or -inf).
/// Bounds in double: HA 0.5 ulp, LA 0.5 ulp, EP at least 26 bits; in single: HA correctly rounded,
/// LA 0.5 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::inv_calls> inv{};

namespace detail {
struct div_calls {
  static constexpr const char* name = "div";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, const double* b,
                          double* r) {
    return mode == 0 ? vdDiv(n, a, b, r) : vdDivMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, const float* b,
                          float* r) {
    return mode == 0 ? vsDiv(n, a, b, r) : vsDivMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a, const
                          std::complex<double>* b, std::complex<double>* r) {
    return mode == 0 ? vzDiv(n, C(a), C(b), C(r)) : vzDivMode(n, C(a), C(b), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a, const
                          std::complex<float>* b, std::complex<float>* r) {
    return mode == 0 ? vcDiv(n, C(a), C(b), C(r)) : vcDivMode(n, C(a), C(b), C(r), mode);
  }
};
}  // namespace detail

/// div: a / b. Correctly rounded. Reports a divisor of plus or minus 0, whatever a is (code 2, the
/// quotient as it is: inf, -inf or NaN). Bounds in double: HA 0.5 ulp, LA 0.5 ulp, EP at least 26
/// bits; in single: HA correctly rounded, LA 0.5 ulp, EP at least 11 bits.
///
/// Complex div: a/b. a conj(b) times 1/|b|^2. _26 and _11 do not scale: |b|^2 overflows for |b|
/// beyond 2^512 and 2^64 and underflows below 2^-511 and 2^-63. They take subnormal arguments as
/// the caller's control word says. A zero b gives NaN in both parts, raising divide-by-zero and
/// invalid. Bounds in double: HA 0.51 ulp, LA 0.51 ulp, EP at least 50 bits of the larger part; in
/// single: HA 0.51 ulp, LA 0.51 ulp, EP at least 21 bits of the larger part.
inline constexpr binary_function<detail::div_calls> div{};

namespace detail {
struct hypot_calls {
  static constexpr const char* name = "hypot";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, const double* b,
                          double* r) {
    return mode == 0 ? vdHypot(n, a, b, r) : vdHypotMode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, const float* b,
                          float* r) {
    return mode == 0 ? vsHypot(n, a, b, r) : vsHypotMode(n, a, b, r, mode);
  }
};
}  // namespace detail

/// hypot: the square root of a^2 + b^2. No overflow or underflow on the way; inf if either argument
/// is infinite. Reports nothing. Bounds in double: HA 0.51 ulp, LA 1.5 ulp, EP at least 26 bits; in
/// single: HA 0.51 ulp, LA 1.5 ulp, EP at least 11 bits.
inline constexpr binary_function<detail::hypot_calls> hypot{};

namespace detail {
struct acos_calls {
  static constexpr const char* name = "acos";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdAcos(n, a, r) : vdAcosMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsAcos(n, a, r) : vsAcosMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzAcos(n, C(a), C(r)) : vzAcosMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcAcos(n, C(a), C(r)) : vcAcosMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// acos: the arc cosine of a, in [0, pi]. Reports arguments beyond plus or minus 1 (code 1, result
/// NaN). Bounds in double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly
/// rounded, LA 2 ulp, EP at least 11 bits.
///
/// Complex acos: acos a. One computation for all tiers. No overflow or underflow on the way. Real
/// part in [0, pi], cut along the real axis beyond 1 and -1. An infinite part makes the imaginary
/// part infinite. Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits; in single: HA
/// 0.51 ulp, LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::acos_calls> acos{};

namespace detail {
struct asin_calls {
  static constexpr const char* name = "asin";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdAsin(n, a, r) : vdAsinMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsAsin(n, a, r) : vsAsinMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzAsin(n, C(a), C(r)) : vzAsinMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcAsin(n, C(a), C(r)) : vcAsinMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// asin: the arc sine of a, in [-pi/2, pi/2]. Keeps the sign of zero. Reports arguments beyond plus
/// or minus 1 (code 1, result NaN). Bounds in double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits;
/// in single: HA correctly rounded, LA 2 ulp, EP at least 11 bits.
///
/// Complex asin: asin a. One computation for all tiers. No overflow or underflow on the way. asin a
/// = -i asinh(ia), bit for bit. Real part in [-pi/2, pi/2], cut along the real axis beyond 1 and
/// -1. Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits; in single: HA 0.51 ulp, LA
/// 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::asin_calls> asin{};

namespace detail {
struct atan_calls {
  static constexpr const char* name = "atan";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdAtan(n, a, r) : vdAtanMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsAtan(n, a, r) : vsAtanMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzAtan(n, C(a), C(r)) : vzAtanMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcAtan(n, C(a), C(r)) : vcAtanMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// atan: the arc tangent of a, in [-pi/2, pi/2]. Keeps the sign of zero. Reports nothing. Bounds in
/// double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp,
/// EP at least 11 bits.
///
/// Complex atan: atan a. One computation for all tiers. No overflow or underflow on the way. atan a
/// = -i atanh(ia), bit for bit. Real part in [-pi/2, pi/2], cut along the imaginary axis beyond i
/// and -i; infinite at i and -i, raising divide-by-zero. Bounds in double: HA 0.9 ulp, LA 0.9 ulp,
/// EP at least 52 bits; in single: HA 0.51 ulp, LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::atan_calls> atan{};

namespace detail {
struct atan2_calls {
  static constexpr const char* name = "atan2";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, const double* b,
                          double* r) {
    return mode == 0 ? vdAtan2(n, a, b, r) : vdAtan2Mode(n, a, b, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, const float* b,
                          float* r) {
    return mode == 0 ? vsAtan2(n, a, b, r) : vsAtan2Mode(n, a, b, r, mode);
  }
};
}  // namespace detail

/// atan2: the angle of the point (b, a), in [-pi, pi]. a is the ordinate, b the abscissa; signs of
/// zero choose the side. Reports nothing. Bounds in double: HA 0.55 ulp, LA 2 ulp, EP at least 26
/// bits; in single: HA 0.51 ulp, LA 2 ulp, EP at least 11 bits.
inline constexpr binary_function<detail::atan2_calls> atan2{};

namespace detail {
struct acosh_calls {
  static constexpr const char* name = "acosh";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdAcosh(n, a, r) : vdAcoshMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsAcosh(n, a, r) : vsAcoshMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzAcosh(n, C(a), C(r)) : vzAcoshMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcAcosh(n, C(a), C(r)) : vcAcoshMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// acosh: the inverse hyperbolic cosine of a. Reports arguments below 1 (code 1, result NaN).
/// Bounds in double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded,
/// LA 2 ulp, EP at least 11 bits.
///
/// Complex acosh: acosh a. One computation for all tiers. No overflow or underflow on the way. Real
/// part not negative, cut along the real axis below 1. +infinity with the angle of the argument
/// where a part is infinite. Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits; in
/// single: HA 0.51 ulp, LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::acosh_calls> acosh{};

namespace detail {
struct asinh_calls {
  static constexpr const char* name = "asinh";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdAsinh(n, a, r) : vdAsinhMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsAsinh(n, a, r) : vsAsinhMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzAsinh(n, C(a), C(r)) : vzAsinhMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcAsinh(n, C(a), C(r)) : vcAsinhMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// asinh: the inverse hyperbolic sine of a. Keeps the sign of zero. Reports nothing. Bounds in
/// double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp,
/// EP at least 11 bits.
///
/// Complex asinh: asinh a. One computation for all tiers. No overflow or underflow on the way. Cut
/// along the imaginary axis beyond i and -i. An infinite part makes the real part infinite. Bounds
/// in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits; in single: HA 0.51 ulp, LA 0.51 ulp,
/// EP at least 23 bits.
inline constexpr unary_function<detail::asinh_calls> asinh{};

namespace detail {
struct atanh_calls {
  static constexpr const char* name = "atanh";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdAtanh(n, a, r) : vdAtanhMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsAtanh(n, a, r) : vsAtanhMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzAtanh(n, C(a), C(r)) : vzAtanhMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcAtanh(n, C(a), C(r)) : vcAtanhMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// atanh: the inverse hyperbolic tangent of a. Keeps the sign of zero. Reports poles at 1 and -1
/// (code 2, result inf or -inf) and arguments beyond them (code 1, result NaN). Bounds in double:
/// HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at
/// least 11 bits.
///
/// Complex atanh: atanh a. One computation for all tiers. No overflow or underflow on the way. Cut
/// along the real axis beyond 1 and -1; infinite at 1 and -1, raising divide-by-zero. Imaginary
/// part pi/2 or -pi/2, by its sign, where a part is infinite. Bounds in double: HA 0.9 ulp, LA 0.9
/// ulp, EP at least 52 bits; in single: HA 0.51 ulp, LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::atanh_calls> atanh{};

namespace detail {
struct cosh_calls {
  static constexpr const char* name = "cosh";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdCosh(n, a, r) : vdCoshMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsCosh(n, a, r) : vsCoshMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzCosh(n, C(a), C(r)) : vzCoshMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcCosh(n, C(a), C(r)) : vcCoshMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// cosh: the hyperbolic cosine of a. Reports overflow (code 3, result inf). Bounds in double: HA
/// 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at least
/// 11 bits.
///
/// Complex cosh: cosh a. One computation for all tiers. No overflow or underflow on the way. No
/// cuts. Infinite real parts give infinite parts, with the signs of cos and sin of the imaginary
/// part. Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits; in single: HA 0.51 ulp,
/// LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::cosh_calls> cosh{};

namespace detail {
struct sinh_calls {
  static constexpr const char* name = "sinh";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdSinh(n, a, r) : vdSinhMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsSinh(n, a, r) : vsSinhMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzSinh(n, C(a), C(r)) : vzSinhMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcSinh(n, C(a), C(r)) : vcSinhMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// sinh: the hyperbolic sine of a. Keeps the sign of zero. Reports overflow (code 3, result inf or
/// -inf). Bounds in double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly
/// rounded, LA 2 ulp, EP at least 11 bits.
///
/// Complex sinh: sinh a. One computation for all tiers. No overflow or underflow on the way. No
/// cuts. Infinite real parts give infinite parts, with the signs of cos and sin of the imaginary
/// part. Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits; in single: HA 0.51 ulp,
/// LA 0.51 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::sinh_calls> sinh{};

namespace detail {
struct tanh_calls {
  static constexpr const char* name = "tanh";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdTanh(n, a, r) : vdTanhMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsTanh(n, a, r) : vsTanhMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzTanh(n, C(a), C(r)) : vzTanhMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcTanh(n, C(a), C(r)) : vcTanhMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// tanh: the hyperbolic tangent of a. Keeps the sign of zero. Reports nothing. Bounds in double: HA
/// 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at least
/// 11 bits.
///
/// Complex tanh: tanh a. One computation for all tiers. No overflow or underflow on the way. No
/// cuts; poles at odd multiples of i pi/2, which no number hits. 1 and -1 for infinite real parts.
/// Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits; in single: HA 0.51 ulp, LA 0.51
/// ulp, EP at least 23 bits.
inline constexpr unary_function<detail::tanh_calls> tanh{};

namespace detail {
struct erf_calls {
  static constexpr const char* name = "erf";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdErf(n, a, r) : vdErfMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsErf(n, a, r) : vsErfMode(n, a, r, mode);
  }
};
}  // namespace detail

/// erf: the error function of a. Keeps the sign of zero. Reports nothing. Bounds in double: HA 0.55
/// ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at least 11
/// bits.
inline constexpr unary_function<detail::erf_calls> erf{};

namespace detail {
struct erfc_calls {
  static constexpr const char* name = "erfc";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdErfc(n, a, r) : vdErfcMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsErfc(n, a, r) : vsErfcMode(n, a, r, mode);
  }
};
}  // namespace detail

/// erfc: 1 - the error function of a. Reports underflow (code 4, result subnormal or 0). Bounds in
/// double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp,
/// EP at least 11 bits.
inline constexpr unary_function<detail::erfc_calls> erfc{};

namespace detail {
struct cdfnorm_calls {
  static constexpr const char* name = "cdfnorm";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdCdfNorm(n, a, r) : vdCdfNormMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsCdfNorm(n, a, r) : vsCdfNormMode(n, a, r, mode);
  }
};
}  // namespace detail

/// cdfnorm: the standard normal distribution function of a. Reports underflow (code 4, result
/// subnormal or 0). Bounds in double: HA 0.55 ulp, LA 2 ulp, EP at least 26 bits; in single: HA
/// correctly rounded, LA 2 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::cdfnorm_calls> cdfnorm{};

namespace detail {
struct erfinv_calls {
  static constexpr const char* name = "erfinv";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdErfInv(n, a, r) : vdErfInvMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsErfInv(n, a, r) : vsErfInvMode(n, a, r, mode);
  }
};
}  // namespace detail

/// erfinv: the inverse of the error function at a. Keeps the sign of zero. Reports poles at 1 and
/// -1 (code 2, result inf or -inf) and arguments beyond them (code 1, result NaN). Bounds in
/// double: HA 0.51 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp,
/// EP at least 11 bits.
inline constexpr unary_function<detail::erfinv_calls> erfinv{};

namespace detail {
struct erfcinv_calls {
  static constexpr const char* name = "erfcinv";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdErfcInv(n, a, r) : vdErfcInvMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsErfcInv(n, a, r) : vsErfcInvMode(n, a, r, mode);
  }
};
}  // namespace detail

/// erfcinv: the inverse of 1 - the error function at a. Reports poles at 0 and 2 (code 2, result
/// inf or -inf) and arguments outside [0, 2] (code 1, result NaN). Bounds in double: HA 0.51 ulp,
/// LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::erfcinv_calls> erfcinv{};

namespace detail {
struct cdfnorminv_calls {
  static constexpr const char* name = "cdfnorminv";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a, double* r) {
    return mode == 0 ? vdCdfNormInv(n, a, r) : vdCdfNormInvMode(n, a, r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, float* r) {
    return mode == 0 ? vsCdfNormInv(n, a, r) : vsCdfNormInvMode(n, a, r, mode);
  }
};
}  // namespace detail

/// cdfnorminv: the quantile of the standard normal distribution at a. Reports poles at 0 and 1
/// (code 2, result -inf or inf) and arguments outside [0, 1] (code 1, result NaN). Bounds in
/// double: HA 0.51 ulp, LA 2 ulp, EP at least 26 bits; in single: HA correctly rounded, LA 2 ulp,
/// EP at least 11 bits.
inline constexpr unary_function<detail::cdfnorminv_calls> cdfnorminv{};

namespace detail {
struct mulbyconj_calls {
  static constexpr const char* name = "mulbyconj";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a, const
                          std::complex<double>* b, std::complex<double>* r) {
    return mode == 0 ? vzMulByConj(n, C(a), C(b), C(r)) : vzMulByConjMode(n, C(a), C(b), C(r),
        mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a, const
                          std::complex<float>* b, std::complex<float>* r) {
    return mode == 0 ? vcMulByConj(n, C(a), C(b), C(r)) : vcMulByConjMode(n, C(a), C(b), C(r),
        mode);
  }
};
}  // namespace detail

/// Complex mulbyconj: a conj(b). As Mul. Bounds in double: HA 0.51 ulp, LA 0.51 ulp, EP at least 51
/// bits of the larger part; in single: HA 0.51 ulp, LA 0.51 ulp, EP at least 22 bits of the larger
/// part.
inline constexpr binary_function<detail::mulbyconj_calls> mulbyconj{};

namespace detail {
struct conj_calls {
  static constexpr const char* name = "conj";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzConj(n, C(a), C(r)) : vzConjMode(n, C(a), C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a,
                          std::complex<float>* r) {
    return mode == 0 ? vcConj(n, C(a), C(r)) : vcConjMode(n, C(a), C(r), mode);
  }
};
}  // namespace detail

/// Complex conj: conj(a). Flips the sign bit of the imaginary part, also of a NaN.
inline constexpr unary_function<detail::conj_calls> conj{};

namespace detail {
struct arg_calls {
  static constexpr const char* name = "arg";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<double>* a,
                          double* r) {
    return mode == 0 ? vzArg(n, C(a), r) : vzArgMode(n, C(a), r, mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const std::complex<float>* a, float*
                          r) {
    return mode == 0 ? vcArg(n, C(a), r) : vcArgMode(n, C(a), r, mode);
  }
};
}  // namespace detail

/// Complex arg: the angle of a in [-pi, pi]. The values of Atan2 of the imaginary and the real
/// part; _26 is _50. Cut along the negative real axis, where the sign of the imaginary part's zero
/// chooses pi or -pi; 0 and -0 have the angles of their signs, infinities a multiple of pi/4, NaN
/// gives NaN. Bounds in double: HA 0.55 ulp, LA 4 ulp, EP at least 50 bits; in single: HA 0.51 ulp,
/// LA 4 ulp, EP at least 11 bits.
inline constexpr unary_function<detail::arg_calls> arg{};

namespace detail {
struct cis_calls {
  static constexpr const char* name = "cis";
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const double* a,
                          std::complex<double>* r) {
    return mode == 0 ? vzCIS(n, a, C(r)) : vzCISMode(n, a, C(r), mode);
  }
  static std::int32_t call(std::uint32_t mode, std::int64_t n, const float* a, std::complex<float>*
                          r) {
    return mode == 0 ? vcCIS(n, a, C(r)) : vcCISMode(n, a, C(r), mode);
  }
};
}  // namespace detail

/// Complex cis: cos a + i sin a. One computation for all tiers. NaN in both parts for infinities,
/// raising invalid, and for NaN. Bounds in double: HA 0.55 ulp, LA 0.55 ulp, EP at least 52 bits;
/// in single: HA 0.6 ulp, LA 0.6 ulp, EP at least 23 bits.
inline constexpr unary_function<detail::cis_calls> cis{};

}  // namespace pexquo

#endif  // PEXQUO_FUNCTION_LIST_HPP_
