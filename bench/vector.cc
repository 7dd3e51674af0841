// pexquo_bench: every catalogued function, tier by tier, beside its peers at the same vector level.
// Rows are named FUNCTION/TYPE/TIER/n:N and FUNCTION/TYPE/peer/NAME/n:N.
#include <map>
#include <random>
#include <string>
#include <utility>

#include "bench/peers.h"
#include "catalogue/catalogue.h"
#include "hwy/aligned_allocator.h"
#include "pexquo/pex.h"

namespace {

constexpr int kLengths[] = {16, 1024, 100000};
constexpr int kLongest = 100000;
constexpr double kNoUlp = -1;
constexpr int kShort = 15;  // all counts up to it show what a small call costs

template <typename T>
using Array = hwy::AlignedFreeUniquePtr<T[]>;

// Arguments uniform on a range, made once: ours and the peers read the same array.
template <typename T>
const T* Arguments(pex::Range range, int seed) {
  static std::map<std::pair<std::pair<double, double>, int>, Array<T>> made;
  Array<T>& array = made[{{range.lo, range.hi}, seed}];
  if (array == nullptr) {
    array = hwy::AllocateAligned<T>(kLongest);
    std::mt19937_64 engine(seed);
    std::uniform_real_distribution<double> uniform(range.lo, range.hi);
    for (int i = 0; i < kLongest; ++i) array[i] = static_cast<T>(uniform(engine));
  }
  return array.get();
}

template <typename T>
struct Operands {
  const T *a, *b;
  T *r, *r2;
};

template <typename T>
Operands<T> OperandsOf(const pex::Precision& precision) {
  static const Array<T> results[] = {hwy::AllocateAligned<T>(kLongest),
                                     hwy::AllocateAligned<T>(kLongest)};
  const bool same = precision.typical2.lo == 0 && precision.typical2.hi == 0;
  return {Arguments<T>(precision.typical, 1),
          Arguments<T>(same ? precision.typical : precision.typical2, 2), results[0].get(),
          results[1].get()};
}

template <typename T>
void AddEntry(const pex::Entry& entry, const std::string& name, int n) {
  const auto [a, b, r, r2] = OperandsOf<T>(entry.precision());
  void* const address = const_cast<void*>(entry.address);
  switch (entry.function->shape) {
    case pex::Shape::Unary: {
      const auto f = reinterpret_cast<int (*)(int32_t, const T*, T*)>(address);
      return bench::Add(name, n, kNoUlp, [=, a = a, r = r] { f(n, a, r); });
    }
    case pex::Shape::Binary: {
      const auto f = reinterpret_cast<int (*)(int32_t, const T*, const T*, T*)>(address);
      return bench::Add(name, n, kNoUlp, [=, a = a, b = b, r = r] { f(n, a, b, r); });
    }
    case pex::Shape::UnaryScalar: {
      const auto f = reinterpret_cast<int (*)(int32_t, const T*, T, T*)>(address);
      return bench::Add(name, n, kNoUlp, [=, a = a, b = b, r = r] { f(n, a, *b, r); });
    }
    case pex::Shape::UnaryTwo: {
      const auto f = reinterpret_cast<int (*)(int32_t, const T*, T*, T*)>(address);
      return bench::Add(name, n, kNoUlp, [=, a = a, r = r, r2 = r2] { f(n, a, r, r2); });
    }
    case pex::Shape::ToReal:
    case pex::Shape::FromReal:
      break;  // complex functions: complex.cc
  }
}

template <typename T>
void AddPeer(const bench::Peer& peer, bench::PeerCall<T> call, const std::string& name, int n,
             const pex::Precision& precision) {
  const auto [a, b, r, r2] = OperandsOf<T>(precision);
  bench::Add(name, n, peer.ulp, [=, a = a, b = b, r = r, r2 = r2] { call(n, a, b, r, r2); });
}

bool AddAll(const bench::Level& level) {
  _pexSetMode(PEX_ERRMODE_IGNORE);
  for (const pex::Entry& entry : pex::Entries()) {
    const std::string name = std::string(entry.function->name) + "/" + entry.type + "/" +
                             std::string(pex::TierName(entry.tier));
    const auto add = [&](int n) {
      entry.is_double() ? AddEntry<double>(entry, name, n) : AddEntry<float>(entry, name, n);
    };
    for (int n = 1; n <= kShort; ++n) add(n);
    for (int n : kLengths) add(n);
  }
  for (const bench::Peer& peer : bench::PeersAt(level)) {
    const pex::Function* function = pex::FindFunction(peer.function);
    if (function == nullptr) continue;
    const std::string name =
        std::string(function->name) + (peer.d != nullptr ? "/d" : "/s") + "/peer/" + peer.name;
    for (int n : kLengths) {
      if (peer.d != nullptr) {
        AddPeer(peer, peer.d, name, n, function->d);
      } else {
        AddPeer(peer, peer.s, name, n, function->s);
      }
    }
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, "pexquo_bench", AddAll); }
