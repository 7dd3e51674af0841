// Many cores give the bits of one thread, leave the stream where one thread leaves it, and report
// special elements as one thread does.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cfenv>
#include <chrono>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "pexquo/pexquo.hpp"

namespace {

using pexquo::generator;
using pexquo::parallel;
using pexquo::stream;

constexpr std::size_t kBlock = 64;
constexpr std::size_t kLengths[] = {0, 1, 63, 127, 128, 129, 191, 192, 193, 640, 1000};

template <typename T>
bool SameBits(const std::vector<T>& a, const std::vector<T>& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

// Abstract streams over one counter each, which a copy would share.
double refilled[100];
int32_t Refill(StreamState*, int32_t* n, double* buffer, int32_t*, int32_t* nmax, int32_t* pos) {
  static std::mt19937_64 engine(1);
  for (int32_t i = 0; i < *nmax; ++i) {
    buffer[(*pos + i) % *n] = std::ldexp(static_cast<double>(engine() >> 11), -53);
  }
  return *nmax;
}

std::vector<stream> Streams() {
  std::vector<stream> streams;
  for (const generator g : {generator::mcg31m1, generator::r250, generator::mrg32k3a,
                            generator::mcg59, generator::mt19937}) {
    streams.emplace_back(g, 7);
  }
  streams.emplace_back(generator::wh, pexquo::member{100}, 7);
  streams.emplace_back(generator::mt2203, pexquo::member{1000}, 7);
  stream leaping(generator::mcg59, 3);
  leaping.leapfrog(1, 3);
  streams.push_back(leaping);
  for (const generator g : {generator::sobol, generator::niederr}) {
    try {
      streams.emplace_back(g, 3);
    } catch (const pexquo::error& e) {
      // The registry has rows for generators that are still to come.
      EXPECT_EQ(e.status(), QUO_INVALID_BRNG);
    }
  }
  return streams;
}

// The next numbers, a waiting normal one among them.
std::vector<double> Continuation(stream& s) {
  std::vector<double> next = pexquo::normal{0, 1, pexquo::normal_method::boxmuller2}.sample(s, 3);
  for (const double x : pexquo::uniform{}.sample(s, 3)) next.push_back(x);
  return next;
}

template <typename T, typename D>
void CompareFill(const D& d, const stream& start, const std::string& what) {
  SCOPED_TRACE(what + " from " + std::string(name(start.kind())));
  const std::size_t unit = d.unit(start);
  for (const std::size_t length : kLengths) {
    stream serial(start);
    const std::size_t n = length * unit;
    std::vector<T> expected(n);
    d.fill(serial, expected);
    const auto next = Continuation(serial);
    for (unsigned threads = 1; threads <= 7; ++threads) {
      stream s(start);
      std::vector<T> r(n);
      parallel(threads, kBlock).fill(d, s, r);
      ASSERT_TRUE(SameBits(r, expected)) << n << " by " << threads << " threads";
      ASSERT_TRUE(SameBits(Continuation(s), next)) << n << " by " << threads << " threads";
    }
  }
}

template <typename D>
void CompareBoth(const D& d, const stream& s, const std::string& what) {
  CompareFill<double>(d, s, what);
  CompareFill<float>(d, s, what + " in single precision");
}

TEST(ParallelFill, EveryDistributionGivesTheSerialBits) {
  using pexquo::normal_method;
  for (const stream& s : Streams()) {
    CompareBoth(pexquo::uniform{-1, 3}, s, "uniform");
    CompareBoth(pexquo::uniform{-1, 3, true}, s, "uniform, clamped");
    CompareBoth(pexquo::normal{1, 2, normal_method::boxmuller}, s, "boxmuller");
    CompareBoth(pexquo::normal{1, 2, normal_method::icdf}, s, "icdf");
    CompareBoth(pexquo::exponential{}, s, "exponential");
    CompareBoth(pexquo::laplace{}, s, "laplace");
    CompareBoth(pexquo::weibull{2}, s, "weibull");
    CompareBoth(pexquo::cauchy{}, s, "cauchy");
    CompareBoth(pexquo::rayleigh{}, s, "rayleigh");
    CompareBoth(pexquo::gumbel{}, s, "gumbel");
    CompareFill<std::int32_t>(pexquo::uniform_int{-5, 1000}, s, "uniform_int");
    CompareFill<std::int32_t>(pexquo::bernoulli{0.3}, s, "bernoulli");
    CompareFill<std::int32_t>(pexquo::geometric{0.3}, s, "geometric");
    CompareFill<std::uint32_t>(pexquo::uniform_bits{}, s, "uniform_bits");
  }
}

// Distributions in pairs, from streams in which none, one of the precision, or one of the other
// precision waits.
TEST(ParallelFill, PairsGiveTheSerialBits) {
  using pexquo::normal_method;
  const pexquo::normal pairs{1, 2, normal_method::boxmuller2};
  for (const stream& fresh : Streams()) {
    for (int waiting = 0; waiting < 4; ++waiting) {
      stream s(fresh);
      if (waiting % 2 == 1) (void)pairs.sample<double>(s, 5);
      if (waiting / 2 == 1) (void)pairs.sample<float>(s, 3);
      const std::string what = ", waiting: " + std::to_string(waiting);
      CompareBoth(pairs, s, "boxmuller2" + what);
      CompareBoth(pexquo::lognormal{0, 0.5}, s, "lognormal" + what);
      for (const std::size_t m : {1, 2, 3}) {
        const pexquo::normal_mv vectors(std::vector<double>(m, 0.5), std::vector<double>(m, 2),
                                        pexquo::storage::diagonal, normal_method::boxmuller2);
        CompareBoth(vectors, s, "normal_mv of dimension " + std::to_string(m) + what);
      }
    }
  }
}

TEST(ParallelFill, VectorsGiveTheSerialBits) {
  const pexquo::normal_mv vectors({0, 1, 2}, {1, 0.5, 0.25, 2, 0.5, 3}, pexquo::storage::packed);
  for (const stream& s : Streams()) CompareBoth(vectors, s, "normal_mv");
  std::vector<double> factor(13 * 13);
  for (std::size_t i = 0; i < factor.size(); ++i) factor[i] = 1 / (1 + static_cast<double>(i));
  const pexquo::normal_mv many(std::vector<double>(13, 1), factor);
  CompareBoth(many, stream("mcg59", 1), "normal_mv by BLAS");
}

// Threads that come and go as they like: all steps are drawn once, each from its place.
TEST(ParallelFill, PartsOfThreadsThatAreLateOrSlow) {
  using pexquo::detail::Advance;
  const auto seed = std::random_device()();
  std::printf("seed %u\n", seed);
  std::mt19937 random(seed);
  const auto up_to = [&](std::size_t most) { return random() % (most + 1); };
  stream member(generator::mt2203, pexquo::member{77}, 7);
  for (const stream& fresh : {stream(generator::mt19937, 7), member, stream(generator::r250, 7),
                              stream(generator::mrg32k3a, 7), stream(generator::mcg31m1, 7)}) {
    const Advance how = fresh.can_skip() ? Advance::skip : Advance::make;
    for (int round = 0; round < 60; ++round) {
      stream start(fresh);
      (void)pexquo::uniform_bits{}.sample(start, up_to(700));
      const std::size_t n = up_to(6000), step = 1 + up_to(2), threads = 1 + up_to(6);
      stream serial(start), s(start);
      const auto expected = pexquo::uniform_bits{}.sample(serial, n * step);
      std::vector<std::uint32_t> r(n * step);
      pexquo::detail::Parts parts(s, how, n, step, 1 + up_to(200), 0.1, threads, {});
      const auto work = [&](unsigned pace) {
        std::mt19937 delays(pace);
        const auto delay = [&] {
          std::this_thread::sleep_for(std::chrono::microseconds(delays() % 4 * (pace % 3) * 50));
        };
        delay();
        parts.Work([&](stream& from, std::size_t first, std::size_t count) {
          pexquo::uniform_bits{}.fill(from, std::span(r).subspan(first * step, count * step));
          delay();
        });
      };
      {
        std::vector<std::jthread> others;
        for (std::size_t t = 1; t < threads; ++t) others.emplace_back(work, random());
        work(random());
      }
      parts.End();
      ASSERT_EQ(r, expected) << name(fresh.kind()) << ", round " << round;
      ASSERT_EQ(Continuation(s), Continuation(serial)) << name(fresh.kind()) << ", round " << round;
    }
  }
}

TEST(ParallelFill, AbstractStreamsAreLeftToOneThread) {
  QuoStream* handle = nullptr;
  ASSERT_EQ(quodNewAbstractStream(&handle, 100, refilled, 0, 1, Refill), 0);
  stream s = stream::adopt(handle);
  const std::vector<double> whole = pexquo::uniform{}.sample(s, 1000);
  std::vector<double> r(1000);
  parallel(4, kBlock).fill(pexquo::uniform{}, s, r);
  // Its source goes on; were blocks drawn by several threads, numbers would repeat.
  std::vector<double> all(whole);
  all.insert(all.end(), r.begin(), r.end());
  std::sort(all.begin(), all.end());
  EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
}

// What one thread reports, with its places, and what it is told to put there.
template <typename T>
void CompareReports(const pexquo::lognormal& d, std::size_t at_least) {
  const auto replacing = [](pexquo::element_error& e) {
    e.results()[0] = static_cast<double>(e.index % 1000);
  };
  for (const generator g : {generator::mcg59, generator::mt19937}) {
    stream serial(g, 7), s(serial);
    std::vector<T> expected(3000), r(3000);
    std::vector<std::string> texts;
    {
      pexquo::error_scope scope{{.replace = replacing}};
      d.fill(serial, expected);
      for (const auto& e : scope) texts.push_back(e.text());
    }
    EXPECT_GE(texts.size(), at_least);
    pexquo::error_scope scope{{.replace = replacing}};
    parallel(4, kBlock).fill(d, s, r);
    EXPECT_TRUE(SameBits(r, expected));
    ASSERT_EQ(scope.size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(scope[i].text(), texts[i]);
    EXPECT_EQ(Continuation(s), Continuation(serial));
  }
}

TEST(ParallelFill, ReportsOfLognormalAreThoseOfOneThread) {
  CompareReports<double>(pexquo::lognormal{0, 400}, 100);
  CompareReports<double>(pexquo::lognormal{700, 5}, 10);
  CompareReports<float>(pexquo::lognormal{0, 50}, 100);
  CompareReports<float>(pexquo::lognormal{-85, 2}, 100);
  CompareReports<double>(pexquo::lognormal{}, 0);
  CompareReports<float>(pexquo::lognormal{}, 0);
}

// Uniforms of 0 and 1/4 give the largest normal number of all, and of 0 and 3/4 the least.
int32_t RefillWithEnds(StreamState*, int32_t*, double* buffer, int32_t*, int32_t*, int32_t*) {
  buffer[0] = buffer[2] = 0;
  buffer[1] = 0.25;
  buffer[3] = 0.75;
  return 4;
}

TEST(ParallelFill, LognormalThatReportsNothingIsShared) {
  const pexquo::lognormal wide{7.9, 17.94};
  ASSERT_FALSE(wide.reports<double>());
  EXPECT_TRUE((pexquo::lognormal{8.5, 17.94}.reports<double>()));
  double buffer[4];
  QuoStream* handle = nullptr;
  ASSERT_EQ(quodNewAbstractStream(&handle, 4, buffer, 0, 1, RefillWithEnds), 0);
  stream ends = stream::adopt(handle);
  for (const double mean : {wide.mean, -wide.mean}) {
    pexquo::error_scope scope;
    const auto x = pexquo::lognormal{mean, wide.sigma}.sample(ends, 4);
    EXPECT_TRUE(scope.empty());
    EXPECT_GT(*std::max_element(x.begin(), x.end()), 1e290);
  }
}

TEST(ParallelFill, RefusalsLeaveTheStreamAlone) {
  stream s(generator::mrg32k3a, 1), untouched(s);
  std::vector<double> r(1000, 5);
  const parallel cores(3, kBlock);
  EXPECT_THROW(cores.fill(pexquo::normal{0, -1}, s, r), pexquo::argument_error);
  EXPECT_THROW(cores.fill(pexquo::laplace{0, 0}, s, r), pexquo::argument_error);
  EXPECT_THROW(cores.fill(pexquo::normal_mv({0, 0, 0}, std::vector<double>(9, 1)), s, r),
               pexquo::argument_error);  // 1000 is no multiple of 3
  EXPECT_EQ(r, std::vector<double>(1000, 5));
  EXPECT_EQ(pexquo::uniform{}(s), pexquo::uniform{}(untouched));
  stream moved(std::move(s));
  EXPECT_THROW(cores.fill(pexquo::normal{}, s, r), pexquo::stream_error);  // NOLINT
}

// A generator that counts and skips, and whose outputs end.
constexpr std::uint64_t kOutputs = 3000;
std::uint64_t& PlaceOf(StreamState* s) { return *reinterpret_cast<std::uint64_t*>(s + 1); }
int32_t InitFinite(int32_t method, StreamState* s, int32_t, const uint32_t* params) {
  if (method == QUO_INIT_STANDARD) PlaceOf(s) = 0;
  if (method == QUO_INIT_SKIPAHEAD) PlaceOf(s) += params[0];
  return method == QUO_INIT_LEAPFROG ? QUO_LEAPFROG_UNSUPPORTED : 0;
}
int32_t DrawFinite(StreamState* s, int32_t n, double* r, double, double) {
  for (int32_t i = 0; i < n; ++i) {
    if (PlaceOf(s) >= kOutputs) return QUO_EMPTY_REFILL;
    r[i] = static_cast<double>(PlaceOf(s)++);
  }
  return 0;
}

TEST(ParallelFill, AFailureOfTheGeneratorComesOut) {
  BrngProperties record{};
  record.StateSize = 24;
  record.SeedCount = 1;
  record.WordBytes = 4;
  record.BitCount = 32;
  record.InitStream = InitFinite;
  record.dBRng = DrawFinite;
  record.sBRng = [](StreamState*, int32_t, float*, float, float) { return QUO_WRONG_OUTPUT; };
  record.iBRng = [](StreamState*, int32_t, uint32_t*) { return QUO_WRONG_OUTPUT; };
  const int32_t id = quoRegisterBrng(&record);
  ASSERT_GT(id, 0);
  for (const std::size_t n : {kOutputs - 1, kOutputs, kOutputs + 1, 2 * kOutputs}) {
    stream s(generator{id}, 1);
    std::vector<double> r(n), expected(n);
    std::iota(expected.begin(), expected.end(), 0.0);
    try {
      parallel(4, kBlock).fill(pexquo::uniform{}, s, r);
      EXPECT_LE(n, kOutputs);
      EXPECT_EQ(r, expected);
    } catch (const pexquo::stream_error& e) {
      EXPECT_GT(n, kOutputs);
      EXPECT_EQ(e.status(), QUO_EMPTY_REFILL);
    }
  }
}

// Arguments with special elements here and there.
template <typename T>
std::vector<T> Arguments(std::size_t n) {
  std::vector<T> a(n);
  for (std::size_t i = 0; i < n; ++i) a[i] = static_cast<T>(0.25 + static_cast<double>(i));
  for (std::size_t i = 0; i < n; i += 37) a[i] = 0;
  for (std::size_t i = 5; i < n; i += 53) a[i] = -1;
  return a;
}

template <typename T>
class ParallelApply : public testing::Test {};
using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(ParallelApply, Reals);

TYPED_TEST(ParallelApply, GivesTheSerialBitsAndErrors) {
  using T = TypeParam;
  for (const std::size_t n : kLengths) {
    const auto a = Arguments<T>(n);
    const std::vector<T> b(n, 3);
    for (unsigned threads = 1; threads <= 7; ++threads) {
      const parallel cores(threads, kBlock);
      std::vector<T> r(n), r2(n), expected(n), expected2(n);
      const auto compare = [&](auto run_serial, auto run_parallel) {
        pexquo::error_scope serial;
        run_serial();
        pexquo::error_scope scope;
        run_parallel();
        ASSERT_TRUE(SameBits(r, expected)) << n << " by " << threads;
        ASSERT_TRUE(SameBits(r2, expected2)) << n << " by " << threads;
        ASSERT_EQ(scope.size(), serial.size());
        for (std::size_t i = 0; i < scope.size(); ++i) {
          EXPECT_EQ(scope[i].text(), serial[i].text());
        }
      };
      compare([&] { pexquo::ln(a, expected); }, [&] { cores.apply(pexquo::ln, a, r); });
      compare([&] { pexquo::ln(a, expected, pexquo::tier::ep); },
              [&] { cores.apply(pexquo::ln, a, r, pexquo::tier::ep); });
      compare([&] { pexquo::div(b, a, expected); }, [&] { cores.apply(pexquo::div, b, a, r); });
      // Of the latter powers are other kernels', which record arguments of their own.
      for (const T b : {T(-2.5), T(-0.5), T(0.5), T(1.5), T(-1), T(-2), T(-1) / 3}) {
        compare([&] { pexquo::powx(a, b, expected); }, [&] { cores.apply(pexquo::powx, a, b, r); });
      }
      compare([&] { pexquo::sincos(a, expected, expected2); },
              [&] { cores.apply(pexquo::sincos, a, r, r2); });
      // In place.
      r = a;
      compare([&] { pexquo::ln(a, expected); }, [&] { cores.apply(pexquo::ln, r, r); });
    }
  }
}

TYPED_TEST(ParallelApply, ReplacesInIndexOrderInTheCallingThread) {
  using T = TypeParam;
  const auto a = Arguments<T>(1000);
  std::vector<T> r(1000), expected(1000);
  const auto replacing = [caller = std::this_thread::get_id(),
                          last = std::size_t{0}](pexquo::element_error& e) mutable {
    EXPECT_EQ(std::this_thread::get_id(), caller);
    EXPECT_GE(e.index, last);
    last = e.index;
    e.results()[0] = 1000.0 + static_cast<double>(e.index);
  };
  {
    pexquo::error_scope scope{{.replace = replacing}};
    pexquo::ln(a, expected);
    EXPECT_EQ(expected[37], T(1037));
  }
  pexquo::error_scope scope{{.replace = replacing}};
  parallel(4, kBlock).apply(pexquo::ln, a, r);
  EXPECT_TRUE(SameBits(r, expected));
}

TEST(ParallelApplyState, ExceptionsOfReplacementsComeOut) {
  const auto a = Arguments<double>(1000);
  std::vector<double> r(1000);
  pexquo::error_scope scope{{.replace = [](pexquo::element_error& e) {
    if (e.index == 74) throw std::domain_error("74");
  }}};
  EXPECT_THROW(parallel(4, kBlock).apply(pexquo::ln, a, r), std::domain_error);
  parallel(4, kBlock).apply(pexquo::exp, a, r);  // and once only
}

// Without anyone who looks at each element: status, errno and flags as after one thread.
TEST(ParallelApplyState, StatusErrnoAndFlagsAreThoseOfOneThread) {
  std::vector<double> a(1000, 1), r(1000);
  const auto state = [&](unsigned threads) {
    pexClearErrStatus();
    errno = 0;
    std::feclearexcept(FE_ALL_EXCEPT);
    parallel(threads, kBlock).apply(pexquo::ln, a, r);
    return std::vector<int>{pexGetErrStatus(), errno, std::fetestexcept(FE_INVALID | FE_DIVBYZERO),
                            static_cast<int>(pexGetMode()), pexGetErrorCallBack() == nullptr};
  };
  EXPECT_EQ(state(4), state(1));
  a[100] = -1;
  a[900] = 0;
  EXPECT_EQ(state(4), state(1));
  EXPECT_EQ(pexGetErrStatus(), PEX_STATUS_SINGULARITY);  // the last one
  std::swap(a[100], a[900]);
  EXPECT_EQ(state(4), state(1));
  EXPECT_EQ(errno, EDOM);
  // Of two elements of one code the later one counts.
  std::fill(a.begin(), a.end(), 1.0);
  a[100] = a[900] = -1;
  a[500] = 0;
  EXPECT_EQ(state(4), state(1));
  EXPECT_EQ(pexGetErrStatus(), PEX_STATUS_DOMAIN);
  const std::uint32_t old = pexSetMode(PEX_ERRMODE_IGNORE);
  EXPECT_EQ(state(4), state(1));
  pexSetMode(old);
  EXPECT_EQ(pexGetMode(), old);
}

// A line on standard error for every element, in their order.
TEST(ParallelApplyState, MessagesAreThoseOfOneThread) {
  const auto a = Arguments<double>(1000);
  std::vector<double> r(1000);
  const auto messages = [&](unsigned threads) {
    const std::uint32_t old = pexSetMode(PEX_ERRMODE_STDERR);
    testing::internal::CaptureStderr();
    parallel(threads, kBlock).apply(pexquo::ln, a, r);
    pexSetMode(old);
    return testing::internal::GetCapturedStderr();
  };
  const std::string expected = messages(1);
  EXPECT_GT(std::count(expected.begin(), expected.end(), '\n'), 40);
  EXPECT_EQ(messages(4), expected);
}

// Flags that no element is reported for come from whichever thread raised them.
TEST(ParallelApplyState, FlagsOfPlainArithmetic) {
  const parallel cores(4, kBlock);
  std::vector<double> r(100 * kBlock);
  for (std::size_t at = 0; at < r.size(); at += r.size() / 50) {
    std::vector<double> a(r.size(), 1);
    a[at] = std::numeric_limits<double>::max();
    std::feclearexcept(FE_ALL_EXCEPT);
    cores.apply(pexquo::add, a, a, r);
    ASSERT_NE(std::fetestexcept(FE_OVERFLOW), 0) << at;
  }
}

TEST(ParallelApplyState, ModeAndRoundingOfTheCaller) {
  std::vector<double> a(1000), b(1000, 1e-20), r(1000), expected(1000);
  std::iota(a.begin(), a.end(), 1.0);
  std::fesetround(FE_UPWARD);
  pexquo::add(a, b, expected);
  parallel(4, kBlock).apply(pexquo::add, a, b, r);
  EXPECT_EQ(std::fegetround(), FE_UPWARD);
  std::fesetround(FE_TONEAREST);
  EXPECT_GT(expected[7], 8);
  EXPECT_EQ(r, expected);

  pexquo::error_scope scope(pexquo::tier::ep);
  for (auto& x : a) x /= 1024;
  pexquo::exp(a, expected);
  EXPECT_NE(pexquo::exp(a, pexquo::tier::ha), expected);
  parallel(4, kBlock).apply(pexquo::exp, a, r);
  EXPECT_EQ(r, expected);
}

TEST(ParallelApplyState, ComplexArrays) {
  std::vector<std::complex<float>> z(1000), r(1000);
  for (std::size_t i = 0; i < z.size(); ++i) z[i] = {static_cast<float>(i) / 500, 1};
  parallel(3, kBlock).apply(pexquo::exp, z, r);
  EXPECT_EQ(r, pexquo::exp(z));
  std::vector<float> modulus(1000);
  parallel(3, kBlock).apply(pexquo::abs, z, modulus);
  EXPECT_EQ(modulus, pexquo::abs(z));
  EXPECT_THROW(parallel(3, kBlock).apply(pexquo::exp, z, std::span(r).first(999)),
               pexquo::argument_error);
}

TEST(ParallelForEach, EachOnceAndExceptionsComeOut) {
  for (unsigned threads = 1; threads <= 7; ++threads) {
    std::vector<int> calls(500);
    parallel(threads).for_each(calls.size(), [&](std::size_t i) { ++calls[i]; });
    EXPECT_EQ(calls, std::vector<int>(500, 1));
    EXPECT_THROW(parallel(threads).for_each(100,
                                            [](std::size_t i) {
                                              if (i == 50) throw std::runtime_error("50");
                                            }),
                 std::runtime_error);
  }
  parallel(3).for_each(0, [](std::size_t) { FAIL(); });
}

// Flags of all threads reach the caller, and their own begin with none.
TEST(ParallelForEach, FlagsOfTheHelpersAreTheCallers) {
  const auto caller = std::this_thread::get_id();
  std::feclearexcept(FE_ALL_EXCEPT);
  std::feraiseexcept(FE_UNDERFLOW);
  std::atomic<bool> helped{false};
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  parallel(2).for_each(2, [&](std::size_t) {
    if (std::this_thread::get_id() != caller && !helped) {  // it may get both
      EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);
      std::feraiseexcept(FE_OVERFLOW);
      helped = true;
    }
    // The caller leaves the other one to the helper.
    while (!helped && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  });
  if (!helped) GTEST_SKIP() << "no second thread";
  EXPECT_EQ(std::fetestexcept(FE_OVERFLOW | FE_UNDERFLOW | FE_INVALID | FE_DIVBYZERO),
            FE_OVERFLOW | FE_UNDERFLOW);
  std::feclearexcept(FE_ALL_EXCEPT);
}

// Helpers on their way to sleep, or just woken, are missing in the child.
TEST(ParallelForEach, AForkedChildGoesOnAlone) {
  const parallel cores(3, kBlock);
  const auto a = Arguments<double>(3000);
  std::vector<double> r(a.size());
  for (int round = 0; round < 200; ++round) {
    cores.apply(pexquo::exp, a, r);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      alarm(20);
      cores.apply(pexquo::exp, a, r);
      _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0) << "round " << round;
  }
}

// A call within a call, and calls of several threads at once.
TEST(ParallelForEach, NestedAndConcurrentCallsAreServed) {
  const parallel cores(3, kBlock);
  const auto a = Arguments<double>(1000);
  const auto expected = pexquo::exp(a);
  const auto check = [&](std::size_t) {
    for (int round = 0; round < 20; ++round) {
      std::vector<double> r(a.size());
      cores.apply(pexquo::exp, a, r);
      EXPECT_TRUE(SameBits(r, expected));
    }
  };
  cores.for_each(8, check);
  std::vector<std::jthread> threads;
  for (int t = 0; t < 4; ++t) threads.emplace_back(check, 0);
}

}  // namespace
