// Distributions under their public names: the kernel's numbers, whole and in pieces, and a status
// for every argument that is refused, which then changes nothing.
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "front/thread_state.h"
#include "pexquo/pexquo.h"
#include "tests/front/streams_under_test.h"
#include "tests/support/samplers.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr float kMaxFloat = std::numeric_limits<float>::max();

using DrawFunction = int32_t (*)(int32_t method, QuoStream* stream, int64_t n, void* r,
                                 const double* parameters);

// A public distribution function with its parameters in an array, as Sampler::draw has them.
template <typename T, typename... P>
int32_t Invoke(int32_t (*f)(int32_t, QuoStream*, int64_t, T*, P...), int32_t method,
               QuoStream* stream, int64_t n, void* r, const double* p) {
  return [&]<size_t... I>(std::index_sequence<I...>) {
    return f(method, stream, n, static_cast<T*>(r), static_cast<P>(p[I])...);
  }
  (std::index_sequence_for<P...>());
}

#define QUO_DISTRIBUTION(...)
#define QUO_SAMPLER(distribution, type, entry)                                          \
  {#entry, [](int32_t method, QuoStream* stream, int64_t n, void* r, const double* p) { \
     return Invoke(FRONT##entry, method, stream, n, r, p);                              \
   }},
#define FRONT_quodRngUniform quodRngUniform
#define FRONT_quosRngUniform quosRngUniform
#define FRONT_quoiRngUniform quoiRngUniform
#define FRONT_quoiRngUniformBits quoiRngUniformBits
#define FRONT_quodRngGaussian quodRngGaussian
#define FRONT_quosRngGaussian quosRngGaussian
#define FRONT_quodRngExponential quodRngExponential
#define FRONT_quosRngExponential quosRngExponential
#define FRONT_quodRngLaplace quodRngLaplace
#define FRONT_quosRngLaplace quosRngLaplace
#define FRONT_quodRngWeibull quodRngWeibull
#define FRONT_quosRngWeibull quosRngWeibull
#define FRONT_quodRngCauchy quodRngCauchy
#define FRONT_quosRngCauchy quosRngCauchy
#define FRONT_quodRngRayleigh quodRngRayleigh
#define FRONT_quosRngRayleigh quosRngRayleigh
#define FRONT_quodRngLognormal quodRngLognormal
#define FRONT_quosRngLognormal quosRngLognormal
#define FRONT_quodRngGumbel quodRngGumbel
#define FRONT_quosRngGumbel quosRngGumbel
#define FRONT_quoiRngBernoulli quoiRngBernoulli
#define FRONT_quoiRngGeometric quoiRngGeometric
#define FRONT_quodRngGamma quodRngGamma
#define FRONT_quosRngGamma quosRngGamma
#define FRONT_quodRngBeta quodRngBeta
#define FRONT_quosRngBeta quosRngBeta
#define FRONT_quoiRngBinomial quoiRngBinomial
#define FRONT_quoiRngHypergeometric quoiRngHypergeometric
#define FRONT_quoiRngPoisson quoiRngPoisson
#define FRONT_quoiRngNegbinomial quoiRngNegbinomial
const std::map<std::string_view, DrawFunction> kFront = {
#include "catalogue/distributions.def"
};

class ShortPieces {
 public:
  explicit ShortPieces(int64_t length) { pexquo_front::piece = length; }
  ~ShortPieces() { pexquo_front::piece = int64_t{1} << 30; }
};

using Bytes = std::vector<uint8_t>;

class Distribution : public testing::TestWithParam<size_t> {
 protected:
  static constexpr int32_t kCount = 2500;

  Drawing drawing() const { return AllDrawings()[GetParam()]; }
  int32_t method() const { return static_cast<int32_t>(drawing().method); }

  int32_t Draw(QuoStream* stream, int64_t n, void* r) const {
    return kFront.at(drawing().sampler->symbol)(method(), stream, n, r,
                                                drawing().parameters.data());
  }
  static size_t WordBytes(const QuoStream* stream) {
    BrngProperties properties;
    EXPECT_EQ(quoGetBrngProperties(quoGetStreamBrng(stream), &properties), QUO_OK);
    return static_cast<size_t>(properties.WordBytes);
  }
};

