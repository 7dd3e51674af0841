// Streams made by hand for the generators, the congruential ones element by element, straight from
// their definitions, and the vector levels to run them on.
#ifndef TESTS_GENERATORS_REFERENCE_H_
#define TESTS_GENERATORS_REFERENCE_H_

#include <cmath>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "hwy/targets.h"
#include "pexquo/quo.h"
#include "quo_sub_kernel/wh/wh_tables.h"

namespace quo::test {

__extension__ typedef unsigned __int128 Wide;

struct Component {
  uint64_t x, a, m;
  double inverse;
  void Step() { x = static_cast<uint64_t>(Wide{x} * a % m); }
};

inline uint64_t PowMod(uint64_t a, Wide e, uint64_t m) {
  uint64_t power = 1 % m;
  for (; e != 0; e >>= 1, a = static_cast<uint64_t>(Wide{a} * a % m)) {
    if (e & 1) power = static_cast<uint64_t>(Wide{power} * a % m);
  }
  return power;
}

// A generator under test: its entries, its layout, and its components.
struct Generator {
  const char* name;
  int32_t id;
  size_t state_bytes;  // behind the head
  size_t words;        // 32-bit words per integer output
  bool writes_first;   // a count of 0 or less makes one output
  int32_t (*init)(int32_t, StreamState*, int32_t, const uint32_t*);
  int32_t (*dbrng)(StreamState*, int32_t, double*, double, double);
  int32_t (*sbrng)(StreamState*, int32_t, float*, float, float);
  int32_t (*ibrng)(StreamState*, int32_t, uint32_t*);
  std::vector<Component> start;  // congruential: x = 1 and the base multipliers
};

inline void PrintTo(const Generator& g, std::ostream* out) {
  *out << g.name << " " << std::hex << g.id << std::dec;
}

inline Generator Mcg31m1() {
  return {"MCG31M1",
          QUO_BRNG_MCG31M1,
          8,
          1,
          true,
          __quoBRngMCG31M1InitStream,
          __quodBRngMCG31M1,
          __quosBRngMCG31M1,
          __quoiBRngMCG31M1,
          {{1, 1132489760, 2147483647, 4.656612875245797e-10}}};
}

inline Generator Mcg59() {
  return {"MCG59",
          QUO_BRNG_MCG59,
          16,
          2,
          false,
          __quoBRngMCG59InitStream,
          __quodBRngMCG59,
          __quosBRngMCG59,
          __quoiBRngMCG59,
          {{1, 302875106592253, uint64_t{1} << 59, 1.734723475976807e-18}}};
}

inline Generator Wh(int member, bool legacy = false) {
  Generator g{"WH",         legacy ? 4 + member : QUO_BRNG_WH + member,
              32,           4,
              false,        __quoBRngWHInitStream,
              __quodBRngWH, __quosBRngWH,
              __quoiBRngWH, {}};
  for (int j = 0; j < 4; ++j) {
    const uint32_t m = _quo_WH_M[member][j];
    g.start.push_back({1, _quo_WH_A[member][j], m, 1.0 / m});
  }
  return g;
}

inline std::vector<Generator> Generators() {
  return {Mcg31m1(), Mcg59(), Wh(0), Wh(5), Wh(136), Wh(272, true)};
}

#define QUO_GENERATOR_UNDER_TEST(G, id, state_bytes)                                       \
  {                                                                                        \
#G, id, state_bytes, 1, false, __quoBRng##G##InitStream, __quodBRng##G, __quosBRng##G, \
        __quoiBRng##G, {}                                                                  \
  }
inline Generator R250() { return QUO_GENERATOR_UNDER_TEST(R250, QUO_BRNG_R250, 1008); }
inline Generator Mrg32k3a() { return QUO_GENERATOR_UNDER_TEST(MRG32K3A, QUO_BRNG_MRG32K3A, 24); }

inline Generator Mt19937() { return QUO_GENERATOR_UNDER_TEST(MT19937, QUO_BRNG_MT19937, 2504); }
inline Generator Mt2203(int member) {
  return QUO_GENERATOR_UNDER_TEST(MT2203, QUO_BRNG_MT2203 + member, 296);
}

inline Generator Sobol() { return QUO_GENERATOR_UNDER_TEST(Sobol, QUO_BRNG_SOBOL, 10576); }
inline Generator Niederr() { return QUO_GENERATOR_UNDER_TEST(Niederr, QUO_BRNG_NIEDERR, 43264); }

inline std::vector<Generator> AllGenerators() {
  std::vector<Generator> all = Generators();
  all.insert(all.end(), {R250(), Mrg32k3a(), Mt19937(), Mt2203(1), Sobol(), Niederr()});
  return all;
}

// Seed words that every generator takes: a quasi-random one its dimension.
inline std::vector<uint32_t> AnySeed(const Generator& g) {
  if (g.id == QUO_BRNG_SOBOL || g.id == QUO_BRNG_NIEDERR) return {13};
  return {12345, 678};
}

// A stream block as its creator makes it, with the state filled with rubbish until it is seeded.
class Stream {
 public:
  Stream(const Generator& g, const std::vector<uint32_t>& seed)
      : g_(&g), blocks_((g.state_bytes + 16) / sizeof(Block) + 2) {
    std::memset(blocks_.data(), 0xA5, size());
    get()->id = g.id;
    get()->header = 1;
    get()->chunks = nullptr;
    Init(QUO_INIT_STANDARD, static_cast<int32_t>(seed.size()), seed.data());
  }
  StreamState* get() { return reinterpret_cast<StreamState*>(blocks_.data()); }
  int32_t Init(int32_t method, int32_t n, const uint32_t* params) {
    return g_->init(method, get(), n, params);
  }
  int32_t Leapfrog(int32_t streams, uint32_t k) { return Init(QUO_INIT_LEAPFROG, streams, &k); }
  int32_t SkipAhead(uint64_t count) {
    const uint32_t params[2] = {static_cast<uint32_t>(count), static_cast<uint32_t>(count >> 32)};
    return Init(QUO_INIT_SKIPAHEAD, 2, params);
  }
  std::vector<uint32_t> Words(int32_t n) {
    std::vector<uint32_t> words(n * g_->words);
    g_->ibrng(get(), n, words.data());
    return words;
  }
  int32_t PassOver(int32_t n) { return g_->ibrng(get(), n, nullptr); }
  std::vector<double> Doubles(int32_t n, double a = 0, double b = 1) {
    std::vector<double> r(n);
    g_->dbrng(get(), n, r.data(), a, b);
    return r;
  }
  std::vector<float> Floats(int32_t n, float a = 0, float b = 1) {
    std::vector<float> r(n);
    g_->sbrng(get(), n, r.data(), a, b);
    return r;
  }
  void SetState(const std::string& state) { std::memcpy(get() + 1, state.data(), g_->state_bytes); }
  std::string State() const { return std::string(bytes() + 16, g_->state_bytes); }
  // Bytes of the block that belong to nobody.
  bool RestUntouched() const {
    for (size_t i = 16 + g_->state_bytes; i < size(); ++i) {
      if (static_cast<unsigned char>(bytes()[i]) != 0xA5) return false;
    }
    return true;
  }

