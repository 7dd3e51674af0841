// pexquo_bench_complex: every complex entry beside std::complex and beside a plain copy that moves
// as many bytes. Rows are named FUNCTION/TYPE/TIER/n:N, FUNCTION/TYPE/peer/std/n:N and
// FUNCTION/TYPE/peer/copy/n:N.
#include <array>
#include <complex>
#include <cstring>
#include <map>
#include <random>
#include <string>

#include "bench/run.h"
#include "catalogue/catalogue.h"
#include "hwy/aligned_allocator.h"

namespace {

constexpr int kLengths[] = {16, 512, 1024, 100000};
constexpr int kLongest = 100000;
constexpr double kNoUlp = -1;

// Arrays of complex numbers with parts uniform on a range, of real numbers, and for results,
// with room for the longest copy.
template <typename T>
struct Operands {
  using C = std::complex<T>;
  C *a, *b, *r;
  T *x, *q;
};

// The first arguments from one range, the second ones from another.
template <typename T>
const Operands<T>& OperandsOf(pex::Range first, pex::Range second) {
  using C = std::complex<T>;
  static std::map<std::array<double, 4>, Operands<T>> known;
  const auto [place, is_new] = known.try_emplace({first.lo, first.hi, second.lo, second.hi});
  Operands<T>& o = place->second;
  if (!is_new) return o;
  // Results begin half a page from arguments: a load waits for a store to another address that is
  // alike in its lower bits, and loads run ahead of stores.
  constexpr size_t kPage = 4096 / sizeof(T);
  constexpr size_t kPages = kLongest / kPage + 2;  // of as many numbers, and room to spare
  T* const p = hwy::AllocateAligned<T>(9 * kPages * kPage).release();
  const auto at = [&](size_t first_page, size_t part) {  // so many eighths of a page further
    return p + first_page * kPages * kPage + part * kPage / 8;
  };
  o = {reinterpret_cast<C*>(at(0, 0)), reinterpret_cast<C*>(at(2, 1)),
       reinterpret_cast<C*>(at(6, 5)), at(4, 0), at(5, 5)};
  std::mt19937_64 engine(1);
  const auto uniform = [](pex::Range range) {
    return std::uniform_real_distribution<T>(static_cast<T>(range.lo), static_cast<T>(range.hi));
  };
  auto draw_a = uniform(first), draw_b = uniform(second);
  for (int i = 0; i < kLongest; ++i) {
    o.x[i] = draw_a(engine);
    o.a[i] = {draw_a(engine), draw_a(engine)};
    o.b[i] = {draw_b(engine), draw_b(engine)};
  }
  return o;
}

template <typename T>
struct Peer {
  const char* function;
  void (*call)(int n, const Operands<T>& o);
};

template <typename T, auto F>
void Loop(int n, const Operands<T>& o) {
  for (int i = 0; i < n; ++i) F(o, i);
}

#define PEER(name, ...)                                             \
  {                                                                 \
    name, Loop<T, [](const Operands<T>& o, int i) { __VA_ARGS__; }> \
  }
template <typename T>
constexpr Peer<T> kPeers[] = {
    PEER("Add", o.r[i] = o.a[i] + o.b[i]),
    PEER("Sub", o.r[i] = o.a[i] - o.b[i]),
    PEER("Mul", o.r[i] = o.a[i] * o.b[i]),
    PEER("MulByConj", o.r[i] = o.a[i] * std::conj(o.b[i])),
    PEER("Div", o.r[i] = o.a[i] / o.b[i]),
    PEER("Conj", o.r[i] = std::conj(o.a[i])),
    PEER("Abs", o.q[i] = std::abs(o.a[i])),
    PEER("Arg", o.q[i] = std::arg(o.a[i])),
    PEER("CIS", o.r[i] = std::polar(T(1), o.x[i])),
    PEER("Exp", o.r[i] = std::exp(o.a[i])),
    PEER("Ln", o.r[i] = std::log(o.a[i])),
    PEER("Log10", o.r[i] = std::log10(o.a[i])),
    PEER("Sqrt", o.r[i] = std::sqrt(o.a[i])),
    PEER("Sin", o.r[i] = std::sin(o.a[i])),
    PEER("Cos", o.r[i] = std::cos(o.a[i])),
    PEER("Tan", o.r[i] = std::tan(o.a[i])),
    PEER("Sinh", o.r[i] = std::sinh(o.a[i])),
    PEER("Cosh", o.r[i] = std::cosh(o.a[i])),
    PEER("Tanh", o.r[i] = std::tanh(o.a[i])),
    PEER("Asin", o.r[i] = std::asin(o.a[i])),
    PEER("Acos", o.r[i] = std::acos(o.a[i])),
    PEER("Atan", o.r[i] = std::atan(o.a[i])),
    PEER("Asinh", o.r[i] = std::asinh(o.a[i])),
    PEER("Acosh", o.r[i] = std::acosh(o.a[i])),
    PEER("Atanh", o.r[i] = std::atanh(o.a[i])),
    PEER("Pow", o.r[i] = std::pow(o.a[i], o.b[i])),
    PEER("Powx", o.r[i] = std::pow(o.a[i], o.b[0])),
};
#undef PEER

template <typename T>
void AddEntry(const pex::Entry& entry, int n) {
  const pex::Range first = entry.precision().typical, second = entry.precision().typical2;
  const Operands<T>& o = OperandsOf<T>(first, second.lo == second.hi ? first : second);
  const std::string stem = std::string(entry.function->name) + "/" + entry.type;
  const void* a = entry.argument_parts() == 2 ? static_cast<const void*>(o.a) : o.x;
  void* r = entry.result_parts() == 2 ? static_cast<void*>(o.r) : o.q;
  bench::Add(stem + "/" + std::string(pex::TierName(entry.tier)), n, kNoUlp,
             [=] { entry.Call(n, a, o.b, r, nullptr); });
  if (entry.tier != pex::Tier::Plain && entry.tier != pex::Tier::HA) return;  // peers once
  for (const Peer<T>& peer : kPeers<T>) {
    if (peer.function != entry.function->name) continue;
    bench::Add(stem + "/peer/std", n, kNoUlp, [=] { peer.call(n, o); });
  }
  // As many bytes read and written as the entry reads and writes in all.
  const int numbers =
      entry.argument_parts() * pex::ArgumentCount(entry.function->shape) + entry.result_parts();
  const size_t bytes = sizeof(T) * static_cast<size_t>(numbers) * static_cast<size_t>(n) / 2;
  bench::Add(stem + "/peer/copy", n, kNoUlp, [=] { std::memcpy(o.r, o.a, bytes); });
}

bool AddAll(const bench::Level&) {
  for (const pex::Entry& entry : pex::ComplexEntries()) {
    for (const int n : kLengths) {
      entry.is_double() ? AddEntry<double>(entry, n) : AddEntry<float>(entry, n);
    }
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, "pexquo_bench_complex", AddAll); }