TEST_P(Distribution, HasTheNumbersOfItsKernelWholeAndInPieces) {
  for (const int32_t brng : {QUO_BRNG_MT19937, QUO_BRNG_WH + 3, QUO_BRNG_MCG59}) {
    const OwnedStream first = NewStream(brng);
    const size_t bytes = drawing().ResultSize(WordBytes(first.get())) * kCount;
    const OwnedStream of_kernel = CopyOf(first.get());
    Bytes expected(bytes);
    ASSERT_EQ(drawing()(of_kernel.get(), kCount, expected.data()), QUO_OK);
    for (const int64_t piece : {int64_t{1} << 30, int64_t{1024}, int64_t{777}, int64_t{1}}) {
      const ShortPieces pieces(piece);
      const OwnedStream stream = CopyOf(first.get());
      Bytes r(bytes);
      EXPECT_EQ(Draw(stream.get(), kCount, r.data()), QUO_OK);
      EXPECT_EQ(r, expected) << "pieces of " << piece;
      const OwnedStream reference = CopyOf(of_kernel.get());
      EXPECT_TRUE(StandAlike(stream.get(), reference.get())) << "pieces of " << piece;
    }
  }
}

TEST_P(Distribution, RefusesWhatAllRefuse) {
  const OwnedStream stream = NewStream();
  Bytes r(64, 0x5A);
  const Bytes untouched = r;
  EXPECT_EQ(Draw(nullptr, 1, r.data()), QUO_NULL_STREAM);
  EXPECT_EQ(Draw(stream.get(), -1, r.data()), QUO_BAD_COUNT);
  EXPECT_EQ(Draw(stream.get(), INT64_MIN, nullptr), QUO_BAD_COUNT);
  EXPECT_EQ(Draw(stream.get(), 1, nullptr), QUO_NULL_ARRAY);
  EXPECT_EQ(Draw(stream.get(), 0, nullptr), QUO_OK);
  const auto with_method = [&](int32_t method) {
    return kFront.at(drawing().sampler->symbol)(method, stream.get(), 1, r.data(),
                                                drawing().parameters.data());
  };
  EXPECT_EQ(with_method(-1), QUO_UNKNOWN_METHOD);
  EXPECT_EQ(with_method(4), QUO_UNKNOWN_METHOD);
  EXPECT_EQ(with_method(INT32_MIN), QUO_UNKNOWN_METHOD);
  for (const int32_t header : {0, 2, -1}) {
    stream->header = header;
    EXPECT_EQ(Draw(stream.get(), 1, r.data()), QUO_DEAD_STREAM);
  }
  stream->header = 1;
  for (const int32_t id : {-1, INT32_MIN, 279, 0xD00000, QUO_BRNG_MT2203 + 1024, INT32_MAX}) {
    stream->id = id;
    EXPECT_EQ(Draw(stream.get(), 1, r.data()), QUO_DEAD_STREAM) << id;
  }
  stream->id = QUO_BRNG_MT19937;
  EXPECT_EQ(r, untouched);
  const OwnedStream fresh = NewStream();
  EXPECT_TRUE(StandAlike(stream.get(), fresh.get()));
}

INSTANTIATE_TEST_SUITE_P(All, Distribution, testing::Range<size_t>(0, AllDrawings().size()),
                         [](const auto& info) {
                           std::string name = AllDrawings()[info.param].name;
                           for (char& c : name) c = c == ':' ? '_' : c;
                           return name.substr(1);
                         });

TEST(Catalogue, HasAPublicNameForEverySampler) { EXPECT_EQ(kFront.size(), quo::Samplers().size()); }

// ---- Parameters. ----

double rd[4];
float rs[4];
int32_t ri[4];

// A call with a stream, and the status it has to have.
struct Refused {
  std::string_view what;
  std::function<int32_t(QuoStream*)> call;
  int32_t status;
};