 private:
  struct alignas(32) Block {
    unsigned char bytes[32];
  };
  size_t size() const { return blocks_.size() * sizeof(Block); }
  const char* bytes() const { return reinterpret_cast<const char*>(blocks_.data()); }

  const Generator* g_;
  std::vector<Block> blocks_;
};

// The same by the definition, one element at a time.
class Reference {
 public:
  Reference(const Generator& g, const std::vector<uint32_t>& seed) : g_(&g), c_(g.start) {
    if (g.name == std::string("WH")) {
      for (size_t j = 0; j < 4 && j < seed.size(); ++j) c_[j].x = seed[j];
    } else if (g.name == std::string("MCG59")) {
      if (seed.size() >= 1) c_[0].x = seed[0];
      if (seed.size() >= 2) c_[0].x += uint64_t{seed[1]} << 32;
    } else if (seed.size() >= 1) {
      c_[0].x = seed[0];
    }
    for (Component& c : c_) {
      c.x %= c.m;
      if (c.x == 0) c.x = 1;
    }
  }
  // Any bits as the state.
  void SetState(const std::string& state) {
    const size_t size = state.size() / (2 * c_.size());
    for (size_t j = 0; j < c_.size(); ++j) {
      c_[j].x = c_[j].a = 0;
      std::memcpy(&c_[j].x, state.data() + j * size, size);
      std::memcpy(&c_[j].a, state.data() + (c_.size() + j) * size, size);
    }
  }
  void Leapfrog(uint64_t streams, uint64_t k) {
    SkipAhead(k);
    for (Component& c : c_) c.a = PowMod(c.a, streams, c.m);
  }
  void SkipAhead(Wide count) {
    for (Component& c : c_) {
      c.x = static_cast<uint64_t>(Wide{c.x} * PowMod(c.a, count, c.m) % c.m);
    }
  }
  void Step() {
    for (Component& c : c_) c.Step();
  }
  std::vector<uint32_t> Words(int n) {
    std::vector<uint32_t> words;
    for (int i = 0; i < n; ++i, Step()) {
      for (const Component& c : c_) {
        words.push_back(static_cast<uint32_t>(c.x));
        if (g_->words == 2) words.push_back(static_cast<uint32_t>(c.x >> 32));
      }
    }
    return words;
  }
  std::vector<double> Doubles(int n, double a = 0, double b = 1) {
    std::vector<double> r;
    for (int i = 0; i < n; ++i, Step()) r.push_back(Uniform(a, b));
    return r;
  }
  std::vector<float> Floats(int n, float a = 0, float b = 1) {
    std::vector<float> r;
    for (int i = 0; i < n; ++i, Step()) r.push_back(static_cast<float>(Uniform(a, b)));
    return r;
  }
  // The state's bytes: all x, then all multipliers, each of the output word's size.
  std::string State() const {
    std::string state;
    const size_t size = g_->words == 2 ? 8 : 4;
    for (const Component& c : c_) state.append(reinterpret_cast<const char*>(&c.x), size);
    for (const Component& c : c_) state.append(reinterpret_cast<const char*>(&c.a), size);
    return state;
  }

