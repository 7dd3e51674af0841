// What every vector function of the front does around its kernel: the checks, the choice of the
// tier, and the pieces of an array that is too long for a kernel's 32-bit count.
#ifndef FRONT_VECTOR_H_
#define FRONT_VECTOR_H_

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "front/thread_state.h"
#include "pexquo/pexquo.h"

namespace pexquo_front {

// Three computations of one function; the thread's or the call's accuracy chooses. Those of complex
// functions report no element, so that it does not matter how elements are reported.
template <auto EP, auto LA, auto HA, bool reports = true>
struct Tiered {
  static constexpr bool kTiers = true, kReports = reports;
  static constexpr auto Kernel(uint32_t mode) {
    switch (mode & PEX_MODE_ACCURACY) {
      case PEX_ACCURACY_EP:
        return EP;
      case PEX_ACCURACY_LA:
        return LA;
      default:
        return HA;
    }
  }
};

template <auto K>
struct Plain {
  static constexpr bool kTiers = false, kReports = false;
  static constexpr auto Kernel(uint32_t) { return K; }
};

template <typename T>
constexpr bool IsNull(const T& operand) {
  if constexpr (std::is_pointer_v<T>) {
    return operand == nullptr;
  } else {
    return false;
  }
}

// Arrays move on, scalars stay.
template <typename T>
constexpr T MovedOn(T operand, int64_t elements) {
  if constexpr (std::is_pointer_v<T>) {
    return operand + elements;
  } else {
    return operand;
  }
}

// Piece by piece. In ascending order, so that results may overwrite arguments; an error record
// counts its index from the whole array's beginning.
template <typename Kernel, typename A, typename... Operands>
[[gnu::noinline]] int32_t InPieces(Kernel kernel, int64_t n, A* a, Operands... others) {
  const WholeArray whole(a);
  for (int64_t done = 0; done < n; done += piece) {
    const auto count = static_cast<int32_t>(std::min(piece, n - done));
    kernel(count, MovedOn(a, done), MovedOn(others, done)...);
  }
  return PEX_STATUS_OK;
}

// The first parameter that is wrong, as the error record counts them, is reported.
template <typename... Operands>
[[gnu::noinline, gnu::cold]] int32_t RefuseCall(const char* name, int64_t n, Operands... operands) {
  if (n < 0) return Refuse(name, PEX_STATUS_BAD_SIZE, 1);
  int32_t parameter = 1, null = 0;
  ((++parameter, null = null == 0 && IsNull(operands) ? parameter : null), ...);
  return Refuse(name, PEX_STATUS_BAD_MEM, null);
}

template <typename... Operands>
[[gnu::always_inline]] inline bool IsRefused(int64_t n, Operands... operands) {
  return n < 0 || (n != 0 && (IsNull(operands) || ...));
}

template <typename Kernel, typename... Operands>
[[gnu::always_inline]] inline int32_t Run(Kernel kernel, int64_t n, Operands... operands) {
  if (n > piece) [[unlikely]]
    return InPieces(kernel, n, operands...);
  kernel(static_cast<int32_t>(n), operands...);
  return PEX_STATUS_OK;
}

template <typename Tiers, typename... Operands>
[[gnu::always_inline]] inline int32_t Call(const char* name, int64_t n, Operands... operands) {
  if (IsRefused(n, operands...)) [[unlikely]]
    return RefuseCall(name, n, operands...);
  return Run(Tiers::Kernel(Tiers::kTiers ? _pexGetMode() : 0), n, operands...);
}

template <typename... Operands>
[[gnu::noinline, gnu::cold]] int32_t RefuseCallWithMode(const char* name, uint32_t mode, int64_t n,
                                                        Operands... operands) {
  const ModeOfCall call(mode);
  return RefuseCall(name, n, operands...);
}

template <typename Tiers, typename... Operands>
[[gnu::always_inline]] inline int32_t CallWithMode(const char* name, uint32_t mode, int64_t n,
                                                   Operands... operands) {
  if (IsRefused(n, operands...)) [[unlikely]] {
    return RefuseCallWithMode(name, mode, n, operands...);
  }
  const bool of_thread = Tiers::kTiers && (mode & PEX_MODE_ACCURACY) == 0;
  const auto kernel = Tiers::Kernel(of_thread ? _pexGetMode() : mode);
  if (Tiers::kReports && (mode & PEX_MODE_ERRORS) != 0) {
    const ModeOfCall call(mode);
    return Run(kernel, n, operands...);
  }
  return Run(kernel, n, operands...);
}

}  // namespace pexquo_front

#endif  // FRONT_VECTOR_H_