#define REFUSED(status, call)                                                                    \
  Refused {                                                                                      \
    std::string_view(#call), []([[maybe_unused]] QuoStream* s) { return int32_t{call}; }, status \
  }

// Both precisions of a call whose last arguments are the parameters.
#define REFUSED_REAL(status, Name, ...)                     \
  REFUSED(status, quodRng##Name(0, s, 4, rd, __VA_ARGS__)), \
      REFUSED(status, quosRng##Name(0, s, 4, rs, __VA_ARGS__))

// Displacement and scale.
#define REFUSED_SCALED(Name)                                                                    \
  REFUSED_REAL(QUO_NOT_FINITE, Name, kNaN, 1), REFUSED_REAL(QUO_NOT_FINITE, Name, -kInf, 1),    \
      REFUSED_REAL(QUO_NOT_FINITE, Name, 0, kNaN), REFUSED_REAL(QUO_NOT_FINITE, Name, 0, kInf), \
      REFUSED_REAL(QUO_BAD_SCALE, Name, 0, 0), REFUSED_REAL(QUO_BAD_SCALE, Name, 0, -0.0),      \
      REFUSED_REAL(QUO_BAD_SCALE, Name, 0, -1)

const double kIdentity[4] = {1, kNaN, 0, 1};  // above the diagonal nothing is read
const float kIdentityFloat[4] = {1, NAN, 0, 1};
const double kMean[2] = {0, 0}, kNoMean[2] = {0, kInf}, kNoFactor[4] = {1, 0, kNaN, 1},
             kNoDiagonal[4] = {1, 0, 0, kInf};
const float kMeanFloat[2] = {0, 0};

const Refused kRefused[] = {
    REFUSED_REAL(QUO_NOT_FINITE, Uniform, kNaN, 1),
    REFUSED_REAL(QUO_NOT_FINITE, Uniform, 0, kInf),
    REFUSED_REAL(QUO_EMPTY_RANGE, Uniform, 1, 1),
    REFUSED_REAL(QUO_EMPTY_RANGE, Uniform, 1, 0),
    REFUSED(QUO_WIDE_RANGE, quodRngUniform(0, s, 4, rd, -kMax, kMax)),
    REFUSED(QUO_WIDE_RANGE, quodRngUniform(0, s, 4, rd, kMax / 1.5, kMax)),
    REFUSED(QUO_WIDE_RANGE, quosRngUniform(0, s, 4, rs, -kMaxFloat, kMaxFloat)),
    REFUSED(QUO_UNKNOWN_METHOD, quodRngUniform(1, s, 4, rd, 0, 1)),
    REFUSED(QUO_UNKNOWN_METHOD, quodRngUniform(0x40000001, s, 4, rd, 0, 1)),
    REFUSED(QUO_UNKNOWN_METHOD, quoiRngUniform(0x40000000, s, 4, ri, 0, 1)),
    REFUSED(QUO_EMPTY_RANGE, quoiRngUniform(0, s, 4, ri, 3, 3)),
    REFUSED(QUO_EMPTY_RANGE, quoiRngUniform(0, s, 4, ri, 3, -3)),
    REFUSED_SCALED(Gaussian),
    REFUSED(QUO_UNKNOWN_METHOD, quodRngGaussian(3, s, 4, rd, 0, 1)),
    REFUSED_SCALED(Exponential),
    REFUSED_SCALED(Laplace),
    REFUSED_SCALED(Cauchy),
    REFUSED_SCALED(Rayleigh),
    REFUSED_SCALED(Gumbel),
    REFUSED_REAL(QUO_NOT_FINITE, Weibull, kNaN, 0, 1),
    REFUSED_REAL(QUO_BAD_SHAPE, Weibull, 0, 0, 1),
    REFUSED_REAL(QUO_NOT_FINITE, Weibull, 1, kInf, 1),
    REFUSED_REAL(QUO_BAD_SCALE, Weibull, 1, 0, 0),
    REFUSED_REAL(QUO_NOT_FINITE, Lognormal, kNaN, 1, 0, 1),
    REFUSED_REAL(QUO_BAD_SCALE, Lognormal, 0, 0, 0, 1),
    REFUSED_REAL(QUO_NOT_FINITE, Lognormal, 0, 1, kInf, 1),
    REFUSED_REAL(QUO_BAD_SCALE, Lognormal, 0, 1, 0, -1),
    REFUSED(QUO_NOT_FINITE, quoiRngBernoulli(0, s, 4, ri, kNaN)),
    REFUSED(QUO_BAD_PROBABILITY, quoiRngBernoulli(0, s, 4, ri, -0.1)),
    REFUSED(QUO_BAD_PROBABILITY, quoiRngBernoulli(0, s, 4, ri, 1.1)),
    REFUSED(QUO_NOT_FINITE, quoiRngGeometric(0, s, 4, ri, -kInf)),
    REFUSED(QUO_BAD_PROBABILITY, quoiRngGeometric(0, s, 4, ri, 0)),
    REFUSED(QUO_BAD_PROBABILITY, quoiRngGeometric(0, s, 4, ri, 0x1p-54)),
    REFUSED(QUO_BAD_PROBABILITY, quoiRngGeometric(0, s, 4, ri, 1 + 0x1p-52)),
    // Multivariate: method, dimension, storage, arrays.
    REFUSED(QUO_UNKNOWN_METHOD, quodRngGaussianMV(3, s, 2, rd, 2, 0, kMean, kIdentity)),
    REFUSED(QUO_BAD_DIMENSION, quodRngGaussianMV(0, s, 2, rd, 0, 0, kMean, kIdentity)),
    REFUSED(QUO_BAD_DIMENSION, quosRngGaussianMV(0, s, 2, rs, -1, 0, kMeanFloat, kIdentityFloat)),
    REFUSED(QUO_BAD_DIMENSION,
            quodRngGaussianMV(0, s, INT64_MAX / 2 + 1, rd, 2, 0, kMean, kIdentity)),
    REFUSED(QUO_BAD_STORAGE, quodRngGaussianMV(0, s, 2, rd, 2, 3, kMean, kIdentity)),
    REFUSED(QUO_BAD_STORAGE, quosRngGaussianMV(0, s, 2, rs, 2, -1, kMeanFloat, kIdentityFloat)),
    REFUSED(QUO_NULL_ARRAY, quodRngGaussianMV(0, s, 2, rd, 2, 0, nullptr, kIdentity)),
    REFUSED(QUO_NULL_ARRAY, quosRngGaussianMV(0, s, 2, rs, 2, 0, kMeanFloat, nullptr)),
    REFUSED(QUO_NULL_ARRAY, quodRngGaussianMV(0, s, 2, nullptr, 2, 0, kMean, kIdentity)),
    REFUSED(QUO_BAD_COUNT, quodRngGaussianMV(0, s, -2, rd, 2, 0, kMean, kIdentity)),
    REFUSED(QUO_NOT_FINITE, quodRngGaussianMV(0, s, 2, rd, 2, 0, kNoMean, kIdentity)),
    REFUSED(QUO_NOT_FINITE, quodRngGaussianMV(0, s, 2, rd, 2, 0, kMean, kNoFactor)),
    REFUSED(QUO_NOT_FINITE, quodRngGaussianMV(0, s, 2, rd, 2, 0, kMean, kNoDiagonal)),
    REFUSED(QUO_NOT_FINITE, quodRngGaussianMV(0, s, 2, rd, 2, 1, kMean, kNoFactor)),
    REFUSED(QUO_NOT_FINITE, quodRngGaussianMV(0, s, 2, rd, 2, 2, kMean, kNoFactor + 2)),
    REFUSED(QUO_NULL_STREAM, quodRngGaussianMV(0, nullptr, 2, rd, 2, 0, kMean, kIdentity)),
#ifdef PEXQUO_HAS_GAMMA
    REFUSED_REAL(QUO_BAD_SHAPE, Gamma, 0, 0, 1),
    REFUSED_REAL(QUO_NOT_FINITE, Gamma, kInf, 0, 1),
    REFUSED_REAL(QUO_NOT_FINITE, Gamma, 1, kNaN, 1),
    REFUSED_REAL(QUO_BAD_SCALE, Gamma, 1, 0, 0),
    REFUSED_REAL(QUO_BAD_SHAPE, Beta, -1, 1, 0, 1),
    REFUSED_REAL(QUO_BAD_SHAPE, Beta, 1, 0, 0, 1),
    REFUSED_REAL(QUO_NOT_FINITE, Beta, 1, kInf, 0, 1),
    REFUSED_REAL(QUO_NOT_FINITE, Beta, 1, 1, kInf, 1),
    REFUSED_REAL(QUO_BAD_SCALE, Beta, 1, 1, 0, 0),
#endif
#ifdef PEXQUO_HAS_BINOMIAL
    REFUSED(QUO_BAD_TRIALS, quoiRngBinomial(0, s, 4, ri, -1, 0.5)),
    REFUSED(QUO_NOT_FINITE, quoiRngBinomial(0, s, 4, ri, 10, kNaN)),
    REFUSED(QUO_BAD_PROBABILITY, quoiRngBinomial(0, s, 4, ri, 10, -0.5)),
    REFUSED(QUO_BAD_PROBABILITY, quoiRngBinomial(0, s, 4, ri, 10, 1.5)),
    REFUSED(QUO_BAD_POPULATION, quoiRngHypergeometric(0, s, 4, ri, -1, 0, 0)),
    REFUSED(QUO_BAD_POPULATION, quoiRngHypergeometric(0, s, 4, ri, 10, -1, 5)),
    REFUSED(QUO_BAD_POPULATION, quoiRngHypergeometric(0, s, 4, ri, 10, 5, -1)),
    REFUSED(QUO_BAD_POPULATION, quoiRngHypergeometric(0, s, 4, ri, 10, 11, 5)),
    REFUSED(QUO_BAD_POPULATION, quoiRngHypergeometric(0, s, 4, ri, 10, 5, 11)),
#endif
#ifdef PEXQUO_HAS_POISSON
    REFUSED(QUO_BAD_MEAN, quoiRngPoisson(0, s, 4, ri, 0)),
    REFUSED(QUO_BAD_MEAN, quoiRngPoisson(0, s, 4, ri, -1)),
    REFUSED(QUO_BAD_MEAN, quoiRngPoisson(0, s, 4, ri, 0x1p31)),
    REFUSED(QUO_UNKNOWN_METHOD, quoiRngPoisson(2, s, 4, ri, 3)),
    REFUSED(QUO_UNKNOWN_METHOD, quoiRngPoissonV(1, s, 1, ri, kIdentity)),
    REFUSED(QUO_NOT_FINITE, quoiRngPoisson(0, s, 4, ri, kInf)),
    REFUSED(QUO_NULL_ARRAY, quoiRngPoissonV(0, s, 4, ri, nullptr)),
    REFUSED(QUO_BAD_MEAN, quoiRngPoissonV(0, s, 2, ri, kMean)),
    REFUSED(QUO_NOT_FINITE, quoiRngPoissonV(0, s, 1, ri, kNoMean + 1)),
    REFUSED(QUO_NOT_FINITE, quoiRngNegbinomial(0, s, 4, ri, kNaN, 0.5)),
    REFUSED(QUO_BAD_SUCCESSES, quoiRngNegbinomial(0, s, 4, ri, 0, 0.5)),
    REFUSED(QUO_BAD_PROBABILITY, quoiRngNegbinomial(0, s, 4, ri, 5, 0)),
    REFUSED(QUO_BAD_PROBABILITY, quoiRngNegbinomial(0, s, 4, ri, 5, 1.5)),
#endif
};

TEST(Parameters, AreRefusedWithTheirStatusAndNothingChanges) {
  for (const Refused& refused : kRefused) {
    SCOPED_TRACE(refused.what);
    std::memset(rd, 0x5A, sizeof(rd));
    std::memset(rs, 0x5A, sizeof(rs));
    std::memset(ri, 0x5A, sizeof(ri));
    const OwnedStream stream = NewStream(), fresh = NewStream();
    EXPECT_EQ(refused.call(stream.get()), refused.status);
    EXPECT_STRNE(quoStatusText(refused.status), quoStatusText(1));
    EXPECT_TRUE(StandAlike(stream.get(), fresh.get()));
    EXPECT_EQ(stream->chunks, nullptr);
    for (const void* r : {static_cast<const void*>(rd), static_cast<const void*>(rs),
                          static_cast<const void*>(ri)}) {
      uint32_t words[4];
      std::memcpy(words, r, sizeof(words));
      for (const uint32_t word : words) EXPECT_EQ(word, 0x5A5A5A5Au);
    }
  }
}

TEST(Parameters, AtTheEdgeAreAccepted) {
  const OwnedStream stream = NewStream();
  QuoStream* const s = stream.get();
  EXPECT_EQ(quodRngUniform(QUO_METHOD_ACCURATE, s, 4, rd, 1, std::nextafter(1.0, 2.0)), QUO_OK);
  EXPECT_EQ(quodRngUniform(0, s, 4, rd, -kMax / 2, kMax / 2.5), QUO_OK);
  for (const double x : rd) EXPECT_TRUE(std::isfinite(x));
  EXPECT_EQ(quoiRngUniform(0, s, 4, ri, INT32_MIN, INT32_MAX), QUO_OK);
  EXPECT_EQ(quodRngGaussian(2, s, 4, rd, 0, 5e-324), QUO_OK);
  EXPECT_EQ(quoiRngBernoulli(0, s, 4, ri, 0), QUO_OK);
  EXPECT_EQ(ri[0] + ri[1] + ri[2] + ri[3], 0);
  EXPECT_EQ(quoiRngBernoulli(0, s, 4, ri, 1), QUO_OK);
  EXPECT_EQ(ri[0] + ri[1] + ri[2] + ri[3], 4);
  EXPECT_EQ(quoiRngGeometric(0, s, 4, ri, 1), QUO_OK);
  EXPECT_EQ(ri[0] + ri[1] + ri[2] + ri[3], 0);
  EXPECT_EQ(quoiRngGeometric(0, s, 4, ri, 0x1p-53), QUO_OK);
  EXPECT_EQ(quodRngGaussianMV(1, s, 0, nullptr, 2, 0, kMean, kIdentity), QUO_OK);
#ifdef PEXQUO_HAS_BINOMIAL
  EXPECT_EQ(quoiRngBinomial(0, s, 4, ri, 0, 0.5), QUO_OK);
  EXPECT_EQ(ri[0] + ri[1] + ri[2] + ri[3], 0);
  EXPECT_EQ(quoiRngBinomial(0, s, 4, ri, 5, 1), QUO_OK);
  EXPECT_EQ(ri[0] + ri[1] + ri[2] + ri[3], 20);
  EXPECT_EQ(quoiRngBinomial(0, s, 4, ri, INT32_MAX, 0.5), QUO_OK);
  EXPECT_EQ(quoiRngHypergeometric(0, s, 4, ri, 0, 0, 0), QUO_OK);
  EXPECT_EQ(ri[0] + ri[1] + ri[2] + ri[3], 0);
  EXPECT_EQ(quoiRngHypergeometric(0, s, 4, ri, 10, 10, 3), QUO_OK);
  EXPECT_EQ(ri[0] + ri[1] + ri[2] + ri[3], 12);
#endif
#ifdef PEXQUO_HAS_POISSON
  EXPECT_EQ(quoiRngPoisson(0, s, 4, ri, 5e-324), QUO_OK);
  EXPECT_EQ(ri[0] + ri[1] + ri[2] + ri[3], 0);
  EXPECT_EQ(quoiRngPoisson(1, s, 4, ri, INT32_MAX), QUO_OK);
  EXPECT_EQ(quoiRngNegbinomial(0, s, 4, ri, 0.5, 1e-20), QUO_OK);
  EXPECT_EQ(quoiRngNegbinomial(0, s, 4, ri, 0.5, 1), QUO_OK);
  EXPECT_EQ(ri[0] + ri[1] + ri[2] + ri[3], 0);
#endif
}

template <typename T, typename Kernel, typename Front>
void ExpectSameVectors(Kernel kernel, Front front, int32_t storage) {
  constexpr int32_t kDimension = 3, kVectors = 700;
  const T a[3] = {1, 2, 3}, t[9] = {1, 0, 0, T(0.5), 2, 0, T(0.25), T(-0.5), 3};
  for (uint32_t method = 0; method < 3; ++method) {
    const OwnedStream first = NewStream();
    std::vector<T> expected(kDimension * kVectors);
    ASSERT_EQ(kernel(method, first.get(), kVectors, expected.data(), kDimension, storage, a, t), 0);
    for (const int64_t piece : {int64_t{1} << 30, int64_t{1000}, int64_t{2}}) {
      const ShortPieces pieces(piece);
      const OwnedStream stream = NewStream();
      std::vector<T> r(expected.size());
      EXPECT_EQ(front(static_cast<int32_t>(method), stream.get(), kVectors, r.data(), kDimension,
                      storage, a, t),
                QUO_OK);
      EXPECT_EQ(r, expected) << "method " << method << ", pieces of " << piece;
    }
  }
}

TEST(Multivariate, HasTheVectorsOfItsKernelWholeAndInPieces) {
  for (int32_t storage = 0; storage < 3; ++storage) {
    ExpectSameVectors<double>(_quodRngGaussianMV, quodRngGaussianMV, storage);
    ExpectSameVectors<float>(_quosRngGaussianMV, quosRngGaussianMV, storage);
  }
}

// Fills its buffer twice and then has nothing left.
int refills;
int32_t TwoBuffers(QuoStream*, int32_t*, double* buffer, int32_t*, int32_t* nmax, int32_t*) {
  if (++refills > 2) return 0;
  for (int32_t i = 0; i < *nmax; ++i) buffer[i] = 0.25 * refills;
  return *nmax;
}

TEST(GeneratorsStatus, EndsARequestInPieces) {
  double buffer[10], r[50];
  std::fill(r, r + 50, 4711.0);
  QuoStream* made = nullptr;
  ASSERT_EQ(quodNewAbstractStream(&made, 10, buffer, 0, 1, TwoBuffers), QUO_OK);
  const OwnedStream stream(made);
  const ShortPieces pieces(10);
  refills = 0;
  EXPECT_EQ(quodRngUniform(0, made, 50, r, 0, 1), QUO_EMPTY_REFILL);
  EXPECT_EQ(refills, 3);
  EXPECT_EQ(r[0], 0.25);
  EXPECT_EQ(r[19], 0.5);
  EXPECT_EQ(r[20], 4711);
  EXPECT_EQ(r[49], 4711);
}

// The first output of all ones: its uniforms round to the upper bound.
OwnedStream FromTheTop() {
  std::vector<uint32_t> words(250);
  words[0] = ~0u;
  QuoStream* stream = nullptr;
  EXPECT_EQ(quoNewStreamEx(&stream, QUO_BRNG_R250, 250, words.data()), QUO_OK);
  return OwnedStream(stream);
}

std::vector<int32_t> places;
int NotePlace(PexErrorContext* record) {
  places.push_back(record->index);
  return 1;
}

// As the kernel reports them, by their places in the whole array.
TEST(Lognormal, ReportsInPiecesByThePlaceInTheWhole) {
  constexpr int32_t kCount = 1000;
  std::vector<double> r(kCount);
  const OwnedStream stream = NewStream(QUO_BRNG_MCG59), same = NewStream(QUO_BRNG_MCG59);
  _pexSetErrorCallBack(NotePlace);
  places.clear();
  ASSERT_EQ(_quodRngLognormal(0, same.get(), kCount, r.data(), 0, 500, 0, 1), QUO_OK);
  const std::vector<int32_t> expected = places;
  EXPECT_GT(expected.size(), 50u);
  places.clear();
  {
    const ShortPieces pieces(77);
    ASSERT_EQ(quodRngLognormal(0, stream.get(), kCount, r.data(), 0, 500, 0, 1), QUO_OK);
  }
  EXPECT_EQ(places, expected);
  _pexClearErrorCallBack();
  _pexSetMode(PEX_MODE_DEFAULT);
  _pexClearErrStatus();
}

TEST(IntegerUniform, EndsBelowItsUpperBound) {
  const auto first = [](const OwnedStream& stream, int32_t a, int32_t b) {
    int32_t r = 0;
    EXPECT_EQ(quoiRngUniform(0, stream.get(), 1, &r, a, b), QUO_OK);
    return r;
  };
  for (const int32_t b : {INT32_MAX, 1 << 30, INT32_MIN + 1, 7}) {
    EXPECT_EQ(first(FromTheTop(), b - 1, b), b - 1);
  }
  const std::vector<uint32_t> ones(2, ~0u);
  for (const auto& [a, b] : {std::pair(0, 6), std::pair(-5, 0), std::pair(INT32_MIN, INT32_MAX)}) {
    QuoStream* made = nullptr;
    ASSERT_EQ(quoNewStreamEx(&made, QUO_BRNG_MCG59, 2, ones.data()), QUO_OK);
    EXPECT_EQ(first(OwnedStream(made), a, b), b - 1);
  }
}

int32_t JustBelowOneTwice(StreamState*, int32_t* n, double* buffer, int32_t*, int32_t* nmax,
                          int32_t*) {
  if (++refills > 2) return 0;
  std::fill(buffer, buffer + *n, 1 - 0x1p-53);
  return *nmax;
}

TEST(IntegerUniform, LeavesWhatIsNotDrawnAlone) {
  double buffer[1024];
  std::vector<int32_t> r(4000, INT32_MAX);
  QuoStream* made = nullptr;
  ASSERT_EQ(quodNewAbstractStream(&made, 1024, buffer, 0, 1, JustBelowOneTwice), QUO_OK);
  const OwnedStream stream(made);
  refills = 0;
  EXPECT_EQ(quoiRngUniform(0, made, 4000, r.data(), INT32_MAX - 1, INT32_MAX), QUO_EMPTY_REFILL);
  std::vector<int32_t> expected(4000, INT32_MAX);
  std::fill(expected.begin(), expected.begin() + 2048, INT32_MAX - 1);
  EXPECT_EQ(r, expected);
}

TEST(Geometric, RefusesTheSameProbabilitiesInAllRoundingModes) {
  const OwnedStream stream = NewStream();
  for (const int mode : {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO}) {
    int32_t r = 0;
    std::fesetround(mode);
    const int32_t least = quoiRngGeometric(0, stream.get(), 1, &r, std::nextafter(0x1p-54, 1));
    const int32_t less = quoiRngGeometric(0, stream.get(), 1, &r, 0x1p-54);
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(least, QUO_OK) << mode;
    EXPECT_EQ(less, QUO_BAD_PROBABILITY) << mode;
  }
}

// b - a and a + b as the generators compute them, to nearest.
TEST(Uniform, RefusesTheSameRangesUnderEveryControlWord) {
  constexpr double kMost = std::numeric_limits<double>::max(), kHalf = kMost / 2;
  constexpr float kMostFloat = std::numeric_limits<float>::max();
  const struct {
    double a, b;
    int32_t status;
  } kRanges[] = {{-kMost, kMost, QUO_WIDE_RANGE},
                 {kHalf, kMost, QUO_WIDE_RANGE},
                 {-kMost, -kHalf, QUO_WIDE_RANGE},
                 {-kHalf, kHalf, QUO_OK},
                 {0, kMost, QUO_OK},
                 {-0x1p969, kMost, QUO_OK},
                 {-0x1p970, kMost, QUO_WIDE_RANGE},
                 {0, 0x1p-1074, QUO_OK},
                 {-0x1p-1074, 0, QUO_OK},
                 {0x1p-1074, 0, QUO_EMPTY_RANGE},
                 {0, std::numeric_limits<double>::infinity(), QUO_NOT_FINITE}};
  const OwnedStream stream = NewStream();
  const unsigned before = _mm_getcsr();
  for (const unsigned control : {0x1F80u, 0x3F80u, 0x5F80u, 0x7F80u, 0x9FC0u, 0x1100u}) {
    for (const auto& range : kRanges) {
      double r = 0;
      _mm_setcsr(control);
      const int32_t status = quodRngUniform(0, stream.get(), 1, &r, range.a, range.b);
      const unsigned after = _mm_getcsr();
      _mm_setcsr(before);
      EXPECT_EQ(status, range.status) << range.a << ' ' << range.b << std::hex << ' ' << control;
      EXPECT_EQ(after & ~0x22u, control)
          << range.a << ' ' << range.b;  // but for inexact and subnormal
    }
    float r = 0;
    _mm_setcsr(control);
    const int32_t status = quosRngUniform(0, stream.get(), 1, &r, -kMostFloat, kMostFloat);
    _mm_setcsr(before);
    EXPECT_EQ(status, QUO_WIDE_RANGE) << std::hex << control;
  }
}

TEST(Bernoulli, OfProbabilityOneAreAllOnes) {
  for (const double p : {1.0, 1 - 0x1p-53, 1 - 0x1p-25}) {
    int32_t r = 0;
    EXPECT_EQ(quoiRngBernoulli(0, FromTheTop().get(), 1, &r, p), QUO_OK);
    EXPECT_EQ(r, 1) << p;
  }
  int32_t r = 1;
  EXPECT_EQ(quoiRngBernoulli(0, FromTheTop().get(), 1, &r, std::nextafter(1 - 0x1p-25, 0)), QUO_OK);
  EXPECT_EQ(r, 0);
}

#ifdef PEXQUO_HAS_POISSON
TEST(PoissonOfManyMeans, HasTheNumbersOfItsKernelInPieces) {
  std::vector<double> lambda(2000);
  for (size_t i = 0; i < lambda.size(); ++i)
    lambda[i] = 0.01 * static_cast<double>(i * i % 997 + 1);
  const OwnedStream of_kernel = NewStream(), stream = NewStream();
  std::vector<int32_t> expected(lambda.size()), r(lambda.size());
  ASSERT_EQ(_quoiRngPoissonV(0, of_kernel.get(), 2000, expected.data(), lambda.data()), 0);
  const ShortPieces pieces(333);
  EXPECT_EQ(quoiRngPoissonV(0, stream.get(), 2000, r.data(), lambda.data()), QUO_OK);
  EXPECT_EQ(r, expected);
}
#endif

}  // namespace
