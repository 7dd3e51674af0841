#include "python/module/loops.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

#include "pexquo/parallel_detail.hpp"

namespace pexquo::python {
namespace {

// Elements of a buffered block: four operands of 16 bytes each stay within a first-level cache.
constexpr npy_intp kBlock = 512;
constexpr npy_intp kMostPerCall = npy_intp{1} << 30;
std::atomic<unsigned> thread_count{1};

template <size_t kSize>
void CopyStrided(const char* from, npy_intp from_step, char* to, npy_intp to_step, npy_intp n) {
  for (npy_intp i = 0; i < n; ++i) std::memcpy(to + i * to_step, from + i * from_step, kSize);
}

void Copy(npy_intp size, const char* from, npy_intp from_step, char* to, npy_intp to_step,
          npy_intp n) {
  switch (size) {
    case 4:
      return CopyStrided<4>(from, from_step, to, to_step, n);
    case 8:
      return CopyStrided<8>(from, from_step, to, to_step, n);
    case 16:
      return CopyStrided<16>(from, from_step, to, to_step, n);
  }
}

template <typename Bits>
constexpr Bits kExponent = static_cast<Bits>(sizeof(Bits) == 8 ? uint64_t{0x7FF0000000000000}
                                                               : uint64_t{0x7F800000});

template <typename Bits>
Bits Load(const char* p) {
  Bits bits;
  std::memcpy(&bits, p, sizeof bits);
  return bits;
}

enum class Kind { kFinite, kInfinite, kNaN };

// The worst of one element's parts.
template <typename Bits>
Kind KindOf(const char* element, npy_intp size) {
  Kind kind = Kind::kFinite;
  for (npy_intp i = 0; i < size; i += sizeof(Bits)) {
    const Bits magnitude = Load<Bits>(element + i) & ~(Bits{1} << (8 * sizeof(Bits) - 1));
    if (magnitude > kExponent<Bits>) return Kind::kNaN;
    if (magnitude == kExponent<Bits>) kind = Kind::kInfinite;
  }
  return kind;
}

template <typename Bits>
bool IsZero(const char* element, npy_intp size) {
  for (npy_intp i = 0; i < size; i += sizeof(Bits)) {
    if (static_cast<Bits>(Load<Bits>(element + i) << 1) != 0) return false;
  }
  return true;
}

// Whether one of the parts is infinite or NaN.
template <typename Bits>
bool AnySpecial(const char* parts, npy_intp bytes) {
  Bits any = 0;
  for (npy_intp i = 0; i < bytes; i += sizeof(Bits)) {
    any |= (Load<Bits>(parts + i) & kExponent<Bits>) == kExponent<Bits> ? 1 : 0;
  }
  return any != 0;
}

// A NaN of numbers is a domain error, an infinity of finite ones a pole or an overflow. Results
// stand apart from arguments; a UnaryScalar's second argument stands for all.
template <typename Bits>
void Inspect(const Loop& loop, npy_intp n, char* const* args, ErrorScope& scope) {
  const npy_intp size = loop.sizes[static_cast<size_t>(loop.arguments)];
  const char* results = args[loop.arguments];
  if (!AnySpecial<Bits>(results, n * size)) return;
  for (npy_intp i = 0; i < n; ++i) {
    const Kind result = KindOf<Bits>(results + i * size, size);
    if (result == Kind::kFinite) continue;
    Kind argument = Kind::kFinite;
    for (int k = 0; k < loop.arguments; ++k) {
      const npy_intp step = k == 1 && loop.scalar_second ? 0 : loop.sizes[static_cast<size_t>(k)];
      argument =
          std::max(argument, KindOf<Bits>(args[k] + i * step, loop.sizes[static_cast<size_t>(k)]));
    }
    if (result == Kind::kNaN && argument != Kind::kNaN) {
      scope.Note(PEX_STATUS_DOMAIN, i);
    } else if (result == Kind::kInfinite && argument == Kind::kFinite) {
      const bool pole =
          loop.has_poles &&
          (loop.arguments == 1 || IsZero<Bits>(args[0] + i * loop.sizes[0], loop.sizes[0]));
      scope.Note(pole ? PEX_STATUS_SINGULARITY : PEX_STATUS_OVERFLOW, i);
    }
  }
}

// One kernel call; UnaryScalar entries take the first of the second arguments for all.
void CallKernel(const Loop& loop, npy_intp n, char* const* args, ErrorScope& scope) {
  if (loop.entry == nullptr) {
    std::memmove(args[1], args[0], static_cast<size_t>(n * loop.sizes[0]));
    return;
  }
  const int second = loop.arguments + 1;
  loop.entry->Call(static_cast<int32_t>(n), args[0], args[1],
                   args[loop.arguments + (loop.swapped ? 1 : 0)],
                   loop.results == 2 ? args[second - (loop.swapped ? 1 : 0)] : nullptr);
  if (loop.inspected) {
    loop.entry->is_double() ? Inspect<uint64_t>(loop, n, args, scope)
                            : Inspect<uint32_t>(loop, n, args, scope);
  }
}

// `n` contiguous elements; the pointers move on over calls of at most kMostPerCall elements.
void CallContiguous(const Loop& loop, npy_intp n, const std::array<char*, kMaxOperands>& args,
                    ErrorScope& scope, npy_intp base) {
  for (npy_intp done = 0; done < n;) {
    npy_intp count = std::min(n - done, kMostPerCall);
    std::array<char*, kMaxOperands> at = args;
    for (size_t k = 0; k < at.size(); ++k) at[k] += done * loop.sizes[k];
    if (loop.scalar_second) {
      // The run of equal second arguments, compared as bits.
      npy_intp run = 1;
      const auto size = static_cast<size_t>(loop.sizes[1]);
      while (run < count && std::memcmp(at[1], at[1] + run * loop.sizes[1], size) == 0) ++run;
      count = run;
    }
    scope.SetBase(base + done);
    CallKernel(loop, count, at.data(), scope);
    done += count;
  }
}

// As CallContiguous with one second argument for all, of a UnaryScalar entry.
void CallWithScalar(const Loop& loop, npy_intp n, const std::array<char*, kMaxOperands>& args,
                    ErrorScope& scope) {
  for (npy_intp done = 0; done < n; done += kMostPerCall) {
    const std::array<char*, kMaxOperands> at = {args[0] + done * loop.sizes[0], args[1],
                                                args[2] + done * loop.sizes[2], nullptr};
    scope.SetBase(done);
    CallKernel(loop, std::min(n - done, kMostPerCall), at.data(), scope);
  }
}

// Whether argument k of an inspected entry is overwritten by its results. (By NumPy's rules they
// are in the same places then, element by element.)
bool OverwritesInspected(const Loop& loop, char* const* args, int k) {
  return loop.inspected && args[k] == args[loop.arguments];
}

void RunBuffered(const Loop& loop, npy_intp n, char* const* args, const npy_intp* steps,
                 ErrorScope& scope) {
  alignas(64) char buffers[kMaxOperands][kBlock * 16];
  const int operands = loop.arguments + loop.results;
  std::array<bool, kMaxOperands> buffered{};
  for (int k = 0; k < operands; ++k) {
    buffered[k] =
        steps[k] != loop.sizes[k] || (k < loop.arguments && OverwritesInspected(loop, args, k));
    if (k < loop.arguments && steps[k] == 0) {
      Copy(loop.sizes[k], args[k], 0, buffers[k], loop.sizes[k], std::min(n, kBlock));
    }
  }
  for (npy_intp done = 0; done < n; done += kBlock) {
    const npy_intp count = std::min(n - done, kBlock);
    std::array<char*, kMaxOperands> at{};
    for (int k = 0; k < operands; ++k) {
      at[k] = buffered[k] ? buffers[k] : args[k] + done * steps[k];
      if (buffered[k] && k < loop.arguments && steps[k] != 0) {
        Copy(loop.sizes[k], args[k] + done * steps[k], steps[k], at[k], loop.sizes[k], count);
      }
    }
    CallContiguous(loop, count, at, scope, done);
    for (int k = loop.arguments; k < operands; ++k) {
      if (buffered[k]) {
        Copy(loop.sizes[k], at[k], loop.sizes[k], args[k] + done * steps[k], steps[k], count);
      }
    }
  }
}

// Whether an element's result is a later one's argument: NumPy reduces (one place for all results)
// and accumulates (each result the next first argument) by such calls, and by no others.
bool IsSerial(const Loop& loop, char* const* args, const npy_intp* steps) {
  if (loop.arguments != 2 || loop.results != 1 || steps[0] != steps[2]) return false;
  return steps[0] == 0 ? args[0] == args[2] : args[2] == args[0] + steps[0];
}

void RunSerially(const Loop& loop, npy_intp n, char* const* args, const npy_intp* steps) {
  ErrorScope scope;
  for (npy_intp i = 0; i < n; ++i) {
    scope.SetBase(i);
    const std::array<char*, kMaxOperands> at = {args[0] + i * steps[0], args[1] + i * steps[1],
                                                args[2] + i * steps[2], nullptr};
    CallKernel(loop, 1, at.data(), scope);
  }
}

// Elements that do not depend on each other.
void RunElements(const Loop& loop, npy_intp n, char* const* args, const npy_intp* steps) {
  const int operands = loop.arguments + loop.results;
  std::array<char*, kMaxOperands> at{};
  bool contiguous = true, all_but_scalar = true;
  for (int k = 0; k < operands; ++k) {
    at[k] = args[k];
    const bool dense = steps[k] == loop.sizes[k] || n <= 1;
    const bool direct = dense && !(k < loop.arguments && OverwritesInspected(loop, args, k));
    contiguous &= direct;
    all_but_scalar &= k == 1 ? steps[k] == 0 : direct;
  }
  ErrorScope scope;
  if (contiguous) {
    CallContiguous(loop, n, at, scope, 0);
  } else if (loop.scalar_second && all_but_scalar) {
    CallWithScalar(loop, n, at, scope);
  } else {
    RunBuffered(loop, n, args, steps, scope);
  }
}

// The same by several threads.
void RunShared(const Loop& loop, npy_intp n, char* const* args, const npy_intp* steps,
               unsigned threads) {
  const auto shares = static_cast<size_t>((n - 1) / kShare + 1);
  const size_t workers = std::min<size_t>(threads, shares);
  detail::Blocks blocks(shares, workers);
  detail::FloatingPoint environment;
  auto work = [&] {
    environment.Run([&] {
      blocks.Work([&](size_t i) {
        const npy_intp first = static_cast<npy_intp>(i) * kShare;
        std::array<char*, kMaxOperands> at{};
        for (int k = 0; k < loop.arguments + loop.results; ++k) at[k] = args[k] + first * steps[k];
        RunElements(loop, std::min(kShare, n - first), at.data(), steps);
      });
    });
  };
  detail::Helpers::Shared().Run(workers - 1, work);
  environment.SetFlags();
}

// Complex functions with poles: of one argument all their infinities, of two those at a zero.
constexpr std::string_view kWithPoles[] = {"Ln", "Log10", "Atan", "Atanh", "Pow", "Powx"};

struct OperandTypes {
  int real, complex;
  npy_intp real_size, complex_size;
};

// The errors and, one by one, the other elements that raise flags: those of functions without
// codes, and overflows that have none (powers, quotients).
std::vector<ElementError> WithFlags(const Loop& loop, npy_intp n,
                                    const std::array<char*, kMaxOperands>& args,
                                    const std::vector<ElementError>& errors) {
  std::vector<ElementError> all;
  auto reported = errors.begin();
  for (npy_intp i = 0; i < n; ++i) {
    if (reported != errors.end() && reported->index == i) {
      all.push_back(*reported++);
      continue;
    }
    std::array<char*, kMaxOperands> one = args;
    for (size_t k = 0; k < one.size(); ++k) one[k] += i * loop.sizes[k];
    ClearFlags();
    {
      ErrorScope scope;
      CallKernel(loop, 1, one.data(), scope);
    }
    if (const int32_t code = CodeOfFlags(); code != PEX_STATUS_OK) all.push_back({code, i});
  }
  return all;
}

}  // namespace

Loop MakeLoop(const pex::Entry& entry, bool swapped) {
  const OperandTypes t = entry.is_double() ? OperandTypes{NPY_DOUBLE, NPY_CDOUBLE, 8, 16}
                                           : OperandTypes{NPY_FLOAT, NPY_CFLOAT, 4, 8};
  Loop loop{.entry = &entry,
            .scalar_second = entry.function->shape == pex::Shape::UnaryScalar,
            .inspected = entry.is_complex() && entry.function->name != "Conj",
            .has_poles = std::ranges::count(kWithPoles, entry.function->name) != 0,
            .swapped = swapped,
            .arguments = pex::ArgumentCount(entry.function->shape),
            .results = pex::ResultCount(entry.function->shape)};
  for (int k = 0; k < loop.arguments + loop.results; ++k) {
    const int parts = k < loop.arguments ? entry.argument_parts() : entry.result_parts();
    loop.types[k] = parts == 2 ? t.complex : t.real;
    loop.sizes[k] = parts == 2 ? t.complex_size : t.real_size;
  }
  return loop;
}

Loop MakeIdentity(int type) {
  const npy_intp size = type == NPY_DOUBLE ? 8 : 4;
  return {.types = {type, type}, .sizes = {size, size}};
}

void RunLoop(char** args, const npy_intp* dimensions, const npy_intp* steps, void* data) {
  const Loop& loop = *static_cast<const Loop*>(data);
  const npy_intp n = dimensions[0];
  const unsigned threads = Threads();
  if (n > 1 && IsSerial(loop, args, steps)) {
    RunSerially(loop, n, args, steps);
  } else if (threads > 1 && n >= 2 * kShare) {
    try {
      RunShared(loop, n, args, steps, threads);
    } catch (const std::bad_alloc&) {  // before anything is done
      RunElements(loop, n, args, steps);
    }
  } else {
    RunElements(loop, n, args, steps);
  }
}

unsigned Threads() { return thread_count.load(std::memory_order_relaxed); }

void SetThreads(unsigned count) { thread_count.store(count, std::memory_order_relaxed); }

std::vector<ElementError> RunCollecting(const Loop& loop, npy_intp n, char* const* args) {
  std::vector<ElementError> errors;
  std::array<char*, kMaxOperands> at{};
  std::copy_n(args, loop.arguments + loop.results, at.begin());
  const bool has_codes =
      loop.entry != nullptr && !loop.entry->is_complex() && loop.entry->function->tiered;
  ClearFlags();
  {
    ErrorScope scope(has_codes ? &errors : nullptr);
    CallContiguous(loop, n, at, scope, 0);
  }
  uint32_t flags = RaisedFlags();
  for (const ElementError& error : errors) flags &= ~FlagOf(error.code);
  if (flags != 0) errors = WithFlags(loop, n, at, errors);
  ClearFlags();
  return errors;
}

}  // namespace pexquo::python