 private:
  double Uniform(double a, double b) const {
    if (c_.size() == 1) {
      const double scale = (b - a) * c_[0].inverse;
      const double product = static_cast<double>(c_[0].x) * scale;
      return product + a;
    }
    double s = static_cast<double>(c_[0].x) * c_[0].inverse;
    for (size_t j = 1; j < 4; ++j) s = s + static_cast<double>(c_[j].x) * c_[j].inverse;
    const double u = s - std::trunc(s);
    return u * (b - a) + a;
  }

  const Generator* g_;
  std::vector<Component> c_;
};

// Bits, so that results compare without rounding and signs of zero count.
template <typename T>
std::string Bits(const std::vector<T>& v) {
  return std::string(reinterpret_cast<const char*>(v.data()), v.size() * sizeof(T));
}

// n outputs into the middle of a buffer that starts `shift` bytes off alignment: the same as
// `expected`, and the bytes around them untouched.
template <typename T, class Draw>
void ExpectDraw(const std::vector<T>& expected, size_t shift, Draw draw) {
  const size_t bytes = expected.size() * sizeof(T);
  std::vector<char> buffer(bytes + 256, 0x5A);
  char* const r = buffer.data() + 64 + shift;
  ASSERT_EQ(draw(reinterpret_cast<T*>(r)), QUO_OK);
  EXPECT_TRUE(std::string(r, bytes) == Bits(expected)) << expected.size() << " elements";
  const std::string around(64 + shift, 0x5A);
  EXPECT_EQ(std::string(buffer.data(), around.size()), around);
  EXPECT_EQ(std::string(r + bytes, 64), around.substr(0, 64));
}

// Each vector level that the machine has.
template <class Body>
void OnEveryLevel(Body body) {
  hwy::SetSupportedTargetsForTest(0);
  const int64_t all = hwy::SupportedTargets();
  for (int64_t level : {HWY_SSE4, HWY_AVX2, HWY_AVX3}) {
    if ((all & level) == 0) continue;
    SCOPED_TRACE(hwy::TargetName(level));
    hwy::SetSupportedTargetsForTest(level);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    body();
  }
  hwy::SetSupportedTargetsForTest(0);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

}  // namespace quo::test

#endif  // TESTS_GENERATORS_REFERENCE_H_
